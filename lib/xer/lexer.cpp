// SPDX-License-Identifier: Apache-2.0
#include "xer/lexer.hpp"

#include <stdlib.h>

#include "core/text_writer.hpp"

namespace orlenta::xer {

// ---- comments and processing instructions -----------------------------------------------------------------

// Whether the cursor is on <! or <?
static bool at_comment(const asn1_xer_parser* parser) {
    const uint8_t* at = parser->cursor;
    return parser->end - at >= 2 && *at == '<' && (at[1] == '!' || at[1] == '?');
}

// Puts the cursor behind the first `mark` from `at` on; false if there is none.
static bool skip_to(asn1_xer_parser* parser, const uint8_t* at, const char* mark, ptrdiff_t mark_length) {
    for (; at < parser->end; ++at) {
        if (*at == '\n') ++parser->line;
        if (*at != *mark || parser->end - at < mark_length) continue;
        if (memcmp(at, mark, static_cast<size_t>(mark_length)) != 0) continue;
        parser->cursor = at + mark_length;
        return true;
    }
    return false;
}

// `position` is on the ! or ?. A comment's end may share the dashes of its beginning. Everything that is no
// comment ends at the first >, a CDATA section too.
static int skip_comment(asn1_xer_parser* parser, const uint8_t* position) {
    ptrdiff_t left = parser->end - position;
    if (left >= 3 && memcmp(position, "!--", 3) == 0) {
        if (left < 5 || !skip_to(parser, position + 2, "-->", 3)) {
            return parse_error(parser, "unexpected end of stream in comment");
        }
        return 0;
    }
    if (skip_to(parser, position, ">", 1)) return 0;
    return parse_error(parser, "unexpected end of stream in processing instruction");
}

// ---- tags -------------------------------------------------------------------------------------------------

static int tag_error(asn1_xer_parser* parser) {
    return parse_error(parser, "invalid tag syntax: expecting '>'");
}

// A name that holds a NUL ends there.
static int lex_tag_name(asn1_xer_parser* parser) {
    const uint8_t* start = parser->cursor;
    const uint8_t* at = start;
    for (; at < parser->end && *at != '>' && *at != '/' && !is_space(*at); ++at) {
        if (at - start == kTagNameMax) return parse_error(parser, "tag name too long");
    }
    if (at == parser->end) return tag_error(parser);
    size_t length = static_cast<size_t>(at - start);
    memcpy(parser->name, start, length);
    parser->name[length] = '\0';
    parser->name_length = static_cast<uint32_t>(strnlen(parser->name, length));
    parser->cursor = at;
    return 0;
}

// Attributes mean nothing here, and end at the first > or / even within a quoted value.
static int skip_attributes(asn1_xer_parser* parser) {
    const uint8_t* at = parser->cursor;
    for (; at < parser->end && *at != '>' && *at != '/'; ++at) {
        if (*at == '\n') ++parser->line;
    }
    parser->cursor = at;
    return at < parser->end ? 0 : tag_error(parser);
}

// The cursor is on the <, and a byte follows it.
static int lex_tag(asn1_xer_parser* parser) {
    bool is_end = *++parser->cursor == '/';
    parser->cursor += is_end;
    if (lex_tag_name(parser) != 0 || skip_attributes(parser) != 0) return -1;
    bool is_empty = *parser->cursor == '/';
    if (is_empty) {
        if (++parser->cursor == parser->end || *parser->cursor != '>') return tag_error(parser);
        if (is_end) return parse_error(parser, "invalid closing tag syntax");
    }
    ++parser->cursor;
    parser->is_empty_tag = is_empty;
    parser->token = is_end ? XER_TOKEN_END : XER_TOKEN_START;
    return 0;
}

// ---- character data ---------------------------------------------------------------------------------------

inline constexpr ptrdiff_t kEntityNameMax = 127;

// Gathers the name behind the & in `name`, and puts the cursor behind its semicolon.
static bool lex_entity_name(asn1_xer_parser* parser, char* name) {
    const uint8_t* start = ++parser->cursor;
    const uint8_t* at = start;
    for (; at < parser->end && *at != ';'; ++at) {
        if (is_space(*at) || at - start == kEntityNameMax) return false;
    }
    if (at == parser->end) return false;
    size_t length = static_cast<size_t>(at - start);
    memcpy(name, start, length);
    name[length] = '\0';
    parser->cursor = at + 1;
    return true;
}

// The digits of a number are not looked at: what strtoul cannot read is 0.
static bool entity_code(const char* name, uint32_t* code) {
    if (name[0] == '#') {
        bool is_hex = name[1] == 'x';
        *code = static_cast<uint32_t>(strtoull(name + 1 + is_hex, nullptr, is_hex ? 16 : 10));
        return true;
    }
    static constexpr struct {
        const char* name;
        char character;
    } entities[] = {{"gt", '>'}, {"lt", '<'}, {"amp", '&'}};
    for (const auto& entity : entities) {
        if (strcmp(name, entity.name) != 0) continue;
        *code = static_cast<uint8_t>(entity.character);
        return true;
    }
    return false;
}

// The cursor is on the &.
static int lex_entity(asn1_xer_parser* parser) {
    char name[kEntityNameMax + 1];
    uint32_t code;
    if (!lex_entity_name(parser, name) || !entity_code(name, &code)) {
        return parse_error(parser, "invalid XML entity syntax");
    }
    put_utf8(&parser->contents, code);
    return 0;
}

// A carriage return, with or without a line feed behind it, becomes a line feed.
static void lex_carriage_return(asn1_xer_parser* parser) {
    ++parser->cursor;
    if (parser->cursor < parser->end && *parser->cursor == '\n') ++parser->cursor;
    ++parser->line;
    put_char(&parser->contents, '\n');
}

// Takes the characters that stand for themselves.
static void lex_plain(asn1_xer_parser* parser) {
    const uint8_t* start = parser->cursor;
    const uint8_t* at = start;
    for (; at < parser->end && *at != '<' && *at != '&' && *at != '\r'; ++at) {
        if (*at == '\n') ++parser->line;
    }
    if (at == start) return;
    asn1_put_bytes(&parser->contents, start, static_cast<uint64_t>(at - start));
    parser->cursor = at;
}

// Up to the next tag, or a < at the very end. Comments leave no trace in the text.
static int lex_characters(asn1_xer_parser* parser) {
    for (;;) {
        lex_plain(parser);
        if (parser->cursor == parser->end) return 0;
        uint8_t c = *parser->cursor;
        if (c == '\r') {
            lex_carriage_return(parser);
        } else if (c == '&') {
            if (lex_entity(parser) != 0) return -1;
        } else {
            if (!at_comment(parser)) return 0;
            if (skip_comment(parser, parser->cursor + 1) != 0) return -1;
        }
    }
}

static int lex_text(asn1_xer_parser* parser) {
    parser->contents.length = 0;
    if (lex_characters(parser) != 0) return -1;
    put_byte(&parser->contents, 0);
    if (parser->contents.failed) return parse_error(parser, kNotEnoughMemory);
    --parser->contents.length;
    parser->token = XER_TOKEN_TEXT;
    return 0;
}

// ---- tokens -----------------------------------------------------------------------------------------------

static int lex_token(asn1_xer_parser* parser) {
    while (at_comment(parser)) {
        if (skip_comment(parser, parser->cursor + 1) != 0) return -1;
    }
    ptrdiff_t left = parser->end - parser->cursor;
    if (left == 0 || (left == 1 && *parser->cursor == '<')) {
        parser->token = XER_TOKEN_EOF;
        return 0;
    }
    return *parser->cursor == '<' ? lex_tag(parser) : lex_text(parser);
}

int next_token(asn1_xer_parser* parser) {
    if (parser->is_empty_tag) {
        parser->is_empty_tag = false;
        parser->token = XER_TOKEN_END;
        return 0;
    }
    if (lex_token(parser) == 0) return 0;
    parser->token = XER_TOKEN_ERROR;
    return -1;
}

bool is_blank(const asn1_xer_parser* parser) {
    if (parser->token != XER_TOKEN_TEXT) return false;
    const char* at = text_of(parser);
    const char* end = text_end(parser);
    while (at < end && is_space(static_cast<uint8_t>(*at))) ++at;
    return at == end;
}

int skip_spaces(asn1_xer_parser* parser) {
    if (parser->token != XER_TOKEN_TEXT) return 0;
    return is_blank(parser) ? next_token(parser) : parse_error(parser, "unexpected XML content");
}

int skip_closing_tag(asn1_xer_parser* parser, const char* name) {
    if (skip_spaces(parser) != 0) return -1;
    if (!is_tag(parser, XER_TOKEN_END, name)) return parse_error(parser, "expecting closing tag </%s>", name);
    return next_token(parser);
}

}  // namespace orlenta::xer
