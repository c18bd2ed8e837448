// SPDX-License-Identifier: Apache-2.0
// What comments say of the types beneath them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "compiler/model/diagnostics.hpp"

namespace orlentac {

std::vector<std::string_view> lines_of(std::string_view text);

// The first paragraph, on one line and in UTF-8, of the comment that ends on the line above `place`. Empty if there is none,
// if it has definitions that do not count, or if something else stands before the place on its line.
std::string comment_above(const std::vector<std::string_view>& lines, const Place& place);

}  // namespace orlentac
