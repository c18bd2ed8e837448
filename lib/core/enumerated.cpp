// SPDX-License-Identifier: Apache-2.0
#include <orlenta/value.h>

#include "core/descriptor.hpp"

using namespace orlenta;

// The index beside `value` in the `n` pairs that are sorted by value.
static int32_t find_pair(const asn1_word* pairs, uint32_t n, int32_t value) {
    int64_t lower = 0, upper = static_cast<int64_t>(n) - 1;
    while (lower <= upper) {
        int64_t middle = (lower + upper) / 2;
        int32_t candidate = static_cast<int32_t>(low32(pairs[2 * middle]));
        if (candidate == value) {
            int32_t index = static_cast<int32_t>(low32(pairs[2 * middle + 1]));
            return index >= 0 ? index : -1;
        }
        if (candidate < value) {
            lower = middle + 1;
        } else {
            upper = middle - 1;
        }
    }
    return -1;
}

int32_t asn1_find_enum_index(const asn1_word* items, uint32_t n, int32_t value, uint32_t word0) {
    if ((word0 & ASN1_WORD0_VALUE_TABLE) == 0)
        return value >= 0 && static_cast<uint32_t>(value) < n ? value : -1;
    return find_pair(enum_value_table(items, n, word0) + n, n, value);
}
