// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <limits>

#include "tests/gser/gser_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

TEST(GserEncode, LayoutToTheLastBlank) {
    const std::string expected =
        "{\n"
        "  list {\n"
        "    1,\n"
        "    -2\n"
        "  },\n"
        "  choice t: 7,\n"
        "  empty {\n"
        "  },\n"
        "  real 1.500000000000000000E00\n"
        "}\n";
    value_pointer value = value_of(kGser, kNested, expected);
    EXPECT_EQ(print_with(asn1_gser_encode, kNested, value.get()), expected);
}

TEST(GserEncode, Levels) {
    static const struct {
        const asn1_type_desc* type;
        const char* text;
        int32_t level;
        const char* printed;
    } rows[] = {
        {kInts, "{}", 2, "{\n    }\n"},
        {kEmpty, "{}", 1, "{\n  }\n"},
        {kInts, "{1,2}", 2, "{\n      1,\n      2\n    }\n"},
        {kInts, "{1}", -1, "{\n1\n}\n"},
        {kInts, "{1}", INT32_MIN, "{\n1\n}\n"},
        {kRecord, "{a 1, e TRUE, c ''H}", 1, "{\n    a 1,\n    c ''H,\n    e TRUE\n  }\n"},
    };
    for (const auto& row : rows) {
        value_pointer value = value_of(kGser, row.type, row.text);
        EXPECT_EQ(print_gser(row.type, value.get(), {nullptr, nullptr, row.level, 0}), row.printed);
    }
}

// ---- values that no text gives ----------------------------------------------------------------------------

TEST(GserEncode, Scalars) {
    expect_content<kGser, double>({
        {kReal, 0.001, "1.000000000000000021E-03"},
        {kReal, 1e300, "1.000000000000000053E300"},
        {kReal, -5e-324, "-4.940656458412465442E-324"},
        {kReal, -std::numeric_limits<double>::quiet_NaN(), "NOT-A-NUMBER"},
    });
    expect_content<kGser, uint32_t>({{kBoolean, 2, "TRUE"}});
    expect_refused_values<kGser>();
}

TEST(GserEncode, Strings) {
    const uint16_t bmp[] = {0x7F, '"', 0xE9, 0xD83D, 0xFFFF, '\n'};
    const uint32_t universal[] = {0x10FFFF, '"'}, negative[] = {'a', 0x80000000};
    expect_content<kGser, asn1_string>({
        {kIa5, string("a\0\"\n\x80", 5), "\"a\0\"\"\n\xC2\x80\""s},
        {kBmp, string(bmp, 6), "\"\x7F\"\"\u00e9\xED\xA0\xBD\uFFFF\n\""},
        {kUniversal, string(universal, 2), "\"\U0010FFFF\"\"\""},
        {kUniversal, string(negative, 2), "-1"},
        {kUtf8, string("\xFF\"\xC3", 3), "\"\xFF\"\"\xC3\""},  // neither checked nor mended
        {kBits, string("\xAB\xCF", 12), "'ABC'H"},             // the last byte's unused bits are not printed
        {kBits, string("\xBF", 3), "'101'B"},
        {kOid, string("\x2A\x86\x48", 3), "1.2.840"},
        {kOid, string("\x78\x81\x00", 3), "3.0.128"},
        {kRelativeOid, string("\x78\x8F\xFF\xFF\xFF\x7F", 6), "120.-1"},
    });
    constexpr asn1_gser_encode_options binary = {nullptr, nullptr, 0, 1};
    const asn1_string bits = string("\xAB\xCF", 12), none = string(nullptr, 0), bytes = string("\xAB", 1);
    EXPECT_EQ(print_gser(kBits, &bits, binary), "'101010111100'B\n");
    EXPECT_EQ(print_gser(kBits, &none, binary), "''B\n");
    EXPECT_EQ(print_gser(kOctets, &bytes, binary), "'AB'H\n");
}

// ---- hook -------------------------------------------------------------------------------------------------

TEST(GserEncode, Hook) {
    value_pointer value = value_of(kGser, kNested, "{list {1}, choice n:NULL, empty {}, real 0}");
    HookData data = {kInt32, "?\n"};
    EXPECT_EQ(print_gser(kNested, value.get(), {&data, hook, 0, 0}),
              "{\n  list {\n    ?\n\n  },\n  choice n: NULL,\n  empty {\n  },\n  real 0\n}\n");
    const std::vector<HookCall> calls = {{kNested, 0}, {kInts, 1}, {kInt32, 2}, {kExplicitChoice, 1},
                                         {kChoice, 1}, {kNull, 1}, {kEmpty, 1}, {kReal, 1}};
    EXPECT_EQ(data.calls, calls);

    data = {kInts, ""};
    EXPECT_EQ(print_gser(kInts, "", {&data, hook, 0, 0}), "\n");
    data = {kClass, "!"};  // before the kind is looked at
    EXPECT_EQ(print_gser(kClass, "", {&data, hook, -7, 0}), "!\n");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kClass, -7}}));
}

}  // namespace
}  // namespace orlenta::test
