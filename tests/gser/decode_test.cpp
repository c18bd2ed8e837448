// SPDX-License-Identifier: Apache-2.0
#include "tests/gser/gser_codec.hpp"

namespace orlenta::test {
namespace {

using namespace std::string_literals;

// ---- texts that are taken ---------------------------------------------------------------------------------

TEST(GserDecode, Numbers) {
    expect_printed<kGser>({
        {kInt32, "007", "7"},
        {kInt32, "-0", "0"},
        {kInt32, "-2147483648"},
        {kInt32, "- -- sign, then number\n 5", "-5"},
        {kInt32, "1.5", "1"},  // the integer 1; what follows is not looked at
        {kInt32, "0000000000000000000000000000007", "7"},
        {kUint32, "4294967295"},
        {kUintExt, "-1"},
        {kBig, "-9223372036854775808"},
        {kBig, "-123456789012345678901234567890123456789012345678901234567890"},
        {kBig, "1e5", "1"},
        {kReal, "1.5e0", "1.000000000000000000E00"},
        {kReal, "-15E-1", "-1.500000000000000000E00"},
        {kReal, "1.E+1", "1.000000000000000000E01"},
        {kReal, "1E", "1.000000000000000000E00"},
        {kReal, "1E+", "1.000000000000000000E00"},
        {kReal, "9223372036854775807", "9.223372036854775808E18"},
        {kReal, "1E150", "9.999999999999999808E149"},
        {kReal, "1E999", "PLUS-INFINITY"},
        {kReal, "-1E-999", "-0"},
        {kReal, "-0"},
        {kReal, "0"},
        {kReal, "PLUS-INFINITY"},
        {kReal, "MINUS-INFINITY"},
        {kReal, "NOT-A-NUMBER"},
        {kOid, "2 . 39 -- c\n. 2147483647", "2.39.2147483647"},
        {kOid, "1.2 3", "1.2"},
        {kRelativeOid, "3.1"},
        {kRelativeOid, "1.40"},
        {kRelativeOid, "0"},
    });
    expect_quiet_nan(kGser, "NOT-A-NUMBER");
    value_pointer zero = value_of(kGser, kBig, "-0"), one_arc = value_of(kGser, kOid, "1");
    EXPECT_EQ(static_cast<const asn1_integer*>(zero.get())->size, 0u);
    EXPECT_EQ(static_cast<const asn1_integer*>(zero.get())->negative, 1);
    EXPECT_EQ(static_cast<const asn1_string*>(one_arc.get())->length, 0u);
}

TEST(GserDecode, Strings) {
    expect_printed<kGser>({
        {kBits, "'ABC'H"},
        {kBits, "'AB CD\t\r\v\f'H", "'ABCD'H"},
        {kBits, "' 101 'B -- comment", "'101'B"},
        {kBits, "'1 0 1 1 0 0 0 1'B", "'B1'H"},
        {kBits, "''B", "''H"},
        {kOctets, "'0000000111111111'B", "'01FF'H"},
        {kOctets, "\"AB\"", "'4100'H"},  // of code points that have four bytes each
        {kOctets, "\"\u0102xyz\"", "'02010000'H"},
        {kOctets, "\"\"", "''H"},
        {kIa5, "\"\""},
        {kIa5, "\"say \"\"a\\n\"\"\n-- /*\""},
        {kIa5, "\"\u20ac\"", "\"\u00ac\""},  // a unit keeps the low bits
        {kGeneral, "\"\u00ff\0\""s},
        {kBmp, "\"\u20ac\U0001F600\"", "\"\u20ac\uF600\""},
        {kUniversal, "\"\U0001F600\"\"\u20ac\""},
        {kUtf8, "\"a\u00e9\u20ac\U0001F600\"\"\""},
        {kUtf8, "\"\xC3\xC0\"", "\"\u00c0\""},  // one stray value is let in
        {kAny, "'0A 0B'H", "'0A0B'H"},
        {kAny, "''H"},
    });
}

TEST(GserDecode, Composites) {
    const std::string ab = "{\n  a 1,\n  b TRUE\n}";
    expect_printed<kGser>({
        {kBoolean, " \t\v\f\r\nFALSE", "FALSE"},
        {kNull, "NULL NULL", "NULL"},
        {kNull, "NULL -- the end", "NULL"},
        {kEnum, "a"},
        {kEnum, "d"},
        {kAb, "{b TRUE,a 1}", ab},
        {kAb, "{a/* one */1-- two -- three\n,b/**/TRUE}", ab},
        {kEmpty, "{ -- no }\n }", "{\n}"},
        {kInts, "{/* } */}", "{\n}"},
        {kInts, "{1, -2,3,4,5}", "{\n  1,\n  -2,\n  3,\n  4,\n  5\n}"},
        {kOctetsSet, "{''H}", "{\n  ''H\n}"},
        {kOuterChoice, "inner: n:NULL", "inner: n: NULL"},
        {kSet, "{b TRUE, c n:NULL, s 'AB'H}", "{\n  s 'AB'H,\n  c n: NULL,\n  b TRUE\n}"},
        {kRecord, "{e TRUE, d 5, a 1}", "{\n  a 1,\n  e TRUE\n}"},
        {kRecord, "{a 1, e TRUE, d 4, j ''H, i TRUE, g FALSE}",
         "{\n  a 1,\n  d 4,\n  e TRUE,\n  g FALSE,\n  i TRUE,\n  j ''H\n}"},
        {kOpenRecord<kOpen>, "{id 1, value TRUE}", "{\n  id 1,\n  value TRUE\n}"},
        {kOpenRecord<kOpen>, "{id 2, value \"\"}", "{\n  id 2,\n  value ''H\n}"},
        {kOpenRecord<kOpen>, "{id 3, value 'AB'H}", "{\n  id 3,\n  value 'AB'H\n}"},
    });
}

// ---- texts that are refused -------------------------------------------------------------------------------

TEST(GserDecode, RefusedTokens) {
    const std::string unexpected_end = "unexpected end of binary or hexadecimal string";
    expect_message<kGser>({
        {kNull, "NULL\n+", "unexpected character '+'", 2},
        {kNull, "\xC3\xA9", "unexpected character '\xC3'"},
        {kNull, "\0"s, "unexpected character '"},  // the text ends at the NUL
        {kNull, "/", "unexpected character '/'"},
        {kNull, "\n/*\n\n*", "expecting end of multi-line comment", 4},
        {kNull, "/*/", "expecting end of multi-line comment"},
        {kNull, "/* /* */ */", "unexpected character '*'"},
        {kNull, "-- a -- NULL", "expecting 'NULL'"},
        {kNull, std::string(256, 'n'), "expecting 'NULL'"},
        {kNull, std::string(257, 'n'), "identifier too long"},
        {kIa5, "\"abc\"\"", "unterminated string"},
        {kEmpty, "{} \"abc", "unterminated string"},
        {kIa5, "\"\xC0\x80\"", "invalid UTF-8 code"},
        {kIa5, "\"\xE2\x82", "invalid UTF-8 code"},
        {kIa5, "\n\"a\n\x80\"", "invalid UTF-8 code", 2},  // no line inside counts
        {kBits, "'A'", unexpected_end},
        {kBits, "'zz", unexpected_end},
        {kBits, "\n'A\nB'H", unexpected_end, 2},
        {kBits, "'A' H", "expecting 'B' or 'H'"},
        {kBits, "'zz'h", "expecting 'B' or 'H'"},
        {kBits, "'ab'H", "expecting hexadecimal digits"},
        {kBits, "'0\xA0'H", "expecting hexadecimal digits"},
        {kBits, "'012'B", "expecting binary digits"},
    });
}

TEST(GserDecode, RefusedScalars) {
    const std::string no_arc = "object identifier: expecting positive integer";
    const std::string large_arc = "object identifier: integer too large";
    expect_message<kGser>({
        {kNull, "null", "expecting 'NULL'"},
        {kBoolean, "True", "expecting boolean value"},
        {kInt32, "-", "expecting integer value"},
        {kInt32, "--1\n", "expecting integer value", 2},
        {kInt32, "1E0", "expecting integer value"},
        {kInt32, "2147483648", "integer too large"},
        {kInt32, "-2147483649", "integer too large"},
        {kUintExt, "2147483648", "integer too large"},
        {kUint32, "-1", "integer too large"},
        {kUint32, "4294967296\n\nx", "integer too large", 3},  // seen behind it
        {kUint32, "9223372036854775808\n\nx", "integer too large"},
        {kReal, "9223372036854775808", "expecting real number"},
        {kReal, "-PLUS-INFINITY", "expecting real number"},
        {kReal, "PLUS-INFINITYx", "expecting real number"},
        {kEnum, "7", "expecting enumerated identifier"},
        {kEnum, "a-", "enumerated 'a-' not found"},
        {kOid, "-1.2", no_arc},
        {kOid, "1.2.", no_arc},
        {kOid, "1.2E0", no_arc},
        {kRelativeOid, "", no_arc},
        {kOid, "3.1", large_arc},
        {kOid, "1.40", large_arc},
        {kOid, "2.100", large_arc},
        {kOid, "1.2.2147483648", large_arc},
        {kRelativeOid, "99999999999999999999", large_arc},
        {kClass, "{}", "unsupported type (17)"},
        {kIa5, "abc", "expecting character string"},
        {kUtf8, "'AB'H", "expecting character string"},
        {kBits, "\"AB\"", "expecting bit string value"},
        {kOctets, "12", "expecting octet string value"},
        {kOctets, "'1'B", "number of bits must be multiple of 8"},
        {kAny, "'11110000'B", "any: expecting hex string"},
        {kAny, "'ABC'H", "number of bits must be multiple of 8"},
    });
}

// Which components may stand and must is looked at closely here; it is the same in every text syntax.
TEST(GserDecode, RefusedComposites) {
    const std::string no_name = "expecting sequence/set component name", no_end = "expecting ',' or '}'";
    const std::string long_name(256, 'q');
    expect_message<kGser>({
        {kAb, "(", "expecting '{'"},
        {kAb, "{ a 1, }", no_name},
        {kAb, "{ TRUE 1 }", no_name},
        {kAb, "{ a 1", no_end},
        {kAb, "{ a 1 b TRUE }", no_end},
        {kAb, "{ a : 1 }", "expecting integer value"},
        {kAb, "{ a 1,\n aa 2 }", "sequence/set component 'aa' not found", 2},
        {kAb, "{ " + long_name + " 2 }", ("sequence/set component '" + long_name).substr(0, 255)},
        {kAb, "{ a 1, a 2 }", "sequence/set component a defined twice"},
        {kAb, "{ b TRUE\n}\n", "component 'a' must be present", 3},
        {kRecord, "{a 1, e TRUE, h 1}",
         "extension 'h' cannot be present because a previous mandatory extension was absent"},
        {kRecord, "{a 1, e TRUE, g TRUE, h 1}", "extension group component 'i' must be present"},
        {kInts, "(", "expecting '{'"},
        {kInts, "{1,}", "expecting integer value"},
        {kInts, "{1 2}", no_end},
        {kOctetsSet, "{''H, ''H, '0'H}", "number of bits must be multiple of 8"},
        {kChoice, "{n NULL}", "expecting choice identifier"},
        {kChoice, "w:NULL", "choice 'w' not found"},
        {kChoice, "n NULL", "expecting ':'"},
        {kChoice, "s:'0'H", "number of bits must be multiple of 8"},
        {kChain, "{next {next {next 0}}}", "expecting '{'"},
        {kOpenRecord<kOpen>, "{value TRUE, id 1}", "any: expecting hex string"},  // too early
        {kOpenRecord<kOpen>, "{id 1, value 'AB'H}", "expecting boolean value"},
    });
}

}  // namespace
}  // namespace orlenta::test
