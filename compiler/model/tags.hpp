// SPDX-License-Identifier: Apache-2.0
// Tags as they are sent (X.680 clauses 8.6 and 31).
#pragma once

#include <vector>

#include "compiler/model/model.hpp"

namespace orlentac {

enum class TagClass : uint32_t { universal, application, context, private_use };

// Class and number in one word, as a descriptor holds them; words ascend in the canonical order of tags.
uint32_t tag_word(TagClass tag_class, uint32_t number);
uint32_t context_tag(uint32_t number);

// The universal tag of a type's kind; 0 for a CHOICE, an open type or a reference.
uint32_t universal_tag(const Type& type);

// Whether the type has any tag, its own or that of what it refers to: an untagged CHOICE or open type has none.
bool has_tag(const Type& type);

// All tags of the type, through references, outermost first: what stands on the wire.
std::vector<uint32_t> wire_tags(const Type& type);

// The tags with which a value can begin: one, or those of an untagged CHOICE's alternatives. None for an untagged open
// type, which may begin with any.
std::vector<uint32_t> first_tags(const Type& type);

// "[APPLICATION 3]"
std::string tag_text(uint32_t word);

}  // namespace orlentac
