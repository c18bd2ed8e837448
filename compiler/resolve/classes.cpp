// SPDX-License-Identifier: Apache-2.0
// Information object classes (X.681 clause 9).
#include <algorithm>
#include <set>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

constexpr int kMaxAliases = 32;

void declare_fields(Resolver& resolver, ClassInfo& info);
void fill_class(Resolver& resolver, ClassInfo& info);

struct KnownClass {
    const char* name;
    const char* text;
    AstAssignment key;  // no other has its address
};

// X.681 annexes A and B; made when first used.
const ClassInfo* known_class(Resolver& resolver, const std::string& name) {
    static const KnownClass kClasses[] = {
        {"TYPE-IDENTIFIER",
         "{ &id OBJECT IDENTIFIER UNIQUE, &Type } WITH SYNTAX { &Type IDENTIFIED BY &id }",
         {}},
        {"ABSTRACT-SYNTAX",
         "{ &id OBJECT IDENTIFIER UNIQUE, &Type, &property BIT STRING { handles-invalid-encodings (0) } "
         "DEFAULT {} } "
         "WITH SYNTAX { &Type IDENTIFIED BY &id [HAS PROPERTY &property] }",
         {}}};
    for (const KnownClass& known : kClasses) {
        if (name != known.name) continue;
        ClassInfo& info = resolver.classes[&known.key];
        if (info.object_class) return &info;
        resolver.ast.files.push_back(tokenize(nullptr, known.text, resolver.diags));
        const std::vector<Token>& tokens = resolver.ast.files.back();
        Parser parser = parse_range(resolver.ast, {tokens.data(), tokens.data() + tokens.size() - 1});
        info.object_class = &resolver.schema.class_pool.emplace_back();
        info.object_class->name = known.name;
        info.object_class->module = kUsefulModule;
        info.ast = parse_class(parser);
        info.scope = &resolver.modules.front().scope;
        resolver.schema.classes.push_back(info.object_class);
        declare_fields(resolver, info);
        fill_class(resolver, info);
        return &info;
    }
    return nullptr;
}

// An instance of a parameterised class; of a name of its own, if it is not the first.
const ClassInfo* class_instance(Resolver& resolver, const Scope& scope, const AstReference& reference,
                                const Meaning& meaning) {
    const Scope* inner = bind_parameters(resolver, scope, reference, meaning);
    if (!inner) return nullptr;
    auto& instances = resolver.class_instances[meaning.assignment];
    ClassInfo& info = instances[inner->key];
    if (info.object_class) return &info;
    info.object_class = &resolver.schema.class_pool.emplace_back();
    info.object_class->name =
        meaning.assignment->name + (instances.size() > 1 ? "-" + std::to_string(instances.size()) : "");
    info.object_class->module = meaning.module->ast->name;
    info.object_class->place = meaning.assignment->place;
    info.ast = meaning.assignment->object_class;
    info.scope = inner;
    resolver.schema.classes.push_back(info.object_class);
    declare_fields(resolver, info);
    if (resolver.are_classes_declared) fill_class(resolver, info);
    return &info;
}

const ClassInfo* search_class(Resolver& resolver, const Scope& scope, const AstReference& reference,
                              int depth) {
    if (const ClassInfo* known = known_class(resolver, reference.name)) return known;
    Meaning meaning = peek_name(resolver, scope, reference);
    const AstType* alias = nullptr;
    if (meaning.binding && !meaning.binding->parameter->governor) {
        bool upper = meaning.binding->tokens.first->sort == Token::Sort::upper_word;
        if (upper) alias = binding_type(resolver, *meaning.binding);
    } else if (meaning.assignment) {
        auto found = resolver.classes.find(meaning.assignment);
        if (found != resolver.classes.end()) return &found->second;
        if (meaning.assignment->sort == AstAssignment::Sort::object_class && reference.has_actuals)
            return class_instance(resolver, scope, reference, meaning);
        if (meaning.assignment->sort == AstAssignment::Sort::type && !meaning.assignment->has_parameters)
            alias = meaning.assignment->type;
    }
    bool plain =
        alias && alias->sort == AstType::Sort::reference && alias->constraints.empty() && alias->tags.empty();
    if (!plain || depth > kMaxAliases) return nullptr;
    return search_class(resolver, scope_of(meaning), alias->reference, depth + 1);
}

// Fields that a table tells of: types, and values of a fixed type.
bool has_column(Resolver& resolver, const ClassInfo& info, const AstField& field) {
    if (field.sort == AstField::Sort::type) return true;
    return field.sort == AstField::Sort::value && !is_class(resolver, *info.scope, *field.type);
}

void declare_fields(Resolver& resolver, ClassInfo& info) {
    std::set<std::string> names;
    for (const AstField& ast : info.ast->fields) {
        if (!names.insert(ast.name).second) {
            error(resolver.diags, ast.place, "the field '{}' is there already", ast.name);
        }
        bool in_table = has_column(resolver, info, ast);
        info.columns.push_back(in_table ? static_cast<int>(info.object_class->fields.size()) : -1);
        if (!in_table) continue;
        ClassField& field = info.object_class->fields.emplace_back();
        field.name = ast.name;
        field.is_type_field = ast.sort == AstField::Sort::type;
        field.unique = ast.unique;
    }
}

void fill_class(Resolver& resolver, ClassInfo& info) {
    if (info.filled) return;
    info.filled = true;
    for (size_t i = 0; i < info.columns.size(); i++) {
        if (info.columns[i] < 0) continue;
        const AstField& ast = info.ast->fields[i];
        ClassField& field = info.object_class->fields[info.columns[i]];
        if (ast.type) field.type = resolve_type(resolver, *ast.type, *info.scope);
        if (ast.default_value) {
            field.default_value =
                resolve_value(resolver, *ast.default_value, *info.scope, *ast.type, *info.scope);
        }
    }
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
    return type.sort == AstType::Sort::reference && type.constraints.empty() &&
           peek_class(resolver, scope, type.reference);
}

void declare_classes(Resolver& resolver) {
    for (const ModuleNames& names : resolver.modules) {
        for (const AstAssignment* assignment : names.ast->assignments) {
            if (assignment->sort != AstAssignment::Sort::object_class || assignment->has_parameters) continue;
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
    for (const ModuleNames& names : resolver.modules) {
        for (const AstAssignment* assignment : names.ast->assignments) {
            auto found = resolver.classes.find(assignment);
            if (found != resolver.classes.end()) declare_fields(resolver, found->second);
        }
    }
    resolver.are_classes_declared = true;
    for (auto& [assignment, instances] : resolver.class_instances)
        for (auto& [key, info] : instances) fill_class(resolver, info);
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

}  // namespace orlentac
