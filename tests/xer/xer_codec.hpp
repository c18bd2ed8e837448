// SPDX-License-Identifier: Apache-2.0
// XER as the tests call it, and types whose names or list items show in XML.
#pragma once

#include <orlenta/type_info.h>
#include <orlenta/xer.h>

#include "tests/support/text_codec.hpp"

namespace orlenta::test {

// The content in the element of the type.
inline std::string in_element(const asn1_type_desc* type, const std::string& content) {
    std::string name = asn1_get_type_name(type);
    return "<" + name + ">" + content + "</" + name + ">";
}

inline std::string print_xer(const asn1_type_desc* type, const void* value,
                             const asn1_xer_encode_options& options) {
    return print_with(asn1_xer_encode2, type, value, &options);
}

// Printed on one line and without empty tags.
inline constexpr TextCodec kXer = {
    asn1_xer_decode, asn1_xer_encode,
    [](const asn1_type_desc* type, const void* value) { return print_xer(type, value, {}); }, in_element};

constexpr uint32_t kNamed = ASN1_WORD0_HAS_NAME;

// clang-format off

// T ::= SEQUENCE { a INTEGER, b BOOLEAN, c SEQUENCE OF INTEGER, d NULL }
inline const asn1_word kT[] = {
    head(ASN1_KIND_SEQUENCE, kNamed, 16), num(4), num(24),
    field(0), ref(kInt32), num(0), txt("a"),
    field(4), ref(kBoolean), num(0), txt("b"),
    field(8), ref(kInts), num(0), txt("c"),
    field(0), ref(kNull), num(0), txt("d"),
    txt("T")};

// E ::= SEQUENCE { e ENUMERATED ..., o OCTET STRING OPTIONAL }
inline const asn1_word kE[] = {
    head(ASN1_KIND_SEQUENCE, kNamed, 16), num(2), num(24),
    field(0), ref(kEnum), num(0), txt("e"),
    field(8, ASN1_OPTION_OPTIONAL), ref(kOctets), num(4), txt("o"),
    txt("E")};

inline const asn1_word kEnums[] = {head(ASN1_KIND_SEQUENCE_OF, kBounds | kNamed, 16), num(0), num(9), num(4),
                                   ref(kTagged<1, kEnum>), num(0), txt("Enums")};
inline const asn1_word kChoices[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(24),
                                     ref(kExplicitChoice), num(0)};
inline const asn1_word kItems[] = {head(ASN1_KIND_SET_OF, kLower, 17), num(0), num(16), ref(kOctets), txt("item")};

// The name that a named TAGGED type goes by is its inner descriptor's first byte: here the tag of BOOLEAN.
inline const asn1_word kNamedTagged[] = {head(ASN1_KIND_TAGGED, kNamed, context(1)), ref(kBoolean), txt("Flag")};

// clang-format on

}  // namespace orlenta::test
