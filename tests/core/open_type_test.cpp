#include <gtest/gtest.h>
#include <orlenta/type_info.h>

#include <string>
#include <vector>

#include "tests/support/descriptors.hpp"

namespace {

using namespace orlenta::test;

// ---- open types -------------------------------------------------------------------------------------------

const asn1_word kByte[] = {head(ASN1_KIND_INTEGER, kBounds), num(0), num(255)};
const asn1_word kTaggedByte[] = {head(ASN1_KIND_TAGGED, 0, context(0)), ref(kByte)};
const asn1_word kBoolean[] = {head(ASN1_KIND_BOOLEAN)};
const asn1_word kNull[] = {head(ASN1_KIND_NULL)};
const asn1_word kReal[] = {head(ASN1_KIND_REAL)};
const uint32_t kOne = 1, kTwo = 2, kThree = 3, kFour = 4;

asn1_word at(const void* address) { return {.address = address}; }

const asn1_word kClass[] = {
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
    field(4), ref(kTaggedByte), num(0), txt("tagged"),
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

struct table {
    std::vector<asn1_word> constraint;
    std::vector<asn1_word> any;

    table(int64_t rows, const std::vector<std::vector<int64_t>>& selectors, bool named = false) {
        constraint = {
            num(ASN1_CONSTRAINT_TABLE),       ref(kClass), num(1),
            ref(rows != 0 ? kRows : nullptr), num(rows),   num(static_cast<int64_t>(selectors.size()))};
        for (const auto& selector : selectors) {
            for (int64_t word : selector) constraint.push_back(num(word));
        }
        any = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED | (named ? ASN1_WORD0_HAS_NAME : 0))};
        if (named) any.push_back(txt("Name"));
        any.push_back(ref(constraint.data()));
    }
    table(const table&) = delete;
};

TEST(OpenType, KeyPicksTheRow) {
    table types(5, {{0, 0 | kLast, 0}}), named(5, {{0, 0 | kLast, 0}}, true);
    const struct {
        uint32_t key;
        const asn1_word* type;
    } cases[] = {{1, kBoolean}, {2, nullptr}, {3, kReal}, {4, kNull}, {5, nullptr}};
    for (const auto& c : cases) {
        outer_record record = {c.key, {}};
        asn1_parent_frame frame = {nullptr, kOuter, &record};
        EXPECT_EQ(asn1_get_constrained_type(&frame, types.any.data()), c.type) << c.key;
        EXPECT_EQ(asn1_get_constrained_type(&frame, named.any.data()), c.type) << c.key;
        EXPECT_EQ(asn1_get_constrained_type(nullptr, types.any.data()), nullptr);
    }
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
    } cases[] = {{"innermost", {{0, 0 | kLast, 0}}, &inner, 1, kReal},
                 {"absent", {{0, 0 | kLast, 0}}, &inner, 0, nullptr},
                 {"one level up", {{1, 0 | kLast, 0}}, &inner, 1, kBoolean},
                 {"beyond the outermost", {{2, 0 | kLast, 0}}, &inner, 1, nullptr},
                 {"path", {{1, 1, 0 | kLast, 0}}, &inner, 1, kReal},
                 {"path through an absent component", {{0, 1, 0 | kLast, 0}}, &outer, 0, nullptr},
                 {"index out of range", {{0, 2 | kLast, 0}}, &inner, 1, nullptr},
                 {"path index out of range", {{0, 1, 2 | kLast, 0}}, &outer, 1, nullptr},
                 {"path through what has no components", {{0, 0, 0 | kLast, 0}}, &outer, 1, nullptr},
                 {"tagged key", {{0, 1 | kLast, 0}}, &inner, 1, kReal},
                 {"frame that is no record", {{0, 0 | kLast, 0}}, &not_a_record, 1, nullptr},
                 {"type column as key", {{0, 0 | kLast, 1}}, &inner, 1, nullptr},
                 {"two that agree", {{0, 0 | kLast, 0}, {1, 1, 0 | kLast, 0}}, &inner, 1, kReal},
                 {"two that do not", {{0, 0 | kLast, 0}, {1, 0 | kLast, 0}}, &inner, 1, nullptr},
                 {"none, several rows", {}, &inner, 1, nullptr}};
    for (const auto& c : cases) {
        table types(5, c.selectors);
        record.inner.has_key = c.has_key;
        EXPECT_EQ(asn1_get_constrained_type(c.frame, types.any.data()), c.type) << c.what;
    }
    table no_rows(0, {{0, 0 | kLast, 0}}), one_row(1, {});
    EXPECT_EQ(asn1_get_constrained_type(&outer, no_rows.any.data()), nullptr);
    EXPECT_EQ(asn1_get_constrained_type(nullptr, one_row.any.data()), kBoolean);
    const asn1_word unconstrained[] = {head(ASN1_KIND_ANY)};
    EXPECT_EQ(asn1_get_constrained_type(&outer, unconstrained), nullptr);
    EXPECT_EQ(asn1_get_constrained_type(&outer, kByte), nullptr);
}

TEST(OpenType, ContainedType) {
    constexpr uint32_t lower = ASN1_WORD0_HAS_LOWER, name = ASN1_WORD0_HAS_NAME,
                       object = ASN1_WORD0_CONSTRAINED;
    const asn1_word containing[] = {num(ASN1_CONSTRAINT_CONTAINING), ref(kOuter)};
    const asn1_word other[] = {num(ASN1_CONSTRAINT_TABLE), ref(kClass)};
    const asn1_word octets[] = {head(ASN1_KIND_OCTET_STRING, lower | name | object), num(0), txt("N"),
                                ref(containing)};
    const asn1_word bits[] = {head(ASN1_KIND_BIT_STRING, kBounds | object), num(0), num(9), ref(containing)};
    const asn1_word wrong_sort[] = {head(ASN1_KIND_OCTET_STRING, object), ref(other)};
    const asn1_word plain[] = {head(ASN1_KIND_OCTET_STRING, lower), num(0)};
    EXPECT_EQ(asn1_get_containing_type(octets), kOuter);
    EXPECT_EQ(asn1_get_containing_type(bits), kOuter);
    EXPECT_EQ(asn1_get_containing_type(wrong_sort), nullptr);
    EXPECT_EQ(asn1_get_containing_type(plain), nullptr);
    EXPECT_EQ(asn1_get_containing_type(kByte), nullptr);
}

// ---- names ------------------------------------------------------------------------------------------------

TEST(TypeName, FoundBehindTheWordsOfItsKind) {
    constexpr uint32_t name = ASN1_WORD0_HAS_NAME, lower = ASN1_WORD0_HAS_LOWER,
                       extensible = ASN1_WORD0_EXTENSIBLE;
    const asn1_word t = txt("Name"), x = num(2), f = txt("?");
    const std::vector<asn1_word> types[] = {
        {head(ASN1_KIND_SEQUENCE, name), num(2), x, f, f, f, f, f, f, f, f, t},
        {head(ASN1_KIND_SET, name), num(0), x, t},
        {head(ASN1_KIND_SEQUENCE_OF, name | lower), x, x, ref(kByte), num(0), t},
        {head(ASN1_KIND_SET_OF, name | kBounds), x, x, x, ref(kByte), num(0), t},
        {head(ASN1_KIND_SEQUENCE_OF, name), x, ref(kByte), num(0), f,
         t},  // without a lower bound: one word off
        {head(ASN1_KIND_CHOICE, name), num(1), x, x, x, f, f, t},
        {head(ASN1_KIND_CHOICE, name | extensible), num(1), num(2), x, x, x, f, f, f, f, f, f, t},
        {head(ASN1_KIND_INTEGER, name), t},
        {head(ASN1_KIND_INTEGER, name | kBounds), x, x, t},
        {head(ASN1_KIND_BOOLEAN, name), t},
        {head(ASN1_KIND_BIT_STRING, name | kBounds), x, x, t},
        {head(ASN1_KIND_OCTET_STRING, name | lower | ASN1_WORD0_CONSTRAINED), x, t, f},
        {head(ASN1_KIND_ENUMERATED, name), num(2), f, f, t},
        {head(ASN1_KIND_ENUMERATED, name | extensible), num(2), num(1), f, f, f, t},
        {head(ASN1_KIND_NULL, name), t},
        {head(ASN1_KIND_RELATIVE_OID, name), t},
        {head(ASN1_KIND_CHAR_STRING, name | lower), num(ASN1_STRING_UNIVERSAL), x, num(1), x, x, t},
        {head(ASN1_KIND_CHAR_STRING, name), num(ASN1_STRING_IA5), num(0), t},
        {head(ASN1_KIND_CHAR_STRING, name), num(ASN1_STRING_UTF8), t},
        {head(ASN1_KIND_ANY, name | ASN1_WORD0_CONSTRAINED), t, f},
        {head(ASN1_KIND_OBJECT_CLASS, name), num(1), f, f, f, f, t}};
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
    const asn1_word twice[] = {head(ASN1_KIND_TAGGED), ref(kTaggedByte)};
    const asn1_word any[] = {head(ASN1_KIND_ANY)}, bad_kind[] = {head(31)},
                    relative[] = {head(ASN1_KIND_RELATIVE_OID)};
    auto string = [](int64_t type) { return std::vector<asn1_word>{head(ASN1_KIND_CHAR_STRING), num(type)}; };
    EXPECT_STREQ(asn1_get_generic_type_name(twice), "INTEGER");
    EXPECT_STREQ(asn1_get_generic_type_name(kClass), "OBJECT_CLASS");
    EXPECT_STREQ(asn1_get_generic_type_name(relative), "RELATIVE_OID");
    EXPECT_STREQ(asn1_get_generic_type_name(any), "?");
    EXPECT_STREQ(asn1_get_generic_type_name(bad_kind), "?");
    EXPECT_STREQ(asn1_get_generic_type_name(string(0).data()), "NumericString");
    EXPECT_STREQ(asn1_get_generic_type_name(string(6).data()), "UTF8String");
    EXPECT_STREQ(asn1_get_generic_type_name(string(10).data()), "VideotexString");
    EXPECT_STREQ(asn1_get_generic_type_name(string(11).data()), "?");
    EXPECT_STREQ(asn1_get_generic_type_name(string(-1).data()), "?");
    EXPECT_STREQ(asn1_get_type_name(kOuter), "SET");
}

}  // namespace
