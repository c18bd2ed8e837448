// SPDX-License-Identifier: Apache-2.0
// Descriptors written by hand, for what the message sets do not use: words are named as the format names them.
#pragma once

#include <orlenta/integer.h>
#include <orlenta/type.h>

#include <vector>

namespace orlenta::test {

// Word 0: kind, flags (ASN1_WORD0_...) and tag (class << 19 | number), stored sign-extended as in every table.
constexpr asn1_word head(uint32_t kind, uint32_t flags = 0, uint32_t tag = 0) {
    return {.number = static_cast<uint64_t>(
                static_cast<int64_t>(static_cast<int32_t>(kind << ASN1_WORD0_KIND_SHIFT | flags | tag)))};
}
constexpr uint32_t context(uint32_t number) { return UINT32_C(2) << ASN1_TAG_CLASS_SHIFT | number; }
// A number, bound or count; a negative bound is stored as its 32-bit pattern.
constexpr asn1_word num(int64_t n) { return {.number = static_cast<uint32_t>(n)}; }
constexpr asn1_word ref(const asn1_word* type) { return {.type = type}; }
constexpr asn1_word constant(const uint32_t* value) { return {.address = value}; }
constexpr asn1_word txt(const char* text) { return {.text = text}; }
constexpr asn1_word big(const asn1_integer* integer) { return {.integer = integer}; }

constexpr uint32_t kBounds = ASN1_WORD0_HAS_LOWER | ASN1_WORD0_HAS_UPPER;

// A field's first word.
constexpr asn1_word field(uint32_t offset, uint32_t option = ASN1_OPTION_MANDATORY, uint32_t flags = 0) {
    return {.number = offset | option << ASN1_FIELD_OPTION_SHIFT | flags};
}

}  // namespace orlenta::test
