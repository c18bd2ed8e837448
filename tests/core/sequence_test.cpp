// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/value.h>

#include <string>
#include <vector>

#include "tests/support/failing_allocator.hpp"
#include "tests/support/universal_types.hpp"

namespace {

using namespace orlenta::test;

constexpr uint32_t kOpens = kAddition | ASN1_FIELD_OPENS_GROUP;
constexpr uint32_t kCloses = kAddition | ASN1_FIELD_CLOSES_GROUP;
constexpr uint32_t kAlone = kOpens | kCloses;

asn1_field component(const char* name, uint32_t flags = 0, uint32_t option = ASN1_OPTION_MANDATORY) {
    return {field(0, option, flags), ref(kIdType), num(0), txt(name)};
}

// ---- presence ---------------------------------------------------------------------------------------------

const asn1_field kFields[] = {
    component("a"),
    component("b", 0, ASN1_OPTION_OPTIONAL),
    component("c", 0, ASN1_OPTION_DEFAULT),
    component("d", kAddition, ASN1_OPTION_OPTIONAL),
    component("e", kAddition),
    component("f", kOpens, ASN1_OPTION_OPTIONAL),
    component("g", kAddition),
    component("h", kCloses, ASN1_OPTION_DEFAULT),
    component("i", kAlone, ASN1_OPTION_OPTIONAL),
    component("j", kAlone),
    component("k", kAddition, ASN1_OPTION_OPTIONAL),
    component("l", kAlone, ASN1_OPTION_OPTIONAL),
};

TEST(Presence, RulesAndReports) {
    auto missing = [](const char* name) { return std::string("component '") + name + "' must be present"; };
    auto forbidden = [](const char* name) {
        return std::string("extension '") + name +
               "' cannot be present because a previous mandatory extension was absent";
    };
    const struct {
        const char* met;
        std::string report;
    } cases[] = {{"a", ""},
                 {"abcdefghijkl", ""},
                 {"bcdefghijkl", missing("a")},
                 {"ae", ""},               // an optional addition that is absent changes nothing
                 {"ad", ""},               // a mandatory one at the end of what is there
                 {"adf", forbidden("f")},  // but not before more
                 {"adh", forbidden("h")},  // a later member of the group
                 {"adk", forbidden("k")},
                 {"aef", "extension group " + missing("g")},
                 {"aeh", "extension group " + missing("g")},
                 {"aei", forbidden("i")},   // group f..h absent as a whole, with a mandatory member
                 {"aegj", ""},              // group i absent, with none
                 {"aegk", forbidden("k")},  // group j of one mandatory component absent
                 {"aegl", forbidden("l")},
                 {"aegjl", ""}};
    for (const auto& c : cases) {
        std::vector<uint8_t> seen;
        for (const asn1_field& f : kFields) seen.push_back(strstr(c.met, f.name.text) ? 0x80 : 0);
        char msg[256] = "";
        int result = asn1_sequence_check_fields(kFields, 12, seen.data(), msg, sizeof msg);
        EXPECT_EQ(msg, c.report) << c.met;
        EXPECT_EQ(result, c.report.empty() ? 0 : -1) << c.met;
    }
    EXPECT_EQ(asn1_sequence_check_fields(kFields, 0, nullptr, nullptr, 0), 0);
    uint8_t seen = 0;
    char msg[12] = "##########";
    EXPECT_EQ(asn1_sequence_check_fields(kFields, 1, &seen, msg, 10), -1);
    EXPECT_STREQ(msg, "component");
}

// ---- defaults ---------------------------------------------------------------------------------------------

struct record {
    uint32_t first, second, third;
    asn1_integer big;
};

uint32_t limbs[2] = {0, 1};
const asn1_integer kMinus2To32 = {limbs, 2, 2, 1};
const asn1_field kDefaults[] = {
    {field(0, ASN1_OPTION_DEFAULT), ref(kIdType), num(0), txt("first")},
    {field(4, ASN1_OPTION_DEFAULT), ref(kTagged<1, kIdType>), num(-5), txt("second")},
    {field(8), ref(kIdType), num(0), txt("third")},
    {field(16, ASN1_OPTION_DEFAULT), ref(kBig), big(&kMinus2To32), txt("big")}};

TEST(Defaults, FillWhatWasNotSeen) {
    record r = {9, 9, 9, {}};
    const uint8_t seen[] = {0, 0, 0, 0}, some_seen[] = {1, 0, 0, 1};
    for_each_failed_allocation([&] {
        r.big = {};
        int result = asn1_sequence_set_default_fields(kDefaults, 4, &r, seen);
        EXPECT_EQ(result, allocator_has_failed() ? -1 : 0);
        asn1_integer_clear(&r.big);
    });
    r.big = {};
    ASSERT_EQ(asn1_sequence_set_default_fields(kDefaults, 4, &r, seen), 0);
    EXPECT_EQ(r.first, 0u);
    EXPECT_EQ(r.second, 0xFFFFFFFBu);
    EXPECT_EQ(r.third, 9u);
    EXPECT_EQ(asn1_integer_cmp(&r.big, &kMinus2To32), 0);
    for (int i : {0, 1, 3}) EXPECT_EQ(asn1_sequence_is_default_present(&r, &kDefaults[i]), 0);

    r.first = r.second = 1;
    r.big.negative = 0;
    for (int i : {0, 1, 3}) EXPECT_NE(asn1_sequence_is_default_present(&r, &kDefaults[i]), 0);
    ASSERT_EQ(asn1_sequence_set_default_fields(kDefaults, 4, &r, some_seen), 0);
    EXPECT_EQ(r.first, 1u);
    EXPECT_EQ(r.second, 0xFFFFFFFBu);
    EXPECT_EQ(r.big.negative, 0);
    asn1_integer_clear(&r.big);
}

// ---- enumerated -------------------------------------------------------------------------------------------

TEST(Enumerated, FindsTheIndex) {
    for (int value : {0, 2}) EXPECT_EQ(asn1_find_enum_index(nullptr, 3, value, 0), value);
    for (int value : {-1, 3, INT32_MIN}) EXPECT_EQ(asn1_find_enum_index(nullptr, 3, value, 0), -1);
    EXPECT_EQ(asn1_find_enum_index(nullptr, 0, 0, ASN1_WORD0_VALUE_TABLE), -1);

    // root c(7), a(-1), b(0), extension d(INT32_MAX); with and without the words that stand before the table
    for (uint32_t flags : {UINT32_C(0), ASN1_WORD0_HAS_NAME, ASN1_WORD0_HAS_NAME | ASN1_WORD0_CONSTRAINED}) {
        std::vector<asn1_word> words = {txt("c"), txt("a"), txt("b"), txt("d")};
        if ((flags & ASN1_WORD0_HAS_NAME) != 0) words.push_back(txt("Name"));
        if ((flags & ASN1_WORD0_CONSTRAINED) != 0) words.push_back(num(0));
        for (int64_t value : {7, -1, 0, INT32_MAX}) words.push_back(num(value));
        for (int64_t pair : {-1, 1, 0, 2, 7, 0, INT32_MAX, 3}) words.push_back(num(pair));
        const int32_t values[] = {7, -1, 0, INT32_MAX, 1, 8, INT32_MIN}, indexes[] = {0, 1, 2, 3, -1, -1, -1};
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(asn1_find_enum_index(words.data(), 4, values[i], flags | ASN1_WORD0_VALUE_TABLE),
                      indexes[i]);
        }
    }
}

}  // namespace
