// SPDX-License-Identifier: Apache-2.0
// The message sets that are built, in a file of their own: a static program that asks for one of them gets no other.
#include "catalogue/region.hpp"

#define ROW(name) \
    extern "C" [[gnu::visibility("hidden")]] const orlenta::catalogue::region orlenta_region_##name;
ORLENTA_REGION_ROWS
#undef ROW

const orlenta_catalogue* orlenta_catalogue_builtin() {
#define ROW(name) &orlenta_region_##name,
    static constexpr const orlenta::catalogue::region* regions[] = {ORLENTA_REGION_ROWS nullptr};
#undef ROW
    static constexpr orlenta_catalogue all = {regions, sizeof regions / sizeof *regions - 1};
    return &all;
}
