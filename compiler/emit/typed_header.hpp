// SPDX-License-Identifier: Apache-2.0
// Writes the header of a region's types for C++20, over the records of the C header.
#pragma once

#include <string>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// orlenta/cn.h has orlenta/cn.hpp beside it.
std::string typed_header_name(const std::string& header);
std::string emit_typed_header(const Layout& layout, const std::string& header);

// Assertions that the types lie over the records member for member, to be compiled once.
std::string emit_typed_checks(const Layout& layout, const std::string& header);

}  // namespace orlentac
