// SPDX-License-Identifier: Apache-2.0
#include "tests/xer/xer_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

// ---- texts that are taken ---------------------------------------------------------------------------------

TEST(XerDecode, Scalars) {
    const std::string long_number(60, '7');
    expect_printed<kXer>({
        {kInt32, " \n-007\t", "-7"},
        {kInt32, "-", "0"},
        {kInt32, " ", "0"},
        {kInt32, "-2147483648"},
        {kUint32, "4294967295"},
        {kUint32, "0000000000000000000000005", "5"},
        {kUintExt, "-1"},
        {kBig, " " + long_number + " ", long_number},
        {kBig, "-18446744073709551616"},
        {kBig, " ", "0"},
        {kReal, "\n15e-1 ,", "1.500000000000000000E00"},
        {kReal, "abc", "0"},
        {kReal, "-0"},
        {kReal, " -INF", "-INF"},
        {kReal, "INF"},
        {kReal, "NaN"},
        {kBoolean, "<true/>", "<true></true>"},
        {kBoolean, "\n<false> </false >\n", "<false></false>"},
        {kBoolean, "fal<!-- -->se", "<false></false>"},
        {kEnum, " <d></d> ", "<d></d>"},
        {kEnum, "c", "<c></c>"},
        {kEnum, "300", "<c></c>"},
        {kEnum, "-1", "<b></b>"},
        {kEnum, " 0x80", "<d></d>"},
        {kEnum, "0200", "<d></d>"},
        {kNull, ""},
        {kNamedTagged, "<true/>", "<true></true>"},
    });
    expect_quiet_nan(kXer, "NaN");
    EXPECT_EQ(decode_text(kXer, kNull, "<NULL> <!-- nothing --> </NULL>").consumed, 31);
}

TEST(XerDecode, Strings) {
    expect_printed<kXer>({
        {kBits, "\n1111\t00001", "111100001"},
        {kBits, "1&#0;2", "1"},
        {kBits, ""},
        {kOctets, "a B C", "ABC0"},
        {kOctets, "ff&#0;xx", "FF"},
        {kOctets, ""},
        {kOid, " 1.2 . 840", "1.2.840"},
        {kRelativeOid, "8571.3.0"},
        {kIa5, ""},
        {kIa5, " a b "},
        {kIa5, "&lt;&gt;&amp;&#65;&#x41;", "&#60;&#62;&#38;AA"},
        {kIa5, "&#;&#zz;&#X41;&#-0;", "&#0;&#0;&#0;&#0;"},
        {kIa5, "&#" + std::string(124, '0') + "65;", "A"},
        {kIa5, "a\r\nb\rc\n&#13;", "a&#10;b&#10;c&#10;&#13;"},
        {kIa5, "a<bel/>b<nul> </nul><is1/>", "a&#7;b&#0;&#31;"},
        {kIa5,
         "<nul/><soh/><stx/><etx/><eot/><enq/><ack/><bel/><bs/><vt/><ff/><so/><si/><dle/><dc1/><dc2/><dc3/>"
         "<dc4/><nak/><syn/><etb/><can/><em/><sub/><esc/><is4/><is3/><is2/><is1/>",
         "&#0;&#1;&#2;&#3;&#4;&#5;&#6;&#7;&#8;&#11;&#12;&#14;&#15;&#16;&#17;&#18;&#19;&#20;&#21;&#22;&#23;"
         "&#24;&#25;&#26;&#27;&#28;&#29;&#30;&#31;"},
        {kIa5, "ab<!-- x -->cd<?pi?>e<![CDATA[f>g]]>", "abcdeg]]&#62;"},
        {kIa5, "\u20ac", "\u00ac"},  // a unit keeps the low bits
        {kBmp, "\u20ac\U0001F600x", "\u20ac\uF600x"},
        {kUniversal, "\U0001F600&#x1F600;", "\U0001F600\U0001F600"},
        {kUtf8, "\xFF\u00e9&#233;<esc/>&#x20AC;", "\xFF\u00e9\u00e9&#27;\u20ac"},
        {kGeneral, "\u00e9"},
    });
    auto data_of_empty = [](const asn1_type_desc* type) {
        return static_cast<const asn1_string*>(value_of(kXer, type, "").get())->data;
    };
    EXPECT_NE(data_of_empty(kOctets), nullptr);
    EXPECT_NE(data_of_empty(kBits), nullptr);
    EXPECT_EQ(data_of_empty(kIa5), nullptr);
}

TEST(XerDecode, Composites) {
    expect_printed<kXer>({
        {kT, "\n<d/><c>\n<INTEGER>1</INTEGER>\n</c> <b>true</b><!-- any order --><a>5</a>\n",
         "<a>5</a><b><true></true></b><c><INTEGER>1</INTEGER></c><d></d>"},
        {kInts, ""},
        {kBooleans, "<true/><BOOLEAN>false</BOOLEAN><BOOLEAN><true/></BOOLEAN>",
         "<true></true><false></false><true></true>"},
        {kEnums, "<a/><d/>", "<a></a><d></d>"},
        {kChoices, "<n/><t>7</t><s>00</s>", "<n></n><t>7</t><s>00</s>"},
        {kItems, "<item>01</item> <item/>", "<item>01</item><item></item>"},
        {kChoice, " <s/> ", "<s></s>"},
        {kRecord, "<g>true</g><i>false</i><j>AA</j><a>1</a><d>5</d><e>true</e><c/>",
         "<a>1</a><c></c><e><true></true></e><g><true></true></g><i><false></false></i><j>AA</j>"},
        {kOpenRecord<kOpen>, "<id>1</id><value><BOOLEAN>true</BOOLEAN></value>",
         "<id>1</id><value><BOOLEAN><true></true></BOOLEAN></value>"},
        {kOpenRecord<kOpen>, "<id>9</id><value> <OCTET_STRING>ab c</OCTET_STRING> </value>",
         "<id>9</id><value><OCTET_STRING>ABC0</OCTET_STRING></value>"},
        {kOpenRecord<kOpen>, "<value><OCTET_STRING/></value><id>1</id>",  // the key came too late
         "<id>1</id><value><OCTET_STRING></OCTET_STRING></value>"},
    });
}

TEST(XerDecode, AroundTheElement) {
    const std::string beginnings[] = {"<NULL>",
                                      "<!-- a --> <?pi?>\n<NULL\n>",
                                      "<?xml version='1.0'?><NULL xmlns=\"u\">",
                                      "<!---><NULL>",
                                      "<!-->--><NULL>",
                                      "<!X --><NULL " + std::string(5000, 'x') + ">",
                                      "<NULL\0 >"s};
    for (const std::string& beginning : beginnings) {
        for (const char* end : {"", "<", " ", "junk", "<x>", "</x>", "<x/>", "<!-- -->"}) {
            std::string text = beginning + "</NULL x>" + end;
            EXPECT_EQ(decode_text(kXer, kNull, text).consumed, static_cast<int64_t>(text.size())) << text;
        }
    }
}

// ---- texts that are refused -------------------------------------------------------------------------------

TEST(XerDecode, RefusedTokens) {
    const std::string syntax = "invalid tag syntax: expecting '>'", entity = "invalid XML entity syntax";
    const std::string longest(1023, 'n');
    expect_message<kXer>({
        {kNull, "<NULL", syntax},
        {kNull, "<NULL\n\na", syntax, 3},
        {kNull, "</", syntax},
        {kNull, "<NULL a=\"1/2\"></NULL>", syntax},
        {kNull, "<NULL/ >", syntax},
        {kNull, "<NULL></NULL/>", "invalid closing tag syntax"},
        {kNull, "<NULL></NULL><x", syntax},
        {kNull, "<" + longest + ">", "expecting tag <NULL>"},
        {kNull, "<" + longest + "n>", "tag name too long"},
        {kNull, "</" + longest + "n", "tag name too long"},
        {kNull, "<!--\n", "unexpected end of stream in comment"},
        {kNull, "<!-- \n--\n>\n", "unexpected end of stream in comment", 4},
        {kNull, "<!-", "unexpected end of stream in processing instruction"},
        {kNull, "<?xml\n?", "unexpected end of stream in processing instruction", 2},
        {kIa5, "<IA5String>\r\n\n\r<!", "unexpected end of stream in processing instruction", 4},
        {kIa5, "<IA5String>&quot;", entity},
        {kIa5, "<IA5String>&GT;", entity},
        {kIa5, "<IA5String>\n& ;", entity, 2},
        {kIa5, "<IA5String>&# 65;", entity},
        {kIa5, "<IA5String>&lt", entity},
        {kIa5, "<IA5String>&#" + std::string(127, '0') + ";", entity},
    });
}

TEST(XerDecode, RefusedElements) {
    expect_message<kXer>({
        {kT, "", "expecting starting tag"},
        {kT, "</T>", "expecting starting tag"},
        {kT, "\xEF\xBB\xBF<T>", "unexpected XML content"},
        {kT, "<t>", "expecting tag <T>"},
        {kT, "<x:T>", "expecting tag <T>"},
        {kNull, "<NULL>x</NULL>", "unexpected XML content"},
        {kNull, "<NULL>\n<x/></NULL>", "expecting closing tag </NULL>", 2},
        {kNull, "<NULL></Null>", "expecting closing tag </NULL>"},
        {kNull, "<NULL>", "expecting closing tag </NULL>"},
        {kT, "<T>x", "unexpected XML content"},
        {kT, "<T><a>1</a>\n<z/>", "sequence/set component 'z' not found", 2},
        {kT, "<T><a>1</a>\n</T>\n\n<", "component 'b' must be present", 2},
        {kT, "<T><a>1</a><b>true</a>", "expecting closing tag </b>"},
        {kChoice, "<CHOICE/>", "choice: expecting open tag"},
        {kChoice, "<CHOICE>n", "unexpected XML content"},
        {kChoice, "<CHOICE><z/>", "choice 'z' not found"},
        {kChoice, "<CHOICE><n/><n/>", "expecting closing tag </CHOICE>"},
        {kInts, "<SEQUENCE_OF><INTEGER>1</INTEGER>2", "unexpected XML content"},
        {kInts, "<SEQUENCE_OF><item>1</item>", "expecting tag <INTEGER>"},
        {kBooleans, "<SEQUENCE_OF><true></true>", "expecting tag <BOOLEAN>"},
        {kEnums, "<Enums><a></a>", "expecting tag <ENUMERATED>"},
        {kItems, "<SET_OF><item/>\n<Item/>", "expecting <item> tag\n", 2},
        {kChoices, "<SEQUENCE_OF><z/>", "choice 'z' not found"},
        {kOpenRecord<kOpen>, "<SEQUENCE><id>1</id><value><OCTET_STRING/>", "expecting tag <BOOLEAN>"},
        {kOpenRecord<kOpen>, "<SEQUENCE><id>9</id><value><BOOLEAN/>", "expecting open type"},
        {kOpenRecord<kOpen>, "<SEQUENCE><id>9</id><value>00", "expecting open type"},
        {kOpenRecord<kOpen>, "<SEQUENCE><id>9</id><value><OCTET_STRING>&x;", "invalid XML entity syntax"},
        {kOpenRecord<kOpen>, "<SEQUENCE><value><OCTET_STRING>0x",
         "expecting hexadecimal digits in octet string"},
        {kClass, "<CLASS>", "unsupported type (17)"},
    });
}

TEST(XerDecode, RefusedContents) {
    static const struct {
        const asn1_type_desc* type;
        const char* content;
        const char* message;
    } rows[] = {
        {kInt32, "", "expecting integer value"},
        {kInt32, "+1", "expecting integer value"},
        {kInt32, "1 2", "expecting integer value"},
        {kInt32, "1&#0;", "expecting integer value"},
        {kBig, "12345678901234567890x", "expecting integer value"},
        {kInt32, "2147483648", "integer too large"},
        {kInt32, "-2147483649", "integer too large"},
        {kUint32, "-1", "integer too large"},
        {kUint32, "4294967296", "integer too large"},
        {kUint32, "18446744073709551616", "integer too large"},
        {kUintExt, "2147483648", "integer too large"},
        {kBoolean, "", "expecting boolean value"},
        {kBoolean, " true ", "expecting boolean value"},
        {kBoolean, "<True/>", "expecting boolean value"},
        {kBoolean, "<true>x</true>", "unexpected XML content"},
        {kBoolean, "<true>&x;", "invalid XML entity syntax"},
        {kEnum, " ", "expecting empty tag for enumerated type"},
        {kEnum, " a ", "enumerated ' a ' not found"},
        {kEnum, "<z/>", "enumerated 'z' not found"},
        {kEnum, "300 ", "enumerated '300 ' not found"},
        {kEnum, "301", "enumerated '301' not found"},
        {kEnum, "300&#0;", "enumerated '300' not found"},
        {kEnum, "4294967295", "enumerated '4294967295' not found"},
        {kEnum, "-4294967295", "enumerated '-4294967295' not found"},
        {kEnum, "<a>1</a>", "unexpected XML content"},
        {kEnum, "<a>&x;", "invalid XML entity syntax"},
        {kReal, "", "expecting real number"},
        {kOid, "", "expecting object identifier"},
        {kRelativeOid, "<x/>", "expecting relative object identifier"},
        {kOid, "3.1", "invalid object identifier"},
        {kRelativeOid, "1..2", "invalid object identifier"},
        {kBits, "012", "expecting binary digits in bit string"},
        {kBits, "<x/>", "expecting bit string value"},
        {kOctets, "0g", "expecting hexadecimal digits in octet string"},
        {kOctets, "<x/>", "expecting octet string value"},
        {kIa5, "a<cr/>", "unexpected tag <cr> in character string"},
        {kIa5, "<bel>x</bel>", "unexpected XML content"},
        {kIa5, "<bel>&x;", "invalid XML entity syntax"},
        {kIa5, "a\x80", "invalid UTF-8 code"},
        {kIa5, "&#-1;", "invalid UTF-8 code"},
        {kUniversal, "\xE2\x82", "invalid UTF-8 code"},
    };
    for (const auto& row : rows) {
        expect_message<kXer>({{row.type, in_element(row.type, row.content), row.message}});
    }
}

}  // namespace
}  // namespace orlenta::test
