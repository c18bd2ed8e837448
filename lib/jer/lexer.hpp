// SPDX-License-Identifier: Apache-2.0
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

// The UTF-8 of a STRING token: in the input if it stands there as it is, else in the parser's contents.
struct string_token {
    const char* text;
    uint64_t length;
    uint64_t code_points;
};

struct asn1_jer_parser : text_parser {
    text_number number;          // of an INTEGER or REAL token
    text_identifier identifier;  // of an IDENTIFIER token
    string_token string;         // of a STRING token
};

// next_token() whatever comes next.
int lex_next(asn1_jer_parser* parser);

// The characters that are tokens of JSON.
inline bool is_mark(uint8_t c) {
    return c == ',' || c == ':' || c == '{' || c == '}' || c == '[' || c == ']';
}

// Makes the next token current. The end of input is a token too, and no error.
inline int next_token(asn1_jer_parser* parser) {
    if (parser->cursor == parser->end || !is_mark(*parser->cursor)) return lex_next(parser);
    parser->token = *parser->cursor++;
    return 0;
}

// Steps over the character `kind`: "expecting '%c'" if another token is current.
inline int skip_token(asn1_jer_parser* parser, uint32_t kind) {
    if (parser->token == kind) return next_token(parser);
    return parse_error(parser, "expecting '%c'", static_cast<int>(kind));
}

// Whether the current token is this string, or this identifier.
inline bool is_string(const asn1_jer_parser* parser, const char* text) {
    return parser->token == JER_TOKEN_STRING && cstr_equal(parser->string.text, parser->string.length, text);
}
inline bool is_identifier(const asn1_jer_parser* parser, const char* text) {
    return parser->token == JER_TOKEN_IDENTIFIER &&
           cstr_equal(parser->identifier.text, parser->identifier.length, text);
}

// The text of the current STRING token with a NUL behind it; null after an error.
const char* terminated_string(asn1_jer_parser* parser);

// Takes over the block that the current STRING token may lie in; the caller releases `data`.
inline asn1_byte_buffer take_string_block(asn1_jer_parser* parser) {
    asn1_byte_buffer block = parser->contents;
    asn1_byte_buffer_init(&parser->contents);
    return block;
}

}  // namespace orlenta::jer
