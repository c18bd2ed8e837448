// SPDX-License-Identifier: Apache-2.0
// Writes the public headers of a region: value records as C structs, constants, and descriptors.
#pragma once

#include <string>

#include "compiler/layout/layout.hpp"

namespace orlentac {

// `header` is the header's name as it is included, from which its guard is made.
std::string emit_header(const Layout& layout, const std::string& header);

// The header beside it, for the few who want them: descriptors without a name of their own.
std::string local_header_name(const std::string& header);
std::string emit_local_header(const Layout& layout, const std::string& header);

// orlenta/us.h and _local are orlenta/us_local.h.
std::string header_beside(const std::string& header, const char* suffix);
std::string header_guard(const std::string& header);

}  // namespace orlentac
