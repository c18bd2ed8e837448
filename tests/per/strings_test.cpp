// Strings and lists: forms of length, alignment, fragments, alphabets.
#include <limits>

#include "per/decode_items.hpp"
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

const std::vector<Range> kIa5 = {{0, 0x7F}};
const std::vector<Range> kDigits = {{' ', ' '}, {'0', '9'}};

Words octets(int64_t low, int64_t high, uint32_t flags = 0) {
    return string_of(ASN1_KIND_OCTET_STRING, low, high, flags);
}
Words bit_string(int64_t low, int64_t high, uint32_t flags = 0) {
    return string_of(ASN1_KIND_BIT_STRING, low, high, flags);
}

// A BOOLEAN first, so that alignment shows.
struct Pair {
    uint32_t flag, pad;
    asn1_string string;
};
void expect_after_bit(const Words& type, asn1_string string, const std::string& uper,
                      const std::string& aper) {
    SCOPED_TRACE(aper.substr(0, 60));
    Words pair = sequence(sizeof(Pair), {mandatory(offsetof(Pair, flag), kBoolean, "flag"),
                                         mandatory(offsetof(Pair, string), type, "string")});
    Pair value = {1, 0, string};
    expect_per(pair, &value, "1" + uper, "1" + aper);
}

TEST(PerStrings, BitStrings) {
    Bytes data;
    auto first_bits = [&](uint64_t n) {
        data = {0xA5, 0x3C, 0xFF, 0x81};
        if (n % 8 != 0) data[n / 8] &= static_cast<uint8_t>(0xFF00 >> n % 8);
        asn1_string string = str(data);
        string.length = n;
        return string;
    };
    expect_after_bit(bit_string(16, 16), first_bits(16), "xA53C", "xA53C");
    expect_after_bit(bit_string(17, 17), first_bits(17), "xA53C 1", "| xA53C 1");
    expect_after_bit(bit_string(0, 7), first_bits(0), "000", "000");
    expect_after_bit(bit_string(4, 7), first_bits(4), "00 1010", "00 | 1010");
    expect_after_bit(bit_string(0, -1), first_bits(5), "x05 10100", "| x05 10100");
    expect_after_bit(bit_string(0, 65536), first_bits(8), "x08 xA5", "| x08 xA5");
    expect_after_bit(bit_string(0, 65535), first_bits(8), "x0008 xA5", "| x0008 xA5");
    expect_after_bit(bit_string(4, 4, kExt), first_bits(4), "0 1010", "0 1010");
    expect_after_bit(bit_string(4, 4, kExt), first_bits(5), "1 x05 10100", "1 | x05 10100");
    expect_after_bit(bit_string(4, -1, kExt), first_bits(3), "1 x03 101", "1 | x03 101");
    // What lies behind the last bit in memory is not sent.
    uint8_t rubbish = 0xFF;
    asn1_bit_string three = {&rubbish, 3};
    EXPECT_EQ(hex(encoded(false, bit_string(3, 3), &three)), "xE0");
}

TEST(PerStrings, OctetStrings) {
    const Bytes data = {0xA5, 0x3C, 0xFF};
    const Bytes two = {0xA5, 0x3C};
    expect_after_bit(octets(2, 2), str(two), "xA53C", "xA53C");
    expect_after_bit(octets(3, 3), str(data), "xA53CFF", "| xA53CFF");
    expect_after_bit(octets(1, 4), str(two), "01 xA53C", "01 | xA53C");
    expect_after_bit(octets(0, -1), str(two), "x02 xA53C", "| x02 xA53C");
    expect_after_bit(octets(2, 2, kExt), str(data), "1 x03 xA53CFF", "1 | x03 xA53CFF");
    expect_after_bit({head(ASN1_KIND_RELATIVE_OID)}, str(two), "x02 xA53C", "| x02 xA53C");
    expect_after_bit(kUtf8, str(two), "x02 xA53C", "| x02 xA53C");
}

TEST(PerStrings, CharacterStrings) {
    const std::string abc = "abc", ab = "ab", a = "a", digits = "1 9", ones = "xxxx";
    expect_after_bit(char_string(ASN1_STRING_IA5, 0, -1, kIa5), str(abc), "x03 1100001 1100010 1100011",
                     "| x03 x616263");
    // Aligned where the longest string has 16 bits or more, and more than 16 for a fixed size.
    expect_after_bit(char_string(ASN1_STRING_IA5, 2, 2, kIa5), str(ab), "1100001 1100010", "x6162");
    expect_after_bit(char_string(ASN1_STRING_IA5, 1, 2, kIa5), str(ab), "1 1100001 1100010", "1 | x6162");
    expect_after_bit(char_string(ASN1_STRING_IA5, 0, 1, kIa5), str(a), "1 1100001", "1 x61");
    expect_after_bit(char_string(ASN1_STRING_IA5, 3, 3, kIa5), str(abc), "1100001 1100010 1100011",
                     "| x616263");
    // Positions in the alphabet: in both variants, or in UNALIGNED alone.
    expect_after_bit(char_string(ASN1_STRING_NUMERIC, 3, 3, kDigits), str(digits), "0010 0000 1010",
                     "0010 0000 1010");
    expect_after_bit(char_string(ASN1_STRING_IA5, 3, 3, {{'a', 'e'}}), str(abc), "000 001 010",
                     "0000 0001 0010");
    expect_after_bit(char_string(ASN1_STRING_IA5, 3, 3, {{'A', 'Z'}, {'a', 'z'}}), str(abc),
                     "011010 011011 011100", "| x616263");
    // One letter takes no bits, inside the root and outside.
    expect_after_bit(char_string(ASN1_STRING_IA5, 0, 7, {{'x', 'x'}}), str(ones), "100", "100");
    expect_after_bit(char_string(ASN1_STRING_IA5, 0, 3, {{'x', 'x'}}, kExt), str(ones), "1 x04", "1 | x04");
    // An extended length keeps the alphabet.
    expect_after_bit(char_string(ASN1_STRING_NUMERIC, 1, 2, kDigits, kExt), str(digits),
                     "1 x03 0010 0000 1010", "1 | x03 0010 0000 1010");
    // An upper bound of 64K counts as none.
    expect_after_bit(char_string(ASN1_STRING_NUMERIC, 0, 65536, kDigits), str(digits), "x03 0010 0000 1010",
                     "| x03 0010 0000 1010");
}

TEST(PerStrings, WideCharacters) {
    const uint16_t bmp[] = {0x416, 0x3042};
    const uint32_t universal[] = {0x1F600, 0x41};
    asn1_string bmp_string = {reinterpret_cast<uint8_t*>(const_cast<uint16_t*>(bmp)), 2};
    asn1_string universal_string = {reinterpret_cast<uint8_t*>(const_cast<uint32_t*>(universal)), 2};
    expect_after_bit(char_string(ASN1_STRING_BMP, 0, -1, {{0, 0xFFFF}}), bmp_string, "x02 x04163042",
                     "| x02 x04163042");
    expect_after_bit(char_string(ASN1_STRING_UNIVERSAL, 2, 2, {{0, UINT32_MAX}}), universal_string,
                     "x0001F60000000041", "| x0001F60000000041");
    // 17 bits are 32 in ALIGNED PER.
    expect_after_bit(char_string(ASN1_STRING_UNIVERSAL, 2, 2, {{0, 0x1FFFF}}), universal_string,
                     "1 1111 0110 0000 0000 00000 0000 0100 0001", "| x0001F60000000041");
    // No alphabet at all: 32 bits.
    Words no_alphabet = char_string(ASN1_STRING_UNIVERSAL, 2, 2, {});
    no_alphabet[4] = num(-1);
    expect_after_bit(no_alphabet, universal_string, "x0001F60000000041", "| x0001F60000000041");
}

TEST(PerStrings, Reals) {
    const struct {
        double value;
        const char* octets;
    } rows[] = {{0.0, "x00"},
                {-0.0, "x0143"},
                {1.0, "x03800001"},
                {-0.5, "x03C0FF01"},
                {std::numeric_limits<double>::infinity(), "x0140"},
                {std::numeric_limits<double>::denorm_min(), "x0481FBCE01"},
                {1.0 / 3, "x0980CA15555555555555"}};
    for (const auto& row : rows) expect_per(kReal, &row.value, row.octets, row.octets);
    expect_decode_error(false, kReal, "x01B0", "real: error in encoding", 16);
    expect_decode_error(false, kReal, "x0380", "reading after end of stream", 16);
}

// A string of `count` octets goes out in the largest fragments first, with a closing length even of 0.
void expect_fragments(size_t count, const std::vector<std::pair<const char*, size_t>>& pieces) {
    SCOPED_TRACE(count);
    Bytes data(count);
    for (size_t i = 0; i < count; ++i) data[i] = static_cast<uint8_t>(i * 31 + (i >> 8));
    Bytes expected;
    size_t first = 0;
    for (const auto& [marker, size] : pieces) {
        for (uint8_t byte : bits(marker)) expected.push_back(byte);
        expected.insert(expected.end(), data.begin() + static_cast<std::ptrdiff_t>(first),
                        data.begin() + static_cast<std::ptrdiff_t>(first + size));
        first += size;
    }
    asn1_string value = str(data);
    expect_variant(false, kOctets, &value, expected);
    expect_variant(true, kOctets, &value, expected);
}

TEST(PerFragments, OctetStrings) {
    expect_fragments(127, {{"x7F", 127}});
    expect_fragments(128, {{"x8080", 128}});
    expect_fragments(16383, {{"xBFFF", 16383}});
    expect_fragments(16384, {{"xC1", 16384}, {"x00", 0}});
    expect_fragments(49152 + 1, {{"xC3", 49152}, {"x01", 1}});
    expect_fragments(70000, {{"xC4", 65536}, {"x9170", 4464}});
    expect_fragments(65536 * 2 + 16384, {{"xC4", 65536}, {"xC4", 65536}, {"xC1", 16384}, {"x00", 0}});
}

// Off the octet boundary, and items that are no octets.
TEST(PerFragments, OtherItems) {
    Bytes data(40000);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(i * 7 + (i >> 7));
    Bytes head_part(data.begin(), data.begin() + 32768), tail(data.begin() + 32768, data.end());
    std::string expected = "xC2 " + hex(head_part) + " x9C40 " + hex(tail);
    expect_after_bit(kOctets, str(data), expected, "| " + expected);

    asn1_string as_bits = {data.data(), 65536 + 5};
    Bytes first_8k(data.begin(), data.begin() + 8192);
    std::string rest = " x05 00000";
    for (int i = 0; i < 5; ++i) rest[5 + i] = data[8192] >> (7 - i) & 1 ? '1' : '0';
    expect_after_bit(bit_string(0, -1), as_bits, "xC4 " + hex(first_8k) + rest,
                     "| xC4 " + hex(first_8k) + rest);

    std::string letters(16384 + 3, 'k');
    std::string sevens;
    for (int i = 0; i < 16384; ++i) sevens += "1101011";
    expect_after_bit(char_string(ASN1_STRING_IA5, 0, -1, kIa5), str(letters),
                     "xC1 " + sevens + " x03 1101011 1101011 1101011",
                     "| xC1 " + hex(Bytes(16384, 'k')) + " x03 x6B6B6B");
}

TEST(PerFragments, DecodeErrors) {
    const struct {
        const char* in;
        const char* message;
        int bit_position;
    } rows[] = {{"xC0", "invalid number of fragments", 8},
                {"xC5", "invalid number of fragments", 8},
                {"xFF", "invalid number of fragments", 8},
                {"xC1 x0102", "reading after end of stream", 24},
                {"x80", "reading after end of stream", 8}};
    for (const auto& row : rows) {
        expect_decode_error(false, kOctets, row.in, row.message, row.bit_position);
        expect_decode_error(true, kOctets, row.in, row.message, row.bit_position);
    }
    expect_decode_error(true, octets(3, -1), "x02FFFF", "string too short", 24);
    expect_decode_error(true, bit_string(9, 70000), "x08FF", "string too short", 16);
    expect_decode_error(false, char_string(ASN1_STRING_IA5, 2, -1, kIa5), "x01 1111111", "string too short",
                        15);
    expect_decode_error(false, char_string(ASN1_STRING_NUMERIC, 2, 2, kDigits), "0000 1011",
                        "character outside range", 8);
    expect_decode_error(false, char_string(ASN1_STRING_IA5, 2, 2, {}), "x00", "inconsistent number of ranges",
                        0);
    expect_decode_error(false, octets(5, 10), "111", "overflow in constrained whole number", 3);
}

int read_nothing(per::asn1_per_decoder*, uint32_t, uint32_t count, void* argument) {
    *static_cast<uint64_t*>(argument) += count;
    return 0;
}

// Items of no bits cost their sender nothing: their count must not wrap around 32 bits.
TEST(PerFragments, CountWrapsAround) {
    const struct {
        size_t fragments;
        Bytes rest;
        int result;
        uint64_t read;
    } rows[] = {{65535, {0xC3, 0xBF, 0xFF}, 0, 0xFFFFFFFF},
                {65535, {0xC4, 0x00}, -1, 0xFFFF0000},
                {65535, {0xC3, 0xC1, 0x00}, -1, 0xFFFFC000}};
    for (const auto& row : rows) {
        Bytes in(row.fragments, 0xC4);
        in.insert(in.end(), row.rest.begin(), row.rest.end());
        per::asn1_per_decoder decoder = {};
        decoder.data = in.data();
        decoder.size = in.size();
        uint64_t read = 0;
        uint32_t total = 0;
        EXPECT_EQ(per::asn1_per_decode_ulength_items(&decoder, read_nothing, &read, &total), row.result);
        EXPECT_EQ(read, row.read);
        EXPECT_EQ(total, row.result == 0 ? row.read : 0);
        EXPECT_STREQ(decoder.error.message, row.result == 0 ? "" : "not enough memory");
    }
}

TEST(PerStrings, EncodeErrors) {
    const Bytes five = {1, 2, 3, 4, 5};
    const std::string text = "12a";
    const struct {
        Words type;
        asn1_string value;
        const char* message;
        int bit_position;
    } rows[] = {
        {octets(6, -1), str(five), nullptr, 0},
        {bit_string(6, 70000), str(five), nullptr, 0},
        {octets(6, 9), str(five), "integer outside range (5 6-9)", 0},
        {octets(0, 4), str(five), "integer outside range (5 0-4)", 0},
        {octets(0, 4), {nullptr, uint64_t{1} << 32 | 2}, "integer outside range (4294967295 0-4)", 0},
        {char_string(ASN1_STRING_NUMERIC, 0, -1, kDigits), str(text), nullptr, 0},
        {char_string(ASN1_STRING_IA5, 0, 9, {}), str(text), nullptr, 0},
    };
    for (const auto& row : rows)
        expect_encode_error(false, row.type, &row.value, row.message, row.bit_position);
    // Above an upper bound that is too large to count, a length goes out.
    Bytes many(70001);
    asn1_string value = str(many);
    EXPECT_EQ(encoded(false, octets(0, 70000), &value).size(), 1 + 65536u + 2 + 4465);
}

TEST(PerStrings, EmptyOnEachPath) {
    Decoded general(false, kOctets, {0x00});
    EXPECT_EQ(general.as<asn1_string>().data, nullptr);
    Decoded constrained(false, octets(0, 4), {0x00});
    EXPECT_NE(constrained.as<asn1_string>().data, nullptr);
    EXPECT_EQ(constrained.as<asn1_string>().length, 0u);
}

TEST(PerLists, BothDirections) {
    const std::vector<uint32_t> numbers = {1, 2, 3};
    asn1_array three = {const_cast<uint32_t*>(numbers.data()), 3}, none = {nullptr, 0};
    Words element = integer(0, 7), wide = integer(0, 300);
    expect_per(list_type(0, -1, 4, element), &three, "x03 001 010 011", "x03 001 010 011");
    expect_per(list_type(0, 65536, 4, element), &three, "x03 001 010 011", "x03 001 010 011");
    expect_per(list_type(0, 65535, 4, element), &three, "x0003 001 010 011", "x0003 001 010 011");
    expect_per(list_type(3, 3, 4, element), &three, "001 010 011", "001 010 011");
    expect_per(list_type(1, 4, 4, wide), &three, "10 000000001 000000010 000000011", "10 | x000100020003");
    expect_per(list_type(0, 2, 4, element, kExt), &three, "1 x03 001 010 011", "1 | x03 001 010 011");
    expect_per(list_type(0, 3, 4, element, kExt), &three, "0 11 001 010 011", "0 11 001 010 011");
    expect_per(list_type(0, -1, 4, element), &none, "x00", "x00");
    Words set_of = list_type(0, 7, 4, element);
    set_of[0] = head(ASN1_KIND_SET_OF, kBounds);
    expect_per(set_of, &three, "011 001 010 011", "011 001 010 011");
    expect_encode_error(true, list_type(4, -1, 4, element), &three, nullptr);
    expect_encode_error(true, list_type(4, 9, 4, element), &three, "integer outside range (3 4-9)");
    expect_encode_error(false, list_type(0, -1, 4, integer(0, 2)), &three, "integer outside range (3 0-2)",
                        12, "[2]");
    expect_decode_error(false, list_type(3, -1, 4, element), "x02 000 000", "too few elements", 14);
    expect_decode_error(false, list_type(0, -1, 4, integer(0, 5)), "x02 101 111",
                        "overflow in constrained whole number", 14, "[1]");
}

TEST(PerLists, LongAndSparse) {
    std::vector<uint32_t> flags(16384 + 2);
    for (size_t i = 0; i < flags.size(); i += 3) flags[i] = 1;
    std::string ones;
    for (uint32_t flag : flags) ones += flag ? '1' : '0';
    std::string expected = "xC1 " + ones.substr(0, 16384) + " x02 " + ones.substr(16384);
    asn1_array list = {flags.data(), flags.size()};
    expect_per(list_type(0, -1, 4, kBoolean), &list, expected, expected);
    // Elements of no bits: as many as the counts say, from two octets.
    Decoded nulls(false, list_type(0, -1, 1, kNull), {0xC1, 0x00});
    EXPECT_EQ(nulls.used, 2);
    EXPECT_EQ(nulls.as<asn1_array>().count, 16384u);
    // Elements whose block could not be addressed are refused before anything is allocated.
    expect_decode_error(false, list_type(0, -1, uint64_t{1} << 33, kNull), "x02", "not enough memory", 8);
}

// A bound of 2^31 and more: a constrained count to the decoder, a general length to the encoder.
TEST(PerLists, HugeUpperBound) {
    Words huge = list_type(0, 0x80000000, 4, kBoolean);
    uint32_t flag = 1;
    asn1_array one = {&flag, 1};
    EXPECT_EQ(hex(encoded(false, huge, &one)), hex(bits("x01 1")));
    Decoded decoded(false, huge, bits("x00000001 1"));
    EXPECT_EQ(decoded.used, 5);
    EXPECT_EQ(decoded.as<asn1_array>().count, 1u);
}

}  // namespace
}  // namespace orlenta::test
