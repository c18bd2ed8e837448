// SPDX-License-Identifier: Apache-2.0
#include <orlenta/type_info.h>

#include "core/descriptor.hpp"

using namespace orlenta;

const char* const asn1_ctype_names[18] = {
    "SEQUENCE",          "SEQUENCE_OF",  "SET",          "SET_OF",      "CHOICE", "INTEGER",
    "BOOLEAN",           "BIT_STRING",   "OCTET_STRING", "ENUMERATED",  "NULL",   "TAGGED",
    "OBJECT_IDENTIFIER", "RELATIVE_OID", "REAL",         "CHAR_STRING", "ANY",    "OBJECT_CLASS",
};

const char* const asn1_char_string_str[11] = {
    "NumericString", "PrintableString", "VisibleString", "IA5String",     "BMPString",      "UniversalString",
    "UTF8String",    "GeneralString",   "GraphicString", "TeletexString", "VideotexString",
};

const char* asn1_get_generic_type_name(const asn1_type_desc* desc) {
    desc = untagged(desc);
    uint32_t kind = kind_of(desc);
    if (kind == ASN1_KIND_CHAR_STRING)
        return string_type(desc) < 11 ? asn1_char_string_str[string_type(desc)] : "?";
    return kind != ASN1_KIND_ANY && kind <= ASN1_KIND_OBJECT_CLASS ? asn1_ctype_names[kind] : "?";
}

static const asn1_word* name_of_char_string(const asn1_type_desc* desc) {
    if (string_type(desc) > ASN1_STRING_UNIVERSAL) return desc + 2;
    char_string_layout string = char_string_of(desc);
    return string.ranges + 2 * (string.range_count > 0 ? static_cast<size_t>(string.range_count) : 0);
}

static const asn1_word* name_of_choice(const asn1_type_desc* desc) {
    choice_layout choice = choice_of(desc);
    return reinterpret_cast<const asn1_word*>(choice.alternatives + choice.total);
}

static const asn1_word* name_of_enumerated(const asn1_type_desc* desc) {
    enum_layout items = enum_of(desc);
    return items.names + items.total;
}

// Where a descriptor that has a name word keeps it.
static const asn1_word* name_word(const asn1_type_desc* desc) {
    switch (kind_of(desc)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            return reinterpret_cast<const asn1_word*>(components(desc) + component_count(desc));
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
            return desc + 5 + words_if(desc, ASN1_WORD0_HAS_UPPER);  // a lower bound is taken for granted
        case ASN1_KIND_CHOICE: return name_of_choice(desc);
        case ASN1_KIND_INTEGER:
        case ASN1_KIND_BIT_STRING:
        case ASN1_KIND_OCTET_STRING: return behind_bounds(desc);
        case ASN1_KIND_ENUMERATED: return name_of_enumerated(desc);
        case ASN1_KIND_CHAR_STRING: return name_of_char_string(desc);
        case ASN1_KIND_OBJECT_CLASS:
            return reinterpret_cast<const asn1_word*>(class_fields(desc) + class_field_count(desc));
        default: return desc + 1;  // of a TAGGED this is the inner descriptor, as the interface says
    }
}

const char* asn1_get_user_type_name(const asn1_type_desc* desc) {
    if (!has_flag(desc, ASN1_WORD0_HAS_NAME) || kind_of(desc) > ASN1_KIND_OBJECT_CLASS) return nullptr;
    return name_word(desc)->text;
}

const char* asn1_get_type_name(const asn1_type_desc* desc) {
    const char* name = asn1_get_user_type_name(desc);
    return name != nullptr ? name : asn1_get_generic_type_name(desc);
}
