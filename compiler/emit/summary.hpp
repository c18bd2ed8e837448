// SPDX-License-Identifier: Apache-2.0
// Counts of a region's tables.
#pragma once

#include <array>
#include <string>

#include "compiler/layout/layout.hpp"

namespace orlentac {

struct Summary {
    size_t named = 0, nested = 0, anonymous = 0;
    std::array<size_t, 18> kinds{};  // by ASN1_KIND_...
    size_t table_constraints = 0, containing_constraints = 0, values = 0, rows = 0;
    size_t without_pointers = 0;  // tables that the loader need not touch
    size_t words = 0;
};

Summary summarise(const Layout& layout);
std::string summary_text(const Summary& summary);

}  // namespace orlentac
