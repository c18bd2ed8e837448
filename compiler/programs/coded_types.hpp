// SPDX-License-Identifier: Apache-2.0
// Which types of a region get programs.
#pragma once

#include <vector>

#include "compiler/frontend.hpp"
#include "compiler/layout/layout.hpp"

namespace orlentac {

struct CodedType {
    const Table* table;
    uint32_t rules;  // bit program::rule: it gets a program for that one
};

// The types that the list names, in the order of Layout::tables; without a list, `roots` and `rows`. A list has an entry
// a line; what follows a # is passed over:
//
//   Type             a named type, as the schema or as C has its name
//   Type.*           what its alternatives are, the descriptors of the alternatives themselves among them
//   roots            types that no other type refers to
//   rows             types in rows of object sets
//   rules uper aper  those that entries from here on get programs for; all at the beginning
//
// An entry that means nothing is an error in `diags`.
std::vector<CodedType> find_coded_types(const Layout& layout, const SourceText* list, Diagnostics& diags);

// Types in rows of object sets: what an open type may turn out to be.
std::vector<const Table*> row_types(const Layout& layout);

}  // namespace orlentac
