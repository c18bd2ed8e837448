// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace orlentac {

// A place in a source file; line and column count from 1, columns in bytes.
struct Place {
    const std::string* file = nullptr;
    int line = 0;
    int column = 0;
};

}  // namespace orlentac
