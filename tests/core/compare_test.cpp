#include <gtest/gtest.h>
#include <math.h>
#include <orlenta/value.h>

#include "tests/core/sample.hpp"

namespace {

using namespace orlenta::test;

int sign(int n) { return (n > 0) - (n < 0); }

// Both directions, and each value against itself.
void expect_less(const asn1_word* type, const void* a, const void* b) {
    EXPECT_EQ(sign(asn1_cmp_value(type, a, b)), -1);
    EXPECT_EQ(sign(asn1_cmp_value(type, b, a)), 1);
    EXPECT_EQ(asn1_cmp_value(type, a, a), 0);
    EXPECT_EQ(asn1_cmp_value(type, b, b), 0);
}

asn1_string view(const char* text, uint64_t length) {
    return {reinterpret_cast<uint8_t*>(const_cast<char*>(text)), length};
}

TEST(Compare, IntegersByTheUnsignedRule) {
    const asn1_word from_zero[] = {head(ASN1_KIND_INTEGER, kBounds), num(0), num(0xFFFFFFFF)};
    const asn1_word extensible[] = {head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_EXTENSIBLE), num(0),
                                    num(100)};
    const asn1_word from_below[] = {head(ASN1_KIND_INTEGER, kBounds), num(-8), num(100)};
    const uint32_t one = 1, all_ones = 0xFFFFFFFF;
    expect_less(from_zero, &one, &all_ones);
    expect_less(extensible, &all_ones, &one);
    expect_less(from_below, &all_ones, &one);
    expect_less(kBoolean, &all_ones, &one);
    expect_less(kEnum, &all_ones, &one);
}

TEST(Compare, LengthsGoBeforeContents) {
    const asn1_string z = view("z", 1), ab = view("ab", 2), ac = view("ac", 2);
    for (const asn1_word* type : {kOctets, kOid, kUtf8}) {
        expect_less(type, &z, &ab);
        expect_less(type, &ab, &ac);
    }
    const asn1_string none = {};
    expect_less(kOctets, &none, &z);

    asn1_string elements[] = {z, ab, ac};
    const asn1_array first = {elements, 1}, both = {elements, 2}, others = {elements + 1, 2};
    expect_less(kList, &first, &both);
    expect_less(kList, &both, &others);

    const asn1_bit_string nine = {z.data, 1}, unused_differ = {elements[1].data, 1};
    const asn1_bit_string ten = {z.data, 2};
    expect_less(kBits, &unused_differ, &nine);
    expect_less(kBits, &nine, &ten);
}

TEST(Compare, WideStringsByCodeUnit) {
    // 0x0100 and 0x00FF, whose bytes sort the other way round
    const asn1_string low = view("\xFF\x00", 1), high = view("\x00\x01", 1);
    expect_less(kBmp, &low, &high);
    const asn1_word universal[] = {head(ASN1_KIND_CHAR_STRING), num(ASN1_STRING_UNIVERSAL), num(0)};
    const asn1_string low4 = view("\xFF\xFF\xFF\x7F", 1), high4 = view("\x00\x00\x00\x80", 1);
    expect_less(universal, &low4, &high4);
}

TEST(Compare, Choices) {
    choice_record zero = {.selector = 0, .byte = 9}, other_zero = {.selector = 0, .byte = 10};
    choice_record beyond = {.selector = 2, .byte = 1}, also_beyond = {.selector = 2, .byte = 2};
    choice_record last = {.selector = 0xFFFFFFFF, .byte = 0};
    expect_less(kChoice, &zero, &other_zero);
    expect_less(kChoice, &zero, &beyond);
    expect_less(kChoice, &beyond, &last);
    EXPECT_EQ(asn1_cmp_value(kChoice, &beyond, &also_beyond), 0);
}

TEST(Compare, OpenValues) {
    asn1_string a = view("a", 1), b = view("b", 1);
    asn1_open_value raw_a = {nullptr, a.data, 1}, raw_b = {nullptr, b.data, 1},
                    raw_long = {nullptr, a.data, 2};
    asn1_open_value typed_a = {kOctets, &a, 77}, typed_b = {kOctets, &b, 0}, lost = {kOctets, nullptr, 0};
    expect_less(kAny, &raw_a, &raw_b);
    expect_less(kAny, &raw_b, &raw_long);
    expect_less(kAny, &raw_long, &typed_a);
    expect_less(kAny, &typed_a, &typed_b);
    expect_less(kAny, &lost, &typed_a);
}

TEST(Compare, RecordsComponentByComponent) {
    sample* a = make_sample();
    sample* b = make_sample();
    EXPECT_EQ(asn1_cmp_value(kSample, a, b), 0);
    b->real = -2.25;
    expect_less(kSample, a, b);
    a->state = 7;  // behind the first difference
    expect_less(kSample, a, b);
    static_cast<asn1_string*>(b->link->data)->data[0] = 'a';
    expect_less(kSample, b, a);

    b->has_octets = 0;
    uint8_t* hidden = b->octets.data;
    b->octets.data = nullptr;
    expect_less(kSample, b, a);
    a->has_octets = 0xFFFFFFFF;  // presence words compare as signed numbers
    expect_less(kSample, a, b);
    asn1_free(hidden);
    asn1_free_value(kSample, a);
    asn1_free_value(kSample, b);
}

TEST(Compare, RealsInTotalOrder) {
    const double ascending[] = {-INFINITY, -1e300, -2.0, -1.0,  -5e-324,  -0.0, 0.0,
                                5e-324,    1.0,    2.0,  1e300, INFINITY, NAN};
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
