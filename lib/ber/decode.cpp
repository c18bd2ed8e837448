// SPDX-License-Identifier: Apache-2.0
// BER decoding (X.690 clause 8): the walk over descriptor and input.
#include <orlenta/ber.h>

#include "ber/decoder.hpp"
#include "ber/walk.hpp"
#include "core/error.hpp"
#include "core/failed_value.hpp"
#include "core/tag.hpp"

namespace orlenta::ber {

// ---- CHOICE -----------------------------------------------------------------------------------------------

static int decode_alternative(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                              uint32_t tag, int constructed, int32_t length) {
    choice_layout choice = choice_of(type);
    uint32_t index = find_alternative(choice, tag);
    if (index == choice.total) {
        if (is_observed(decoder)) tell_header(decoder, tag, length);
        return asn1_error(decoder, "tag 0x%x not present in choice", tag);
    }
    store32(at_offset(value, choice.selector_offset), index);
    enter_component(decoder->observer, alternative_name(choice, index));
    int result = asn1_ber_decode_type_tag(decoder, alternative_type(choice, index),
                                          at_offset(value, choice.payload_offset), tag, constructed, length);
    leave_component(decoder->observer);
    return result;
}

// A CHOICE or ANY with a tag of its own: opens the element inside.
static int32_t open_inner(asn1_ber_decoder* decoder, asn1_ber_limit* saved, int* constructed,
                          int32_t* length) {
    if (require_constructed(decoder, *constructed) != 0) return -1;
    return decode_tag_start(decoder, saved, constructed, length);
}

static int decode_choice(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value, uint32_t tag,
                         int constructed, int32_t length) {
    if (tag_of(type) == 0) return decode_alternative(decoder, type, value, tag, constructed, length);
    asn1_ber_limit saved;
    int32_t inner = open_inner(decoder, &saved, &constructed, &length);
    if (inner < 0) return inner;
    int result = decode_alternative(decoder, type, value, static_cast<uint32_t>(inner), constructed, length);
    return result == 0 ? decode_tag_end(decoder, saved) : result;
}

// ---- ANY --------------------------------------------------------------------------------------------------

// Keeps the whole encoding: identifier, length, contents, and the end-of-contents octets if there are any.
static int keep_raw(asn1_ber_decoder* decoder, asn1_open_value* value, int32_t length) {
    uint64_t start = decoder->tag_start;
    if (asn1_ber_skip_tag(decoder, length) != 0) return -1;
    uint64_t size = decoder->position - start;
    value->data = allocate(&decoder->memory, size);
    if (value->data == nullptr) return report_no_memory(decoder);
    memcpy(value->data, decoder->input + start, size);
    value->length = size;
    return 0;
}

static int decode_open_value(asn1_ber_decoder* decoder, const asn1_type_desc* type, asn1_open_value* value,
                             uint32_t tag, int constructed, int32_t length) {
    value->type = asn1_get_constrained_type(decoder->frames, type);
    if (value->type == nullptr) {
        if (is_observed(decoder)) tell_header(decoder, tag, length);
        return keep_raw(decoder, value, length);
    }
    value->data = allocate_value(&decoder->memory, value->type);
    if (value->data == nullptr) return report_no_memory(decoder);
    return asn1_ber_decode_type_tag(decoder, value->type, value->data, tag, constructed, length);
}

static int decode_any(asn1_ber_decoder* decoder, const asn1_type_desc* type, asn1_open_value* value,
                      uint32_t tag, int constructed, int32_t length) {
    if (tag_of(type) == 0) return decode_open_value(decoder, type, value, tag, constructed, length);
    asn1_ber_limit saved;
    int32_t inner = open_inner(decoder, &saved, &constructed, &length);
    if (inner < 0) return inner;
    int result = decode_open_value(decoder, type, value, static_cast<uint32_t>(inner), constructed, length);
    return result == 0 ? decode_tag_end(decoder, saved) : result;
}

// ---- TAGGED -----------------------------------------------------------------------------------------------

static int decode_tagged(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value, uint32_t tag,
                         int constructed, int32_t length) {
    const asn1_type_desc* inner = tagged_inner(type);
    if (is_indirect(type)) {
        void* block = allocate_value(&decoder->memory, inner);
        if (block == nullptr) return report_no_memory(decoder);
        store_pointer(value, block);
        value = block;
    }
    if (tag_of(type) != 0) {
        if (is_explicit(type)) {
            if (require_constructed(decoder, constructed) != 0) return -1;
            return asn1_ber_decode_type(decoder, inner, value);
        }
        tag = tag_of(inner);
    }
    return asn1_ber_decode_type_tag(decoder, inner, value, tag, constructed, length);
}

// ---- the walk ---------------------------------------------------------------------------------------------

static bool takes_any_tag(const asn1_type_desc* type) {
    uint32_t kind = kind_of(type);
    // A TAGGED without a tag is a mere pointer to what it holds.
    return tag_of(type) == 0 &&
           (kind == ASN1_KIND_CHOICE || kind == ASN1_KIND_ANY || kind == ASN1_KIND_TAGGED);
}

static int decode_kind(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value, uint32_t tag,
                       int constructed, int32_t length) {
    if (tag != tag_of(type) && !takes_any_tag(type)) {
        return asn1_error(decoder, "unexpected tag 0x%x (expecting tag 0x%x)\n", tag, tag_of(type));
    }
    if (!has_stack(&decoder->stack)) return asn1_error(decoder, "value nested too deeply");
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return asn1_ber_decode_sequence(decoder, type, value, constructed);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
            return asn1_ber_decode_sequence_of(decoder, type, static_cast<asn1_array*>(value), constructed);
        case ASN1_KIND_CHOICE: return decode_choice(decoder, type, value, tag, constructed, length);
        case ASN1_KIND_INTEGER: return asn1_ber_decode_integer(decoder, type, value, constructed, length);
        case ASN1_KIND_BOOLEAN: return asn1_ber_decode_boolean(decoder, value, constructed, length);
        case ASN1_KIND_BIT_STRING:
            return asn1_ber_decode_bit_string(decoder, static_cast<asn1_bit_string*>(value), constructed,
                                              length);
        case ASN1_KIND_OCTET_STRING:
            return asn1_ber_decode_octet_string(decoder, static_cast<asn1_string*>(value), constructed,
                                                length);
        case ASN1_KIND_ENUMERATED:
            return asn1_ber_decode_enumerated(decoder, type, value, constructed, length);
        case ASN1_KIND_NULL: return asn1_ber_decode_null(decoder, constructed, length);
        case ASN1_KIND_TAGGED: return decode_tagged(decoder, type, value, tag, constructed, length);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            return asn1_ber_decode_object_identifier(decoder, static_cast<asn1_string*>(value), constructed,
                                                     length);
        case ASN1_KIND_REAL: return asn1_ber_decode_real(decoder, value, constructed, length);
        case ASN1_KIND_CHAR_STRING:
            return asn1_ber_decode_char_string(decoder, type, static_cast<asn1_string*>(value), constructed,
                                               length);
        case ASN1_KIND_ANY:
            return decode_any(decoder, type, static_cast<asn1_open_value*>(value), tag, constructed, length);
        default: return asn1_error(decoder, "unsupported type (%d)", static_cast<int>(kind_of(type)));
    }
}

static __attribute__((cold)) void tell_contents(asn1_ber_decoder* decoder, const asn1_type_desc* type,
                                                const void* value) {
    uint64_t end = bits_read(decoder), unused = 0;
    if (kind_of(type) == ASN1_KIND_BIT_STRING)
        unused = unused_bits(static_cast<const asn1_bit_string*>(value));
    // Segments have told their own.
    if (end - decoder->observer->told < unused) unused = 0;
    tell_value(decoder->observer, end - unused, value);
    tell_bits(decoder->observer, end, ORLENTA_BITS_PADDING, "padding");
}

static __attribute__((cold, noinline)) int decode_told(asn1_ber_decoder* decoder, const asn1_type_desc* type,
                                                       void* value, uint32_t tag, int constructed,
                                                       int32_t length) {
    const asn1_type_desc* outer = set_type(decoder->observer, type);
    if (!takes_any_tag(type)) tell_header(decoder, tag, length);
    int result = decode_kind(decoder, type, value, tag, constructed, length);
    if (result == 0) tell_contents(decoder, type, value);
    set_type(decoder->observer, outer);
    return result;
}

int asn1_ber_decode_type_tag(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value, uint32_t tag,
                             int constructed, int32_t length) {
    return is_observed(decoder) ? decode_told(decoder, type, value, tag, constructed, length)
                                : decode_kind(decoder, type, value, tag, constructed, length);
}

int asn1_ber_decode_type(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value) {
    asn1_ber_limit saved;
    int constructed;
    int32_t length;
    int32_t tag = decode_tag_start(decoder, &saved, &constructed, &length);
    if (tag < 0) return tag;
    int result =
        asn1_ber_decode_type_tag(decoder, type, value, static_cast<uint32_t>(tag), constructed, length);
    return result == 0 ? decode_tag_end(decoder, saved) : result;
}

static int64_t decode_message(bit_observer* observer, void** out, const asn1_type_desc* type,
                              const uint8_t* data, uint64_t length, struct ::asn1_error* error) {
    asn1_ber_decoder decoder;
    decoder.input = data;
    decoder.limit = length;
    decoder.position = 0;
    decoder.tag_start = 0;
    decoder.indefinite = false;
    decoder.end_of_contents_seen = false;
    decoder.frames = nullptr;
    decoder.stack = begin_stack();
    decoder.memory = begin_decode_memory(length);
    decoder.observer = observer;
    asn1_error_init(&decoder.error);

    void* value = asn1_mallocz_value(type);
    int result = value != nullptr ? asn1_ber_decode_type(&decoder, type, value) : report_no_memory(&decoder);
    if (result >= 0) {
        *out = value;
        return static_cast<int64_t>(decoder.position);
    }
    free_failed_value(type, value);
    *out = nullptr;
    return hand_out_error(error, &decoder.error);
}

int64_t decode_observed(bit_observer* observer, void** out, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t size, struct ::asn1_error* error) {
    return decode_message(observer, out, type, data, size, error);
}

}  // namespace orlenta::ber

int64_t asn1_ber_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t length,
                        asn1_error* error) {
    return orlenta::ber::decode_message(nullptr, out, type, data, length, error);
}
