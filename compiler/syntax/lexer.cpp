// SPDX-License-Identifier: Apache-2.0
#include "compiler/syntax/lexer.hpp"

#include <algorithm>

namespace orlentac {

namespace {

constexpr std::string_view kReserved[] = {"ABSENT",
                                          "ABSTRACT-SYNTAX",
                                          "ALL",
                                          "ANY",
                                          "APPLICATION",
                                          "AUTOMATIC",
                                          "BEGIN",
                                          "BIT",
                                          "BMPString",
                                          "BOOLEAN",
                                          "BY",
                                          "CHARACTER",
                                          "CHOICE",
                                          "CLASS",
                                          "COMPONENT",
                                          "COMPONENTS",
                                          "CONSTRAINED",
                                          "CONTAINING",
                                          "DATE",
                                          "DATE-TIME",
                                          "DEFAULT",
                                          "DEFINITIONS",
                                          "DURATION",
                                          "EMBEDDED",
                                          "ENCODED",
                                          "ENCODING-CONTROL",
                                          "END",
                                          "ENUMERATED",
                                          "EXCEPT",
                                          "EXPLICIT",
                                          "EXPORTS",
                                          "EXTENSIBILITY",
                                          "EXTERNAL",
                                          "FALSE",
                                          "FROM",
                                          "GeneralString",
                                          "GeneralizedTime",
                                          "GraphicString",
                                          "IA5String",
                                          "IDENTIFIER",
                                          "IMPLICIT",
                                          "IMPLIED",
                                          "IMPORTS",
                                          "INCLUDES",
                                          "INSTANCE",
                                          "INSTRUCTIONS",
                                          "INTEGER",
                                          "INTERSECTION",
                                          "ISO646String",
                                          "MAX",
                                          "MIN",
                                          "MINUS-INFINITY",
                                          "NOT-A-NUMBER",
                                          "NULL",
                                          "NumericString",
                                          "OBJECT",
                                          "OCTET",
                                          "OF",
                                          "OID-IRI",
                                          "OPTIONAL",
                                          "ObjectDescriptor",
                                          "PATTERN",
                                          "PDV",
                                          "PLUS-INFINITY",
                                          "PRESENT",
                                          "PRIVATE",
                                          "PrintableString",
                                          "REAL",
                                          "RELATIVE-OID",
                                          "RELATIVE-OID-IRI",
                                          "SEQUENCE",
                                          "SET",
                                          "SETTINGS",
                                          "SIZE",
                                          "STRING",
                                          "SYNTAX",
                                          "T61String",
                                          "TAGS",
                                          "TIME",
                                          "TIME-OF-DAY",
                                          "TRUE",
                                          "TYPE-IDENTIFIER",
                                          "TeletexString",
                                          "UNION",
                                          "UNIQUE",
                                          "UNIVERSAL",
                                          "UTCTime",
                                          "UTF8String",
                                          "UniversalString",
                                          "VideotexString",
                                          "VisibleString",
                                          "WITH"};

struct Cursor {
    std::string_view text;
    size_t at = 0;
    Place place;
    bool line_start = true;  // no token stood on this line yet
};

constexpr char kNoBreakSpace = '\xA0';  // in ISO 8859-1; two bytes in UTF-8

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return c >= 'a' && c <= 'z'; }
bool is_letter(char c) { return is_upper(c) || is_lower(c); }
bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

char peek(const Cursor& cursor, size_t ahead = 0) {
    return cursor.at + ahead < cursor.text.size() ? cursor.text[cursor.at + ahead] : '\0';
}

bool at_end(const Cursor& cursor) { return cursor.at >= cursor.text.size(); }

bool starts_with(const Cursor& cursor, std::string_view prefix) {
    return cursor.text.substr(cursor.at, prefix.size()) == prefix;
}

void advance(Cursor& cursor, size_t count = 1) {
    for (; count > 0 && !at_end(cursor); count--) {
        if (cursor.text[cursor.at++] == '\n') {
            cursor.place.line++;
            cursor.place.column = 1;
            cursor.line_start = true;
        } else {
            cursor.place.column++;
        }
    }
}

// Ends at the line's end or at the next pair of hyphens.
void skip_line_comment(Cursor& cursor) {
    advance(cursor, 2);
    while (!at_end(cursor) && peek(cursor) != '\n') {
        if (starts_with(cursor, "--")) return advance(cursor, 2);
        advance(cursor);
    }
}

void skip_block_comment(Cursor& cursor, Diagnostics& diags) {
    Place start = cursor.place;
    int depth = 0;
    do {
        if (at_end(cursor))
            return error(diags, start, "expected '*/' to end this comment, found the end of the file");
        if (starts_with(cursor, "/*")) {
            depth++;
            advance(cursor, 2);
        } else if (starts_with(cursor, "*/")) {
            depth--;
            advance(cursor, 2);
        } else {
            advance(cursor);
        }
    } while (depth > 0);
}

bool at_unit(const Cursor& cursor) {
    return starts_with(cursor, kUnitMark) && is_space(peek(cursor, kUnitMark.size()));
}

void skip_blanks(Cursor& cursor, Diagnostics& diags) {
    while (!at_end(cursor)) {
        if (is_space(peek(cursor)) || peek(cursor) == kNoBreakSpace) {
            advance(cursor);
        } else if (starts_with(cursor, "\xC2\xA0")) {
            advance(cursor, 2);
        } else if (starts_with(cursor, "--") && !at_unit(cursor)) {
            skip_line_comment(cursor);
        } else if (starts_with(cursor, "/*")) {
            skip_block_comment(cursor, diags);
        } else {
            return;
        }
    }
}

// Letters, digits and single inner hyphens; two hyphens start a comment. Underscores are common enough to be told of.
std::string read_word(Cursor& cursor, Diagnostics& diags) {
    size_t start = cursor.at;
    auto word_char = [&](size_t ahead) {
        char c = peek(cursor, ahead);
        return is_letter(c) || is_digit(c) || c == '_';
    };
    while (word_char(0) || (peek(cursor) == '-' && word_char(1))) {
        if (peek(cursor) == '_')
            error(diags, cursor.place, "expected a letter, a digit or a hyphen in a name, found '_'");
        advance(cursor);
    }
    return std::string(cursor.text.substr(start, cursor.at - start));
}

void read_digits(Cursor& cursor, std::string& text) {
    for (; is_digit(peek(cursor)); advance(cursor)) text += peek(cursor);
}

// A point followed by a second one belongs to a range, not to the number.
void read_number(Cursor& cursor, Token& token, Diagnostics& diags) {
    token.sort = Token::Sort::number;
    read_digits(cursor, token.text);
    constexpr size_t kMostDigits = 1000;
    if (token.text.size() > kMostDigits) {
        error(diags, token.place, "expected a number of at most {} digits", kMostDigits);
        token.text = "1";
    }
    if (token.text.size() > 1 && token.text[0] == '0') {
        error(diags, token.place, "expected a number without leading zeros, found '{}'", token.text);
        token.text = "0";
    }
    if (peek(cursor) == '.' && peek(cursor, 1) != '.') {
        token.sort = Token::Sort::real_number;
        token.text += '.';
        advance(cursor);
        read_digits(cursor, token.text);
    }
    size_t sign = peek(cursor, 1) == '-' ? 1 : 0;
    if ((peek(cursor) == 'e' || peek(cursor) == 'E') && is_digit(peek(cursor, 1 + sign))) {
        token.sort = Token::Sort::real_number;
        token.text += sign ? "e-" : "e";
        advance(cursor, 1 + sign);
        read_digits(cursor, token.text);
    }
}

// '...'B or '...'H
void read_quoted(Cursor& cursor, Token& token, Diagnostics& diags) {
    advance(cursor);
    for (; !at_end(cursor) && peek(cursor) != '\''; advance(cursor)) {
        if (!is_space(peek(cursor))) token.text += peek(cursor);
    }
    if (at_end(cursor))
        return error(diags, token.place, "expected ''' to end this string, found the end of the file");
    advance(cursor);
    char base = peek(cursor);
    token.sort = base == 'H' ? Token::Sort::hex : Token::Sort::bits;
    std::string_view digits = base == 'H' ? "0123456789ABCDEF" : "01";
    if (base != 'B' && base != 'H') {
        return error(diags, cursor.place, "expected 'B' or 'H' behind the closing quote");
    }
    advance(cursor);
    size_t wrong = token.text.find_first_not_of(digits);
    if (wrong != std::string::npos) {
        error(diags, token.place, "expected {} digits, found '{}'",
              base == 'H' ? "hexadecimal (0 to F)" : "binary", token.text[wrong]);
        token.text.clear();
    }
}

// A quote is doubled; white space around a line end is dropped (X.680 clause 12.14).
void read_text(Cursor& cursor, Token& token, Diagnostics& diags) {
    token.sort = Token::Sort::text;
    advance(cursor);
    while (!at_end(cursor)) {
        char c = peek(cursor);
        if (c == '"' && peek(cursor, 1) != '"') return advance(cursor);
        if (c == '"') advance(cursor);
        if (c == '\n') {
            while (!token.text.empty() && is_space(token.text.back())) token.text.pop_back();
            while (is_space(peek(cursor))) advance(cursor);
            continue;
        }
        token.text += c;
        advance(cursor);
    }
    error(diags, token.place, "expected '\"' to end this string, found the end of the file");
}

void read_symbol(Cursor& cursor, Token& token, Diagnostics& diags) {
    static constexpr std::string_view kLong[] = {"::=", "...", "..", "[[", "]]"};
    token.sort = Token::Sort::symbol;
    for (std::string_view symbol : kLong) {
        if (starts_with(cursor, symbol)) {
            token.text = symbol;
            return advance(cursor, symbol.size());
        }
    }
    char c = peek(cursor);
    if (std::string_view("{}<>,.()[]-:=;@|!^*/").find(c) == std::string_view::npos) {
        if (c >= ' ' && c <= '~') {
            error(diags, cursor.place, "expected ASN.1, found the character '{}'", c);
        } else {
            error(diags, cursor.place, "expected ASN.1, found the byte 0x{:02x}",
                  static_cast<unsigned char>(c));
        }
        token.text.clear();
    } else {
        token.text = c;
    }
    advance(cursor);
}

// Up to where a comment ends.
void read_unit(Cursor& cursor, Token& token) {
    token.sort = Token::Sort::unit;
    size_t start = cursor.at + kUnitMark.size();
    skip_line_comment(cursor);
    token.text = cursor.text.substr(start, cursor.at - start);
    if (token.text.ends_with("--")) token.text.resize(token.text.size() - 2);
}

void add_token(std::vector<Token>& tokens, Token token) {
    bool is_behind_comma = token.sort == Token::Sort::unit && !tokens.empty() &&
                           tokens.back().sort == Token::Sort::symbol && tokens.back().text == ",";
    tokens.insert(tokens.end() - is_behind_comma, std::move(token));
}

// False if nothing came of what stands at the cursor.
bool read_token(Cursor& cursor, Token& token, Diagnostics& diags) {
    char c = peek(cursor);
    if (is_letter(c)) {
        token.sort = is_upper(c) ? Token::Sort::upper_word : Token::Sort::lower_word;
        token.text = read_word(cursor, diags);
    } else if (c == '&' && is_letter(peek(cursor, 1))) {
        token.sort = Token::Sort::field;
        advance(cursor);
        token.text = "&" + read_word(cursor, diags);
    } else if (is_digit(c)) {
        read_number(cursor, token, diags);
    } else if (c == '\'') {
        read_quoted(cursor, token, diags);
    } else if (c == '"') {
        read_text(cursor, token, diags);
    } else if (c == '-' && at_unit(cursor)) {
        read_unit(cursor, token);
    } else {
        read_symbol(cursor, token, diags);
        return !token.text.empty();
    }
    return true;
}

}  // namespace

std::vector<Token> tokenize(const std::string* file, std::string_view text, Diagnostics& diags) {
    Cursor cursor{.text = text, .place = {file, 1, 1}};
    if (starts_with(cursor, "\xEF\xBB\xBF")) cursor.at = 3;
    std::vector<Token> tokens;
    tokens.reserve(text.size() / 4);  // more than there are, as a rule; what is not used costs no memory
    for (skip_blanks(cursor, diags); !at_end(cursor); skip_blanks(cursor, diags)) {
        Token token{{}, cursor.place, Token::Sort::end, cursor.line_start};
        cursor.line_start = false;
        if (read_token(cursor, token, diags)) add_token(tokens, std::move(token));
    }
    tokens.push_back({{}, cursor.place, Token::Sort::end, true});
    return tokens;
}

std::string token_text(const Token& token) {
    switch (token.sort) {
        case Token::Sort::end: return "the end of the file";
        case Token::Sort::unit: return "a unit";
        case Token::Sort::bits: return fmt::format("'{}'B", token.text);
        case Token::Sort::hex: return fmt::format("'{}'H", token.text);
        case Token::Sort::text: return fmt::format("\"{}\"", token.text);
        default: return fmt::format("'{}'", token.text);
    }
}

std::span<const std::string_view> reserved_words() { return kReserved; }

bool is_reserved(std::string_view word) {
    return std::find(std::begin(kReserved), std::end(kReserved), word) != std::end(kReserved);
}

}  // namespace orlentac
