// SPDX-License-Identifier: Apache-2.0
// Types (X.680 clauses 17 to 46) and information object classes (X.681 clauses 9 and 10).
#include <array>

#include "compiler/syntax/parser.hpp"

namespace orlentac {

namespace {

struct SimpleType {
    std::string_view name;
    Kind kind;
    StringKind string_kind = StringKind::utf8;
    int universal_tag = -1;
};

constexpr std::array kSimpleTypes = {
    SimpleType{"BOOLEAN", Kind::boolean},
    SimpleType{"NULL", Kind::null},
    SimpleType{"REAL", Kind::real},
    SimpleType{"RELATIVE-OID", Kind::relative_oid},
    SimpleType{"NumericString", Kind::char_string, StringKind::numeric},
    SimpleType{"PrintableString", Kind::char_string, StringKind::printable},
    SimpleType{"VisibleString", Kind::char_string, StringKind::visible},
    SimpleType{"ISO646String", Kind::char_string, StringKind::visible},
    SimpleType{"IA5String", Kind::char_string, StringKind::ia5},
    SimpleType{"BMPString", Kind::char_string, StringKind::bmp},
    SimpleType{"UniversalString", Kind::char_string, StringKind::universal},
    SimpleType{"UTF8String", Kind::char_string, StringKind::utf8},
    SimpleType{"GeneralString", Kind::char_string, StringKind::general},
    SimpleType{"GraphicString", Kind::char_string, StringKind::graphic},
    SimpleType{"TeletexString", Kind::char_string, StringKind::teletex},
    SimpleType{"T61String", Kind::char_string, StringKind::teletex},
    SimpleType{"VideotexString", Kind::char_string, StringKind::videotex},
    SimpleType{"UTCTime", Kind::char_string, StringKind::visible, 23},
    SimpleType{"GeneralizedTime", Kind::char_string, StringKind::visible, 24},
    SimpleType{"TIME", Kind::char_string, StringKind::visible, 14},
    SimpleType{"DATE", Kind::char_string, StringKind::visible, 31},
    SimpleType{"TIME-OF-DAY", Kind::char_string, StringKind::visible, 32},
    SimpleType{"DATE-TIME", Kind::char_string, StringKind::visible, 33},
    SimpleType{"DURATION", Kind::char_string, StringKind::visible, 34},
    SimpleType{"OID-IRI", Kind::char_string, StringKind::utf8, 35},
    SimpleType{"RELATIVE-OID-IRI", Kind::char_string, StringKind::utf8, 36},
    SimpleType{"ObjectDescriptor", Kind::char_string, StringKind::graphic, 7},
};

AstValue* parse_parenthesised_value(Parser& parser) {
    expect_symbol(parser, "(");
    AstValue* value = parse_value(parser);
    expect_symbol(parser, ")");
    return value;
}

AstItem parse_item(Parser& parser, std::string_view what) {
    AstItem item;
    item.place = parser.at->place;
    item.name = expect_identifier(parser, what).text;
    return item;
}

void accept_unit(Parser& parser, AstType& type) {
    if (!is_sort(parser, Token::Sort::unit)) return;
    const Token& token = *parser.at++;
    if (type.unit) throw SyntaxError{token.place, "the type has a unit already"};
    type.unit = parse_unit(token);
}

// { name (1), ... } of INTEGER and BIT STRING.
void parse_named_numbers(Parser& parser, AstType& type) {
    if (!accept_symbol(parser, "{")) return;
    do {
        AstItem item = parse_item(parser, "the name of a number");
        item.value = parse_parenthesised_value(parser);
        type.items.push_back(std::move(item));
    } while (accept_symbol(parser, ","));
    if (!is_symbol(parser, "}")) fail_expected(parser, "',' or '}' in a list of named numbers");
    parser.at++;
}

void skip_exception(Parser& parser) {
    if (!accept_symbol(parser, "!")) return;
    while (!at_end(parser) && !is_symbol(parser, ",") && !is_symbol(parser, "}")) parser.at++;
}

void parse_enumerated(Parser& parser, AstType& type) {
    expect_symbol(parser, "{");
    do {
        if (is_symbol(parser, "...")) {
            if (type.extensible) fail_expected(parser, "one extension marker in ENUMERATED");
            if (type.items.empty()) fail_expected(parser, "an item before the extension marker");
            parser.at++;
            type.extensible = true;
            skip_exception(parser);
            continue;
        }
        AstItem item = parse_item(parser, "the name of an item");
        if (is_symbol(parser, "(")) item.value = parse_parenthesised_value(parser);
        item.addition = type.extensible;
        type.items.push_back(std::move(item));
    } while (accept_symbol(parser, ","));
    if (!is_symbol(parser, "}")) fail_expected(parser, "',' or '}' in ENUMERATED");
    parser.at++;
    type.extensible |= parser.extensibility_implied;
}

// Where a list of components stands: before the extension marker, behind it, behind the second one.
struct ListState {
    int markers = 0;
    int groups = 0;
    int group = 0;  // the open version brackets
};

AstComponent parse_component(Parser& parser, bool choice, const ListState& state) {
    AstComponent component;
    component.place = parser.at->place;
    component.addition = state.markers == 1;
    component.group = choice ? 0 : state.group;
    if (!choice && accept_word(parser, "COMPONENTS")) {
        expect_word(parser, "OF");
        component.components_of = true;
        component.type = parse_type(parser);
        return component;
    }
    component.name =
        expect_identifier(parser, choice ? "the name of an alternative" : "the name of a component").text;
    component.type = parse_type(parser);
    if (!choice && accept_word(parser, "OPTIONAL")) {
        component.presence = Presence::optional;
    } else if (!choice && accept_word(parser, "DEFAULT")) {
        component.presence = Presence::defaulted;
        component.default_value = parse_value(parser);
    }
    accept_unit(parser, *component.type);
    return component;
}

void parse_marker(Parser& parser, AstType& type, ListState& state) {
    if (state.markers == 2) fail_expected(parser, "at most two extension markers");
    parser.at++;
    state.markers++;
    type.extensible = true;
    skip_exception(parser);
}

// Behind [[: an optional version number and the members up to ]].
void parse_group(Parser& parser, AstType& type, ListState& state, bool choice) {
    if (state.markers != 1) fail_expected(parser, "an extension marker before '[['");
    parser.at++;
    state.group = ++state.groups;
    if (is_sort(parser, Token::Sort::number) && is_symbol(parser, ":", 1)) parser.at += 2;
    do {
        type.components.push_back(parse_component(parser, choice, state));
    } while (accept_symbol(parser, ","));
    if (!is_symbol(parser, "]]")) fail_expected(parser, "',' or ']]' in an extension addition group");
    parser.at++;
    state.group = 0;
}

void parse_component_list(Parser& parser, AstType& type) {
    bool choice = type.kind == Kind::choice;
    ListState state;
    expect_symbol(parser, "{");
    if (choice || !is_symbol(parser, "}")) {
        do {
            if (is_symbol(parser, "...")) {
                parse_marker(parser, type, state);
            } else if (is_symbol(parser, "[[")) {
                parse_group(parser, type, state, choice);
            } else {
                type.components.push_back(parse_component(parser, choice, state));
            }
        } while (accept_symbol(parser, ","));
    }
    if (!is_symbol(parser, "}")) {
        fail_expected(parser, choice ? "',' or '}' behind an alternative" : "',' or '}' behind a component");
    }
    parser.at++;
    type.extensible |= parser.extensibility_implied;
}

void parse_list_type(Parser& parser, AstType& type) {
    type.kind = type.kind == Kind::sequence ? Kind::sequence_of : Kind::set_of;
    if (is_symbol(parser, "(")) {
        type.constraints.push_back(parse_constraint(parser));
    } else if (is_word(parser, "SIZE")) {
        AstConstraint& size = parser.ast->constraints.emplace_back();
        size.sort = AstConstraint::Sort::size;
        size.place = parser.at++->place;
        size.parts.push_back(parse_constraint(parser));
        type.constraints.push_back(&size);
    }
    expect_word(parser, "OF");
    if (is_sort(parser, Token::Sort::lower_word) && !is_symbol(parser, "<", 1)) {
        type.element_name = parser.at++->text;
    }
    type.inner = parse_type(parser);
}

void parse_sequence_or_set(Parser& parser, AstType& type, Kind kind) {
    type.kind = kind;
    if (is_symbol(parser, "{")) return parse_component_list(parser, type);
    if (is_word(parser, "OF") || is_word(parser, "SIZE") || is_symbol(parser, "(")) {
        return parse_list_type(parser, type);
    }
    fail_expected(parser, fmt::format("'{{' or OF behind {}", kind == Kind::sequence ? "SEQUENCE" : "SET"));
}

// X.680 clause 38.
bool is_time_type(const SimpleType& type) {
    return type.string_kind == StringKind::visible && type.universal_tag >= 0 && type.universal_tag != 23 &&
           type.universal_tag != 24;
}

void note_time_type(Parser& parser, Place place, std::string_view name) {
    std::string text = fmt::format(
        "{} is taken as a VisibleString of its contents in BER (X.690 clause 8.26); PER and OER have other "
        "forms "
        "(X.691 clause 32)",
        name);
    parser.ast->notes.push_back({place, std::move(text)});
}

bool parse_simple_type(Parser& parser, AstType& type) {
    for (const SimpleType& simple : kSimpleTypes) {
        if (!accept_word(parser, simple.name)) continue;
        type.kind = simple.kind;
        type.string_kind = simple.string_kind;
        if (simple.universal_tag >= 0) type.universal_tag = simple.universal_tag;
        if (is_time_type(simple)) note_time_type(parser, type.place, simple.name);
        return true;
    }
    return false;
}

bool parse_structured_type(Parser& parser, AstType& type) {
    if (accept_word(parser, "SEQUENCE")) {
        parse_sequence_or_set(parser, type, Kind::sequence);
    } else if (accept_word(parser, "SET")) {
        parse_sequence_or_set(parser, type, Kind::set);
    } else if (accept_word(parser, "CHOICE")) {
        type.kind = Kind::choice;
        parse_component_list(parser, type);
    } else if (accept_word(parser, "ENUMERATED")) {
        type.kind = Kind::enumerated;
        parse_enumerated(parser, type);
    } else {
        return false;
    }
    return true;
}

bool parse_builtin_type(Parser& parser, AstType& type) {
    if (parse_simple_type(parser, type) || parse_structured_type(parser, type)) return true;
    if (accept_word(parser, "INTEGER")) {
        type.kind = Kind::integer;
        parse_named_numbers(parser, type);
    } else if (accept_word(parser, "BIT")) {
        expect_word(parser, "STRING");
        type.kind = Kind::bit_string;
        parse_named_numbers(parser, type);
    } else if (accept_word(parser, "OCTET")) {
        expect_word(parser, "STRING");
        type.kind = Kind::octet_string;
    } else if (accept_word(parser, "OBJECT")) {
        expect_word(parser, "IDENTIFIER");
        type.kind = Kind::object_identifier;
    } else if (accept_word(parser, "ANY")) {
        type.kind = Kind::open_type;
        if (accept_word(parser, "DEFINED")) {
            expect_word(parser, "BY");
            expect_identifier(parser, "a component's name");
        }
    } else {
        return false;
    }
    return true;
}

// [XER:ATTRIBUTE], or [ATTRIBUTE] where that is what prefixes are by default; [TAG:3] is a tag.
bool skip_encoding_instruction(Parser& parser) {
    if (!is_sort(parser, Token::Sort::upper_word, 1) || is_symbol(parser, ".", 2)) return false;
    for (std::string_view word : {"UNIVERSAL", "APPLICATION", "PRIVATE", "TAG"})
        if (is_word(parser, word, 1)) return false;
    parser.ast->notes.push_back({parser.at->place, std::string(kInstructionsNote)});
    while (!at_end(parser) && !is_symbol(parser, "]")) parser.at++;
    expect_symbol(parser, "]");
    return true;
}

AstTag parse_tag(Parser& parser) {
    AstTag tag;
    tag.place = expect_symbol(parser, "[").place;
    if (accept_word(parser, "TAG")) expect_symbol(parser, ":");
    if (accept_word(parser, "UNIVERSAL")) tag.tag_class = TagClass::universal;
    if (accept_word(parser, "APPLICATION")) tag.tag_class = TagClass::application;
    if (accept_word(parser, "PRIVATE")) tag.tag_class = TagClass::private_use;
    tag.number = parse_value(parser);
    expect_symbol(parser, "]");
    if (accept_word(parser, "EXPLICIT")) {
        tag.mode = AstTag::Mode::is_explicit;
    } else if (accept_word(parser, "IMPLICIT")) {
        tag.mode = AstTag::Mode::is_implicit;
    }
    return tag;
}

// Types whose definition is given by X.680 in ASN.1: the resolver has it.
bool parse_useful_type(Parser& parser, AstType& type) {
    std::string name;
    if (accept_word(parser, "EXTERNAL")) {
        name = "EXTERNAL";
    } else if (accept_word(parser, "EMBEDDED")) {
        expect_word(parser, "PDV");
        name = "EMBEDDED-PDV";
    } else if (accept_word(parser, "CHARACTER")) {
        expect_word(parser, "STRING");
        name = "CHARACTER-STRING";
    } else {
        return false;
    }
    parser.ast->useful_types.insert(name);
    type.sort = AstType::Sort::reference;
    type.reference.module = "ASN.1";
    type.reference.name = name;
    type.reference.place = type.place;
    return true;
}

AstType* class_field_type(Parser& parser, const AstType& around, const AstReference& object_class,
                          const char* field) {
    AstType& type = parser.ast->types.emplace_back();
    type.sort = AstType::Sort::class_field;
    type.reference = object_class;
    type.fields = {field};
    type.place = around.place;
    return &type;
}

// INSTANCE OF CLASS ({Set}) is a SEQUENCE of the class's &id and, under [0], &Type: X.681 annex C.
bool parse_instance_of(Parser& parser, AstType& type) {
    if (!accept_word(parser, "INSTANCE")) return false;
    expect_word(parser, "OF");
    AstReference object_class = parse_class_reference(parser);
    type.kind = Kind::sequence;
    type.universal_tag = 8;
    AstComponent id, value;
    id.name = "type-id";
    id.type = class_field_type(parser, type, object_class, "&id");
    value.name = "value";
    value.type = class_field_type(parser, type, object_class, "&Type");
    id.place = value.place = type.place;
    AstTag tag;
    tag.number = &parser.ast->values.emplace_back();
    tag.number->sort = AstValue::Sort::number;
    tag.mode = AstTag::Mode::is_explicit;
    tag.place = type.place;
    value.type->tags.push_back(tag);
    if (is_symbol(parser, "(") && is_symbol(parser, "{", 1)) {
        AstConstraint* set = parse_constraint(parser);
        id.type->constraints.push_back(set);
        AstConstraint& keyed = parser.ast->constraints.emplace_back(*set);
        keyed.keys = {{1, {"type-id"}, type.place}};
        value.type->constraints.push_back(&keyed);
    }
    type.components = {id, value};
    return true;
}

void parse_referenced_type(Parser& parser, AstType& type) {
    type.sort = AstType::Sort::reference;
    if (is_sort(parser, Token::Sort::lower_word)) {  // object.&Type
        type.reference = parse_value_reference(parser);
    } else {
        type.reference = parse_class_reference(parser);
        accept_actuals(parser, type.reference);
    }
    bool lower = type.reference.name[0] >= 'a';
    type.fields = parse_fields(parser);
    if (!type.fields.empty()) type.sort = AstType::Sort::class_field;
    if (type.fields.empty() && (lower || is_symbol(parser, ".")))
        fail_expected(parser, "a class field (&name) or a type behind '.'");
}

}  // namespace

AstReference parse_class_reference(Parser& parser) {
    for (const char* known : {"TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"}) {
        if (!is_word(parser, known)) continue;
        AstReference reference;
        reference.name = known;
        reference.place = parser.at++->place;
        return reference;
    }
    return parse_type_reference(parser, "a type");
}

AstType* parse_type(Parser& parser) {
    Nesting nesting(parser);
    AstType& type = parser.ast->types.emplace_back();
    type.place = parser.at->place;
    while (is_symbol(parser, "["))
        if (!skip_encoding_instruction(parser)) type.tags.push_back(parse_tag(parser));
    if (is_sort(parser, Token::Sort::lower_word) && is_symbol(parser, "<", 1)) {
        type.sort = AstType::Sort::selection;
        type.alternative = parser.at->text;
        parser.at += 2;
        type.inner = parse_type(parser);
        return &type;
    }
    if (!parse_useful_type(parser, type) && !parse_instance_of(parser, type) &&
        !parse_builtin_type(parser, type))
        parse_referenced_type(parser, type);
    while (is_symbol(parser, "(")) type.constraints.push_back(parse_constraint(parser));
    accept_unit(parser, type);
    return &type;
}

static void parse_field_default(Parser& parser, AstField& field) {
    field.optional = true;
    switch (field.sort) {
        case AstField::Sort::type: field.type = parse_type(parser); break;
        case AstField::Sort::value:
        case AstField::Sort::variable_value: field.default_value = parse_value(parser); break;
        case AstField::Sort::set:
        case AstField::Sort::variable_set:
            expect_symbol(parser, "{");
            field.default_set = read_braces(parser);
            field.has_default_set = true;
            break;
    }
}

static AstField parse_field(Parser& parser) {
    AstField field;
    field.place = parser.at->place;
    if (!is_sort(parser, Token::Sort::field)) fail_expected(parser, "a field (&name)");
    field.name = parser.at++->text;
    bool upper = field.name[1] >= 'A' && field.name[1] <= 'Z';
    bool ends = is_symbol(parser, ",") || is_symbol(parser, "}") || is_word(parser, "OPTIONAL") ||
                is_word(parser, "DEFAULT");
    if (upper && ends) {
        field.sort = AstField::Sort::type;
    } else if (is_sort(parser, Token::Sort::field)) {
        field.sort = upper ? AstField::Sort::variable_set : AstField::Sort::variable_value;
        parser.at++;
        parse_fields(parser);
    } else {
        field.sort = upper ? AstField::Sort::set : AstField::Sort::value;
        field.type = parse_type(parser);
        field.unique = accept_word(parser, "UNIQUE");
    }
    if (accept_word(parser, "OPTIONAL")) {
        field.optional = true;
    } else if (accept_word(parser, "DEFAULT")) {
        parse_field_default(parser, field);
    }
    return field;
}

// Two brackets may be one symbol: `half_bracket` tells that the first of them was read.
static bool accept_bracket(Parser& parser, std::string_view single, std::string_view twofold) {
    if (accept_symbol(parser, single)) return true;
    if (!is_symbol(parser, twofold)) return false;
    parser.half_bracket = !parser.half_bracket;
    if (!parser.half_bracket) parser.at++;
    return true;
}

static std::vector<AstSyntax> parse_syntax(Parser& parser, bool in_group) {
    Nesting nesting(parser);
    std::vector<AstSyntax> syntax;
    while (!(in_group ? accept_bracket(parser, "]", "]]") : accept_symbol(parser, "}"))) {
        AstSyntax item;
        if (accept_bracket(parser, "[", "[[")) {
            item.sort = AstSyntax::Sort::optional_group;
            item.group = parse_syntax(parser, true);
        } else if (is_sort(parser, Token::Sort::field)) {
            item.sort = AstSyntax::Sort::field;
            item.text = parser.at++->text;
        } else if (is_sort(parser, Token::Sort::upper_word) || is_symbol(parser, ",")) {
            item.text = parser.at++->text;
        } else {
            fail_expected(parser, "a word, a field, '[' or the end of WITH SYNTAX");
        }
        syntax.push_back(std::move(item));
    }
    return syntax;
}

AstClass* parse_class(Parser& parser) {
    AstClass& object_class = parser.ast->classes.emplace_back();
    expect_symbol(parser, "{");
    do {
        object_class.fields.push_back(parse_field(parser));
    } while (accept_symbol(parser, ","));
    if (!is_symbol(parser, "}")) fail_expected(parser, "',' or '}' behind a class field");
    parser.at++;
    if (accept_word(parser, "WITH")) {
        expect_word(parser, "SYNTAX");
        expect_symbol(parser, "{");
        object_class.has_syntax = true;
        object_class.syntax = parse_syntax(parser, false);
    }
    return &object_class;
}

}  // namespace orlentac
