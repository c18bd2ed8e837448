// SPDX-License-Identifier: Apache-2.0
// The encoder's walk over all kinds, the kinds of one token, and the entry points.
#include "gser/encode.hpp"

#include <orlenta/gser.h>

#include "core/object_identifier.hpp"

namespace orlenta::gser {

static int encode_boolean(asn1_gser_encoder* encoder, const void* value) {
    asn1_puts(&encoder->buffer, load32(value) != 0 ? "TRUE" : "FALSE");
    return 0;
}

static int encode_enumerated(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const char* name = item_name(type, value);
    if (!name) return -1;
    asn1_puts(&encoder->buffer, name);
    return 0;
}

static int encode_null(asn1_gser_encoder* encoder) {
    asn1_puts(&encoder->buffer, "NULL");
    return 0;
}

static int encode_object_identifier(asn1_gser_encoder* encoder, const void* value, bool relative) {
    return put_object_identifier_text(&encoder->buffer, static_cast<const asn1_string*>(value), relative);
}

static int encode_real(asn1_gser_encoder* encoder, const void* value) {
    static constexpr real_forms forms = {"0", "-0", "NOT-A-NUMBER", "PLUS-INFINITY", "MINUS-INFINITY", 'E'};
    put_real(&encoder->buffer, value, forms);
    return 0;
}

static int encode_tagged(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const void* inner = tagged_value(type, value);
    return inner ? asn1_gser_encode_type(encoder, tagged_inner(type), inner) : -1;
}

static int encode_any(asn1_gser_encoder* encoder, const void* value) {
    const asn1_open_value* open = static_cast<const asn1_open_value*>(value);
    if (!open->type) {
        print_hex(&encoder->buffer, open->data, 8 * open->length);
        return 0;
    }
    return open->data ? asn1_gser_encode_type(encoder, open->type, open->data) : -1;
}

static int print_value(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return encode_sequence(encoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return encode_list(encoder, type, value);
        case ASN1_KIND_CHOICE: return encode_choice(encoder, type, value);
        case ASN1_KIND_INTEGER: return put_integer(&encoder->buffer, type, value);
        case ASN1_KIND_BOOLEAN: return encode_boolean(encoder, value);
        case ASN1_KIND_BIT_STRING: return encode_bit_string(encoder, value);
        case ASN1_KIND_OCTET_STRING: return encode_octet_string(encoder, value);
        case ASN1_KIND_ENUMERATED: return encode_enumerated(encoder, type, value);
        case ASN1_KIND_NULL: return encode_null(encoder);
        case ASN1_KIND_TAGGED: return encode_tagged(encoder, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER: return encode_object_identifier(encoder, value, false);
        case ASN1_KIND_RELATIVE_OID: return encode_object_identifier(encoder, value, true);
        case ASN1_KIND_REAL: return encode_real(encoder, value);
        case ASN1_KIND_CHAR_STRING: return encode_char_string(encoder, type, value);
        case ASN1_KIND_ANY: return encode_any(encoder, value);
        default: return -1;
    }
}

int asn1_gser_encode_type(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (put_by_hook(encoder, type, value)) return 0;
    return has_stack(&encoder->stack) ? print_value(encoder, type, value) : -1;
}

}  // namespace orlenta::gser

int64_t asn1_gser_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                          const asn1_gser_encode_options* options) {
    using namespace orlenta;
    gser::asn1_gser_encoder encoder;
    begin_text(&encoder, options->indent, {options->hook, options->hook_data});
    encoder.hex_bit_strings = options->binary_bit_strings == 0;
    int result = gser::asn1_gser_encode_type(&encoder, type, value);
    put_char(&encoder.buffer, '\n');
    return finish_text(&encoder, result, out);
}

int64_t asn1_gser_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    const asn1_gser_encode_options options = {nullptr, nullptr, 0, 0};
    return asn1_gser_encode2(out, type, value, &options);
}
