// SPDX-License-Identifier: Apache-2.0
// Tokens into the syntax tree, by recursive descent. A fault is thrown and caught at the assignment around it.
#pragma once

#include "compiler/model/diagnostics.hpp"
#include "compiler/syntax/tree.hpp"

namespace orlentac {

struct SyntaxError {
    Place place;
    std::string text;
};

struct Parser {
    const Token* at = nullptr;
    const Token* last = nullptr;  // not to be read as input, but may be told as what was found instead
    Ast* ast = nullptr;
    bool extensibility_implied = false;
    int depth = 0;
    bool half_bracket = false;
};

// One level of nesting, for as long as it lives. Schemas nest a dozen levels; far more would exhaust the stack.
struct Nesting {
    explicit Nesting(Parser& parser);
    ~Nesting() { parser.depth--; }
    Parser& parser;
};

Parser parse_range(Ast& ast, TokenRange range);

// Reading on. At the range's end no symbol or word is there.
bool at_end(const Parser& parser);
bool is_symbol(const Parser& parser, std::string_view symbol, size_t ahead = 0);
bool is_word(const Parser& parser, std::string_view word, size_t ahead = 0);
bool is_sort(const Parser& parser, Token::Sort sort, size_t ahead = 0);
bool accept_symbol(Parser& parser, std::string_view symbol);
bool accept_word(Parser& parser, std::string_view word);
const Token& expect_symbol(Parser& parser, std::string_view symbol);
const Token& expect_word(Parser& parser, std::string_view word);
const Token& expect_identifier(Parser& parser, std::string_view what);
const Token& expect_reference(Parser& parser, std::string_view what);
void expect_end(const Parser& parser, std::string_view what);
[[noreturn]] void fail_expected(const Parser& parser, std::string_view what);

// Behind the opening brace: what stands up to the closing one, which is read too.
TokenRange read_braces(Parser& parser);
// The same, cut at the commas outside of inner brackets.
std::vector<TokenRange> read_brace_list(Parser& parser);

constexpr std::string_view kInstructionsNote = "encoding instructions have no effect (X.693, X.695)";

AstType* parse_type(Parser& parser);
Unit parse_unit(const Token& token);
AstValue* parse_value(Parser& parser);
AstReference parse_type_reference(Parser& parser, std::string_view what);
// TYPE-IDENTIFIER and ABSTRACT-SYNTAX too.
AstReference parse_class_reference(Parser& parser);
// With the actual parameters, if there are any.
AstReference parse_value_reference(Parser& parser);
void accept_actuals(Parser& parser, AstReference& reference);
// .&field.&field
std::vector<std::string> parse_fields(Parser& parser);
// With its parentheses.
AstConstraint* parse_constraint(Parser& parser);
// Without them: what stands in a value set's braces.
AstConstraint* parse_element_sets(Parser& parser);
AstClass* parse_class(Parser& parser);

// Whether the head of a module is what the file begins with; of clean text, a name may do.
bool starts_module(const std::vector<Token>& tokens, bool is_clean);
// All modules of one file. False if what should be the head of a module is none, so that nothing behind it can be read.
bool parse_file(Ast& ast, const std::vector<Token>& tokens, Diagnostics& diags);

}  // namespace orlentac
