// Class fields as types, and the table constraints that tie open types to their keys (X.681 clause 14, X.682 clause 10).
#include <algorithm>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

const AstConstraint* table_constraint(Resolver& resolver, const AstType& ast) {
    const AstConstraint* table = nullptr;
    for (const AstConstraint* constraint : ast.constraints) {
        if (constraint->sort == AstConstraint::Sort::braces && !table) {
            table = constraint;
        } else if (!is_open_field(ast) || constraint->sort != AstConstraint::Sort::contained_subtype) {
            error(resolver.diags, constraint->place,
                  "expected a table constraint ({{Set}}) on a class field");
        }
    }
    return table;
}

int component_index(const Type& type, const std::string& name) {
    auto same = [&](const Component& component) { return component.name == name; };
    auto found = std::find_if(type.components.begin(), type.components.end(), same);
    return found == type.components.end() ? -1 : static_cast<int>(found - type.components.begin());
}

// Index of the SEQUENCE or SET in which the key's path starts, or -1.
int start_level(const PendingTable& pending, const AstAtNotation& key) {
    int innermost = static_cast<int>(pending.enclosing.size()) - 1;
    return key.dots == 0 ? (innermost >= 0 ? 0 : -1) : innermost - (key.dots - 1);
}

void add_selector(Resolver& resolver, const PendingTable& pending, const AstAtNotation& key) {
    int level = start_level(pending, key);
    if (level < 0) {
        return error(resolver.diags, key.place, "there is no SEQUENCE or SET so far out to look for '{}' in",
                     key.names[0]);
    }
    Selector selector;
    selector.levels_up = static_cast<int>(pending.enclosing.size()) - 1 - level;
    const Type* type = pending.enclosing[level];
    for (const std::string& name : key.names) {
        const Type& around = behind_references(*type);
        int index = component_index(around, name);
        if (index < 0)
            return error(resolver.diags, key.place, "there is no component '{}' to select by", name);
        selector.path.push_back(index);
        type = around.components[index].type;
    }
    if (type->fixed_from != pending.object_class) {
        return error(resolver.diags, key.place, "the component '{}' is not of a value field of class '{}'",
                     key.names.back(), pending.object_class->name);
    }
    selector.column = type->fixed_column;
    pending.type->table->selectors.push_back(std::move(selector));
}

}  // namespace

Type* resolve_class_field(Resolver& resolver, const AstType& ast, const Scope& scope) {
    const ClassInfo* info = find_class(resolver, scope, ast.reference);
    int column = info ? find_field(resolver, *info, ast.field, ast.place) : -1;
    if (column < 0 || !base_of(resolver, ast, scope)) return new_type(resolver, Kind::null, ast.place);
    const AstConstraint* constraint = table_constraint(resolver, ast);
    ObjectSet* set =
        constraint ? resolve_set(resolver, scope, constraint->braces, *info, constraint->place) : nullptr;
    if (!is_open_field(ast)) {
        Type* type = resolve_type(resolver, *info->ast->fields[column].type, *info->scope);
        type->place = ast.place;
        type->fixed_from = info->object_class;
        type->fixed_column = column;
        return type;
    }
    Type* type = new_type(resolver, Kind::open_type, ast.place);
    if (!set) return type;
    type->table = TableConstraint{set, column, {}};
    if (!constraint->keys.empty()) {
        resolver.tables.push_back({type, resolver.enclosing, &constraint->keys, info->object_class});
    }
    return type;
}

void resolve_tables(Resolver& resolver) {
    for (const PendingTable& pending : resolver.tables) {
        for (const AstAtNotation& key : *pending.keys) add_selector(resolver, pending, key);
    }
}

}  // namespace orlentac
