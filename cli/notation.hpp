// SPDX-License-Identifier: Apache-2.0
// A type as text, in the notation of X.680 as far as a table keeps what the schema said.
#pragma once

#include <orlenta/type.h>

#include <string>

#include "cli/type_names.hpp"

namespace cli {

// "Name ::= TYPE" with types in place spelled out, and a line feed at the end.
std::string definition_text(const orlenta_type_entry& entry);

// On one line: the kind with bounds, or with the number of its parts.
std::string summary_text(const asn1_type_desc* type);

}  // namespace cli
