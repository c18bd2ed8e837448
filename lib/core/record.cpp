// SPDX-License-Identifier: Apache-2.0
// The record of a value: its size, and a new one.
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include "core/descriptor.hpp"

using namespace orlenta;

int64_t asn1_get_size(const asn1_type_desc* desc) {
    for (;; desc = tagged_inner(desc)) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return static_cast<int64_t>(record_size(desc));
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF: return sizeof(asn1_array);
            case ASN1_KIND_CHOICE: return static_cast<int64_t>(choice_of(desc).size);
            case ASN1_KIND_INTEGER: return is_big_integer(desc) ? sizeof(asn1_integer) : sizeof(uint32_t);
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED: return sizeof(uint32_t);
            case ASN1_KIND_BIT_STRING: return sizeof(asn1_bit_string);
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
            case ASN1_KIND_CHAR_STRING: return sizeof(asn1_string);
            case ASN1_KIND_NULL: return 1;
            case ASN1_KIND_REAL: return sizeof(double);
            case ASN1_KIND_ANY: return sizeof(asn1_open_value);
            case ASN1_KIND_OBJECT_CLASS: return static_cast<int64_t>(class_field_count(desc)) * 8;
            case ASN1_KIND_TAGGED:
                if (is_indirect(desc)) return sizeof(asn1_word);
                break;
            default: return -1;
        }
    }
}

void* asn1_mallocz_value(const asn1_type_desc* desc) {
    int64_t size = asn1_get_size(desc);
    return size >= 0 ? asn1_mallocz(static_cast<size_t>(size)) : nullptr;
}
