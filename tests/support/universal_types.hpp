// SPDX-License-Identifier: Apache-2.0
// One type of every kind, under its universal tag, and what can be built of them.
#pragma once

#include "tests/support/descriptors.hpp"

namespace orlenta::test {

constexpr uint32_t kExt = ASN1_WORD0_EXTENSIBLE;
constexpr uint32_t kLower = ASN1_WORD0_HAS_LOWER;
constexpr uint32_t kUpper = ASN1_WORD0_HAS_UPPER;
constexpr uint32_t kAddition = ASN1_FIELD_ADDITION;

inline const asn1_word kBoolean[] = {head(ASN1_KIND_BOOLEAN, 0, 1)};
inline const asn1_word kInt32[] = {head(ASN1_KIND_INTEGER, kBounds, 2), num(INT32_MIN), num(INT32_MAX)};
inline const asn1_word kUint32[] = {head(ASN1_KIND_INTEGER, kBounds, 2), num(0), num(UINT32_MAX)};
inline const asn1_word kBig[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG, 2)};
inline const asn1_word kBits[] = {head(ASN1_KIND_BIT_STRING, kLower, 3), num(0)};
inline const asn1_word kOctets[] = {head(ASN1_KIND_OCTET_STRING, kLower, 4), num(0)};
inline const asn1_word kNull[] = {head(ASN1_KIND_NULL, 0, 5)};
inline const asn1_word kOid[] = {head(ASN1_KIND_OBJECT_IDENTIFIER, 0, 6)};
inline const asn1_word kReal[] = {head(ASN1_KIND_REAL, 0, 9)};
inline const asn1_word kRelativeOid[] = {head(ASN1_KIND_RELATIVE_OID, 0, 13)};
inline const asn1_word kUtf8[] = {head(ASN1_KIND_CHAR_STRING, 0, 12), num(ASN1_STRING_UTF8)};
inline const asn1_word kIa5[] = {head(ASN1_KIND_CHAR_STRING, kLower, 22), num(ASN1_STRING_IA5), num(0),
                                 num(0)};
inline const asn1_word kUniversal[] = {head(ASN1_KIND_CHAR_STRING, kLower, 28), num(ASN1_STRING_UNIVERSAL),
                                       num(0), num(0)};
inline const asn1_word kBmp[] = {head(ASN1_KIND_CHAR_STRING, kLower, 30), num(ASN1_STRING_BMP), num(0),
                                 num(0)};
inline const asn1_word kAny[] = {head(ASN1_KIND_ANY)};
inline const asn1_word kClass[] = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(0), txt("CLASS")};

// a (7), b (-1), ..., c (300), d (128): the numbers differ from the positions.
inline const asn1_word kEnum[] = {head(ASN1_KIND_ENUMERATED, kExt | ASN1_WORD0_VALUE_TABLE, 10),
                                  num(2),
                                  num(2),
                                  txt("a"),
                                  txt("b"),
                                  txt("c"),
                                  txt("d"),
                                  num(7),
                                  num(-1),
                                  num(300),
                                  num(128),
                                  num(-1),
                                  num(1),
                                  num(7),
                                  num(0),
                                  num(128),
                                  num(3),
                                  num(300),
                                  num(2)};

inline const asn1_word kBooleans[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(4), ref(kBoolean),
                                      num(0)};
inline const asn1_word kOctetsSet[] = {
    head(ASN1_KIND_SET_OF, kBounds, 17), num(0), num(9), num(16), ref(kOctets), num(0)};

// [0] and so on, implicit; the one around a CHOICE is explicit.
template <uint32_t number, const asn1_word* inner, uint32_t flags = 0>
inline const asn1_word kTagged[] = {head(ASN1_KIND_TAGGED, flags, context(number)), ref(inner)};

// CHOICE { n NULL, t [31] INTEGER, ..., s OCTET STRING }
inline const asn1_word kChoice[] = {
    head(ASN1_KIND_CHOICE, kExt), num(2),   num(1),       num(24), num(0), num(8), ref(kNull), txt("n"),
    ref(kTagged<31, kInt32>),     txt("t"), ref(kOctets), txt("s")};
// CHOICE { inner CHOICE ..., r REAL }
inline const asn1_word kOuterChoice[] = {head(ASN1_KIND_CHOICE), num(2),       num(32),    num(0),  num(8),
                                         ref(kChoice),           txt("inner"), ref(kReal), txt("r")};
inline const asn1_word kExplicitChoice[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_EXPLICIT, context(2)),
                                            ref(kChoice)};

// The same CHOICE with a tag of its own, which wraps the alternative.
inline const asn1_word kTaggedChoice[] = {head(ASN1_KIND_CHOICE, kExt, context(12)),
                                          num(2),
                                          num(1),
                                          num(24),
                                          num(0),
                                          num(8),
                                          ref(kNull),
                                          txt("n"),
                                          ref(kTagged<31, kInt32>),
                                          txt("t"),
                                          ref(kOctets),
                                          txt("s")};

// SEQUENCE { a INTEGER, b [0] BOOLEAN OPTIONAL, c [1] OCTET STRING OPTIONAL, d [2] INTEGER DEFAULT 5, e BOOLEAN,
//            f [3] INTEGER OPTIONAL, ..., g [4] BOOLEAN, [[ h [5] INTEGER OPTIONAL, i [6] BOOLEAN ]],
//            j [7] OCTET STRING OPTIONAL }
// clang-format off
inline const asn1_word kRecord[] = {
    head(ASN1_KIND_SEQUENCE, kExt, 16), num(10), num(96),
    field(0), ref(kInt32), num(0), txt("a"),
    field(8, ASN1_OPTION_OPTIONAL), ref(kTagged<0, kBoolean>), num(4), txt("b"),
    field(16, ASN1_OPTION_OPTIONAL), ref(kTagged<1, kOctets>), num(12), txt("c"),
    field(32, ASN1_OPTION_DEFAULT), ref(kTagged<2, kInt32>), num(5), txt("d"),
    field(36), ref(kBoolean), num(0), txt("e"),
    field(44, ASN1_OPTION_OPTIONAL), ref(kTagged<3, kInt32>), num(40), txt("f"),
    field(52, ASN1_OPTION_MANDATORY, kAddition), ref(kTagged<4, kBoolean>), num(48), txt("g"),
    field(60, ASN1_OPTION_OPTIONAL, kAddition | ASN1_FIELD_OPENS_GROUP), ref(kTagged<5, kInt32>), num(56), txt("h"),
    field(68, ASN1_OPTION_MANDATORY, kAddition | ASN1_FIELD_CLOSES_GROUP), ref(kTagged<6, kBoolean>), num(64),
    txt("i"),
    field(80, ASN1_OPTION_OPTIONAL, kAddition), ref(kTagged<7, kOctets>), num(72), txt("j"),
};
// clang-format on

// SET { s OCTET STRING, c CHOICE ..., b BOOLEAN OPTIONAL }
// clang-format off
inline const asn1_word kSet[] = {
    head(ASN1_KIND_SET, 0, 17), num(3), num(48),
    field(0), ref(kOctets), num(0), txt("s"),
    field(16), ref(kChoice), num(0), txt("c"),
    field(44, ASN1_OPTION_OPTIONAL), ref(kBoolean), num(40), txt("b"),
};
// clang-format on

// SEQUENCE { id CLASS.&id, value CLASS.&Type ({Set}{@id}) } with the rows (1, BOOLEAN), (2, OCTET STRING)
inline const asn1_word kIdType[] = {head(ASN1_KIND_INTEGER, kBounds, 2), num(0), num(255)};
inline const asn1_word kIdClass[] = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME),
                                     num(2),
                                     num(ASN1_CLASS_FIELD_VALUE),
                                     ref(kIdType),
                                     num(0),
                                     txt("&id"),
                                     num(ASN1_CLASS_FIELD_TYPE),
                                     num(0),
                                     num(0),
                                     txt("&Type"),
                                     txt("IDS")};
inline const uint32_t kIds[] = {1, 2};
inline const asn1_word kRows[] = {constant(&kIds[0]), ref(kBoolean), constant(&kIds[1]), ref(kOctets)};
inline const asn1_word kTable[] = {
    num(ASN1_CONSTRAINT_TABLE),     ref(kIdClass), num(1), ref(kRows), num(2), num(1), num(0),
    {.number = ASN1_SELECTOR_LAST}, num(0)};
inline const asn1_word kOpen[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(kTable)};
inline const asn1_word kTaggedOpen[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED, context(1)), ref(kTable)};
template <const asn1_word* open>
inline const asn1_word kOpenRecord[] = {head(ASN1_KIND_SEQUENCE, 0, 16),
                                        num(2),
                                        num(32),
                                        field(0),
                                        ref(kIdType),
                                        num(0),
                                        txt("id"),
                                        field(8),
                                        ref(open),
                                        num(0),
                                        txt("value")};

}  // namespace orlenta::test
