// SPDX-License-Identifier: Apache-2.0
// What the item writer and the item reader of a list work with.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta::per {

struct asn1_per_list_params {
    void* data;       // encoder: the first element; decoder: the growing_list
    uint64_t stride;  // bytes of an element record
    const asn1_type_desc* element;
};

}  // namespace orlenta::per
