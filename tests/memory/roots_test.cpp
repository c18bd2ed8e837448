// SPDX-License-Identifier: Apache-2.0
// Every type that no other refers to, in every binary rule, cut at the lengths that a radio carries: lists that claim as
// many elements as they can, and good beginnings with ends that go on for ever.
#include <orlenta/per.h>
#include <orlenta/random.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <map>

#include "cli/references.hpp"
#include "core/descriptor.hpp"
#include "tests/memory/held.hpp"
#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"

namespace orlenta::test {
namespace {

using Type = const asn1_type_desc*;

// ---- inputs -----------------------------------------------------------------------------------------------

// Bytes of the largest list that a value of the type can have at some depth.
uint64_t claimable(Type type, int depth = 0) {
    static std::map<std::pair<Type, int>, uint64_t> known;
    auto [at, is_new] = known.try_emplace({type, depth}, 0);
    if (!is_new || depth > 12) return at->second;
    uint64_t bytes = 0;
    uint32_t kind = kind_of(type);
    if (kind == ASN1_KIND_SEQUENCE_OF || kind == ASN1_KIND_SET_OF) {
        list_layout list = list_of(type);
        bytes = (list.has_upper ? std::min(list.upper, 65536u) : 65536) * list.stride;
    }
    if (kind != ASN1_KIND_ANY)
        for (Type part : cli::referred_types(type)) bytes = std::max(bytes, claimable(part, depth + 1));
    return known[{type, depth}] = bytes;
}

// A message in UNALIGNED PER, up to a limit. Each list claims as many elements as it can; the components and
// alternatives that lead to lists are there; all else is as short as may be.
struct Claims {
    size_t limit;  // bits
    std::vector<bool> bits{};

    void put(uint64_t number, uint32_t width) {
        while (width-- > 0) bits.push_back(number >> width & 1);
    }
    void put_extension_bit(Type type) {
        if (is_extensible(type)) put(0, 1);
    }

    // The shortest of some values.
    void add_leaf(Type type) {
        octets shortest;
        int32_t least = INT32_MAX;
        for (uint32_t seed = 1; seed < 12; ++seed) {
            Value value(asn1_random(type, seed), {type});
            uint8_t* out = nullptr;
            int32_t count = INT32_MAX;
            int64_t size = asn1_uper_encode2_ng(&out, type, value.get(), nullptr, &count);
            if (size >= 0 && count < least) {
                least = count;
                shortest.assign(out, out + size);
            }
            asn1_free(out);
        }
        if (kind_of(type) == ASN1_KIND_NULL) return;  // a whole encoding of nothing has an octet all the same
        for (size_t i = 0; i < shortest.size() * 8 && i < static_cast<size_t>(least); ++i)
            put(shortest[i / 8] >> (7 - i % 8) & 1, 1);
    }

    void add_sequence(Type type) {
        std::vector<Type> present;
        put_extension_bit(type);
        for (uint32_t i = 0; i < component_count(type); ++i) {
            const asn1_field* field = components(type) + i;
            if (is_addition(field)) continue;
            bool is_mandatory = field_option(field) == ASN1_OPTION_MANDATORY;
            bool is_here = is_mandatory || claimable(field_type(field)) > 0;
            if (!is_mandatory) put(is_here, 1);
            if (is_here) present.push_back(field_type(field));
        }
        for (Type component : present) add(component);
    }

    void add_list(Type type) {
        list_layout list = list_of(type);
        bool is_constrained = list.has_upper && list.upper <= 65535;
        uint32_t range = list.upper - list.lower;
        put_extension_bit(type);
        is_constrained ? put(range, static_cast<uint32_t>(std::bit_width(range))) : put(0xC4, 8);
        size_t before = SIZE_MAX;
        for (uint32_t left = is_constrained ? list.upper : 65536; left > 0 && before != bits.size(); --left) {
            before = bits.size();
            add(list.element);
        }
    }

    void add_choice(Type type) {
        choice_layout choice = choice_of(type);
        uint32_t chosen = 0;
        for (uint32_t i = 1; i < choice.root; ++i)
            if (claimable(alternative_type(choice, i)) > claimable(alternative_type(choice, chosen)))
                chosen = i;
        put_extension_bit(type);
        put(chosen, static_cast<uint32_t>(std::bit_width(choice.root - 1)));
        add(alternative_type(choice, chosen));
    }

    void add(Type type) {
        if (bits.size() >= limit) return;
        type = untagged(type);
        switch (kind_of(type)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return add_sequence(type);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF: return add_list(type);
            case ASN1_KIND_CHOICE: return add_choice(type);
            case ASN1_KIND_ANY: return put(0x0100, 16);
            default: return add_leaf(type);
        }
    }
};

octets claims(Type type, size_t size) {
    Claims claims = {8 * size};
    claims.add(type);
    octets input(size);
    for (size_t i = 0; i < std::min(claims.bits.size(), 8 * size); ++i)
        input[i / 8] = static_cast<uint8_t>(input[i / 8] | claims.bits[i] << (7 - i % 8));
    return input;
}

// The first octets of `good` and, up to `size`, some more again and again.
octets prolonged(const octets& good, size_t begin, const octets& more, size_t size) {
    octets input(good.begin(), good.begin() + static_cast<long>(begin));
    while (input.size() < size) input.insert(input.end(), more.begin(), more.end());
    input.resize(size);
    return input;
}

std::vector<octets> hostile_inputs(const Rule& rule, Type type, size_t size) {
    octets good, oer_count = {0x04, 0xFF, 0xFF, 0xFF, 0xFF};
    if (!is_recursive(type)) {  // whose random values may be of any size
        uint8_t* out = nullptr;
        int64_t length = rule.encode(&out, type, make_sample(type, 3).value.get());
        good.assign(out, out + std::max<int64_t>(length, 0));
        asn1_free(out);
    }
    oer_count.resize(size);
    std::vector<octets> inputs = {claims(type, size)};
    for (size_t begin = 0; begin == 0 || begin < std::min(good.size(), size); begin += 1 + begin / 4) {
        for (const octets& more : {octets{0x00}, octets{0x80}, octets{0xC4}, octets{0xFF}, oer_count})
            inputs.push_back(prolonged(good, begin, more, size));
        for (size_t period = 1; period <= std::min<size_t>(begin, 12); ++period)
            inputs.push_back(prolonged(good, begin,
                                       octets(good.begin() + static_cast<long>(begin - period),
                                              good.begin() + static_cast<long>(begin)),
                                       size));
    }
    return inputs;
}

// ---- the test ---------------------------------------------------------------------------------------------

class Roots : public testing::TestWithParam<std::tuple<Rule, Region>> {};

TEST_P(Roots, StayWithinTheBound) {
    const auto& [rule, region] = GetParam();
    std::vector<TableEntry> types = roots_of(region);
    ASSERT_FALSE(types.empty());
    size_t most = 0;
    std::string dearest;
    for (const TableEntry& entry : types) {
        SCOPED_TRACE(entry.table);
        for (size_t size : {10, 30, 100, 400, 1400}) {
            for (const octets& input : hostile_inputs(rule, entry.type, size)) {
                size_t bytes = decode_counted(rule.decode, entry.type, input).bytes;
                if (size < 1400 || bytes <= most) continue;
                most = bytes;
                dearest = entry.table;
            }
        }
    }
    std::printf("%s %s: %zu types; 1,400 octets take %zu bytes at the most (%s)\n", rule.name, region.name,
                types.size(), most, dearest.c_str());
}

std::vector<Rule> binary_rules() {
    std::vector<Rule> rules;
    for (const char* name : {"UPER", "APER", "OER", "BER"})
        rules.push_back(*std::ranges::find(all_rules(), std::string(name), &Rule::name));
    return rules;
}

INSTANTIATE_TEST_SUITE_P(Rules, Roots,
                         testing::Combine(testing::ValuesIn(binary_rules()),
                                          testing::ValuesIn(all_regions().begin(), all_regions().end())),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) + "_" +
                                    std::get<1>(info.param).name;
                         });

}  // namespace
}  // namespace orlenta::test
