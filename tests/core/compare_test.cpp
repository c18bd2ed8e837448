// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <math.h>
#include <orlenta/value.h>

#include "tests/core/sample.hpp"

namespace {

using namespace orlenta::test;
using namespace std::string_view_literals;

// Both directions, and each value against itself.
void expect_less(const asn1_word* type, const void* a, const void* b, int row = -1) {
    EXPECT_LT(asn1_cmp_value(type, a, b), 0) << "row " << row;
    EXPECT_GT(asn1_cmp_value(type, b, a), 0) << "row " << row;
    EXPECT_EQ(asn1_cmp_value(type, a, a), 0) << "row " << row;
    EXPECT_EQ(asn1_cmp_value(type, b, b), 0) << "row " << row;
}

TEST(Compare, Order) {
    const asn1_word extensible[] = {head(ASN1_KIND_INTEGER, kBounds | kExt), num(0), num(100)};
    const uint32_t one = 1, all_ones = 0xFFFFFFFF;
    const asn1_string none = {}, z = view("z"), ab = view("ab"), ac = view("ac");
    asn1_string elements[] = {z, ab, ac};
    const asn1_array first = {elements, 1}, both = {elements, 2}, others = {elements + 1, 2};
    const asn1_bit_string z1 = {z.data, 1}, z2 = {z.data, 2}, a1 = {ab.data, 1};
    // 0x00FF and 0x0100, whose bytes sort the other way round
    const asn1_string low2 = view("\xFF\x00"sv, 1), high2 = view("\x00\x01"sv, 1);
    const asn1_string low4 = view("\xFF\xFF\xFF\x7F"sv, 1), high4 = view("\x00\x00\x00\x80"sv, 1);
    const choice_record t = {.selector = 1, .number = 9}, later_t = {.selector = 1, .number = 10};
    const choice_record beyond = {.selector = 3, .number = 1}, last = {.selector = 0xFFFFFFFF, .number = 0};
    asn1_string* typed = elements;
    const asn1_open_value raw_a = {nullptr, ab.data, 1}, raw_z = {nullptr, z.data, 1},
                          raw_long = {nullptr, ab.data, 2}, typed_z = {kOctets, typed, 77},
                          typed_ab = {kOctets, typed + 1, 0}, lost = {kOctets, nullptr, 0};
    const struct {
        const asn1_word* type;
        const void *less, *greater;
    } rows[] = {
        // clang-format off
        {kUint32, &one, &all_ones}, {extensible, &all_ones, &one}, {kInt32, &all_ones, &one},
        {kBoolean, &all_ones, &one}, {kEnum, &all_ones, &one},
        {kOctets, &none, &z}, {kOctets, &z, &ab}, {kOid, &z, &ab}, {kUtf8, &z, &ab}, {kUtf8, &ab, &ac},
        {kList, &first, &both}, {kList, &both, &others}, {kBits, &a1, &z1}, {kBits, &z1, &z2},
        {kBmp, &low2, &high2}, {kUniversal, &low4, &high4},
        {kChoice, &t, &later_t}, {kChoice, &t, &beyond}, {kChoice, &beyond, &last},
        {kAny, &raw_a, &raw_z}, {kAny, &raw_z, &raw_long}, {kAny, &raw_long, &typed_z},
        {kAny, &typed_z, &typed_ab}, {kAny, &lost, &typed_z},
        // clang-format on
    };
    int number = 0;
    for (const auto& row : rows) expect_less(row.type, row.less, row.greater, number++);
    const choice_record also_beyond = {.selector = 3, .number = 2};
    EXPECT_EQ(asn1_cmp_value(kChoice, &beyond, &also_beyond), 0);
}

TEST(Compare, RecordsComponentByComponent) {
    sample *a = make_sample(), *b = make_sample();
    EXPECT_EQ(asn1_cmp_value(kSample, a, b), 0);
    b->real = -2.25;
    expect_less(kSample, a, b);
    a->state = 7;  // behind the first difference
    expect_less(kSample, a, b);
    static_cast<asn1_string*>(b->link->data)->data[0] = 'a';
    expect_less(kSample, b, a);
    b->has_octets = 0;  // its octets are not looked at
    b->octets.data[0] = 'z';
    expect_less(kSample, b, a);
    a->has_octets = 0xFFFFFFFF;  // presence words compare as signed numbers
    expect_less(kSample, a, b);
    a->has_octets = b->has_octets = 1;
    asn1_free_value(kSample, a);
    asn1_free_value(kSample, b);
}

TEST(Compare, RealsInTotalOrder) {
    const double ascending[] = {-INFINITY, -2.0, -1.0, -5e-324, -0.0, 0.0, 5e-324, 1.0, 2.0, INFINITY, NAN};
    for (const double& a : ascending) {
        for (const double& b : ascending) {
            EXPECT_EQ(asn1_cmp_real(a, b), (&a > &b) - (&a < &b)) << a << " " << b;
            EXPECT_EQ(asn1_cmp_value(kReal, &a, &b), (&a > &b) - (&a < &b));
        }
    }
    EXPECT_EQ(asn1_cmp_real(-NAN, NAN), 0);
    EXPECT_EQ(asn1_cmp_real(-NAN, INFINITY), 1);
}

}  // namespace
