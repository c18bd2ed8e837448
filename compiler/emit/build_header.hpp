// SPDX-License-Identifier: Apache-2.0
// Writes the header of inline functions that build values of a region in C.
#pragma once

#include <string>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// orlenta/cn.h has orlenta/cn_build.h beside it.
std::string build_header_name(const std::string& header);
std::string emit_build_header(const Layout& layout, const std::string& header);

}  // namespace orlentac
