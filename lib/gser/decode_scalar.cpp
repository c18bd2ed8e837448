// SPDX-License-Identifier: Apache-2.0
// INTEGER, BOOLEAN, ENUMERATED, REAL, OBJECT IDENTIFIER, RELATIVE-OID.
#include "core/object_identifier.hpp"
#include "gser/decode.hpp"

namespace orlenta::gser {

// Steps over the sign of a number, if there is one.
static int skip_minus(asn1_gser_parser* parser, bool* negative) {
    *negative = parser->token == '-';
    return *negative ? next_token(parser) : 0;
}

// ---- INTEGER ----------------------------------------------------------------------------------------------

// A minus sign stays with a zero.
static int decode_big_integer(asn1_gser_parser* parser, void* value, bool negative) {
    if (store_big_integer(parser, &parser->number.integer, value) != 0) return -1;
    static_cast<asn1_integer*>(value)->negative = negative;
    return next_token(parser);
}

static int decode_integer32(asn1_gser_parser* parser, const asn1_type_desc* type, void* value,
                            bool negative) {
    int64_t number;
    if (text_integer_to_si64(&parser->number.integer, &number) != 0) {
        return parse_error(parser, "integer too large");
    }
    if (next_token(parser) != 0) return -1;
    return store_integer32(parser, type, value, negative ? -number : number);
}

int decode_integer(asn1_gser_parser* parser, const asn1_type_desc* type, void* value) {
    bool negative;
    if (skip_minus(parser, &negative) != 0) return -1;
    if (parser->token != GSER_TOKEN_INTEGER) return parse_error(parser, "expecting integer value");
    return is_big_integer(type) ? decode_big_integer(parser, value, negative)
                                : decode_integer32(parser, type, value, negative);
}

// ---- BOOLEAN, ENUMERATED ----------------------------------------------------------------------------------

int decode_boolean(asn1_gser_parser* parser, void* value) {
    bool truth = parser->token == GSER_TOKEN_TRUE;
    if (!truth && parser->token != GSER_TOKEN_FALSE) return parse_error(parser, "expecting boolean value");
    store32(value, truth);
    return next_token(parser);
}

int decode_enumerated(asn1_gser_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != GSER_TOKEN_IDENTIFIER) return parse_error(parser, "expecting enumerated identifier");
    const text_identifier* name = &parser->identifier;
    int32_t index = find_item(enum_of(type), name->text, name->length);
    return store_item(parser, value, index, name->text, name->length) == 0 ? next_token(parser) : -1;
}

// ---- REAL -------------------------------------------------------------------------------------------------

// The number that is the current token, which has no sign.
static bool token_real(const asn1_gser_parser* parser, double* real) {
    if (parser->token != GSER_TOKEN_REAL && parser->token != GSER_TOKEN_INTEGER) return false;
    return text_number_to_real(&parser->number, real);
}

// One of the numbers that are words, which have no sign in front.
static bool token_named_real(const asn1_gser_parser* parser, double* real) {
    static constexpr real_names names = {"PLUS-INFINITY", "MINUS-INFINITY", "NOT-A-NUMBER", nullptr};
    const text_identifier* name = &parser->identifier;
    return parser->token == GSER_TOKEN_IDENTIFIER && find_named_real(names, name->text, name->length, real);
}

int decode_real(asn1_gser_parser* parser, void* value) {
    double real;
    if (!token_named_real(parser, &real)) {
        bool negative;
        if (skip_minus(parser, &negative) != 0) return -1;
        if (!token_real(parser, &real)) return parse_error(parser, "expecting real number");
        if (negative) real = -real;
    }
    memcpy(value, &real, sizeof real);
    return next_token(parser);
}

// ---- OBJECT IDENTIFIER, RELATIVE-OID ----------------------------------------------------------------------

// Takes the arc that is the current token, between 0 and `limit`.
static int decode_arc(asn1_gser_parser* parser, int64_t limit, uint32_t* arc) {
    if (parser->token != GSER_TOKEN_INTEGER) {
        return parse_error(parser, "object identifier: expecting positive integer");
    }
    int64_t number;
    if (text_integer_to_si64(&parser->number.integer, &number) != 0 || number > limit) {
        return parse_error(parser, "object identifier: integer too large");
    }
    *arc = static_cast<uint32_t>(number);
    return next_token(parser);
}

// The first two arcs of an absolute identifier make one subidentifier; a single one makes none. The second is limited
// to 39 below 2 as well.
static int decode_arcs(asn1_gser_parser* parser, asn1_byte_buffer* contents, bool relative) {
    uint32_t arc = 0, first_arc = 0;
    for (uint64_t index = 0;; ++index) {
        bool is_first = !relative && index == 0, is_second = !relative && index == 1;
        if (decode_arc(parser, is_first ? 2 : is_second ? 39 : INT32_MAX, &arc) != 0) return -1;
        if (is_first) {
            first_arc = arc;
        } else {
            put_subidentifier(contents, is_second ? 40 * first_arc + arc : arc);
        }
        if (parser->token != '.') break;
        if (next_token(parser) != 0) return -1;
    }
    return contents->failed ? parse_error(parser, kNotEnoughMemory) : 0;
}

int decode_object_identifier(asn1_gser_parser* parser, const asn1_type_desc* type, void* value) {
    asn1_byte_buffer contents;
    asn1_byte_buffer_init(&contents);
    if (decode_arcs(parser, &contents, kind_of(type) == ASN1_KIND_RELATIVE_OID) != 0) {
        asn1_free(contents.data);
        return -1;
    }
    return take_contents(parser, static_cast<asn1_string*>(value), &contents);
}

}  // namespace orlenta::gser
