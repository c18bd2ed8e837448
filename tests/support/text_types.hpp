// SPDX-License-Identifier: Apache-2.0
// Types that the tests of the text syntaxes share, beyond the universal ones.
#pragma once

#include "tests/support/universal_types.hpp"

namespace orlenta::test {

inline const asn1_word kUintExt[] = {head(ASN1_KIND_INTEGER, kBounds | kExt, 2), num(0), num(100)};
inline const asn1_word kGeneral[] = {head(ASN1_KIND_CHAR_STRING, 0, 27), num(ASN1_STRING_GENERAL)};

// clang-format off

inline const asn1_word kInts[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(4), ref(kInt32), num(0)};

// SEQUENCE { a INTEGER, b BOOLEAN }
inline const asn1_word kAb[] = {
    head(ASN1_KIND_SEQUENCE, 0, 16), num(2), num(8),
    field(0), ref(kInt32), num(0), txt("a"),
    field(4), ref(kBoolean), num(0), txt("b")};

// SEQUENCE { list SEQUENCE OF INTEGER, choice CHOICE ..., empty SEQUENCE {}, real REAL }
inline const asn1_word kEmpty[] = {head(ASN1_KIND_SEQUENCE, 0, 16), num(0), num(1)};
inline const asn1_word kNested[] = {
    head(ASN1_KIND_SEQUENCE, 0, 16), num(4), num(64),
    field(0), ref(kInts), num(0), txt("list"),
    field(16), ref(kExplicitChoice), num(0), txt("choice"),
    field(40), ref(kEmpty), num(0), txt("empty"),
    field(48), ref(kReal), num(0), txt("real")};

// clang-format on

}  // namespace orlenta::test
