// SPDX-License-Identifier: Apache-2.0
#include "core/presence.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

// Marks the components that go out; true if an extension addition is among them.
static bool mark_present(const asn1_field* fields, uint32_t n, const void* record, uint8_t* presence) {
    bool any_extension = false;
    for (uint32_t i = 0; i < n; ++i) {
        presence[i] = is_encoded(&fields[i], record) ? kPresent : 0;
        if (is_addition(&fields[i])) any_extension |= presence[i] != 0;
    }
    return any_extension;
}

static void put_preamble(asn1_per_encoder* encoder, const asn1_field* fields, uint32_t n,
                         const uint8_t* presence) {
    for (uint32_t i = 0; i < n; ++i) {
        bool has_bit = !is_addition(&fields[i]) && field_option(&fields[i]) != ASN1_OPTION_MANDATORY;
        if (has_bit) asn1_put_bits(encoder, 1, presence[i]);
    }
}

static int encode_root(asn1_per_encoder* encoder, const asn1_field* fields, uint32_t n, const void* record,
                       const uint8_t* presence) {
    for (const asn1_field* field = fields; field < fields + n; ++field) {
        if (is_addition(field) || presence[field - fields] == 0) continue;
        int result = encode_named(encoder, field_name(field), field_type(field), field_value(field, record));
        if (result != 0) return result;
    }
    return 0;
}

int encode_sequence(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* record) {
    const asn1_field* fields = components(type);
    uint32_t n = component_count(type);
    presence_bytes held;
    uint8_t* presence = begin_presence(&held, n);
    if (!presence) return -1;
    bool any_extension = mark_present(fields, n, record, presence);
    if (is_extensible(type)) asn1_put_bits(encoder, 1, any_extension ? 1 : 0);
    put_preamble(encoder, fields, n, presence);
    int result = encode_root(encoder, fields, n, record, presence);
    if (result == 0 && any_extension) result = encode_additions(encoder, type, record, presence);
    end_presence(&held);
    return result;
}

}  // namespace orlenta::per
