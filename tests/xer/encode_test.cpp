#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/xer/xer_types.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

constexpr asn1_xer_encode_options kIndent = {1, 1, 0, 0, nullptr, nullptr, 0};

value_pointer value_of(const asn1_type_desc* type, const std::string& content) {
    return decode_xml(type, in_element(type, content)).value;
}

// ---- layout -----------------------------------------------------------------------------------------------

TEST(XerEncode, Sample) {
    value_pointer value =
        value_of(kT, "<a>5</a><b>true</b><c><INTEGER>1</INTEGER><INTEGER>2</INTEGER></c><d/>");
    const std::string expected =
        "<T>\n"
        "  <a>5</a>\n"
        "  <b>\n"
        "    <true/>\n"
        "  </b>\n"
        "  <c>\n"
        "    <INTEGER>1</INTEGER>\n"
        "    <INTEGER>2</INTEGER>\n"
        "  </c>\n"
        "  <d/>\n"
        "</T>\n";
    EXPECT_EQ(encode_xml(kT, value.get(), kIndent), expected);
    EXPECT_EQ(encode_xml(kT, value.get()),
              "<T><a>5</a><b><true></true></b><c><INTEGER>1</INTEGER><INTEGER>2</INTEGER></c><d></d></T>");

    uint8_t* text;
    int64_t length = asn1_xer_encode(&text, kT, value.get());
    EXPECT_EQ(std::string(reinterpret_cast<char*>(text), static_cast<size_t>(length)), expected);
    asn1_free(text);
}

TEST(XerEncode, Options) {
    static const struct {
        const asn1_type_desc* type;
        const char* content;
        asn1_xer_encode_options options;
        const char* printed;
    } cases[] = {
        {kT,
         "<a>5</a><b>true</b><c/><d/>",
         {1, 0, 1, 0, nullptr, nullptr, 0},
         "<T>\n  <a>5</a>\n  <b>true</b>\n  <c>\n  </c>\n  <d>\n  </d>\n</T>\n"},
        {kE, "<e>a</e>", kIndent, "<E>\n  <e>\n    <a/>\n  </e>\n</E>\n"},
        {kE, "<e>a</e>", {1, 1, 0, 1, nullptr, nullptr, 0}, "<E>\n  <e>a</e>\n</E>\n"},
        {kE, "<e>a</e>", {1, 1, 0, 1, nullptr, nullptr, 2}, "    <E>\n      <e>a</e>\n    </E>\n"},
        {kE, "<e>a</e>", {1, 1, 0, 1, nullptr, nullptr, -1}, "<E>\n<e>a</e>\n</E>\n"},
        {kE, "<e>a</e><o/>", {0, 1, 0, 0, nullptr, nullptr, 5}, "<E><e><a/></e><o/></E>"},
        {kBooleans,
         "<true/><false/>",
         {0, 1, 0, 1, nullptr, nullptr, 0},
         "<SEQUENCE_OF><true/><false/></SEQUENCE_OF>"},
        {kBooleans,
         "<true/><false/>",
         {0, 1, 1, 0, nullptr, nullptr, 0},
         "<SEQUENCE_OF><BOOLEAN>true</BOOLEAN><BOOLEAN>false</BOOLEAN></SEQUENCE_OF>"},
        {kEnums, "<a/>", {0, 1, 1, 0, nullptr, nullptr, 0}, "<Enums><a/></Enums>"},
        {kEnums, "<a/>", {0, 1, 0, 1, nullptr, nullptr, 0}, "<Enums><ENUMERATED>a</ENUMERATED></Enums>"},
        {kItems,
         "<item/><item>0A</item>",
         {0, 1, 0, 0, nullptr, nullptr, 0},
         "<SET_OF><item/><item>0A</item></SET_OF>"},
        {kInts, "", kIndent, "<SEQUENCE_OF/>\n"},
        {kBits, "", kIndent, "<BIT_STRING/>\n"},
        {kIa5, "", kIndent, "<IA5String></IA5String>\n"},
        {kNamedTagged, "<true/>", {0, 1, 0, 0, nullptr, nullptr, 0}, "<\x01><true/></\x01>"},
        {kOpenRecord<kOpen>, "<id>9</id><value><OCTET_STRING>abcd</OCTET_STRING></value>", kIndent,
         "<SEQUENCE>\n  <id>9</id>\n  <value>\n    <OCTET_STRING>ABCD</OCTET_STRING>\n  "
         "</value>\n</SEQUENCE>\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.printed);
        value_pointer value = value_of(c.type, c.content);
        ASSERT_TRUE(value);
        EXPECT_EQ(encode_xml(c.type, value.get(), c.options), c.printed);
    }
}

// ---- values that no text gives ----------------------------------------------------------------------------

std::string content_of(const asn1_type_desc* type, const void* value) {
    std::string text = encode_xml(type, value), name = asn1_get_type_name(type);
    if (text == "-1") return text;
    EXPECT_EQ(text.substr(0, name.size() + 2), "<" + name + ">");
    return text.substr(name.size() + 2, text.size() - 2 * name.size() - 5);
}

TEST(XerEncode, Reals) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> cases[] = {
        {1.5, "1.500000000000000000E00"},
        {-1e300, "-1.000000000000000053E300"},
        {1e-5, "1.000000000000000082E-05"},
        {-5e-324, "-4.940656458412465442E-324"},
        {0.0, "0"},
        {-0.0, "-0"},
        {-std::numeric_limits<double>::quiet_NaN(), "NaN"},
        {infinity, "INF"},
        {-infinity, "-INF"},
    };
    for (const auto& [value, text] : cases) EXPECT_EQ(content_of(kReal, &value), text);
}

TEST(XerEncode, Words) {
    static const struct {
        const asn1_type_desc* type;
        uint32_t word;
        const char* content;
    } cases[] = {
        {kInt32, 0x80000000, "-2147483648"},
        {kUint32, 0xFFFFFFFF, "4294967295"},
        {kUintExt, 0xFFFFFFFF, "-1"},
        {kBoolean, 2, "<true></true>"},
        {kEnum, 3, "<d></d>"},
        {kEnum, 4, "-1"},
        {kClass, 0, "-1"},
    };
    for (const auto& c : cases) EXPECT_EQ(content_of(c.type, &c.word), c.content);
    const uint32_t selector[6] = {3};
    EXPECT_EQ(encode_xml(kChoice, selector), "-1");
}

TEST(XerEncode, Strings) {
    auto string = [](const void* data, uint64_t length) {
        return asn1_string{static_cast<uint8_t*>(const_cast<void*>(data)), length};
    };
    const uint16_t bmp[] = {0x7F, 0xE9, 0xD83D, 0xFFFF, 0x1F, '>'};
    const uint32_t universal[] = {0x10FFFF, '"', '\''}, negative[] = {'a', 0x80000000};
    const struct {
        const asn1_type_desc* type;
        asn1_string value;
        std::string content;
    } cases[] = {
        {kIa5, string("a<b", 3), "a&#60;b"},
        {kIa5, string("\n\t\r\0&>\"'\x7F\x80", 10), "&#10;&#9;&#13;&#0;&#38;&#62;\"'\x7F\xC2\x80"},
        {kIa5, string("abc", UINT64_C(1) << 31), ""},
        {kBmp, string(bmp, 6), "\x7F\u00e9\xED\xA0\xBD\uFFFF&#31;&#62;"},
        {kUniversal, string(universal, 3), "\U0010FFFF\"'"},
        {kUniversal, string(negative, 2), "-1"},
        {kUtf8, string("\xFF\xC3<\n", 4), "\xFF\xC3&#60;&#10;"},  // neither checked nor mended
        {kGeneral, string("\xE9", 1), "\u00e9"},
        {kBits, string("\xAB\xC7", 12), "101010111100"},
        {kOctets, string("\x0A\xB0", 2), "0AB0"},
        {kOid, string("", 0), ""},
        {kOid, string("\x78\x81\x00", 3), "3.0.128"},
        {kRelativeOid, string("\x78\x8F\xFF\xFF\xFF\x7F", 6), "120.-1"},
        {kOid, string("\x2A\x86", 2), "-1"},
    };
    for (const auto& c : cases) EXPECT_EQ(content_of(c.type, &c.value), c.content);
}

// A copy that ran out of memory can have such holes.
TEST(XerEncode, MissingInnerValue) {
    const asn1_open_value open = {kBoolean, nullptr, 0};
    EXPECT_EQ(encode_xml(kAny, &open), "-1");
    void* node = nullptr;
    EXPECT_EQ(encode_xml(kNext, &node), "-1");
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

TEST(XerEncode, Hook) {
    value_pointer value = value_of(kT, "<a>5</a><b>true</b><c><INTEGER>1</INTEGER></c><d/>");
    HookData data = {kInt32, "?&", {}};
    EXPECT_EQ(encode_xml(kT, value.get(), {1, 1, 1, 0, &data, hook, 0}),
              "<T>\n  <a>\n?&  </a>\n  <b>true</b>\n  <c>\n    <INTEGER>\n?&    </INTEGER>\n  </c>\n  "
              "<d/>\n</T>\n");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{
                              {kT, 1}, {kInt32, 2}, {kBoolean, 2}, {kInts, 2}, {kInt32, 3}, {kNull, 2}}));

    data = {kT, "", {}};
    EXPECT_EQ(encode_xml(kT, value.get(), {0, 1, 0, 0, &data, hook, 7}), "<T>\n</T>");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kT, 8}}));

    value_pointer tagged = value_of(kExplicitChoice, "<n/>");
    data = {kChoice, "!", {}};
    EXPECT_EQ(encode_xml(kExplicitChoice, tagged.get(), {0, 1, 0, 0, &data, hook, 0}),
              "<CHOICE>\n!</CHOICE>");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kExplicitChoice, 1}, {kChoice, 1}}));
}

}  // namespace
}  // namespace orlenta::test
