// SPDX-License-Identifier: Apache-2.0
#include "tests/jer/jer_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

// ---- texts that are taken ---------------------------------------------------------------------------------

TEST(JerDecode, Numbers) {
    expect_printed<kJer>({
        {kInt32, "007", "7"},
        {kInt32, "-0", "0"},
        {kInt32, "-2147483648"},
        {kInt32, "000000000000000000000000000000005", "5"},
        {kUint32, "4294967295"},
        {kUintExt, "-1"},
        {kBig, "-999999999999999999"},
        {kBig, "-9223372036854775809"},
        {kBig, "-0000000000000000000", "0"},
        {kBig, "123456789012345678901234567890123456789012345678901234567890"},
        {kReal, "1.5", "1.000000000000000000e00"},  // the integer 1; what follows is not looked at
        {kReal, "15E-1", "1.500000000000000000e00"},
        {kReal, "1.e+1", "1.000000000000000000e01"},
        {kReal, "1e", "1.000000000000000000e00"},
        {kReal, "1e+", "1.000000000000000000e00"},
        {kReal, "2E-,", "2.000000000000000000e00"},
        {kReal, "-9223372036854775808", "-9.223372036854775808e18"},
        {kReal, "1e999", "\"INF\""},
        {kReal, "0"},
        {kReal, "-0", "0"},
        {kReal, "-0e0", "\"-0\""},
        {kReal, "\"-0\""},
        {kReal, "\"NaN\""},
        {kReal, "\"INF\""},
        {kReal, "\"-INF\""},
    });
    expect_quiet_nan(kJer, "\"NaN\"");
}

TEST(JerDecode, Strings) {
    expect_printed<kJer>({
        {kIa5, "\"\""},
        {kIa5, "\"a\tb\nc\"", R"("a\tb\nc")"},
        {kIa5, R"("\"\\\b\f\n\r\t\u0041\u00e9")", "\"\\\"\\\\\\b\\f\\n\\r\\tA\u00e9\""},
        {kIa5, R"("a\u0000b")"},
        {kIa5, "\"\u20ac\"", "\"\u00ac\""},  // a unit keeps the low bits
        {kBmp, R"("\u20AC\ud83d")", "\"\u20ac\xED\xA0\xBD\""},
        {kBmp, "\"\U0001F600\"", "\"\uF600\""},
        {kUniversal, R"("\ud83d\uDE00")", "\"\U0001F600\""},
        {kUniversal, R"("\ud83dx\ude00")", "\"\xED\xA0\xBDx\xED\xB8\x80\""},
        {kUniversal, R"("\ud800\udc00\udbff\udfff")", "\"\U00010000\U0010FFFF\""},
        {kUniversal, R"("\ud7ff\udc00\ue000")", "\"\uD7FF\xED\xB0\x80\uE000\""},
        {kBmp, "\"ab\""},
        {kUniversal, "\"ab\""},
        {kUtf8, R"("\ud83d\ude00é")", "\"\U0001F600é\""},
        {kUtf8, "\"\xC3\xC0\"", "\"\u00c0\""},  // one stray value is let in, and comes out well formed
        {kGraphic, "\"c0FFee\"", "\"c0ffee\""},
        {kOctets, "\"AB\"", "\"ab\""},
        {kBits0, "\"\""},
        {kBits12, "\"ABC0\"", "\"abc0\""},
        {kBits12, R"({"length":5,"value":"f8"})", "\"f8\""},
        {kBits12Ext, R"({"length":12,"value":"abc0"})"},
        {kBits, R"({"value":"80","length":1})", R"({"length":1,"value":"80"})"},
        {kBits, R"({"length":0})", R"({"length":0,"value":""})"},
        {kBits, R"({"value":""})", R"({"length":0,"value":""})"},
        {kOid, "\" 1 . 2 \"", "\"1.2\""},
        {kRelativeOid, "\"8571.3.0\""},
    });
}

TEST(JerDecode, Composites) {
    expect_printed<kJer>({
        {kBoolean, "true"},
        {kBoolean, " \t\v\f\r\nfalse ", "false"},
        {kNull, "null ]", "null"},  // one token behind the value is read, and not looked at
        {kEnum, "\"a\""},
        {kEnum, "\"d\""},
        {kInts, "[]"},
        {kInts, "[1,2,3,4,5]"},
        {kOctetsSet, R"(["","00"])"},
        {kExplicitChoice, R"({"t":7})"},
        {kEmpty, "{}"},
        {kAb, R"({ "b" : true, "a":-5 })", R"({"a":-5,"b":true})"},
        {kRecord, R"({"e":true,"d":5,"a":1})", R"({"a":1,"e":true})"},
        {kRecord, R"({"a":1,"e":true,"j":"","i":true,"g":false})",
         R"({"a":1,"e":true,"g":false,"i":true,"j":""})"},
        {kOpenRecord<kOpen>, R"({"id":1,"value":true})"},
        {kOpenRecord<kOpen>, R"({"id":2,"value":"ff"})"},
    });
}

// More components than most types have, named from the last to the first.
TEST(JerDecode, WideSequence) {
    constexpr uint32_t count = 200;
    std::vector<std::string> names;
    std::vector<asn1_word> type = {head(ASN1_KIND_SEQUENCE), num(count), num(4 * count)};
    std::string text, reversed;
    for (uint32_t i = 0; i < count; ++i) names.push_back("n" + std::to_string(i));
    for (uint32_t i = 0; i < count; ++i) {
        type.insert(type.end(), {field(4 * i), ref(kUint32), num(0), txt(names[i].c_str())});
        std::string member = "\"" + names[i] + "\":" + std::to_string(i);
        text += (i ? "," : "") + member;
        reversed = member + (i ? "," : "") + reversed;
    }
    expect_printed<kJer>({{type.data(), "{" + reversed + "}", "{" + text + "}"}});
    expect_message<kJer>({
        {type.data(), "{" + text + ",\"n7\":7}", "sequence/set component n7 defined twice"},
        {type.data(), "{" + reversed.substr(reversed.find(',') + 1) + "}",
         "component 'n199' must be present"},
    });
}

// ---- texts that are refused -------------------------------------------------------------------------------

TEST(JerDecode, RefusedTokens) {
    expect_message<kJer>({
        {kInt32, "-x", "invalid number syntax"},
        {kInt32, "\n\n-", "invalid number syntax", 3},
        {kNull, "null\n\x80", "unexpected character", 2},
        {kNull, "_null", "expecting 'null'"},
        {kNull, "\x01", "expecting 'null'"},
        {kNull, std::string(256, 'n'), "expecting 'null'"},
        {kNull, std::string(257, 'n'), "identifier too long"},
        {kIa5, "\"abc\\", "unterminated string"},
        {kEmpty, "{} \"abc", "unterminated string"},
        {kIa5, R"("a\/b")", "invalid escape code"},
        {kIa5, R"("\u12G4")", "invalid escape code"},
        {kIa5, R"("\u12)", "invalid escape code"},
        {kIa5, R"("\ud83d\u00)", "invalid escape code"},
        {kIa5, R"("\ud83d\u00zz")", "invalid escape code"},
        {kIa5, R"("\ud83d\x0041")", "invalid escape code"},
        {kIa5, R"("\ud83d\u0041")", "invalid surrogate pair"},
        {kIa5, R"("\ud800\udbff")", "invalid surrogate pair"},
        {kIa5, R"("\udbff\ue000")", "invalid surrogate pair"},
        {kIa5, "\r\n\r\n\r\"\x80\"", "invalid UTF-8 code", 3},  // CR LF is one line's end, and CR none
        {kIa5, "\"\xE2\x82", "invalid UTF-8 code"},
        {kIa5, "\n\"a\n\x80\"", "invalid UTF-8 code", 2},  // lines inside a string do not count
    });
}

TEST(JerDecode, RefusedScalars) {
    expect_message<kJer>({
        {kNull, "nul", "expecting 'null'"},
        {kNull, "\"null\"", "expecting 'null'"},
        {kBoolean, "True", "expecting boolean value"},
        {kInt32, "", "expecting integer value"},
        {kInt32, "\"1\"", "expecting integer value"},
        {kInt32, "1e0", "expecting integer value"},
        {kInt32, "2147483648", "integer too large"},
        {kInt32, "-2147483649", "integer too large"},
        {kUintExt, "2147483648", "integer too large"},
        {kUint32, "-1", "integer too large"},
        {kUint32, "4294967296\n\nx", "integer too large", 3},  // seen behind the next token
        {kUint32, "9223372036854775808\n\nx", "integer too large"},
        {kReal, "9223372036854775808", "expecting real number"},
        {kReal, "-009223372036854775809", "expecting real number"},
        {kReal, "18446744073709551617", "expecting real number"},
        {kReal, "\"inf\"", "expecting real number"},
        {kReal, "\"INF\\u0000\"", "expecting real number"},
        {kReal, "null", "expecting real number"},
        {kEnum, "7", "expecting enumerated string"},
        {kEnum, "\"\"", "enumerated '' not found"},
        {kEnum, "\"a\\u0000\"", "enumerated 'a' not found"},
        {kOid, "1.2", "expecting object identifier string"},
        {kOid, "\"3.1\"", "invalid object identifier"},
        {kRelativeOid, "null", "expecting relative object identifier string"},
        {kRelativeOid, "\"1..2\"", "invalid relative object identifier"},
        {kClass, "{}", "unsupported type (17)"},
    });
}

TEST(JerDecode, RefusedStrings) {
    const std::string variable = "variable length bit string must be encoded as a JSON object";
    expect_message<kJer>({
        {kIa5, "abc", "expecting character string"},
        {kGraphic, "12", "expecting character string"},
        {kGraphic, "\"1\"", "invalid octet string"},
        {kOctets, "12", "expecting octet string value"},
        {kOctets, "\"a b0\"", "invalid octet string"},
        {kOctets, "\"0g\"", "invalid octet string"},
        {kBits, "\"80\"", variable},
        {kBits12Ext, "\"abc0\"", variable},
        {kBits12, "12", "expecting string value"},
        {kBits12, "\"abc\"", "invalid string length"},
        {kBits12, "\"abc000\"", "invalid string length"},
        {kBits12, "\"abc1\"", "trailing bits must be zero"},
        {kBits12, "\"abc8\"", "trailing bits must be zero"},
        {kBits12, "\"ab\u00e9\"", "invalid hex digit"},
        {kBits, "{}", "expecting property name"},
        {kBits, R"({"length":1,})", "expecting property name"},
        {kBits, R"({"size":1})", "unexpected property: 'size'"},
        {kBits, R"({"length":1,"length":1})", "duplicate property"},
        {kBits, R"({"value":"","value":""})", "duplicate property"},
        {kBits, R"({"value":"" "length":0})", "expecting ',' or '}'"},
        {kBits, R"({"value","length"})", "expecting ':'"},
        {kBits, R"({"length":"1"})", "expecting integer value"},
        {kBits, R"({"length":-1,"value":""})", "invalid bit string length"},
        {kBits, R"({"length":4294967296,"value":""})", "invalid bit string length"},
        {kBits, R"({"length":99999999999999999999,"value":""})", "invalid bit string length"},
        {kBits, R"({"length":4294967295,"value":""})", "invalid string length"},
        {kBits, R"({"value":1})", "expecting string value"},
        {kBits, "{\"value\":\"8x\",\n\"length\":8\n}\n\n ,", "invalid hex digit", 3},
    });
}

TEST(JerDecode, RefusedComposites) {
    expect_message<kJer>({
        {kAb, "[", "expecting '{'"},
        {kAb, "{\n\"a\"\n1", "expecting ':'", 3},
        {kAb, "{a:1}", "expecting sequence/set component name"},
        {kAb, "{\"a\":1,}", "expecting sequence/set component name"},
        {kAb, "{\"a\":1", "expecting ',' or '}'"},
        {kAb, "{\"a\":1,\n\"aa\":2}", "sequence/set component 'aa' not found", 2},
        {kAb, "{\"b\":true\n}\n", "component 'a' must be present", 3},
        {kRecord, "{\"c\":\"0x\"}", "invalid octet string"},
        {kInts, "{", "expecting '['"},
        {kInts, "[1,]", "expecting integer value"},
        {kInts, "[1 2]", "expecting ',' or ']'"},
        {kOctetsSet, "[\"00\",\"01\",\"0\"]", "invalid octet string"},
        {kChoice, "\"n\"", "expecting '{'"},
        {kChoice, "{}", "expecting choice identifier"},
        {kChoice, "{\"w\":null}", "choice 'w' not found"},
        {kChoice, "{\"n\"}", "expecting ':'"},
        {kChoice, "{\"s\":\"00\",\"n\":null}", "expecting '}'"},
        {kChoice, "{\"s\":\"0\"}", "invalid octet string"},
        {kOpenRecord<kOpen>, R"({"value":true,"id":1})", "any: unknown type"},  // too early
        {kOpenRecord<kOpen>, R"({"id":3,"value":true})", "any: unknown type"},
        {kOpenRecord<kOpen>, R"({"id":2,"value":"f"})", "invalid octet string"},
        {kAny, "true", "any: unknown type"},
    });
}

}  // namespace
}  // namespace orlenta::test
