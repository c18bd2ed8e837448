// Types for the JSON tests, and decode and encode as one call each.
#pragma once

#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/descriptors.hpp"

namespace orlenta::test {

constexpr uint32_t kExt = ASN1_WORD0_EXTENSIBLE;
constexpr uint32_t kLower = ASN1_WORD0_HAS_LOWER;

inline const asn1_word kInt5[] = {head(ASN1_KIND_INTEGER, kBounds), num(-5), num(5)};
inline const asn1_word kUint32[] = {head(ASN1_KIND_INTEGER, kBounds), num(0), num(0xFFFFFFFF)};
inline const asn1_word kUintExt[] = {head(ASN1_KIND_INTEGER, kBounds | kExt), num(0), num(100)};
inline const asn1_word kBig[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG)};
inline const asn1_word kBoolean[] = {head(ASN1_KIND_BOOLEAN)};
inline const asn1_word kNull[] = {head(ASN1_KIND_NULL)};
inline const asn1_word kReal[] = {head(ASN1_KIND_REAL)};
inline const asn1_word kOid[] = {head(ASN1_KIND_OBJECT_IDENTIFIER)};
inline const asn1_word kRelativeOid[] = {head(ASN1_KIND_RELATIVE_OID)};
inline const asn1_word kOctets[] = {head(ASN1_KIND_OCTET_STRING, kLower), num(0)};
inline const asn1_word kBits0[] = {head(ASN1_KIND_BIT_STRING, kBounds), num(0), num(0)};
inline const asn1_word kBits12[] = {head(ASN1_KIND_BIT_STRING, kBounds), num(12), num(12)};
inline const asn1_word kBits12Ext[] = {head(ASN1_KIND_BIT_STRING, kBounds | kExt), num(12), num(12)};
inline const asn1_word kBits[] = {head(ASN1_KIND_BIT_STRING, kLower), num(0)};
inline const asn1_word kIa5[] = {head(ASN1_KIND_CHAR_STRING, kLower), num(ASN1_STRING_IA5), num(0), num(0)};
inline const asn1_word kBmp[] = {head(ASN1_KIND_CHAR_STRING, kLower), num(ASN1_STRING_BMP), num(0), num(-1)};
inline const asn1_word kUniversal[] = {head(ASN1_KIND_CHAR_STRING, kLower), num(ASN1_STRING_UNIVERSAL),
                                       num(0), num(-1)};
inline const asn1_word kUtf8[] = {head(ASN1_KIND_CHAR_STRING), num(ASN1_STRING_UTF8)};
inline const asn1_word kGraphic[] = {head(ASN1_KIND_CHAR_STRING), num(ASN1_STRING_GRAPHIC)};
inline const asn1_word kClass[] = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(0), txt("CLASS")};

// clang-format off

// on, off-line, ..., later; the numbers differ from the positions.
inline const asn1_word kEnum[] = {
    head(ASN1_KIND_ENUMERATED, kExt | ASN1_WORD0_VALUE_TABLE), num(2), num(1),
    txt("on"), txt("off-line"), txt("later"),
    num(7), num(3), num(9),
    num(3), num(1), num(7), num(0), num(9), num(2)};

inline const asn1_word kList[] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(0), num(4), ref(kInt5), num(0)};
inline const asn1_word kOctetsList[] = {head(ASN1_KIND_SET_OF, kLower), num(0), num(16), ref(kOctets), num(0)};

inline const asn1_word kChoice[] = {
    head(ASN1_KIND_CHOICE, kExt), num(2), num(1), num(24), num(0), num(8),
    ref(kNull), txt("x"),
    ref(kOctets), txt("y"),
    ref(kBoolean), txt("z")};

inline const asn1_word kTagged[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_EXPLICIT, context(3)), ref(kChoice)};

struct Abc {
    int32_t a;
    asn1_array b;
    alignas(8) uint8_t c[24];
};
inline const asn1_word kAbc[] = {
    head(ASN1_KIND_SEQUENCE), num(3), num(sizeof(Abc)),
    field(offsetof(Abc, a)), ref(kInt5), num(0), txt("a"),
    field(offsetof(Abc, b)), ref(kList), num(0), txt("b"),
    field(offsetof(Abc, c)), ref(kChoice), num(0), txt("c")};

struct Optional {
    uint32_t m;
    uint32_t o_present;
    asn1_string o;
    int32_t d;
    uint32_t e_present;
    asn1_string e;
    uint32_t f_present;
};
inline const asn1_word kOptional[] = {
    head(ASN1_KIND_SET, kExt), num(5), num(sizeof(Optional)),
    field(offsetof(Optional, m)), ref(kBoolean), num(0), txt("m"),
    field(offsetof(Optional, o), ASN1_OPTION_OPTIONAL), ref(kOctets), num(offsetof(Optional, o_present)), txt("o"),
    field(offsetof(Optional, d), ASN1_OPTION_DEFAULT), ref(kInt5), num(3), txt("d"),
    field(offsetof(Optional, e), ASN1_OPTION_MANDATORY, ASN1_FIELD_ADDITION),
    ref(kOctets), num(offsetof(Optional, e_present)), txt("e"),
    field(0, ASN1_OPTION_OPTIONAL, ASN1_FIELD_ADDITION), ref(kNull), num(offsetof(Optional, f_present)), txt("f")};

inline const asn1_word kEmpty[] = {head(ASN1_KIND_SEQUENCE), num(0), num(1)};

// A type that contains itself, through a pointer.
extern const asn1_word kNode[];
inline const asn1_word kNodeReference[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(kNode)};
inline const asn1_word kNode[] = {
    head(ASN1_KIND_SEQUENCE), num(1), num(16),
    field(8, ASN1_OPTION_OPTIONAL), ref(kNodeReference), num(0), txt("next")};

// An open type by the component before it: BOOLEAN for 1, OCTET STRING for 2.
inline const uint32_t kOne = 1, kTwo = 2;
inline const asn1_word kObjectClass[] = {
    head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(2),
    num(ASN1_CLASS_FIELD_VALUE), ref(kInt5), num(0), txt("&id"),
    num(ASN1_CLASS_FIELD_TYPE), num(0), num(0), txt("&Type"),
    txt("CLASS")};
inline const asn1_word kRows[] = {{.address = &kOne}, ref(kBoolean), {.address = &kTwo}, ref(kOctets)};
inline const asn1_word kConstraint[] = {
    num(ASN1_CONSTRAINT_TABLE), ref(kObjectClass), num(1), ref(kRows), num(2),
    num(1), num(0), num(ASN1_SELECTOR_LAST), num(0)};
inline const asn1_word kAny[] = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(kConstraint)};
struct Open {
    int32_t id;
    asn1_open_value value;
};
inline const asn1_word kOpen[] = {
    head(ASN1_KIND_SEQUENCE), num(2), num(sizeof(Open)),
    field(offsetof(Open, id)), ref(kInt5), num(0), txt("id"),
    field(offsetof(Open, value)), ref(kAny), num(0), txt("value")};

// clang-format on

// ---- calls ------------------------------------------------------------------------------------------------

struct FreeValue {
    const asn1_type_desc* type;
    void operator()(void* value) const { asn1_free_value(type, value); }
};
using Value = std::unique_ptr<void, FreeValue>;

// The value, or null with `error` filled. The input is a block of its own, so that reading past it is found.
inline Value decode_json(const asn1_type_desc* type, std::string_view text, asn1_error* error = nullptr) {
    std::unique_ptr<uint8_t[]> input(new uint8_t[text.size()]);
    if (!text.empty()) std::memcpy(input.get(), text.data(), text.size());
    void* value = input.get();  // anything that is not null
    int64_t result = asn1_jer_decode(&value, type, input.get(), text.size(), error);
    if (result != (value ? static_cast<int64_t>(text.size()) : -1)) throw std::runtime_error("wrong result");
    return Value(value, FreeValue{type});
}

constexpr asn1_jer_encode_options kCompact = {nullptr, nullptr, 0, 0};

// The text, or "-1".
inline std::string encode_json(const asn1_type_desc* type, const void* value,
                               const asn1_jer_encode_options& options = kCompact) {
    uint8_t* text;
    int64_t length = asn1_jer_encode2(&text, type, value, &options);
    if ((length < 0) != (text == nullptr)) throw std::runtime_error("wrong result");
    if (length < 0) return std::to_string(length);
    std::string copy(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
    asn1_free(text);
    return copy;
}

}  // namespace orlenta::test
