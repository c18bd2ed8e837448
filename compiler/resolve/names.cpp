// SPDX-License-Identifier: Apache-2.0
// Names: which module defines what, imports it, or only seems to.
#include <algorithm>
#include <numeric>
#include <utility>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

void declare_assignments(Resolver& resolver, ModuleNames& names) {
    for (const AstAssignment* assignment : names.ast->assignments) {
        if (assignment->name.empty()) continue;
        auto [known, fresh] = names.own.try_emplace(assignment->name, assignment);
        if (!fresh) {
            error(resolver.diags, assignment->place, "'{}' is defined already, at {}", assignment->name,
                  place_text(known->second->place, false));
            continue;
        }
        resolver.region_names[assignment->name].push_back(&names);
    }
}

void declare_module(Resolver& resolver, const AstModule& module) {
    ModuleNames& names = resolver.modules.emplace_back();
    names.ast = &module;
    names.scope.module = &names;
    if (!resolver.module_names.try_emplace(module.name, &names).second) {
        error(resolver.diags, module.place, "the module '{}' is defined already", module.name);
    }
    declare_assignments(resolver, names);
}

bool exports(const AstModule& module, const std::string& name) {
    auto same = [&](const AstSymbol& symbol) { return symbol.name == name; };
    return module.exports_all || std::any_of(module.exports.begin(), module.exports.end(), same);
}

void check_exports(Resolver& resolver, const ModuleNames& names) {
    auto imports = [&](const std::string& name) {
        for (const AstImport& import : names.ast->imports)
            for (const AstSymbol& symbol : import.symbols)
                if (symbol.name == name) return true;
        return false;
    };
    for (const AstSymbol& symbol : names.ast->exports) {
        if (!names.own.contains(symbol.name) && !imports(symbol.name)) {
            note(resolver.diags, symbol.place, "'{}' is exported, but not defined", symbol.name);
        }
    }
}

// Where `name` comes from, through modules that import it themselves.
Meaning find_exported(const Resolver& resolver, const std::string& module, const std::string& name,
                      int depth = 0) {
    auto names = resolver.module_names.find(module);
    if (names == resolver.module_names.end() || depth > 32) return {};
    auto own = names->second->own.find(name);
    if (own != names->second->own.end()) return {own->second, names->second};
    for (const AstImport& import : names->second->ast->imports) {
        auto same = [&](const AstSymbol& symbol) { return symbol.name == name; };
        if (std::any_of(import.symbols.begin(), import.symbols.end(), same)) {
            return find_exported(resolver, import.module.name, name, depth + 1);
        }
    }
    return {};
}

// "module 'A'", "modules 'A' and 'B'": those that define the name; empty if none does.
std::string definers(const Resolver& resolver, const std::string& name) {
    auto known = resolver.region_names.find(name);
    if (known == resolver.region_names.end()) return "";
    const std::vector<const ModuleNames*>& modules = known->second;
    std::string text = modules.size() == 1 ? "module " : "modules ";
    for (size_t i = 0; i < modules.size(); i++) {
        if (i > 0) text += i + 1 < modules.size() ? ", " : " and ";
        text += "'" + modules[i]->ast->name + "'";
    }
    return text;
}

std::string defined_elsewhere(const Resolver& resolver, const std::string& name) {
    auto known = resolver.region_names.find(name);
    if (known == resolver.region_names.end()) return "";
    return fmt::format("; {} {}", definers(resolver, name), known->second.size() == 1 ? "does" : "do");
}

// Published modules import what is not there, or not exported: no harm is done until something uses it.
void import_symbol(Resolver& resolver, ModuleNames& names, const AstImport& import, const AstSymbol& symbol) {
    auto from = resolver.module_names.find(import.module.name);
    Meaning meaning = find_exported(resolver, import.module.name, symbol.name);
    if (from == resolver.module_names.end()) {
        names.missing[symbol.name] = {};  // the module is told of
    } else if (!meaning) {
        names.missing[symbol.name] = {
            symbol.place, fmt::format("module '{}' does not define '{}'{}", import.module.name, symbol.name,
                                      defined_elsewhere(resolver, symbol.name))};
        note(resolver.diags, symbol.place, "{}", names.missing[symbol.name].text);
    } else if (!exports(*from->second->ast, symbol.name)) {
        note(resolver.diags, symbol.place, "module '{}' does not export '{}'", import.module.name,
             symbol.name);
    }
    if (names.own.contains(symbol.name)) {
        error(resolver.diags, symbol.place, "'{}' is both imported and defined", symbol.name);
        return;
    }
    if (!meaning || names.missing.contains(symbol.name)) return;
    auto [known, fresh] = names.imported.try_emplace(symbol.name, meaning);
    if (!fresh && known->second.assignment != meaning.assignment) {
        std::string first = known->second.module->ast->name, second = meaning.module->ast->name;
        names.missing[symbol.name] = {
            symbol.place, fmt::format("'{0}' is imported from two modules: write {1}.{0} or {2}.{0}",
                                      symbol.name, first, second)};
        names.imported.erase(known);
    }
}

void resolve_imports(Resolver& resolver, ModuleNames& names) {
    for (const AstImport& import : names.ast->imports) {
        if (!resolver.module_names.contains(import.module.name)) {
            error(resolver.diags, import.module.place, "unknown module '{}'", import.module.name);
        }
        for (const AstSymbol& symbol : import.symbols) import_symbol(resolver, names, import, symbol);
    }
}

// Levenshtein's distance, without regard to case.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (size_t i = 0; i < a.size(); i++) {
        size_t diagonal = i;
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); j++) {
            size_t cost = std::tolower(a[i]) == std::tolower(b[j]) ? 0 : 1;
            size_t next = std::min({row[j] + 1, row[j + 1] + 1, diagonal + cost});
            diagonal = row[j + 1];
            row[j + 1] = next;
        }
    }
    return row.back();
}

using Candidate = std::pair<size_t, std::string>;  // distance, text

// "did you mean 'Latitude' or 'Altitude' of module 'B'?"; empty if nothing looks much the same.
std::string nearest_names(const Resolver& resolver, const ModuleNames& module, const std::string& name,
                          bool is_type) {
    constexpr size_t kMost = 3;
    size_t limit = name.size() < 4 ? 1 : name.size() < 8 ? 2 : 3;
    std::vector<Candidate> candidates;
    auto consider = [&](std::string_view other, std::string text) {
        size_t gap = std::max(other.size(), name.size()) - std::min(other.size(), name.size());
        if (gap >= limit) return;
        size_t found = distance(name, other);
        if (found < limit) candidates.emplace_back(found, std::move(text));
    };
    for (const auto& [other, modules] : resolver.region_names) {
        if (std::isupper(other[0]) != std::isupper(name[0])) continue;
        bool here = module.own.contains(other) || module.imported.contains(other);
        consider(other,
                 here ? "'" + other + "'" : fmt::format("'{}' of {}", other, definers(resolver, other)));
    }
    if (is_type)
        for (std::string_view word : reserved_words()) consider(word, std::string(word));
    std::sort(candidates.begin(), candidates.end());
    std::string text;
    for (size_t i = 0; i < std::min(candidates.size(), kMost); i++)
        text += (i == 0 ? "" : " or ") + candidates[i].second;
    return text.empty() ? "" : fmt::format("; did you mean {}?", text);
}

// What may have been meant: a name not imported, or one that looks much the same.
std::string hint(const Resolver& resolver, const ModuleNames& module, const std::string& name,
                 std::string_view what) {
    auto known = resolver.region_names.find(name);
    if (known == resolver.region_names.end()) return nearest_names(resolver, module, name, what == "type");
    return fmt::format("; {} {} it, but it is not imported", definers(resolver, name),
                       known->second.size() == 1 ? "defines" : "define");
}

enum class Search { found, broken, missing };

Search search(const Resolver& resolver, const Scope& scope, const AstReference& reference, Meaning& meaning) {
    if (!reference.module.empty()) {
        meaning = find_exported(resolver, reference.module, reference.name);
        return meaning ? Search::found : Search::missing;
    }
    for (Binding* binding : scope.bindings) {
        if (binding->parameter->name != reference.name) continue;
        meaning = {nullptr, nullptr, binding};
        return Search::found;
    }
    auto own = scope.module->own.find(reference.name);
    if (own != scope.module->own.end()) {
        meaning = {own->second, scope.module};
        return Search::found;
    }
    auto imported = scope.module->imported.find(reference.name);
    if (imported != scope.module->imported.end()) {
        meaning = imported->second;
        return Search::found;
    }
    return scope.module->missing.contains(reference.name) ? Search::broken : Search::missing;
}

}  // namespace

void declare_modules(Resolver& resolver) {
    for (const AstModule& module : resolver.ast.modules) declare_module(resolver, module);
    for (ModuleNames& names : resolver.modules) {
        check_exports(resolver, names);
        resolve_imports(resolver, names);
    }
}

Meaning peek_name(const Resolver& resolver, const Scope& scope, const AstReference& reference) {
    Meaning meaning;
    return search(resolver, scope, reference, meaning) == Search::found ? meaning : Meaning{};
}

// Once for each name in a module: one mistake should not look like many.
static bool tell_unknown(Resolver& resolver, const Scope& scope, const AstReference& reference) {
    return resolver.unknown.emplace(scope.module, reference.module + "." + reference.name).second;
}

Meaning find_name(Resolver& resolver, const Scope& scope, const AstReference& reference,
                  std::string_view what) {
    Meaning meaning;
    Search result = search(resolver, scope, reference, meaning);
    if (result == Search::broken) {
        const Diagnostic& vain = scope.module->missing.at(reference.name);
        if (!vain.text.empty()) add_error(resolver.diags, vain.place, vain.text);
    } else if (result == Search::missing && tell_unknown(resolver, scope, reference)) {
        if (!reference.module.empty()) {
            bool known = resolver.module_names.contains(reference.module);
            error(resolver.diags, reference.place, "unknown {} '{}.{}'{}", what, reference.module,
                  reference.name, known ? "" : ": there is no such module");
        } else {
            error(resolver.diags, reference.place, "unknown {} '{}'{}", what, reference.name,
                  hint(resolver, *scope.module, reference.name, what));
        }
    }
    if (meaning.assignment && meaning.assignment->sort == AstAssignment::Sort::broken) return {};
    return meaning;
}

const Scope& scope_of(const Meaning& meaning) {
    return meaning.binding ? *meaning.binding->scope : meaning.module->scope;
}

}  // namespace orlentac
