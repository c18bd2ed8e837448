// SPDX-License-Identifier: Apache-2.0
// BOOLEAN, ENUMERATED, REAL and INTEGER, of 32 bits and big.
#include <limits>

#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

TEST(PerNumbers, BothDirections) {
    Type small_ext = integer(0, 100, kExt), items = enumerated(3, 100);
    expect_rows({
        {kBoolean, "TRUE", "1"},
        // Widths of a constrained number, and where ALIGNED PER turns to octets.
        {integer(3, 3), "3", "x00"},
        {integer(-8, 7), "-3", "0101"},
        {integer(0, 254), "254", "xFE"},
        {integer(0, 255), "81", "x51"},
        {integer(0, 256), "81", "001010001", "x0051"},
        {integer(-1, 65534), "-1", "x0000"},
        {integer(0, 65536), "0", "x0000 0", "00 | x00"},
        {integer(0, 65536), "65536", "x8000 0", "10 | x010000"},
        {integer(INT32_MIN, INT32_MAX), "-2", "x7FFFFFFE", "11 | x7FFFFFFE"},
        {integer(0, UINT32_MAX), "2309737967", "x89ABCDEF", "11 | x89ABCDEF"},
        // Behind the extension marker a number is unconstrained.
        {small_ext, "100", "0 1100100"},
        {small_ext, "101", "1 | x0165"},
        {small_ext, "-1", "1 | x01FF"},
        // One bound, or none.
        {at_least(5), "5", "x0100"},
        {at_least(5), "4294967295", "x04FFFFFFFA"},
        {at_least(-5), "2147483647", "x0480000004"},
        {at_most(5), "-129", "x02FF7F"},
        {kInteger, "0", "x0100"},
        {kInteger, "128", "x020080"},
        {kInteger, "-128", "x0180"},
        {kInteger, "8388607", "x037FFFFF"},
        // Indexes of items.
        {enumerated(5, -1), "i4", "100"},
        {enumerated(1, -1), "i0", "x00"},
        {items, "i2", "0 10"},
        {items, "i66", "1 0 111111"},
        {items, "i67", "1 1 | x0140"},
    });
}

TEST(PerNumbers, EncodeErrors) {
    const struct {
        Type type;
        uint32_t value;
        const char* message;
    } rows[] = {
        {integer(2, 9), 10, "integer outside range (10 2-9)"},
        {integer(3, 3), 2, "integer outside range (2 3-3)"},
        {integer(-2, 9), static_cast<uint32_t>(-3), "integer outside range (-3 -2-9)"},
        {integer(0, 0x80000000), 0x80000001, "integer outside range (2147483649 0-2147483648)"},
        {at_least(5), 4, "integer < lower end (4 < 5)"},
        {at_least(-5), static_cast<uint32_t>(-6), "integer < lower end (-6 < -5)"},
        {at_most(5), 6, "integer < higher end (6 > 5)"},
        {enumerated(3, 2), 5, ""},
        {kClass, 0, ""},
    };
    for (const auto& row : rows) {
        for (Variant variant : kVariants) expect_encode_error(variant, row.type, &row.value, row.message);
    }
}

TEST(PerNumbers, DecodeErrors) {
    const char *overflow = "overflow in constrained whole number", *at_end = "reading after end of stream";
    const char *not_canonical = "integer encoding not canonical",
               *not_signed = "non canonical encoding of integer";
    expect_refused({
        {kUnaligned, integer(0, 5), "110", overflow, 3},
        {kAligned, integer(0, 300), "xFFFF", overflow, 16},
        {kAligned, integer(0, 65536), "11 | xFFFFFFFF", overflow, 40},
        {kUnaligned, integer(0, 511), "xFF", at_end, 0},
        {kAligned, integer(0, 65536), "11 | xFFFFFF", at_end, 8},
        {kUnaligned, at_least(5), "x00", "invalid unconstrainted length (0)", 8},
        {kUnaligned, at_least(5), "x8005", "invalid unconstrainted length (5)", 16},
        {kUnaligned, at_least(5), "xC1", "fragmentation is not supported", 8},
        {kUnaligned, at_least(5), "x020001", not_canonical, 24},
        {kUnaligned, at_least(5), "x04FFFFFFFB", "32 bit integer overflow", 40},
        {kUnaligned, at_least(-5), "x0480000005", "32 bit integer overflow", 40},
        {kUnaligned, at_most(5), "x0106", "integer < higher end (6 > 5)", 16},
        {kUnaligned, kInteger, "x02007F", not_signed, 24},
        {kAligned, integer(0, 1, kExt), "1 | x03FFFFFF", not_signed, 40},
        {kUnaligned, enumerated(3, -1), "11", overflow, 2},
        {kAligned, enumerated(3, 0), "11 | x020040", not_canonical, 32},
        {kUnaligned, kClass, "x00", "unsupported type (17)", 0},
    });
}

TEST(PerNumbers, DecodedLeniently) {
    expect_decoded(kUnaligned, integer(0, 100, kExt), "1 x0105", "5");  // a root number in the extended form
    expect_decoded(kUnaligned, enumerated(3, 9), "1 1 x0105", "i8");    // a small index in the long form
    expect_decoded(kUnaligned, kInteger, "x800101", "1");               // a length in two octets
    // An item of a later version keeps its index.
    decoded later = decode(asn1_uper_decode, enumerated(3, 1), bits("1 0 000101"));
    ASSERT_NE(later.value, nullptr);
    EXPECT_EQ(*static_cast<uint32_t*>(later.value.get()), 3u + 5);
}

TEST(PerNumbers, Reals) {
    const struct {
        double value;
        const char* octets;
    } rows[] = {{0.0, "x00"},
                {-0.0, "x0143"},
                {-0.5, "x03C0FF01"},
                {std::numeric_limits<double>::infinity(), "x0140"},
                {std::numeric_limits<double>::denorm_min(), "x0481FBCE01"},
                {1.0 / 3, "x0980CA15555555555555"}};
    for (const auto& row : rows) expect_per(kReal, &row.value, row.octets);
    expect_refused({{kUnaligned, kReal, "x01B0", "real: error in encoding", 16},
                    {kUnaligned, kReal, "x0380", "reading after end of stream", 16}});
}

// ---- big integers -----------------------------------------------------------------------------------------

// Bounds as decimal text, null for none.
Type big_integer(const char* low, const char* high, uint32_t flags = 0) {
    static std::deque<value_pointer> bounds;
    uint32_t given = (low ? kLower : 0) | (high ? kUpper : 0);
    Words words = {head(ASN1_KIND_INTEGER, flags | ASN1_WORD0_BIG | given)};
    for (const char* bound : {low, high}) {
        if (!bound) continue;
        words.push_back(big(static_cast<asn1_integer*>(bounds.emplace_back(value_of(kBig, bound)).get())));
    }
    return keep(words);
}

TEST(PerBigNumbers, BothDirections) {
    const char *two_42 = "4398046511103", *two_64 = "18446744073709551616";
    Type extensible = big_integer("10", "20", kExt);
    expect_rows({
        {kBig, "0", "x0100"},
        {kBig, "-128", "x0180"},
        {kBig, "-129", "x02FF7F"},
        {kBig, "2147483647", "x047FFFFFFF"},
        {kBig, "2147483648", "x050080000000"},
        {kBig, "-4294967296", "x05FF00000000"},
        {kBig, "-4294967297", "x05FEFFFFFFFF"},
        {kBig, two_64, "x09010000000000000000"},
        {big_integer(nullptr, "5"), "-7", "x01F9"},
        {big_integer("10", nullptr), "10", "x0100"},
        {big_integer("-10", nullptr), "4294967295", "x050100000009"},
        {extensible, "15", "0 0101"},
        {extensible, "21", "1 | x0115"},
        {big_integer("-1", "254"), "80", "x51"},
        {big_integer("0", "256"), "81", "001010001", "x0051"},
        {big_integer("0", "65535"), "4660", "x1234"},
        {big_integer("0", "65536"), "1", "x0000 1", "00 | x01"},
        {big_integer("0", two_42), two_42, "xFFFFFFFFFF 11", "101 | x03FFFFFFFFFF"},
        {big_integer("0", two_42), "256", "x0000000040 00", "001 | x0100"},
        {big_integer("1", two_64), two_64, "xFFFFFFFFFFFFFFFF", "111 | xFFFFFFFFFFFFFFFF"},
        {big_integer("0", two_64), two_64, "1 x0000000000000000", "1000 | x010000000000000000"},
        {big_integer("-9223372036854775808", "9223372036854775807"), "-1", "x7FFFFFFFFFFFFFFF",
         "111 | x7FFFFFFFFFFFFFFF"},
        {big_integer("7", "7"), "7", "x00"},
    });
}

TEST(PerBigNumbers, OutsideAndLenient) {
    for (Type type : {big_integer("7", "7"), big_integer("9", nullptr), big_integer(nullptr, "7")}) {
        expect_encode_error(kAligned, type, "8", "");
    }
    expect_decoded(kAligned, big_integer("7", "7"), "", "0");            // nothing is read, and nothing added
    expect_decoded(kUnaligned, kBig, "x0900000000000000FF7F", "65407");  // octets that are not needed
    Type from_5 = big_integer("5", nullptr), narrow = big_integer("0", "1000");
    Type wide = big_integer("0", "4398046511103");
    const char* overflow = "overflow in constrained whole number";
    expect_refused({
        {kUnaligned, kBig, "x00", "integer cannot have zero length", 8},
        {kUnaligned, kBig, "xC1", "fragmentation is not supported", 8},
        {kUnaligned, from_5, "x00", "integer cannot have zero length", 8},
        {kUnaligned, narrow, "xFFC0", overflow, 10},
        {kAligned, narrow, "x03E9", overflow, 16},
        {kAligned, wide, "101 | x040000000000", overflow, 56},
        {kAligned, wide, "111 | xFF", "reading after end of stream", 8},
    });
}

// A number too long for its length determinant goes out without it.
TEST(PerBigNumbers, LongerThanItsLength) {
    std::vector<uint32_t> limbs(4096, 0x01020304);
    asn1_integer value = {limbs.data(), 4096, 4096, 0};
    EXPECT_EQ(encoded(kUnaligned, kBig, &value).size(), 4096u * 4);
    value.size = 4095;
    std::string digits;
    for (uint32_t i = 0; i < value.size; ++i) digits += "01020304";
    expect_per(kBig, &value, "xBFFC" + digits);
}

}  // namespace
}  // namespace orlenta::test
