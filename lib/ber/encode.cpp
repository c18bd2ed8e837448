// SPDX-License-Identifier: Apache-2.0
// BER and DER encoding (X.690 clauses 8, 10, 11): the walk over descriptor and value.
#include "ber/encoder.hpp"
#include "core/presence.hpp"

namespace orlenta::ber {

// ---- lengths ----------------------------------------------------------------------------------------------

uint32_t put_len_start(asn1_ber_encoder* encoder) {
    if (encoder->params.indefinite_length == 0) return asn1_ber_put_len_start(&encoder->buffer);
    const uint8_t kIndefinite = 0x80;
    asn1_put_bytes(&encoder->buffer, &kIndefinite, 1);
    return UINT32_MAX;
}

void put_len_end(asn1_ber_encoder* encoder, uint32_t start) {
    if (encoder->params.indefinite_length == 0) {
        asn1_ber_put_len_end(&encoder->buffer, start);
        return;
    }
    const uint8_t kEndOfContents[2] = {};
    asn1_put_bytes(&encoder->buffer, kEndOfContents, sizeof kEndOfContents);
}

// ---- SEQUENCE, SET and their lists, in stored order -------------------------------------------------------

static int asn1_ber_encode_sequence(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                                    uint32_t tag) {
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    const asn1_field* fields = components(type);
    const asn1_field* end = fields + component_count(type);
    for (const asn1_field* field = fields; field < end; ++field) {
        if (!is_encoded(field, value)) continue;
        if (asn1_ber_encode_type(encoder, field_type(field), field_value(field, value)) != 0) return -1;
    }
    put_len_end(encoder, start);
    return 0;
}

static int encode_set(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                      uint32_t tag) {
    return encoder->params.sort_set != 0 ? asn1_ber_encode_sorted_set(encoder, type, value, tag)
                                         : asn1_ber_encode_sequence(encoder, type, value, tag);
}

static int asn1_ber_encode_sequence_of(asn1_ber_encoder* encoder, const asn1_type_desc* type,
                                       const asn1_array* value, uint32_t tag) {
    if (!has_stack(&encoder->stack)) return -1;
    list_layout list = list_of(type);
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    for (uint64_t i = 0; i < value->count; ++i) {
        if (asn1_ber_encode_type(encoder, list.element, at_offset(value->data, i * list.stride)) != 0)
            return -1;
    }
    put_len_end(encoder, start);
    return 0;
}

static int encode_set_of(asn1_ber_encoder* encoder, const asn1_type_desc* type, const asn1_array* value,
                         uint32_t tag) {
    return encoder->params.sort_set_of != 0 ? asn1_ber_encode_sorted_set_of(encoder, type, value, tag)
                                            : asn1_ber_encode_sequence_of(encoder, type, value, tag);
}

// ---- types that may have an element around another --------------------------------------------------------

// Under `tag`, a whole encoding of another type.
static int encode_wrapped(asn1_ber_encoder* encoder, uint32_t tag, const asn1_type_desc* inner,
                          const void* value) {
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    int result = asn1_ber_encode_type(encoder, inner, value);
    put_len_end(encoder, start);
    return result;
}

static int encode_choice(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value) {
    choice_layout choice = choice_of(type);
    uint32_t selector = load32(at_offset(value, choice.selector_offset));
    if (selector >= choice.total) return -1;
    const asn1_type_desc* chosen = alternative_type(choice, selector);
    const void* payload = at_offset(value, choice.payload_offset);
    if (tag_of(type) != 0) return encode_wrapped(encoder, tag_of(type), chosen, payload);
    return asn1_ber_encode_type(encoder, chosen, payload);
}

// A value of the actual type, or the bytes of a whole encoding.
static int encode_open_value(asn1_ber_encoder* encoder, const asn1_open_value* value) {
    if (value->type != nullptr) {
        if (value->data == nullptr || !has_stack(&encoder->stack)) return -1;
        return asn1_ber_encode_type(encoder, value->type, value->data);
    }
    asn1_put_bytes(&encoder->buffer, value->data, value->length);
    return 0;
}

static int encode_any(asn1_ber_encoder* encoder, const asn1_type_desc* type, const asn1_open_value* value) {
    if (tag_of(type) == 0) return encode_open_value(encoder, value);
    put_tag(encoder, tag_of(type), 1);
    uint32_t start = put_len_start(encoder);
    int result = encode_open_value(encoder, value);
    put_len_end(encoder, start);
    return result;
}

static int encode_type_as(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                          uint32_t tag);

static int encode_tagged(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                         uint32_t tag) {
    const asn1_type_desc* inner = type;
    if (is_indirect(type) && !has_stack(&encoder->stack)) return -1;
    if (!enter_tag(inner, value)) return -1;
    if (tag_of(type) == 0) return asn1_ber_encode_type(encoder, inner, value);
    if (is_explicit(type)) return encode_wrapped(encoder, tag, inner, value);
    return encode_type_as(encoder, inner, value, tag);
}

// ---- the walk ---------------------------------------------------------------------------------------------

// `tag` stands in for the type's own. A CHOICE and an ANY can't be tagged implicitly and keep theirs.
static int encode_type_as(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                          uint32_t tag) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE: return asn1_ber_encode_sequence(encoder, type, value, tag);
        case ASN1_KIND_SEQUENCE_OF:
            return asn1_ber_encode_sequence_of(encoder, type, static_cast<const asn1_array*>(value), tag);
        case ASN1_KIND_SET: return encode_set(encoder, type, value, tag);
        case ASN1_KIND_SET_OF:
            return encode_set_of(encoder, type, static_cast<const asn1_array*>(value), tag);
        case ASN1_KIND_CHOICE: return encode_choice(encoder, type, value);
        case ASN1_KIND_INTEGER: return asn1_ber_encode_integer(encoder, type, value, tag);
        case ASN1_KIND_BOOLEAN: return asn1_ber_encode_boolean(encoder, value, tag);
        case ASN1_KIND_BIT_STRING:
            return asn1_ber_encode_bit_string(encoder, static_cast<const asn1_bit_string*>(value), tag);
        case ASN1_KIND_OCTET_STRING: {
            const asn1_string* string = static_cast<const asn1_string*>(value);
            return asn1_ber_encode_octet_string1(encoder, tag, string->data, string->length);
        }
        case ASN1_KIND_ENUMERATED: return asn1_ber_encode_enumerated(encoder, type, value, tag);
        case ASN1_KIND_NULL: return asn1_ber_encode_null(encoder, tag);
        case ASN1_KIND_TAGGED: return encode_tagged(encoder, type, value, tag);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            return asn1_ber_encode_object_identifier(encoder, static_cast<const asn1_string*>(value), tag);
        case ASN1_KIND_REAL: return asn1_ber_encode_real(encoder, value, tag);
        case ASN1_KIND_CHAR_STRING:
            return asn1_ber_encode_char_string(encoder, type, static_cast<const asn1_string*>(value), tag);
        case ASN1_KIND_ANY: return encode_any(encoder, type, static_cast<const asn1_open_value*>(value));
        default: return -1;
    }
}

int asn1_ber_encode_type(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value) {
    return encode_type_as(encoder, type, value, tag_of(type));
}

}  // namespace orlenta::ber

using namespace orlenta;

int64_t asn1_ber_encode(uint8_t** out, const asn1_type_desc* type, const void* value,
                        const asn1_ber_encode_params* params) {
    ber::asn1_ber_encoder encoder;
    asn1_byte_buffer_init(&encoder.buffer);
    encoder.params = *params;
    encoder.stack = begin_stack();
    int result = ber::asn1_ber_encode_type(&encoder, type, value);
    if (result == 0 && encoder.buffer.failed != 0) result = -1;
    if (result == 0) {
        *out = encoder.buffer.data;
        return static_cast<int64_t>(encoder.buffer.length);
    }
    asn1_free(encoder.buffer.data);
    *out = nullptr;
    return result;
}

int64_t asn1_der_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    const asn1_ber_encode_params kDer = {0, 0, 1, 1};
    return asn1_ber_encode(out, type, value, &kDer);
}
