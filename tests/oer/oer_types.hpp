// SPDX-License-Identifier: Apache-2.0
// Types whose bounds decide their OER form.
#pragma once

#include "tests/support/universal_types.hpp"

namespace orlenta::test {

template <int64_t low, int64_t high>
inline const asn1_word kRange[] = {head(ASN1_KIND_INTEGER, kBounds, 2), num(low), num(high)};
template <int64_t low>
inline const asn1_word kFrom[] = {head(ASN1_KIND_INTEGER, kLower, 2), num(low)};
inline const asn1_word kUpTo[] = {head(ASN1_KIND_INTEGER, kUpper, 2), num(-1)};
inline const asn1_word kByte[] = {head(ASN1_KIND_INTEGER, kBounds, 2), num(0), num(255)};
inline const asn1_word kByteExt[] = {head(ASN1_KIND_INTEGER, kBounds | kExt, 2), num(0), num(255)};

inline uint32_t kLimbs[] = {1, 128, 127, 0x7FFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0, 0, 1};
inline const asn1_integer k0 = {nullptr, 0, 0, 0};
inline const asn1_integer kMinus1 = {&kLimbs[0], 1, 1, 1};
inline const asn1_integer kMinus128 = {&kLimbs[1], 1, 1, 1};
inline const asn1_integer k127 = {&kLimbs[2], 1, 1, 0};
inline const asn1_integer kMax31 = {&kLimbs[3], 1, 1, 0};
inline const asn1_integer kMax64 = {&kLimbs[4], 2, 2, 0};
inline const asn1_integer k2To64 = {&kLimbs[6], 3, 3, 0};

constexpr uint32_t kBigFlag = ASN1_WORD0_BIG;
inline const asn1_word kBigFrom0[] = {head(ASN1_KIND_INTEGER, kBigFlag | kLower, 2), big(&k0)};
inline const asn1_word kBigFromMinus1[] = {head(ASN1_KIND_INTEGER, kBigFlag | kLower, 2), big(&kMinus1)};
inline const asn1_word kBigTo64[] = {head(ASN1_KIND_INTEGER, kBigFlag | kBounds, 2), big(&k0), big(&kMax64)};
inline const asn1_word kBigTo65[] = {head(ASN1_KIND_INTEGER, kBigFlag | kBounds, 2), big(&k0), big(&k2To64)};
inline const asn1_word kBigExt[] = {head(ASN1_KIND_INTEGER, kBigFlag | kBounds | kExt, 2), big(&k0),
                                    big(&kMax64)};
inline const asn1_word kBigSigned32[] = {head(ASN1_KIND_INTEGER, kBigFlag | kBounds, 2), big(&kMinus1),
                                         big(&kMax31)};
// The lower bound is taken for a number of 9 bits.
inline const asn1_word kBigSigned8[] = {head(ASN1_KIND_INTEGER, kBigFlag | kBounds, 2), big(&kMinus128),
                                        big(&k127)};

inline const asn1_word kBits0[] = {head(ASN1_KIND_BIT_STRING, kBounds, 3), num(0), num(0)};
inline const asn1_word kBits12[] = {head(ASN1_KIND_BIT_STRING, kBounds, 3), num(12), num(12)};
inline const asn1_word kBits12Ext[] = {head(ASN1_KIND_BIT_STRING, kBounds | kExt, 3), num(12), num(12)};
inline const asn1_word kOctets2[] = {head(ASN1_KIND_OCTET_STRING, kBounds, 4), num(2), num(2)};
inline const asn1_word kOctets2Ext[] = {head(ASN1_KIND_OCTET_STRING, kBounds | kExt, 4), num(2), num(2)};
// The extension marker plays no part in character strings.
inline const asn1_word kIa5Size2[] = {head(ASN1_KIND_CHAR_STRING, kBounds | kExt, 22), num(ASN1_STRING_IA5),
                                      num(2), num(2), num(0)};
inline const asn1_word kBmpSize2[] = {head(ASN1_KIND_CHAR_STRING, kBounds, 30), num(ASN1_STRING_BMP), num(2),
                                      num(2), num(0)};

inline const asn1_word kTwoBytes[] = {
    head(ASN1_KIND_SEQUENCE_OF, kBounds, 16), num(2), num(2), num(4), ref(kByte), num(0)};
inline const asn1_word kNulls[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(1), ref(kNull),
                                   num(0)};

inline const asn1_word kEmpty[] = {head(ASN1_KIND_SEQUENCE, 0, 16), num(0), num(1)};
inline const asn1_word kEmptyExt[] = {head(ASN1_KIND_SEQUENCE, kExt, 16), num(0), num(1)};
// SEQUENCE { ..., [[ x INTEGER (0..255) DEFAULT 5, y INTEGER (0..255) OPTIONAL ]] }
inline const asn1_word kDefaultInGroup[] = {
    head(ASN1_KIND_SEQUENCE, kExt, 16),
    num(2),
    num(12),
    field(0, ASN1_OPTION_DEFAULT, kAddition | ASN1_FIELD_OPENS_GROUP),
    ref(kByte),
    num(5),
    txt("x"),
    field(8, ASN1_OPTION_OPTIONAL, kAddition | ASN1_FIELD_CLOSES_GROUP),
    ref(kByte),
    num(4),
    txt("y")};
// SEQUENCE { ..., x INTEGER (0..255) DEFAULT 5 }
inline const asn1_word kDefaultAddition[] = {head(ASN1_KIND_SEQUENCE, kExt, 16),
                                             num(1),
                                             num(4),
                                             field(0, ASN1_OPTION_DEFAULT, kAddition),
                                             ref(kByte),
                                             num(5),
                                             txt("x")};

// Nine components INTEGER (0..255) OPTIONAL, in the root or as additions.
template <uint32_t type_flags, uint32_t field_flags>
struct nine_components {
    asn1_word words[3 + 9 * 4] = {head(ASN1_KIND_SEQUENCE, type_flags, 16), num(9), num(72)};
    constexpr nine_components() {
        for (uint32_t i = 0; i < 9; ++i) {
            words[3 + i * 4] = field(i * 8 + 4, ASN1_OPTION_OPTIONAL, field_flags);
            words[4 + i * 4] = ref(kByte);
            words[5 + i * 4] = num(i * 8);
            words[6 + i * 4] = txt("n");
        }
    }
};
inline const nine_components<0, 0> kNineRoot;
inline const nine_components<kExt, kAddition> kNineBehind;
inline const asn1_word* const kNine = kNineRoot.words;
inline const asn1_word* const kNineAdditions = kNineBehind.words;

}  // namespace orlenta::test
