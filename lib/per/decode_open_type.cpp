// SPDX-License-Identifier: Apache-2.0
// Open types (X.691 clause 11.2): an encoding of its own behind its length in octets. It is read as one, with bit
// positions of its own; octets behind the value belong to a later version of the inner type and are ignored.
#include "core/presence.hpp"
#include "per/decode_items.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

// What the contents of an open type take the place of while they are read.
struct outer_source {
    bit_source source;
    const asn1_parent_frame* frames;
    bit_observer* observer;
    uint8_t* copy;  // a block with the contents, or null
    uint64_t copy_size;
};

// Contents in fragments are put together in a block with room for all that is left of the input. Within such a block
// they are put together where they stand, in octets that have been read: one block serves open types nested to any
// depth.
static int enter_fragments(asn1_per_decoder* decoder, outer_source* outer) {
    bit_source contents = {};
    contents.copy = decoder->source.copy;
    contents.origin = decoder->source.position / 8 * 8;
    if (!contents.copy) {
        outer->copy_size = bits_left(decoder) / 8;
        outer->copy = static_cast<uint8_t*>(allocate(&decoder->memory, outer->copy_size));
        if (!outer->copy) return report_no_memory(decoder);
        contents.copy = outer->copy;
        contents.origin = 0;
    }
    uint8_t* place = contents.copy + contents.origin / 8;
    uint32_t length;
    if (asn1_per_decode_ulength_items(decoder, asn1_per_decode_buf1, place, &length) != 0) return -1;
    // Positions in the copy are not those of the message.
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_VALUE, "open type in fragments");
        decoder->observer = nullptr;
    }
    contents.octets = contents.copy;
    contents.position = contents.origin;
    contents.end = contents.origin + uint64_t{length} * 8;
    contents.last_window = contents.end / 8 - 8;
    outer->source = decoder->source;
    decoder->source = contents;
    return 0;
}

// Contents in one piece are read where they stand.
static int enter_piece(asn1_per_decoder* decoder, uint32_t length, outer_source* outer) {
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_LENGTH, "open type length %u",
                  length);
    }
    if (length == 0) return asn1_decode_error(decoder, "unexpected zero length");
    uint64_t begin = decoder->source.position;
    if (skip_octets(decoder, length) != 0) return -1;
    outer->source = decoder->source;
    decoder->source.position = begin;
    decoder->source.origin = begin;
    decoder->source.end = outer->source.position;
    return 0;
}

static int enter_contents(asn1_per_decoder* decoder, outer_source* outer) {
    if (decoder->aligned) asn1_align(decoder);
    uint32_t first, second;
    if (asn1_get_bits(decoder, 8, &first) != 0) return -1;
    if (first >= 0xC0) {
        decoder->source.position -= 8;
        return enter_fragments(decoder, outer);
    }
    if (first < 0x80) return enter_piece(decoder, first, outer);
    if (asn1_get_bits(decoder, 8, &second) != 0) return -1;
    return enter_piece(decoder, (first << 8 | second) & 0x3FFF, outer);
}

// Steps into the contents, of which there is at least one octet. Keys of table constraints are not looked for outside.
static int enter(asn1_per_decoder* decoder, outer_source* outer) {
    outer->copy = nullptr;
    outer->frames = decoder->frames;
    outer->observer = decoder->observer;
    if (enter_contents(decoder, outer) != 0) {
        release(&decoder->memory, outer->copy, outer->copy_size);
        return -1;
    }
    decoder->frames = nullptr;
    return 0;
}

// The rest of the last octet, and octets that the inner type does not know.
static __attribute__((cold)) void tell_rest(asn1_per_decoder* decoder) {
    uint64_t used = bits_consumed(decoder);
    uint64_t octets = used == 0 ? 1 : (used + 7) / 8;
    tell_bits(decoder->observer, decoder->source.origin + octets * 8, ORLENTA_BITS_PADDING, "padding");
    tell_bits(decoder->observer, decoder->source.end, ORLENTA_BITS_UNKNOWN, "unknown octets");
}

static int leave(asn1_per_decoder* decoder, const outer_source& outer, int result) {
    if (is_observed(decoder) && result == 0) tell_rest(decoder);
    decoder->observer = outer.observer;
    decoder->source = outer.source;
    decoder->frames = outer.frames;
    release(&decoder->memory, outer.copy, outer.copy_size);
    return result;
}

int asn1_per_decode_open_type(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    outer_source outer;
    if (check_depth(decoder) != 0 || enter(decoder, &outer) != 0) return -1;
    return leave(decoder, outer, asn1_per_decode_type(decoder, type, value));
}

// Whether a member is there; a DEFAULT that is not is left as it is.
static int get_member_presence(asn1_per_decoder* decoder, const asn1_field* field, void* record,
                               uint8_t* presence) {
    uint32_t bit = 1;
    uint32_t option = field_option(field);
    if (option != ASN1_OPTION_MANDATORY && asn1_get_bits(decoder, 1, &bit) != 0) return -1;
    if (option != ASN1_OPTION_DEFAULT) set_presence_word(field, record, bit);
    *presence = static_cast<uint8_t>(bit);
    return 0;
}

static int decode_members(asn1_per_decoder* decoder, void* record, const asn1_field* fields, uint32_t count) {
    presence_bytes held;
    uint8_t* presence = begin_presence(&held, &decoder->memory, count);
    if (!presence) return report_no_memory(decoder);
    int result = 0;
    for (uint32_t i = 0; i < count && result == 0; ++i) {
        result = get_member_presence(decoder, &fields[i], record, &presence[i]);
    }
    if (is_observed(decoder) && result == 0) {
        tell_presence(decoder->observer, decoder->source.position, fields, count, presence);
    }
    for (uint32_t i = 0; i < count && result == 0; ++i) {
        if (presence[i] == 0) continue;
        result = decode_named(decoder, field_name(&fields[i]), field_type(&fields[i]),
                              field_value(&fields[i], record));
    }
    end_presence(&held, &decoder->memory);
    return result;
}

int asn1_per_decode_ext_group(asn1_per_decoder* decoder, void* record, const asn1_field* field,
                              uint32_t count) {
    outer_source outer;
    if (enter(decoder, &outer) != 0) return -1;
    return leave(decoder, outer, decode_members(decoder, record, field, count));
}

int decode_any(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_open_value* value) {
    value->type = asn1_get_constrained_type(decoder->frames, type);
    if (!value->type) {
        asn1_string raw = {};
        int result = asn1_per_decode_ulength_items(decoder, asn1_per_decode_octet_string1, &raw, nullptr);
        value->data = raw.data;
        value->length = raw.length;
        return result;
    }
    value->data = allocate_value(&decoder->memory, value->type);
    if (!value->data) return report_no_memory(decoder);
    return asn1_per_decode_open_type(decoder, value->type, value->data);
}

}  // namespace orlenta::per
