// SPDX-License-Identifier: Apache-2.0
// Memory runs out, over every table of every message set: each function tells so or does without, nothing is left
// behind, and a value that came out with holes can be handed to every other function.
#include <gtest/gtest.h>
#include <orlenta/check.h>
#include <orlenta/memory.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/random.h>

#include <cstdio>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <tuple>

#include "core/descriptor.hpp"
#include "tests/per/per_types.hpp"
#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/support/failing_allocator.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {
namespace {

constexpr uint64_t kMostBlocks = 1000;  // of a value: a larger one costs more time than it tells
constexpr uint64_t kFailures = 64;      // allocations that fail in turn, spread over those of a call

std::optional<std::string> encode(const Rule& rule, const asn1_type_desc* type, const void* value) {
    uint8_t* data = nullptr;
    int64_t size = rule.encode(&data, type, value);
    std::optional<std::string> bytes;
    if (size > 0) bytes.emplace(reinterpret_cast<char*>(data), static_cast<size_t>(size));
    if (size == 0) bytes.emplace();
    EXPECT_EQ(data != nullptr, size > 0);
    asn1_free(data);
    return bytes;
}

bool is_small(const asn1_type_desc* type, uint32_t seed) {
    allocator_fails_from(kMostBlocks);
    asn1_free_value(type, asn1_random(type, seed));
    bool has_failed = allocator_has_failed();
    allocator_never_fails();
    return !has_failed;
}

// One value of each table, the first random one that is small.
void for_each_sample(const Region& region,
                     const std::function<void(const asn1_type_desc*, const Sample&, uint32_t seed)>& use) {
    for (const TableEntry& entry : region.entries) {
        if (kind_of(entry.type) == ASN1_KIND_OBJECT_CLASS) continue;
        SCOPED_TRACE(entry.table);
        uint32_t round = 0;
        while (round < 1000 && !is_small(entry.type, seed_of(entry, round))) ++round;
        ASSERT_LT(round, 1000u) << "no small value found";
        uint32_t seed = seed_of(entry, round);
        use(entry.type, make_sample(entry.type, seed), seed);
        if (testing::Test::HasFailure()) return;
    }
}

// ---- codecs -----------------------------------------------------------------------------------------------

class Codecs : public testing::TestWithParam<std::tuple<Rule, Region>> {};

// The text of a decoder's failure without memory; empty for a value, which must be the one given.
std::string decode(const Rule& rule, const asn1_type_desc* type, const std::string& bytes,
                   const void* wanted) {
    asn1_error error = {};
    void* decoded = &error;
    int64_t used =
        rule.decode(&decoded, type, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &error);
    if (used < 0) {
        EXPECT_EQ(decoded, nullptr);
        return error.message;
    }
    EXPECT_EQ(asn1_cmp_value(type, decoded, wanted), 0);
    asn1_free_value(type, decoded);
    return "";
}

struct Failures {
    uint64_t in_encoding = 0, in_decoding = 0;
};

void fail_each_way(const Rule& rule, const asn1_type_desc* type, const Sample& sample, Failures* failures) {
    const std::optional<std::string> whole = encode(rule, type, sample.value.get());
    ASSERT_TRUE(whole);
    failures->in_encoding += for_some_failed_allocations(kFailures, [&] {
        std::optional<std::string> bytes = encode(rule, type, sample.value.get());
        EXPECT_TRUE(allocator_has_failed() ? !bytes : bytes == whole);
    });
    if (sample.has_raw && !rule.takes_raw_back) return;
    failures->in_decoding += for_some_failed_allocations(kFailures, [&] {
        // Where a block only shrinks, the decoder does without.
        std::string message = decode(rule, type, *whole, sample.value.get());
        EXPECT_TRUE(message.empty() || (allocator_has_failed() && message == "not enough memory")) << message;
    });
}

TEST_P(Codecs, TellThatMemoryRanOut) {
    const auto& [rule, region] = GetParam();
    Failures failures;
    for_each_sample(region, [&, rule = rule](const asn1_type_desc* type, const Sample& sample, uint32_t) {
        fail_each_way(rule, type, sample, &failures);
    });
    std::printf("%llu failures in encoding, %llu in decoding\n",
                static_cast<unsigned long long>(failures.in_encoding),
                static_cast<unsigned long long>(failures.in_decoding));
    EXPECT_GT(failures.in_encoding, 5u);
    EXPECT_GT(failures.in_decoding, 5u);
}

INSTANTIATE_TEST_SUITE_P(Rules, Codecs,
                         testing::Combine(testing::ValuesIn(all_rules().begin(), all_rules().end()),
                                          testing::ValuesIn(all_regions().begin(), all_regions().end())),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) + "_" +
                                    std::get<1>(info.param).name;
                         });

// A record that no set has: big numbers with and without bounds, and more components and additions than decoders note on
// the stack.
Type wide_record() {
    static uint32_t limbs[] = {5, 1};
    static const asn1_integer least = {limbs, 1, 1, 0}, most = {limbs, 2, 2, 0};
    static std::deque<std::string> names;
    std::vector<Component> all;
    for (uint32_t i = 0; i < 140; ++i) {
        Type type = i % 3 == 0   ? keep({head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_BIG, context(i)),
                                         big(&least), big(&most)})
                    : i % 3 == 1 ? keep({head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG, context(i))})
                                 : keep({head(ASN1_KIND_OCTET_STRING, 0, context(i))});
        bool has_default = i % 3 == 1 && i < 70;
        all.push_back({type, names.emplace_back("n" + std::to_string(i)).c_str(),
                       has_default ? kDefault : kOptional, i < 70 ? 0 : ASN1_FIELD_ADDITION,
                       has_default ? big(&most) : num(0)});
    }
    return sequence(all, kExt);
}

class WideRecord : public testing::TestWithParam<Rule> {};

TEST_P(WideRecord, TellsThatMemoryRanOut) {
    static const Type type = wide_record();
    Failures failures;
    for (uint32_t seed = 1; seed <= 4; ++seed) {
        Value value(orlenta_random_valid(type, seed), {type});
        ASSERT_NE(value, nullptr);
        fail_each_way(GetParam(), type, {std::move(value), false}, &failures);
    }
    EXPECT_GT(failures.in_decoding, 40u);
}

INSTANTIATE_TEST_SUITE_P(Rules, WideRecord, testing::ValuesIn(all_rules().begin(), all_rules().end()),
                         [](const auto& info) { return std::string(info.param.name); });

// A buffer that could not grow is told of at the end.
TEST(Reports, SayThatTheBufferFailed) {
    uint8_t data[1000] = {};
    const asn1_string value = {data, sizeof data};
    for (auto encode2 : {asn1_uper_encode2, asn1_aper_encode2, asn1_oer_encode2}) {
        for_each_failed_allocation([&] {
            uint8_t* out = nullptr;
            asn1_error error = {};
            int64_t size = encode2(&out, kOctets, &value, &error);
            EXPECT_EQ(size < 0, allocator_has_failed());
            EXPECT_STREQ(error.message, allocator_has_failed() ? "not enough memory" : "");
            asn1_free(out);
        });
    }
}

// ---- values with holes ------------------------------------------------------------------------------------

class Values : public testing::TestWithParam<Region> {};

// All that can be done with a value; how many encoders take it.
int use(const asn1_type_desc* type, const void* value) {
    int taken = 0;
    for (const Rule& rule : all_rules()) taken += encode(rule, type, value).has_value();
    EXPECT_EQ(asn1_cmp_value(type, value, value), 0);
    Value copy(asn1_clone_value(type, value), {type});
    EXPECT_NE(copy, nullptr);
    EXPECT_EQ(asn1_cmp_value(type, value, copy.get()), 0);
    return taken;
}

// A copy has holes only where memory was missing, and then no encoder takes it; nor does the checker, unless the hole
// is inside an open type.
TEST_P(Values, OfFailedClonesAreRefused) {
    int with_holes = 0, refused = 0;
    for_each_sample(GetParam(), [&](const asn1_type_desc* type, const Sample& sample, uint32_t) {
        for_some_failed_allocations(kFailures, [&] {
            Value copy(asn1_clone_value(type, sample.value.get()), {type});
            EXPECT_TRUE(copy || allocator_has_failed());
            if (!copy) return;
            bool is_whole = !allocator_has_failed();
            allocator_recovers();
            EXPECT_EQ(asn1_cmp_value(type, copy.get(), sample.value.get()) == 0, is_whole);
            if (is_whole) return;
            EXPECT_EQ(use(type, copy.get()), 0);
            refused += asn1_check_constraints(type, copy.get(), nullptr) == 0;
            ++with_holes;
        });
    });
    std::printf("%d copies with holes, of which the checker refused %d\n", with_holes, refused);
    EXPECT_GE(refused, with_holes / 2);
}

// What the generator had filled when memory ran out may be legal or not.
TEST_P(Values, OfFailedGenerationsCanBeUsed) {
    int in_part = 0;
    for_each_sample(GetParam(), [&](const asn1_type_desc* type, const Sample&, uint32_t seed) {
        for_some_failed_allocations(kFailures / 4, [&] {
            Value value(asn1_random(type, seed), {type});
            bool has_failed = allocator_has_failed();
            EXPECT_TRUE(value ||
                        (has_failed && allocator_calls() == 1));  // only the first one's failure shows
            allocator_recovers();
            if (!value || !has_failed) return;
            use(type, value.get());
            asn1_check_constraints(type, value.get(), nullptr);
            ++in_part;
        });
        for_some_failed_allocations(kFailures / 4, [&] {
            Value valid(orlenta_random_valid(type, seed), {type});
            EXPECT_EQ(valid == nullptr, allocator_has_failed());
        });
    });
    std::printf("%d values filled in part\n", in_part);
}

INSTANTIATE_TEST_SUITE_P(Regions, Values, testing::ValuesIn(all_regions().begin(), all_regions().end()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orlenta::test
