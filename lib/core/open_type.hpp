// SPDX-License-Identifier: Apache-2.0
// The keys of open types: which row of its object set a value selects.
#pragma once

#include <orlenta/type_info.h>

#include "core/descriptor.hpp"

namespace orlenta {

// Row `index` of the object set.
inline const asn1_word* row_of(const asn1_table_constraint* constraint, uint32_t index) {
    return constraint->rows.type + uint64_t{index} * class_field_count(constraint->object_class.type);
}

// The type that the row gives an open type of this constraint; null if it gives none.
const asn1_type_desc* type_of_row(const asn1_table_constraint* constraint, const asn1_word* row);

// Puts the keys of the row into the records of `frame`, which must be the caller's to change. False if a key has no
// component there, or without memory; some keys may be set then.
bool set_keys(const asn1_table_constraint* constraint, const asn1_word* row, const asn1_parent_frame* frame);

}  // namespace orlenta
