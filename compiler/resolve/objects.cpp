// SPDX-License-Identifier: Apache-2.0
// Information objects and object sets, and what is taken from them (X.681 clauses 11, 12 and 15).
#include <algorithm>
#include <set>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

constexpr int kMaxSteps = 64;  // of objects within objects

// ---- one object -------------------------------------------------------------------------------------------

struct ObjectReader {
    Resolver& resolver;
    const Scope& scope;
    const ClassInfo& info;
    Parser parser;
    InfoObject& object;
};

void read_value(ObjectReader& reader, const AstField& field, Setting& setting, RowEntry* entry) {
    setting.value = parse_value(reader.parser);
    if (!entry) return;
    entry->value =
        resolve_value(reader.resolver, *setting.value, reader.scope, *field.type, *reader.info.scope);
    if (!entry->value) {
        entry->value.emplace();
    } else {
        // The class may have no types yet.
        int column = reader.info.columns[&field - reader.info.ast->fields.data()];
        const ClassField* of_class = &reader.info.object_class->fields[column];
        reader.resolver.later.push_back([&resolver = reader.resolver, of_class, value = *entry->value] {
            if (of_class->type) check_value(resolver, *of_class->type, value, of_class->name);
        });
    }
}

// Where a value stands whose type another field gives, only its end can be told.
void skip_value(Parser& parser) {
    if (is_sort(parser, Token::Sort::upper_word) && !is_symbol(parser, ".", 1)) {
        parser.at++;
        return;
    }
    parse_value(parser);
}

void read_set(ObjectReader& reader, Setting& setting) {
    expect_symbol(reader.parser, "{");
    setting.set = read_braces(reader.parser);
}

void read_setting(ObjectReader& reader, const std::string& name) {
    int index = find_field(reader.resolver, reader.info, name, reader.parser.at->place);
    if (index < 0) return;
    const AstField& field = reader.info.ast->fields[index];
    int column = reader.info.columns[index];
    RowEntry* entry = column < 0 ? nullptr : &reader.object.row[column];
    Setting& setting = reader.object.settings[index];
    setting.present = true;
    setting.scope = &reader.scope;
    switch (field.sort) {
        case AstField::Sort::type:
            setting.type = parse_type(reader.parser);
            entry->type = resolve_type(reader.resolver, *setting.type, reader.scope);
            break;
        case AstField::Sort::value: read_value(reader, field, setting, entry); break;
        case AstField::Sort::variable_value: skip_value(reader.parser); break;
        case AstField::Sort::set:
        case AstField::Sort::variable_set: read_set(reader, setting); break;
    }
}

bool is_literal(const Parser& parser, const AstSyntax& item, size_t ahead = 0) {
    return is_word(parser, item.text, ahead) || is_symbol(parser, item.text, ahead);
}

// Whether the words of an optional part come next.
bool group_follows(const Parser& parser, const std::vector<AstSyntax>& group) {
    if (group.empty() || at_end(parser)) return false;
    switch (group[0].sort) {
        case AstSyntax::Sort::literal:
            for (size_t i = 0; i < group.size() && group[i].sort == AstSyntax::Sort::literal; i++)
                if (!is_literal(parser, group[i], i)) return false;
            return true;
        case AstSyntax::Sort::optional_group: return group_follows(parser, group[0].group);
        case AstSyntax::Sort::field: break;
    }
    if (is_symbol(parser, "{") || is_symbol(parser, "[")) return true;
    bool upper = group[0].text[1] >= 'A' && group[0].text[1] <= 'Z';
    return upper == is_sort(parser, Token::Sort::upper_word);
}

void read_syntax(ObjectReader& reader, const std::vector<AstSyntax>& syntax) {
    for (size_t i = 0; i < syntax.size(); i++) {
        const AstSyntax& item = syntax[i];
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
    for (size_t i = 0; i < reader.object.settings.size(); i++) {
        const AstField& field = reader.info.ast->fields[i];
        if (reader.object.settings[i].present || field.optional) continue;
        error(reader.resolver.diags, place, "the object does not set the field '{}'", field.name);
    }
}

const InfoObject* read_object(Resolver& resolver, const Scope& scope, TokenRange braces,
                              const ClassInfo& info, Place place) {
    Reference level(resolver, place);
    std::pair key(braces.first, &scope);
    auto known = resolver.objects.find(key);
    if (known != resolver.objects.end()) return known->second;
    InfoObject& object = resolver.object_pool.emplace_back();
    resolver.objects[key] = &object;
    object.info = &info;
    object.row.resize(info.object_class->fields.size());
    object.settings.resize(info.ast->fields.size());
    ObjectReader reader{resolver, scope, info, parse_range(resolver.ast, braces), object};
    try {
        if (info.ast->has_syntax) {
            read_syntax(reader, info.ast->syntax);
            expect_end(reader.parser, "'}' behind the object");
        } else {
            read_default_syntax(reader);
        }
        check_settings(reader, place);
    } catch (const SyntaxError& fault) {
        error(resolver.diags, fault.place, "{}", fault.text);
        resolver.objects[key] = nullptr;
    }
    return resolver.objects[key];
}

// ---- fields of objects ------------------------------------------------------------------------------------

using Members = std::vector<const InfoObject*>;

void add_member(Members& members, const InfoObject* object) {
    if (object && std::find(members.begin(), members.end(), object) == members.end())
        members.push_back(object);
}

void read_members(Resolver& resolver, const Scope& scope, TokenRange braces, const ClassInfo& info,
                  Members& members, bool& extensible);

const ClassInfo* class_of_field(Resolver& resolver, const ClassInfo& info, const AstField& field) {
    bool may_be = field.sort == AstField::Sort::value || field.sort == AstField::Sort::set;
    if (!may_be || field.type->sort != AstType::Sort::reference) return nullptr;
    return peek_class(resolver, *info.scope, field.type->reference);
}

// The objects that a field of an object gives: one, or a set.
Members objects_in_field(Resolver& resolver, const InfoObject& object, int index) {
    Members members;
    const AstField& field = object.info->ast->fields[index];
    const Setting& setting = object.settings[index];
    const ClassInfo* info = class_of_field(resolver, *object.info, field);
    if (!info || ++resolver.object_depth > kMaxSteps) return members;
    const Scope& scope = setting.present ? *setting.scope : *object.info->scope;
    bool extensible = false;
    if (field.sort == AstField::Sort::value) {
        const AstValue* value = setting.present ? setting.value : field.default_value;
        if (value) add_member(members, object_value(resolver, scope, *value, *info));
    } else if (setting.present || field.has_default_set) {
        read_members(resolver, scope, setting.present ? setting.set : field.default_set, *info, members,
                     extensible);
    }
    resolver.object_depth--;
    return members;
}

// From objects of `info` through a field to those that it gives; `info` becomes their class. Null if the field holds
// no objects, which is told.
const ClassInfo* follow_field(Resolver& resolver, const ClassInfo& info, Members& members,
                              const std::string& name, Place place) {
    int index = find_field(resolver, info, name, place);
    if (index < 0) return nullptr;
    const ClassInfo* next = class_of_field(resolver, info, info.ast->fields[index]);
    if (!next) {
        error(resolver.diags, place, "the field '{}' holds no objects", name);
        return nullptr;
    }
    Members all;
    for (const InfoObject* object : members)
        for (const InfoObject* inner : objects_in_field(resolver, *object, index)) add_member(all, inner);
    members = std::move(all);
    return next;
}

// The class that governs an object or an object set.
const ClassInfo* governing_class(Resolver& resolver, const Meaning& meaning) {
    const AstType* governor =
        meaning.binding ? meaning.binding->parameter->governor : meaning.assignment->type;
    const Scope& scope = meaning.binding ? *meaning.binding->inner : meaning.module->scope;
    if (!governor || governor->sort != AstType::Sort::reference) return nullptr;
    return peek_class(resolver, scope, governor->reference);
}

// ---- elements of sets -------------------------------------------------------------------------------------

void read_elements(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                   Members& members, bool& extensible);

// An object or a set of objects, or what fields of them hold.
void read_reference(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                    Members& members, bool& extensible) {
    bool qualified = is_symbol(parser, ".", 1) && !is_sort(parser, Token::Sort::field, 2);
    bool upper = is_sort(parser, Token::Sort::upper_word) &&
                 !(qualified && is_sort(parser, Token::Sort::lower_word, 2));
    AstReference reference;
    if (upper) {
        reference = parse_type_reference(parser, "an object, an object set or '...'");
        accept_actuals(parser, reference);
    } else {
        reference = parse_value_reference(parser);
    }
    std::vector<std::string> fields = parse_fields(parser);
    const ClassInfo* from = &info;
    if (!fields.empty()) {
        Meaning meaning = find_name(resolver, scope, reference, upper ? "object set" : "object");
        from = meaning ? governing_class(resolver, meaning) : nullptr;
        if (meaning && !from)
            error(resolver.diags, reference.place, "expected objects, found '{}'", reference.name);
        if (!from) return;
    }
    Members found;
    if (!upper) {
        add_member(found, find_object(resolver, scope, reference, *from));
    } else if (ObjectSet* other = find_set(resolver, scope, reference, *from)) {
        if (resolver.filling.contains(other)) {
            return error(resolver.diags, reference.place, "the object set '{}' contains itself",
                         reference.name);
        }
        extensible |= other->extensible && fields.empty();
        found = resolver.members[other];
    }
    for (const std::string& field : fields) {
        from = follow_field(resolver, *from, found, field, reference.place);
        if (!from) return;
    }
    if (from->object_class != info.object_class) {
        return error(resolver.diags, reference.place, "expected objects of class '{}', found those of '{}'",
                     info.object_class->name, from->object_class->name);
    }
    for (const InfoObject* object : found) add_member(members, object);
}

void read_element(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                  Members& members, bool& extensible) {
    Nesting nesting(parser);
    Place place = parser.at->place;
    if (accept_symbol(parser, "{")) {
        add_member(members, read_object(resolver, scope, read_braces(parser), info, place));
    } else if (accept_symbol(parser, "(")) {
        read_elements(resolver, scope, parser, info, members, extensible);
        expect_symbol(parser, ")");
    } else {
        read_reference(resolver, scope, parser, info, members, extensible);
    }
}

// With what EXCEPT takes away, or INTERSECTION leaves.
void read_narrowed(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                   Members& members, bool& extensible) {
    Members all;
    read_element(resolver, scope, parser, info, all, extensible);
    for (;;) {
        bool except = accept_word(parser, "EXCEPT");
        if (!except && !accept_word(parser, "INTERSECTION") && !accept_symbol(parser, "^")) break;
        Members by;
        read_element(resolver, scope, parser, info, by, extensible);
        std::erase_if(all, [&](const InfoObject* object) {
            return (std::find(by.begin(), by.end(), object) != by.end()) == except;
        });
    }
    for (const InfoObject* object : all) add_member(members, object);
}

void read_elements(Resolver& resolver, const Scope& scope, Parser& parser, const ClassInfo& info,
                   Members& members, bool& extensible) {
    do {
        if (accept_symbol(parser, "...")) {
            extensible = true;
            continue;
        }
        do {
            read_narrowed(resolver, scope, parser, info, members, extensible);
        } while (accept_symbol(parser, "|") || accept_word(parser, "UNION"));
    } while (accept_symbol(parser, ","));
}

void read_members(Resolver& resolver, const Scope& scope, TokenRange braces, const ClassInfo& info,
                  Members& members, bool& extensible) {
    Parser parser = parse_range(resolver.ast, braces);
    if (at_end(parser)) return;  // {}: ERRORS { } and the like
    try {
        read_elements(resolver, scope, parser, info, members, extensible);
        expect_end(parser, "'|', ',' or '}' in an object set");
    } catch (const SyntaxError& fault) {
        error(resolver.diags, fault.place, "{}", fault.text);
    }
}

// ---- sets -------------------------------------------------------------------------------------------------

// Equal for equal values of a field.
std::string key_text(const Value& value) {
    return fmt::format("{}{}{}", value.sort == Value::Sort::number ? value.number.str() : "",
                       value.sort == Value::Sort::item ? std::to_string(value.item) : "", value.bytes);
}

// X.681 clause 9.9: a UNIQUE field tells the objects of a set apart.
void check_unique(Resolver& resolver, const ObjectSet& set) {
    for (size_t column = 0; column < set.object_class->fields.size(); column++) {
        if (!set.object_class->fields[column].unique) continue;
        std::set<std::string> seen;
        for (const auto& row : set.rows) {
            const std::optional<Value>& value = row[column].value;
            if (!value || value->sort == Value::Sort::null || seen.insert(key_text(*value)).second) continue;
            bool readable = value->sort == Value::Sort::number || value->sort == Value::Sort::item;
            note(resolver.diags, set.place,
                 "two objects of the set have the {} {}, so that neither is found by it",
                 set.object_class->fields[column].name, readable ? key_text(*value) : "of each other");
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
    resolver.filling.insert(&set);
    Members members;
    read_members(resolver, scope, braces, info, members, set.extensible);
    for (const InfoObject* object : members) set.rows.push_back(object->row);
    resolver.members[&set] = std::move(members);
    resolver.filling.erase(&set);
    check_unique(resolver, set);
}

ObjectSet* bound_set(Resolver& resolver, Binding& binding, const ClassInfo& info, Place place) {
    if (binding.set) return binding.set;
    const Token* first = binding.tokens.first;
    const Token* last = binding.tokens.last;
    bool braces = last - first >= 2 && first->text == "{" && (last - 1)->text == "}";
    bool bare = last - first == 1 && first->sort == Token::Sort::upper_word;
    if (!binding.parameter->governor) {
        error(resolver.diags, place, "expected an object set, found the parameter '{}'",
              binding.parameter->name);
    } else if (bare) {
        note(resolver.diags, first->place, "'{0}' should be {{{0}}} (X.683 clause 9.5)", first->text);
        binding.set = resolve_set(resolver, *binding.scope, {first, last}, info, first->place);
    } else if (!braces) {
        error(resolver.diags, first->place, "expected an object set in braces, found {}", token_text(*first));
    } else {
        binding.set = resolve_set(resolver, *binding.scope, {first + 1, last - 1}, info, first->place);
    }
    return binding.set;
}

// The field at the end of a chain, of which all but the last hold objects.
FieldTarget follow_chain(Resolver& resolver, const ClassInfo* info, Members members, const AstType& type) {
    for (size_t i = 0; info && i + 1 < type.fields.size(); i++)
        info = follow_field(resolver, *info, members, type.fields[i], type.place);
    if (!info) return {};
    int index = find_field(resolver, *info, type.fields.back(), type.place);
    if (index < 0) return {};
    return {info, index, members.empty() ? nullptr : members[0], std::move(members)};
}

}  // namespace

const InfoObject* object_value(Resolver& resolver, const Scope& scope, const AstValue& value,
                               const ClassInfo& info) {
    if (value.sort == AstValue::Sort::braces)
        return read_object(resolver, scope, value.braces, info, value.place);
    if (value.sort == AstValue::Sort::reference) return find_object(resolver, scope, value.reference, info);
    if (value.sort == AstValue::Sort::from_object) {
        const ClassInfo* from = nullptr;
        const InfoObject* object = find_any_object(resolver, scope, value.reference, from);
        Members members;
        add_member(members, object);
        for (const std::string& field : value.fields)
            if (from) from = follow_field(resolver, *from, members, field, value.place);
        return from && !members.empty() ? members[0] : nullptr;
    }
    error(resolver.diags, value.place, "expected an object of class '{}', found {}", info.object_class->name,
          value_text(value));
    return nullptr;
}

const InfoObject* find_object(Resolver& resolver, const Scope& scope, const AstReference& reference,
                              const ClassInfo& info) {
    Reference level(resolver, reference.place);
    Meaning meaning = find_name(resolver, scope, reference, "object");
    if (!meaning) return nullptr;
    if (meaning.binding) {
        AstValue* value = binding_value(resolver, *meaning.binding);
        return value ? object_value(resolver, scope_of(meaning), *value, info) : nullptr;
    }
    const AstAssignment& assignment = *meaning.assignment;
    bool is_value = assignment.sort == AstAssignment::Sort::value;
    const ClassInfo* its = is_value ? governing_class(resolver, meaning) : nullptr;
    if (!its || its->object_class != info.object_class) {
        error(resolver.diags, reference.place, "expected an object of class '{}', found '{}'",
              info.object_class->name, reference.name);
        return nullptr;
    }
    const Scope* inner = bind_parameters(resolver, scope, reference, meaning);
    if (!inner) return nullptr;
    const AstValue* value = assignment.value;
    if (value->sort == AstValue::Sort::braces) return object_value(resolver, *inner, *value, info);
    if (!resolver.busy.insert(value).second) {
        error(resolver.diags, reference.place, "the object '{}' refers to nothing but itself",
              reference.name);
        return nullptr;
    }
    const InfoObject* object = object_value(resolver, *inner, *value, info);
    resolver.busy.erase(value);
    return object;
}

const InfoObject* find_any_object(Resolver& resolver, const Scope& scope, const AstReference& reference,
                                  const ClassInfo*& info) {
    Meaning meaning = find_name(resolver, scope, reference, "object");
    info = meaning ? governing_class(resolver, meaning) : nullptr;
    if (info) return find_object(resolver, scope, reference, *info);
    if (meaning) error(resolver.diags, reference.place, "expected an object, found '{}'", reference.name);
    return nullptr;
}

ObjectSet* find_set(Resolver& resolver, const Scope& scope, const AstReference& reference,
                    const ClassInfo& info) {
    Reference level(resolver, reference.place);
    Meaning meaning = find_name(resolver, scope, reference, "object set");
    if (!meaning) return nullptr;
    if (meaning.binding) return bound_set(resolver, *meaning.binding, info, reference.place);
    const AstAssignment& assignment = *meaning.assignment;
    bool is_set = assignment.sort == AstAssignment::Sort::set;
    const ClassInfo* its = is_set ? governing_class(resolver, meaning) : nullptr;
    if (!its || its->object_class != info.object_class) {
        error(resolver.diags, reference.place, "expected an object set of class '{}', found '{}'{}",
              info.object_class->name, reference.name,
              its ? ", a set of class '" + its->object_class->name + "'" : "");
        return nullptr;
    }
    const Scope* inner = bind_parameters(resolver, scope, reference, meaning);
    if (!inner) return nullptr;
    ObjectSet*& set = resolver.sets[{&assignment, inner->key}];
    if (set) return set;
    ObjectSet* fresh = set = new_set(resolver, info, assignment.name, assignment.place);
    fill_set(resolver, *inner, assignment.braces, info, *fresh);
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

ObjectSet* set_behind_fields(Resolver& resolver, ObjectSet* set, const ClassInfo& info, const AstType& type) {
    if (type.fields.size() < 2) return set;
    Members members = resolver.members[set];
    const ClassInfo* from = &info;
    for (size_t i = 0; from && i + 1 < type.fields.size(); i++)
        from = follow_field(resolver, *from, members, type.fields[i], type.place);
    if (!from) return nullptr;
    ObjectSet* behind = new_set(resolver, *from, "", type.place);
    for (const InfoObject* object : members) behind->rows.push_back(object->row);
    resolver.members[behind] = std::move(members);
    return behind;
}

// What an object says of a field of values; null if nothing.
static AstConstraint* values_in_field(Resolver& resolver, const InfoObject& object, int index) {
    const AstField& field = object.info->ast->fields[index];
    const Setting& setting = object.settings[index];
    AstConstraint* constraint = nullptr;
    if (field.sort == AstField::Sort::value) {
        const AstValue* value = setting.present ? setting.value : field.default_value;
        if (!value) return nullptr;
        constraint = &resolver.ast.constraints.emplace_back();
        constraint->sort = AstConstraint::Sort::range;
        constraint->lower = constraint->upper = const_cast<AstValue*>(value);
        constraint->place = value->place;
    } else if (setting.present || field.has_default_set) {
        Parser parser = parse_range(resolver.ast, setting.present ? setting.set : field.default_set);
        try {
            constraint = parse_element_sets(parser);
            expect_end(parser, "'|', ',' or '}' in a value set");
        } catch (const SyntaxError& fault) {
            error(resolver.diags, fault.place, "{}", fault.text);
            return nullptr;
        }
    }
    if (constraint) constraint->scope = setting.present ? setting.scope : object.info->scope;
    return constraint;
}

const AstType* type_of_values(Resolver& resolver, const AstType& path, const Scope& scope,
                              const FieldTarget& target) {
    if (target.objects.empty()) return target.field().type;
    const AstType*& type = resolver.value_types[{&path, &scope}];
    if (type) return type;
    type = target.field().type;
    AstConstraint values;
    values.sort = AstConstraint::Sort::any_of;
    values.extensible = target.extensible;
    values.place = path.place;
    for (const InfoObject* object : target.objects)
        if (AstConstraint* part = values_in_field(resolver, *object, target.index))
            values.parts.push_back(part);
    if (values.parts.empty()) return type;
    AstType& narrowed = resolver.ast.types.emplace_back(*type);
    narrowed.constraints.push_back(&resolver.ast.constraints.emplace_back(std::move(values)));
    return type = &narrowed;
}

FieldTarget find_field_target(Resolver& resolver, const AstType& type, const Scope& scope) {
    if (const ClassInfo* info = peek_class(resolver, scope, type.reference)) {
        FieldTarget target = follow_chain(resolver, info, {}, type);
        target.object = nullptr;
        return target;
    }
    bool lower = type.reference.name[0] >= 'a';
    if (!lower) {
        Meaning meaning = peek_name(resolver, scope, type.reference);
        const ClassInfo* info = meaning ? governing_class(resolver, meaning) : nullptr;
        if (!info) {
            find_class(resolver, scope, type.reference);  // for the error alone
            return {};
        }
        ObjectSet* set = find_set(resolver, scope, type.reference, *info);
        if (!set) return {};
        Members members;
        if (!resolver.filling.contains(set)) members = resolver.members[set];
        FieldTarget target = follow_chain(resolver, info, std::move(members), type);
        target.object = nullptr;
        target.extensible = set->extensible;
        return target;
    }
    const ClassInfo* info = nullptr;
    const InfoObject* object = find_any_object(resolver, scope, type.reference, info);
    if (!object) return {};
    FieldTarget target = follow_chain(resolver, info, {object}, type);
    if (target && !target.object)
        error(resolver.diags, type.place, "the object '{}' holds none to take '{}' from", type.reference.name,
              type.fields.back());
    return target.object ? target : FieldTarget{};
}

}  // namespace orlentac
