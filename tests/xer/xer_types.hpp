// Types for the XML tests beyond the universal ones, and decode and encode as one call each.
#pragma once

#include <orlenta/type_info.h>
#include <orlenta/xer.h>

#include <string>

#include "tests/support/octet_codec.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {

inline const asn1_word kUintExt[] = {head(ASN1_KIND_INTEGER, kBounds | kExt, 2), num(0), num(100)};
inline const asn1_word kGeneral[] = {head(ASN1_KIND_CHAR_STRING, 0, 27), num(ASN1_STRING_GENERAL)};

constexpr uint32_t kNamed = ASN1_WORD0_HAS_NAME;

// clang-format off

// T ::= SEQUENCE { a INTEGER, b BOOLEAN, c SEQUENCE OF INTEGER, d NULL }
inline const asn1_word kInts[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(4), ref(kInt32), num(0)};
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

// Node ::= SEQUENCE { next [0] Node OPTIONAL }; Tree ::= SEQUENCE OF Tree
extern const asn1_word kNode[8];
inline const asn1_word kNext[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(kNode)};
inline const asn1_word kNode[8] = {
    head(ASN1_KIND_SEQUENCE, kNamed, 16), num(1), num(16),
    field(8, ASN1_OPTION_OPTIONAL), ref(kNext), num(0), txt("next"),
    txt("Node")};
inline const asn1_word kTree[] = {head(ASN1_KIND_SEQUENCE_OF, kLower | kNamed, 16), num(0), num(16), ref(kTree), num(0),
                                  txt("Tree")};

// clang-format on

// ---- calls ------------------------------------------------------------------------------------------------

inline decoded decode_xml(const asn1_type_desc* type, const std::string& text) {
    return decode(asn1_xer_decode, type, octets(text.begin(), text.end()));
}

// The content in the element of the type.
inline std::string in_element(const asn1_type_desc* type, const std::string& content) {
    std::string name = asn1_get_type_name(type);
    return "<" + name + ">" + content + "</" + name + ">";
}

constexpr asn1_xer_encode_options kFlat = {0, 0, 0, 0, nullptr, nullptr, 0};

// The text, or "-1".
inline std::string encode_xml(const asn1_type_desc* type, const void* value,
                              const asn1_xer_encode_options& options = kFlat) {
    uint8_t* text = nullptr;
    int64_t length = asn1_xer_encode2(&text, type, value, &options);
    EXPECT_EQ(length < 0, text == nullptr);
    if (length < 0) return std::to_string(length);
    std::string copy(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
    asn1_free(text);
    return copy;
}

}  // namespace orlenta::test
