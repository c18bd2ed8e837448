// SPDX-License-Identifier: Apache-2.0
// Writes the tables of a region as C++ source: constants only, nothing runs when they are loaded.
#pragma once

#include <string>
#include <unordered_set>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// The text of one of `parts` source files of about the same size, for a build on several cores; `part` counts from 0.
// The tables in `own` get a second name, own_name(), by which no other than the library's table is meant, not the copy
// that the loader may make.
std::string emit_tables(const Layout& layout, size_t parts, size_t part,
                        const std::unordered_set<const Table*>& own = {});
std::string own_name(const Table& table);

// The text of a source file that holds the records of the region's header against the tables when it is compiled.
// `header` is the header's name as it is included.
std::string emit_record_checks(const Layout& layout, const std::string& header);

}  // namespace orlentac
