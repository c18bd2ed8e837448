// SPDX-License-Identifier: Apache-2.0
// Damaged encodings: a decoder gives a sound value or a clean error.
#include <gtest/gtest.h>
#include <orlenta/check.h>
#include <orlenta/memory.h>

#include <cstdio>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "core/descriptor.hpp"
#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"

namespace orlenta::test {
namespace {

using Blob = std::vector<uint8_t>;

// Some bytes changed, or the end lost, or bytes doubled.
Blob damage(const Blob& original, std::mt19937& random) {
    Blob blob = original;
    auto below = [&](size_t n) { return random() % n; };
    for (size_t flips = below(4) + 1; flips-- > 0 && !blob.empty();) {
        blob[below(blob.size())] ^= static_cast<uint8_t>(below(2) ? 1u << below(8) : random());
    }
    if (below(4) == 0 && !blob.empty()) blob.resize(below(blob.size()));
    if (below(8) == 0) blob.insert(blob.end(), original.begin(), original.end());
    blob.shrink_to_fit();  // so that a sanitizer sees a read behind the end
    return blob;
}

struct Tally {
    int values = 0, errors = 0;
    int refused = 0;  // values that an encoder did not take
};

// A value that came from damaged bytes need not satisfy its constraints: each encoder takes or refuses it.
void encode_by_all(const asn1_type_desc* type, const void* value, Tally& tally) {
    for (const Rule& rule : all_rules()) {
        uint8_t* data = nullptr;
        int64_t size = rule.encode(&data, type, value);
        EXPECT_TRUE(size >= 0 || data == nullptr);
        tally.refused += size < 0;
        asn1_free(data);
    }
}

// Decodes and looks at all of the outcome.
void decode_damaged(const Rule& rule, const asn1_type_desc* type, const Blob& blob, Tally& tally) {
    asn1_error error = {};
    void* decoded = &error;
    int64_t used = rule.decode(&decoded, type, blob.data(), blob.size(), &error);
    if (used < 0) {
        EXPECT_EQ(used, -1);
        EXPECT_EQ(decoded, nullptr);
        ++tally.errors;
        return;
    }
    Value value(decoded, {type});
    EXPECT_NE(decoded, nullptr);
    EXPECT_LE(static_cast<uint64_t>(used), blob.size());
    asn1_check_constraints(type, decoded, &error);
    EXPECT_EQ(asn1_cmp_value(type, decoded, decoded), 0);
    encode_by_all(type, decoded, tally);
    ++tally.values;
}

class Damage : public testing::TestWithParam<std::tuple<Rule, Region>> {};

TEST_P(Damage, IsValueOrError) {
    const auto& [rule, region] = GetParam();
    std::mt19937 random(20240607);
    size_t step = region.entries.size() / 200 + 1;
    size_t rounds = 12000 * step / region.entries.size();
    Tally tally;
    for (size_t i = 0; i < region.entries.size() && !HasFailure(); i += step) {
        const TableEntry& entry = region.entries[i];
        if (kind_of(entry.type) == ASN1_KIND_OBJECT_CLASS || is_recursive(entry.type)) continue;
        SCOPED_TRACE(entry.table);
        Sample sample = make_sample(entry.type, seed_of(entry, 77));
        uint8_t* data = nullptr;
        int64_t size = rule.encode(&data, entry.type, sample.value.get());
        if (size < 0) continue;
        Blob original(data, data + size);
        asn1_free(data);
        for (size_t n = 0; n < rounds; ++n) {
            decode_damaged(rule, entry.type, damage(original, random), tally);
        }
    }
    std::printf("%s %s: %d values, %d errors; encoders refused %d\n", rule.name, region.name, tally.values,
                tally.errors, tally.refused);
    EXPECT_GT(tally.values, 100);  // few in XML, where each name stands twice
    EXPECT_GT(tally.errors, 500);
}

INSTANTIATE_TEST_SUITE_P(Rules, Damage,
                         testing::Combine(testing::ValuesIn(all_rules().begin(), all_rules().end()),
                                          testing::ValuesIn(all_regions().begin(), all_regions().end())),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) + "_" +
                                    std::get<1>(info.param).name;
                         });

}  // namespace
}  // namespace orlenta::test
