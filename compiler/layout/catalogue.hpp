// SPDX-License-Identifier: Apache-2.0
// The types of a layout by name, in the form that the library reads.
#pragma once

#include <string>
#include <vector>

#include "catalogue/region.hpp"
#include "compiler/layout/layout.hpp"

namespace orlentac {

struct CatalogueForm {
    std::string texts;
    std::vector<orlenta::catalogue::entry> entries;
    std::vector<const Table*> types;  // that entries have pointers to
};

// Of all types but simple ones in place, in the layout's order.
CatalogueForm catalogue_form(const Layout& layout);

}  // namespace orlentac
