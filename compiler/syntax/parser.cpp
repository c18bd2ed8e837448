// SPDX-License-Identifier: Apache-2.0
#include "compiler/syntax/parser.hpp"

#include <limits>

#include "compiler/model/decimal.hpp"

namespace orlentac {

constexpr int kMaxNesting = 200;

Parser parse_range(Ast& ast, TokenRange range) {
    Parser parser;
    parser.at = range.first;
    parser.last = range.last;
    parser.ast = &ast;
    return parser;
}

Nesting::Nesting(Parser& p) : parser(p) {
    if (parser.depth >= kMaxNesting) throw SyntaxError{parser.at->place, "this is nested too deeply"};
    parser.depth++;
}

bool at_end(const Parser& parser) { return parser.at >= parser.last; }

bool is_sort(const Parser& parser, Token::Sort sort, size_t ahead) {
    return parser.at + ahead < parser.last && parser.at[ahead].sort == sort;
}

bool is_symbol(const Parser& parser, std::string_view symbol, size_t ahead) {
    return is_sort(parser, Token::Sort::symbol, ahead) && parser.at[ahead].text == symbol;
}

bool is_word(const Parser& parser, std::string_view word, size_t ahead) {
    return is_sort(parser, Token::Sort::upper_word, ahead) && parser.at[ahead].text == word;
}

bool accept_symbol(Parser& parser, std::string_view symbol) {
    if (!is_symbol(parser, symbol)) return false;
    parser.at++;
    return true;
}

bool accept_word(Parser& parser, std::string_view word) {
    if (!is_word(parser, word)) return false;
    parser.at++;
    return true;
}

void fail_expected(const Parser& parser, std::string_view what) {
    throw SyntaxError{parser.at->place, fmt::format("expected {}, found {}", what, token_text(*parser.at))};
}

const Token& expect_symbol(Parser& parser, std::string_view symbol) {
    if (!is_symbol(parser, symbol)) fail_expected(parser, fmt::format("'{}'", symbol));
    return *parser.at++;
}

const Token& expect_word(Parser& parser, std::string_view word) {
    if (!is_word(parser, word)) fail_expected(parser, word);
    return *parser.at++;
}

const Token& expect_identifier(Parser& parser, std::string_view what) {
    if (!is_sort(parser, Token::Sort::lower_word)) fail_expected(parser, what);
    return *parser.at++;
}

const Token& expect_reference(Parser& parser, std::string_view what) {
    if (!is_sort(parser, Token::Sort::upper_word) || is_reserved(parser.at->text))
        fail_expected(parser, what);
    return *parser.at++;
}

void expect_end(const Parser& parser, std::string_view what) {
    if (!at_end(parser)) fail_expected(parser, what);
}

static int bracket_step(const Token& token) {
    if (token.sort != Token::Sort::symbol) return 0;
    if (token.text == "{" || token.text == "(") return 1;
    return token.text == "}" || token.text == ")" ? -1 : 0;
}

TokenRange read_braces(Parser& parser) {
    TokenRange range{parser.at, nullptr};
    int depth = 1;
    for (; !at_end(parser); parser.at++) {
        depth += bracket_step(*parser.at);
        if (depth == 0) break;
        if (parser.at->sort == Token::Sort::symbol && parser.at->text == "::=") break;
    }
    range.last = parser.at;
    expect_symbol(parser, "}");
    return range;
}

std::vector<TokenRange> read_brace_list(Parser& parser) {
    TokenRange all = read_braces(parser);
    std::vector<TokenRange> parts;
    const Token* start = all.first;
    int depth = 0;
    for (const Token* token = all.first; token < all.last; token++) {
        depth += bracket_step(*token);
        if (depth == 0 && token->sort == Token::Sort::symbol && token->text == ",") {
            parts.push_back({start, token});
            start = token + 1;
        }
    }
    parts.push_back({start, all.last});
    return parts;
}

AstReference parse_type_reference(Parser& parser, std::string_view what) {
    AstReference reference;
    reference.place = parser.at->place;
    reference.name = expect_reference(parser, what).text;
    if (is_symbol(parser, ".") && is_sort(parser, Token::Sort::upper_word, 1)) {
        parser.at++;
        reference.module = std::move(reference.name);
        reference.name = expect_reference(parser, what).text;
    }
    return reference;
}

void accept_actuals(Parser& parser, AstReference& reference) {
    if (!accept_symbol(parser, "{")) return;
    reference.has_actuals = true;
    reference.actuals = read_brace_list(parser);
}

std::vector<std::string> parse_fields(Parser& parser) {
    std::vector<std::string> fields;
    while (is_symbol(parser, ".") && is_sort(parser, Token::Sort::field, 1)) {
        fields.push_back(parser.at[1].text);
        parser.at += 2;
    }
    return fields;
}

AstReference parse_value_reference(Parser& parser) {
    AstReference reference;
    reference.place = parser.at->place;
    if (is_sort(parser, Token::Sort::upper_word)) {
        reference.module = expect_reference(parser, "a module's name").text;
        expect_symbol(parser, ".");
    }
    reference.name = expect_identifier(parser, "a value").text;
    accept_actuals(parser, reference);
    return reference;
}

static bool parse_special_value(Parser& parser, AstValue& value) {
    if (is_word(parser, "TRUE") || is_word(parser, "FALSE")) {
        value.sort = AstValue::Sort::boolean;
        value.boolean = is_word(parser, "TRUE");
    } else if (is_word(parser, "NULL")) {
        value.sort = AstValue::Sort::null;
    } else if (is_word(parser, "PLUS-INFINITY") || is_word(parser, "MINUS-INFINITY")) {
        value.sort = AstValue::Sort::real;
        value.real = is_word(parser, "PLUS-INFINITY") ? std::numeric_limits<double>::infinity()
                                                      : -std::numeric_limits<double>::infinity();
    } else if (is_word(parser, "NOT-A-NUMBER")) {
        value.sort = AstValue::Sort::real;
        value.real = std::numeric_limits<double>::quiet_NaN();
    } else {
        return false;
    }
    parser.at++;
    return true;
}

static void parse_number_value(Parser& parser, AstValue& value) {
    bool negative = accept_symbol(parser, "-");
    if (is_sort(parser, Token::Sort::number)) {
        value.sort = AstValue::Sort::number;
        value.number = Number(parser.at->text);
        if (negative) value.number = -value.number;
    } else if (is_sort(parser, Token::Sort::real_number)) {
        value.sort = AstValue::Sort::real;
        value.real = decimal_value(parser.at->text);
        if (negative) value.real = -value.real;
    } else {
        fail_expected(parser, "a number");
    }
    parser.at++;
}

AstValue* parse_value(Parser& parser) {
    Nesting nesting(parser);
    AstValue& value = parser.ast->values.emplace_back();
    value.place = parser.at->place;
    if (parse_special_value(parser, value)) return &value;
    if (at_end(parser)) fail_expected(parser, "a value");
    switch (parser.at->sort) {
        case Token::Sort::number:
        case Token::Sort::real_number: parse_number_value(parser, value); return &value;
        case Token::Sort::bits: value.sort = AstValue::Sort::bits; break;
        case Token::Sort::hex: value.sort = AstValue::Sort::hex; break;
        case Token::Sort::text: value.sort = AstValue::Sort::text; break;
        case Token::Sort::lower_word:
        case Token::Sort::upper_word:
            if (is_symbol(parser, ":", 1)) {
                value.sort = AstValue::Sort::choice;
                value.text = expect_identifier(parser, "an alternative's name").text;
                parser.at++;
                value.inner = parse_value(parser);
            } else {
                if (parser.at->sort == Token::Sort::upper_word && !is_symbol(parser, ".", 1)) {
                    fail_expected(parser, "a value");
                }
                value.sort = AstValue::Sort::reference;
                value.reference = parse_value_reference(parser);
                value.fields = parse_fields(parser);
                if (!value.fields.empty()) value.sort = AstValue::Sort::from_object;
            }
            return &value;
        default:
            if (is_symbol(parser, "-")) {
                parse_number_value(parser, value);
            } else if (accept_symbol(parser, "{")) {
                value.sort = AstValue::Sort::braces;
                value.braces = read_braces(parser);
            } else {
                fail_expected(parser, "a value");
            }
            return &value;
    }
    value.text = parser.at++->text;
    return &value;
}

}  // namespace orlentac
