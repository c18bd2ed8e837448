// SPDX-License-Identifier: Apache-2.0
// INTEGER, BOOLEAN, ENUMERATED, REAL, OBJECT IDENTIFIER, RELATIVE-OID.
#include <orlenta/scalar.h>
#include <stdlib.h>

#include "core/text_number.hpp"
#include "xer/decode.hpp"

namespace orlenta::xer {

// ---- INTEGER ----------------------------------------------------------------------------------------------

// Reads an optional minus and digits, as asn1_integer_from_str() does; no digits are 0. A number that nears
// the end of 64 bits stays there: it is too large for any 32-bit INTEGER in any case.
static int64_t read_decimal(const char** cursor) {
    constexpr int64_t kLarge = INT64_MAX / 10 - 1;
    const char* at = *cursor;
    bool negative = *at == '-';
    at += negative;
    int64_t number = 0;
    for (; is_digit(static_cast<uint8_t>(*at)); ++at) {
        if (number < kLarge) number = number * 10 + (*at - '0');
    }
    *cursor = at;
    return negative ? -number : number;
}

static int decode_big_integer(asn1_xer_parser* parser, const char** cursor, void* value) {
    asn1_integer* big = static_cast<asn1_integer*>(value);
    return count_big_integer(parser, big, asn1_integer_from_str(big, cursor));
}

int decode_integer(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != XER_TOKEN_TEXT) return parse_error(parser, "expecting integer value");
    const char* cursor = skip_text_spaces(text_of(parser));
    bool is_big = is_big_integer(type);
    int64_t number = 0;
    if (is_big) {
        if (decode_big_integer(parser, &cursor, value) != 0) return -1;
    } else {
        number = read_decimal(&cursor);
    }
    if (skip_text_spaces(cursor) != text_end(parser)) return parse_error(parser, "expecting integer value");
    if (!is_big && store_integer32(parser, type, value, number) != 0) return -1;
    return next_token(parser);
}

// ---- BOOLEAN ----------------------------------------------------------------------------------------------

// An empty element, or text without any white space.
int decode_boolean(asn1_xer_parser* parser, void* value) {
    if (is_blank(parser) && next_token(parser) != 0) return -1;
    if (is_text(parser, "true") || is_text(parser, "false")) {
        store32(value, is_text(parser, "true"));
        return next_token(parser);
    }
    bool truth = is_tag(parser, XER_TOKEN_START, "true");
    if (!truth && !is_tag(parser, XER_TOKEN_START, "false")) {
        return parse_error(parser, "expecting boolean value");
    }
    store32(value, truth);
    return next_token(parser) == 0 ? skip_closing_tag(parser, truth ? "true" : "false") : -1;
}

// ---- ENUMERATED -------------------------------------------------------------------------------------------

// The item whose number the current text is, in decimal, octal or hexadecimal; or -1.
static int32_t find_item_by_number(const asn1_xer_parser* parser, const asn1_type_desc* type,
                                   const enum_layout& items) {
    char* end;
    long long number = strtoll(text_of(parser), &end, 0);
    if (end != text_end(parser) || number < INT32_MIN || number > INT32_MAX) return -1;
    return asn1_find_enum_index(items.names, items.total, static_cast<int32_t>(number), word0(type));
}

static int decode_item_text(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    enum_layout items = enum_of(type);
    int32_t index = find_item(items, text_of(parser), parser->contents.length);
    if (index < 0) index = find_item_by_number(parser, type, items);
    return store_item(parser, value, index, text_of(parser), parser->contents.length) == 0
               ? next_token(parser)
               : -1;
}

static int decode_item_tag(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != XER_TOKEN_START) {
        return parse_error(parser, "expecting empty tag for enumerated type");
    }
    enum_layout items = enum_of(type);
    int32_t index = find_item(items, parser->name, parser->name_length);
    if (store_item(parser, value, index, parser->name, parser->name_length) != 0) return -1;
    return next_token(parser) == 0 ? skip_closing_tag(parser, items.names[index].text) : -1;
}

int decode_enumerated(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    if (is_blank(parser) && next_token(parser) != 0) return -1;
    return parser->token == XER_TOKEN_TEXT ? decode_item_text(parser, type, value)
                                           : decode_item_tag(parser, type, value);
}

// ---- REAL -------------------------------------------------------------------------------------------------

// Text that is no number at all is 0, and what stands behind a number is not looked at.
int decode_real(asn1_xer_parser* parser, void* value) {
    static constexpr real_names names = {"INF", "-INF", "NaN", nullptr};
    if (parser->token != XER_TOKEN_TEXT) return parse_error(parser, "expecting real number");
    const char* text = skip_text_spaces(text_of(parser));
    double real;
    if (!find_named_real(names, text, static_cast<size_t>(text_end(parser) - text), &real)) {
        real = strtod(text, nullptr);
    }
    memcpy(value, &real, sizeof real);
    return next_token(parser);
}

// ---- OBJECT IDENTIFIER, RELATIVE-OID ----------------------------------------------------------------------

int decode_object_identifier(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    bool relative = kind_of(type) == ASN1_KIND_RELATIVE_OID;
    if (parser->token != XER_TOKEN_TEXT) {
        return parse_error(parser, "expecting %sobject identifier", relative ? "relative " : "");
    }
    int result = store_object_identifier(parser, static_cast<asn1_string*>(value), text_of(parser),
                                         parser->contents.length, relative, "invalid object identifier");
    return result == 0 ? next_token(parser) : -1;
}

}  // namespace orlenta::xer
