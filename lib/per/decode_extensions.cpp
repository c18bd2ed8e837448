// SPDX-License-Identifier: Apache-2.0
#include "core/extension.hpp"
#include "core/path.hpp"
#include "core/presence.hpp"
#include "per/decode_items.hpp"
#include "per/decode_numbers.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

// A normally small length (X.691 clause 11.9.3.4).
static int get_bitmap_length(asn1_per_decoder* decoder, uint32_t* count) {
    uint32_t is_large;
    if (asn1_get_bits(decoder, 1, &is_large) != 0) return -1;
    if (!is_large) {
        if (asn1_get_bits(decoder, 6, count) != 0) return -1;
        ++*count;
        if (is_observed(decoder)) {
            tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_LENGTH, "length %u", *count);
        }
        return 0;
    }
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_LENGTH, "length above 64");
    }
    if (asn1_per_decode_unconstrained_length(decoder, count) != 0) return -1;
    return *count == 0 ? asn1_decode_error(decoder, "unexpected zero length") : 0;
}

static __attribute__((cold)) void tell_bitmap(asn1_per_decoder* decoder, const uint8_t* bitmap,
                                              uint32_t count) {
    uint32_t present = 0;
    for (uint32_t i = 0; i < count; ++i) present += bitmap[i];
    tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_PRESENCE,
              "additions: %u of %u present", present, count);
}

static int get_bitmap(asn1_per_decoder* decoder, uint8_t* bitmap, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t bit;
        if (asn1_get_bits(decoder, 1, &bit) != 0) return -1;
        bitmap[i] = static_cast<uint8_t>(bit);
    }
    if (is_observed(decoder)) tell_bitmap(decoder, bitmap, count);
    return 0;
}

static int decode_addition(asn1_per_decoder* decoder, const asn1_field* field, void* record) {
    if (field_option(field) != ASN1_OPTION_DEFAULT) set_presence_word(field, record, 1);
    push_name(&decoder->path, field_name(field));
    int result = asn1_per_decode_open_type(decoder, field_type(field), field_value(field, record));
    pop(&decoder->path);
    return result;
}

// What stands at one set position of the bitmap.
static int decode_unit(asn1_per_decoder* decoder, const extension_unit& unit, void* record) {
    if (!unit.first) return skip_open_type(decoder);
    if (unit.is_group) return asn1_per_decode_ext_group(decoder, record, unit.first, unit.count);
    return decode_addition(decoder, unit.first, record);
}

// Positions behind the last unit come from a later version of the schema. Of an absent unit nothing is touched, not
// even a DEFAULT.
static int decode_units(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record,
                        const uint8_t* bitmap, uint32_t count) {
    const asn1_field* end = components(type) + component_count(type);
    extension_unit unit = next_extension_unit(components(type), end);
    for (uint32_t i = 0; i < count; ++i) {
        if (bitmap[i] && decode_unit(decoder, unit, record) != 0) return -1;
        if (unit.first) unit = following_unit(unit, end);
    }
    return 0;
}

int decode_additions(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record) {
    uint32_t count;
    if (get_bitmap_length(decoder, &count) != 0) return -1;
    presence_bytes held;
    uint8_t* bitmap = begin_presence(&held, &decoder->memory, count);
    if (!bitmap) return report_no_memory(decoder);
    int result = get_bitmap(decoder, bitmap, count);
    if (result == 0) result = decode_units(decoder, type, record, bitmap, count);
    end_presence(&held, &decoder->memory);
    return result;
}

}  // namespace orlenta::per
