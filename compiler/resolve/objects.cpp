// Information object classes, objects and object sets (X.681).
#include <algorithm>
#include <set>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

constexpr int kMaxAliases = 32;

void fill_class(Resolver& resolver, ClassInfo& info);

// X.681 annex A; made when it is first used.
const ClassInfo* type_identifier(Resolver& resolver) {
    static const AstAssignment kKey;
    ClassInfo& info = resolver.classes[&kKey];
    if (info.object_class) return &info;
    static const std::string kText =
        "{ &id OBJECT IDENTIFIER UNIQUE, &Type } WITH SYNTAX { &Type IDENTIFIED BY &id }";
    resolver.ast.files.push_back(tokenize(nullptr, kText, resolver.diags));
    const std::vector<Token>& tokens = resolver.ast.files.back();
    Parser parser = parse_range(resolver.ast, {tokens.data(), tokens.data() + tokens.size() - 1});
    info.object_class = &resolver.schema.class_pool.emplace_back();
    info.object_class->name = "TYPE-IDENTIFIER";
    info.ast = parse_class(parser);
    info.scope = &resolver.modules.front().scope;
    resolver.schema.classes.push_back(info.object_class);
    fill_class(resolver, info);
    return &info;
}

const ClassInfo* search_class(Resolver& resolver, const Scope& scope, const AstReference& reference,
                              int depth) {
    if (reference.name == "TYPE-IDENTIFIER") return type_identifier(resolver);
    Meaning meaning = peek_name(resolver, scope, reference);
    const AstType* alias = nullptr;
    if (meaning.binding && !meaning.binding->parameter->governor) {
        alias = binding_type(resolver, *meaning.binding);
    } else if (meaning.assignment) {
        auto found = resolver.classes.find(meaning.assignment);
        if (found != resolver.classes.end()) return &found->second;
        if (meaning.assignment->sort == AstAssignment::Sort::type) alias = meaning.assignment->type;
    }
    bool plain = alias && alias->sort == AstType::Sort::reference && !alias->reference.has_actuals &&
                 alias->constraints.empty() && alias->tags.empty();
    if (!plain || depth > kMaxAliases) return nullptr;
    return search_class(resolver, scope_of(meaning), alias->reference, depth + 1);
}

void fill_class(Resolver& resolver, ClassInfo& info) {
    if (info.filled) return;
    info.filled = true;
    std::set<std::string> names;
    for (const AstField& ast : info.ast->fields) {
        if (!names.insert(ast.name).second) {
            error(resolver.diags, ast.place, "the field '{}' is there already", ast.name);
        }
        ClassField field;
        field.name = ast.name;
        field.is_type_field = ast.is_type_field;
        field.unique = ast.unique;
        if (ast.type) field.type = resolve_type(resolver, *ast.type, *info.scope);
        if (ast.default_value) {
            field.default_value =
                resolve_value(resolver, *ast.default_value, *info.scope, *ast.type, *info.scope);
        }
        info.object_class->fields.push_back(std::move(field));
    }
}

// ---- objects ----

struct ObjectReader {
    Resolver& resolver;
    const Scope& scope;
    const ClassInfo& info;
    Parser parser;
    std::vector<RowEntry> row;
};

void read_setting(ObjectReader& reader, const std::string& name) {
    int column = find_field(reader.resolver, reader.info, name, reader.parser.at->place);
    if (column < 0) return;
    const AstField& field = reader.info.ast->fields[column];
    RowEntry& entry = reader.row[column];
    if (field.is_type_field) {
        entry.type = resolve_type(reader.resolver, *parse_type(reader.parser), reader.scope);
        return;
    }
    AstValue* value = parse_value(reader.parser);
    entry.value = resolve_value(reader.resolver, *value, reader.scope, *field.type, *reader.info.scope);
    if (!entry.value) {
        entry.value.emplace();
    } else {
        check_value_later(reader.resolver, reader.info.object_class->fields[column].type, *entry.value, name);
    }
}

bool is_literal(const Parser& parser, const AstSyntax& item) {
    return is_word(parser, item.text) || is_symbol(parser, item.text);
}

// Whether the words of an optional part come next.
bool group_follows(const Parser& parser, const std::vector<AstSyntax>& group) {
    if (group.empty() || at_end(parser)) return false;
    switch (group[0].sort) {
        case AstSyntax::Sort::literal: return is_literal(parser, group[0]);
        case AstSyntax::Sort::optional_group: return group_follows(parser, group[0].group);
        case AstSyntax::Sort::field: break;
    }
    bool type_field = group[0].text[1] >= 'A' && group[0].text[1] <= 'Z';
    return type_field == is_sort(parser, Token::Sort::upper_word);
}

void read_syntax(ObjectReader& reader, const std::vector<AstSyntax>& syntax) {
    for (const AstSyntax& item : syntax) {
        switch (item.sort) {
            case AstSyntax::Sort::literal:
                if (!is_literal(reader.parser, item))
                    fail_expected(reader.parser, fmt::format("'{}'", item.text));
                reader.parser.at++;
                break;
            case AstSyntax::Sort::field: read_setting(reader, item.text); break;
            case AstSyntax::Sort::optional_group:
                if (group_follows(reader.parser, item.group)) read_syntax(reader, item.group);
                break;
        }
    }
}

// X.681 clause 11.5: { &field setting, &field setting }
void read_default_syntax(ObjectReader& reader) {
    while (!at_end(reader.parser)) {
        if (!is_sort(reader.parser, Token::Sort::field)) fail_expected(reader.parser, "a field (&name)");
        const Token& name = *reader.parser.at++;
        if (find_field(reader.resolver, reader.info, name.text, name.place) < 0) return;
        read_setting(reader, name.text);
        if (!at_end(reader.parser)) expect_symbol(reader.parser, ",");
    }
}

void check_settings(const ObjectReader& reader, Place place) {
    for (size_t i = 0; i < reader.row.size(); i++) {
        const AstField& field = reader.info.ast->fields[i];
        if (reader.row[i].type || reader.row[i].value || field.optional) continue;
        error(reader.resolver.diags, place, "the object does not set the field '{}'", field.name);
    }
}

std::optional<std::vector<RowEntry>> read_object(Resolver& resolver, const Scope& scope, TokenRange braces,
                                                 const ClassInfo& info, Place place) {
    ObjectReader reader{resolver, scope, info, parse_range(resolver.ast, braces), {}};
    reader.row.resize(info.ast->fields.size());
    try {
        if (info.ast->has_syntax) {
            read_syntax(reader, info.ast->syntax);
            expect_end(reader.parser, "'}' behind the object");
        } else {
            read_default_syntax(reader);
        }
    } catch (const SyntaxError& fault) {
        error(resolver.diags, fault.place, "{}", fault.text);
        return std::nullopt;
    }
    check_settings(reader, place);
    return std::move(reader.row);
}

std::optional<std::vector<RowEntry>> find_object(Resolver& resolver, const Scope& scope,
                                                 const AstReference& reference, const ClassInfo& info);

std::optional<std::vector<RowEntry>> object_value(Resolver& resolver, const Scope& scope,
                                                  const AstValue& value, const ClassInfo& info) {
    if (value.sort == AstValue::Sort::braces)
        return read_object(resolver, scope, value.braces, info, value.place);
    if (value.sort == AstValue::Sort::reference) return find_object(resolver, scope, value.reference, info);
    error(resolver.diags, value.place, "expected an object of class '{}', found {}", info.object_class->name,
          value_text(value));
    return std::nullopt;
}

std::optional<std::vector<RowEntry>> find_object(Resolver& resolver, const Scope& scope,
                                                 const AstReference& reference, const ClassInfo& info) {
    Meaning meaning = find_name(resolver, scope, reference, "object");
    if (!meaning) return std::nullopt;
    const AstType* governor =
        meaning.binding ? meaning.binding->parameter->governor : meaning.assignment->type;
    const AstValue* value = nullptr;
    if (meaning.binding) {
        value = binding_value(resolver, *meaning.binding);
        if (!value) return std::nullopt;
        return object_value(resolver, scope_of(meaning), *value, info);
    }
    value = meaning.assignment->sort == AstAssignment::Sort::value ? meaning.assignment->value : nullptr;
    const ClassInfo* its = value ? peek_class(resolver, scope_of(meaning), governor->reference) : nullptr;
    if (!its || its->object_class != info.object_class) {
        error(resolver.diags, reference.place, "expected an object of class '{}', found '{}'",
              info.object_class->name, reference.name);
        return std::nullopt;
    }
    if (!resolver.busy.insert(value).second) {
        error(resolver.diags, reference.place, "the object '{}' refers to nothing but itself",
              reference.name);
        return std::nullopt;
    }
    auto row = object_value(resolver, scope_of(meaning), *value, info);
    resolver.busy.erase(value);
    return row;
}

// ---- object sets ----

void read_element(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                  ObjectSet& set) {
    Place place = parser.at->place;
    if (accept_symbol(parser, "{")) {
        if (auto row = read_object(resolver, scope, read_braces(parser), info, place)) {
            set.rows.push_back(std::move(*row));
        }
        return;
    }
    AstReference reference;
    reference.place = place;
    if (is_sort(parser, Token::Sort::upper_word) && is_symbol(parser, ".", 1)) {
        reference.module = parser.at->text;
        parser.at += 2;
    }
    if (is_sort(parser, Token::Sort::lower_word)) {
        reference.name = parser.at++->text;
        if (auto row = find_object(resolver, scope, reference, info)) set.rows.push_back(std::move(*row));
        return;
    }
    reference.name = expect_reference(parser, "an object, an object set or '...'").text;
    if (ObjectSet* other = find_set(resolver, scope, reference, info)) {
        set.extensible |= other->extensible;
        set.rows.insert(set.rows.end(), other->rows.begin(), other->rows.end());
    }
}

void read_elements(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                   ObjectSet& set) {
    do {
        if (accept_symbol(parser, "...")) {
            set.extensible = true;
            continue;
        }
        do {
            read_element(resolver, scope, parser, info, set);
        } while (accept_symbol(parser, "|") || accept_word(parser, "UNION"));
    } while (accept_symbol(parser, ","));
    expect_end(parser, "'|', ',' or '}' in an object set");
}

// X.681 clause 9.9: a UNIQUE field tells the objects of a set apart.
void check_unique(Resolver& resolver, const ObjectSet& set) {
    for (size_t column = 0; column < set.object_class->fields.size(); column++) {
        if (!set.object_class->fields[column].unique) continue;
        std::map<Number, Place> seen;
        for (const auto& row : set.rows) {
            const std::optional<Value>& value = row[column].value;
            if (!value || (value->sort != Value::Sort::number && value->sort != Value::Sort::item)) continue;
            Number key = value->sort == Value::Sort::number ? value->number : Number(value->item);
            auto [first, fresh] = seen.try_emplace(key, value->place);
            if (fresh) continue;
            error(resolver.diags, set.place, "two objects of the set have the {} {}",
                  set.object_class->fields[column].name, key.str());
        }
    }
}

ObjectSet* new_set(Resolver& resolver, const ClassInfo& info, std::string name, Place place) {
    ObjectSet& set = resolver.schema.set_pool.emplace_back();
    set.name = std::move(name);
    set.object_class = info.object_class;
    set.place = place;
    return &set;
}

void fill_set(Resolver& resolver, const Scope& scope, TokenRange braces, const ClassInfo& info,
              ObjectSet& set) {
    Parser parser = parse_range(resolver.ast, braces);
    try {
        read_elements(resolver, scope, parser, info, set);
    } catch (const SyntaxError& fault) {
        error(resolver.diags, fault.place, "{}", fault.text);
    }
    check_unique(resolver, set);
}

ObjectSet* bound_set(Resolver& resolver, Binding& binding, const ClassInfo& info, Place place) {
    if (binding.set) return binding.set;
    const Token* first = binding.tokens.first;
    const Token* last = binding.tokens.last;
    bool braces = last - first >= 2 && first->text == "{" && (last - 1)->text == "}";
    if (!binding.parameter->governor) {
        error(resolver.diags, place, "expected an object set, found the parameter '{}'",
              binding.parameter->name);
    } else if (!braces) {
        error(resolver.diags, first->place, "expected an object set in braces, found {}", token_text(*first));
    } else {
        binding.set = resolve_set(resolver, *binding.scope, {first + 1, last - 1}, info, first->place);
    }
    return binding.set;
}

}  // namespace

const ClassInfo* peek_class(Resolver& resolver, const Scope& scope, const AstReference& reference) {
    return search_class(resolver, scope, reference, 0);
}

const ClassInfo* find_class(Resolver& resolver, const Scope& scope, const AstReference& reference) {
    const ClassInfo* info = peek_class(resolver, scope, reference);
    if (info) return info;
    Meaning meaning = find_name(resolver, scope, reference, "class");
    if (meaning) {
        error(resolver.diags, reference.place,
              "expected an information object class, found '{}', which is none", reference.name);
    }
    return nullptr;
}

bool is_class(Resolver& resolver, const Scope& scope, const AstType& type) {
    return type.sort == AstType::Sort::reference && !type.reference.has_actuals && type.constraints.empty() &&
           peek_class(resolver, scope, type.reference);
}

void declare_classes(Resolver& resolver) {
    for (const ModuleNames& names : resolver.modules) {
        for (const AstAssignment* assignment : names.ast->assignments) {
            if (assignment->sort != AstAssignment::Sort::object_class) continue;
            ObjectClass& object_class = resolver.schema.class_pool.emplace_back();
            object_class.name = assignment->name;
            object_class.module = names.ast->name;
            object_class.place = assignment->place;
            resolver.schema.classes.push_back(&object_class);
            resolver.classes[assignment] = {&object_class, assignment->object_class, &names.scope};
        }
    }
}

void fill_classes(Resolver& resolver) {
    // In source order, also because the map may grow on the way.
    for (const ModuleNames& names : resolver.modules) {
        for (const AstAssignment* assignment : names.ast->assignments) {
            auto found = resolver.classes.find(assignment);
            if (found != resolver.classes.end()) fill_class(resolver, found->second);
        }
    }
}

int find_field(Resolver& resolver, const ClassInfo& info, const std::string& name, Place place) {
    const auto& fields = info.ast->fields;
    auto found =
        std::find_if(fields.begin(), fields.end(), [&](const AstField& f) { return f.name == name; });
    if (found != fields.end()) return static_cast<int>(found - fields.begin());
    error(resolver.diags, place, "class '{}' has no field '{}'", info.object_class->name, name);
    return -1;
}

ObjectSet* find_set(Resolver& resolver, const Scope& scope, const AstReference& reference,
                    const ClassInfo& info) {
    Meaning meaning = find_name(resolver, scope, reference, "object set");
    if (!meaning) return nullptr;
    if (meaning.binding) return bound_set(resolver, *meaning.binding, info, reference.place);
    const AstAssignment& assignment = *meaning.assignment;
    bool is_set = assignment.sort == AstAssignment::Sort::set && !assignment.has_parameters;
    const ClassInfo* its =
        is_set ? peek_class(resolver, scope_of(meaning), assignment.type->reference) : nullptr;
    if (!its || its->object_class != info.object_class) {
        error(resolver.diags, reference.place, "expected an object set of class '{}', found '{}'{}",
              info.object_class->name, reference.name,
              its ? ", a set of class '" + its->object_class->name + "'" : "");
        return nullptr;
    }
    ObjectSet*& set = resolver.sets[&assignment];
    if (set && !resolver.busy.contains(&assignment)) return set;
    if (set) {
        error(resolver.diags, reference.place, "the object set '{}' contains itself", reference.name);
        return nullptr;
    }
    ObjectSet* fresh = set = new_set(resolver, info, assignment.name, assignment.place);
    resolver.busy.insert(&assignment);
    fill_set(resolver, scope_of(meaning), assignment.braces, info, *fresh);
    resolver.busy.erase(&assignment);
    return fresh;
}

ObjectSet* resolve_set(Resolver& resolver, const Scope& scope, TokenRange braces, const ClassInfo& info,
                       Place place) {
    Parser parser = parse_range(resolver.ast, braces);
    if (braces.last - braces.first == 1 && is_sort(parser, Token::Sort::upper_word)) {
        AstReference reference;
        reference.name = braces.first->text;
        reference.place = braces.first->place;
        return find_set(resolver, scope, reference, info);
    }
    ObjectSet* set = new_set(resolver, info, "", place);
    fill_set(resolver, scope, braces, info, *set);
    return set;
}

}  // namespace orlentac
