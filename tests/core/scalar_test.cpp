// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <math.h>
#include <orlenta/scalar.h>
#include <string.h>

#include <bit>
#include <limits>
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

// DER writes these contents, and they read back.
const struct {
    double value;
    std::string_view contents;
} kReals[] = {
    // clang-format off
    {0.0, ""sv}, {-0.0, "\x43"sv}, {INFINITY, "\x40"sv}, {-INFINITY, "\x41"sv}, {NAN, "\x42"sv},
    {-1.0, "\xC0\x00\x01"sv}, {0.5, "\x80\xFF\x01"sv}, {10.0, "\x80\x01\x05"sv}, {0x1p127, "\x80\x7F\x01"sv},
    {0x1p128, "\x81\x00\x80\x01"sv}, {0x1p-128, "\x80\x80\x01"sv}, {-0x1p-129, "\xC1\xFF\x7F\x01"sv},
    {0x1.0000000000001p0, "\x80\xCC\x10\x00\x00\x00\x00\x00\x01"sv}, {5e-324, "\x81\xFB\xCE\x01"sv},
    {std::numeric_limits<double>::max(), "\x81\x03\xCB\x1F\xFF\xFF\xFF\xFF\xFF\xFF"sv},
    // clang-format on
};

const std::string kLongMantissa = "\x80\x00"s + std::string(200, '\xFF');
const std::string kDecimalOf62 = "\x03" + std::string(62, '0'), kDecimalOf63 = kDecimalOf62 + "0";

// What BER reads beyond that: other bases, long exponents, leading zeros, over- and underflow, decimals.
const struct {
    double value;
    std::string_view contents;
} kReadOnly[] = {
    // clang-format off
    {0.0, "\x80\x00"sv}, {-0.0, "\xC0\x00"sv}, {1.0, "\x83\x00\x01"sv}, {0.75, "\x83\x04\xFF\xFF\xFF\xFE\x03"sv},
    {24.0, "\x90\x01\x03"sv}, {2.0, "\xA0\xFF\x20"sv}, {8.0, "\x8C\x00\x01"sv}, {2.0, "\x82\x00\x00\x01\x01"sv},
    {INFINITY, "\x83\x04\x7F\xFF\xFF\xFF\x01"sv}, {-INFINITY, "\xE3\x04\x7F\xFF\xFF\xFF\x01"sv},
    {0.0, "\xA3\x04\x80\x00\x00\x00\x01"sv}, {INFINITY, kLongMantissa}, {1.5, "\x03" "1.5"sv},
    {1.5, "\x3F" "1.5"sv}, {-12.0, "\x01 -12 and more"sv}, {0.0, "\x00nothing"sv}, {0.0, "\x01"sv},
    {0.0, kDecimalOf62},
    // clang-format on
};

TEST(Real, ContentsOctets) {
    auto expect_read = [](std::string_view contents, double value) {
        double back = 0.1;
        EXPECT_EQ(asn1_decode_real_ber(bytes(contents), contents.size(), &back), 0);
        EXPECT_EQ(std::bit_cast<uint64_t>(back), std::bit_cast<uint64_t>(value))
            << testing::PrintToString(contents);
    };
    for (const auto& c : kReals) {
        EXPECT_EQ(encode(c.value), c.contents) << c.value;
        expect_read(c.contents, c.value);
    }
    EXPECT_EQ(encode(-NAN), "\x42");
    for (const auto& c : kReadOnly) expect_read(c.contents, c.value);
    double value = 0.1;
    for (std::string_view contents : {"\x44"sv, "\x7F"sv, "\xB0\x00\x01"sv, "\x80"sv, "\x81\x00"sv, "\x83"sv,
                                      "\x83\x05"sv, "\x83\x05\x00\x00\x00\x00\x00\x01"sv, "\x83\x02\x00"sv,
                                      "\x03"
                                      "1e400"sv,
                                      std::string_view(kDecimalOf63)}) {
        EXPECT_EQ(asn1_decode_real_ber(bytes(contents), contents.size(), &value), -1)
            << testing::PrintToString(contents);
        EXPECT_EQ(value, 0.1);
    }
}

// ---- UTF-8 ------------------------------------------------------------------------------------------------

TEST(Utf8, BothWays) {
    const struct {
        uint32_t code;
        std::string_view utf8;
    } cases[] = {
        // clang-format off
        {0, "\0"sv}, {0x7F, "\x7F"sv}, {0x80, "\xC2\x80"sv}, {0x7FF, "\xDF\xBF"sv}, {0x800, "\xE0\xA0\x80"sv},
        {0xD800, "\xED\xA0\x80"sv}, {0xFFFF, "\xEF\xBF\xBF"sv}, {0x10000, "\xF0\x90\x80\x80"sv},
        {0x10FFFF, "\xF4\x8F\xBF\xBF"sv},
        // clang-format on
    };
    uint8_t out[4];
    for (const auto& c : cases) {
        size_t size = asn1_to_utf8(out, c.code);
        EXPECT_EQ(std::string_view(reinterpret_cast<char*>(out), size), c.utf8) << c.code;
        const uint8_t *end = bytes(c.utf8) + size, *next = nullptr;
        EXPECT_EQ(asn1_from_utf8(bytes(c.utf8), size, &next), static_cast<int32_t>(c.code));
        EXPECT_EQ(next, end);
        // cut short by one byte
        EXPECT_TRUE(size == 1 || asn1_from_utf8(bytes(c.utf8), size - 1, &next) == -1) << c.code;
    }
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
    uint8_t v8 = 0;
    uint16_t v16 = 0;
    uint32_t v32 = 0;
    const struct {
        uint64_t length;
        int64_t v8, v16, v32;  // -1: too long
    } cases[] = {{0, 0, 0, 0},
                 {1, 0xA5, 0xA500, 0xA5000000},
                 {8, 0xA5, 0xA500, 0xA5000000},
                 {9, -1, 0xA5FF, 0xA5FF0000},
                 {17, -1, -1, 0xA5FF1200},
                 {33, -1, -1, -1},
                 {0xFFFFFFFF, -1, -1, -1},
                 {(UINT64_C(1) << 32) + 8, 0xA5, 0xA500, 0xA5000000}};
    testing::internal::CaptureStderr();
    for (const auto& c : cases) {
        asn1_bit_string bits = {data, c.length};
        EXPECT_EQ(asn1_conv_bitstring_8(&bits, &v8) != 0 ? -1 : v8, c.v8) << c.length;
        EXPECT_EQ(asn1_conv_bitstring_16(&bits, &v16) != 0 ? -1 : v16, c.v16) << c.length;
        EXPECT_EQ(asn1_conv_bitstring_32(&bits, &v32) != 0 ? -1 : int64_t{v32}, c.v32) << c.length;
    }
    testing::internal::GetCapturedStderr();

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

int print(std::string_view contents, bool relative, std::string* text) {
    asn1_string value = {const_cast<uint8_t*>(bytes(contents)), contents.size()};
    asn1_byte_buffer buf = {};
    int result = orlenta::put_object_identifier_text(&buf, &value, relative);
    *text = std::string(reinterpret_cast<char*>(buf.data), buf.length);
    asn1_free(buf.data);
    return result;
}

TEST(ObjectIdentifier, Text) {
    const struct {
        std::string_view text;
        bool relative;
        std::string_view contents, back;
    } cases[] = {{"  1 .\t2 . 840\n"sv, false, "\x2A\x86\x48"sv, "1.2.840"sv},
                 {"0.0"sv, false, "\0"sv, "0.0"sv},
                 {"2.39.127.128"sv, false, "\x77\x7F\x81\x00"sv, "2.39.127.128"sv},
                 {"2"sv, false, ""sv, ""sv},
                 {"2147483647"sv, true, "\x87\xFF\xFF\xFF\x7F"sv, "2147483647"sv},
                 {"3.16384.2097152.268435456"sv, true,
                  "\x03\x81\x80\x00\x81\x80\x80\x00\x81\x80\x80\x80\x00"sv, "3.16384.2097152.268435456"sv},
                 {"4294967301.+7"sv, true, "\x05\x07"sv, "5.7"sv}};
    std::string back;
    for (const auto& c : cases) {
        asn1_string out = {nullptr, 99};
        ASSERT_EQ(asn1_parse_object_identifier(&out, c.text.data(), c.text.size(), c.relative), 0) << c.text;
        EXPECT_EQ(std::string_view(reinterpret_cast<char*>(out.data), out.length), c.contents) << c.text;
        EXPECT_EQ(print(c.contents, c.relative, &back), 0);
        EXPECT_EQ(back, c.back);
        asn1_free(out.data);
    }
    // what no parse makes: a root arc beyond 2, and contents cut short
    EXPECT_EQ(print("\x81\x34\x03"sv, false, &back), 0);
    EXPECT_EQ(back, "4.20.3");
    EXPECT_EQ(print("\x2A\x86"sv, false, &back), -1);
    EXPECT_EQ(back, "1.2");
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

}  // namespace
