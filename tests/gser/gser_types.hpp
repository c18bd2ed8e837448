// Types for the GSER tests beyond the universal ones, and decode and encode as one call each.
#pragma once

#include <orlenta/gser.h>

#include <string>

#include "tests/support/octet_codec.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {

inline const asn1_word kUintExt[] = {head(ASN1_KIND_INTEGER, kBounds | kExt, 2), num(0), num(100)};
inline const asn1_word kGeneral[] = {head(ASN1_KIND_CHAR_STRING, 0, 27), num(ASN1_STRING_GENERAL)};

// clang-format off

inline const asn1_word kInts[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(4), ref(kInt32), num(0)};
inline const asn1_word kOctetsList[] = {head(ASN1_KIND_SEQUENCE_OF, kBounds, 16), num(0), num(9), num(16), ref(kOctets),
                                        num(0)};

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

// ---- calls ------------------------------------------------------------------------------------------------

inline decoded decode_text(const asn1_type_desc* type, const std::string& text) {
    return decode(asn1_gser_decode, type, octets(text.begin(), text.end()));
}

// The text, or "-1".
inline std::string encode_text(const asn1_type_desc* type, const void* value,
                               const asn1_gser_encode_options& options = {}) {
    uint8_t* text = nullptr;
    int64_t length = asn1_gser_encode2(&text, type, value, &options);
    EXPECT_EQ(length < 0, text == nullptr);
    if (length < 0) return std::to_string(length);
    std::string copy(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
    asn1_free(text);
    return copy;
}

}  // namespace orlenta::test
