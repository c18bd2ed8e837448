// SPDX-License-Identifier: Apache-2.0
// What a decoder does with the value that it has begun when the decode fails.
#pragma once

#include <orlenta/memory.h>

#include "core/descriptor.hpp"
#include "core/stackless.hpp"

namespace orlenta {

// An information object class has no values, and asn1_free_value() does not take one: its decode fails, and leaves
// no more than the record.
inline void free_failed_value(const asn1_type_desc* type, void* value) {
    if (kind_of(type) > ASN1_KIND_ANY) {
        asn1_free(value);
    } else {
        release_value(begin_stack(), type, value);
    }
}

}  // namespace orlenta
