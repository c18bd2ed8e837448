// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/type_info.h>

#include <string>
#include <vector>

#include "tests/support/universal_types.hpp"

namespace {

using namespace orlenta::test;

// ---- open types -------------------------------------------------------------------------------------------

const asn1_word* const kByte = kIdType;
const uint32_t kOne = 1, kTwo = 2, kThree = 3, kFour = 4;

asn1_word at(const void* address) { return {.address = address}; }

const asn1_word kIdClassWithDefaults[] = {
    // clang-format off
    head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(2),
    num(ASN1_CLASS_FIELD_VALUE), ref(kByte), at(&kFour), txt("&id"),
    num(ASN1_CLASS_FIELD_TYPE), ref(kReal), num(0), txt("&Type"),
    txt("CLASS"),
    // clang-format on
};
// 1 and 3 once, 2 twice, and a row each without a value and without a type.
const asn1_word kRows[] = {at(&kOne),  ref(kBoolean), at(&kTwo), ref(kNull), at(&kTwo),
                           ref(kByte), at(&kThree),   num(0),    num(0),     ref(kNull)};

// A key of two columns, by whose values together a row is found.
const asn1_word kPairClass[] = {
    // clang-format off
    head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(3),
    num(ASN1_CLASS_FIELD_VALUE), ref(kByte), num(0), txt("&id"),
    num(ASN1_CLASS_FIELD_VALUE), ref(kByte), num(0), txt("&part"),
    num(ASN1_CLASS_FIELD_TYPE), num(0), num(0), txt("&Type"),
    txt("PAIRS"),
    // clang-format on
};
const asn1_word kPairs[] = {at(&kOne),  at(&kTwo), ref(kBoolean), at(&kOne), at(&kThree),
                            ref(kNull), at(&kTwo), at(&kThree),   ref(kReal)};

struct inner_record {
    uint32_t has_key, key;
};
struct outer_record {
    uint32_t key;
    inner_record inner;
};
const asn1_word kInner[] = {
    // clang-format off
    head(ASN1_KIND_SEQUENCE), num(2), num(sizeof(inner_record)),
    field(4, ASN1_OPTION_OPTIONAL), ref(kByte), num(0), txt("key"),
    field(4), ref(kTagged<0, kIdType>), num(0), txt("tagged"),
    // clang-format on
};
const asn1_word kOuter[] = {
    // clang-format off
    head(ASN1_KIND_SET), num(2), num(sizeof(outer_record)),
    field(0), ref(kByte), num(0), txt("key"),
    field(4), ref(kInner), num(0), txt("inner"),
    // clang-format on
};

constexpr int64_t kLast = ASN1_SELECTOR_LAST;

using selector_words = std::vector<int64_t>;

// The type that an open type with these selectors and the first `rows` rows gets, its descriptor with a name or without.
const asn1_word* pick(int64_t rows, const std::vector<selector_words>& selectors,
                      const asn1_parent_frame* frame, bool named = false) {
    std::vector<asn1_word> constraint = {num(ASN1_CONSTRAINT_TABLE),
                                         ref(kIdClassWithDefaults),
                                         num(1),
                                         ref(rows != 0 ? kRows : nullptr),
                                         num(rows),
                                         num(static_cast<int64_t>(selectors.size()))};
    for (const selector_words& selector : selectors) {
        for (int64_t word : selector) constraint.push_back(num(word));
    }
    const asn1_word any[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(constraint.data())};
    const asn1_word named_any[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED | ASN1_WORD0_HAS_NAME),
                                   txt("Name"), ref(constraint.data())};
    return asn1_get_constrained_type(frame, named ? named_any : any);
}

TEST(OpenType, KeyPicksTheRow) {
    const asn1_word* const types[] = {nullptr, kBoolean, nullptr, kReal, kNull, nullptr};
    for (uint32_t key = 1; key <= 5; ++key) {
        outer_record record = {key, {}};
        asn1_parent_frame frame = {nullptr, kOuter, &record};
        for (bool named : {false, true})
            EXPECT_EQ(pick(5, {{0, kLast, 0}}, &frame, named), types[key]) << key;
    }
    EXPECT_EQ(pick(5, {{0, kLast, 0}}, nullptr), nullptr);
}

TEST(OpenType, SelectorsFindTheirComponent) {
    outer_record record = {1, {1, 3}};
    asn1_parent_frame outer = {nullptr, kOuter, &record};
    asn1_parent_frame inner = {&outer, kInner, &record.inner};
    asn1_parent_frame not_a_record = {nullptr, kByte, &record};
    const struct {
        const char* what;
        std::vector<std::vector<int64_t>> selectors;
        const asn1_parent_frame* frame;
        uint32_t has_key;
        const asn1_word* type;
    } cases[] = {{"innermost", {{0, kLast, 0}}, &inner, 1, kReal},
                 {"absent", {{0, kLast, 0}}, &inner, 0, nullptr},
                 {"one level up", {{1, kLast, 0}}, &inner, 1, kBoolean},
                 {"beyond the outermost", {{2, kLast, 0}}, &inner, 1, nullptr},
                 {"path", {{1, 1, kLast, 0}}, &inner, 1, kReal},
                 {"path through an absent component", {{0, 1, kLast, 0}}, &outer, 0, nullptr},
                 {"index out of range", {{0, 2 | kLast, 0}}, &inner, 1, nullptr},
                 {"path index out of range", {{0, 1, 2 | kLast, 0}}, &outer, 1, nullptr},
                 {"path through what has no components", {{0, 0, kLast, 0}}, &outer, 1, nullptr},
                 {"tagged key", {{0, 1 | kLast, 0}}, &inner, 1, kReal},
                 {"frame that is no record", {{0, kLast, 0}}, &not_a_record, 1, nullptr},
                 {"type column as key", {{0, kLast, 1}}, &inner, 1, nullptr},
                 {"two that agree", {{0, kLast, 0}, {1, 1, kLast, 0}}, &inner, 1, kReal},
                 {"two that do not", {{0, kLast, 0}, {1, kLast, 0}}, &inner, 1, nullptr},
                 {"none, several rows", {}, &inner, 1, nullptr}};
    for (const auto& c : cases) {
        record.inner.has_key = c.has_key;
        EXPECT_EQ(pick(5, c.selectors, c.frame), c.type) << c.what;
    }
    EXPECT_EQ(pick(0, {{0, kLast, 0}}, &outer), nullptr);
    EXPECT_EQ(pick(1, {}, nullptr), kBoolean);
    EXPECT_EQ(asn1_get_constrained_type(&outer, kAny), nullptr);
    EXPECT_EQ(asn1_get_constrained_type(&outer, kByte), nullptr);
}

TEST(OpenType, TwoColumnsPickTheRow) {
    const asn1_word constraint[] = {num(ASN1_CONSTRAINT_TABLE),
                                    ref(kPairClass),
                                    num(2),
                                    ref(kPairs),
                                    num(3),
                                    num(2),
                                    num(0),
                                    num(1),
                                    num(kLast),
                                    num(1),  // inner.key, the second column
                                    num(0),
                                    num(kLast),
                                    num(0)};
    const asn1_word any[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(constraint)};
    const struct {
        uint32_t id, part;
        const asn1_word* type;
    } cases[] = {{1, 2, kBoolean}, {1, 3, kNull}, {2, 3, kReal}, {2, 2, nullptr}, {3, 1, nullptr}};
    for (const auto& c : cases) {
        outer_record record = {c.id, {1, c.part}};
        asn1_parent_frame frame = {nullptr, kOuter, &record};
        EXPECT_EQ(asn1_get_constrained_type(&frame, any), c.type) << c.id << " " << c.part;
    }
}

TEST(OpenType, ContainedType) {
    const asn1_word containing[] = {num(ASN1_CONSTRAINT_CONTAINING), ref(kOuter)};
    const asn1_word octets[] = {
        head(ASN1_KIND_OCTET_STRING, kLower | ASN1_WORD0_HAS_NAME | ASN1_WORD0_CONSTRAINED), num(0), txt("N"),
        ref(containing)};
    const asn1_word bits[] = {head(ASN1_KIND_BIT_STRING, kBounds | ASN1_WORD0_CONSTRAINED), num(0), num(9),
                              ref(containing)};
    const asn1_word wrong_sort[] = {head(ASN1_KIND_OCTET_STRING, ASN1_WORD0_CONSTRAINED), ref(kTable)};
    for (const asn1_word* type : {octets, bits}) EXPECT_EQ(asn1_get_containing_type(type), kOuter);
    for (const asn1_word* type : {&wrong_sort[0], &kOctets[0], kByte}) {
        EXPECT_EQ(asn1_get_containing_type(type), nullptr);
    }
}

// ---- names ------------------------------------------------------------------------------------------------

TEST(TypeName, FoundBehindTheWordsOfItsKind) {
    constexpr uint32_t name = ASN1_WORD0_HAS_NAME;
    const asn1_word t = txt("Name"), x = num(2), f = txt("?");
    const std::vector<asn1_word> types[] = {
        // clang-format off
        {head(ASN1_KIND_SEQUENCE, name), num(2), x, f, f, f, f, f, f, f, f, t},
        {head(ASN1_KIND_SET, name), num(0), x, t},
        {head(ASN1_KIND_SEQUENCE_OF, name | kLower), x, x, f, num(0), t},
        {head(ASN1_KIND_SET_OF, name | kBounds), x, x, x, f, num(0), t},
        {head(ASN1_KIND_SEQUENCE_OF, name), x, f, num(0), f, t},  // without a lower bound: one word off
        {head(ASN1_KIND_CHOICE, name), num(1), x, x, x, f, f, t},
        {head(ASN1_KIND_CHOICE, name | kExt), num(1), num(2), x, x, x, f, f, f, f, f, f, t},
        {head(ASN1_KIND_INTEGER, name), t},
        {head(ASN1_KIND_BOOLEAN, name), t},
        {head(ASN1_KIND_BIT_STRING, name | kBounds), x, x, t},
        {head(ASN1_KIND_OCTET_STRING, name | kLower | ASN1_WORD0_CONSTRAINED), x, t, f},
        {head(ASN1_KIND_ENUMERATED, name), num(2), f, f, t},
        {head(ASN1_KIND_ENUMERATED, name | kExt), num(2), num(1), f, f, f, t},
        {head(ASN1_KIND_CHAR_STRING, name | kLower), num(ASN1_STRING_UNIVERSAL), x, num(1), x, x, t},
        {head(ASN1_KIND_CHAR_STRING, name), num(ASN1_STRING_IA5), num(0), t},
        {head(ASN1_KIND_CHAR_STRING, name), num(ASN1_STRING_UTF8), t},
        {head(ASN1_KIND_ANY, name | ASN1_WORD0_CONSTRAINED), t, f},
        {head(ASN1_KIND_OBJECT_CLASS, name), num(1), f, f, f, f, t},
        // clang-format on
    };
    for (const auto& type : types) {
        const char* found = asn1_get_user_type_name(type.data());
        ASSERT_NE(found, nullptr);
        EXPECT_STREQ(found, "Name") << asn1_ctype_names[static_cast<uint32_t>(type[0].number) >> 27];
        EXPECT_EQ(asn1_get_type_name(type.data()), found);
    }
    const asn1_word tagged[] = {head(ASN1_KIND_TAGGED, name), ref(kByte), t};
    EXPECT_EQ(static_cast<const void*>(asn1_get_user_type_name(tagged)), kByte);
    const asn1_word bad_kind[] = {head(18, name), t};
    EXPECT_EQ(asn1_get_user_type_name(bad_kind), nullptr);
    EXPECT_EQ(asn1_get_user_type_name(kByte), nullptr);
}

TEST(TypeName, GenericNames) {
    const asn1_word twice[] = {head(ASN1_KIND_TAGGED), ref(kTagged<0, kIdType>)}, bad_kind[] = {head(31)};
    EXPECT_STREQ(asn1_get_type_name(kSet), "SET");
    EXPECT_STREQ(asn1_get_generic_type_name(twice), "INTEGER");
    EXPECT_STREQ(asn1_get_generic_type_name(kClass), "OBJECT_CLASS");
    EXPECT_STREQ(asn1_get_generic_type_name(kRelativeOid), "RELATIVE_OID");
    for (const asn1_word* type : {kAny, bad_kind}) EXPECT_STREQ(asn1_get_generic_type_name(type), "?");
    const struct {
        int64_t type;
        const char* name;
    } strings[] = {{0, "NumericString"}, {6, "UTF8String"}, {10, "VideotexString"}, {11, "?"}, {-1, "?"}};
    for (const auto& c : strings) {
        const asn1_word string[] = {head(ASN1_KIND_CHAR_STRING), num(c.type)};
        EXPECT_STREQ(asn1_get_generic_type_name(string), c.name);
    }
}

}  // namespace
