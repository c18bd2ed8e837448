#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <vector>

#include "tests/jer/jer_types.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

constexpr asn1_jer_encode_options kIndent2 = {nullptr, nullptr, 0, 2};

asn1_string string(const void* data, uint64_t length) {
    return {static_cast<uint8_t*>(const_cast<void*>(data)), length};
}

// ---- layout -----------------------------------------------------------------------------------------------

TEST(JerEncode, IndentedToTheLastBlank) {
    Value value = decode_json(kAbc, R"({"a":1,"b":[1,2],"c":{"x":null}})");
    const std::string expected =
        "{\n"
        "  \"a\": 1,\n"
        "  \"b\": [\n"
        "    1,\n"
        "    2\n"
        "  ],\n"
        "  \"c\": {\n"
        "    \"x\": null\n"
        "  }\n"
        "}\n";
    EXPECT_EQ(encode_json(kAbc, value.get(), kIndent2), expected);
    EXPECT_EQ(encode_json(kAbc, value.get()), "{\"a\":1,\"b\":[1,2],\"c\":{\"x\":null}}\n");

    uint8_t* text;
    int64_t length = asn1_jer_encode(&text, kAbc, value.get());
    EXPECT_EQ(std::string(reinterpret_cast<char*>(text), static_cast<size_t>(length)), expected);
    asn1_free(text);
}

TEST(JerEncode, Layouts) {
    static const struct {
        const asn1_type_desc* type;
        const char* text;
        int32_t depth, indent;
        const char* printed;
    } cases[] = {
        {kEmpty, "{}", 0, 2, "{}\n"},
        {kList, "[]", 0, 2, "[]\n"},
        {kBits, R"({"length":4,"value":"a0"})", 0, 1, "{\n \"length\": 4,\n \"value\": \"a0\"\n}\n"},
        {kBits12, "\"abc0\"", 0, 2, "\"abc0\"\n"},
        {kList, "[1]", 2, 3, "[\n         1\n      ]\n"},
        {kList, "[1]", 2, 0, "[1]\n"},
        {kList, "[1]", -1, 2, "[\n1\n]\n"},
        {kList, "[1]", 0, -1, "[\n1\n]\n"},
        {kList, "[1]", INT32_MAX, -2, "[\n1\n]\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.printed);
        Value value = decode_json(c.type, c.text);
        ASSERT_TRUE(value);
        EXPECT_EQ(encode_json(c.type, value.get(), {nullptr, nullptr, c.depth, c.indent}), c.printed);
    }
}

// ---- values that no text gives ----------------------------------------------------------------------------

TEST(JerEncode, Reals) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> cases[] = {
        {1.5, "1.500000000000000000e00"},
        {1e300, "1.000000000000000053e300"},
        {1e-5, "1.000000000000000082e-05"},
        {-5e-324, "-4.940656458412465442e-324"},
        {0.0, "0"},
        {-0.0, "\"-0\""},
        {-std::numeric_limits<double>::quiet_NaN(), "\"NaN\""},
        {infinity, "\"INF\""},
        {-infinity, "\"-INF\""},
    };
    for (const auto& [value, text] : cases) EXPECT_EQ(encode_json(kReal, &value), text + "\n"s);
}

TEST(JerEncode, Words) {
    static const struct {
        const asn1_type_desc* type;
        uint32_t word;
        const char* printed;
    } cases[] = {
        {kInt5, 0x80000000, "-2147483648\n"},
        {kUint32, 0xFFFFFFFF, "4294967295\n"},
        {kUintExt, 0xFFFFFFFF, "-1\n"},
        {kBoolean, 2, "true\n"},
        {kEnum, 2, "\"later\"\n"},
        {kEnum, 3, "-1"},
        {kClass, 0, "-1"},
    };
    for (const auto& c : cases) EXPECT_EQ(encode_json(c.type, &c.word), c.printed);
    const uint32_t selector[6] = {3};
    EXPECT_EQ(encode_json(kChoice, selector), "-1");
}

TEST(JerEncode, Strings) {
    const uint16_t bmp[] = {0x7F, 0xE9, 0xD83D, 0xFFFF, 0x1F, '/'};
    const uint32_t universal[] = {0x10FFFF, '"'};
    const struct {
        const asn1_type_desc* type;
        asn1_string value;
        std::string printed;
    } cases[] = {
        {kIa5, string("a\0b\x1F\x80", 5), "\"a\\u0000b\\u001f\xC2\x80\"\n"},
        {kBmp, string(bmp, 6), "\"\x7F\u00e9\xED\xA0\xBD\uFFFF\\u001f/\"\n"},
        {kUniversal, string(universal, 2), "\"\U0010FFFF\\\"\"\n"},
        {kUtf8, string("\xFF\xC3\n", 3), "\"\xFF\xC3\\n\"\n"},  // neither checked nor mended
        {kGraphic, string("\x0A\xB0", 2), "\"0ab0\"\n"},
        {kBits, string("\xAB\xC7", 12), "{\"length\":12,\"value\":\"abc0\"}\n"},
        {kBits12, string("\xAB\xC7", 13), "\"abc7\"\n"},
        {kBits, string("\x7F", 3), "{\"length\":3,\"value\":\"70\"}\n"},  // bits of the last digit stay
        {kOid, string("", 0), "\"\"\n"},
        {kOid, string("\x2A\x86\x48", 3), "\"1.2.840\"\n"},
        {kOid, string("\x78\x81\x00", 3), "\"3.0.128\"\n"},
        {kRelativeOid, string("\x78\x8F\xFF\xFF\xFF\x7F", 6), "\"120.-1\"\n"},
        {kOid, string("\x2A\x86", 2), "-1"},
    };
    for (const auto& c : cases) EXPECT_EQ(encode_json(c.type, &c.value), c.printed);
}

TEST(JerEncode, UnresolvedOpenType) {
    uint8_t bytes[] = {0xAB, 0x0C};
    const asn1_open_value open = {nullptr, bytes, 2};
    EXPECT_EQ(encode_json(kAny, &open), "\"ab0c\"\n");
}

// A copy that ran out of memory can have such holes.
TEST(JerEncode, MissingInnerValue) {
    const asn1_open_value open = {kBoolean, nullptr, 0};
    EXPECT_EQ(encode_json(kAny, &open), "-1");
    void* node = nullptr;
    EXPECT_EQ(encode_json(kNodeReference, &node), "-1");
}

// ---- hook -------------------------------------------------------------------------------------------------

struct HookCall {
    const asn1_type_desc* type;
    int32_t depth;
    bool operator==(const HookCall&) const = default;
};

struct HookData {
    const asn1_type_desc* wanted;
    std::string answer;
    std::vector<HookCall> calls;
};

int64_t hook(void* data, char** text, const asn1_type_desc* type, const void* value, int32_t depth) {
    HookData* hook_data = static_cast<HookData*>(data);
    EXPECT_NE(value, nullptr);
    hook_data->calls.push_back({type, depth});
    if (type != hook_data->wanted) return -1;
    *text = asn1_strdup(hook_data->answer.c_str());
    return static_cast<int64_t>(hook_data->answer.size());
}

TEST(JerEncode, Hook) {
    Value value = decode_json(kAbc, R"({"a":1,"b":[2],"c":{"x":null}})");
    HookData data = {kInt5, "?\n", {}};
    EXPECT_EQ(encode_json(kAbc, value.get(), {&data, hook, 0, 0}),
              "{\"a\":?\n,\"b\":[?\n],\"c\":{\"x\":null}}\n");
    const std::vector<HookCall> calls = {{kAbc, 0},  {kInt5, 1},   {kList, 1},
                                         {kInt5, 2}, {kChoice, 1}, {kNull, 2}};
    EXPECT_EQ(data.calls, calls);

    data = {kInt5, "", {}};
    EXPECT_EQ(encode_json(kAbc, value.get(), {&data, hook, 0, 0}), "{\"a\":,\"b\":[],\"c\":{\"x\":null}}\n");

    Value tagged = decode_json(kTagged, "{\"x\":null}");
    data = {kChoice, "!", {}};
    EXPECT_EQ(encode_json(kTagged, tagged.get(), {&data, hook, 7, 0}), "!\n");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kTagged, 7}, {kChoice, 7}}));
}

}  // namespace
}  // namespace orlenta::test
