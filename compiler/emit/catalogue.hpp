// SPDX-License-Identifier: Apache-2.0
// Writes the types of a region by name, as C++ source.
#pragma once

#include <string>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// The text of a source file that defines orlenta_catalogue_<REGION>().
std::string emit_catalogue(const Layout& layout);

}  // namespace orlentac
