// SPDX-License-Identifier: Apache-2.0
#include "compiler/model/references.hpp"

#include <algorithm>

#include "compiler/model/tags.hpp"

namespace orlentac {

const NamedType* real_type(const NamedType* type) {
    while (type->is_alias) type = type->type->target;
    return type;
}

const Type* resolved(const Type* type) {
    while (type->kind == Kind::reference) type = type->target->type;
    return type;
}

bool is_list(const Type& type) { return type.kind == Kind::sequence_of || type.kind == Kind::set_of; }

// The type whose record a value of `type` has: behind aliases, and behind names that add a tag alone.
static const NamedType* record_type(const NamedType* type) {
    while (type->type->kind == Kind::reference) type = type->type->target;
    return type;
}

namespace {

struct Uses {
    std::vector<uint32_t> tags;  // of the components and alternatives that refer to the type
    bool untagged = false;       // list element, object set row or the like: needs the type's own tag
};

struct Finder {
    std::unordered_map<const NamedType*, Uses> uses;
    std::unordered_set<const NamedType*> active, done;  // of the walk for recursion
    References out;
};

void collect(Finder& finder, const Type& type);

// A component, an alternative, or anything else that a type is made of.
void collect_part(Finder& finder, const Type* type) {
    if (!type) return;
    if (type->kind != Kind::reference) return collect(finder, *type);
    if (type->tags.empty()) {
        finder.uses[real_type(type->target)].untagged = true;
        return;
    }
    finder.uses[type->target].tags.push_back(type->tags[0].word);
    if (type->target->is_alias) finder.uses[real_type(type->target)].untagged = true;
}

// Counts what the parts of a type refer to; a reference itself is counted by the part that holds it.
void collect(Finder& finder, const Type& type) {
    for (const Component& component : type.components) collect_part(finder, component.type);
    for (const Alternative& alternative : type.alternatives) collect_part(finder, alternative.type);
    collect_part(finder, type.element);
    collect_part(finder, type.contained);
    if (!type.table) return;
    for (const auto& row : type.table->object_set->rows)
        for (const RowEntry& entry : row) collect_part(finder, entry.type);
}

void walk_named(Finder& finder, const NamedType* type);
void walk(Finder& finder, const Type& type);

// A component or alternative. One that leads back to a type around it is where the recursion is cut, unless that
// type is a list: the record of a list holds its elements apart anyway.
void walk_part(Finder& finder, const Type& type) {
    if (type.kind != Kind::reference) return walk(finder, type);
    const NamedType* target = record_type(type.target);
    if (!finder.active.contains(target)) return walk_named(finder, target);
    if (is_list(*target->type)) return;
    finder.out.indirect.insert(&type);
    finder.uses[target].untagged = true;
}

void walk(Finder& finder, const Type& type) {
    for (const Component& component : type.components) walk_part(finder, *component.type);
    for (const Alternative& alternative : type.alternatives) walk_part(finder, *alternative.type);
    if (!type.element) return;
    if (type.element->kind != Kind::reference) return walk(finder, *type.element);
    const NamedType* target = record_type(type.element->target);
    if (!finder.active.contains(target)) walk_named(finder, target);
}

void walk_named(Finder& finder, const NamedType* type) {
    if (!finder.done.insert(type).second) return;
    finder.active.insert(type);
    walk(finder, *type->type);
    finder.active.erase(type);
}

bool is_bounded_simple(const Type& type) {
    bool is_simple = type.kind == Kind::integer || type.kind == Kind::bit_string ||
                     type.kind == Kind::octet_string || type.kind == Kind::char_string;
    return is_simple && !type.from && (type.bounds.lower || type.bounds.upper);
}

void wrap_alternatives(Finder& finder, const Type& type) {
    for (const Alternative& alternative : type.alternatives)
        if (is_bounded_simple(*alternative.type)) finder.out.wrapped.insert(alternative.type);
}

void fold_tags(Finder& finder) {
    for (const auto& [type, uses] : finder.uses) {
        if (uses.tags.empty()) continue;
        uint32_t first = uses.tags.front();
        bool agree =
            std::all_of(uses.tags.begin(), uses.tags.end(), [first](uint32_t tag) { return tag == first; });
        if (type->is_alias || (agree && !uses.untagged)) finder.out.folded[type] = first;
        if (!agree) wrap_alternatives(finder, *type->type);
    }
}

}  // namespace

References find_references(const Schema& schema) {
    Finder finder;
    for (const NamedType* type : schema.types)
        if (!type->is_alias) collect_part(finder, type->type);
    for (const NamedType* type : schema.instances) collect_part(finder, type->type);
    for (const ObjectClass* object_class : schema.classes)
        for (const ClassField& field : object_class->fields) collect_part(finder, field.type);

    for (const NamedType* type : schema.types)
        if (!type->is_alias && !finder.uses.contains(type)) finder.out.roots.push_back(type);
    for (const NamedType* type : finder.out.roots) walk_named(finder, type);
    for (const NamedType* type : schema.types)
        if (!type->is_alias) walk_named(finder, type);
    for (const NamedType* type : schema.instances) walk_named(finder, type);

    if (schema.shipped_forms) fold_tags(finder);
    return finder.out;
}

}  // namespace orlentac
