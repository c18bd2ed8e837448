// SPDX-License-Identifier: Apache-2.0
#include "jer/lexer.hpp"

#include "core/text_writer.hpp"

namespace orlenta::jer {

// ---- strings ----------------------------------------------------------------------------------------------

static void put_code_point(asn1_jer_parser* parser, uint32_t code) {
    put_utf8(&parser->contents, code);
    ++parser->string.code_points;
}

// Reads exactly four hexadecimal digits and moves `*position` behind them; -1 if they are not there.
static int32_t parse_unicode_escape(const uint8_t** position, const uint8_t* end) {
    const uint8_t* at = *position;
    if (end - at < 4) return -1;
    int32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        int digit = hex_digit(*at++);
        if (digit < 0) return -1;
        code = code << 4 | digit;
    }
    *position = at;
    return code;
}

// The cursor is behind \u. A surrogate without its partner is taken as a code point of its own.
static int lex_unicode_escape(asn1_jer_parser* parser) {
    int32_t code = parse_unicode_escape(&parser->cursor, parser->end);
    if (code < 0) return parse_error(parser, "invalid escape code");
    bool is_lead = code >= 0xD800 && code <= 0xDBFF;
    const uint8_t* at = parser->cursor;
    if (is_lead && parser->end - at >= 6 && at[0] == '\\' && at[1] == 'u') {
        at += 2;
        int32_t trail = parse_unicode_escape(&at, parser->end);
        if (trail < 0) return parse_error(parser, "invalid escape code");
        if (trail < 0xDC00 || trail > 0xDFFF) return parse_error(parser, "invalid surrogate pair");
        code = 0x10000 + ((code - 0xD800) << 10) + (trail - 0xDC00);
        parser->cursor = at;
    }
    put_code_point(parser, static_cast<uint32_t>(code));
    return 0;
}

// The character that a backslash and `c` stand for, or -1. JSON's \/ is not among them.
static int simple_escape(uint8_t c) {
    switch (c) {
        case '"': return '"';
        case '\\': return '\\';
        case 'b': return '\b';
        case 'f': return '\f';
        case 'n': return '\n';
        case 'r': return '\r';
        case 't': return '\t';
        default: return -1;
    }
}

// The cursor is on the backslash.
static int lex_escape(asn1_jer_parser* parser) {
    if (++parser->cursor == parser->end) return parse_error(parser, "unterminated string");
    uint8_t c = *parser->cursor++;
    if (c == 'u') return lex_unicode_escape(parser);
    int code = simple_escape(c);
    if (code < 0) return parse_error(parser, "invalid escape code");
    put_code_point(parser, static_cast<uint32_t>(code));
    return 0;
}

static int lex_multibyte(asn1_jer_parser* parser) {
    int32_t code = lex_code_point(parser);
    if (code < 0) return -1;
    put_code_point(parser, static_cast<uint32_t>(code));
    return 0;
}

static bool is_plain(uint8_t c) { return c < 0x80 && c != '"' && c != '\\'; }

// The first byte from `at` on that is not plain, eight at a time while there are as many.
static const uint8_t* skip_plain(const uint8_t* at, const uint8_t* end) {
    constexpr uint64_t kOnes = UINT64_C(0x0101010101010101), kTops = kOnes << 7;
    for (; end - at >= 8; at += 8) {
        uint64_t word;
        memcpy(&word, at, sizeof word);
        uint64_t quote = word ^ kOnes * '"', backslash = word ^ kOnes * '\\';
        // A byte that is not plain sets its top bit here, and none below it does.
        uint64_t marks = (word | ((quote - kOnes) & ~quote) | ((backslash - kOnes) & ~backslash)) & kTops;
        if (marks == 0) continue;
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        return at + __builtin_ctzll(marks) / 8;
#else
        break;
#endif
    }
    while (at < end && is_plain(*at)) ++at;
    return at;
}

// Takes the characters that stand for themselves, control characters among them.
static void lex_plain(asn1_jer_parser* parser) {
    const uint8_t* start = parser->cursor;
    const uint8_t* at = skip_plain(start, parser->end);
    if (at == start) return;
    uint64_t length = static_cast<uint64_t>(at - start);
    asn1_byte_buffer* contents = &parser->contents;
    if (reserve(contents, length)) {
        memcpy(contents->data + contents->length, start, length);
        contents->length += length;
    }
    parser->string.code_points += length;
    parser->cursor = at;
}

// What most strings are: plain up to the closing quote. The cursor is behind the opening one; else false, and it stays
// there.
static bool lex_plain_string(asn1_jer_parser* parser) {
    const uint8_t* start = parser->cursor;
    const uint8_t* at = skip_plain(start, parser->end);
    if (at == parser->end || *at != '"') return false;
    uint64_t length = static_cast<uint64_t>(at - start);
    parser->string = {reinterpret_cast<const char*>(start), length, length};
    parser->cursor = at + 1;
    parser->token = JER_TOKEN_STRING;
    return true;
}

// The cursor is on the opening quote.
static int lex_string(asn1_jer_parser* parser) {
    ++parser->cursor;
    if (lex_plain_string(parser)) return 0;
    parser->contents.length = 0;
    parser->string.code_points = 0;
    for (;;) {
        lex_plain(parser);
        if (parser->cursor == parser->end) return parse_error(parser, "unterminated string");
        uint8_t c = *parser->cursor;
        if (c == '"') break;
        int result = c == '\\' ? lex_escape(parser) : lex_multibyte(parser);
        if (result != 0) return -1;
    }
    ++parser->cursor;
    if (parser->contents.failed) return parse_error(parser, kNotEnoughMemory);
    parser->string.text = reinterpret_cast<const char*>(parser->contents.data);
    parser->string.length = parser->contents.length;
    parser->token = JER_TOKEN_STRING;
    return 0;
}

const char* terminated_string(asn1_jer_parser* parser) {
    asn1_byte_buffer* contents = &parser->contents;
    string_token* string = &parser->string;
    if (reinterpret_cast<const char*>(contents->data) != string->text) {
        contents->length = 0;
        asn1_put_bytes(contents, string->text, string->length);
    }
    put_byte(contents, 0);
    if (contents->failed) {
        parse_error(parser, kNotEnoughMemory);
        return nullptr;
    }
    string->text = reinterpret_cast<const char*>(contents->data);
    return string->text;
}

// ---- tokens -----------------------------------------------------------------------------------------------

static int lex_number_token(asn1_jer_parser* parser) {
    const uint8_t* at = parser->cursor;
    if (*at == '-' && (at + 1 == parser->end || !is_digit(at[1]))) {
        return parse_error(parser, "invalid number syntax");
    }
    if (lex_number(parser, true, &parser->number) != 0) return -1;
    parser->token = parser->number.is_real ? JER_TOKEN_REAL : JER_TOKEN_INTEGER;
    return 0;
}

static int lex_identifier_token(asn1_jer_parser* parser) {
    if (lex_identifier(parser, &parser->identifier, '_') != 0) return -1;
    parser->token = JER_TOKEN_IDENTIFIER;
    return 0;
}

static int lex_token(asn1_jer_parser* parser) {
    uint8_t c = *parser->cursor;
    if (c == '"') return lex_string(parser);
    if (c == '-' || is_digit(c)) return lex_number_token(parser);
    if (is_letter(c)) return lex_identifier_token(parser);
    if (c >= 0x80) return parse_error(parser, "unexpected character");
    parser->token = c;
    ++parser->cursor;
    return 0;
}

int lex_next(asn1_jer_parser* parser) {
    parser->token = JER_TOKEN_NONE;
    skip_white_space(parser);
    if (parser->cursor == parser->end) return 0;
    if (lex_token(parser) == 0) return 0;
    parser->token = JER_TOKEN_ERROR;
    return -1;
}

}  // namespace orlenta::jer
