#include <gtest/gtest.h>
#include <math.h>
#include <orlenta/scalar.h>
#include <string.h>

#include <bit>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "core/object_identifier.hpp"
#include "tests/support/failing_allocator.hpp"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using namespace orlenta::test;

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }

// ---- REAL -------------------------------------------------------------------------------------------------

std::string encode(double value) {
    uint8_t out[ASN1_REAL_DER_MAX];
    return std::string(reinterpret_cast<char*>(out), asn1_encode_real_der(out, value));
}

TEST(Real, ContentsOctets) {
    const struct {
        double value;
        std::string_view contents;
    } cases[] = {{0.0, ""sv},
                 {-0.0, "\x43"sv},
                 {INFINITY, "\x40"sv},
                 {-INFINITY, "\x41"sv},
                 {NAN, "\x42"sv},
                 {1.0, "\x80\x00\x01"sv},
                 {-1.0, "\xC0\x00\x01"sv},
                 {0.5, "\x80\xFF\x01"sv},
                 {10.0, "\x80\x01\x05"sv},
                 {256.0, "\x80\x08\x01"sv},
                 {0x1p127, "\x80\x7F\x01"sv},
                 {0x1p128, "\x81\x00\x80\x01"sv},
                 {0x1p-128, "\x80\x80\x01"sv},
                 {-0x1p-129, "\xC1\xFF\x7F\x01"sv},
                 {0x1.0000000000001p0, "\x80\xCC\x10\x00\x00\x00\x00\x00\x01"sv},
                 {5e-324, "\x81\xFB\xCE\x01"sv},
                 {std::numeric_limits<double>::max(), "\x81\x03\xCB\x1F\xFF\xFF\xFF\xFF\xFF\xFF"sv}};
    for (const auto& c : cases) {
        EXPECT_EQ(encode(c.value), c.contents) << c.value;
        double back = 0.1;
        ASSERT_EQ(asn1_decode_real_ber(bytes(c.contents), c.contents.size(), &back), 0);
        EXPECT_EQ(std::bit_cast<uint64_t>(back), std::bit_cast<uint64_t>(c.value)) << c.value;
    }
    EXPECT_EQ(encode(-NAN), "\x42");
}

TEST(Real, EveryPatternComesBack) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        double value = std::bit_cast<double>(random() >> (i % 3 == 0 ? 12 : 0)), back;
        std::string contents = encode(value);
        ASSERT_EQ(asn1_decode_real_ber(bytes(contents), contents.size(), &back), 0);
        if (isnan(value)) value = NAN;
        ASSERT_EQ(std::bit_cast<uint64_t>(back), std::bit_cast<uint64_t>(value));
    }
}

TEST(Real, AcceptedBeyondDer) {
    const std::string long_mantissa = "\x80\x00"s + std::string(200, '\xFF');
    const struct {
        std::string_view contents;
        double value;
    } cases[] = {{"\x80\x00"sv, 0.0},
                 {"\xC0\x00"sv, -0.0},
                 {"\x83\x00\x01"sv, 1.0},
                 {"\x83\x04\xFF\xFF\xFF\xFE\x03"sv, 0.75},
                 {"\x90\x01\x03"sv, 24.0},  // base 8
                 {"\xA0\xFF\x20"sv, 2.0},   // base 16
                 {"\x8C\x00\x01"sv, 8.0},   // scale factor 3
                 {"\x82\x00\x00\x01\x01"sv, 2.0},
                 {"\x80\x02\x00\x00\x03"sv, 12.0},
                 {"\x83\x04\x7F\xFF\xFF\xFF\x01"sv, INFINITY},
                 {"\xE3\x04\x7F\xFF\xFF\xFF\x01"sv, -INFINITY},
                 {"\xA3\x04\x80\x00\x00\x00\x01"sv, 0.0},
                 {"\xA3\x04\x40\x00\x00\x00\x00"sv, 0.0},
                 {long_mantissa, INFINITY},
                 {"\x03"
                  "1.5"sv,
                  1.5},
                 {"\x3F"
                  "1.5"sv,
                  1.5},
                 {"\x01 -12 and more"sv, -12.0},
                 {"\x00nothing"sv, 0.0},
                 {"\x01"sv, 0.0}};
    for (const auto& c : cases) {
        double value = 0.1;
        EXPECT_EQ(asn1_decode_real_ber(bytes(c.contents), c.contents.size(), &value), 0);
        EXPECT_EQ(std::bit_cast<uint64_t>(value), std::bit_cast<uint64_t>(c.value))
            << testing::PrintToString(c.contents);
    }
}

TEST(Real, Refused) {
    const std::string decimal_of_63 = "\x03" + std::string(62, '0'),
                      decimal_of_64 = "\x03" + std::string(63, '0');
    double value = 0.1;
    for (std::string_view contents :
         {"\x44"sv, "\x7F"sv, "\xB0\x00\x01"sv, "\x80"sv, "\x81\x00"sv, "\x82\x00\x00"sv, "\x83"sv,
          "\x83\x05"sv, "\x83\x05\x00\x00\x00\x00\x00\x01"sv, "\x83\x02\x00"sv,
          "\x03"
          "1e400"sv,
          std::string_view(decimal_of_64)}) {
        EXPECT_EQ(asn1_decode_real_ber(bytes(contents), contents.size(), &value), -1)
            << testing::PrintToString(contents);
        EXPECT_EQ(value, 0.1);
    }
    EXPECT_EQ(asn1_decode_real_ber(bytes(decimal_of_63), 63, &value), 0);
}

// ---- UTF-8 ------------------------------------------------------------------------------------------------

TEST(Utf8, BothWays) {
    const struct {
        uint32_t code;
        std::string_view utf8;
    } cases[] = {{0, "\0"sv},
                 {0x7F, "\x7F"sv},
                 {0x80, "\xC2\x80"sv},
                 {0x7FF, "\xDF\xBF"sv},
                 {0x800, "\xE0\xA0\x80"sv},
                 {0xD800, "\xED\xA0\x80"sv},
                 {0xFFFF, "\xEF\xBF\xBF"sv},
                 {0x10000, "\xF0\x90\x80\x80"sv},
                 {0x10FFFF, "\xF4\x8F\xBF\xBF"sv}};
    for (const auto& c : cases) {
        uint8_t out[4];
        int size = asn1_to_utf8(out, c.code);
        EXPECT_EQ(std::string_view(reinterpret_cast<char*>(out), size), c.utf8) << c.code;
        const uint8_t* next = nullptr;
        EXPECT_EQ(asn1_from_utf8(bytes(c.utf8), c.utf8.size(), &next), static_cast<int32_t>(c.code));
        EXPECT_EQ(next, bytes(c.utf8) + c.utf8.size());
        // cut short by one byte
        if (size > 1) {
            EXPECT_EQ(asn1_from_utf8(bytes(c.utf8), c.utf8.size() - 1, &next), -1);
        }
    }
    uint8_t out[4];
    EXPECT_EQ(asn1_to_utf8(out, 0xFFFFFFFF), 4);
    EXPECT_EQ(memcmp(out, "\xF7\xBF\xBF\xBF", 4), 0);
}

TEST(Utf8, Malformed) {
    const uint8_t* next = nullptr;
    for (std::string_view in :
         {"\x80"sv, "\xBF"sv, "\xF8\x88\x80\x80\x80"sv, "\xFF"sv, "\xC3\xC1"sv, "\xC3\x7F"sv, "\xC0\x80"sv,
          "\xC1\xBF"sv, "\xE0\x9F\xBF"sv, "\xF0\x8F\xBF\xBF"sv, "\xF4\x90\x80\x80"sv, "\xF7\xBF\xBF\xBF"sv,
          "\xE2\x82\x20"sv}) {
        EXPECT_EQ(asn1_from_utf8(bytes(in), in.size(), &next), -1) << testing::PrintToString(in);
    }
    EXPECT_EQ(next, nullptr);
    EXPECT_EQ(asn1_from_utf8(bytes("\xC3\xC0"), 2, &next), 0xC0);
}

// ---- short bit strings ------------------------------------------------------------------------------------

TEST(ShortBitString, FromTheTop) {
    uint8_t data[] = {0xA5, 0xFF, 0x12, 0x34, 0x56};
    asn1_bit_string bits = {data, 0};
    uint8_t v8;
    uint16_t v16;
    uint32_t v32;
    const struct {
        uint64_t length;
        int64_t v8, v16, v32;  // negative: too long
    } cases[] = {{0, 0, 0, 0},
                 {1, 0xA5, 0xA500, 0xA5000000},
                 {8, 0xA5, 0xA500, 0xA5000000},
                 {9, -1, 0xA5FF, 0xA5FF0000},
                 {17, -1, -1, 0xA5FF1200},
                 {32, -1, -1, 0xA5FF1234},
                 {33, -1, -1, -1},
                 {0xFFFFFFFF, -1, -1, -1},
                 {(UINT64_C(1) << 32) + 8, 0xA5, 0xA500, 0xA5000000}};
    testing::internal::CaptureStderr();
    for (const auto& c : cases) {
        bits.length = c.length;
        EXPECT_EQ(asn1_conv_bitstring_8(&bits, &v8), c.v8 < 0 ? 1 : 0) << c.length;
        EXPECT_EQ(asn1_conv_bitstring_16(&bits, &v16), c.v16 < 0 ? 1 : 0) << c.length;
        EXPECT_EQ(asn1_conv_bitstring_32(&bits, &v32), c.v32 < 0 ? 1 : 0) << c.length;
        if (c.v8 >= 0) {
            EXPECT_EQ(v8, c.v8);
        }
        if (c.v16 >= 0) {
            EXPECT_EQ(v16, c.v16);
        }
        if (c.v32 >= 0) {
            EXPECT_EQ(v32, c.v32);
        }
    }
    testing::internal::GetCapturedStderr();
}

TEST(ShortBitString, Complaints) {
    uint8_t data[2] = {}, v8 = 0;
    uint16_t v16 = 0;
    asn1_bit_string nine = {data, 9}, no_data = {nullptr, 3}, empty = {nullptr, 0};
    testing::internal::CaptureStderr();
    EXPECT_EQ(asn1_conv_bitstring_8(&nine, &v8), 1);
    EXPECT_EQ(asn1_conv_bitstring_16(nullptr, &v16), 1);
    EXPECT_EQ(asn1_conv_bitstring_32(&nine, nullptr), 1);
    EXPECT_EQ(asn1_conv_bitstring_8(&no_data, &v8), 1);
    EXPECT_EQ(asn1_conv_bitstring_8(&empty, &v8), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "bitString length error! 2 instead of max. 1\n"
              "asn1_conv_bitstring_16 NULL argument\n"
              "asn1_conv_bitstring_32 NULL argument\n"
              "bitString buffer is NULL!\n");
}

// ---- object identifiers -----------------------------------------------------------------------------------

TEST(ObjectIdentifier, Text) {
    const struct {
        std::string_view text;
        bool relative;
        std::string_view contents;
        std::string_view back;
    } cases[] = {{"1.2.840"sv, false, "\x2A\x86\x48"sv, "1.2.840"sv},
                 {"  1 .\t2 . 840\n"sv, false, "\x2A\x86\x48"sv, "1.2.840"sv},
                 {"0.0"sv, false, "\0"sv, "0.0"sv},
                 {"2.39.127.128"sv, false, "\x77\x7F\x81\x00"sv, "2.39.127.128"sv},
                 {"2"sv, false, ""sv, ""sv},
                 {"2147483647"sv, true, "\x87\xFF\xFF\xFF\x7F"sv, "2147483647"sv},
                 {"3.16384.2097152.268435456"sv, true,
                  "\x03\x81\x80\x00\x81\x80\x80\x00\x81\x80\x80\x80\x00"sv, "3.16384.2097152.268435456"sv},
                 {"4294967301.+7"sv, true, "\x05\x07"sv, "5.7"sv}};
    for (const auto& c : cases) {
        asn1_string out = {nullptr, 99};
        ASSERT_EQ(asn1_parse_object_identifier(&out, c.text.data(), c.text.size(), c.relative), 0) << c.text;
        EXPECT_EQ(std::string_view(reinterpret_cast<char*>(out.data), out.length), c.contents) << c.text;
        asn1_byte_buffer buf = {};
        EXPECT_EQ(orlenta::put_object_identifier_text(&buf, &out, c.relative), 0);
        EXPECT_EQ(std::string_view(reinterpret_cast<char*>(buf.data), buf.length), c.back);
        asn1_free(buf.data);
        asn1_free(out.data);
    }
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(ObjectIdentifier, Refused) {
    asn1_string out = {nullptr, 99};
    for (std::string_view text :
         {""sv, " "sv, "."sv, "3.1"sv, "1.40"sv, "2.100"sv, "1..2"sv, "1.2."sv, "1.2.x"sv, "1.2 3"sv,
          "1.2.3,4"sv, "-1.2"sv, "1.-1"sv, "1.2.2147483648"sv, "1.2.99999999999999999999"sv, "1.2\0.3"sv}) {
        EXPECT_EQ(asn1_parse_object_identifier(&out, text.data(), text.size(), 0), -1) << text;
    }
    EXPECT_EQ(asn1_parse_object_identifier(&out, "1.2.3", 4, 0), -1);
    EXPECT_EQ(out.length, 99u);
    EXPECT_EQ(for_each_failed_allocation([&] {
                  asn1_string made = {};
                  int result = asn1_parse_object_identifier(&made, "1.2.3", 5, 0);
                  EXPECT_EQ(result, allocator_has_failed() ? -1 : 0);
                  asn1_free(made.data);
              }),
              1u);
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(ObjectIdentifier, PrintedAsStored) {
    const struct {
        std::string_view contents, text;
        int result;
    } cases[] = {{"\x78"sv, "3.0"sv, 0}, {"\x81\x34\x03"sv, "4.20.3"sv, 0}, {"\x2A\x86"sv, "1.2"sv, -1}};
    for (const auto& c : cases) {
        asn1_string contents = {const_cast<uint8_t*>(bytes(c.contents)), c.contents.size()};
        asn1_byte_buffer buf = {};
        EXPECT_EQ(orlenta::put_object_identifier_text(&buf, &contents, false), c.result);
        EXPECT_EQ(std::string_view(reinterpret_cast<char*>(buf.data), buf.length), c.text);
        asn1_free(buf.data);
    }
}

}  // namespace
