#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/gser/gser_types.hpp"
#include "tests/support/nesting.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

// ---- texts that are taken: what the encoder makes of the value --------------------------------------------

struct Accepted {
    const asn1_type_desc* type;
    std::string text;
    std::string printed = {};  // empty: the text itself; without the line feed at the end
};

void expect_printed(const std::vector<Accepted>& cases) {
    for (const Accepted& c : cases) {
        SCOPED_TRACE(c.text);
        decoded result = decode_text(c.type, c.text);
        ASSERT_TRUE(result.value) << result.error.message;
        EXPECT_EQ(result.consumed, static_cast<int64_t>(c.text.size()));
        EXPECT_STREQ(result.error.message, "");
        EXPECT_EQ(encode_text(c.type, result.value.get()), (c.printed.empty() ? c.text : c.printed) + "\n");
    }
}

TEST(GserDecode, Numbers) {
    expect_printed({
        {kInt32, "007", "7"},
        {kInt32, "-0", "0"},
        {kInt32, "-2147483648"},
        {kInt32, "- -- sign, then number\n 5", "-5"},
        {kInt32, "1.5", "1"},  // the integer 1; what follows is not looked at
        {kInt32, "0000000000000000000000000000007", "7"},
        {kUint32, "4294967295"},
        {kUintExt, "-1"},
        {kBig, "-9223372036854775808"},
        {kBig, "-123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890"},
        {kBig, "1e5", "1"},
        {kReal, "1.5", "1.000000000000000000E00"},
        {kReal, "1.5e0", "1.000000000000000000E00"},
        {kReal, "1.5E0", "1.500000000000000000E00"},
        {kReal, "-15E-1", "-1.500000000000000000E00"},
        {kReal, "1.E+1", "1.000000000000000000E01"},
        {kReal, "1E", "1.000000000000000000E00"},
        {kReal, "5", "5.000000000000000000E00"},
        {kReal, "9223372036854775807", "9.223372036854775808E18"},
        {kReal, "1E150", "9.999999999999999808E149"},
        {kReal, "1E999", "PLUS-INFINITY"},
        {kReal, "-1E-999", "-0"},
        {kReal, "-0"},
        {kReal, "0"},
        {kReal, "PLUS-INFINITY"},
        {kReal, "MINUS-INFINITY"},
        {kReal, "NOT-A-NUMBER"},
        {kOid, "1.2.840.113549"},
        {kOid, "2 . 39 -- c\n. 2147483647", "2.39.2147483647"},
        {kOid, "1.2 3", "1.2"},
        {kRelativeOid, "3.1"},
        {kRelativeOid, "1.40"},
        {kRelativeOid, "2.100"},
        {kRelativeOid, "0"},
    });
}

TEST(GserDecode, Strings) {
    expect_printed({
        {kBits, "'ABC'H"},
        {kBits, "'AB CD\t\r\v\f'H", "'ABCD'H"},
        {kBits, "' 101 'B -- comment", "'101'B"},
        {kBits, "'1 0 1 1 0 0 0 1'B", "'B1'H"},
        {kBits, "''H"},
        {kBits, "''B", "''H"},
        {kOctets, "'AB01'H"},
        {kOctets, "'0000000111111111'B", "'01FF'H"},
        {kOctets, "\"AB\"", "'4100'H"},  // the first bytes of code points that have four each
        {kOctets, "\"\u0102xyz\"", "'02010000'H"},
        {kOctets, "\"\"", "''H"},
        {kIa5, "\"\"\"\"", "\"\"\"\""},
        {kIa5, "\"\""},
        {kIa5, "\"say \"\"a\\n\"\"\n-- /*\""},
        {kIa5, "\"\u20ac\"", "\"\u00ac\""},  // a unit keeps the low bits
        {kGeneral, "\"\u00ff\0\""s},
        {kBmp, "\"\u20acx\""},
        {kBmp, "\"\U0001F600\"", "\"\uF600\""},
        {kUniversal, "\"\U0001F600\"\"\u20ac\""},
        {kUtf8, "\"a\u00e9\u20ac\U0001F600\"\"\""},
        {kUtf8, "\"\xC3\xC0\"", "\"\u00c0\""},  // one stray value is let in, and comes out well formed
        {kEnum, "a"},
        {kEnum, "d"},
    });
}

TEST(GserDecode, Composites) {
    const std::string ab = "{\n  a 1,\n  b TRUE\n}", none = "{\n}";
    expect_printed({
        {kBoolean, "TRUE"},
        {kBoolean, " \t\v\f\r\nFALSE", "FALSE"},
        {kNull, "NULL"},
        {kNull, "NULL NULL", "NULL"},
        {kAb, "{ a 1, b TRUE }", ab},
        {kAb, "{b TRUE,a 1}", ab},
        {kAb, "{a/* one */1-- two -- three\n,b/**/TRUE}", ab},
        {kEmpty, "{}", none},
        {kEmpty, "{ -- no }\n }", none},
        {kInts, "{}", "{\n}"},
        {kInts, "{ }", "{\n}"},
        {kInts, "{/* } */}", "{\n}"},
        {kInts, "{1, -2,3,4,5}", "{\n  1,\n  -2,\n  3,\n  4,\n  5\n}"},
        {kOctetsSet, "{''H}", "{\n  ''H\n}"},
        {kChoice, "t:7", "t: 7"},
        {kOuterChoice, "inner: n: NULL"},
        {kTaggedChoice, "s : ''H", "s: ''H"},
        {kSet, "{b TRUE, c n:NULL, s 'AB'H}", "{\n  s 'AB'H,\n  c n: NULL,\n  b TRUE\n}"},
        {kRecord, "{e TRUE, d 5, a 1}", "{\n  a 1,\n  e TRUE\n}"},
        {kRecord, "{a 1, e TRUE, d 4, j ''H, i TRUE, g FALSE}",
         "{\n  a 1,\n  d 4,\n  e TRUE,\n  g FALSE,\n  i TRUE,\n  j ''H\n}"},
        {kChain, "{next{next{}}}", "{\n  next {\n    next {\n    }\n  }\n}"},
        {kOpenRecord<kOpen>, "{id 1, value TRUE}", "{\n  id 1,\n  value TRUE\n}"},
        {kOpenRecord<kOpen>, "{id 2, value \"\"}", "{\n  id 2,\n  value ''H\n}"},
        {kOpenRecord<kOpen>, "{id 3, value 'AB'H}", "{\n  id 3,\n  value 'AB'H\n}"},
        {kAny, "''H"},
    });
}

// What the printed text does not show.
TEST(GserDecode, ValuesInMemory) {
    decoded big = decode_text(kBig, "-0");
    const asn1_integer* zero = static_cast<const asn1_integer*>(big.value.get());
    EXPECT_EQ(zero->size, 0u);
    EXPECT_EQ(zero->negative, 1);

    decoded item = decode_text(kEnum, "c");
    EXPECT_EQ(*static_cast<const uint32_t*>(item.value.get()), 2u);  // the index, not the number

    decoded text = decode_text(kBits, "'ABC'H");
    const asn1_bit_string* bits = static_cast<const asn1_bit_string*>(text.value.get());
    EXPECT_EQ(bits->length, 12u);
    EXPECT_EQ(bits->data[1], 0xC0);

    decoded units = decode_text(kBmp, "\"\u00e9\u20ac\"");
    const asn1_string* string = static_cast<const asn1_string*>(units.value.get());
    const uint16_t expected[] = {0xE9, 0x20AC};
    ASSERT_EQ(string->length, 2u);
    EXPECT_EQ(std::memcmp(string->data, expected, sizeof expected), 0);

    uint64_t nan;
    decoded real = decode_text(kReal, "NOT-A-NUMBER");
    std::memcpy(&nan, real.value.get(), sizeof nan);
    EXPECT_EQ(nan, 0x7FF8000000000000u);

    decoded oid = decode_text(kOid, "1");  // one arc makes no contents
    EXPECT_EQ(static_cast<const asn1_string*>(oid.value.get())->length, 0u);

    decoded raw = decode_text(kAny, "'0A 0B'H");
    const asn1_open_value* open = static_cast<const asn1_open_value*>(raw.value.get());
    EXPECT_EQ(open->type, nullptr);
    EXPECT_EQ(open->length, 2u);
    EXPECT_EQ(static_cast<const uint8_t*>(open->data)[1], 0x0B);
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
        decoded result = decode_text(c.type, c.text);
        EXPECT_EQ(result.consumed, -1);
        EXPECT_EQ(result.error.message, c.message);
        EXPECT_EQ(result.error.line, c.line);
        EXPECT_STREQ(result.error.path, "");
    }
}

TEST(GserDecode, RefusedTokens) {
    const std::string unexpected_end = "unexpected end of binary or hexadecimal string";
    expect_message({
        {kNull, "[", "unexpected character '['"},
        {kNull, "NULL\n+", "unexpected character '+'", 2},
        {kNull, "\xC3\xA9", "unexpected character '\xC3'"},
        {kNull, "\0"s, "unexpected character '"},  // the text ends at the NUL
        {kNull, "\x01", "unexpected character '\x01'"},
        {kNull, "/", "unexpected character '/'"},
        {kNull, "\n/*\n\n*", "expecting end of multi-line comment", 4},
        {kNull, "/*/", "expecting end of multi-line comment"},
        {kNull, "/* /* */ */", "unexpected character '*'"},
        {kNull, "-- a -- NULL", "expecting 'NULL'"},
        {kNull, std::string(256, 'n'), "expecting 'NULL'"},
        {kNull, std::string(257, 'n'), "identifier too long"},
        {kIa5, "\"abc", "unterminated string"},
        {kIa5, "\"abc\"\"", "unterminated string"},
        {kEmpty, "{} \"abc", "unterminated string"},
        {kIa5, "\"\x80\"", "invalid UTF-8 code"},
        {kIa5, "\"\xC0\x80\"", "invalid UTF-8 code"},
        {kIa5, "\"\xE2\x82", "invalid UTF-8 code"},
        {kIa5, "\n\"a\n\x80\"", "invalid UTF-8 code", 2},  // lines inside a string do not count
        {kBits, "'", unexpected_end},
        {kBits, "'A", unexpected_end},
        {kBits, "'A'", unexpected_end},
        {kBits, "'zz", unexpected_end},
        {kBits, "\n'A\nB'H", unexpected_end, 2},
        {kBits, "'A' H", "expecting 'B' or 'H'"},
        {kBits, "'A'\n", "expecting 'B' or 'H'"},
        {kBits, "'zz'h", "expecting 'B' or 'H'"},
        {kBits, "'ab'H", "expecting hexadecimal digits"},
        {kBits, "'0G'H", "expecting hexadecimal digits"},
        {kBits, "'0\xA0'H", "expecting hexadecimal digits"},
        {kBits, "'012'B", "expecting binary digits"},
        {kBits, "'0A'B", "expecting binary digits"},
    });
}

TEST(GserDecode, RefusedScalars) {
    const std::string no_arc = "object identifier: expecting positive integer";
    const std::string large_arc = "object identifier: integer too large";
    expect_message({
        {kNull, "null", "expecting 'NULL'"},
        {kNull, "", "expecting 'NULL'"},
        {kBoolean, "True", "expecting boolean value"},
        {kBoolean, "1", "expecting boolean value"},
        {kInt32, "", "expecting integer value"},
        {kInt32, "-", "expecting integer value"},
        {kInt32, "- - 1", "expecting integer value"},
        {kInt32, "--1\n", "expecting integer value", 2},
        {kInt32, "1E0", "expecting integer value"},
        {kInt32, "2147483648", "integer too large"},
        {kInt32, "-2147483649", "integer too large"},
        {kUintExt, "2147483648", "integer too large"},
        {kUint32, "-1", "integer too large"},
        {kUint32, "4294967296\n\nx", "integer too large", 3},  // seen behind the next token
        {kUint32, "9223372036854775808\n\nx", "integer too large"},
        {kInt32, "-9223372036854775808", "integer too large"},
        {kReal, "9223372036854775808", "expecting real number"},
        {kReal, "-PLUS-INFINITY", "expecting real number"},
        {kReal, "PLUS-INFINITYx", "expecting real number"},
        {kReal, ".5E0", "expecting real number"},
        {kEnum, "7", "expecting enumerated identifier"},
        {kEnum, "TRUE", "expecting enumerated identifier"},
        {kEnum, "A", "enumerated 'A' not found"},
        {kEnum, "a-", "enumerated 'a-' not found"},
        {kOid, "a", no_arc},
        {kOid, "-1.2", no_arc},
        {kOid, "1.2.", no_arc},
        {kOid, "1..2", no_arc},
        {kOid, "1.2E0", no_arc},
        {kRelativeOid, "", no_arc},
        {kOid, "3.1", large_arc},
        {kOid, "1.40", large_arc},
        {kOid, "2.100", large_arc},
        {kOid, "1.2.2147483648", large_arc},
        {kRelativeOid, "99999999999999999999", large_arc},
        {kClass, "{}", "unsupported type (17)"},
    });
}

TEST(GserDecode, RefusedStrings) {
    const std::string no_bytes = "number of bits must be multiple of 8";
    expect_message({
        {kIa5, "abc", "expecting character string"},
        {kUtf8, "'AB'H", "expecting character string"},
        {kBits, "\"AB\"", "expecting bit string value"},
        {kOctets, "12", "expecting octet string value"},
        {kOctets, "'ABC'H", no_bytes},
        {kOctets, "'1'B", no_bytes},
        {kAny, "TRUE", "any: expecting hex string"},
        {kAny, "'11110000'B", "any: expecting hex string"},
        {kAny, "\"AB\"", "any: expecting hex string"},
        {kAny, "'ABC'H", no_bytes},
    });
}

TEST(GserDecode, RefusedComposites) {
    const std::string no_name = "expecting sequence/set component name", no_end = "expecting ',' or '}'";
    const std::string long_name(256, 'q');
    expect_message({
        {kAb, "", "expecting '{'"},
        {kAb, "(", "expecting '{'"},
        {kAb, "{ a 1, }", no_name},
        {kAb, "{ \"a\" 1 }", no_name},
        {kAb, "{ TRUE 1 }", no_name},
        {kAb, "{ a 1", no_end},
        {kAb, "{ a 1 b TRUE }", no_end},
        {kAb, "{ a : 1 }", "expecting integer value"},
        {kAb, "{ a 1,\n aa 2 }", "sequence/set component 'aa' not found", 2},
        {kAb, "{ " + long_name + " 2 }", ("sequence/set component '" + long_name).substr(0, 255)},
        {kAb, "{ a 1, a 2 }", "sequence/set component a defined twice"},
        {kAb, "{ b TRUE\n}\n", "component 'a' must be present", 3},
        {kNested, "{ real 1.5 }", no_end},
        {kRecord, "{a 1, e TRUE, h 1}",
         "extension 'h' cannot be present because a previous mandatory extension was absent"},
        {kRecord, "{a 1, e TRUE, g TRUE, h 1}", "extension group component 'i' must be present"},
        {kInts, "(", "expecting '{'"},
        {kInts, "{1,}", "expecting integer value"},
        {kInts, "{1 2}", no_end},
        {kInts, "{1", no_end},
        {kOctetsSet, "{''H, ''H, '0'H}", "number of bits must be multiple of 8"},
        {kChoice, "{n NULL}", "expecting choice identifier"},
        {kChoice, "w:NULL", "choice 'w' not found"},
        {kChoice, "n NULL", "expecting ':'"},
        {kChoice, "s:'0'H", "number of bits must be multiple of 8"},
        {kChain, "{next {next {next 0}}}", "expecting '{'"},
        {kOpenRecord<kOpen>, "{value TRUE, id 1}", "any: expecting hex string"},  // the key must stand first
        {kOpenRecord<kOpen>, "{id 1, value 'AB'H}", "expecting boolean value"},
    });
}

// Text that nests without end is refused before the stack is used up; what is taken can be printed.
TEST(GserDecode, DeepNesting) {
    static const struct {
        const asn1_type_desc* type;
        const char* opening;
        const char* closing;
    } cases[] = {{kChain, "{next", "}"}, {kTree, "{", "}"}};
    run_on_all_stacks([](size_t stack_size) {
        for (const auto& c : cases) {
            auto nested = [&](size_t depth) {
                std::string text;
                for (size_t i = 0; i < depth; ++i) text += c.opening;
                text += "{}";
                for (size_t i = 0; i < depth; ++i) text += c.closing;
                return text;
            };
            decoded deepest = decode_text(c.type, nested(kTooDeep));
            EXPECT_EQ(deepest.consumed, -1);
            EXPECT_STREQ(deepest.error.message, "value nested too deeply");
            // A kilobyte a level would be much, even of the part that a sanitizer leaves.
            decoded value = decode_text(c.type, nested(stack_size / 8 / 1024));
            ASSERT_TRUE(value.value);
            EXPECT_NE(encode_text(c.type, value.value.get()), "-1");
        }
    });
}

}  // namespace
}  // namespace orlenta::test
