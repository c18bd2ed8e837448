// SPDX-License-Identifier: Apache-2.0
// OER encoding of SEQUENCE, SET and their lists (X.696 clauses 16 to 19).
#include "core/buffer.hpp"
#include "core/extension.hpp"
#include "core/presence.hpp"
#include "oer/encoder.hpp"

namespace orlenta::oer {

// ---- presence ---------------------------------------------------------------------------------------------

// The SEQUENCE being encoded, and what is there of it. One block holds both arrays.
struct sequence_walk {
    const asn1_field* fields;
    uint32_t count;
    const void* record;
    uint8_t* present;  // one byte a component
    uint8_t* bitmap;   // (count + 8) / 8 bytes: a bit for each component and one more
    bool any_extension;
};

static uint64_t bitmap_size(const sequence_walk& walk) { return (static_cast<uint64_t>(walk.count) + 8) / 8; }

static void set_bit(uint8_t* bitmap, uint64_t index) {
    bitmap[index / 8] |= static_cast<uint8_t>(0x80 >> index % 8);
}

static void find_presence(sequence_walk* walk) {
    walk->any_extension = false;
    for (uint32_t i = 0; i < walk->count; ++i) {
        const asn1_field* field = &walk->fields[i];
        walk->present[i] = is_encoded(field, walk->record);
        if (is_addition(field) && walk->present[i] != 0) walk->any_extension = true;
    }
}

// Components first .. first + n - 1, as far as they are there.
static int encode_present(asn1_oer_encoder* encoder, const sequence_walk& walk, uint64_t first, uint64_t n) {
    for (uint64_t i = first; i < first + n; ++i) {
        const asn1_field* field = &walk.fields[i];
        if (walk.present[i] == 0) continue;
        int result = asn1_oer_encode_type(encoder, field_type(field), field_value(field, walk.record));
        if (result != 0) return result;
    }
    return 0;
}

// ---- root -------------------------------------------------------------------------------------------------

static void put_preamble(asn1_oer_encoder* encoder, const sequence_walk& walk, bool is_extensible) {
    memset(walk.bitmap, 0, bitmap_size(walk));
    uint64_t bits = 0;
    if (is_extensible && walk.any_extension) set_bit(walk.bitmap, 0);
    if (is_extensible) ++bits;
    for (uint32_t i = 0; i < walk.count; ++i) {
        const asn1_field* field = &walk.fields[i];
        if (is_addition(field) || field_option(field) == ASN1_OPTION_MANDATORY) continue;
        if (walk.present[i] != 0) set_bit(walk.bitmap, bits);
        ++bits;
    }
    asn1_put_bytes(&encoder->buffer, walk.bitmap, (bits + 7) / 8);
}

static int encode_root(asn1_oer_encoder* encoder, const sequence_walk& walk) {
    for (uint32_t i = 0; i < walk.count; ++i) {
        if (is_addition(&walk.fields[i])) continue;
        if (encode_present(encoder, walk, i, 1) != 0) return -1;
    }
    return 0;
}

// ---- extension additions ----------------------------------------------------------------------------------

static uint64_t index_of(const sequence_walk& walk, const extension_unit& unit) {
    return static_cast<uint64_t>(unit.first - walk.fields);
}

static bool is_unit_present(const sequence_walk& walk, const extension_unit& unit) {
    for (uint32_t i = 0; i < unit.count; ++i) {
        if (walk.present[index_of(walk, unit) + i] != 0) return true;
    }
    return false;
}

static void put_addition_bitmap(asn1_oer_encoder* encoder, const sequence_walk& walk) {
    memset(walk.bitmap, 0, bitmap_size(walk));
    const asn1_field* end = walk.fields + walk.count;
    uint64_t count = 0;
    for (extension_unit unit = next_extension_unit(walk.fields, end); unit.first != nullptr;
         unit = following_unit(unit, end)) {
        if (is_unit_present(walk, unit)) set_bit(walk.bitmap, count);
        ++count;
    }
    asn1_oer_put_variable_bits(encoder, walk.bitmap, count);
}

static void put_group_preamble(asn1_oer_encoder* encoder, const sequence_walk& walk,
                               const extension_unit& group) {
    uint32_t bits = 0, byte = 0;
    for (uint32_t i = 0; i < group.count; ++i) {
        if (field_option(&group.first[i]) == ASN1_OPTION_MANDATORY) continue;
        byte = byte << 1 | walk.present[index_of(walk, group) + i];
        if (++bits % 8 == 0) put_byte(&encoder->buffer, static_cast<uint8_t>(byte));
    }
    if (bits % 8 != 0) put_byte(&encoder->buffer, static_cast<uint8_t>(byte << (8 - bits % 8)));
}

static int encode_group(asn1_oer_encoder* encoder, const sequence_walk& walk, const extension_unit& group) {
    uint32_t start = asn1_ber_put_len_start(&encoder->buffer);
    put_group_preamble(encoder, walk, group);
    int result = encode_present(encoder, walk, index_of(walk, group), group.count);
    if (result == 0) asn1_ber_put_len_end(&encoder->buffer, start);
    return result;
}

static int encode_addition(asn1_oer_encoder* encoder, const sequence_walk& walk, const extension_unit& unit) {
    if (unit.is_group) return encode_group(encoder, walk, unit);
    return asn1_oer_encode_open_type(encoder, field_type(unit.first), field_value(unit.first, walk.record));
}

static int encode_additions(asn1_oer_encoder* encoder, const sequence_walk& walk) {
    put_addition_bitmap(encoder, walk);
    const asn1_field* end = walk.fields + walk.count;
    for (extension_unit unit = next_extension_unit(walk.fields, end); unit.first != nullptr;
         unit = following_unit(unit, end)) {
        if (!is_unit_present(walk, unit)) continue;
        int result = encode_addition(encoder, walk, unit);
        if (result != 0) return result;
    }
    return 0;
}

// ---- SEQUENCE, SET, lists ---------------------------------------------------------------------------------

int asn1_oer_encode_sequence(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    sequence_walk walk = {components(type), component_count(type), value, nullptr, nullptr, false};
    presence_bytes held;
    walk.present = begin_presence(&held, static_cast<uint32_t>(walk.count + bitmap_size(walk)));
    if (walk.present == nullptr) return -1;
    walk.bitmap = walk.present + walk.count;
    find_presence(&walk);
    put_preamble(encoder, walk, is_extensible(type));
    int result = encode_root(encoder, walk);
    if (result == 0 && walk.any_extension) result = encode_additions(encoder, walk);
    end_presence(&held);
    return result;
}

int asn1_oer_encode_sequence_of(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                                const asn1_array* value) {
    if (check_depth(encoder) != 0) return -1;
    list_layout list = list_of(type);
    asn1_encode_uint32(encoder, static_cast<uint32_t>(value->count));
    for (uint64_t i = 0; i < value->count; ++i) {
        int result = asn1_oer_encode_type(encoder, list.element, at_offset(value->data, i * list.stride));
        if (result != 0) return result;
    }
    return 0;
}

}  // namespace orlenta::oer
