// INTEGER, BOOLEAN, ENUMERATED, NULL, REAL, OBJECT IDENTIFIER, RELATIVE-OID.
#include <orlenta/scalar.h>

#include "jer/decode.hpp"

namespace orlenta::jer {

int decode_integer(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != JER_TOKEN_INTEGER) return parse_error(parser, "expecting integer value");
    const text_integer* token = &parser->number.integer;
    if (is_big_integer(type)) {
        if (text_integer_copy(token, static_cast<asn1_integer*>(value)) != 0) {
            return parse_error(parser, kNotEnoughMemory);
        }
        return next_token(parser);
    }
    int64_t number;
    if (text_integer_to_si64(token, &number) != 0) return parse_error(parser, "integer too large");
    if (next_token(parser) != 0) return -1;
    return store_integer32(type, value, number) ? 0 : parse_error(parser, "integer too large");
}

int decode_boolean(asn1_jer_parser* parser, void* value) {
    bool truth = is_identifier(parser, "true");
    if (!truth && !is_identifier(parser, "false")) return parse_error(parser, "expecting boolean value");
    store32(value, truth);
    return next_token(parser);
}

int decode_enumerated(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting enumerated string");
    int32_t index = find_item(enum_of(type), string_text(parser), parser->string.length);
    if (index < 0) return parse_error(parser, "enumerated '%s' not found", string_text(parser));
    store32(value, static_cast<uint32_t>(index));
    return next_token(parser);
}

int decode_null(asn1_jer_parser* parser) {
    if (!is_identifier(parser, "null")) return parse_error(parser, "expecting 'null'");
    return next_token(parser);
}

// ---- REAL -------------------------------------------------------------------------------------------------

// The bits of the numbers that are written as strings.
static bool special_real_bits(const asn1_jer_parser* parser, uint64_t* bits) {
    static constexpr struct {
        const char* text;
        uint64_t bits;
    } specials[] = {
        {"INF", UINT64_C(0x7FF0000000000000)},
        {"-INF", UINT64_C(0xFFF0000000000000)},
        {"NaN", UINT64_C(0x7FF8000000000000)},
        {"-0", UINT64_C(0x8000000000000000)},
    };
    for (const auto& special : specials) {
        if (!is_string(parser, special.text)) continue;
        *bits = special.bits;
        return true;
    }
    return false;
}

static bool number_bits(const asn1_jer_parser* parser, uint64_t* bits) {
    double real;
    if (parser->token == JER_TOKEN_REAL) {
        real = parser->number.real;
    } else {
        int64_t number;
        if (parser->token != JER_TOKEN_INTEGER) return false;
        if (text_integer_to_si64(&parser->number.integer, &number) != 0) return false;
        real = static_cast<double>(number);
    }
    memcpy(bits, &real, sizeof real);
    return true;
}

int decode_real(asn1_jer_parser* parser, void* value) {
    uint64_t bits;
    if (!special_real_bits(parser, &bits) && !number_bits(parser, &bits)) {
        return parse_error(parser, "expecting real number");
    }
    memcpy(value, &bits, sizeof bits);
    return next_token(parser);
}

// ---- OBJECT IDENTIFIER, RELATIVE-OID ----------------------------------------------------------------------

int decode_object_identifier(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    bool relative = kind_of(type) == ASN1_KIND_RELATIVE_OID;
    const char* word = relative ? "relative " : "";
    if (parser->token != JER_TOKEN_STRING) {
        return parse_error(parser, "expecting %sobject identifier string", word);
    }
    if (asn1_parse_object_identifier(static_cast<asn1_string*>(value), string_text(parser),
                                     parser->string.length, relative) != 0) {
        return parse_error(parser, "invalid %sobject identifier", word);
    }
    return next_token(parser);
}

}  // namespace orlenta::jer
