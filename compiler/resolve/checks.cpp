// SPDX-License-Identifier: Apache-2.0
// Types that have no value: names that mean nothing but each other, and records that contain themselves.
#include <algorithm>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

// The assignment that a plain type name refers to; null for anything else.
Meaning alias_target(const Resolver& resolver, const Meaning& meaning) {
    const AstType* type = meaning.assignment->type;
    if (!type || type->sort != AstType::Sort::reference || type->reference.has_actuals) return {};
    Meaning target = peek_name(resolver, scope_of(meaning), type->reference);
    bool plain = target.assignment && target.assignment->sort == AstAssignment::Sort::type &&
                 !target.assignment->has_parameters;
    return plain ? target : Meaning{};
}

bool is_alias_cycle(const Resolver& resolver, const Meaning& start) {
    std::unordered_set<const AstAssignment*> seen;
    for (Meaning at = alias_target(resolver, start); at; at = alias_target(resolver, at)) {
        if (at.assignment == start.assignment) return true;
        if (!seen.insert(at.assignment).second) return false;
    }
    return false;
}

using FiniteSet = std::unordered_set<const NamedType*>;

bool has_value(const FiniteSet& finite, const Type& type) {
    auto present = [&](const Component& component) {
        return component.presence != Presence::mandatory || component.addition ||
               has_value(finite, *component.type);
    };
    auto possible = [&](const Alternative& alternative) { return has_value(finite, *alternative.type); };
    switch (type.kind) {
        case Kind::reference: return finite.contains(type.target);
        case Kind::sequence:
        case Kind::set: return std::all_of(type.components.begin(), type.components.end(), present);
        case Kind::choice:
            return type.alternatives.empty() ||
                   std::any_of(type.alternatives.begin(), type.alternatives.end(), possible);
        case Kind::sequence_of:
        case Kind::set_of:
            return !type.bounds.lower || *type.bounds.lower == 0 || has_value(finite, *type.element);
        default: return true;
    }
}

}  // namespace

void check_alias_cycles(Resolver& resolver) {
    std::vector<AstAssignment*> cyclic;
    for (const ModuleNames& names : resolver.modules) {
        for (AstAssignment* assignment : names.ast->assignments) {
            if (assignment->sort != AstAssignment::Sort::type || assignment->has_parameters) continue;
            if (is_alias_cycle(resolver, {assignment, &names})) cyclic.push_back(assignment);
        }
    }
    for (AstAssignment* assignment : cyclic) {
        error(resolver.diags, assignment->place, "'{}' is defined as nothing but itself", assignment->name);
        assignment->sort = AstAssignment::Sort::broken;
    }
}

void check_finite(Resolver& resolver) {
    FiniteSet finite;
    std::vector<const NamedType*> open;
    for (const NamedType* type : resolver.schema.types) open.push_back(type);
    for (const NamedType* type : resolver.schema.instances) open.push_back(type);
    for (size_t before = 0; before != open.size();) {
        before = open.size();
        std::erase_if(open, [&](const NamedType* type) {
            if (!has_value(finite, *type->type)) return false;
            finite.insert(type);
            return true;
        });
    }
    for (const NamedType* type : open) {
        error(resolver.diags, type->place, "no value of '{}' ends, as it has to contain another one",
              type->name);
    }
}

}  // namespace orlentac
