// SPDX-License-Identifier: Apache-2.0
// Types whose values nest without end: by a list, an indirect component, a CHOICE, an open type.
#pragma once

#include "tests/support/universal_types.hpp"

namespace orlenta::test {

// Tree ::= SEQUENCE OF Tree
inline const asn1_word kTree[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(16), ref(kTree),
                                  num(0)};

// Chain ::= SEQUENCE { next [0] Chain OPTIONAL }
extern const asn1_word kChain[7];
inline const asn1_word kLink[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(kChain)};
inline const asn1_word kChain[7] = {head(ASN1_KIND_SEQUENCE, 0, 16),
                                    num(1),
                                    num(16),
                                    field(8, ASN1_OPTION_OPTIONAL),
                                    ref(kLink),
                                    num(0),
                                    txt("next")};

// Filter ::= CHOICE { present [0] NULL, not [1] Filter, and [2] SEQUENCE OF Filter }
extern const asn1_word kFilter[11];
inline const asn1_word kNot[] = {
    head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT | ASN1_WORD0_EXPLICIT, context(1)), ref(kFilter)};
inline const asn1_word kAnd[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, context(2)), num(0), num(24),
                                 ref(kFilter), num(0)};
inline const asn1_word kFilter[11] = {
    head(ASN1_KIND_CHOICE), num(3),    num(24),    num(0),    num(8),    ref(kTagged<0, kNull>),
    txt("present"),         ref(kNot), txt("not"), ref(kAnd), txt("and")};

// Shell ::= SEQUENCE { id CLASS.&id, value CLASS.&Type ({Set}{@id}) } with the rows (1, Shell), (2, NULL)
extern const asn1_word kShell[11];
inline const asn1_word kShellRows[] = {constant(&kIds[0]), ref(kShell), constant(&kIds[1]), ref(kNull)};
inline const asn1_word kShellTable[] = {
    num(ASN1_CONSTRAINT_TABLE),     ref(kIdClass), num(1), ref(kShellRows), num(2), num(1), num(0),
    {.number = ASN1_SELECTOR_LAST}, num(0)};
inline const asn1_word kShellOpen[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(kShellTable)};
inline const asn1_word kShell[11] = {head(ASN1_KIND_SEQUENCE, 0, 16),
                                     num(2),
                                     num(32),
                                     field(0),
                                     ref(kIdType),
                                     num(0),
                                     txt("id"),
                                     field(8),
                                     ref(kShellOpen),
                                     num(0),
                                     txt("value")};

}  // namespace orlenta::test
