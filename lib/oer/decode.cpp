// SPDX-License-Identifier: Apache-2.0
// OER decoding (X.696): the walk over descriptor and input.
#include <orlenta/memory.h>

#include "core/error.hpp"
#include "core/failed_value.hpp"
#include "core/tag.hpp"
#include "oer/decoder.hpp"
#include "oer/walk.hpp"

namespace orlenta::oer {

// ---- CHOICE -----------------------------------------------------------------------------------------------

// The number behind an identifier byte whose low five bits are all ones, or -1. Five septets may pass the tag word's
// field: all such numbers count as the largest.
static int32_t decode_long_number(asn1_oer_decoder* decoder) {
    uint32_t number = 0, septets = 0;
    uint8_t octet;
    do {
        if (decoder->position >= decoder->size) return asn1_error(decoder, "invalid choice tag");
        octet = decoder->data[decoder->position++];
        if (septets == 0 && (octet & 0x7F) == 0) return asn1_error(decoder, "invalid choice tag");
        number = number << 7 | (octet & 0x7F);
        if (septets < 5) ++septets;
    } while ((octet & 0x80) != 0);
    return static_cast<int32_t>(septets < 5 ? number : ASN1_TAG_NUMBER_MASK);
}

// The tag word, or -1. It has the form of a BER identifier, of which the bit for constructed plays no part.
static int32_t decode_choice_tag(asn1_oer_decoder* decoder) {
    if (decoder->position >= decoder->size) return asn1_error(decoder, "invalid choice tag");
    int32_t identifier = decoder->data[decoder->position++];
    int32_t number = identifier & 0x1F;
    if (number == 0x1F) number = decode_long_number(decoder);
    return number < 0 ? -1 : number | identifier >> 6 << ASN1_TAG_CLASS_SHIFT;
}

static int decode_choice(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    int32_t read_tag = decode_choice_tag(decoder);
    if (read_tag < 0) return -1;
    uint32_t tag = static_cast<uint32_t>(read_tag);
    if (is_observed(decoder)) tell_tag(decoder->observer, bits_read(decoder), tag);
    choice_layout choice = choice_of(type);
    uint32_t index = find_alternative(choice, tag);
    if (index == choice.total) return asn1_error(decoder, "tag 0x%x not present in choice", tag);
    store32(at_offset(value, choice.selector_offset), index);
    void* payload = at_offset(value, choice.payload_offset);
    enter_component(decoder->observer, alternative_name(choice, index));
    int result = index < choice.root
                     ? asn1_oer_decode_type(decoder, alternative_type(choice, index), payload)
                     : asn1_oer_decode_open_type(decoder, alternative_type(choice, index), payload);
    leave_component(decoder->observer);
    return result;
}

// ---- TAGGED, ANY ------------------------------------------------------------------------------------------

// Tags are not encoded.
static int decode_tagged(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    const asn1_type_desc* inner = tagged_inner(type);
    if (!is_indirect(type)) return asn1_oer_decode_type(decoder, inner, value);
    void* block = allocate_value(&decoder->memory, inner);
    if (block == nullptr) return report_no_memory(decoder);
    store_pointer(value, block);
    return asn1_oer_decode_type(decoder, inner, block);
}

static int decode_any(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_open_value* value) {
    value->type = asn1_get_constrained_type(decoder->frames, type);
    if (value->type == nullptr) {
        asn1_string raw = {};
        int result = asn1_oer_decode_octets(decoder, &raw);
        value->data = raw.data;
        value->length = raw.length;
        return result;
    }
    value->data = allocate_value(&decoder->memory, value->type);
    if (value->data == nullptr) return report_no_memory(decoder);
    return asn1_oer_decode_open_type(decoder, value->type, value->data);
}

// The cursor stays where the inner value ended, wherever the open type does.
int asn1_oer_decode_open_type(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    int64_t end = decode_end(decoder);
    if (end < 0) return static_cast<int>(end);
    uint64_t size = decoder->size;
    decoder->size = static_cast<uint64_t>(end);
    int result = asn1_oer_decode_type(decoder, type, value);
    decoder->size = size;
    return result;
}

// ---- the walk ---------------------------------------------------------------------------------------------

static int decode_kind(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    if (!has_stack(&decoder->stack)) return asn1_error(decoder, "value nested too deeply");
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return asn1_oer_decode_sequence(decoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
            return asn1_oer_decode_sequence_of(decoder, type, static_cast<asn1_array*>(value));
        case ASN1_KIND_CHOICE: return decode_choice(decoder, type, value);
        case ASN1_KIND_INTEGER: return asn1_oer_decode_integer(decoder, type, value);
        case ASN1_KIND_BOOLEAN: return asn1_oer_decode_boolean(decoder, value);
        case ASN1_KIND_BIT_STRING:
            return asn1_oer_decode_bit_string(decoder, type, static_cast<asn1_bit_string*>(value));
        case ASN1_KIND_OCTET_STRING:
            return asn1_oer_decode_octet_string(decoder, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return asn1_oer_decode_enumerated(decoder, type, value);
        case ASN1_KIND_NULL: return 0;
        case ASN1_KIND_TAGGED: return decode_tagged(decoder, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: return asn1_oer_decode_octets(decoder, static_cast<asn1_string*>(value));
        case ASN1_KIND_REAL: return asn1_oer_decode_real(decoder, value);
        case ASN1_KIND_CHAR_STRING:
            return asn1_oer_decode_char_string(decoder, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ANY: return decode_any(decoder, type, static_cast<asn1_open_value*>(value));
        default: return asn1_error(decoder, "unsupported type (%d)", static_cast<int>(kind_of(type)));
    }
}

// Bits of the last byte that are no part of a BIT STRING.
static uint64_t unused_bits(const asn1_type_desc* type, const void* value) {
    if (kind_of(type) != ASN1_KIND_BIT_STRING) return 0;
    return -static_cast<const asn1_bit_string*>(value)->length & 7;
}

static __attribute__((cold, noinline)) int decode_told(asn1_oer_decoder* decoder, const asn1_type_desc* type,
                                                       void* value) {
    const asn1_type_desc* outer = set_type(decoder->observer, type);
    int result = decode_kind(decoder, type, value);
    if (result == 0) {
        tell_value(decoder->observer, bits_read(decoder) - unused_bits(type, value), value);
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_PADDING, "padding");
    }
    set_type(decoder->observer, outer);
    return result;
}

int asn1_oer_decode_type(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    return is_observed(decoder) ? decode_told(decoder, type, value) : decode_kind(decoder, type, value);
}

static int64_t decode_message(bit_observer* observer, const decode_memory& memory, void** out,
                              const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                              struct ::asn1_error* error) {
    asn1_oer_decoder decoder;
    decoder.data = data;
    decoder.size = size;
    decoder.position = 0;
    decoder.frames = nullptr;
    decoder.stack = begin_stack();
    decoder.memory = memory;
    decoder.observer = observer;
    asn1_error_init(&decoder.error);

    void* value = asn1_mallocz_value(type);
    int result = value != nullptr ? asn1_oer_decode_type(&decoder, type, value) : report_no_memory(&decoder);
    if (result == 0) {
        *out = value;
        return static_cast<int64_t>(decoder.position);
    }
    free_failed_value(type, value);
    *out = nullptr;
    return hand_out_error(error, &decoder.error);
}

int64_t decode_within(const decode_memory& memory, void** out, const asn1_type_desc* type,
                      const uint8_t* data, uint64_t size, struct ::asn1_error* error) {
    return decode_message(nullptr, memory, out, type, data, size, error);
}

int64_t decode_observed(bit_observer* observer, void** out, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t size, struct ::asn1_error* error) {
    return decode_message(observer, begin_decode_memory(size), out, type, data, size, error);
}

int64_t decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
               struct ::asn1_error* error) {
    return decode_within(begin_decode_memory(size), out, type, data, size, error);
}

}  // namespace orlenta::oer
