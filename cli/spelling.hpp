// SPDX-License-Identifier: Apache-2.0
// Names that were meant, for those that were typed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// In lower case, with hyphens for underscores.
std::string folded(std::string_view text);

// How many characters must be put in, taken out or changed to get from `a` to `b`.
size_t edit_distance(std::string_view a, std::string_view b);

}  // namespace cli
