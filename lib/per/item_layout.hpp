// SPDX-License-Identifier: Apache-2.0
// How the length and the contents of a string or list go, the same in both directions.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta::per {

struct item_layout {
    bool extensible;
    bool has_constrained_length;  // else a general length determinant, which may come in fragments
    bool align_contents;          // in ALIGNED PER, behind a constrained length
    uint32_t lower, upper;
};

// An upper bound of 64K or more is the same as none (X.691 clause 11.9.3.3).
inline item_layout layout_of_items(const asn1_type_desc* type, const size_bounds& size, bool align_contents) {
    return {is_extensible(type), size.has_upper && size.upper <= 65535, align_contents, size.lower,
            size.upper};
}

// X.691 clauses 16.9 to 16.11: a fixed size of up to 16 bits is not aligned.
inline item_layout layout_of_bit_string(const asn1_type_desc* type) {
    size_bounds size = size_bounds_of(type);
    return layout_of_items(type, size, size.lower != size.upper || size.upper > 16);
}

// X.691 clauses 17.6 to 17.8: a fixed size of up to 2 octets is not aligned.
inline item_layout layout_of_octet_string(const asn1_type_desc* type) {
    size_bounds size = size_bounds_of(type);
    return layout_of_items(type, size, size.lower != size.upper || size.upper > 2);
}

// X.691 clauses 30.5.6 and 30.5.7: what counts is the longest string, of `char_bits` bits a character.
inline item_layout layout_of_char_string(const asn1_type_desc* type, const size_bounds& size,
                                         uint32_t char_bits) {
    uint64_t longest = uint64_t{size.upper} * char_bits;
    return layout_of_items(type, size, longest > (size.lower == size.upper ? 16 : 15));
}

// The elements of a list align themselves.
inline item_layout layout_of_list(const asn1_type_desc* type, const list_layout& list) {
    return layout_of_items(type, {list.has_lower, list.has_upper, list.lower, list.upper}, false);
}

}  // namespace orlenta::per
