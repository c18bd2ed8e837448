// SPDX-License-Identifier: Apache-2.0
// The types of all regions by name.
#pragma once

#include <orlenta/type.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/emit/catalogue_entry.hpp"

namespace cli {

using Entry = orlenta_catalogue_entry;

struct Region {
    const char* name;
    std::span<const Entry> entries;
};

// Those that are built in, or that of a schema in their place.
std::span<const Region> all_regions();

// Makes the region the only one. To be called before anything is looked up.
void replace_regions(const Region& region);

// Null for an unknown region.
const Region* find_region(std::string_view name);

// "CN.Position-LL-24B" for a named type, "EU.Lpn_1" for a nested and "CN._local_12" for an anonymous one; where modules
// of the region share a name, the module's stands between: "EU.DSRC.Heading".
std::string full_name(const Region& region, const Entry& entry);

// A type that the schema names or that stands in place with components of its own: not an anonymous simple one.
bool is_listed(const Entry& entry);
bool is_named(const Entry& entry);

struct Type {
    const Region* region = nullptr;
    const Entry* entry = nullptr;
};

// The type of a name: [Region.][Module.]Type, with parts left out while just one type is so called, where the type is
// "Position-LL-24B" or "Position_LL_24B"; or "asn1_type_CN_Position_LL_24B". Where
// no type is called so exactly, case makes no difference. Otherwise an empty Type, and one line in `problem` that tells all that are so called, or the nearest names.
Type find_type(const std::string& name, std::string* problem);

// The entry of a descriptor, or null.
const Entry* entry_of(const asn1_type_desc* type);

}  // namespace cli
