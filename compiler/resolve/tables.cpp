// SPDX-License-Identifier: Apache-2.0
// Class fields as types, and the table constraints that tie open types to their keys (X.681 clause 14, X.682 clause 10).
#include <algorithm>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

// ({Set}{@key}); other constraints on an open type leave no trace.
const AstConstraint* table_constraint(const AstType& ast) {
    for (const AstConstraint* constraint : ast.constraints) {
        const AstConstraint* inner = constraint;
        while (inner->sort == AstConstraint::Sort::all_of) inner = inner->parts[0];
        if (inner->sort == AstConstraint::Sort::braces) return inner;
    }
    return nullptr;
}

int component_index(const Type& type, const std::string& name) {
    auto same = [&](const Component& component) { return component.name == name; };
    auto found = std::find_if(type.components.begin(), type.components.end(), same);
    return found == type.components.end() ? -1 : static_cast<int>(found - type.components.begin());
}

bool is_record(const Type* type) { return type->kind == Kind::sequence || type->kind == Kind::set; }

// Where the key's path starts among the types around it: "@a" in the outermost, "@.a" in the innermost SEQUENCE or
// SET, each further point one more out. Through a CHOICE the path leads to what stands in it; `step` counts the names
// that this takes. -1 if there is nothing so far out.
int start_level(const std::vector<Type*>& enclosing, const AstAtNotation& key, size_t& step) {
    int level = 0;
    if (key.dots > 0) {
        int records = key.dots;
        for (level = static_cast<int>(enclosing.size()) - 1; level >= 0; level--)
            if (is_record(enclosing[level]) && --records == 0) break;
        return level;
    }
    int depth = static_cast<int>(enclosing.size());
    for (; level < depth && !is_record(enclosing[level]); level++) {
        const auto& alternatives = enclosing[level]->alternatives;
        auto leads_on = [&](const Alternative& alternative) {
            return alternative.name == key.names[step] && level + 1 < depth &&
                   alternative.type == enclosing[level + 1];
        };
        bool named =
            step + 1 < key.names.size() && std::any_of(alternatives.begin(), alternatives.end(), leads_on);
        step += named ? 1 : 0;
    }
    return level < depth ? level : -1;
}

void add_selector(Resolver& resolver, const PendingTable& pending, const AstAtNotation& key) {
    if (!pending.type->table) return;
    size_t step = 0;
    int level = start_level(pending.enclosing, key, step);
    if (level < 0) {
        return error(resolver.diags, key.place, "there is no SEQUENCE or SET so far out to look for '{}' in",
                     key.names[0]);
    }
    // Contents are read apart from what is around them, where no key can be seen.
    if (static_cast<size_t>(level) < pending.in_contents) {
        pending.type->table.reset();
        return;
    }
    Selector selector;
    selector.levels_up = static_cast<int>(
        std::count_if(pending.enclosing.begin() + level + 1, pending.enclosing.end(), is_record));
    const Type* type = pending.enclosing[level];
    for (; step < key.names.size(); step++) {
        const Type& around = behind_references(*type);
        int index = component_index(around, key.names[step]);
        if (index < 0)
            return error(resolver.diags, key.place, "there is no component '{}' to select by",
                         key.names[step]);
        selector.path.push_back(index);
        type = around.components[index].type;
    }
    while (!type->fixed_from && type->kind == Kind::reference && type->target->type)
        type = type->target->type;
    if (type->fixed_from != pending.object_class) {
        return error(resolver.diags, key.place, "the component '{}' is not of a value field of class '{}'",
                     key.names.back(), pending.object_class->name);
    }
    selector.column = type->fixed_column;
    pending.type->table->selectors.push_back(std::move(selector));
}

}  // namespace

static Type* open_field(Resolver& resolver, const AstType& ast, const Scope& scope,
                        const FieldTarget& target) {
    Type* type = new_type(resolver, Kind::open_type, ast.place);
    const AstConstraint* constraint = table_constraint(ast);
    const ClassInfo* info = constraint ? peek_class(resolver, scope, ast.reference) : nullptr;
    if (!info || target.info->columns[target.index] < 0) return type;
    const Scope& names = constraint->scope ? *constraint->scope : scope;
    ObjectSet* set = resolve_set(resolver, names, constraint->braces, *info, constraint->place);
    if (set) set = set_behind_fields(resolver, set, *info, ast);
    if (!set) return type;
    type->table = TableConstraint{set, target.info->columns[target.index], {}};
    if (!constraint->keys.empty()) {
        resolver.tables.push_back(
            {type, resolver.enclosing, resolver.in_contents, &constraint->keys, info->object_class});
    }
    return type;
}

// CLASS.&field (0..9): the field's type under what is not a table constraint.
static const AstType* narrowed(Resolver& resolver, const AstType& ast, const Scope& scope,
                               const AstType* values) {
    AstType* type = nullptr;
    for (const AstConstraint* constraint : ast.constraints) {
        if (constraint == table_constraint(ast)) continue;
        if (!type) type = &resolver.ast.types.emplace_back(*values);
        AstConstraint& own = resolver.ast.constraints.emplace_back(*constraint);
        if (!own.scope) own.scope = &scope;
        type->constraints.push_back(&own);
    }
    return type ? type : values;
}

// A field of values has the type that the class gives.
static Type* fixed_field(Resolver& resolver, const AstType& ast, const Scope& scope,
                         const FieldTarget& target) {
    const AstField& field = target.field();
    if (is_class(resolver, *target.info->scope, *field.type)) {
        error(resolver.diags, ast.place,
              "expected a field of values or types, found '{}', which holds objects", ast.fields.back());
        return new_type(resolver, Kind::null, ast.place);
    }
    const AstConstraint* constraint = table_constraint(ast);
    const ClassInfo* info = constraint ? peek_class(resolver, scope, ast.reference) : nullptr;
    if (info) resolve_set(resolver, scope, constraint->braces, *info, constraint->place);  // for errors alone
    const AstType* values = type_of_values(resolver, ast, scope, target);
    Type* type = resolve_type(resolver, *narrowed(resolver, ast, scope, values), *target.info->scope);
    type->place = ast.place;
    if (int column = target.info->columns[target.index]; column >= 0) {
        type->fixed_from = target.info->object_class;
        type->fixed_column = column;
    }
    return type;
}

Type* resolve_class_field(Resolver& resolver, const AstType& ast, const Scope& scope) {
    FieldTarget target = find_field_target(resolver, ast, scope);
    if (!target) return new_type(resolver, Kind::null, ast.place);
    switch (target.field().sort) {
        case AstField::Sort::type:
            if (target.object && target.object->settings[target.index].present) {
                const Setting& setting = target.object->settings[target.index];
                return resolve_type(resolver, *setting.type, *setting.scope);
            }
            if (target.object && !target.field().type)
                error(resolver.diags, ast.place, "the object '{}' does not set the field '{}'",
                      ast.reference.name, ast.fields.back());
            return open_field(resolver, ast, scope, target);
        case AstField::Sort::variable_value:
        case AstField::Sort::variable_set: return open_field(resolver, ast, scope, target);
        case AstField::Sort::value:
        case AstField::Sort::set: return fixed_field(resolver, ast, scope, target);
    }
    return nullptr;
}

void resolve_tables(Resolver& resolver) {
    for (const PendingTable& pending : resolver.tables) {
        for (const AstAtNotation& key : *pending.keys) add_selector(resolver, pending, key);
    }
}

}  // namespace orlentac
