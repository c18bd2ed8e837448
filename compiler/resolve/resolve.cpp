// SPDX-License-Identifier: Apache-2.0
#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

// Named before any is resolved, so that types can refer to later ones and to themselves.
void declare_types(Resolver& resolver) {
    for (const ModuleNames& names : resolver.modules) {
        for (const AstAssignment* assignment : names.ast->assignments) {
            bool type = assignment->sort == AstAssignment::Sort::type &&
                        !is_class(resolver, names.scope, *assignment->type);
            bool value_set = assignment->sort == AstAssignment::Sort::set &&
                             !is_class(resolver, names.scope, *assignment->type);
            if ((!type && !value_set) || assignment->has_parameters) continue;
            NamedType& named = resolver.schema.named_pool.emplace_back();
            named.name = assignment->name;
            named.module = names.ast->name;
            named.about = assignment->about;
            named.place = assignment->place;
            resolver.named[assignment] = &named;
            resolver.schema.types.push_back(&named);
        }
    }
}

// Name Type ::= { 1 | 2 } is Name ::= Type (1 | 2), X.680 clause 16.6.
void make_value_sets_types(Resolver& resolver) {
    for (const ModuleNames& names : resolver.modules) {
        for (AstAssignment* assignment : names.ast->assignments) {
            if (assignment->sort != AstAssignment::Sort::set) continue;
            bool governed_by_parameter = assignment->has_parameters &&
                                         assignment->type->sort == AstType::Sort::reference &&
                                         !peek_name(resolver, names.scope, assignment->type->reference);
            if (governed_by_parameter) continue;
            if (assignment->type->sort == AstType::Sort::reference &&
                !is_class(resolver, names.scope, *assignment->type) &&
                !peek_name(resolver, names.scope, assignment->type->reference)) {
                find_name(resolver, names.scope, assignment->type->reference, "type or class");
                assignment->sort = AstAssignment::Sort::broken;
                continue;
            }
            if (is_class(resolver, names.scope, *assignment->type)) continue;
            Parser parser = parse_range(resolver.ast, assignment->braces);
            try {
                assignment->type->constraints.push_back(parse_element_sets(parser));
                expect_end(parser, "'|', ',' or '}' in a value set");
                assignment->sort = AstAssignment::Sort::type;
            } catch (const SyntaxError& fault) {
                error(resolver.diags, fault.place, "{}", fault.text);
                assignment->sort = AstAssignment::Sort::broken;
            }
        }
    }
}

void check_parameters(Resolver& resolver, const AstAssignment& assignment) {
    if (!assignment.has_parameters) return;
    std::unordered_set<std::string> seen;
    for (const AstParameter& parameter : assignment.parameters) {
        if (!seen.insert(parameter.name).second) {
            error(resolver.diags, parameter.place, "the parameter '{}' is there already", parameter.name);
        }
    }
}

void resolve_named(Resolver& resolver, const AstAssignment& assignment, const Scope& scope) {
    auto found = resolver.named.find(&assignment);
    if (found == resolver.named.end()) return;
    NamedType& named = *found->second;
    const AstType* body = assignment.type;
    const Scope* inner = &scope;
    // An instance of a parameterised type is the type itself, under the new name.
    while (body->sort == AstType::Sort::reference && body->reference.has_actuals &&
           body->constraints.empty()) {
        Meaning meaning = find_name(resolver, *inner, body->reference, "type");
        bool parameterised = meaning.assignment && meaning.assignment->sort == AstAssignment::Sort::type &&
                             meaning.assignment->has_parameters;
        const Scope* bound =
            parameterised ? bind_parameters(resolver, *inner, body->reference, meaning) : nullptr;
        if (!bound) break;
        body = meaning.assignment->type;
        inner = bound;
    }
    named.type = resolve_type(resolver, *body, *inner);
    named.is_alias = named.type->kind == Kind::reference && named.type->tags.empty();
}

void resolve_value_or_set(Resolver& resolver, const AstAssignment& assignment, const ModuleNames& names) {
    if (assignment.has_parameters) return;
    AstReference self;
    self.name = assignment.name;
    self.place = assignment.place;
    const ClassInfo* info = is_class(resolver, names.scope, *assignment.type)
                                ? peek_class(resolver, names.scope, assignment.type->reference)
                                : nullptr;
    if (assignment.sort == AstAssignment::Sort::set && info) {
        find_set(resolver, names.scope, self, *info);
    } else if (assignment.sort == AstAssignment::Sort::value && !info) {
        auto value = resolve_value(resolver, *assignment.value, names.scope, *assignment.type, names.scope);
        if (!value) return;
        Type* type = resolve_type(resolver, *assignment.type, names.scope);
        check_value_later(resolver, type, *value, "the value");
        resolver.schema.values.push_back({assignment.name, type, *value, assignment.place});
    }
}

}  // namespace

void resolve(Resolver& resolver) {
    declare_modules(resolver);
    for (const ModuleNames& names : resolver.modules) {
        if (!names.ast->name.empty() && names.ast->name != kUsefulModule)
            resolver.schema.modules.push_back(names.ast->name);
        for (const AstAssignment* assignment : names.ast->assignments)
            check_parameters(resolver, *assignment);
    }
    check_alias_cycles(resolver);
    declare_classes(resolver);
    make_value_sets_types(resolver);
    declare_types(resolver);
    fill_classes(resolver);
    for (const ModuleNames& names : resolver.modules) {
        for (const AstAssignment* assignment : names.ast->assignments) {
            resolve_named(resolver, *assignment, names.scope);
            if (assignment->sort == AstAssignment::Sort::set ||
                assignment->sort == AstAssignment::Sort::value) {
                resolve_value_or_set(resolver, *assignment, names);
            }
        }
    }
    if (resolver.diags.errors.empty())
        settle_tags(resolver);  // else types are broken, and faults would follow
    resolve_tables(resolver);
    check_finite(resolver);
    for (const auto& check : resolver.later) check();
}

}  // namespace orlentac
