// SPDX-License-Identifier: Apache-2.0
#include "gser/lexer.hpp"

namespace orlenta::gser {

// ---- white space and comments -----------------------------------------------------------------------------

// Whether these two characters are next.
static bool at_pair(const asn1_gser_parser* parser, char first, char second) {
    const uint8_t* at = parser->cursor;
    return parser->end - at >= 2 && at[0] == first && at[1] == second;
}

// Up to the line's end. A second pair of hyphens, which ends such a comment in ASN.1, does not end it here.
static void skip_line_comment(asn1_gser_parser* parser) {
    const uint8_t* at = parser->cursor;
    while (at < parser->end && *at != '\n') ++at;
    parser->cursor = at;
}

static int skip_block_comment(asn1_gser_parser* parser) {
    for (parser->cursor += 2; parser->cursor < parser->end; ++parser->cursor) {
        if (at_pair(parser, '*', '/')) {
            parser->cursor += 2;
            return 0;
        }
        if (*parser->cursor == '\n') ++parser->line;
    }
    return parse_error(parser, "expecting end of multi-line comment");
}

static int skip_blanks(asn1_gser_parser* parser) {
    for (;;) {
        skip_white_space(parser);
        if (at_pair(parser, '-', '-')) {
            skip_line_comment(parser);
        } else if (at_pair(parser, '/', '*')) {
            if (skip_block_comment(parser) != 0) return -1;
        } else {
            return 0;
        }
    }
}

// ---- strings ----------------------------------------------------------------------------------------------

static int put_code_point(asn1_gser_parser* parser, uint32_t code) {
    asn1_byte_buffer* contents = &parser->contents;
    if (!reserve(contents, sizeof code)) return parse_error(parser, kNotEnoughMemory);
    store_code_unit(contents->data, parser->length++, 2, code);
    contents->length += sizeof code;
    return 0;
}

// Takes the characters of ASCII up to the next quotation mark. Line feeds among them do not count as lines.
static int lex_plain(asn1_gser_parser* parser) {
    const uint8_t* start = parser->cursor;
    const uint8_t* at = start;
    while (at < parser->end && *at < 0x80 && *at != '"') ++at;
    parser->cursor = at;
    uint64_t count = static_cast<uint64_t>(at - start);
    asn1_byte_buffer* contents = &parser->contents;
    if (!reserve(contents, 4 * count)) return parse_error(parser, kNotEnoughMemory);
    for (uint64_t i = 0; i < count; ++i) store_code_unit(contents->data, parser->length + i, 2, start[i]);
    parser->length += count;
    contents->length += 4 * count;
    return 0;
}

static int lex_multibyte(asn1_gser_parser* parser) {
    int32_t code = lex_code_point(parser);
    return code >= 0 ? put_code_point(parser, static_cast<uint32_t>(code)) : -1;
}

// The cursor is on the opening quotation mark. Two of them inside stand for one.
static int lex_string(asn1_gser_parser* parser) {
    parser->contents.length = 0;
    parser->length = 0;
    if (!reserve(&parser->contents, 1)) return parse_error(parser, kNotEnoughMemory);
    ++parser->cursor;
    for (;;) {
        if (lex_plain(parser) != 0) return -1;
        if (parser->cursor == parser->end) return parse_error(parser, "unterminated string");
        if (*parser->cursor != '"') {
            if (lex_multibyte(parser) != 0) return -1;
            continue;
        }
        bool is_doubled = at_pair(parser, '"', '"');
        parser->cursor += is_doubled ? 2 : 1;
        if (!is_doubled) break;
        if (put_code_point(parser, '"') != 0) return -1;
    }
    parser->token = GSER_TOKEN_STRING;
    return 0;
}

// ---- bit and hex strings ----------------------------------------------------------------------------------

// The closing apostrophe, which a character must follow, or null.
static const uint8_t* find_apostrophe(const asn1_gser_parser* parser, const uint8_t* at) {
    while (at < parser->end && *at != '\'' && *at != '\n') ++at;
    return parser->end - at >= 2 && *at == '\'' ? at : nullptr;
}

// Takes digits of `width` bits each, 1 or 4, with white space anywhere.
static int lex_digits(asn1_gser_parser* parser, const uint8_t* at, const uint8_t* end, uint32_t width) {
    uint64_t bits = 0;
    asn1_byte_buffer* contents = &parser->contents;
    contents->length = 0;
    if (!reserve(contents, static_cast<uint64_t>(end - at) * width / 8 + 1)) {
        return parse_error(parser, kNotEnoughMemory);
    }
    for (; at < end; ++at) {
        int digit = *at < 'a' ? hex_digit(*at) : -1;
        if (digit < 0 || digit >> width != 0) {
            if (is_space(*at)) continue;
            return parse_error(parser, "expecting %s digits", width == 4 ? "hexadecimal" : "binary");
        }
        uint8_t* byte = contents->data + bits / 8;
        if (bits % 8 == 0) *byte = 0;
        *byte = static_cast<uint8_t>(*byte | digit << (8 - width - bits % 8));
        bits += width;
    }
    parser->length = bits;
    return 0;
}

// The cursor is on the opening apostrophe.
static int lex_bits(asn1_gser_parser* parser) {
    const uint8_t* start = parser->cursor + 1;
    const uint8_t* end = find_apostrophe(parser, start);
    if (!end) return parse_error(parser, "unexpected end of binary or hexadecimal string");
    uint8_t form = end[1];
    if (form != 'B' && form != 'H') return parse_error(parser, "expecting 'B' or 'H'");
    if (lex_digits(parser, start, end, form == 'H' ? 4 : 1) != 0) return -1;
    parser->cursor = end + 2;
    parser->token = form == 'H' ? GSER_TOKEN_HEX_STRING : GSER_TOKEN_BIT_STRING;
    return 0;
}

// ---- tokens -----------------------------------------------------------------------------------------------

// The token that an identifier is: a keyword's own if it is one.
static uint32_t identifier_token(const text_identifier* identifier) {
    static constexpr struct {
        const char* text;
        uint32_t token;
    } keywords[] = {{"TRUE", GSER_TOKEN_TRUE}, {"FALSE", GSER_TOKEN_FALSE}, {"NULL", GSER_TOKEN_NULL}};
    for (const auto& keyword : keywords) {
        if (cstr_equal(identifier->text, identifier->length, keyword.text)) return keyword.token;
    }
    return GSER_TOKEN_IDENTIFIER;
}

static int lex_word(asn1_gser_parser* parser) {
    if (lex_identifier(parser, &parser->identifier, '-') != 0) return -1;
    parser->token = identifier_token(&parser->identifier);
    return 0;
}

static int lex_number_token(asn1_gser_parser* parser) {
    if (lex_number(parser, false, &parser->number) != 0) return -1;
    parser->token = parser->number.is_real ? GSER_TOKEN_REAL : GSER_TOKEN_INTEGER;
    return 0;
}

static int lex_token(asn1_gser_parser* parser) {
    uint8_t c = *parser->cursor;
    if (is_letter(c)) return lex_word(parser);
    if (is_digit(c)) return lex_number_token(parser);
    switch (c) {
        case '"': return lex_string(parser);
        case '\'': return lex_bits(parser);
        case '(':
        case ')':
        case ',':
        case '-':
        case '.':
        case ':':
        case ';':
        case '{':
        case '}':
            parser->token = c;
            ++parser->cursor;
            return 0;
        default: return parse_error(parser, "unexpected character '%c'", c);
    }
}

int next_token(asn1_gser_parser* parser) {
    parser->token = GSER_TOKEN_NONE;
    if (skip_blanks(parser) == 0) {
        if (parser->cursor == parser->end || lex_token(parser) == 0) return 0;
    }
    parser->token = GSER_TOKEN_ERROR;
    return -1;
}

int skip_token(asn1_gser_parser* parser, uint32_t kind) {
    if (parser->token == kind) return next_token(parser);
    const char character[2] = {static_cast<char>(kind), '\0'};
    return parse_error(parser, "expecting '%s'", kind == GSER_TOKEN_NULL ? "NULL" : character);
}

}  // namespace orlenta::gser
