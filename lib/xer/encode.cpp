// SPDX-License-Identifier: Apache-2.0
// The encoder's walk over all kinds, the hook, and the entry points.
#include "xer/encode.hpp"

#include <orlenta/type_info.h>
#include <orlenta/xer.h>

namespace orlenta::xer {

// An element without content.
static int encode_null() { return 0; }

static int encode_tagged(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const void* inner = tagged_value(type, value);
    return inner ? asn1_xer_encode_type(encoder, tagged_inner(type), inner) : -1;
}

static int print_value(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return encode_sequence(encoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return encode_list(encoder, type, value);
        case ASN1_KIND_CHOICE: return encode_choice(encoder, type, value);
        case ASN1_KIND_INTEGER: return encode_integer(encoder, type, value);
        case ASN1_KIND_BOOLEAN: return encode_boolean(encoder, value);
        case ASN1_KIND_BIT_STRING: return encode_bit_string(encoder, value);
        case ASN1_KIND_OCTET_STRING: return encode_octet_string(encoder, value);
        case ASN1_KIND_ENUMERATED: return encode_enumerated(encoder, type, value);
        case ASN1_KIND_NULL: return encode_null();
        case ASN1_KIND_TAGGED: return encode_tagged(encoder, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER: return encode_object_identifier(encoder, value, false);
        case ASN1_KIND_RELATIVE_OID: return encode_object_identifier(encoder, value, true);
        case ASN1_KIND_REAL: return encode_real(encoder, value);
        case ASN1_KIND_CHAR_STRING: return encode_char_string(encoder, type, value);
        case ASN1_KIND_ANY: return encode_any(encoder, value);
        default: return -1;
    }
}

// The hook's text stands on a line of its own, also where nothing else is broken into lines.
static int print_hook_text(asn1_xer_encoder* encoder, const hook_text& text) {
    asn1_puts(&encoder->buffer, encoder->tag_open ? ">\n" : "\n");
    encoder->tag_open = false;
    put_hook_text(&encoder->buffer, text);
    return 0;
}

int asn1_xer_encode_type(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    hook_text text;
    if (call_hook(encoder, type, value, &text)) {
        return print_hook_text(encoder, text);
    }
    return has_stack(&encoder->stack) ? print_value(encoder, type, value) : -1;
}

int encode_element(asn1_xer_encoder* encoder, const char* name, const asn1_type_desc* type,
                   const void* value) {
    start_tag(encoder, name);
    int result = asn1_xer_encode_type(encoder, type, value);
    end_tag(encoder, name);
    return result;
}

int asn1_xer_encode_typed_value(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    return encode_element(encoder, asn1_get_type_name(type), type, value);
}

}  // namespace orlenta::xer

int64_t asn1_xer_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                         const asn1_xer_encode_options* options) {
    using namespace orlenta;
    xer::asn1_xer_encoder encoder;
    begin_text(&encoder, options->depth, {options->hook, options->hook_data});
    encoder.indent = options->indent != 0;
    encoder.empty_tags = options->empty_tags != 0;
    encoder.boolean_text = options->boolean_text != 0;
    encoder.enumerated_text = options->enumerated_text != 0;
    encoder.tag_open = encoder.has_text = false;
    int result = xer::asn1_xer_encode_typed_value(&encoder, type, value);
    return finish_text(&encoder, result, out);
}

int64_t asn1_xer_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    const asn1_xer_encode_options options = {.indent = 1,
                                             .empty_tags = 1,
                                             .boolean_text = 0,
                                             .enumerated_text = 0,
                                             .hook_data = nullptr,
                                             .hook = nullptr,
                                             .depth = 0};
    return asn1_xer_encode2(out, type, value, &options);
}
