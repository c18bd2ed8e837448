// SPDX-License-Identifier: Apache-2.0
// The decoder's walk over all kinds, and its entry point.
#include "jer/decode.hpp"

#include <orlenta/jer.h>

namespace orlenta::jer {

static int decode_tagged(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    void* inner = tagged_place(parser, type, value);
    return inner ? asn1_jer_decode_type(parser, tagged_inner(type), inner) : -1;
}

// The key that tells the type must stand before the open type in the text.
static int decode_any(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    const asn1_type_desc* actual = asn1_get_constrained_type(parser->frames, type);
    if (!actual) return parse_error(parser, "any: unknown type");
    asn1_open_value* open = static_cast<asn1_open_value*>(value);
    if (make_open_value(parser, open, actual) != 0) return -1;
    return asn1_jer_decode_type(parser, actual, open->data);
}

int asn1_jer_decode_type(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return decode_sequence(parser, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return decode_list(parser, type, value);
        case ASN1_KIND_CHOICE: return decode_choice(parser, type, value);
        case ASN1_KIND_INTEGER: return decode_integer(parser, type, value);
        case ASN1_KIND_BOOLEAN: return decode_boolean(parser, value);
        case ASN1_KIND_BIT_STRING: return decode_bit_string(parser, type, value);
        case ASN1_KIND_OCTET_STRING: return decode_octet_string(parser, value);
        case ASN1_KIND_ENUMERATED: return decode_enumerated(parser, type, value);
        case ASN1_KIND_NULL: return decode_null(parser);
        case ASN1_KIND_TAGGED: return decode_tagged(parser, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: return decode_object_identifier(parser, type, value);
        case ASN1_KIND_REAL: return decode_real(parser, value);
        case ASN1_KIND_CHAR_STRING: return decode_char_string(parser, type, value);
        case ASN1_KIND_ANY: return decode_any(parser, type, value);
        default: return parse_error(parser, "unsupported type (%d)", static_cast<int>(kind_of(type)));
    }
}

}  // namespace orlenta::jer

int64_t asn1_jer_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t length,
                        asn1_error* error) {
    using namespace orlenta;
    jer::asn1_jer_parser parser;
    void* value = begin_text_decode(&parser, jer::JER_TOKEN_NONE, type, data, length);
    int result =
        value && jer::next_token(&parser) == 0 ? jer::asn1_jer_decode_type(&parser, type, value) : -1;
    return finish_text_decode(&parser, result, type, value, out, length, error);
}
