// SPDX-License-Identifier: Apache-2.0
// Who refers to whom: which named types carry the tag of their references themselves, which references close a
// recursion, and which types nothing refers to.
#pragma once

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "compiler/model/model.hpp"

namespace orlentac {

struct References {
    // In shipped forms alone: the tag that stands in the named type's own descriptor, as all its references agree on
    // it. An alias that a component or alternative refers to is always here: its descriptor is nothing but that tag.
    std::unordered_map<const NamedType*, uint32_t> folded;
    // In shipped forms alone: alternatives in place that have their tag in a wrapper nevertheless: simple ones with
    // bounds, in a CHOICE that is itself reached through wrappers, for its references have different tags.
    std::unordered_set<const Type*> wrapped;
    // Components and alternatives that hold their value through a pointer, for they lead back into a type around them.
    std::unordered_set<const Type*> indirect;
    // Types that no other one refers to, in schema order: the messages, as a rule.
    std::vector<const NamedType*> roots;
};

References find_references(const Schema& schema);

// The type behind aliases.
const NamedType* real_type(const NamedType* type);
// The type behind references.
const Type* resolved(const Type* type);
bool is_list(const Type& type);

}  // namespace orlentac
