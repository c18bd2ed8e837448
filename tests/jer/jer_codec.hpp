// SPDX-License-Identifier: Apache-2.0
// JER as the tests call it, and types that only it treats apart.
#pragma once

#include <orlenta/jer.h>

#include "tests/support/text_codec.hpp"

namespace orlenta::test {

inline std::string print_jer(const asn1_type_desc* type, const void* value,
                             const asn1_jer_encode_options& options) {
    return print_with(asn1_jer_encode2, type, value, &options);
}

inline constexpr TextCodec kJer = {
    asn1_jer_decode, asn1_jer_encode,
    [](const asn1_type_desc* type, const void* value) { return print_jer(type, value, {}); }};

inline const asn1_word kBits0[] = {head(ASN1_KIND_BIT_STRING, kBounds, 3), num(0), num(0)};
inline const asn1_word kBits12[] = {head(ASN1_KIND_BIT_STRING, kBounds, 3), num(12), num(12)};
inline const asn1_word kBits12Ext[] = {head(ASN1_KIND_BIT_STRING, kBounds | kExt, 3), num(12), num(12)};
inline const asn1_word kGraphic[] = {head(ASN1_KIND_CHAR_STRING, 0, 25), num(ASN1_STRING_GRAPHIC)};

}  // namespace orlenta::test
