// SPDX-License-Identifier: Apache-2.0
// Modules and assignments (X.680 clauses 13 to 16).
#include "compiler/syntax/parser.hpp"

namespace orlentac {

namespace {

const Token* skip_balanced(const Token* token, const Token* last) {
    int depth = 0;
    for (; token < last; token++) {
        if (token->sort != Token::Sort::symbol) continue;
        if (token->text == "::=") return last;
        if (token->text == "{") depth++;
        if (token->text == "}" && --depth == 0) return token + 1;
    }
    return last;
}

bool is_assign(const Token* token, const Token* last) {
    return token < last && token->sort == Token::Sort::symbol && token->text == "::=";
}

// Name ::=, Name { parameters } ::=, name Governor ::=
bool starts_assignment(const Token* token, const Token* last) {
    using Sort = Token::Sort;
    if (token->sort != Sort::upper_word && token->sort != Sort::lower_word) return false;
    if (token->sort == Sort::upper_word && is_reserved(token->text)) return false;
    const Token* next = token + 1;
    if (next < last && next->sort == Sort::symbol && next->text == "{") next = skip_balanced(next, last);
    auto governor = [&](const Token& t) {
        return t.sort == Sort::upper_word || t.sort == Sort::field ||
               (t.sort == Sort::symbol && t.text == ".");
    };
    for (int words = 0; words < 8 && next < last && governor(*next); words++) next++;
    return is_assign(next, last);
}

// To where reading can go on after a fault: at the start of a line, so as not to take a component for a value.
void skip_to_assignment(Parser& parser) {
    auto resumes = [&] { return is_word(parser, "END") || starts_assignment(parser.at, parser.last); };
    while (!at_end(parser) && !(parser.at->first_in_line && resumes())) parser.at++;
}

AstParameter parse_parameter(Parser& parser) {
    AstParameter parameter;
    auto name_ends = [&] { return is_symbol(parser, ",", 1) || is_symbol(parser, "}", 1); };
    if (is_sort(parser, Token::Sort::lower_word) && name_ends())
        fail_expected(parser, "a governor before the parameter");
    if (!name_ends()) {
        parameter.governor = parse_type(parser);
        expect_symbol(parser, ":");
    }
    parameter.place = parser.at->place;
    if (!is_sort(parser, Token::Sort::lower_word) && !is_sort(parser, Token::Sort::upper_word)) {
        fail_expected(parser, "the name of a parameter");
    }
    parameter.name = parser.at++->text;
    return parameter;
}

void parse_parameters(Parser& parser, AstAssignment& assignment) {
    if (!accept_symbol(parser, "{")) return;
    assignment.has_parameters = true;
    do {
        assignment.parameters.push_back(parse_parameter(parser));
    } while (accept_symbol(parser, ","));
    expect_symbol(parser, "}");
}

void parse_assignment(Parser& parser, AstAssignment& assignment) {
    bool upper = is_sort(parser, Token::Sort::upper_word);
    if (!upper && !is_sort(parser, Token::Sort::lower_word)) fail_expected(parser, "an assignment or END");
    if (upper && is_reserved(parser.at->text)) fail_expected(parser, "a name to define");
    assignment.name = parser.at++->text;
    parse_parameters(parser, assignment);
    if (upper && accept_symbol(parser, "::=")) {
        if (accept_word(parser, "CLASS")) {
            assignment.object_class = parse_class(parser);
            assignment.sort = AstAssignment::Sort::object_class;
        } else {
            assignment.type = parse_type(parser);
            assignment.sort = AstAssignment::Sort::type;
        }
        return;
    }
    if (upper && !is_sort(parser, Token::Sort::upper_word)) fail_expected(parser, "'::='");
    if (!upper && is_symbol(parser, "::=")) {
        fail_expected(
            parser, fmt::format("the type of the value '{}' (a type's name has a capital)", assignment.name));
    }
    assignment.type = parse_type(parser);
    expect_symbol(parser, "::=");
    if (upper) {
        expect_symbol(parser, "{");
        assignment.braces = read_braces(parser);
        assignment.sort = AstAssignment::Sort::set;
    } else {
        assignment.value = parse_value(parser);
        assignment.sort = AstAssignment::Sort::value;
    }
}

// Name MACRO ::= BEGIN ... END, of 1988.
void skip_macro(Parser& parser, AstAssignment& assignment) {
    assignment.name = parser.at->text;
    Place place = parser.at[1].place;
    while (!at_end(parser) && !is_word(parser, "END")) parser.at++;
    accept_word(parser, "END");
    throw SyntaxError{place, "MACRO is not supported (X.208 annex A)"};
}

void parse_assignments(Parser& parser, AstModule& module, Diagnostics& diags) {
    while (!at_end(parser) && !is_word(parser, "END") && !is_word(parser, "ENCODING-CONTROL")) {
        AstAssignment& assignment = parser.ast->assignments.emplace_back();
        assignment.place = parser.at->place;
        module.assignments.push_back(&assignment);
        try {
            if (is_word(parser, "MACRO", 1)) skip_macro(parser, assignment);
            parse_assignment(parser, assignment);
            if (!at_end(parser) && !is_word(parser, "END") && !is_word(parser, "ENCODING-CONTROL") &&
                !starts_assignment(parser.at, parser.last) && !parser.at->first_in_line) {
                fail_expected(parser, "an assignment or END");
            }
        } catch (const SyntaxError& fault) {
            error(diags, fault.place, "{}", fault.text);
            assignment.sort = AstAssignment::Sort::broken;
            skip_to_assignment(parser);
        }
    }
}

void parse_exports(Parser& parser, AstModule& module) {
    if (!accept_word(parser, "EXPORTS")) return;
    module.exports_all = accept_word(parser, "ALL");
    while (!module.exports_all && !is_symbol(parser, ";")) {
        if (!module.exports.empty()) expect_symbol(parser, ",");
        if (!is_sort(parser, Token::Sort::lower_word) && !is_sort(parser, Token::Sort::upper_word)) {
            fail_expected(parser, "a name to export");
        }
        module.exports.push_back({parser.at->text, parser.at->place});
        parser.at++;
        if (accept_symbol(parser, "{")) expect_symbol(parser, "}");
    }
    expect_symbol(parser, ";");
}

// Behind the module's name: its identifier, which says nothing new in a flat name space.
void skip_module_identifier(Parser& parser) {
    if (accept_symbol(parser, "{")) {
        read_braces(parser);
    } else if (is_sort(parser, Token::Sort::lower_word) && !is_symbol(parser, ",", 1) &&
               !is_word(parser, "FROM", 1)) {
        parser.at++;
    }
    if (is_word(parser, "WITH")) {
        parser.at++;
        if (!accept_word(parser, "SUCCESSORS")) expect_word(parser, "DESCENDANTS");
    }
}

void parse_imports(Parser& parser, AstModule& module) {
    if (!accept_word(parser, "IMPORTS")) return;
    while (!accept_symbol(parser, ";")) {
        AstImport import;
        do {
            bool word = is_sort(parser, Token::Sort::lower_word) ||
                        (is_sort(parser, Token::Sort::upper_word) && !is_reserved(parser.at->text));
            // Of 1988, when not all strings were types of the language.
            bool known = is_sort(parser, Token::Sort::upper_word) && parser.at->text.ends_with("String");
            if (!word && !known) fail_expected(parser, "a name to import or ';'");
            if (word) import.symbols.push_back({parser.at->text, parser.at->place});
            parser.at++;
            if (accept_symbol(parser, "{")) expect_symbol(parser, "}");
        } while (accept_symbol(parser, ","));
        if (!is_word(parser, "FROM")) fail_expected(parser, "',' or FROM");
        parser.at++;
        import.module.place = parser.at->place;
        import.module.name = expect_reference(parser, "the name of a module").text;
        skip_module_identifier(parser);
        module.imports.push_back(std::move(import));
    }
}

void parse_header(Parser& parser, AstModule& module) {
    module.place = parser.at->place;
    module.name = expect_reference(parser, "the name of a module").text;
    if (accept_symbol(parser, "{")) read_braces(parser);
    if (is_sort(parser, Token::Sort::text)) parser.at++;
    expect_word(parser, "DEFINITIONS");
    if (is_word(parser, "INSTRUCTIONS", 1)) parser.at += 2;  // of what prefixes without a reference are
    module.tags_place = parser.at->place;
    for (std::string_view tags : {"AUTOMATIC", "EXPLICIT", "IMPLICIT"}) {
        if (accept_word(parser, tags)) {
            module.tags = tags;
            expect_word(parser, "TAGS");
        }
    }
    if (accept_word(parser, "EXTENSIBILITY")) {
        expect_word(parser, "IMPLIED");
        module.extensibility_implied = true;
    }
    expect_symbol(parser, "::=");
    expect_word(parser, "BEGIN");
}

void parse_module(Parser& parser, AstModule& module, Diagnostics& diags) {
    try {
        parse_exports(parser, module);
        parse_imports(parser, module);
    } catch (const SyntaxError& fault) {
        error(diags, fault.place, "{}", fault.text);
        skip_to_assignment(parser);
    }
    parse_assignments(parser, module, diags);
    if (is_word(parser, "ENCODING-CONTROL")) {
        parser.ast->notes.push_back({parser.at->place, std::string(kInstructionsNote)});
        while (!at_end(parser) && !(is_word(parser, "END") && parser.at->first_in_line)) parser.at++;
    }
    if (!accept_word(parser, "END"))
        error(diags, parser.at->place, "expected END, found {}", token_text(*parser.at));
}

}  // namespace

bool starts_module(const std::vector<Token>& tokens, bool is_clean) {
    using Sort = Token::Sort;
    if (tokens[0].sort == Sort::upper_word && is_clean) return true;
    if (tokens.size() < 3 || (tokens[0].sort != Sort::upper_word && tokens[0].sort != Sort::lower_word))
        return false;
    auto is = [](const Token& token, std::string_view text) { return token.text == text; };
    return is(tokens[1], "DEFINITIONS") || is(tokens[1], "{") || is(tokens[2], "DEFINITIONS");
}

bool parse_file(Ast& ast, const std::vector<Token>& tokens, Diagnostics& diags) {
    Parser parser = parse_range(ast, {tokens.data(), tokens.data() + tokens.size() - 1});
    while (!at_end(parser)) {
        AstModule& module = ast.modules.emplace_back();
        try {
            parse_header(parser, module);
        } catch (const SyntaxError& fault) {
            error(diags, fault.place, "{}", fault.text);
            return false;
        }
        parser.extensibility_implied = module.extensibility_implied;
        parse_module(parser, module, diags);
    }
    return true;
}

}  // namespace orlentac
