// SPDX-License-Identifier: Apache-2.0
#include "core/extension.hpp"
#include "core/path.hpp"
#include "per/encode_numbers.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

static bool is_unit_present(const extension_unit& unit, const uint8_t* presence) {
    for (uint32_t i = 0; i < unit.count; ++i) {
        if (presence[i] & kPresent) return true;
    }
    return false;
}

// Marks the components that own a position of the bitmap, and returns how many they are.
static uint32_t mark_units(const asn1_field* fields, const asn1_field* end, uint8_t* presence) {
    uint32_t count = 0;
    for (extension_unit unit = next_extension_unit(fields, end); unit.first;
         unit = following_unit(unit, end)) {
        uint8_t* mark = presence + (unit.first - fields);
        *mark |= kUnitStart | (is_unit_present(unit, mark) ? kUnitPresent : 0);
        ++count;
    }
    return count;
}

// A normally small length (X.691 clause 11.9.3.4).
static int put_bitmap_length(asn1_per_encoder* encoder, uint32_t count) {
    if (count <= 64) {
        asn1_put_bits(encoder, 7, count - 1);
        return 0;
    }
    asn1_put_bits(encoder, 1, 1);
    return asn1_per_encode_unconstrained_length(encoder, count);
}

static void put_bitmap(asn1_per_encoder* encoder, const uint8_t* presence, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) {
        if (presence[i] & kUnitStart) asn1_put_bits(encoder, 1, presence[i] & kUnitPresent ? 1 : 0);
    }
}

static int encode_addition(asn1_per_encoder* encoder, const asn1_field* field, const void* record) {
    push_name(&encoder->path, field_name(field));
    int result = asn1_per_encode_open_type(encoder, field_type(field), field_value(field, record));
    pop(&encoder->path);
    return result;
}

int encode_additions(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* record,
                     uint8_t* presence) {
    const asn1_field* fields = components(type);
    const asn1_field* end = fields + component_count(type);
    uint32_t count = mark_units(fields, end, presence);
    if (count == 0) return -1;
    int result = put_bitmap_length(encoder, count);
    if (result != 0) return result;
    put_bitmap(encoder, presence, component_count(type));
    for (extension_unit unit = next_extension_unit(fields, end); unit.first;
         unit = following_unit(unit, end)) {
        const uint8_t* marks = presence + (unit.first - fields);
        if ((*marks & kUnitPresent) == 0) continue;
        result = unit.is_group ? asn1_per_encode_ext_group(encoder, record, unit.first, marks, unit.count)
                               : encode_addition(encoder, unit.first, record);
        if (result != 0) return result;
    }
    return 0;
}

}  // namespace orlenta::per
