// SPDX-License-Identifier: Apache-2.0
// The encoder's walk over all kinds, the kinds of one token, and the entry points.
#include "jer/encode.hpp"

#include <orlenta/jer.h>

#include "core/object_identifier.hpp"

namespace orlenta::jer {

static int encode_boolean(asn1_jer_encoder* encoder, const void* value) {
    if (load32(value) != 0) {
        put_literal(&encoder->buffer, "true");
    } else {
        put_literal(&encoder->buffer, "false");
    }
    return 0;
}

static int encode_enumerated(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const char* name = item_name(type, value);
    if (!name) return -1;
    put_quoted(&encoder->buffer, '\0', name, '\0');
    return 0;
}

static int encode_null(asn1_jer_encoder* encoder) {
    put_literal(&encoder->buffer, "null");
    return 0;
}

static int encode_object_identifier(asn1_jer_encoder* encoder, const void* value, bool relative) {
    put_char(&encoder->buffer, '"');
    int result =
        put_object_identifier_text(&encoder->buffer, static_cast<const asn1_string*>(value), relative);
    put_char(&encoder->buffer, '"');
    return result;
}

static int encode_real(asn1_jer_encoder* encoder, const void* value) {
    static constexpr real_forms forms = {"0", "\"-0\"", "\"NaN\"", "\"INF\"", "\"-INF\"", 'e'};
    put_real(&encoder->buffer, value, forms);
    return 0;
}

static int encode_tagged(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const void* inner = tagged_value(type, value);
    return inner ? asn1_jer_encode_type(encoder, tagged_inner(type), inner) : -1;
}

static int encode_any(asn1_jer_encoder* encoder, const void* value) {
    const asn1_open_value* open = static_cast<const asn1_open_value*>(value);
    if (!open->type) {
        print_hex(encoder, static_cast<const uint8_t*>(open->data), 8 * open->length);
        return 0;
    }
    return open->data ? asn1_jer_encode_type(encoder, open->type, open->data) : -1;
}

static int print_value(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return encode_sequence(encoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return encode_list(encoder, type, value);
        case ASN1_KIND_CHOICE: return encode_choice(encoder, type, value);
        case ASN1_KIND_INTEGER: return put_integer(&encoder->buffer, type, value);
        case ASN1_KIND_BOOLEAN: return encode_boolean(encoder, value);
        case ASN1_KIND_BIT_STRING: return encode_bit_string(encoder, type, value);
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

int asn1_jer_encode_type(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (put_by_hook(encoder, type, value)) return 0;
    return has_stack(&encoder->stack) ? print_value(encoder, type, value) : -1;
}

}  // namespace orlenta::jer

int64_t asn1_jer_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                         const asn1_jer_encode_options* options) {
    using namespace orlenta;
    jer::asn1_jer_encoder encoder;
    begin_text(&encoder, options->depth, {options->hook, options->hook_data});
    encoder.indent = options->indent;
    int result = jer::asn1_jer_encode_type(&encoder, type, value);
    put_char(&encoder.buffer, '\n');
    return finish_text(&encoder, result, out);
}

int64_t asn1_jer_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    const asn1_jer_encode_options options = {nullptr, nullptr, 0, 2};
    return asn1_jer_encode2(out, type, value, &options);
}
