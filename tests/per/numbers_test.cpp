// BOOLEAN, ENUMERATED and INTEGER, of 32 bits and big.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

struct Number {
    Words type;
    uint32_t value;
    const char* uper;
    const char* aper;
};

TEST(PerNumbers, BothDirections) {
    const Words unconstrained = {head(ASN1_KIND_INTEGER)};
    const Words from_5 = {head(ASN1_KIND_INTEGER, kLower), num(5)};
    const Words from_minus_5 = {head(ASN1_KIND_INTEGER, kLower), num(-5)};
    const Words to_5 = {head(ASN1_KIND_INTEGER, kUpper), num(5)};
    const Words small_ext = integer(0, 100, kExt);
    const Number rows[] = {
        {kBoolean, 1, "1", "1"},
        // Widths of a constrained number, and where ALIGNED PER turns to octets.
        {integer(0, 7), 5, "101", "101"},
        {integer(0, 1), 1, "1", "1"},
        {integer(3, 3), 3, "x00", "x00"},
        {integer(0, 254), 254, "xFE", "xFE"},
        {integer(0, 255), 0x51, "x51", "x51"},
        {integer(0, 256), 0x51, "001010001", "x0051"},
        {integer(-1, 65534), static_cast<uint32_t>(-1), "x0000", "x0000"},
        {integer(0, 65535), 0x1234, "x1234", "x1234"},
        {integer(0, 65536), 0, "x0000 0", "00 | x00"},
        {integer(0, 65536), 0x10000, "x8000 0", "10 | x010000"},
        {integer(INT32_MIN, INT32_MAX), static_cast<uint32_t>(-2), "x7FFFFFFE", "11 | x7FFFFFFE"},
        {integer(0, UINT32_MAX), 0x89ABCDEF, "x89ABCDEF", "11 | x89ABCDEF"},
        {integer(-8, 7), static_cast<uint32_t>(-3), "0101", "0101"},
        // Behind the extension marker a number is unconstrained.
        {small_ext, 100, "0 1100100", "0 1100100"},
        {small_ext, 101, "1 x0165", "1 | x0165"},
        {small_ext, static_cast<uint32_t>(-1), "1 x01FF", "1 | x01FF"},
        // One bound, or none.
        {from_5, 5, "x0100", "x0100"},
        {from_5, 5 + 0x100, "x020100", "x020100"},
        {from_5, UINT32_MAX, "x04FFFFFFFA", "x04FFFFFFFA"},
        {from_minus_5, INT32_MAX, "x0480000004", "x0480000004"},
        {to_5, static_cast<uint32_t>(-129), "x02FF7F", "x02FF7F"},
        {unconstrained, 0, "x0100", "x0100"},
        {unconstrained, 127, "x017F", "x017F"},
        {unconstrained, 128, "x020080", "x020080"},
        {unconstrained, static_cast<uint32_t>(-128), "x0180", "x0180"},
        {unconstrained, 0x7FFFFF, "x037FFFFF", "x037FFFFF"},
        {unconstrained, 0x80000000, "x0480000000", "x0480000000"},
        // Indexes of items.
        {enumerated(5, -1), 4, "100", "100"},
        {enumerated(1, -1), 0, "x00", "x00"},
        {enumerated(3, 100), 2, "0 10", "0 10"},
        {enumerated(3, 100), 3, "1 0 000000", "1 0 000000"},
        {enumerated(3, 100), 3 + 63, "1 0 111111", "1 0 111111"},
        {enumerated(3, 100), 3 + 64, "1 1 x0140", "1 1 | x0140"},
    };
    for (const Number& row : rows) {
        SCOPED_TRACE(row.uper);
        if (std::string(row.uper) != "x00") {
            expect_per(row.type, &row.value, row.uper, row.aper);
            continue;
        }
        // Nothing is sent: one octet all the same, and none is needed to decode.
        EXPECT_EQ(hex(encoded(false, row.type, &row.value)), "x00");
        Decoded decoded(false, row.type, {});
        EXPECT_EQ(decoded.used, 0);
        EXPECT_EQ(decoded.as<uint32_t>(), row.value);
    }
}

TEST(PerNumbers, EncodeErrors) {
    const Words from_5 = {head(ASN1_KIND_INTEGER, kLower), num(5)};
    const Words from_minus_5 = {head(ASN1_KIND_INTEGER, kLower), num(-5)};
    const Words to_5 = {head(ASN1_KIND_INTEGER, kUpper), num(5)};
    const struct {
        Words type;
        uint32_t value;
        const char* message;
    } rows[] = {
        {integer(2, 9), 10, "integer outside range (10 2-9)"},
        {integer(3, 3), 2, "integer outside range (2 3-3)"},
        {integer(-2, 9), static_cast<uint32_t>(-3), "integer outside range (-3 -2-9)"},
        {integer(0, 0x80000000), 0x80000001, "integer outside range (2147483649 0-2147483648)"},
        {from_5, 4, "integer < lower end (4 < 5)"},
        {from_minus_5, static_cast<uint32_t>(-6), "integer < lower end (-6 < -5)"},
        {to_5, 6, "integer < higher end (6 > 5)"},
        {enumerated(3, 2), 5, nullptr},
        {{head(ASN1_KIND_OBJECT_CLASS), num(0), txt("CLASS")}, 0, nullptr},
    };
    for (const auto& row : rows) {
        expect_encode_error(false, row.type, &row.value, row.message);
        expect_encode_error(true, row.type, &row.value, row.message);
    }
}

TEST(PerNumbers, DecodeErrors) {
    const Words unconstrained = {head(ASN1_KIND_INTEGER)};
    const Words from_5 = {head(ASN1_KIND_INTEGER, kLower), num(5)};
    const Words from_minus_5 = {head(ASN1_KIND_INTEGER, kLower), num(-5)};
    const Words to_5 = {head(ASN1_KIND_INTEGER, kUpper), num(5)};
    const char* not_canonical = "integer encoding not canonical";
    const char* not_canonical_signed = "non canonical encoding of integer";
    const struct {
        bool aligned;
        Words type;
        const char* in;
        const char* message;
        int bit_position;
    } rows[] = {
        {false, integer(0, 5), "110", "overflow in constrained whole number", 3},
        {true, integer(0, 300), "xFFFF", "overflow in constrained whole number", 16},
        {true, integer(0, 65536), "11 | xFFFFFFFF", "overflow in constrained whole number", 40},
        {false, integer(0, 511), "xFF", "reading after end of stream", 0},
        {true, integer(0, 65536), "11 | xFFFFFF", "reading after end of stream", 8},
        {false, from_5, "x00", "invalid unconstrainted length (0)", 8},
        {false, from_5, "x8005", "invalid unconstrainted length (5)", 16},
        {false, from_5, "xC1", "fragmentation is not supported", 8},
        {false, from_5, "x020001", not_canonical, 24},
        {false, from_5, "x04FFFFFFFB", "32 bit integer overflow", 40},
        {false, from_minus_5, "x0480000005", "32 bit integer overflow", 40},
        {false, to_5, "x0106", "integer < higher end (6 > 5)", 16},
        {false, unconstrained, "x02007F", not_canonical_signed, 24},
        {false, unconstrained, "x02FF80", not_canonical_signed, 24},
        {true, integer(0, 1, kExt), "1 | x03FFFFFF", not_canonical_signed, 40},
        {false, enumerated(3, -1), "11", "overflow in constrained whole number", 2},
        {true, enumerated(3, 0), "11 | x020040", not_canonical, 32},
        {false, {head(ASN1_KIND_OBJECT_CLASS), num(1)}, "x00", "unsupported type (17)", 0},
    };
    for (const auto& row : rows)
        expect_decode_error(row.aligned, row.type, row.in, row.message, row.bit_position);
}

// What a decoder takes though the encoder does not write it.
TEST(PerNumbers, DecodedLeniently) {
    const struct {
        Words type;
        const char* in;
        uint32_t value;
    } rows[] = {
        {integer(0, 100, kExt), "1 x0105", 5},         // a root number in the extended form
        {enumerated(3, 1), "1 0 000101", 3 + 5},       // an item of a later version keeps its index
        {enumerated(3, 1), "1 1 x0105", 3 + 5},        // a small index in the long form
        {{head(ASN1_KIND_INTEGER)}, "x800101", 0x01},  // a length in two octets
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.in);
        Decoded decoded(false, row.type, bits(row.in));
        ASSERT_GT(decoded.used, 0) << decoded.error.message;
        EXPECT_EQ(decoded.as<uint32_t>(), row.value);
    }
}

// ---- big integers -----------------------------------------------------------------------------------------

// A big integer from decimal text.
struct Big {
    asn1_integer value = {};
    Big(const char* text) { EXPECT_EQ(asn1_integer_from_str(&value, &text), 0); }
    ~Big() { asn1_integer_clear(&value); }
    Big(const Big&) = delete;
};

std::string to_text(const asn1_integer& value) {
    char* block;
    std::string text = asn1_integer_to_str(&value, &block, nullptr);
    asn1_free(block);
    return text;
}

// Bounds as decimal text, null for none.
struct BigType {
    Big low, high;
    Words words;
    BigType(const char* lower, const char* upper, uint32_t flags = 0)
        : low(lower ? lower : "0"), high(upper ? upper : "0") {
        words = {
            head(ASN1_KIND_INTEGER, flags | ASN1_WORD0_BIG | (lower ? kLower : 0) | (upper ? kUpper : 0))};
        if (lower) words.push_back(big(&low.value));
        if (upper) words.push_back(big(&high.value));
    }
};

TEST(PerBigNumbers, BothDirections) {
    const char* two_64 = "18446744073709551616";
    const struct {
        const char *low, *high;
        uint32_t flags;
        const char *value, *uper, *aper;
    } rows[] = {
        {nullptr, nullptr, 0, "0", "x0100", "x0100"},
        {nullptr, nullptr, 0, "-1", "x01FF", "x01FF"},
        {nullptr, nullptr, 0, "-128", "x0180", "x0180"},
        {nullptr, nullptr, 0, "-129", "x02FF7F", "x02FF7F"},
        {nullptr, nullptr, 0, "2147483647", "x047FFFFFFF", "x047FFFFFFF"},
        {nullptr, nullptr, 0, "2147483648", "x050080000000", "x050080000000"},
        {nullptr, nullptr, 0, "-4294967296", "x05FF00000000", "x05FF00000000"},
        {nullptr, nullptr, 0, "-4294967297", "x05FEFFFFFFFF", "x05FEFFFFFFFF"},
        {nullptr, nullptr, 0, two_64, "x09010000000000000000", "x09010000000000000000"},
        {nullptr, "5", 0, "-7", "x01F9", "x01F9"},
        {"10", nullptr, 0, "10", "x0100", "x0100"},
        {"-10", nullptr, 0, "4294967295", "x050100000009", "x050100000009"},
        {"10", "20", kExt, "15", "0 0101", "0 0101"},
        {"10", "20", kExt, "21", "1 x0115", "1 | x0115"},
        {"0", "255", 0, "81", "x51", "x51"},
        {"-1", "254", 0, "80", "x51", "x51"},
        {"0", "256", 0, "81", "001010001", "x0051"},
        {"0", "65535", 0, "4660", "x1234", "x1234"},
        {"0", "65536", 0, "1", "x0000 1", "00 | x01"},
        {"0", "4398046511103", 0, "4398046511103", "xFFFFFFFFFF 11", "101 | x03FFFFFFFFFF"},
        {"0", "4398046511103", 0, "256", "x0000000040 00", "001 | x0100"},
        {"1", two_64, 0, two_64, "xFFFFFFFFFFFFFFFF", "111 | xFFFFFFFFFFFFFFFF"},
        {"0", two_64, 0, two_64, "1 x0000000000000000", "1000 | x010000000000000000"},
        {"-9223372036854775808", "9223372036854775807", 0, "-1", "x7FFFFFFFFFFFFFFF",
         "111 | x7FFFFFFFFFFFFFFF"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        BigType type(row.low, row.high, row.flags);
        Big value(row.value);
        expect_per(type.words, &value.value, row.uper, row.aper);
    }
}

TEST(PerBigNumbers, OneNumberAndOutside) {
    BigType only_7("7", "7");
    Big seven("7"), eight("8");
    EXPECT_EQ(hex(encoded(false, only_7.words, &seven.value)), "x00");
    Decoded decoded(true, only_7.words, {});
    EXPECT_EQ(decoded.used, 0);
    EXPECT_EQ(to_text(decoded.as<asn1_integer>()), "0");  // nothing is read, and nothing added
    expect_encode_error(false, only_7.words, &eight.value, nullptr);
    expect_encode_error(true, BigType("9", nullptr).words, &eight.value, nullptr);
    expect_encode_error(true, BigType(nullptr, "7").words, &eight.value, nullptr);
}

TEST(PerBigNumbers, Decoding) {
    BigType unconstrained(nullptr, nullptr), from_5("5", nullptr), narrow("0", "1000"),
        wide("0", "4398046511103");
    // Octets that are not needed are taken.
    Decoded decoded(false, unconstrained.words, bits("x0900000000000000FF7F"));
    EXPECT_EQ(to_text(decoded.as<asn1_integer>()), "65407");
    const struct {
        bool aligned;
        const Words& type;
        const char* in;
        const char* message;
        int bit_position;
    } rows[] = {
        {false, unconstrained.words, "x00", "integer cannot have zero length", 8},
        {false, unconstrained.words, "xC1", "fragmentation is not supported", 8},
        {false, from_5.words, "x00", "integer cannot have zero length", 8},
        {false, narrow.words, "xFFC0", "overflow in constrained whole number", 10},
        {true, narrow.words, "x03E9", "overflow in constrained whole number", 16},
        {true, wide.words, "101 | x040000000000", "overflow in constrained whole number", 56},
        {true, wide.words, "111 | xFF", "reading after end of stream", 8},
    };
    for (const auto& row : rows)
        expect_decode_error(row.aligned, row.type, row.in, row.message, row.bit_position);
}

// A number too long for its length determinant goes out without it.
TEST(PerBigNumbers, LongerThanItsLength) {
    BigType unconstrained(nullptr, nullptr);
    std::vector<uint32_t> limbs(4096, 0x01020304);
    asn1_integer value = {limbs.data(), 4096, 4096, 0};
    EXPECT_EQ(encoded(false, unconstrained.words, &value).size(), 4096u * 4);
    value.size = 4095;
    Bytes bytes = encoded(true, unconstrained.words, &value);
    EXPECT_EQ(bytes.size(), 2 + 4095u * 4);
    Decoded decoded(true, unconstrained.words, bytes);
    ASSERT_EQ(decoded.used, static_cast<int64_t>(bytes.size()));
    EXPECT_EQ(asn1_integer_cmp(&decoded.as<asn1_integer>(), &value), 0);
}

}  // namespace
}  // namespace orlenta::test
