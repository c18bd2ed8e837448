// SPDX-License-Identifier: Apache-2.0
// OER encoding: values that can't be encoded, and values that the forms leave no room for.
#include <orlenta/oer.h>

#include "tests/oer/oer_types.hpp"
#include "tests/support/octet_codec.hpp"

namespace orlenta::test {
namespace {

TEST(OerEncode, RefusesImpossibleValues) {
    uint32_t third[6] = {3}, fourth = 4;
    uint8_t bytes[4] = {};
    asn1_bit_string bits = {bytes, 13};
    asn1_string string = {bytes, 3}, endless = {nullptr, UINT64_C(1) << 63};
    const asn1_word kNothing[] = {head(ASN1_KIND_CHOICE), num(0), num(8), num(0), num(4)};
    const asn1_word kInner[] = {head(ASN1_KIND_TAGGED), ref(kNothing)};
    const asn1_word kEmptyInside[] = {
        head(ASN1_KIND_CHOICE), num(1), num(16), num(0), num(8), ref(kInner), txt("inner")};
    const asn1_word kNoTag[] = {
        head(ASN1_KIND_CHOICE), num(1), num(32), num(0), num(8), ref(kAny), txt("any")};
    uint32_t first[8] = {};
    const void* nowhere = nullptr;
    const asn1_open_value lost = {kBoolean, nullptr, 0};
    const struct {
        const asn1_type_desc* type;
        const void* value;
        const char* message;
    } kCases[] = {
        {kChoice, third, "invalid choice value (3 >= 3)"},
        {kNoTag, first, "could not find choice tag"},
        {kEmptyInside, first, "could not find choice tag"},
        {kBmp, &endless, "not enough memory"},
        {kEnum, &fourth, "invalid enumerated value (4 >= 4)"},
        {kBits12, &bits, "invalid bit string size (13 expected=12)"},
        {kOctets2, &string, "invalid octet string size (3 expected=2)"},
        {kTagged<0, kBoolean, ASN1_WORD0_INDIRECT>, &nowhere, "value is missing"},
        {kAny, &lost, "value is missing"},
        {kClass, &string, ""},
    };
    for (const auto& c : kCases) {
        uint8_t* out = bytes;
        asn1_error error;
        EXPECT_EQ(asn1_oer_encode2(&out, c.type, c.value, &error), -1);
        EXPECT_EQ(out, nullptr);
        EXPECT_STREQ(error.message, c.message);
    }
}

TEST(OerEncode, LeavesWidthsAsTheyAre) {
    uint32_t number = 0x12345678;
    EXPECT_EQ(encode(asn1_oer_encode, kByte, &number), "78");  // cut off
    uint32_t limbs[] = {0x9ABCDEF0, 0x12345678, 0x11};
    asn1_integer wide = {limbs, 3, 3, 0}, negative = {limbs, 2, 2, 1};
    EXPECT_EQ(encode(asn1_oer_encode, kBigTo64, &wide), "11 12 34 56 78 9A BC DE F0");  // in full
    EXPECT_EQ(encode(asn1_oer_encode, kBigSigned32, &negative), "ED CB A9 87 65 43 21 10");
    // A sign octet above the top limb is left out.
    uint32_t top[] = {0xFFFFFFFF};
    asn1_integer unsigned_32 = {top, 1, 1, 0};
    EXPECT_EQ(encode(asn1_oer_encode, kBigSigned32, &unsigned_32), "FF FF FF FF");
    EXPECT_EQ(encode(asn1_oer_encode, kBig, &unsigned_32), "05 00 FF FF FF FF");
    // Without a value table an item's index is its number, in range or not.
    const asn1_word kPlain[] = {head(ASN1_KIND_ENUMERATED, 0, 10), num(1), txt("only")};
    uint32_t item = 200, far_item = 0x7FFFFFFF;
    EXPECT_EQ(encode(asn1_oer_encode, kPlain, &item), "82 00 C8");
    EXPECT_EQ(encode(asn1_oer_encode, kPlain, &far_item), "84 7F FF FF FF");
    uint8_t text[] = {0x61, 0x62, 0x63};
    asn1_string string = {text, 3};
    EXPECT_EQ(encode(asn1_oer_encode, kIa5Size2, &string), "61 62 63");
}

}  // namespace
}  // namespace orlenta::test
