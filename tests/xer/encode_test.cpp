// SPDX-License-Identifier: Apache-2.0
#include <limits>

#include "tests/xer/xer_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

TEST(XerEncode, LayoutToTheLastBlank) {
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
    decoded value = decode_text(kXer, kT, expected);
    ASSERT_TRUE(value.value) << value.error.message;
    EXPECT_EQ(print_with(asn1_xer_encode, kT, value.value.get()), expected);
}

TEST(XerEncode, Options) {
    static const struct {
        const asn1_type_desc* type;
        const char* content;
        int32_t indent, empty_tags, boolean_text, enumerated_text, depth;
        const char* printed;
    } rows[] = {
        {kT, "<a>5</a><b>true</b><c/><d/>", 1, 0, 1, 0, 0,
         "<T>\n  <a>5</a>\n  <b>true</b>\n  <c>\n  </c>\n  <d>\n  </d>\n</T>\n"},
        {kE, "<e>a</e>", 1, 1, 0, 0, 0, "<E>\n  <e>\n    <a/>\n  </e>\n</E>\n"},
        {kE, "<e>a</e>", 1, 1, 0, 1, 2, "    <E>\n      <e>a</e>\n    </E>\n"},
        {kE, "<e>a</e>", 1, 1, 0, 1, -1, "<E>\n<e>a</e>\n</E>\n"},
        {kE, "<e>a</e><o/>", 0, 1, 0, 0, 5, "<E><e><a/></e><o/></E>"},
        {kBooleans, "<true/>", 0, 1, 0, 1, 0, "<SEQUENCE_OF><true/></SEQUENCE_OF>"},
        {kBooleans, "<true/>", 0, 1, 1, 0, 0, "<SEQUENCE_OF><BOOLEAN>true</BOOLEAN></SEQUENCE_OF>"},
        {kEnums, "<a/>", 0, 1, 1, 0, 0, "<Enums><a/></Enums>"},
        {kEnums, "<a/>", 0, 1, 0, 1, 0, "<Enums><ENUMERATED>a</ENUMERATED></Enums>"},
        {kItems, "<item/><item>0A</item>", 0, 1, 0, 0, 0, "<SET_OF><item/><item>0A</item></SET_OF>"},
        {kInts, "", 1, 1, 0, 0, 0, "<SEQUENCE_OF/>\n"},
        {kBits, "", 1, 1, 0, 0, 0, "<BIT_STRING/>\n"},
        {kIa5, "", 1, 1, 0, 0, 0, "<IA5String></IA5String>\n"},
        {kNamedTagged, "<true/>", 0, 1, 0, 0, 0, "<\x01><true/></\x01>"},
        {kOpenRecord<kOpen>, "<id>9</id><value><OCTET_STRING>abcd</OCTET_STRING></value>", 1, 1, 0, 0, 0,
         "<SEQUENCE>\n  <id>9</id>\n  <value>\n    <OCTET_STRING>ABCD</OCTET_STRING>\n  "
         "</value>\n</SEQUENCE>\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.printed);
        value_pointer value = value_of(kXer, row.type, row.content);
        EXPECT_EQ(print_xer(row.type, value.get(),
                            {row.indent, row.empty_tags, row.boolean_text, row.enumerated_text, nullptr,
                             nullptr, row.depth}),
                  row.printed);
    }
}

// ---- values that no text gives ----------------------------------------------------------------------------

TEST(XerEncode, Scalars) {
    expect_content<kXer, double>({
        {kReal, -1e300, "-1.000000000000000053E300"},
        {kReal, 1e-5, "1.000000000000000082E-05"},
        {kReal, -5e-324, "-4.940656458412465442E-324"},
        {kReal, -std::numeric_limits<double>::quiet_NaN(), "NaN"},
    });
    expect_content<kXer, uint32_t>({{kBoolean, 2, "<true></true>"}});
    expect_refused_values<kXer>();
}

TEST(XerEncode, Strings) {
    const uint16_t bmp[] = {0x7F, 0xE9, 0xD83D, 0xFFFF, 0x1F, '>'};
    const uint32_t universal[] = {0x10FFFF, '"', '\''}, negative[] = {'a', 0x80000000};
    expect_content<kXer, asn1_string>({
        {kIa5, string("\n\t\r\0&<>\"'\x7F\x80", 11), "&#10;&#9;&#13;&#0;&#38;&#60;&#62;\"'\x7F\xC2\x80"},
        {kIa5, string("abc", UINT64_C(1) << 31), ""},
        {kBmp, string(bmp, 6), "\x7F\u00e9\xED\xA0\xBD\uFFFF&#31;&#62;"},
        {kUniversal, string(universal, 3), "\U0010FFFF\"'"},
        {kUniversal, string(negative, 2), "-1"},
        {kUtf8, string("\xFF\xC3<\n", 4), "\xFF\xC3&#60;&#10;"},  // neither checked nor mended
        {kBits, string("\xAB\xC7", 12), "101010111100"},
        {kOid, string("", 0), ""},
        {kOid, string("\x78\x81\x00", 3), "3.0.128"},
        {kRelativeOid, string("\x78\x8F\xFF\xFF\xFF\x7F", 6), "120.-1"},
    });
}

// ---- hook -------------------------------------------------------------------------------------------------

TEST(XerEncode, Hook) {
    value_pointer value = value_of(kXer, kT, "<a>5</a><b>true</b><c><INTEGER>1</INTEGER></c><d/>");
    HookData data = {kInt32, "?&"};
    EXPECT_EQ(print_xer(kT, value.get(), {1, 1, 1, 0, &data, hook, 0}),
              "<T>\n  <a>\n?&  </a>\n  <b>true</b>\n  <c>\n    <INTEGER>\n?&    </INTEGER>\n  </c>\n  "
              "<d/>\n</T>\n");
    const std::vector<HookCall> calls = {{kT, 1},    {kInt32, 2}, {kBoolean, 2},
                                         {kInts, 2}, {kInt32, 3}, {kNull, 2}};
    EXPECT_EQ(data.calls, calls);

    data = {kT, ""};
    EXPECT_EQ(print_xer(kT, value.get(), {0, 1, 0, 0, &data, hook, 7}), "<T>\n</T>");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kT, 8}}));

    // a line feed comes before the hook's text also where no start tag is open
    value_pointer list = value_of(kXer, kChoices, "<n/><n/>");
    data = {kExplicitChoice, "!"};
    EXPECT_EQ(print_xer(kChoices, list.get(), {0, 1, 0, 0, &data, hook, 0}),
              "<SEQUENCE_OF>\n!\n!</SEQUENCE_OF>");

    value_pointer tagged = value_of(kXer, kExplicitChoice, "<n/>");
    data = {kChoice, "!"};
    EXPECT_EQ(print_xer(kExplicitChoice, tagged.get(), {0, 1, 0, 0, &data, hook, 0}), "<CHOICE>\n!</CHOICE>");
    EXPECT_EQ(data.calls, (std::vector<HookCall>{{kExplicitChoice, 1}, {kChoice, 1}}));
}

}  // namespace
}  // namespace orlenta::test
