// SPDX-License-Identifier: Apache-2.0
// GSER tokens, one of look-ahead.
#pragma once

#include "core/text_number.hpp"

namespace orlenta::gser {

// Kinds of token. A kind below 128 is that single character, one of ( ) , - . : ; { }
enum : uint32_t {
    GSER_TOKEN_NONE = 128,  // end of input, and the state between tokens
    GSER_TOKEN_ERROR = 129,
    GSER_TOKEN_INTEGER = 130,  // never negative: the sign is a token of its own
    GSER_TOKEN_REAL = 131,
    GSER_TOKEN_STRING = 132,
    GSER_TOKEN_BIT_STRING = 133,
    GSER_TOKEN_HEX_STRING = 134,
    GSER_TOKEN_IDENTIFIER = 135,
    GSER_TOKEN_TRUE = 136,
    GSER_TOKEN_FALSE = 137,
    GSER_TOKEN_NULL = 138,
};

// The contents of a STRING token are its code points, 32 bits each; those of a BIT or HEX STRING token its bits. There is
// a block then even if there are none.
struct asn1_gser_parser : text_parser {
    text_number number;          // of an INTEGER or REAL token
    text_identifier identifier;  // of an IDENTIFIER token
    uint64_t length;             // of a STRING token in code points, of a BIT or HEX STRING token in bits
};

// Makes the next token current. The end of input is a token too, and no error.
int next_token(asn1_gser_parser* parser);

// Steps over a token of this kind, a single character or NULL: "expecting '%s'" if another one is current.
int skip_token(asn1_gser_parser* parser, uint32_t kind);

// Whether the current token is this identifier.
inline bool is_identifier(const asn1_gser_parser* parser, const char* text) {
    return parser->token == GSER_TOKEN_IDENTIFIER &&
           cstr_equal(parser->identifier.text, parser->identifier.length, text);
}

}  // namespace orlenta::gser
