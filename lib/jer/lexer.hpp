// JSON tokens, one of look-ahead.
#pragma once

#include "core/text_number.hpp"

namespace orlenta::jer {

// Kinds of token. A kind below 128 is that single character, whatever it is.
enum : uint32_t {
    JER_TOKEN_NONE = 128,  // end of input, and the state between tokens
    JER_TOKEN_ERROR = 129,
    JER_TOKEN_INTEGER = 130,
    JER_TOKEN_REAL = 131,
    JER_TOKEN_STRING = 132,
    JER_TOKEN_IDENTIFIER = 133,
};

// The contents of a STRING token are its UTF-8, with a NUL behind their length.
struct asn1_jer_parser : text_parser {
    text_number number;          // of an INTEGER or REAL token
    text_identifier identifier;  // of an IDENTIFIER token
    uint64_t code_points;        // of a STRING token: its characters
};

// Makes the next token current. The end of input is a token too, and no error.
int next_token(asn1_jer_parser* parser);

// Steps over the character `kind`: "expecting '%c'" if another token is current.
int skip_token(asn1_jer_parser* parser, uint32_t kind);

inline const char* string_text(const asn1_jer_parser* parser) {
    return reinterpret_cast<const char*>(parser->contents.data);
}

// Whether the current token is this string, or this identifier.
inline bool is_string(const asn1_jer_parser* parser, const char* text) {
    return parser->token == JER_TOKEN_STRING &&
           cstr_equal(string_text(parser), parser->contents.length, text);
}
inline bool is_identifier(const asn1_jer_parser* parser, const char* text) {
    return parser->token == JER_TOKEN_IDENTIFIER &&
           cstr_equal(parser->identifier.text, parser->identifier.length, text);
}

// Takes the text of the current STRING token over; the caller releases `data`.
inline asn1_byte_buffer take_string(asn1_jer_parser* parser) {
    asn1_byte_buffer text = parser->contents;
    asn1_byte_buffer_init(&parser->contents);
    return text;
}

}  // namespace orlenta::jer
