// SPDX-License-Identifier: Apache-2.0
#include "core/presence.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

// Whether one root component is there; a DEFAULT that is not is filled in.
static int get_presence(asn1_per_decoder* decoder, const asn1_field* field, void* record, uint8_t* presence) {
    uint32_t bit = 1;
    switch (field_option(field)) {
        case ASN1_OPTION_MANDATORY: break;
        case ASN1_OPTION_OPTIONAL:
            if (asn1_get_bits(decoder, 1, &bit) != 0) return -1;
            set_presence_word(field, record, bit);
            break;
        case ASN1_OPTION_DEFAULT:
            if (asn1_get_bits(decoder, 1, &bit) != 0) return -1;
            if (bit == 0 && fill_default(&decoder->memory, record, field) != 0)
                return report_no_memory(decoder);
            break;
        default: return -1;
    }
    *presence = static_cast<uint8_t>(bit);
    return 0;
}

static int get_preamble(asn1_per_decoder* decoder, const asn1_field* fields, uint32_t n, void* record,
                        uint8_t* presence) {
    for (uint32_t i = 0; i < n; ++i) {
        presence[i] = 0;
        if (is_addition(&fields[i])) continue;
        if (get_presence(decoder, &fields[i], record, &presence[i]) != 0) return -1;
    }
    if (is_observed(decoder)) {
        tell_presence(decoder->observer, decoder->source.position, fields, n, presence);
    }
    return 0;
}

static int decode_root(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record) {
    const asn1_field* fields = components(type);
    uint32_t n = component_count(type);
    presence_bytes held;
    uint8_t* presence = begin_presence(&held, &decoder->memory, n);
    if (!presence) return report_no_memory(decoder);
    int result = get_preamble(decoder, fields, n, record, presence);
    for (uint32_t i = 0; i < n && result == 0; ++i) {
        if (presence[i] == 0) continue;
        result = decode_named(decoder, field_name(&fields[i]), field_type(&fields[i]),
                              field_value(&fields[i], record));
    }
    end_presence(&held, &decoder->memory);
    return result;
}

int decode_sequence(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record) {
    asn1_parent_frame frame = {decoder->frames, type, record};
    decoder->frames = &frame;
    uint32_t has_extensions = 0;
    int result = is_extensible(type) ? get_extension_bit(decoder, &has_extensions) : 0;
    if (result == 0) result = decode_root(decoder, type, record);
    if (result == 0 && has_extensions) result = decode_additions(decoder, type, record);
    decoder->frames = frame.parent;
    return result;
}

}  // namespace orlenta::per
