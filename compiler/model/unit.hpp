// SPDX-License-Identifier: Apache-2.0
// What the numbers of a type mean: physical = number * scale + offset, but for those that stand for something else.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compiler/model/place.hpp"

namespace orlentac {

struct SpecialNumbers {
    int64_t first = 0, last = 0;
    std::string meaning;
    Place place;
};

struct Unit {
    double scale = 1, offset = 0;
    uint32_t digits = 0;  // behind the point, of the scale or the offset
    std::string symbol;   // "m/s"; "1" of plain numbers
    std::vector<SpecialNumbers> specials;
    std::string text;  // as written, with single blanks
    Place place;
};

}  // namespace orlentac
