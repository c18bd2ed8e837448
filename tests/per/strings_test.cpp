// SPDX-License-Identifier: Apache-2.0
// Strings and lists: forms of length, alignment, fragments, alphabets.
#include "per/decode_items.hpp"
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

const std::vector<Letters> kAll = {{0, 0x7F}};
const std::vector<Letters> kDigits = {{' ', ' '}, {'0', '9'}};
constexpr uint32_t kIa5Kind = ASN1_STRING_IA5, kNumeric = ASN1_STRING_NUMERIC;

Type list(int64_t low, int64_t high, uint32_t flags = 0) { return list_of(kSmall, low, high, flags); }

// With a BOOLEAN before, so that alignment shows.
void expect_after_bit(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        Type pair = sequence({{kBoolean, "flag"}, {row.type, "string"}});
        std::string aper = std::string("1") + (row.aper ? row.aper : row.uper);
        value_pointer value = value_of(pair, std::string("{flag TRUE, string ") + row.value + "}");
        expect_per(pair, value.get(), std::string("1") + row.uper, aper.c_str());
    }
}

TEST(PerStrings, BitsAndOctets) {
    expect_after_bit({
        {bit_string(16, 16), "'A53C'H", "xA53C"},
        {bit_string(17, 17), "'10100101001111001'B", "| xA53C 1"},
        {bit_string(0, 7), "''B", "000"},
        {bit_string(4, 7), "'1010'B", "00 | 1010"},
        {bit_string(0, -1), "'10100'B", "| x05 10100"},
        {bit_string(0, 65536), "'A5'H", "| x08 xA5"},
        {bit_string(0, 65535), "'A5'H", "| x0008 xA5"},
        {bit_string(4, 4, kExt), "'1010'B", "0 1010"},
        {bit_string(4, 4, kExt), "'10100'B", "1 | x05 10100"},
        {bit_string(4, -1, kExt), "'101'B", "1 | x03 101"},
        {octet_string(2, 2), "'A53C'H", "xA53C"},
        {octet_string(3, 3), "'A53CFF'H", "| xA53CFF"},
        {octet_string(1, 4), "'A53C'H", "01 | xA53C"},
        {octet_string(2, 2, kExt), "'A53CFF'H", "1 | x03 xA53CFF"},
        {kRelativeOid, "5.60", "| x02 x053C"},
        {kOid, "1.2.840", "| x03 x2A8648"},
        {kUtf8, "\"\u0416\"", "| x02 xD096"},
    });
    // What lies behind the last bit in memory is not sent.
    uint8_t rubbish = 0xFF;
    asn1_bit_string three = {&rubbish, 3};
    EXPECT_EQ(encoded(kUnaligned, bit_string(3, 3), &three), octets{0xE0});
}

TEST(PerStrings, Characters) {
    constexpr uint32_t kWide = ASN1_STRING_UNIVERSAL;
    Type no_alphabet = keep({head(ASN1_KIND_CHAR_STRING, kBounds), num(kWide), num(2), num(2), num(-1)});
    const char* wide = "\"\U0001F600A\"";
    expect_after_bit({
        {char_string(kIa5Kind, 0, -1, kAll), "\"abc\"", "x03 1100001 1100010 1100011", "| x03 x616263"},
        // Aligned where the longest string has 16 bits or more, and more than 16 for a fixed size.
        {char_string(kIa5Kind, 2, 2, kAll), "\"ab\"", "1100001 1100010", "x6162"},
        {char_string(kIa5Kind, 1, 2, kAll), "\"ab\"", "1 1100001 1100010", "1 | x6162"},
        {char_string(kIa5Kind, 0, 1, kAll), "\"a\"", "1 1100001", "1 x61"},
        {char_string(kIa5Kind, 3, 3, kAll), "\"abc\"", "1100001 1100010 1100011", "| x616263"},
        // Positions in the alphabet: in both variants, or in UNALIGNED alone.
        {char_string(kNumeric, 3, 3, kDigits), "\"1 9\"", "0010 0000 1010"},
        {char_string(kIa5Kind, 3, 3, {{'a', 'e'}}), "\"abc\"", "000 001 010", "0000 0001 0010"},
        {char_string(kIa5Kind, 3, 3, {{'A', 'Z'}, {'a', 'z'}}), "\"abc\"", "011010 011011 011100",
         "| x616263"},
        // One letter takes no bits, inside the root and outside.
        {char_string(kIa5Kind, 0, 7, {{'x', 'x'}}), "\"xxxx\"", "100"},
        {char_string(kIa5Kind, 0, 3, {{'x', 'x'}}, kExt), "\"xxxx\"", "1 | x04"},
        // An extended length keeps the alphabet, and an upper bound of 64K counts as none.
        {char_string(kNumeric, 1, 2, kDigits, kExt), "\"1 9\"", "1 | x03 0010 0000 1010"},
        {char_string(kNumeric, 0, 65536, kDigits), "\"1 9\"", "| x03 0010 0000 1010"},
        {char_string(ASN1_STRING_BMP, 0, -1, {{0, 0xFFFF}}), "\"\u0416\u3042\"", "| x02 x04163042"},
        {char_string(kWide, 2, 2, {{0, UINT32_MAX}}), wide, "| x0001F60000000041"},
        // 17 bits are 32 in ALIGNED PER.
        {char_string(kWide, 2, 2, {{0, 0x1FFFF}}), wide, "1 1111 0110 0000 0000 00000 0000 0100 0001",
         "| x0001F60000000041"},
        {no_alphabet, wide, "| x0001F60000000041"},
    });
}

TEST(PerStrings, EncodeErrors) {
    for (Variant variant : kVariants) {
        expect_encode_error(variant, octet_string(6, -1), "'0102030405'H", "");
        expect_encode_error(variant, octet_string(6, 9), "'0102030405'H", "integer outside range (5 6-9)");
        expect_encode_error(variant, bit_string(6, 70000), "'01010'B", "");
        expect_encode_error(variant, char_string(kNumeric, 0, -1, kDigits), "\"12a\"", "");
        expect_encode_error(variant, char_string(kIa5Kind, 0, 9, {}), "\"12a\"", "");
        std::string early = "\"a" + std::string(20000, '1') + "\"";  // in the first of two fragments
        expect_encode_error(variant, char_string(kNumeric, 0, -1, kDigits), early.c_str(), "");
        asn1_string huge = {nullptr, uint64_t{1} << 32 | 2};
        expect_encode_error(variant, octet_string(0, 4), &huge, "integer outside range (4294967295 0-4)");
    }
}

TEST(PerStrings, DecodeErrors) {
    const char *fragments = "invalid number of fragments", *at_end = "reading after end of stream";
    expect_refused({
        {kUnaligned, kOctets, "xC0", fragments, 8},
        {kAligned, kOctets, "xC5", fragments, 8},
        {kAligned, kOctets, "xC1 x0102", at_end, 24},
        {kUnaligned, kOctets, "x80", at_end, 8},
        {kAligned, octet_string(3, -1), "x02FFFF", "string too short", 24},
        {kAligned, bit_string(9, 70000), "x08FF", "string too short", 16},
        {kUnaligned, char_string(kIa5Kind, 2, -1, kAll), "x01 1111111", "string too short", 15},
        {kUnaligned, char_string(kNumeric, 2, 2, kDigits), "0000 1011", "character outside range", 8},
        {kUnaligned, char_string(kIa5Kind, 2, 2, {}), "x00", "inconsistent number of ranges", 0},
        {kUnaligned, octet_string(5, 10), "111", "overflow in constrained whole number", 3},
    });
}

TEST(PerStrings, EmptyOnEachPath) {
    auto data_of_empty = [](Type type) {
        decoded empty = decode(asn1_uper_decode, type, {0x00});
        return static_cast<asn1_string*>(empty.value.get())->data != nullptr;
    };
    EXPECT_FALSE(data_of_empty(kOctets));
    EXPECT_TRUE(data_of_empty(octet_string(0, 4)));
}

// ---- fragments --------------------------------------------------------------------------------------------

octets pattern(size_t size) {
    octets data(size);
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<uint8_t>(i * 31 + (i >> 8));
    return data;
}
std::string digits_of(const octets& data, size_t first, size_t size) {
    auto begin = data.begin() + static_cast<std::ptrdiff_t>(first);
    return hex(octets(begin, begin + static_cast<std::ptrdiff_t>(size)));
}

// The largest fragments go first, and a closing length follows even if it is 0.
TEST(PerFragments, OctetStrings) {
    using Pieces = std::vector<std::pair<const char*, size_t>>;
    for (const Pieces& pieces : {Pieces{{"x7F", 127}}, Pieces{{"x8080", 128}}, Pieces{{"xBFFF", 16383}},
                                 Pieces{{"xC1", 16384}, {"x00", 0}}, Pieces{{"xC3", 49152}, {"x01", 1}},
                                 Pieces{{"xC4", 65536}, {"xC4", 65536}, {"xC1", 16384}, {"x9170", 4464}}}) {
        octets data = pattern(200000);
        asn1_string value = {data.data(), 0};
        std::string expected;
        for (const auto& [marker, size] : pieces) {
            expected += marker + digits_of(data, value.length, size);
            value.length += size;
        }
        expect_per(kOctets, &value, expected);
        // Above an upper bound that is too large to count, a length goes out just the same.
        EXPECT_EQ(encoded(kAligned, octet_string(0, 70000), &value), bits(expected));
    }
}

// Off the octet boundary, and items that are no octets.
TEST(PerFragments, OtherItems) {
    octets data = pattern(40000);
    std::string all = digits_of(data, 0, 40000).substr(1), sevens;
    expect_after_bit(
        {{kOctets, ("'" + all + "'H").c_str(),
          ("| xC2" + digits_of(data, 0, 32768) + "x9C40" + digits_of(data, 32768, 7232)).c_str()}});
    data.resize(8192);
    std::string as_bits = "'" + digits_of(data, 0, 8192).substr(1) + "A0'H";
    expect_after_bit({{kBits, as_bits.c_str(), ("| xC4" + hex(data) + "x08 xA0").c_str()}});
    for (int i = 0; i < 16384; ++i) sevens += "1101011";
    expect_after_bit({{char_string(kIa5Kind, 0, -1, kAll), ('"' + std::string(16384 + 1, 'k') + '"').c_str(),
                       ("xC1 " + sevens + " x01 1101011").c_str(),
                       ("| xC1" + hex(octets(16384, 'k')) + " x01 x6B").c_str()}});
}

int read_nothing(per::asn1_per_decoder*, uint32_t, uint32_t count, void* argument) {
    *static_cast<uint64_t*>(argument) += count;
    return 0;
}

// Items of no bits cost their sender nothing: their count must not wrap around 32 bits.
TEST(PerFragments, CountWrapsAround) {
    const struct {
        octets rest;
        int result;
        uint64_t read;
    } rows[] = {
        {{0xC3, 0xBF, 0xFF}, 0, 0xFFFFFFFF}, {{0xC4, 0}, -1, 0xFFFF0000}, {{0xC3, 0xC1, 0}, -1, 0xFFFFC000}};
    for (const auto& row : rows) {
        octets in(65535, 0xC4);
        for (uint8_t octet : row.rest) in.push_back(octet);
        per::asn1_per_decoder decoder = {};
        per::begin_reading(&decoder, in.data(), in.size());
        uint64_t read = 0;
        uint32_t total = 0;
        EXPECT_EQ(per::asn1_per_decode_ulength_items(&decoder, read_nothing, &read, &total), row.result);
        EXPECT_EQ(read, row.read);
        EXPECT_EQ(total, row.result == 0 ? row.read : 0);
        EXPECT_STREQ(decoder.error.message, row.result == 0 ? "" : "not enough memory");
    }
}

// ---- lists ------------------------------------------------------------------------------------------------

TEST(PerLists, BothDirections) {
    const char* three = "{1, 2, 3}";
    expect_rows({
        {list(0, 65536), three, "x03 001 010 011"},
        {list(0, 65535), three, "x0003 001 010 011"},
        {list(3, 3), three, "001 010 011"},
        {list_of(integer(0, 300), 1, 4), three, "10 000000001 000000010 000000011", "10 | x000100020003"},
        {list(0, 2, kExt), three, "1 | x03 001 010 011"},
        {list(0, 3, kExt), three, "0 11 001 010 011"},
        {list(0, -1), "{}", "x00"},
        {kOctetsSet, "{'AB'H, ''H}", "0010 x01 xAB x00", "0010 | x01 xAB x00"},
    });
    expect_encode_error(kAligned, list(4, -1), three, "");
    expect_encode_error(kAligned, list(4, 9), three, "integer outside range (3 4-9)");
    expect_refused(
        {{kUnaligned, list(3, -1), "x02 000 000", "too few elements", 14},
         // A block that could not be addressed is refused before anything is allocated.
         {kUnaligned, list_of(kNull, 0, -1, 0, uint64_t{1} << 33), "x02", "not enough memory", 8}});
}

TEST(PerLists, LongAndSparse) {
    octets set = pattern(2048);
    std::string text = "{TRUE, FALSE";
    for (int i = 0; i < 16384; ++i) text += set[i / 8] >> (7 - i % 8) & 1 ? ", TRUE" : ", FALSE";
    octets all = bits("10" + hex(set));
    expect_per(kBooleans, value_of(kBooleans, text + "}").get(),
               "xC1" + digits_of(all, 0, 2048) + " x02 " + (set[2047] & 2 ? "1" : "0") +
                   (set[2047] & 1 ? "1" : "0"));
    // Elements of no bits: as many as the counts say, from two octets.
    decoded nulls = decode(asn1_uper_decode, list_of(kNull, 0, -1, 0, 1), {0xC1, 0x00});
    EXPECT_EQ(nulls.consumed, 2);
    EXPECT_EQ(static_cast<asn1_array*>(nulls.value.get())->count, 16384u);
    // A bound of 2^31 and more: a constrained count to the decoder, a general length to the encoder.
    Type huge = list_of(kBoolean, 0, 0x80000000);
    EXPECT_EQ(encoded(kUnaligned, huge, value_of(huge, "{TRUE}").get()), bits("x01 1"));
    expect_decoded(kUnaligned, huge, "x00000001 1", "{TRUE}");
}

// Positions and indices go on from one fragment to the next.
TEST(PerLists, ErrorsInTheSecondFragment) {
    const int first = 8 + 3 * 16384 + 8;  // bits up to the elements behind the second length
    std::string bits_of_first(3 * 16384, '1'), text = "{7";
    for (int i = 1; i < 16384; ++i) text += ", 7";
    expect_encode_error(kUnaligned, list(0, -1), (text + ", 7, 9}").c_str(), "integer outside range (9 0-7)",
                        first + 3, "[16385]");
    expect_refused({{kUnaligned, list(0, -1), ("xC1 " + bits_of_first + " x03 111 111").c_str(),
                     "reading after end of stream", first + 6, "[16386]"}});
}

}  // namespace
}  // namespace orlenta::test
