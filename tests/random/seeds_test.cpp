// SPDX-License-Identifier: Apache-2.0
// The generator over the message sets: a seed's value never changes, and ends whatever the type and the stack.
#include <gtest/gtest.h>
#include <orlenta/ber.h>
#include <orlenta/check.h>
#include <orlenta/memory.h>
#include <orlenta/random.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "tests/roundtrip/values.hpp"
#include "tests/support/nesting.hpp"

namespace orlenta::test {
namespace {

constexpr uint32_t kSeeds = 300;

// Those of EU.IVI and EU.IVIM whose values meet the limit of levels.
constexpr uint32_t kEndless[] = {4,   7,   22,  27,  33,  35,  46,  59,  75,  82,  96,
                                 106, 136, 141, 144, 153, 154, 157, 169, 182, 184, 204,
                                 206, 219, 225, 238, 243, 250, 251, 254, 283};

bool is_endless(std::string_view table, uint32_t seed) {
    return table.starts_with("IVI") && std::ranges::binary_search(kEndless, seed);
}

// FNV-1a over the DER encodings of the values of all roots, which must pass the checker as well.
uint64_t hash_values(const Region& region) {
    uint64_t hash = UINT64_C(0xCBF29CE484222325);
    for (const TableEntry& root : roots_of(region)) {
        for (uint32_t seed = 0; seed < kSeeds; ++seed) {
            if (is_endless(root.table, seed)) continue;
            Value value(asn1_random(root.type, seed), {root.type});
            EXPECT_EQ(asn1_check_constraints(root.type, value.get(), nullptr), 1)
                << root.table << ", seed " << seed;
            uint8_t* der = nullptr;
            int64_t size = asn1_der_encode(&der, root.type, value.get());
            EXPECT_GT(size, 0) << root.table << ", seed " << seed;
            for (int64_t i = 0; i < size; ++i) hash = (hash ^ der[i]) * UINT64_C(0x100000001B3);
            asn1_free(der);
        }
    }
    return hash;
}

TEST(RandomSeeds, ValuesNeverChange) {
    static const struct {
        std::string_view region;
        uint64_t hash;
    } rows[] = {{"CN", UINT64_C(9243150571926339429)},
                {"EU", UINT64_C(600449914514278336)},
                {"US", UINT64_C(10491741272527095645)}};
    for (const Region& region : all_regions()) {
        for (const auto& row : rows) {
            if (row.region != region.name) continue;
            EXPECT_EQ(hash_values(region), row.hash) << region.name;
        }
    }
}

// What is cut at the limit of levels, in a thousand places of each value, is legal all the same.
TEST(RandomSeeds, EndlessValuesPassTheChecker) {
    const asn1_type_desc* type = find_type("EU", "IVIM");
    if (!type) GTEST_SKIP() << "the EU message set is not built";
    for (uint32_t seed : {4, 106, 144, 243}) {  // the smallest of them
        Value value(asn1_random(type, seed), {type});
        asn1_error error = {};
        EXPECT_EQ(asn1_check_constraints(type, value.get(), &error), 1)
            << "seed " << seed << ": " << error.path << ": " << error.message;
    }
}

Value made_on_stack(size_t stack_size, const asn1_type_desc* type, uint32_t seed) {
    void* made = nullptr;
    run_on_stack(stack_size, [&] { made = asn1_random(type, seed); });
    return Value(made, {type});
}

// A smaller stack gives the same value, or none.
TEST(RandomSeeds, StackDecidesOnlyWhetherThereIsAValue) {
    const asn1_type_desc* type = find_type("EU", "GddStructure");
    if (!type) GTEST_SKIP() << "the EU message set is not built";
    int same = 0, none = 0;
    for (uint32_t seed = 0; seed < kSeeds; ++seed) {
        Value smallest = made_on_stack(kTightStack, type, seed),
              small = made_on_stack(kSmallStack, type, seed), whole = made_on_stack(kLargeStack, type, seed);
        ASSERT_NE(whole, nullptr) << "seed " << seed;
        for (const Value* value : {&smallest, &small}) {
            ++(*value ? same : none);
            EXPECT_TRUE(!*value || asn1_cmp_value(type, whole.get(), value->get()) == 0) << "seed " << seed;
        }
    }
    EXPECT_GT(same, static_cast<int>(kSeeds) / 2);
    EXPECT_GT(none, 0);
}

}  // namespace
}  // namespace orlenta::test
