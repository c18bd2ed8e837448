// SPDX-License-Identifier: Apache-2.0
// INTEGER, BOOLEAN, ENUMERATED, NULL, REAL, OBJECT IDENTIFIER, RELATIVE-OID.
#include <orlenta/scalar.h>

#include "jer/decode.hpp"

namespace orlenta::jer {

int decode_integer(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != JER_TOKEN_INTEGER) return parse_error(parser, "expecting integer value");
    const text_integer* token = &parser->number.integer;
    if (is_big_integer(type)) {
        return store_big_integer(parser, token, value) == 0 ? next_token(parser) : -1;
    }
    int64_t number;
    if (text_integer_to_si64(token, &number) != 0) return parse_error(parser, "integer too large");
    return next_token(parser) == 0 ? store_integer32(parser, type, value, number) : -1;
}

int decode_boolean(asn1_jer_parser* parser, void* value) {
    bool truth = is_identifier(parser, "true");
    if (!truth && !is_identifier(parser, "false")) return parse_error(parser, "expecting boolean value");
    store32(value, truth);
    return next_token(parser);
}

int decode_enumerated(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting enumerated string");
    const string_token& name = parser->string;
    int32_t index = find_item(enum_of(type), name.text, name.length);
    return store_item(parser, value, index, name.text, name.length) == 0 ? next_token(parser) : -1;
}

int decode_null(asn1_jer_parser* parser) {
    if (!is_identifier(parser, "null")) return parse_error(parser, "expecting 'null'");
    return next_token(parser);
}

// ---- REAL -------------------------------------------------------------------------------------------------

// The number that is the current token, the special ones being strings.
static bool token_real(const asn1_jer_parser* parser, double* real) {
    static constexpr real_names names = {"INF", "-INF", "NaN", "-0"};
    switch (parser->token) {
        case JER_TOKEN_STRING:
            return find_named_real(names, parser->string.text, parser->string.length, real);
        case JER_TOKEN_REAL:
        case JER_TOKEN_INTEGER: return text_number_to_real(&parser->number, real);
        default: return false;
    }
}

int decode_real(asn1_jer_parser* parser, void* value) {
    double real;
    if (!token_real(parser, &real)) return parse_error(parser, "expecting real number");
    memcpy(value, &real, sizeof real);
    return next_token(parser);
}

// ---- OBJECT IDENTIFIER, RELATIVE-OID ----------------------------------------------------------------------

int decode_object_identifier(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    bool relative = kind_of(type) == ASN1_KIND_RELATIVE_OID;
    if (parser->token != JER_TOKEN_STRING) {
        return parse_error(parser, "expecting %sobject identifier string", relative ? "relative " : "");
    }
    const char* invalid = relative ? "invalid relative object identifier" : "invalid object identifier";
    const char* text = terminated_string(parser);
    if (!text) return -1;
    int result = store_object_identifier(parser, static_cast<asn1_string*>(value), text,
                                         parser->string.length, relative, invalid);
    return result == 0 ? next_token(parser) : -1;
}

}  // namespace orlenta::jer
