// Writes the tables of a region as C++ source: constants only, nothing runs when they are loaded.
#pragma once

#include <string>
#include <vector>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// The texts of `parts` source files of about the same size, for a build on several cores.
std::vector<std::string> emit_tables(const Layout& layout, size_t parts);

// The text of a source file that holds the records of the region's header against the tables when it is compiled.
// `header` is the header's name as it is included.
std::string emit_record_checks(const Layout& layout, const std::string& header);

}  // namespace orlentac
