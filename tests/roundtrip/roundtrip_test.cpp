// SPDX-License-Identifier: Apache-2.0
// Every table of every message set, with random values, through every encoding rule and back.
#include <gtest/gtest.h>
#include <orlenta/check.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/random.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>

#include "core/descriptor.hpp"
#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"

namespace orlenta::test {
namespace {

struct Bytes {
    uint8_t* data = nullptr;
    int64_t size = 0;
    ~Bytes() { asn1_free(data); }
    bool operator==(const Bytes& other) const {
        return size == other.size &&
               (size == 0 || std::memcmp(data, other.data, static_cast<size_t>(size)) == 0);
    }
};

struct Tally {
    int through = 0;
    int refused = 0;         // by the encoder
    int not_taken_back = 0;  // raw open types that a text decoder does not read
    int huge = 0;
    int faults = 0;
};

// Sends one value through; the text of what went wrong, or empty. Random values keep to their constraints.
std::string send(const Rule& rule, const asn1_type_desc* type, const Sample& sample, Tally& tally) {
    asn1_error error = {};
    if (asn1_check_constraints(type, sample.value.get(), &error) != 1) {
        return std::string("breaks a constraint: ") + error.path + ": " + error.message;
    }
    Bytes first, second;
    first.size = rule.encode(&first.data, type, sample.value.get());
    if (first.size < 0) {
        ++tally.refused;
        return first.data ? "a refused value left a block" : "";
    }

    void* decoded = &error;
    int64_t used = rule.decode(&decoded, type, first.data, static_cast<uint64_t>(first.size), &error);
    Value value(used < 0 ? nullptr : decoded, {type});
    if (used < 0) {
        if (decoded) return "a failed decode left a value";
        if (!sample.has_raw || rule.takes_raw_back)
            return std::string("not decoded: ") + error.path + ": " + error.message;
        ++tally.not_taken_back;
        return "";
    }
    // An encoding of no bits is one zero byte in PER, of which none is used (X.691 clause 11.1).
    bool is_empty = used == 0 && first.size == 1 && first.data[0] == 0;
    if (used != first.size && !is_empty) {
        return "used " + std::to_string(used) + " of " + std::to_string(first.size) + " bytes";
    }
    if (asn1_cmp_value(type, sample.value.get(), value.get()) != 0) return "another value came back";

    second.size = rule.encode(&second.data, type, value.get());
    if (!(first == second)) return "encoded again, the bytes differ";
    ++tally.through;
    return "";
}

// Some values of a recursive type grow until the generator stops, and their text would fill the memory.
bool is_huge(const asn1_type_desc* type, const void* value) {
    if (!is_recursive(type)) return false;
    Bytes bytes;
    bytes.size = asn1_uper_encode(&bytes.data, type, value);
    return bytes.size < 0 || bytes.size > 200000;
}

class RoundTrip : public testing::TestWithParam<std::tuple<Rule, Region>> {};

TEST_P(RoundTrip, AllTypes) {
    const auto& [rule, region] = GetParam();
    uint32_t rounds = static_cast<uint32_t>(12000 / region.entries.size() + 3);
    Tally tally;
    for (const TableEntry& entry : region.entries) {
        if (kind_of(entry.type) == ASN1_KIND_OBJECT_CLASS) continue;
        uint32_t values = is_recursive(entry.type) ? 2 : rounds;  // these are large, and slow to make
        for (uint32_t round = 0; round < values; ++round) {
            uint32_t seed = seed_of(entry, round);
            Sample sample = make_sample(entry.type, seed);
            if (is_huge(entry.type, sample.value.get())) {
                ++tally.huge;
                continue;
            }
            std::string problem = send(rule, entry.type, sample, tally);
            if (problem.empty()) continue;
            ADD_FAILURE() << region.name << " " << entry.table << ", seed " << seed << ": " << problem;
            if (++tally.faults == 20) return;
        }
    }
    std::printf("%s %s: %d values through, %d refused, %d not taken back, %d huge\n", rule.name, region.name,
                tally.through, tally.refused, tally.not_taken_back, tally.huge);
    EXPECT_EQ(tally.refused, 0);
    EXPECT_LT(tally.huge, 100);
    EXPECT_GT(tally.through, 5000);
}

// Valid values pass the whole check and come back, from text too; raw bytes are left to open types without a key.
TEST_P(RoundTrip, ValidValuesOfRoots) {
    const auto& [rule, region] = GetParam();
    Tally tally;
    for (const TableEntry& entry : roots_of(region)) {
        for (uint32_t seed = 1; seed <= 30; ++seed) {
            Sample sample = {Value(orlenta_random_valid(entry.type, seed), {entry.type}),
                             kind_of(entry.type) == ASN1_KIND_ANY};
            ASSERT_TRUE(sample.value) << entry.table;
            asn1_error error = {};
            EXPECT_EQ(orlenta_check(entry.type, sample.value.get(), &error), 1)
                << entry.table << ", seed " << seed << ": " << error.path << ": " << error.message;
            EXPECT_EQ(send(rule, entry.type, sample, tally), "") << entry.table << ", seed " << seed;
            if (HasFailure() && ++tally.faults == 20) return;
        }
    }
    EXPECT_EQ(tally.refused, 0);
    EXPECT_GE(tally.through, 30);
}

INSTANTIATE_TEST_SUITE_P(Rules, RoundTrip,
                         testing::Combine(testing::ValuesIn(all_rules().begin(), all_rules().end()),
                                          testing::ValuesIn(all_regions().begin(), all_regions().end())),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) + "_" +
                                    std::get<1>(info.param).name;
                         });

}  // namespace
}  // namespace orlenta::test
