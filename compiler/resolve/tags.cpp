// SPDX-License-Identifier: Apache-2.0
// Tags: which are explicit, in which order they put alternatives and components, and where two are the same (X.680
// clauses 8.6, 25, 27, 29, 31).
#include "compiler/model/tags.hpp"

#include <algorithm>
#include <set>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

constexpr uint32_t kTagNumbers = 1 << 19;

bool is_dummy(const Resolver& resolver, const AstType& ast, const Scope& scope) {
    return ast.sort == AstType::Sort::reference && peek_name(resolver, scope, ast.reference).binding;
}

std::optional<Tag> make_tag(Resolver& resolver, const AstTag& ast, const Scope& scope) {
    std::optional<Number> number = resolve_number(resolver, *ast.number, scope);
    if (!number) return std::nullopt;
    if (*number < 0 || *number >= kTagNumbers) {
        error(resolver.diags, ast.number->place, "expected a tag number from 0 to {}, found {}",
              kTagNumbers - 1, number->str());
        return std::nullopt;
    }
    const std::string& by_default = scope.module->ast->tags;
    Tag tag;
    tag.word = tag_word(ast.tag_class, static_cast<uint32_t>(*number));
    tag.is_explicit =
        ast.mode == AstTag::Mode::is_explicit ||
        (ast.mode == AstTag::Mode::by_default && (by_default.empty() || by_default == "EXPLICIT"));
    tag.place = ast.place;
    return tag;
}

// ---- when all types are known -----------------------------------------------------------------------------

// An implicit tag takes the place of the next one, X.680 clause 31.2.7: if there is none, it is explicit.
void settle(const Schema& schema, Type& type) {
    if (type.tags.empty()) return;
    Tag& innermost = type.tags.back();
    bool on_type = type.kind == Kind::reference ? !has_tag(*type.target->type)
                                                : type.kind == Kind::choice || type.kind == Kind::open_type;
    if (on_type) innermost.is_explicit = true;
    for (Tag& tag : type.tags) tag.is_explicit |= tag.on_parameter && !schema.shipped_forms;
    for (size_t i = type.tags.size() - 1; i-- > 0;) {
        if (type.tags[i].is_explicit) continue;
        type.tags[i].is_explicit = type.tags[i + 1].is_explicit;
        type.tags.erase(type.tags.begin() + i + 1);
    }
}

uint32_t least_tag(const Type& type) {
    std::vector<uint32_t> tags = first_tags(type);
    return tags.empty() ? UINT32_MAX : *std::min_element(tags.begin(), tags.end());
}

template <typename Part>
void sort_root(std::vector<Part>& parts) {
    auto end = std::find_if(parts.begin(), parts.end(), [](const Part& part) { return part.addition; });
    std::stable_sort(parts.begin(), end,
                     [](const Part& a, const Part& b) { return least_tag(*a.type) < least_tag(*b.type); });
}

template <typename Part>
void check_tag(Resolver& resolver, std::map<uint32_t, const Part*>& seen, const Part& part) {
    for (uint32_t tag : first_tags(*part.type)) {
        auto [first, fresh] = seen.try_emplace(tag, &part);
        if (fresh || first->second == &part) continue;
        return error(resolver.diags, part.place, "'{}' has the tag {} of '{}'", part.name, tag_text(tag),
                     first->second->name);
    }
}

template <typename Part>
void check_all_differ(Resolver& resolver, const std::vector<Part>& parts) {
    std::map<uint32_t, const Part*> seen;
    for (const Part& part : parts) check_tag(resolver, seen, part);
}

// X.680 clause 25.6: those that may be absent differ from each other and from the next one that may not.
void check_runs_differ(Resolver& resolver, const std::vector<Component>& components) {
    std::map<uint32_t, const Component*> seen;
    for (const Component& component : components) {
        check_tag(resolver, seen, component);
        if (component.presence == Presence::mandatory && !component.addition) seen.clear();
    }
}

}  // namespace

void add_tags(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope) {
    std::vector<Tag> tags;
    for (const AstTag& tag : ast.tags)
        if (auto made = make_tag(resolver, tag, scope)) tags.push_back(*made);
    if (tags.empty()) return;
    tags.back().on_parameter = is_dummy(resolver, ast, scope);
    type.tags.insert(type.tags.begin(), tags.begin(), tags.end());
}

void add_automatic_tag(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope,
                       size_t number) {
    Tag tag;
    tag.word = context_tag(static_cast<uint32_t>(number));
    tag.is_automatic = true;
    tag.on_parameter = ast.tags.empty() && is_dummy(resolver, ast, scope);
    tag.place = type.place;
    type.tags.insert(type.tags.begin(), tag);
}

void settle_tags(Resolver& resolver) {
    for (Type& type : resolver.schema.type_pool) settle(resolver.schema, type);
    for (Type& type : resolver.schema.type_pool) {
        switch (type.kind) {
            case Kind::choice:
                check_all_differ(resolver, type.alternatives);
                sort_root(type.alternatives);
                break;
            case Kind::set:
                check_all_differ(resolver, type.components);
                sort_root(type.components);
                break;
            case Kind::sequence: check_runs_differ(resolver, type.components); break;
            default: break;
        }
    }
}

}  // namespace orlentac
