// SPDX-License-Identifier: Apache-2.0
// The types of a layout by name, in the form that the library reads.
#pragma once

#include <string>
#include <vector>

#include "catalogue/region.hpp"
#include "compiler/layout/layout.hpp"

namespace orlentac {

struct UnitForm {
    uint32_t symbol = 0;  // a text, as `meaning` below
    double scale = 1, offset = 0;
    uint32_t digits = 0;
    size_t first_special = 0, special_count = 0;
};

struct SpecialForm {
    int64_t first = 0, last = 0;
    uint32_t meaning = 0;
    int32_t is_limit = 0;
};

struct CatalogueForm {
    std::string texts;
    std::vector<orlenta::catalogue::entry> entries;
    std::vector<const Table*> types;  // that there are pointers to
    std::vector<UnitForm> units;
    std::vector<SpecialForm> specials;
    std::vector<orlenta::catalogue::unit_place> unit_places;
};

// Of all types but simple ones in place, in the layout's order.
CatalogueForm catalogue_form(const Layout& layout);

}  // namespace orlentac
