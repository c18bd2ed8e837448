// SPDX-License-Identifier: Apache-2.0
// Parameterised types (X.683): actual parameters are bound to a scope in which the body is read anew at each use.
#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

constexpr int kMaxDepth = 64;

// Runs a reading of tokens that may fail on their syntax.
template <typename Read>
auto try_parse(Resolver& resolver, Read read) -> decltype(read()) {
    try {
        return read();
    } catch (const SyntaxError& fault) {
        error(resolver.diags, fault.place, "{}", fault.text);
        return nullptr;
    }
}

// Equal for two uses that mean the same: the name if it is just one, else the place where it is written.
std::string actual_key(const Resolver& resolver, TokenRange tokens, const Scope& scope) {
    const Token* first = tokens.first;
    const Token* last = tokens.last;
    if (last - first == 3 && first->text == "{") first++, last--;
    bool word = last - first == 1 &&
                (first->sort == Token::Sort::upper_word || first->sort == Token::Sort::lower_word);
    if (word) {
        AstReference reference;
        reference.name = first->text;
        Meaning meaning = peek_name(resolver, scope, reference);
        if (meaning.binding) return meaning.binding->key;
        return meaning.module ? meaning.module->ast->name + "." + first->text : first->text;
    }
    return first == last ? "" : place_text(first->place) + (scope.key.empty() ? "" : "<" + scope.key + ">");
}

}  // namespace

const Scope* bind_parameters(Resolver& resolver, const Scope& scope, const AstReference& reference,
                             const Meaning& meaning) {
    const AstAssignment& assignment = *meaning.assignment;
    if (assignment.parameters.size() != reference.actuals.size()) {
        error(resolver.diags, reference.place, "'{}' takes {} parameter{}, found {}", assignment.name,
              assignment.parameters.size(), assignment.parameters.size() == 1 ? "" : "s",
              reference.actuals.size());
        return nullptr;
    }
    if (!assignment.has_parameters) return &meaning.module->scope;
    if (resolver.endless) return nullptr;
    if (scope.depth >= kMaxDepth) {
        resolver.endless = true;
        error(resolver.diags, reference.place, "the instances of '{}' never end", assignment.name);
        return nullptr;
    }
    Scope& inner = resolver.scopes.emplace_back();
    inner.module = meaning.module;
    inner.depth = scope.depth + 1;
    for (size_t i = 0; i < assignment.parameters.size(); i++) {
        Binding& binding = resolver.bindings.emplace_back();
        binding.parameter = &assignment.parameters[i];
        binding.tokens = reference.actuals[i];
        binding.scope = &scope;
        binding.inner = &inner;
        binding.key = actual_key(resolver, reference.actuals[i], scope);
        inner.key += (i ? "," : "") + binding.key;
        inner.bindings.push_back(&binding);
    }
    return &inner;
}

// A parameter Type:Set is the type under the values of the set as a constraint.
static AstType* value_set_type(Resolver& resolver, const Binding& binding, Parser& parser) {
    bool upper = binding.parameter->name[0] >= 'A' && binding.parameter->name[0] <= 'Z';
    bool is_set =
        upper && is_symbol(parser, "{") && !is_class(resolver, *binding.inner, *binding.parameter->governor);
    if (!is_set) {
        error(resolver.diags, binding.parameter->place,
              "expected a type, found the parameter '{}', which is none", binding.parameter->name);
        return nullptr;
    }
    return try_parse(resolver, [&]() -> AstType* {
        expect_symbol(parser, "{");
        AstConstraint* set = parse_element_sets(parser);
        expect_symbol(parser, "}");
        AstType& type = resolver.ast.types.emplace_back(*binding.parameter->governor);
        AstConstraint& constraint = resolver.ast.constraints.emplace_back(*set);
        constraint.scope = binding.scope;
        type.constraints.push_back(&constraint);
        return &type;
    });
}

const Scope& type_scope(const Binding& binding) {
    return binding.parameter->governor ? *binding.inner : *binding.scope;
}

AstType* binding_type(Resolver& resolver, Binding& binding) {
    if (binding.type) return binding.type;
    Parser parser = parse_range(resolver.ast, binding.tokens);
    if (binding.parameter->governor) {
        binding.type = value_set_type(resolver, binding, parser);
        return binding.type;
    }
    binding.type = try_parse(resolver, [&] {
        AstType* type = parse_type(parser);
        expect_end(parser, "',' or '}' behind an actual parameter");
        return type;
    });
    return binding.type;
}

AstValue* binding_value(Resolver& resolver, Binding& binding) {
    if (binding.value) return binding.value;
    Parser parser = parse_range(resolver.ast, binding.tokens);
    binding.value = try_parse(resolver, [&] {
        AstValue* value = parse_value(parser);
        expect_end(parser, "',' or '}' behind an actual parameter");
        return value;
    });
    return binding.value;
}

static bool is_structured(Kind kind) {
    return kind == Kind::sequence || kind == Kind::set || kind == Kind::sequence_of || kind == Kind::set_of ||
           kind == Kind::choice || kind == Kind::enumerated;
}

Type* resolve_instance(Resolver& resolver, const AstType& ast, const Scope& scope, const Meaning& meaning) {
    const Scope* inner = bind_parameters(resolver, scope, ast.reference, meaning);
    if (!inner) return new_type(resolver, Kind::null, ast.place);
    const AstType& body = *meaning.assignment->type;
    std::vector<Type*> enclosing;
    std::swap(enclosing, resolver.enclosing);
    Type* type = nullptr;
    if (body.sort != AstType::Sort::builtin || !is_structured(body.kind)) {
        type = resolve_type(resolver, body, *inner);
    } else {
        type = new_type(resolver, Kind::reference, ast.place);
        std::pair key(meaning.assignment, inner->key);
        NamedType*& open = resolver.open_instances[key];
        if (open) {
            type->target = open;  // an instance within itself
        } else {
            NamedType& instance = resolver.schema.named_pool.emplace_back();
            instance.name = meaning.assignment->name;
            instance.module = meaning.module->ast->name;
            instance.about = meaning.assignment->about;
            instance.is_instance = true;
            instance.place = ast.place;
            resolver.schema.instances.push_back(&instance);
            open = type->target = &instance;
            instance.type = resolve_type(resolver, body, *inner);
            resolver.open_instances.erase(key);
        }
    }
    std::swap(enclosing, resolver.enclosing);
    return type;
}

}  // namespace orlentac
