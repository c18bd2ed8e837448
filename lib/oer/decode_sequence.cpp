// SPDX-License-Identifier: Apache-2.0
// OER decoding of SEQUENCE, SET and their lists (X.696 clauses 16 to 19).
#include "core/extension.hpp"
#include "core/growing_list.hpp"
#include "core/presence.hpp"
#include "oer/decoder.hpp"

namespace orlenta::oer {

// ---- preamble ---------------------------------------------------------------------------------------------

// The bits of whole bytes, most significant first.
struct bit_cursor {
    int byte;
    int left;  // bits not taken yet
};

// The next bit, or -1.
static int take_bit(asn1_oer_decoder* decoder, bit_cursor* bits) {
    if (bits->left == 0) {
        bits->byte = get_byte(decoder);
        if (bits->byte < 0) return -1;
        bits->left = 8;
    }
    return bits->byte >> --bits->left & 1;
}

// Names the bits taken since, and those that are left of the byte.
static __attribute__((cold)) void tell_preamble(asn1_oer_decoder* decoder, const bit_cursor& bits,
                                                const asn1_field* fields, uint32_t n,
                                                const uint8_t* present) {
    uint64_t end = bits_read(decoder);
    tell_presence(decoder->observer, end - static_cast<uint32_t>(bits.left), fields, n, present);
    tell_bits(decoder->observer, end, ORLENTA_BITS_PADDING, "padding");
}

// Which of the root components are there. Absent ones with a default get it.
static int decode_root_presence(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* record,
                                bit_cursor* bits, uint8_t* present) {
    const asn1_field* fields = components(type);
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = &fields[i];
        uint32_t option = field_option(field);
        present[i] = 0;
        if (is_addition(field)) continue;
        int bit = 1;
        if (option != ASN1_OPTION_MANDATORY) {
            if (option > ASN1_OPTION_DEFAULT) return -1;
            bit = take_bit(decoder, bits);
            if (bit < 0) return -1;
        }
        present[i] = static_cast<uint8_t>(bit);
        if (option == ASN1_OPTION_OPTIONAL) set_presence_word(field, record, present[i]);
        if (option == ASN1_OPTION_DEFAULT && bit == 0 && fill_default(&decoder->memory, record, field) != 0) {
            return report_no_memory(decoder);
        }
    }
    if (is_observed(decoder)) tell_preamble(decoder, *bits, fields, component_count(type), present);
    return 0;
}

// Which members of an extension addition group are there. Defaults are not filled in.
static int decode_group_presence(asn1_oer_decoder* decoder, const extension_unit& group, void* record,
                                 uint8_t* present) {
    bit_cursor bits = {0, 0};
    for (uint32_t i = 0; i < group.count; ++i) {
        const asn1_field* field = &group.first[i];
        int bit = field_option(field) == ASN1_OPTION_MANDATORY ? 1 : take_bit(decoder, &bits);
        if (bit < 0) return -1;
        present[i] = static_cast<uint8_t>(bit);
        if (field_option(field) != ASN1_OPTION_DEFAULT) set_presence_word(field, record, present[i]);
    }
    if (is_observed(decoder)) tell_preamble(decoder, bits, group.first, group.count, present);
    return 0;
}

static int decode_present(asn1_oer_decoder* decoder, const asn1_field* fields, uint32_t n, void* record,
                          const uint8_t* present) {
    for (uint32_t i = 0; i < n; ++i) {
        if (present[i] == 0) continue;
        enter_component(decoder->observer, field_name(&fields[i]));
        int result = asn1_oer_decode_type(decoder, field_type(&fields[i]), field_value(&fields[i], record));
        leave_component(decoder->observer);
        if (result != 0) return result;
    }
    return 0;
}

// ---- extension additions ----------------------------------------------------------------------------------

static int decode_group_members(asn1_oer_decoder* decoder, const extension_unit& group, void* record) {
    presence_bytes held;
    uint8_t* present = begin_presence(&held, &decoder->memory, group.count);
    if (present == nullptr) return report_no_memory(decoder);
    int result = decode_group_presence(decoder, group, record, present);
    if (result == 0) result = decode_present(decoder, group.first, group.count, record, present);
    end_presence(&held, &decoder->memory);
    return result;
}

// Reads no further than the group's length says; what its members leave of that is read again as what follows.
static int decode_group(asn1_oer_decoder* decoder, const extension_unit& group, void* record) {
    int64_t end = decode_end(decoder);
    if (end < 0) return static_cast<int>(end);
    uint64_t size = decoder->size;
    decoder->size = static_cast<uint64_t>(end);
    int result = decode_group_members(decoder, group, record);
    decoder->size = size;
    return result;
}

static int decode_addition(asn1_oer_decoder* decoder, const extension_unit& unit, void* record) {
    if (unit.is_group) return decode_group(decoder, unit, record);
    if (is_presence_flagged(unit.first)) set_presence_word(unit.first, record, 1);
    enter_component(decoder->observer, field_name(unit.first));
    int result = asn1_oer_decode_open_type(decoder, field_type(unit.first), field_value(unit.first, record));
    leave_component(decoder->observer);
    return result;
}

// An addition of a later version of the type.
static int skip_addition(asn1_oer_decoder* decoder) {
    int64_t end = decode_end(decoder);
    if (end < 0) return static_cast<int>(end);
    decoder->position = static_cast<uint64_t>(end);
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_UNKNOWN, "unknown addition");
    }
    return 0;
}

static __attribute__((cold)) void tell_bitmap(asn1_oer_decoder* decoder, const asn1_bit_string& bitmap) {
    uint32_t present = 0;
    for (uint64_t i = 0; i < bitmap.length; ++i) present += bitmap.data[i / 8] >> (7 - i % 8) & 1;
    tell_bits(decoder->observer, bits_read(decoder) - (-bitmap.length & 7), ORLENTA_BITS_PRESENCE,
              "additions: %u of %u present", present, static_cast<uint32_t>(bitmap.length));
    tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_PADDING, "padding");
}

// The additions whose position in `bitmap` is set.
static int decode_mapped_additions(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* record,
                                   const asn1_bit_string& bitmap) {
    const asn1_field* end = components(type) + component_count(type);
    extension_unit unit = next_extension_unit(components(type), end);
    for (uint64_t i = 0; i < bitmap.length; ++i) {
        bool is_known = unit.first != nullptr;
        if ((bitmap.data[i / 8] >> (7 - i % 8) & 1) != 0) {
            int result = is_known ? decode_addition(decoder, unit, record) : skip_addition(decoder);
            if (result != 0) return result;
        }
        if (is_known) unit = following_unit(unit, end);
    }
    return 0;
}

static int decode_additions(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* record) {
    asn1_bit_string bitmap = {};
    int result = asn1_oer_decode_bit_string1(decoder, &bitmap, kVariable);
    if (is_observed(decoder) && result == 0) tell_bitmap(decoder, bitmap);
    if (result == 0) result = decode_mapped_additions(decoder, type, record, bitmap);
    release(&decoder->memory, bitmap.data, (bitmap.length + 7) / 8);
    return result;
}

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

static int decode_root(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* record,
                       bit_cursor* bits) {
    uint32_t n = component_count(type);
    presence_bytes held;
    uint8_t* present = begin_presence(&held, &decoder->memory, n);
    if (present == nullptr) return report_no_memory(decoder);
    int result = decode_root_presence(decoder, type, record, bits, present);
    if (result == 0) result = decode_present(decoder, components(type), n, record, present);
    end_presence(&held, &decoder->memory);
    return result;
}

int asn1_oer_decode_sequence(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    asn1_parent_frame frame = {decoder->frames, type, value};
    decoder->frames = &frame;
    bit_cursor bits = {0, 0};
    int has_extensions = is_extensible(type) ? take_bit(decoder, &bits) : 0;
    if (is_observed(decoder) && has_extensions >= 0 && is_extensible(type)) {
        tell_bits(decoder->observer, bits_read(decoder) - 7, ORLENTA_BITS_EXTENSION, "extension bit %d",
                  has_extensions);
    }
    int result = has_extensions < 0 ? -1 : decode_root(decoder, type, value, &bits);
    if (result == 0 && has_extensions > 0) result = decode_additions(decoder, type, value);
    decoder->frames = frame.parent;
    return result;
}

// ---- SEQUENCE OF, SET OF ----------------------------------------------------------------------------------

int asn1_oer_decode_sequence_of(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_array* value) {
    uint32_t count;
    int result = asn1_decode_uint32(decoder, &count);
    if (result != 0) return result;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "elements %u", count);
    }
    list_layout list = list_of(type);
    growing_list growing = begin_list(&decoder->memory, value, list.stride);
    if (!claim_elements(&growing, count)) return report_no_memory(decoder);
    while (value->count < count) {
        void* element = add_element(&growing);
        if (element == nullptr) return report_no_memory(decoder);
        enter_element(decoder->observer, static_cast<int32_t>(value->count - 1));
        result = asn1_oer_decode_type(decoder, list.element, element);
        leave_component(decoder->observer);
        if (result != 0) return result;
    }
    return 0;
}

}  // namespace orlenta::oer
