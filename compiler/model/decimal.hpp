// SPDX-License-Identifier: Apache-2.0
// Decimal numbers of a schema's text.
#pragma once

#include <string>

namespace orlentac {

// With a full stop, whatever the locale of the program that compiles the schema has.
double decimal_value(const std::string& decimal);

}  // namespace orlentac
