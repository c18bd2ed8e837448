// SPDX-License-Identifier: Apache-2.0
// OER encoding (X.696): the walk over descriptor and value.
#include "core/error.hpp"
#include "core/tag.hpp"
#include "oer/encoder.hpp"
#include "oer/walk.hpp"

namespace orlenta::oer {

int asn1_encode_error(asn1_oer_encoder* encoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int result = set_message(&encoder->error, format, args);
    va_end(args);
    return result;
}

// ---- CHOICE, TAGGED, ANY ----------------------------------------------------------------------------------

static int encode_choice(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    choice_layout choice = choice_of(type);
    uint32_t selector = load32(at_offset(value, choice.selector_offset));
    if (selector >= choice.total) {
        return asn1_encode_error(encoder, "invalid choice value (%u >= %u)", selector, choice.total);
    }
    const asn1_type_desc* chosen = alternative_type(choice, selector);
    uint32_t tag = find_choice_tag(chosen);
    if (tag == 0) return asn1_encode_error(encoder, "could not find choice tag");
    asn1_ber_put_tag(&encoder->buffer, tag, 0);
    const void* payload = at_offset(value, choice.payload_offset);
    return selector < choice.root ? asn1_oer_encode_type(encoder, chosen, payload)
                                  : asn1_oer_encode_open_type(encoder, chosen, payload);
}

int check_depth(asn1_oer_encoder* encoder) {
    return has_stack(&encoder->stack) ? 0 : asn1_encode_error(encoder, "value nested too deeply");
}

static int report_missing(asn1_oer_encoder* encoder) {
    return asn1_encode_error(encoder, "value is missing");
}

static int encode_tagged(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (is_indirect(type) && check_depth(encoder) != 0) return -1;
    if (!enter_tag(type, value)) return report_missing(encoder);
    return asn1_oer_encode_type(encoder, type, value);
}

static int encode_any(asn1_oer_encoder* encoder, const asn1_open_value* value) {
    if (value->type == nullptr) return asn1_oer_encode_octets(encoder, value->data, value->length);
    return value->data != nullptr ? asn1_oer_encode_open_type(encoder, value->type, value->data)
                                  : report_missing(encoder);
}

int asn1_oer_encode_open_type(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (check_depth(encoder) != 0) return -1;
    uint32_t start = asn1_ber_put_len_start(&encoder->buffer);
    int result = asn1_oer_encode_type(encoder, type, value);
    if (result == 0) asn1_ber_put_len_end(&encoder->buffer, start);
    return result;
}

// ---- the walk ---------------------------------------------------------------------------------------------

int asn1_oer_encode_type(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return asn1_oer_encode_sequence(encoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
            return asn1_oer_encode_sequence_of(encoder, type, static_cast<const asn1_array*>(value));
        case ASN1_KIND_CHOICE: return encode_choice(encoder, type, value);
        case ASN1_KIND_INTEGER: return asn1_oer_encode_integer(encoder, type, value);
        case ASN1_KIND_BOOLEAN: return asn1_oer_encode_boolean(encoder, value);
        case ASN1_KIND_BIT_STRING:
            return asn1_oer_encode_bit_string(encoder, type, static_cast<const asn1_bit_string*>(value));
        case ASN1_KIND_OCTET_STRING:
            return asn1_oer_encode_octet_string(encoder, type, static_cast<const asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return asn1_oer_encode_enumerated(encoder, type, value);
        case ASN1_KIND_NULL: return 0;
        case ASN1_KIND_TAGGED: return encode_tagged(encoder, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: {
            const asn1_string* arcs = static_cast<const asn1_string*>(value);
            return asn1_oer_encode_octets(encoder, arcs->data, arcs->length);
        }
        case ASN1_KIND_REAL: return asn1_oer_encode_real(encoder, value);
        case ASN1_KIND_CHAR_STRING:
            return asn1_oer_encode_char_string(encoder, type, static_cast<const asn1_string*>(value));
        case ASN1_KIND_ANY: return encode_any(encoder, static_cast<const asn1_open_value*>(value));
        default: return -1;
    }
}

int64_t encode(uint8_t** out, const asn1_type_desc* type, const void* value, struct ::asn1_error* error) {
    asn1_oer_encoder encoder;
    asn1_byte_buffer_init(&encoder.buffer);
    asn1_error_init(&encoder.error);
    encoder.stack = begin_stack();
    int result = asn1_oer_encode_type(&encoder, type, value);
    if (encoder.buffer.failed != 0) result = asn1_encode_error(&encoder, "not enough memory");
    if (result == 0) {
        *out = encoder.buffer.data;
        return static_cast<int64_t>(encoder.buffer.length);
    }
    asn1_free(encoder.buffer.data);
    *out = nullptr;
    return hand_out_error(error, &encoder.error);
}

}  // namespace orlenta::oer
