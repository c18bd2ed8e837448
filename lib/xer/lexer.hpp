// SPDX-License-Identifier: Apache-2.0
// XML tokens, one of look-ahead: start tags, end tags and character data.
#pragma once

#include "core/text_reader.hpp"

namespace orlenta::xer {

enum : uint32_t {
    XER_TOKEN_START = 0,  // start tag; of an empty element too, whose end tag is the next token
    XER_TOKEN_END = 1,
    XER_TOKEN_TEXT = 2,  // character data, entities resolved
    XER_TOKEN_ERROR = 3,
    XER_TOKEN_EOF = 4,  // end of input, and the state before the first token
};

inline constexpr ptrdiff_t kTagNameMax = 1023;

// The contents of a TEXT token are its characters, with a NUL behind their length.
struct asn1_xer_parser : text_parser {
    bool is_empty_tag;           // the current start tag is an empty element's
    uint32_t name_length;        // of a START or END token
    char name[kTagNameMax + 1];  // the same, NUL-terminated
};

// Makes the next token current. The end of input is a token too, and no error.
int next_token(asn1_xer_parser* parser);

// Steps over white space; other text is an error. A token that is no text stays current.
int skip_spaces(asn1_xer_parser* parser);

// Steps over white space and the end tag of this name: "expecting closing tag </%s>" if something else is
// there.
int skip_closing_tag(asn1_xer_parser* parser, const char* name);

inline const char* text_of(const asn1_xer_parser* parser) {
    return reinterpret_cast<const char*>(parser->contents.data);
}
inline const char* text_end(const asn1_xer_parser* parser) {
    return text_of(parser) + parser->contents.length;
}

// Whether the current token is white space and nothing else.
bool is_blank(const asn1_xer_parser* parser);

// Whether the current token is exactly this text, or has exactly this tag name.
inline bool is_text(const asn1_xer_parser* parser, const char* text) {
    return parser->token == XER_TOKEN_TEXT && cstr_equal(text_of(parser), parser->contents.length, text);
}
inline bool is_tag(const asn1_xer_parser* parser, uint32_t token, const char* name) {
    return parser->token == token && cstr_equal(parser->name, parser->name_length, name);
}

// Steps over white space within the text of the current token.
inline const char* skip_text_spaces(const char* text) {
    while (is_space(static_cast<uint8_t>(*text))) ++text;
    return text;
}

}  // namespace orlenta::xer
