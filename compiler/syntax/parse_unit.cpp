// SPDX-License-Identifier: Apache-2.0
// Units: comments of the form
//
//     --@ unit 0.02 m/s; 8191 unavailable
//     --@ unit 200 Pa + 57800; 0 unavailable; 255 orMore
#include <charconv>

#include "compiler/model/decimal.hpp"
#include "compiler/syntax/parser.hpp"

namespace orlentac {

namespace {

// What is left of the comment.
struct UnitText {
    const Token& token;
    size_t at = 0;
};

Place place_of(const UnitText& text) {
    Place place = text.token.place;
    place.column += static_cast<int>(kUnitMark.size() + text.at);
    return place;
}

char peek(const UnitText& text) { return text.at < text.token.text.size() ? text.token.text[text.at] : '\0'; }

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
bool is_of_word(char c) { return is_letter(c) || is_digit(c) || c == '-'; }
bool is_of_symbol(char c) {
    return is_of_word(c) || (c != '\0' && std::string_view("%/^().").find(c) != std::string_view::npos) ||
           static_cast<unsigned char>(c) >= 0x80;
}

void skip_blanks(UnitText& text) {
    while (is_blank(peek(text))) text.at++;
}

[[noreturn]] void fail(const UnitText& text, std::string_view what) {
    char c = peek(text);
    throw SyntaxError{place_of(text),
                      fmt::format("expected {} in this unit, found {}", what,
                                  c ? fmt::format("'{}'", c) : std::string("the end of the comment"))};
}

std::string read_run(UnitText& text, bool (*belongs)(char), std::string_view what) {
    skip_blanks(text);
    size_t start = text.at;
    while (belongs(peek(text))) text.at++;
    if (text.at == start) fail(text, what);
    return text.token.text.substr(start, text.at - start);
}

// As a double holds them, and as people can read.
std::string read_digits(UnitText& text, std::string_view what) {
    constexpr size_t kMostDigits = 15;
    std::string digits = read_run(text, is_digit, what);
    if (digits.size() > kMostDigits)
        throw SyntaxError{place_of(text), fmt::format("expected at most {} digits", kMostDigits)};
    return digits;
}

// Digits, with more behind a point.
std::string read_decimal(UnitText& text, std::string_view what) {
    std::string digits = read_digits(text, what);
    if (peek(text) != '.') return digits;
    text.at++;
    return digits + "." + read_digits(text, "a digit behind the point");
}

uint32_t digits_of(const std::string& decimal) {
    size_t point = decimal.find('.');
    return point == std::string::npos ? 0 : static_cast<uint32_t>(decimal.size() - point - 1);
}

int64_t read_integer(UnitText& text) {
    skip_blanks(text);
    size_t start = text.at;
    if (peek(text) == '-') text.at++;
    read_run(text, is_digit, "a number");
    int64_t value = 0;
    const char* begin = text.token.text.data();
    if (std::from_chars(begin + start, begin + text.at, value).ec != std::errc()) {
        text.at = start;
        throw SyntaxError{place_of(text), "the number has more than 64 bits"};
    }
    return value;
}

bool accept(UnitText& text, std::string_view sign) {
    skip_blanks(text);
    if (text.token.text.compare(text.at, sign.size(), sign) != 0) return false;
    text.at += sign.size();
    return true;
}

SpecialNumbers read_special(UnitText& text) {
    SpecialNumbers special;
    skip_blanks(text);
    special.place = place_of(text);
    special.first = special.last = read_integer(text);
    if (accept(text, "..")) special.last = read_integer(text);
    if (special.last < special.first) throw SyntaxError{special.place, "the range is empty"};
    skip_blanks(text);
    if (!is_letter(peek(text))) fail(text, "a word that tells the number's meaning");
    special.meaning = read_run(text, is_of_word, "a word");
    return special;
}

void add_special(Unit& unit, SpecialNumbers special) {
    for (const SpecialNumbers& other : unit.specials)
        if (special.first <= other.last && other.first <= special.last)
            throw SyntaxError{special.place, fmt::format("the number means '{}' already", other.meaning)};
    unit.specials.push_back(std::move(special));
}

std::string tidy(const std::string& text) {
    std::string tidied;
    for (char c : text)
        if (!is_blank(c) || (!tidied.empty() && tidied.back() != ' ')) tidied += is_blank(c) ? ' ' : c;
    while (tidied.ends_with(' ')) tidied.pop_back();
    return tidied;
}

}  // namespace

Unit parse_unit(const Token& token) {
    UnitText text = {token};
    Unit unit;
    unit.place = token.place;
    unit.text = tidy(token.text);
    skip_blanks(text);
    Place scale_place = place_of(text);
    std::string scale = read_decimal(text, "the number that a step stands for");
    unit.scale = decimal_value(scale);
    if (unit.scale == 0) throw SyntaxError{scale_place, "a step of 0 has no meaning"};
    unit.symbol = read_run(text, is_of_symbol, "the unit's symbol");
    std::string offset = "0";
    if (bool is_negative = accept(text, "- "); is_negative || accept(text, "+ ")) {
        offset = read_decimal(text, "a number");
        unit.offset = is_negative ? -decimal_value(offset) : decimal_value(offset);
    }
    unit.digits = std::max(digits_of(scale), digits_of(offset));
    while (accept(text, ";")) add_special(unit, read_special(text));
    skip_blanks(text);
    if (text.at < token.text.size()) fail(text, "';' or the end of the comment");
    return unit;
}

}  // namespace orlentac
