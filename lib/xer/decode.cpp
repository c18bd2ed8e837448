// SPDX-License-Identifier: Apache-2.0
// The decoder's walk over all kinds, and its entry point.
#include "xer/decode.hpp"

#include <orlenta/xer.h>

namespace orlenta::xer {

static int decode_tagged(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    void* inner = tagged_place(parser, type, value);
    return inner ? asn1_xer_decode_type(parser, tagged_inner(type), inner) : -1;
}

// The end tag, which the caller looks for, is what holds the element to be empty.
static int decode_null() { return 0; }

int asn1_xer_decode_type(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return decode_sequence(parser, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return decode_list(parser, type, value);
        case ASN1_KIND_CHOICE: return decode_choice(parser, type, value);
        case ASN1_KIND_INTEGER: return decode_integer(parser, type, value);
        case ASN1_KIND_BOOLEAN: return decode_boolean(parser, value);
        case ASN1_KIND_BIT_STRING: return decode_bit_string(parser, value);
        case ASN1_KIND_OCTET_STRING:
            return asn1_xer_decode_octet_string(parser, static_cast<asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return decode_enumerated(parser, type, value);
        case ASN1_KIND_NULL: return decode_null();
        case ASN1_KIND_TAGGED: return decode_tagged(parser, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: return decode_object_identifier(parser, type, value);
        case ASN1_KIND_REAL: return decode_real(parser, value);
        case ASN1_KIND_CHAR_STRING: return decode_char_string(parser, type, value);
        case ASN1_KIND_ANY: return decode_any(parser, type, value);
        default: return parse_error(parser, "unsupported type (%d)", static_cast<int>(kind_of(type)));
    }
}

int decode_element(asn1_xer_parser* parser, const char* name, const asn1_type_desc* type, void* value) {
    if (next_token(parser) != 0 || asn1_xer_decode_type(parser, type, value) != 0) return -1;
    return skip_closing_tag(parser, name);
}

int asn1_xer_decode_typed_value(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    if (skip_spaces(parser) != 0) return -1;
    if (parser->token != XER_TOKEN_START) return parse_error(parser, "expecting starting tag");
    const char* name = asn1_get_type_name(type);
    if (!is_tag(parser, XER_TOKEN_START, name)) return parse_error(parser, "expecting tag <%s>", name);
    return decode_element(parser, name, type, value);
}

}  // namespace orlenta::xer

int64_t asn1_xer_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t length,
                        asn1_error* error) {
    using namespace orlenta;
    xer::asn1_xer_parser parser;
    void* value = begin_text_decode(&parser, xer::XER_TOKEN_EOF, type, data, length);
    parser.is_empty_tag = false;
    int result =
        value && xer::next_token(&parser) == 0 ? xer::asn1_xer_decode_typed_value(&parser, type, value) : -1;
    return finish_text_decode(&parser, result, type, value, out, length, error);
}
