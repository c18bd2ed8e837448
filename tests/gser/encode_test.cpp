#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <vector>

#include "tests/gser/gser_types.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

constexpr asn1_gser_encode_options kBinary = {nullptr, nullptr, 0, 1};

asn1_string string(const void* data, uint64_t length) {
    return {static_cast<uint8_t*>(const_cast<void*>(data)), length};
}

// ---- layout -----------------------------------------------------------------------------------------------

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
    decoded value = decode_text(kNested, expected);
    ASSERT_TRUE(value.value) << value.error.message;
    EXPECT_EQ(encode_text(kNested, value.value.get()), expected);

    uint8_t* text;
    int64_t length = asn1_gser_encode(&text, kNested, value.value.get());
    EXPECT_EQ(std::string(reinterpret_cast<char*>(text), static_cast<size_t>(length)), expected);
    asn1_free(text);

    const int32_t ab[] = {1, 1};
    EXPECT_EQ(encode_text(kAb, ab), "{\n  a 1,\n  b TRUE\n}\n");
}

TEST(GserEncode, Levels) {
    static const struct {
        const asn1_type_desc* type;
        const char* text;
        int32_t level;
        const char* printed;
    } cases[] = {
        {kInts, "{}", 2, "{\n    }\n"},
        {kEmpty, "{}", 1, "{\n  }\n"},
        {kInts, "{1,2}", 2, "{\n      1,\n      2\n    }\n"},
        {kInts, "{1}", -1, "{\n1\n}\n"},
        {kInts, "{1}", INT32_MIN, "{\n1\n}\n"},
        {kRecord, "{a 1, e TRUE, c ''H}", 1, "{\n    a 1,\n    c ''H,\n    e TRUE\n  }\n"},
    };
    for (const auto& c : cases) {
        decoded value = decode_text(c.type, c.text);
        ASSERT_TRUE(value.value) << value.error.message;
        EXPECT_EQ(encode_text(c.type, value.value.get(), {nullptr, nullptr, c.level, 0}), c.printed);
    }
}

// ---- values -----------------------------------------------------------------------------------------------

TEST(GserEncode, Reals) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> cases[] = {
        {1.5, "1.500000000000000000E00"},
        {5, "5.000000000000000000E00"},
        {0.001, "1.000000000000000021E-03"},
        {1e300, "1.000000000000000053E300"},
        {-5e-324, "-4.940656458412465442E-324"},
        {0.0, "0"},
        {-0.0, "-0"},
        {-std::numeric_limits<double>::quiet_NaN(), "NOT-A-NUMBER"},
        {infinity, "PLUS-INFINITY"},
        {-infinity, "MINUS-INFINITY"},
    };
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(encode_text(kReal, &value), text + "\n"s);
        decoded again = decode_text(kReal, text);
        ASSERT_TRUE(again.value);
        EXPECT_EQ(asn1_cmp_value(kReal, again.value.get(), &value), 0) << text;
    }
}

TEST(GserEncode, Words) {
    static const struct {
        const asn1_type_desc* type;
        uint32_t word;
        const char* printed;
    } cases[] = {
        {kInt32, 0x80000000, "-2147483648\n"},
        {kUint32, 0xFFFFFFFF, "4294967295\n"},
        {kUintExt, 0xFFFFFFFF, "-1\n"},
        {kBoolean, 0, "FALSE\n"},
        {kBoolean, 2, "TRUE\n"},
        {kNull, 0, "NULL\n"},
        {kEnum, 3, "d\n"},
        {kEnum, 4, "-1"},
        {kClass, 0, "-1"},
    };
    for (const auto& c : cases) EXPECT_EQ(encode_text(c.type, &c.word), c.printed);
    const uint32_t selector[6] = {3};
    EXPECT_EQ(encode_text(kChoice, selector), "-1");
}

TEST(GserEncode, Strings) {
    const uint16_t bmp[] = {0x7F, '"', 0xE9, 0xD83D, 0xFFFF, '\n'};
    const uint32_t universal[] = {0x10FFFF, '"'}, negative[] = {'a', 0x80000000};
    const struct {
        const asn1_type_desc* type;
        asn1_string value;
        std::string printed;
        asn1_gser_encode_options options = {};
    } cases[] = {
        {kIa5, string("a\0\"\n\x80", 5), "\"a\0\"\"\n\xC2\x80\"\n"s},
        {kIa5, string("\"", 1), "\"\"\"\"\n"},
        {kIa5, string(nullptr, 0), "\"\"\n"},
        {kGeneral, string("\x0A\xB0", 2), "\"\n\xC2\xB0\"\n"},
        {kBmp, string(bmp, 6), "\"\x7F\"\"\u00e9\xED\xA0\xBD\uFFFF\n\"\n"},
        {kUniversal, string(universal, 2), "\"\U0010FFFF\"\"\"\n"},
        {kUniversal, string(negative, 2), "-1"},
        {kUtf8, string("\xFF\"\xC3", 3), "\"\xFF\"\"\xC3\"\n"},  // neither checked nor mended
        {kOctets, string("\xAB\x01", 2), "'AB01'H\n"},
        {kOctets, string("\xAB\x01", 2), "'AB01'H\n", kBinary},
        {kBits, string("\xAB\xCF", 12), "'ABC'H\n"},  // the last byte's unused bits are not printed
        {kBits, string("\xAB\xCF", 12), "'101010111100'B\n", kBinary},
        {kBits, string("\xBF", 3), "'101'B\n"},
        {kBits, string(nullptr, 0), "''H\n"},
        {kBits, string(nullptr, 0), "''B\n", kBinary},
        {kOid, string("", 0), "\n"},
        {kOid, string("\x2A\x86\x48", 3), "1.2.840\n"},
        {kOid, string("\x78\x81\x00", 3), "3.0.128\n"},
        {kRelativeOid, string("\x78\x8F\xFF\xFF\xFF\x7F", 6), "120.-1\n"},
        {kOid, string("\x2A\x86", 2), "-1"},
        {kAny, string(nullptr, 0), "''H\n"},
    };
    for (const auto& c : cases) {
        asn1_open_value open = {nullptr, c.value.data, c.value.length};
        const void* value = c.type == kAny ? static_cast<const void*>(&open) : &c.value;
        EXPECT_EQ(encode_text(c.type, value, c.options), c.printed);
    }
}

// A copy that ran out of memory can have such holes.
TEST(GserEncode, MissingInnerValue) {
    const asn1_open_value open = {kBoolean, nullptr, 0};
    EXPECT_EQ(encode_text(kAny, &open), "-1");
    void* inner = nullptr;
    EXPECT_EQ(encode_text(kTagged<0, kBoolean, ASN1_WORD0_INDIRECT>, &inner), "-1");
}

// ---- hook -------------------------------------------------------------------------------------------------

struct HookCall {
    const asn1_type_desc* type;
    int32_t level;
    bool operator==(const HookCall&) const = default;
};

struct HookData {
    const asn1_type_desc* wanted;
    std::string answer;
    std::vector<HookCall> calls;
};

int64_t hook(void* data, char** text, const asn1_type_desc* type, const void* value, int32_t level) {
    HookData* hook_data = static_cast<HookData*>(data);
    EXPECT_NE(value, nullptr);
    hook_data->calls.push_back({type, level});
    if (type != hook_data->wanted) return -1;
    *text = asn1_strdup(hook_data->answer.c_str());
    return static_cast<int64_t>(hook_data->answer.size());
}

TEST(GserEncode, Hook) {
    decoded value = decode_text(kNested, "{list {1}, choice n:NULL, empty {}, real 0}");
    HookData data = {kInt32, "?\n", {}};
    EXPECT_EQ(encode_text(kNested, value.value.get(), {&data, hook, 0, 0}),
              "{\n  list {\n    ?\n\n  },\n  choice n: NULL,\n  empty {\n  },\n  real 0\n}\n");
    const std::vector<HookCall> calls = {{kNested, 0}, {kInts, 1}, {kInt32, 2}, {kExplicitChoice, 1},
                                         {kChoice, 1}, {kNull, 1}, {kEmpty, 1}, {kReal, 1}};
    EXPECT_EQ(data.calls, calls);

    data = {kInts, "", {}};
    EXPECT_EQ(encode_text(kInts, "", {&data, hook, 0, 0}), "\n");
    data = {kClass, "!", {}};  // before the kind is looked at
    EXPECT_EQ(encode_text(kClass, "", {&data, hook, -7, 0}), "!\n");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kClass, -7}}));
}

}  // namespace
}  // namespace orlenta::test
