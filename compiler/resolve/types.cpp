// SPDX-License-Identifier: Apache-2.0
// Type expressions: references stay references, unless a constraint or a tag makes a type of its own of them.
#include <algorithm>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

constexpr int kMaxSteps = 200;  // of references after one another

// One step along a reference, a parameter, a selection or a fixed-type field; empty, and told, if it leads nowhere.
Base next_base(Resolver& resolver, const Base& base) {
    const AstType& type = *base.type;
    if (type.sort == AstType::Sort::selection) {
        if (!resolver.busy.insert(&type).second) {
            error(resolver.diags, type.place, "the type refers to nothing but itself");
            return {};
        }
        Base choice = base_of(resolver, *type.inner, *base.scope);
        resolver.busy.erase(&type);
        if (!choice) return {};
        if (base_kind(choice) != Kind::choice) {
            error(resolver.diags, type.inner->place, "expected a CHOICE behind '<', found {}",
                  kind_name(base_kind(choice)));
            return {};
        }
        for (const AstComponent& alternative : choice.type->components) {
            if (alternative.name == type.alternative) return {alternative.type, choice.scope};
        }
        error(resolver.diags, type.place, "the CHOICE has no alternative '{}'", type.alternative);
        return {};
    }
    if (type.sort == AstType::Sort::class_field) {
        FieldTarget target = find_field_target(resolver, type, *base.scope);
        if (!target) return {};
        const AstField& field = target.field();
        bool given = field.sort == AstField::Sort::type && target.object;
        if (given && target.object->settings[target.index].present) {
            const Setting& setting = target.object->settings[target.index];
            return {setting.type, setting.scope};
        }
        bool is_open = field.sort == AstField::Sort::type || field.sort == AstField::Sort::variable_value ||
                       field.sort == AstField::Sort::variable_set;
        if (is_open) return {&type, base.scope, true};
        return {type_of_values(resolver, type, *base.scope, target), target.info->scope};
    }
    Meaning meaning = find_name(resolver, *base.scope, type.reference, "type");
    if (!meaning) return {};
    if (meaning.binding) {
        AstType* actual = binding_type(resolver, *meaning.binding);
        return actual ? Base{actual, &type_scope(*meaning.binding)} : Base{};
    }
    bool is_type = meaning.assignment->sort == AstAssignment::Sort::type &&
                   (meaning.assignment->has_parameters || resolver.named.contains(meaning.assignment));
    if (!is_type) {
        error(resolver.diags, type.place, "expected a type, found '{}', which is none", type.reference.name);
        return {};
    }
    const Scope* scope = bind_parameters(resolver, *base.scope, type.reference, meaning);
    return scope ? Base{meaning.assignment->type, scope} : Base{};
}

bool constrains(const AstType& type, Kind kind) {
    return std::any_of(type.constraints.begin(), type.constraints.end(),
                       [&](const AstConstraint* constraint) { return leaves_trace(*constraint, kind); });
}

void apply_constraints(Resolver& resolver, Type& type, const AstType& ast, const Base& base,
                       const Scope& scope) {
    for (const AstConstraint* constraint : ast.constraints)
        apply_constraint(resolver, type, *constraint, base, scope);
}

Type* builtin_type(Resolver& resolver, const AstType& ast, const Scope& scope) {
    Type* type = new_type(resolver, ast.kind, ast.place);
    type->string_kind = ast.string_kind;
    type->universal_tag = ast.universal_tag;
    type->extensible = ast.extensible;
    switch (ast.kind) {
        case Kind::sequence:
        case Kind::set: fill_components(resolver, *type, ast, scope); break;
        case Kind::choice: fill_alternatives(resolver, *type, ast, scope); break;
        case Kind::enumerated: fill_items(resolver, *type, ast, scope); break;
        case Kind::integer:
        case Kind::bit_string: fill_named_numbers(resolver, *type, ast, scope); break;
        case Kind::char_string: type->alphabet = full_alphabet(ast.string_kind); break;
        case Kind::sequence_of:
        case Kind::set_of:
            type->element = resolve_type(resolver, *ast.inner, scope);
            type->element_name = ast.element_name;
            break;
        default: break;
    }
    return type;
}

// A reference to an assignment without parameters.
Type* named_reference(Resolver& resolver, const AstType& ast, const Meaning& meaning) {
    Type* type = new_type(resolver, Kind::reference, ast.place);
    type->target = resolver.named.at(meaning.assignment);
    return type;
}

// Special numbers have to be numbers of the type, unless an extension may bring them.
void set_unit(Resolver& resolver, Type& type, const Unit& unit) {
    if (type.kind != Kind::integer && type.kind != Kind::real)
        return error(resolver.diags, unit.place, "a unit is of an INTEGER or REAL, not of {}",
                     kind_name(type.kind));
    for (const SpecialNumbers& special : unit.specials) {
        bool is_below = type.bounds.lower && special.first < *type.bounds.lower;
        bool is_above = type.bounds.upper && special.last > *type.bounds.upper;
        if ((is_below || is_above) && !type.bounds.extensible)
            error(resolver.diags, special.place, "the number is none of the type's");
    }
    type.unit = &resolver.schema.unit_pool.emplace_back(unit);
}

// What stands at the end of a reference, under the constraints that it has there.
Type* copy_of_target(Resolver& resolver, const AstType& ast, const Scope& scope) {
    Base next = next_base(resolver, {&ast, &scope});
    if (!next) return new_type(resolver, Kind::null, ast.place);
    if (!resolver.copying.emplace(&ast, &scope).second) {
        error(resolver.diags, ast.place, "a type cannot contain itself under another constraint");
        return new_type(resolver, base_kind(base_of(resolver, ast, scope)), ast.place);
    }
    std::vector<Type*> enclosing;
    std::swap(enclosing, resolver.enclosing);
    Type* type = resolve_in_place(resolver, *next.type, *next.scope);
    std::swap(enclosing, resolver.enclosing);
    resolver.copying.erase({&ast, &scope});
    type->place = ast.place;
    if (ast.sort == AstType::Sort::reference) {
        Meaning meaning = peek_name(resolver, scope, ast.reference);
        auto named = resolver.named.find(meaning.assignment);
        if (named != resolver.named.end()) type->from = named->second;
    }
    return type;
}

Type* resolve_plain_reference(Resolver& resolver, const AstType& ast, const Scope& scope) {
    Meaning meaning = find_name(resolver, scope, ast.reference, "type");
    if (resolver.named.contains(meaning.assignment)) {
        bind_parameters(resolver, scope, ast.reference, meaning);  // for the error alone
        return named_reference(resolver, ast, meaning);
    }
    if (meaning.assignment && meaning.assignment->sort == AstAssignment::Sort::type &&
        meaning.assignment->has_parameters) {
        return resolve_instance(resolver, ast, scope, meaning);
    }
    Base next = next_base(resolver, {&ast, &scope});
    return next ? resolve_type(resolver, *next.type, *next.scope) : new_type(resolver, Kind::null, ast.place);
}

}  // namespace

Type* new_type(Resolver& resolver, Kind kind, Place place) {
    if (resolver.schema.type_pool.size() >= resolver.most_types) throw TooLarge{place};
    Type& type = resolver.schema.type_pool.emplace_back();
    type.kind = kind;
    type.place = place;
    return &type;
}

Base base_of(Resolver& resolver, const AstType& type, const Scope& scope) {
    Base base{&type, &scope};
    for (int steps = 0; base; steps++) {
        if (base.is_open || base.type->sort == AstType::Sort::builtin) return base;
        if (steps > kMaxSteps) {
            error(resolver.diags, type.place, "the type refers to nothing but itself");
            return {};
        }
        base = next_base(resolver, base);
    }
    return base;
}

Kind base_kind(const Base& base) { return base.is_open ? Kind::open_type : base.type->kind; }

const Type& behind_references(const Type& type) {
    const Type* behind = &type;
    while (behind->kind == Kind::reference && behind->target->type) behind = behind->target->type;
    return *behind;
}

Type* resolve_in_place(Resolver& resolver, const AstType& ast, const Scope& scope) {
    Base base = base_of(resolver, ast, scope);
    if (!base) return new_type(resolver, Kind::null, ast.place);
    Type* type = nullptr;
    bool is_open = base.is_open && base.type == &ast;
    if (is_open) {
        type = resolve_class_field(resolver, ast, scope);
    } else if (ast.sort == AstType::Sort::builtin) {
        type = builtin_type(resolver, ast, scope);
    } else {
        type = copy_of_target(resolver, ast, scope);
    }
    if (!is_open) apply_constraints(resolver, *type, ast, base, scope);
    if (ast.unit) set_unit(resolver, *type, *ast.unit);
    add_tags(resolver, *type, ast, scope);
    return type;
}

// What a reference, a parameter, a selection or a field means, without the tags before it.
static Type* resolve_untagged(Resolver& resolver, const AstType& ast, const Scope& scope) {
    if (ast.sort == AstType::Sort::class_field) return resolve_class_field(resolver, ast, scope);
    if (ast.sort == AstType::Sort::reference) return resolve_plain_reference(resolver, ast, scope);
    Base next = next_base(resolver, {&ast, &scope});
    return next ? resolve_type(resolver, *next.type, *next.scope) : new_type(resolver, Kind::null, ast.place);
}

// A type that is no more than another name has no unit of its own.
static void refuse_unit(Resolver& resolver, const AstType& ast) {
    if (ast.unit)
        error(resolver.diags, ast.unit->place,
              "a unit stands where the INTEGER or REAL is defined, not at its name");
}

Type* resolve_type(Resolver& resolver, const AstType& ast, const Scope& scope) {
    if (ast.sort == AstType::Sort::builtin) return resolve_in_place(resolver, ast, scope);
    if (ast.sort != AstType::Sort::class_field && !ast.constraints.empty()) {
        Base base = base_of(resolver, ast, scope);
        if (!base) return new_type(resolver, Kind::null, ast.place);
        if (constrains(ast, base_kind(base))) return resolve_in_place(resolver, ast, scope);
        // The constraints have no effect, but may be wrong all the same.
        Type unconstrained;
        unconstrained.kind = base_kind(base);
        apply_constraints(resolver, unconstrained, ast, base, scope);
    }
    refuse_unit(resolver, ast);
    Type* type = resolve_untagged(resolver, ast, scope);
    add_tags(resolver, *type, ast, scope);
    return type;
}

}  // namespace orlentac
