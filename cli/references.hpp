// SPDX-License-Identifier: Apache-2.0
// What a table points at.
#pragma once

#include <orlenta/type.h>

#include <vector>

namespace cli {

// Components, alternatives, elements, inner and contained types, and the types of an object set.
std::vector<const asn1_type_desc*> referred_types(const asn1_type_desc* type);

}  // namespace cli
