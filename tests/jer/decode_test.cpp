#include <gtest/gtest.h>

#include <vector>

#include "tests/jer/jer_types.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

// ---- texts that are taken: what the compact encoder makes of the value ------------------------------------

struct Accepted {
    const asn1_type_desc* type;
    std::string text;
    std::string printed = {};  // empty: the text itself
};

void expect_printed(const std::vector<Accepted>& cases) {
    for (const Accepted& c : cases) {
        SCOPED_TRACE(c.text);
        asn1_error error;
        asn1_error_init(&error);
        Value value = decode_json(c.type, c.text, &error);
        ASSERT_TRUE(value) << error.message;
        EXPECT_STREQ(error.message, "");
        EXPECT_EQ(encode_json(c.type, value.get()), (c.printed.empty() ? c.text : c.printed) + "\n");
    }
}

TEST(JerDecode, Numbers) {
    expect_printed({
        {kInt5, "007", "7"},
        {kInt5, "-0", "0"},
        {kInt5, "-2147483648"},
        {kInt5, "2147483647"},
        {kInt5, "000000000000000000000000000000005", "5"},
        {kUint32, "4294967295"},
        {kUintExt, "-1"},
        {kBig, "0"},
        {kBig, "-999999999999999999"},
        {kBig, "-9223372036854775809"},
        {kBig, "123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890"},
        {kReal, "1.5", "1.000000000000000000e00"},  // the integer 1; what follows is not looked at
        {kReal, "1.5e0", "1.500000000000000000e00"},
        {kReal, "15E-1", "1.500000000000000000e00"},
        {kReal, "1.e+1", "1.000000000000000000e01"},
        {kReal, "1e", "1.000000000000000000e00"},
        {kReal, "1e+", "1.000000000000000000e00"},
        {kReal, "3", "3.000000000000000000e00"},
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
}

TEST(JerDecode, Strings) {
    expect_printed({
        {kIa5, "\"\""},
        {kIa5, "\"a\tb\nc\"", R"("a\tb\nc")"},
        {kIa5, R"("\"\\\b\f\n\r\t\u0041\u00e9")", "\"\\\"\\\\\\b\\f\\n\\r\\tA\u00e9\""},
        {kIa5, R"("a\u0000b")"},
        {kIa5, "\"\u20ac\"", "\"\u00ac\""},  // a unit keeps the low bits
        {kBmp, "\"\u20acx\""},
        {kBmp, R"("\u20AC\ud83d")", "\"\u20ac\xED\xA0\xBD\""},
        {kBmp, "\"\U0001F600\"", "\"\uF600\""},
        {kUniversal, R"("\ud83d\uDE00")", "\"\U0001F600\""},
        {kUniversal, R"("\ud83dx\ude00")", "\"\xED\xA0\xBDx\xED\xB8\x80\""},
        {kUtf8, R"("\ud83d\ude00é")", "\"\U0001F600é\""},
        {kUtf8, "\"\xC3\xC0\"", "\"\u00c0\""},  // one stray value is let in, and comes out well formed
        {kGraphic, "\"c0FFee\"", "\"c0ffee\""},
        {kOctets, "\"\""},
        {kOctets, "\"AB\"", "\"ab\""},
        {kBits0, "\"\""},
        {kBits12, "\"ABC0\"", "\"abc0\""},
        {kBits12, R"({"length":5,"value":"f8"})", "\"f8\""},
        {kBits12Ext, R"({"length":12,"value":"abc0"})"},
        {kBits, R"({"value":"80","length":1})", R"({"length":1,"value":"80"})"},
        {kBits, R"({"length":0})", R"({"length":0,"value":""})"},
        {kBits, R"({"value":""})", R"({"length":0,"value":""})"},
        {kOid, "\"1.2.840\""},
        {kOid, "\" 1 . 2 \"", "\"1.2\""},
        {kRelativeOid, "\"8571.3.0\""},
        {kEnum, "\"on\""},
        {kEnum, "\"off-line\""},
        {kEnum, "\"later\""},
    });
}

TEST(JerDecode, Composites) {
    expect_printed({
        {kBoolean, "true"},
        {kBoolean, " \t\v\f\r\nfalse ", "false"},
        {kNull, "null"},
        {kNull, "null ]", "null"},  // one token behind the value is read, and not looked at
        {kList, "[]"},
        {kList, "[1,2,3,4,5]"},
        {kOctetsList, R"(["","00"])"},
        {kChoice, R"({"x":null})"},
        {kTagged, R"({"z":true})"},
        {kEmpty, "{}"},
        {kAbc, R"({ "c" : {"y":"0a"}, "b":[1], "a":-5 })", R"({"a":-5,"b":[1],"c":{"y":"0a"}})"},
        {kOptional, R"({"m":true})"},
        {kOptional, R"({"m":true,"d":3})", R"({"m":true})"},
        {kOptional, R"({"f":null,"e":"01","d":-1,"o":"02","m":false})",
         R"({"m":false,"o":"02","d":-1,"e":"01","f":null})"},
        {kNode, R"({"next":{"next":{}}})"},
        {kOpen, R"({"id":1,"value":true})"},
        {kOpen, R"({"id":2,"value":"ff"})"},
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
    expect_printed({{type.data(), "{" + reversed + "}", "{" + text + "}"}});
    asn1_error error;
    EXPECT_FALSE(decode_json(type.data(), "{" + text + ",\"n7\":7}", &error));
    EXPECT_STREQ(error.message, "sequence/set component n7 defined twice");
    EXPECT_FALSE(decode_json(type.data(), "{" + reversed.substr(reversed.find(',') + 1) + "}", &error));
    EXPECT_STREQ(error.message, "component 'n199' must be present");
}

// What the printed text does not show.
TEST(JerDecode, ValuesInMemory) {
    Value set = decode_json(kOptional, R"({"m":true,"o":""})");
    const Optional* record = static_cast<const Optional*>(set.get());
    EXPECT_EQ(record->m, 1u);
    EXPECT_EQ(record->o_present, 1u);
    EXPECT_NE(record->o.data, nullptr);
    EXPECT_EQ(record->o.length, 0u);
    EXPECT_EQ(record->d, 3);
    EXPECT_EQ(record->e_present + record->f_present, 0u);

    Value item = decode_json(kEnum, "\"off-line\"");
    EXPECT_EQ(*static_cast<const uint32_t*>(item.get()), 1u);  // the index, not the number

    Value bits = decode_json(kBits, R"({"length":12,"value":"abc0"})");
    EXPECT_EQ(static_cast<const asn1_bit_string*>(bits.get())->length, 12u);

    Value text = decode_json(kUniversal, R"("é\ud83d\ude00")");
    const asn1_string* units = static_cast<const asn1_string*>(text.get());
    ASSERT_EQ(units->length, 2u);
    const uint32_t expected[] = {0xE9, 0x1F600};
    EXPECT_EQ(std::memcmp(units->data, expected, sizeof expected), 0);

    uint64_t nan;
    Value real = decode_json(kReal, "\"NaN\"");
    std::memcpy(&nan, real.get(), sizeof nan);
    EXPECT_EQ(nan, 0x7FF8000000000000u);
}

// ---- texts that are refused -------------------------------------------------------------------------------

struct Refused {
    const asn1_type_desc* type;
    std::string text;
    std::string message;
    int32_t line = 1;
};

void expect_message(const std::vector<Refused>& cases) {
    for (const Refused& c : cases) {
        SCOPED_TRACE(c.text);
        asn1_error error;
        EXPECT_FALSE(decode_json(c.type, c.text, &error));
        EXPECT_EQ(error.message, c.message);
        EXPECT_EQ(error.line, c.line);
        EXPECT_STREQ(error.path, "");
        EXPECT_FALSE(decode_json(c.type, c.text));
    }
}

TEST(JerDecode, RefusedTokens) {
    expect_message({
        {kInt5, "-x", "invalid number syntax"},
        {kInt5, "-", "invalid number syntax"},
        {kInt5, "\n\n-", "invalid number syntax", 3},
        {kNull, "\xC3\xA9", "unexpected character"},
        {kNull, "null\n\x80", "unexpected character", 2},
        {kNull, "_null", "expecting 'null'"},
        {kNull, "\x01", "expecting 'null'"},
        {kNull, std::string(256, 'n'), "expecting 'null'"},
        {kNull, std::string(257, 'n'), "identifier too long"},
        {kIa5, "\"abc", "unterminated string"},
        {kIa5, "\"abc\\", "unterminated string"},
        {kEmpty, "{} \"abc", "unterminated string"},
        {kIa5, R"("a\/b")", "invalid escape code"},
        {kIa5, R"("\a")", "invalid escape code"},
        {kIa5, R"("\u12G4")", "invalid escape code"},
        {kIa5, R"("\u12)", "invalid escape code"},
        {kIa5, R"("\ud83d\u00)", "invalid escape code"},
        {kIa5, R"("\ud83d\u0041")", "invalid surrogate pair"},
        {kIa5, R"("\ud83d\uzzzz")", "invalid escape code"},
        {kIa5, "\"\x80\"", "invalid UTF-8 code"},
        {kIa5, "\"\xC0\x80\"", "invalid UTF-8 code"},
        {kIa5, "\"\xE2\x82", "invalid UTF-8 code"},
        {kIa5, "\n\"a\n\x80\"", "invalid UTF-8 code", 2},  // lines inside a string do not count
    });
}

TEST(JerDecode, RefusedScalars) {
    expect_message({
        {kNull, "nul", "expecting 'null'"},
        {kNull, "NULL", "expecting 'null'"},
        {kNull, "\"null\"", "expecting 'null'"},
        {kBoolean, "True", "expecting boolean value"},
        {kBoolean, "1", "expecting boolean value"},
        {kInt5, "", "expecting integer value"},
        {kInt5, "\"1\"", "expecting integer value"},
        {kInt5, "1e0", "expecting integer value"},
        {kInt5, "4294967295", "integer too large"},
        {kInt5, "2147483648", "integer too large"},
        {kInt5, "-2147483649", "integer too large"},
        {kUintExt, "2147483648", "integer too large"},
        {kUint32, "-1", "integer too large"},
        {kUint32, "4294967296", "integer too large"},
        {kUint32, "4294967296\n\nx", "integer too large", 3},  // seen behind the next token
        {kUint32, "9223372036854775808\n\nx", "integer too large"},
        {kReal, "9223372036854775808", "expecting real number"},
        {kReal, "\"inf\"", "expecting real number"},
        {kReal, "\"INF\\u0000\"", "expecting real number"},
        {kReal, "null", "expecting real number"},
        {kEnum, "7", "expecting enumerated string"},
        {kEnum, "\"\"", "enumerated '' not found"},
        {kEnum, "\"On\"", "enumerated 'On' not found"},
        {kEnum, "\"o\"", "enumerated 'o' not found"},
        {kEnum, "\"on\\u0000\"", "enumerated 'on' not found"},
        {kOid, "1.2", "expecting object identifier string"},
        {kOid, "\"3.1\"", "invalid object identifier"},
        {kRelativeOid, "null", "expecting relative object identifier string"},
        {kRelativeOid, "\"1..2\"", "invalid relative object identifier"},
        {kClass, "{}", "unsupported type (17)"},
    });
}

TEST(JerDecode, RefusedStrings) {
    const std::string variable = "variable length bit string must be encoded as a JSON object";
    expect_message({
        {kIa5, "abc", "expecting character string"},
        {kGraphic, "12", "expecting character string"},
        {kGraphic, "\"1\"", "invalid octet string"},
        {kOctets, "12", "expecting octet string value"},
        {kOctets, "\"a\"", "invalid octet string"},
        {kOctets, "\"a b0\"", "invalid octet string"},
        {kOctets, "\"0g\"", "invalid octet string"},
        {kBits, "\"80\"", variable},
        {kBits12Ext, "\"abc0\"", variable},
        {kBits12, "12", "expecting string value"},
        {kBits12, "\"abc\"", "invalid string length"},
        {kBits12, "\"abc000\"", "invalid string length"},
        {kBits12, "\"abc1\"", "trailing bits must be zero"},
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
        {kBits, R"({"value":"81","length":1})", "trailing bits must be zero"},
        {kBits, "{\"value\":\"8x\",\n\"length\":8\n}\n\n ,", "invalid hex digit", 3},
    });
}

TEST(JerDecode, RefusedComposites) {
    const std::string long_name(300, 'q');
    expect_message({
        {kAbc, "", "expecting '{'"},
        {kAbc, "[", "expecting '{'"},
        {kAbc, "{\n\"a\"\n1", "expecting ':'", 3},
        {kAbc, "{a:1}", "expecting sequence/set component name"},
        {kAbc, "{\"a\":1,}", "expecting sequence/set component name"},
        {kAbc, "{\"a\":1.5,}", "expecting ',' or '}'"},
        {kAbc, "{\"a\":1", "expecting ',' or '}'"},
        {kAbc, "{\"a\":1,\n\"aa\":2}", "sequence/set component 'aa' not found", 2},
        {kAbc, "{\"\":2}", "sequence/set component '' not found"},
        {kAbc, "{\"" + long_name + "\":2}", ("sequence/set component '" + long_name).substr(0, 255)},
        {kAbc, "{\"a\":1,\"a\":2}", "sequence/set component a defined twice"},
        {kAbc, "{\"b\":[], \"c\":{\"x\":null}\n}\n", "component 'a' must be present", 3},
        {kOptional, "{\"m\":true,\"g\":1}", "sequence/set component 'g' not found"},
        {kOptional, "{\"m\":true,\"f\":null}",
         "extension 'f' cannot be present because a previous mandatory extension was absent"},
        {kOptional, "{\"o\":\"00\"}", "component 'm' must be present"},
        {kOptional, "{\"o\":\"0x\"}", "invalid octet string"},
        {kList, "{", "expecting '['"},
        {kList, "[1,]", "expecting integer value"},
        {kList, "[1 2]", "expecting ',' or ']'"},
        {kList, "[1", "expecting ',' or ']'"},
        {kOctetsList, "[\"00\",\"01\",\"0\"]", "invalid octet string"},
        {kChoice, "\"x\"", "expecting '{'"},
        {kChoice, "{}", "expecting choice identifier"},
        {kChoice, "{\"w\":null}", "choice 'w' not found"},
        {kChoice, "{\"x\"}", "expecting ':'"},
        {kChoice, "{\"y\":\"00\",\"x\":null}", "expecting '}'"},
        {kChoice, "{\"y\":\"0\"}", "invalid octet string"},
        {kNode, R"({"next":{"next":{"next":0}}})", "expecting '{'"},
        {kOpen, R"({"value":true,"id":1})", "any: unknown type"},  // the key must stand first
        {kOpen, R"({"id":3,"value":true})", "any: unknown type"},
        {kOpen, R"({"id":2,"value":"f"})", "invalid octet string"},
        {kAny, "true", "any: unknown type"},
    });
}

// Every prefix of a text that holds all kinds of blocks ends in an error, with nothing leaked (the sanitizer looks).
TEST(JerDecode, EveryPrefix) {
    const std::string text = R"({"c":{"y":"0a0b"},"b":[1,-2,3],"a":1})";
    for (size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(text.substr(0, length));
        EXPECT_FALSE(decode_json(kAbc, text.substr(0, length)));
    }
}

// Text that nests without end is refused before the stack is used up.
TEST(JerDecode, DeepNesting) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP()
        << "the release of a value takes more stack than its decoding, with a sanitizer's frames only";
#endif
    std::string text;
    for (int i = 0; i < 2000000; ++i) text += "{\"next\":";
    asn1_error error;
    EXPECT_FALSE(decode_json(kNode, text, &error));
    EXPECT_STREQ(error.message, "value nested too deeply");
}

}  // namespace
}  // namespace orlenta::test
