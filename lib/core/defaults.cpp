// SPDX-License-Identifier: Apache-2.0
#include "core/descriptor.hpp"

using namespace orlenta;

int asn1_sequence_set_default_fields(const asn1_field* fields, int32_t n, void* record, const uint8_t* seen) {
    for (int32_t i = 0; i < n; ++i) {
        if (seen[i] != 0 || field_option(&fields[i]) != ASN1_OPTION_DEFAULT) continue;
        if (asn1_sequence_set_default_value(record, &fields[i]) != 0) return -1;
    }
    return 0;
}

int asn1_sequence_set_default_value(void* record, const asn1_field* field) {
    void* value = field_value(field, record);
    if (!holds_big_integer(field_type(field))) {
        store32(value, low32(field->extra));
        return 0;
    }
    asn1_integer* integer = static_cast<asn1_integer*>(value);
    asn1_integer_init(integer);
    return asn1_integer_set(integer, field->extra.integer);
}

int asn1_sequence_is_default_present(const void* record, const asn1_field* field) {
    const void* value = field_value(field, record);
    if (!holds_big_integer(field_type(field))) return load32(value) != low32(field->extra);
    return asn1_integer_cmp(static_cast<const asn1_integer*>(value), field->extra.integer) != 0;
}
