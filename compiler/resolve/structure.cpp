// SPDX-License-Identifier: Apache-2.0
// Components, alternatives, items and named numbers.
#include <algorithm>
#include <set>
#include <unordered_map>

#include "compiler/resolve/resolve.hpp"

namespace orlentac {

namespace {

// A component with the scope of its type, which differs if COMPONENTS OF brings it.
struct Member {
    const AstComponent* ast = nullptr;
    const Scope* scope = nullptr;
    bool copied = false;
    Place place;
};

void gather_members(Resolver& resolver, const AstType& ast, const Scope& scope, std::vector<Member>& members);

// X.680 clause 25.5: the components of the other type's root, without its marker and additions.
void gather_components_of(Resolver& resolver, Kind kind, const AstComponent& entry, const Scope& scope,
                          std::vector<Member>& members) {
    Base base = base_of(resolver, *entry.type, scope);
    if (!base) return;
    if (base_kind(base) != kind) {
        return error(resolver.diags, entry.type->place, "expected a {} behind COMPONENTS OF, found {}",
                     kind_name(kind), kind_name(base_kind(base)));
    }
    std::vector<Member> copied;
    gather_members(resolver, *base.type, *base.scope, copied);
    if (members.size() + copied.size() > resolver.most_types) throw TooLarge{entry.place};
    for (Member& member : copied) {
        if (member.ast->addition) continue;
        members.push_back({member.ast, member.scope, true, entry.place});
    }
}

void gather_members(Resolver& resolver, const AstType& ast, const Scope& scope,
                    std::vector<Member>& members) {
    if (!resolver.busy.insert(&ast).second) {
        return error(resolver.diags, ast.place,
                     "the components of this type are its own, through COMPONENTS OF");
    }
    for (const AstComponent& component : ast.components) {
        if (component.components_of) {
            gather_components_of(resolver, ast.kind, component, scope, members);
        } else {
            members.push_back({&component, &scope, false, component.place});
        }
    }
    resolver.busy.erase(&ast);
}

// X.680 clauses 25.3 and 29.2: a list gets its tags automatically if none is written in it.
bool tags_itself(const AstType& ast, const Scope& scope) {
    auto tagged = [](const AstComponent& component) {
        return !component.components_of && !component.type->tags.empty();
    };
    return scope.module->ast->tags == "AUTOMATIC" &&
           std::none_of(ast.components.begin(), ast.components.end(), tagged);
}

// Root first, then additions: also the order in which automatic tags are numbered.
std::vector<Member> ordered_members(Resolver& resolver, const AstType& ast, const Scope& scope) {
    std::vector<Member> members;
    gather_members(resolver, ast, scope, members);
    std::stable_partition(members.begin(), members.end(), [](const Member& m) { return !m.ast->addition; });
    return members;
}

Type* member_type(Resolver& resolver, const Member& member, bool automatic, size_t number) {
    Type* type = resolve_type(resolver, *member.ast->type, *member.scope);
    if (automatic) add_automatic_tag(resolver, *type, *member.ast->type, *member.scope, number);
    return type;
}

// X.690 clause 8.9.2 has the order of the text, where tables have the additions last. A SET has no order.
void note_order(Resolver& resolver, const AstType& ast) {
    auto addition = std::find_if(ast.components.begin(), ast.components.end(),
                                 [](const AstComponent& component) { return component.addition; });
    auto behind = std::find_if(addition, ast.components.end(),
                               [](const AstComponent& component) { return !component.addition; });
    if (ast.kind != Kind::sequence || behind == ast.components.end()) return;
    note(resolver.diags, behind->place,
         "BER and DER send what is behind the second extension marker before the additions (X.690 clause "
         "8.9.2)");
}

template <typename Part>
void check_names(Resolver& resolver, const std::vector<Part>& parts, std::string_view what) {
    std::unordered_map<std::string, Place> seen;
    for (const Part& part : parts) {
        auto [first, fresh] = seen.try_emplace(part.name, part.place);
        if (fresh) continue;
        error(resolver.diags, part.place, "the {} '{}' is there already, at {}", what, part.name,
              place_text(first->second, false));
    }
}

Component make_component(Resolver& resolver, const Member& member, bool automatic, size_t number) {
    Component component;
    component.name = member.ast->name;
    component.presence = member.ast->presence;
    component.addition = member.ast->addition;
    component.place = member.place;
    component.type = member_type(resolver, member, automatic, number);
    if (!member.ast->default_value) return component;
    component.default_text = value_text(*member.ast->default_value);
    component.default_value =
        resolve_value(resolver, *member.ast->default_value, *member.scope, *member.ast->type, *member.scope);
    if (component.default_value) {
        check_value_later(resolver, component.type, *component.default_value, "the default");
    }
    return component;
}

void mark_groups(Type& type, const std::vector<Member>& members) {
    for (size_t i = 0; i < members.size(); i++) {
        int group = members[i].ast->group;
        if (group == 0) continue;
        type.components[i].opens_group = i == 0 || members[i - 1].ast->group != group;
        type.components[i].closes_group = i + 1 == members.size() || members[i + 1].ast->group != group;
    }
}

// X.680 clause 20.4: root items without a number take the smallest ones that no root item has; clause 20.5: an
// addition takes the next one above all additions before it that the root does not have.
std::vector<std::optional<Number>> item_numbers(Resolver& resolver, const std::vector<const AstItem*>& items,
                                                const Scope& scope) {
    std::vector<std::optional<Number>> numbers;
    std::set<Number> root;
    for (const AstItem* item : items) {
        numbers.push_back(item->value ? resolve_number(resolver, *item->value, scope) : std::nullopt);
        if (numbers.back() && !item->addition) root.insert(*numbers.back());
    }
    Number next = 0;
    std::set<Number> given = root;
    bool additions = false;
    for (size_t i = 0; i < items.size(); i++) {
        if (items[i]->addition && !additions) {
            additions = true;
            next = 0;
        }
        if (items[i]->value) {
            if (additions && numbers[i] && *numbers[i] >= next) next = *numbers[i] + 1;
            continue;
        }
        while (given.contains(next)) next++;
        numbers[i] = next;
        given.insert(next++);
    }
    return numbers;
}

}  // namespace

void fill_components(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope) {
    std::vector<Member> members = ordered_members(resolver, ast, scope);
    bool automatic = tags_itself(ast, scope);
    note_order(resolver, ast);
    resolver.enclosing.push_back(&type);
    for (size_t i = 0; i < members.size(); i++)
        type.components.push_back(make_component(resolver, members[i], automatic, i));
    resolver.enclosing.pop_back();
    mark_groups(type, members);
    check_names(resolver, type.components, "component");
}

void fill_alternatives(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope) {
    std::vector<Member> members = ordered_members(resolver, ast, scope);
    bool automatic = tags_itself(ast, scope);
    resolver.enclosing.push_back(&type);
    for (size_t i = 0; i < members.size(); i++) {
        Alternative alternative;
        alternative.name = members[i].ast->name;
        alternative.addition = members[i].ast->addition;
        alternative.place = members[i].place;
        alternative.type = member_type(resolver, members[i], automatic, i);
        type.alternatives.push_back(std::move(alternative));
    }
    resolver.enclosing.pop_back();
    check_names(resolver, type.alternatives, "alternative");
    if (type.alternatives.empty() || type.alternatives[0].addition) {
        error(resolver.diags, ast.place, "expected a CHOICE with an alternative before the extension marker");
    }
}

// X.680 clause 20.5 and X.691 clause 14.1: root items count by their numbers, and additions ascend.
std::vector<NumberedItem> numbered_items(Resolver& resolver, const AstType& enumerated, const Scope& scope) {
    std::vector<const AstItem*> items;
    for (const AstItem& item : enumerated.items) items.push_back(&item);
    auto root_end = std::stable_partition(items.begin(), items.end(),
                                          [](const AstItem* item) { return !item->addition; });
    std::vector<std::optional<Number>> numbers = item_numbers(resolver, items, scope);
    std::vector<NumberedItem> numbered;
    for (size_t i = 0; i < items.size(); i++) numbered.push_back({items[i], numbers[i]});
    auto addition = numbered.begin() + (root_end - items.begin());
    if (!resolver.schema.shipped_forms) {
        std::stable_sort(numbered.begin(), addition, [](const NumberedItem& a, const NumberedItem& b) {
            return a.number && b.number && *a.number < *b.number;
        });
    }
    for (; addition != numbered.end() && addition + 1 != numbered.end(); addition++) {
        const NumberedItem& next = addition[1];
        if (!addition->number || !next.number || *addition->number < *next.number) continue;
        error(resolver.diags, next.ast->place, "the addition '{}' has the number {}, which is not above {}",
              next.ast->name, next.number->str(), addition->number->str());
    }
    return numbered;
}

void fill_items(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope) {
    std::map<Number, const AstItem*> seen;
    for (const auto& [item, number] : numbered_items(resolver, ast, scope)) {
        if (!number) continue;
        auto [first, fresh] = seen.try_emplace(*number, item);
        if (!fresh) {
            error(resolver.diags, item->place, "the item '{}' has the number {} of '{}'", item->name,
                  number->str(), first->second->name);
        }
        type.items.push_back({item->name, *number, item->addition, item->place});
    }
    check_names(resolver, type.items, "item");
}

void fill_named_numbers(Resolver& resolver, Type& type, const AstType& ast, const Scope& scope) {
    std::map<Number, std::string> seen;
    for (const AstItem& item : ast.items) {
        std::optional<Number> number = resolve_number(resolver, *item.value, scope);
        if (!number) continue;
        if (type.kind == Kind::bit_string && *number < 0) {
            error(resolver.diags, item.value->place, "expected the number of a bit, from 0 on, found {}",
                  number->str());
        }
        auto [first, fresh] = seen.try_emplace(*number, item.name);
        if (!fresh) {
            error(resolver.diags, item.place, "'{}' has the number {} of '{}'", item.name, number->str(),
                  first->second);
        }
        type.named_numbers.push_back({item.name, *number, item.place});
    }
    check_names(resolver, type.named_numbers, "name");
}

}  // namespace orlentac
