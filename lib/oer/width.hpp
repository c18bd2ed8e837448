// SPDX-License-Identifier: Apache-2.0
// The widths of an INTEGER with bounds (X.696 clause 10), on which decoder and encoder agree.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta::oer {

struct integer_form {
    uint32_t octets;  // 0: behind a length
    bool is_unsigned;
};

// Of an INTEGER in 32 bits.
inline integer_form integer_form_of(const asn1_type_desc* type) {
    if (is_extensible(type)) return {0, false};
    integer_bounds bounds = integer_bounds_of(type);
    if (!bounds.has_lower) return {0, false};
    int32_t low = static_cast<int32_t>(bounds.lower), high = static_cast<int32_t>(bounds.upper);
    if (low >= 0) {
        if (!bounds.has_upper) return {0, true};
        return {bounds.upper <= UINT8_MAX ? 1u : bounds.upper <= UINT16_MAX ? 2u : 4u, true};
    }
    if (!bounds.has_upper) return {0, false};
    if (low >= INT8_MIN && high <= INT8_MAX) return {1, false};
    return {low >= INT16_MIN && high <= INT16_MAX ? 2u : 4u, false};
}

inline uint32_t octets_of_bits(uint32_t bits) {
    return bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 32 ? 4 : bits <= 64 ? 8 : 0;
}

// Of an INTEGER held as an asn1_integer. Returns 0, or -1 without memory.
inline int big_integer_form_of(const asn1_type_desc* type, integer_form* form) {
    *form = {0, false};
    if (is_extensible(type)) return 0;
    big_bounds bounds = big_bounds_of(type);
    if (bounds.lower == nullptr) return 0;
    form->is_unsigned = bounds.lower->negative == 0;
    if (bounds.upper == nullptr) return 0;
    uint32_t low_bits = 0, high_bits;
    if (form->is_unsigned) {
        high_bits = asn1_integer_get_bit_size(bounds.upper);
    } else if (asn1_integer_get_bit_size_2comp(&low_bits, bounds.lower) != 0 ||
               asn1_integer_get_bit_size_2comp(&high_bits, bounds.upper) != 0) {
        return -1;
    }
    form->octets = octets_of_bits(low_bits > high_bits ? low_bits : high_bits);
    return 0;
}

// Whether the two size bounds of a string leave one size, so that no length is needed.
inline bool is_fixed_size(const size_bounds& bounds) { return bounds.lower == bounds.upper; }

}  // namespace orlenta::oer
