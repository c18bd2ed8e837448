// SPDX-License-Identifier: Apache-2.0
#include "compiler/model/decimal.hpp"

#include <locale.h>
#include <stdlib.h>

namespace orlentac {

// std::from_chars() has no double in emscripten's library.
double decimal_value(const std::string& decimal) {
    locale_t plain = newlocale(LC_NUMERIC_MASK, "C", nullptr);
    double value = strtod_l(decimal.c_str(), nullptr, plain);
    freelocale(plain);
    return value;
}

}  // namespace orlentac
