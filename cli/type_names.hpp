// SPDX-License-Identifier: Apache-2.0
// Types by the names that users type, and the nearest ones to names that do not do.
#pragma once

#include <orlenta/catalogue.h>

#include <span>
#include <string>

namespace cli {

// What a run knows: the message sets that are built in, or those of another catalogue in their place, if that is chosen
// before anything is looked up.
void use_catalogue(const orlenta_catalogue* catalogue);
const orlenta_catalogue* used_catalogue();
std::span<const orlenta_type_entry> all_types();

// False for a type in place.
bool is_named(const orlenta_type_entry& entry);

// "CN.Position-LL-24B" for a named type, "EU.Lpn_1" for a nested one; where modules of the region share a name, the
// module's stands between: "EU.DSRC.Heading".
std::string full_name(const orlenta_type_entry& entry);

// The type of a name: as orlenta_catalogue_find() takes it, or "asn1_type_CN_Position_LL_24B". Where no type is called
// so exactly, case makes no difference. Otherwise null, and one line in `problem` that tells all that are so called, or
// the nearest names.
const orlenta_type_entry* find_type(const std::string& name, std::string* problem);

// The entry of a descriptor, or null.
const orlenta_type_entry* entry_of(const asn1_type_desc* type);

}  // namespace cli
