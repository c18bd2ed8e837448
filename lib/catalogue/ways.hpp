// SPDX-License-Identifier: Apache-2.0
// From the entries of a region to their descriptors.
#pragma once

#include "catalogue/region.hpp"

namespace orlenta::catalogue {

// Of a region by another orlentac nothing is read.
inline uint32_t count_of(const region& in) { return in.format == kFormat ? in.count : 0; }

inline const asn1_type_desc* type_of(const region& in, const entry* at) {
    uint16_t words[kLongestWay];
    uint32_t length = 0;
    for (; at->word != 0; at = in.entries + at->from) words[length++] = at->word;
    const asn1_type_desc* type = in.types[at->from];
    while (length > 0) type = type[words[--length]].type;
    return type;
}

}  // namespace orlenta::catalogue
