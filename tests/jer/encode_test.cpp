// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <limits>

#include "tests/jer/jer_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

TEST(JerEncode, IndentedToTheLastBlank) {
    const std::string expected =
        "{\n"
        "  \"list\": [\n"
        "    1,\n"
        "    -2\n"
        "  ],\n"
        "  \"choice\": {\n"
        "    \"t\": 7\n"
        "  },\n"
        "  \"empty\": {},\n"
        "  \"real\": 1.500000000000000000e00\n"
        "}\n";
    value_pointer value = value_of(kJer, kNested, expected);
    EXPECT_EQ(print_with(asn1_jer_encode, kNested, value.get()), expected);
    EXPECT_EQ(print_jer(kNested, value.get(), {nullptr, nullptr, 0, 2}), expected);
}

TEST(JerEncode, Layouts) {
    static const struct {
        const asn1_type_desc* type;
        const char* text;
        int32_t depth, indent;
        const char* printed;
    } rows[] = {
        {kInts, "[]", 0, 2, "[]\n"},
        {kBits, R"({"length":4,"value":"a0"})", 0, 1, "{\n \"length\": 4,\n \"value\": \"a0\"\n}\n"},
        {kInts, "[1]", 2, 3, "[\n         1\n      ]\n"},
        {kInts, "[1]", 2, 0, "[1]\n"},
        {kInts, "[1]", -1, 2, "[\n1\n]\n"},
        {kInts, "[1]", 0, -1, "[\n1\n]\n"},
        {kInts, "[1]", INT32_MAX, -2, "[\n1\n]\n"},
    };
    for (const auto& row : rows) {
        value_pointer value = value_of(kJer, row.type, row.text);
        EXPECT_EQ(print_jer(row.type, value.get(), {nullptr, nullptr, row.depth, row.indent}), row.printed);
    }
}

// ---- values that no text gives ----------------------------------------------------------------------------

TEST(JerEncode, Scalars) {
    expect_content<kJer, double>({
        {kReal, 1e300, "1.000000000000000053e300"},
        {kReal, 1e-5, "1.000000000000000082e-05"},
        {kReal, -5e-324, "-4.940656458412465442e-324"},
        {kReal, -std::numeric_limits<double>::quiet_NaN(), "\"NaN\""},
    });
    expect_content<kJer, uint32_t>({{kBoolean, 2, "true"}});
    expect_refused_values<kJer>();
    uint8_t bytes[] = {0xAB, 0x0C};
    expect_content<kJer, asn1_open_value>({{kAny, {nullptr, bytes, 2}, "\"ab0c\""}});
}

TEST(JerEncode, Strings) {
    const uint16_t bmp[] = {0x7F, 0xE9, 0xD83D, 0xFFFF, 0x1F, '/'};
    const uint32_t universal[] = {0x10FFFF, '"'};
    expect_content<kJer, asn1_string>({
        {kIa5, string("a\0b\x1F\x80", 5), "\"a\\u0000b\\u001f\xC2\x80\""},
        {kBmp, string(bmp, 6), "\"\x7F\u00e9\xED\xA0\xBD\uFFFF\\u001f/\""},
        {kUniversal, string(universal, 2), "\"\U0010FFFF\\\"\""},
        {kUtf8, string("\xFF\xC3\n", 3), "\"\xFF\xC3\\n\""},  // neither checked nor mended
        {kGraphic, string("\x0A\xB0", 2), "\"0ab0\""},
        {kBits, string("\xAB\xC7", 12), "{\"length\":12,\"value\":\"abc0\"}"},
        {kBits12, string("\xAB\xC7", 13), "\"abc7\""},
        {kBits, string("\x7F", 3), "{\"length\":3,\"value\":\"70\"}"},  // bits of the last digit stay
        {kOid, string("", 0), "\"\""},
        {kOid, string("\x78\x81\x00", 3), "\"3.0.128\""},
        {kRelativeOid, string("\x78\x8F\xFF\xFF\xFF\x7F", 6), "\"120.-1\""},
    });
}

// ---- hook -------------------------------------------------------------------------------------------------

TEST(JerEncode, Hook) {
    value_pointer value = value_of(kJer, kNested, R"({"list":[1],"choice":{"n":null},"empty":{},"real":0})");
    HookData data = {kInt32, "?\n"};
    EXPECT_EQ(print_jer(kNested, value.get(), {&data, hook, 0, 0}),
              "{\"list\":[?\n],\"choice\":{\"n\":null},\"empty\":{},\"real\":0}\n");
    const std::vector<HookCall> calls = {{kNested, 0}, {kInts, 1}, {kInt32, 2}, {kExplicitChoice, 1},
                                         {kChoice, 1}, {kNull, 2}, {kEmpty, 1}, {kReal, 1}};
    EXPECT_EQ(data.calls, calls);

    data = {kInts, ""};
    EXPECT_EQ(print_jer(kInts, "", {&data, hook, 0, 0}), "\n");
    data = {kClass, "!"};  // before the kind is looked at
    EXPECT_EQ(print_jer(kClass, "", {&data, hook, 7, 0}), "!\n");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kClass, 7}}));
}

}  // namespace
}  // namespace orlenta::test
