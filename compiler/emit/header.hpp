// Writes the public header of a region: value records as C structs, constants, and descriptors.
#pragma once

#include <string>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// `header` is the header's name as it is included, from which its guard is made.
std::string emit_header(const Layout& layout, const std::string& header);

}  // namespace orlentac
