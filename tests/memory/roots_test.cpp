// Every type that no other refers to, in every binary rule, cut at the lengths that a radio carries: lists that claim as
// many elements as they can, and good beginnings with ends that go on for ever.
#include <orlenta/ber.h>
#include <orlenta/oer.h>
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

// A message in UNALIGNED PER or OER, up to a limit. Each list claims as many elements as it can; the components and
// alternatives that lead to lists are there; all else is as short as may be.
struct Claims {
    bool is_oer;
    size_t limit;  // bits
    std::vector<bool> bits{};

    void put(uint64_t number, uint32_t width) {
        while (width-- > 0) bits.push_back(number >> width & 1);
    }
    void put_bits(const uint8_t* data, uint64_t count) {
        for (uint64_t i = 0; i < count; ++i) bits.push_back(data[i / 8] >> (7 - i % 8) & 1);
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
            int32_t count = 0;
            int64_t size = is_oer ? asn1_oer_encode(&out, type, value.get())
                                  : asn1_uper_encode2_ng(&out, type, value.get(), nullptr, &count);
            if (is_oer) count = static_cast<int32_t>(8 * size);
            if (size >= 0 && count < least) {
                least = count;
                shortest.assign(out, out + size);
            }
            asn1_free(out);
        }
        // A whole encoding of nothing has an octet all the same.
        if (kind_of(type) != ASN1_KIND_NULL && least != INT32_MAX)
            put_bits(shortest.data(), static_cast<uint64_t>(least));
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
        if (is_oer) bits.resize((bits.size() + 7) / 8 * 8);
        for (Type component : present) add(component);
    }

    uint64_t claim(const list_layout& list) {
        if (is_oer) {
            put(0x04FFFFFFFF, 40);
            return UINT32_MAX;
        }
        if (!list.has_upper || list.upper > 65535) {
            put(0xC4, 8);
            return 65536;
        }
        put(list.upper - list.lower, static_cast<uint32_t>(std::bit_width(list.upper - list.lower)));
        return list.upper;
    }

    void add_list(Type type) {
        list_layout list = list_of(type);
        if (!is_oer) put_extension_bit(type);
        size_t before = bits.size();
        for (uint64_t left = claim(list); left > 0 && before != bits.size() && before < limit; --left) {
            before = bits.size();
            add(list.element);
        }
    }

    void put_tag(Type type) {
        while (tag_of(type) == 0 && kind_of(type) == ASN1_KIND_TAGGED) type = tagged_inner(type);
        asn1_byte_buffer tag = {};
        asn1_ber_put_tag(&tag, tag_of(type), 0);
        put_bits(tag.data, 8 * tag.length);
        asn1_free(tag.data);
    }

    void add_choice(Type type) {
        choice_layout choice = choice_of(type);
        uint32_t chosen = 0;
        for (uint32_t i = 1; i < choice.root; ++i)
            if (claimable(alternative_type(choice, i)) > claimable(alternative_type(choice, chosen)))
                chosen = i;
        if (is_oer) {
            put_tag(alternative_type(choice, chosen));
        } else {
            put_extension_bit(type);
            put(chosen, static_cast<uint32_t>(std::bit_width(choice.root - 1)));
        }
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

octets claims(bool is_oer, Type type, size_t size) {
    Claims claims = {is_oer, 8 * size};
    claims.add(type);
    octets input(size);
    for (size_t i = 0; i < std::min(claims.bits.size(), 8 * size); ++i)
        input[i / 8] = static_cast<uint8_t>(input[i / 8] | claims.bits[i] << (7 - i % 8));
    return input;
}

// The first octets of `good` and, up to `size`, one octet or the last `period` of them again and again.
octets prolonged(const octets& good, size_t begin, size_t period, uint8_t filling, size_t size) {
    octets input(good.begin(), good.begin() + static_cast<long>(begin));
    input.reserve(size);
    while (input.size() < size) input.push_back(period == 0 ? filling : input[input.size() - period]);
    return input;
}

std::vector<octets> hostile_inputs(const Rule& rule, Type type, size_t size) {
    std::vector<octets> inputs = {claims(rule.name[0] == 'O', type, size)};
    octets good;
    if (!is_recursive(type)) {  // whose random values may be of any size
        uint8_t* out = nullptr;
        int64_t length = rule.encode(&out, type, make_sample(type, 3).value.get());
        good.assign(out, out + std::max<int64_t>(length, 0));
        asn1_free(out);
    }
    for (size_t begin : {size_t{0}, size / 8, size / 3, 2 * size / 3}) {
        if (begin > good.size()) break;
        for (uint8_t filling : {0x00, 0x80, 0xC4, 0xFF})
            inputs.push_back(prolonged(good, begin, 0, filling, size));
        for (size_t period = 1; period <= std::min<size_t>(begin, 12); ++period)
            inputs.push_back(prolonged(good, begin, period, 0, size));
    }
    return inputs;
}

// ---- the test ---------------------------------------------------------------------------------------------

class Roots : public testing::TestWithParam<std::tuple<Rule, Region>> {};

TEST_P(Roots, StayWithinTheBound) {
    const auto& [rule, region] = GetParam();
    std::vector<orlenta_catalogue_entry> types = roots_of(region);
    ASSERT_FALSE(types.empty());
    size_t most = 0;
    std::string dearest;
    for (const orlenta_catalogue_entry& entry : types) {
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
