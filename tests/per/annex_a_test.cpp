// SPDX-License-Identifier: Apache-2.0
// Two worked examples of X.691 Annex A: the personnel record with extension markers (A.3), and the extensions of A.4.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

TEST(AnnexA, RecordWithExtensionMarkers) {
    const std::vector<Letters> letters = {{'-', '.'}, {'A', 'Z'}, {'a', 'z'}};
    const uint32_t visible = ASN1_STRING_VISIBLE;
    Type name_string = char_string(visible, 1, 64, letters, kExt);
    Type date = char_string(visible, 8, 8, {{'0', '9'}}, kExt);
    Type name = sequence({{name_string, "givenName"},
                          {char_string(visible, 1, 1, letters), "initial"},
                          {name_string, "familyName"}},
                         kExt);
    // Members stand in the order of their tags.
    Type child =
        sequence({{name, "name"}, {date, "dateOfBirth"}, {enumerated(3, -1), "sex", kOptional, kAddition}},
                 kExt, ASN1_KIND_SET);
    Type record = sequence({{name, "name"},
                            {integer(0, 9999, kExt), "number"},
                            {char_string(visible, 0, -1, {{0x20, 0x7E}}), "title"},
                            {date, "dateOfHire"},
                            {name, "nameOfSpouse"},
                            {list_of(child, 2, 2, kExt), "children", kOptional}},
                           kExt, ASN1_KIND_SET);
    expect_rows({{record,
                  R"({name {givenName "John", initial "P", familyName "Smith"}, number 51, title "Director",
                      dateOfHire "19710917", nameOfSpouse {givenName "Mary", initial "T", familyName "Smith"},
                      children {{name {givenName "Ralph", initial "T", familyName "Smith"}, dateOfBirth "19571111"},
                                {name {givenName "Susan", initial "B", familyName "Jones"}, dateOfBirth "19590717",
                                 sex i1}}})",
                  "x40CBAA3A5108A5125F180330889A7965C7D37F20CB8848B819CE5BA2A114A24BE3011372"
                  "7AE3542294497C619571111822985CE521842EAA60B832B20E2E020280",
                  "x40C04A6F686E5008536D697468000033084469726563746F7200"
                  "19710917034D6172795408536D697468010052616C70685408536D69746800"
                  "195711118200537573616E42084A6F6E65730019590717010140"}});
}

// Ax ::= SEQUENCE {a INTEGER (250..253), b BOOLEAN, c CHOICE {d INTEGER, ..., [[e BOOLEAN, f IA5String]], ...}, ...,
//                  [[g NumericString (SIZE (3)), h BOOLEAN OPTIONAL]], ..., i BMPString OPTIONAL,
//                  j PrintableString OPTIONAL}
TEST(AnnexA, ExtensionsAndGroups) {
    Type g = char_string(ASN1_STRING_NUMERIC, 3, 3, {{' ', ' '}, {'0', '9'}});
    Type ax = sequence({{integer(250, 253), "a"},
                        {kBoolean, "b"},
                        {choice(2, {{kInteger, "d"}, {kBoolean, "e"}, {kIa5, "f"}}), "c"},
                        {kBmp, "i", kOptional},
                        {kIa5, "j", kOptional},
                        {g, "g", ASN1_OPTION_MANDATORY, kOpens},
                        {kBoolean, "h", kOptional, kCloses}},
                       kExt);
    expect_rows(
        {{ax, R"({a 253, b TRUE, c e : TRUE, g "123", h TRUE})", "x9E000600040A4690", "x9E000180010291A4"}});
}

}  // namespace
}  // namespace orlenta::test
