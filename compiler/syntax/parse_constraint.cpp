// SPDX-License-Identifier: Apache-2.0
// Subtype constraints (X.680 clauses 49 to 51), table and contents constraints (X.682 clauses 10 and 11).
#include "compiler/syntax/parser.hpp"

namespace orlentac {

static AstConstraint& new_constraint(Parser& parser, AstConstraint::Sort sort) {
    AstConstraint& constraint = parser.ast->constraints.emplace_back();
    constraint.sort = sort;
    constraint.place = parser.at->place;
    return constraint;
}

// "! 5": what to do about a violation is told to nobody.
static void skip_exception(Parser& parser) {
    if (!accept_symbol(parser, "!")) return;
    int depth = 0;
    for (; !at_end(parser); parser.at++) {
        if (is_symbol(parser, "(") || is_symbol(parser, "{")) depth++;
        if (is_symbol(parser, ")") || is_symbol(parser, "}")) depth--;
        if (depth < 0) return;
    }
}

static bool starts_value(const Parser& parser) {
    if (at_end(parser)) return false;
    switch (parser.at->sort) {
        case Token::Sort::upper_word:
            return is_word(parser, "MIN") || is_word(parser, "MAX") || is_word(parser, "TRUE") ||
                   is_word(parser, "FALSE") || is_word(parser, "NULL") || is_word(parser, "PLUS-INFINITY") ||
                   is_word(parser, "MINUS-INFINITY") || is_word(parser, "NOT-A-NUMBER") ||
                   (is_symbol(parser, ".", 1) && is_sort(parser, Token::Sort::lower_word, 2));
        case Token::Sort::symbol: return is_symbol(parser, "-");
        case Token::Sort::field:
        case Token::Sort::end: return false;
        default: return true;
    }
}

static AstValue* parse_endpoint(Parser& parser, std::string_view unbounded) {
    return accept_word(parser, unbounded) ? nullptr : parse_value(parser);
}

static AstConstraint* parse_value_range(Parser& parser) {
    AstConstraint& range = new_constraint(parser, AstConstraint::Sort::range);
    if (is_word(parser, "MAX")) fail_expected(parser, "a value or MIN");
    bool from_min = is_word(parser, "MIN");
    range.lower = parse_endpoint(parser, "MIN");
    range.lower_open = accept_symbol(parser, "<");
    if (!from_min && !range.lower_open && !is_symbol(parser, "..")) {
        range.upper = range.lower;
        return &range;
    }
    expect_symbol(parser, "..");
    range.upper_open = accept_symbol(parser, "<");
    range.upper = parse_endpoint(parser, "MAX");
    return &range;
}

static AstAtNotation parse_key(Parser& parser) {
    AstAtNotation key;
    key.place = expect_symbol(parser, "@").place;
    while (is_symbol(parser, ".") || is_symbol(parser, "..") || is_symbol(parser, "...")) {
        key.dots += static_cast<int>(parser.at++->text.size());
    }
    do {
        key.names.push_back(expect_identifier(parser, "a component's name").text);
    } while (accept_symbol(parser, "."));
    return key;
}

// {Set}{@key, @.key}
static AstConstraint* parse_braces_constraint(Parser& parser) {
    AstConstraint& table = new_constraint(parser, AstConstraint::Sort::braces);
    expect_symbol(parser, "{");
    table.braces = read_braces(parser);
    if (is_symbol(parser, "{") && is_symbol(parser, "@", 1)) {
        parser.at++;
        do {
            table.keys.push_back(parse_key(parser));
        } while (accept_symbol(parser, ","));
        expect_symbol(parser, "}");
    }
    return &table;
}

// {0, 0}..{7, 15}
static bool starts_character_range(Parser parser) {
    expect_symbol(parser, "{");
    read_braces(parser);
    return is_symbol(parser, "..") || is_symbol(parser, "<");
}

static AstConstraint* parse_with(Parser& parser) {
    AstConstraint& inner = new_constraint(parser, AstConstraint::Sort::no_trace);
    parser.at++;
    if (accept_word(parser, "COMPONENTS")) {
        expect_symbol(parser, "{");
        read_braces(parser);
    } else if (accept_word(parser, "COMPONENT")) {
        parse_constraint(parser);
    } else {
        fail_expected(parser, "COMPONENT or COMPONENTS");
    }
    return &inner;
}

static AstConstraint* parse_contents(Parser& parser) {
    AstConstraint& contents = new_constraint(parser, AstConstraint::Sort::contents);
    parser.at++;
    contents.type = parse_type(parser);
    if (accept_word(parser, "ENCODED")) {
        expect_word(parser, "BY");
        parse_value(parser);
    }
    return &contents;
}

static AstConstraint* parse_no_trace(Parser& parser) {
    AstConstraint& constraint = new_constraint(parser, AstConstraint::Sort::no_trace);
    bool braces = is_word(parser, "CONSTRAINED");
    bool by = braces || is_word(parser, "ENCODED");
    parser.at++;
    if (by) expect_word(parser, "BY");
    if (braces) {
        expect_symbol(parser, "{");
        read_braces(parser);
    } else {
        parse_value(parser);
    }
    return &constraint;
}

// object.&Values, Module.object.&Values
static bool starts_field_set(const Parser& parser) {
    size_t at = 0;
    if (is_sort(parser, Token::Sort::upper_word) && is_symbol(parser, ".", 1)) at = 2;
    if (!is_sort(parser, Token::Sort::lower_word, at)) return false;
    const std::string* last = nullptr;
    for (at++; is_symbol(parser, ".", at) && is_sort(parser, Token::Sort::field, at + 1); at += 2)
        last = &parser.at[at + 1].text;
    return last && (*last)[1] >= 'A' && (*last)[1] <= 'Z';
}

static AstConstraint* parse_subtype(Parser& parser) {
    AstConstraint& subtype = new_constraint(parser, AstConstraint::Sort::contained_subtype);
    accept_word(parser, "INCLUDES");
    subtype.type = parse_type(parser);
    return &subtype;
}

static AstConstraint* parse_elements(Parser& parser) {
    if (is_symbol(parser, "(")) return parse_constraint(parser);
    if (is_symbol(parser, "{") && !starts_character_range(parser)) return parse_braces_constraint(parser);
    if (is_symbol(parser, "{")) return parse_value_range(parser);
    if (starts_field_set(parser)) return parse_subtype(parser);
    if (starts_value(parser)) return parse_value_range(parser);
    if (is_word(parser, "SIZE") || is_word(parser, "FROM")) {
        AstConstraint& constraint = new_constraint(
            parser, is_word(parser, "SIZE") ? AstConstraint::Sort::size : AstConstraint::Sort::alphabet);
        parser.at++;
        constraint.parts.push_back(parse_constraint(parser));
        return &constraint;
    }
    if (is_word(parser, "WITH")) return parse_with(parser);
    if (is_word(parser, "CONTAINING")) return parse_contents(parser);
    if (is_word(parser, "PATTERN") || is_word(parser, "SETTINGS") || is_word(parser, "CONSTRAINED") ||
        is_word(parser, "ENCODED")) {
        return parse_no_trace(parser);
    }
    if (!is_sort(parser, Token::Sort::upper_word) && !is_symbol(parser, "["))
        fail_expected(parser, "a constraint");
    return parse_subtype(parser);
}

// What EXCEPT takes away has no effect on bounds, but is read.
static AstConstraint* parse_intersection_part(Parser& parser) {
    AstConstraint& constraint = new_constraint(parser, AstConstraint::Sort::except);
    if (accept_word(parser, "ALL")) {
        expect_word(parser, "EXCEPT");
        parse_elements(parser);
        return &constraint;
    }
    AstConstraint* kept = parse_elements(parser);
    if (!accept_word(parser, "EXCEPT")) return kept;
    parse_elements(parser);
    constraint.parts.push_back(kept);
    return &constraint;
}

static AstConstraint* parse_intersection(Parser& parser) {
    AstConstraint& all = new_constraint(parser, AstConstraint::Sort::all_of);
    do {
        all.parts.push_back(parse_intersection_part(parser));
    } while (accept_symbol(parser, "^") || accept_word(parser, "INTERSECTION"));
    return all.parts.size() == 1 ? all.parts[0] : &all;
}

static AstConstraint* parse_union(Parser& parser) {
    AstConstraint& any = new_constraint(parser, AstConstraint::Sort::any_of);
    do {
        any.parts.push_back(parse_intersection(parser));
    } while (accept_symbol(parser, "|") || accept_word(parser, "UNION"));
    return any.parts.size() == 1 ? any.parts[0] : &any;
}

AstConstraint* parse_element_sets(Parser& parser) {
    Nesting nesting(parser);
    AstConstraint* root = parse_union(parser);
    if (accept_symbol(parser, ",")) {
        expect_symbol(parser, "...");
        // The marker belongs to these parentheses, not to the ones that an element may bring along.
        AstConstraint& outer = new_constraint(parser, AstConstraint::Sort::all_of);
        outer.place = root->place;
        outer.parts.push_back(root);
        outer.extensible = true;
        if (accept_symbol(parser, ",")) parse_union(parser);
        root = &outer;
    }
    return root;
}

AstConstraint* parse_constraint(Parser& parser) {
    expect_symbol(parser, "(");
    AstConstraint* constraint = parse_element_sets(parser);
    skip_exception(parser);
    if (!is_symbol(parser, ")")) fail_expected(parser, "'|', '^', ',' or ')' in a constraint");
    parser.at++;
    return constraint;
}

}  // namespace orlentac
