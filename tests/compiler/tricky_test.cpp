// SPDX-License-Identifier: Apache-2.0
// A schema of the user's own, compiled as a user would: odd names, recursion, records and numbers at the edge. That
// it compiles at all holds every record against its table.
#include <gtest/gtest.h>
#include <orlenta/value.h>
#include <tricky.h>

#include "core/descriptor.hpp"

using namespace orlenta;

TEST(Tricky, NamesOfMembersAndConstants) {
    asn1_Tricky_Names names = {};
    names.class_ = 200;
    names.has_int = 1;  // the presence word gives way to the component
    names.has_int_ = 1;
    names.int_ = -1;
    names.two_words = asn1_Tricky_Meeting_point_a;
    EXPECT_EQ(names.two_words, 1u);
    EXPECT_EQ(offsetof(asn1_Tricky_Names, has_int_) + 4, offsetof(asn1_Tricky_Names, int_));
    // The type Meeting-point has the plain name, the item point of Meeting another one.
    EXPECT_EQ(asn1_Tricky_Meeting_point_, 0);
    static_assert(sizeof(asn1_Tricky_Meeting_point) == 4);
    EXPECT_EQ(asn1_Tricky_Grown_first_down, 1);
    static_assert(sizeof(asn1_Tricky_Gathering) == 4);
    EXPECT_EQ(asn1_type_Tricky_Gathering, asn1_type_Tricky_Meeting);
}

TEST(Tricky, SizesAreThoseThatTheLibraryAllocates) {
    EXPECT_EQ(asn1_get_size(asn1_type_Tricky_Edges), int64_t{sizeof(asn1_Tricky_Edges)});
    EXPECT_EQ(asn1_get_size(asn1_type_Tricky_Expression), int64_t{sizeof(asn1_Tricky_Expression)});
    EXPECT_EQ(asn1_get_size(asn1_type_Tricky_Grown), int64_t{sizeof(asn1_Tricky_Grown)});
    EXPECT_EQ(asn1_get_size(asn1_type_Tricky_OnlyNulls), 1);
    EXPECT_EQ(asn1_get_size(asn1_type_Tricky_Signals), 4);
    EXPECT_EQ(list_of(asn1_type_Tricky_NullList).stride, 1u);
}

TEST(Tricky, RecursiveValuesAreLinkedByPointers) {
    asn1_Tricky_Chain last = {}, first = {};
    first.has_next = 1;
    first.next = &last;
    EXPECT_EQ(asn1_cmp_value(asn1_type_Tricky_Chain, &first, &first), 0);
    EXPECT_NE(asn1_cmp_value(asn1_type_Tricky_Chain, &first, &last), 0);

    asn1_Tricky_Expression leaves[2] = {{asn1_Tricky_Expression_constant, {.constant = 1}},
                                        {asn1_Tricky_Expression_constant, {.constant = 2}}};
    asn1_Tricky_Expression sum = {asn1_Tricky_Expression_sum, {.sum = {&leaves[0], &leaves[1]}}};
    asn1_Tricky_Expression list = {asn1_Tricky_Expression_list, {.list = {&sum, 1}}};
    void* clone = asn1_clone_value(asn1_type_Tricky_Expression, &list);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(asn1_cmp_value(asn1_type_Tricky_Expression, &list, clone), 0);
    leaves[1].u.constant = 3;
    EXPECT_NE(asn1_cmp_value(asn1_type_Tricky_Expression, &list, clone), 0);
    asn1_free_value(asn1_type_Tricky_Expression, clone);
}

TEST(Tricky, BigBoundsAndDefaults) {
    const asn1_field* edges = components(asn1_type_Tricky_Edges);
    EXPECT_FALSE(is_big_integer(field_type(&edges[0])));
    EXPECT_FALSE(is_big_integer(field_type(&edges[1])));
    asn1_integer value = {};
    big_bounds wide = big_bounds_of(field_type(&edges[3]));
    asn1_integer_set_ui64(&value, UINT64_MAX);
    EXPECT_EQ(asn1_integer_cmp(wide.upper, &value), 0);
    EXPECT_EQ(asn1_integer_cmp_si(wide.lower, 0), 0);
    EXPECT_EQ(big_bounds_of(field_type(&edges[4])).lower, nullptr);
    EXPECT_EQ(big_bounds_of(field_type(&edges[5])).upper, nullptr);

    asn1_integer_set_si64(&value, -5000000000);
    EXPECT_EQ(asn1_integer_cmp(edges[7].extra.integer, &value), 0);
    EXPECT_EQ(edges[8].extra.number, 0xFFFFFFFDu);
    // A default that a table cannot hold makes the component optional.
    EXPECT_EQ(field_option(&edges[9]), uint32_t{ASN1_OPTION_OPTIONAL});
    asn1_integer_clear(&value);
}

TEST(Tricky, ObjectSetRowsHoldKeysOfTheirType) {
    const asn1_word* constraint = any_constraint(untagged(field_type(&components(asn1_type_Tricky_Open)[1])));
    const auto* table = reinterpret_cast<const asn1_table_constraint*>(constraint);
    ASSERT_EQ(table->row_count.number, 3u);
    const asn1_word* rows = table->rows.type;
    asn1_integer key = {};
    asn1_integer_set_si64(&key, 70000000000);
    EXPECT_EQ(asn1_integer_cmp(rows[2].integer, &key), 0);
    EXPECT_EQ(rows[3].type, asn1_type_Tricky_Names);
    EXPECT_EQ(asn1_integer_cmp_si(rows[4].integer, -2), 0);
    asn1_integer_clear(&key);
    EXPECT_EQ(string_constraint(asn1_type_Tricky_Holder)[1].type, asn1_type_Tricky_Open);
}
