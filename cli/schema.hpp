// SPDX-License-Identifier: Apache-2.0
// Modules that the user gives on the command line, in place of the built-in message sets.
#pragma once

#include <string>
#include <vector>

namespace cli {

// Compiles them, for the rest of the run. False after errors, which are reported.
bool use_schema(const std::vector<std::string>& files, const std::string& region);

}  // namespace cli
