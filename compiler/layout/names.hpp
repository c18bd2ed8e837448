// SPDX-License-Identifier: Apache-2.0
// What types and classes are called in C.
#pragma once

#include <string>
#include <unordered_map>

#include "compiler/model/diagnostics.hpp"
#include "compiler/model/model.hpp"

namespace orlentac {

// A schema name as part of a C identifier.
std::string c_name(const std::string& schema_name);

// Names of all types, instances and classes of a region, by NamedType and ObjectClass: the plain one while no other
// module has it, else each with its module's name before it, which a note tells; all with `module_names`.
std::unordered_map<const void*, std::string> region_names(const Schema& schema, bool module_names,
                                                          Diagnostics& diags);

}  // namespace orlentac
