// SPDX-License-Identifier: Apache-2.0
// Widths of whole numbers on the wire, the same in both directions.
#pragma once

#include <orlenta/integer.h>
#include <stdint.h>

namespace orlenta::per {

// Bits up to and including the highest one that is set; `n` is not 0.
inline uint32_t field_width(uint32_t n) { return 32 - static_cast<uint32_t>(__builtin_clz(n)); }

// Octets that hold `n`; 0 takes one.
inline uint32_t octet_count(uint32_t n) { return (field_width(n | 1) + 7) / 8; }

// The forms of a constrained whole number (X.691 clause 11.5).
enum range_form {
    kBitField,      // as many bits as the range needs, never aligned
    kOneOctet,      // aligned
    kTwoOctets,     // aligned
    kCountedOctets  // a count of octets, then the octets, aligned
};

inline range_form range_form_of(bool aligned, uint32_t range) {
    if (!aligned || range < 255) return kBitField;
    if (range == 255) return kOneOctet;
    return range <= 65535 ? kTwoOctets : kCountedOctets;
}

// A range held as a big integer, cut down to 32 bits: above 65535 all ranges have one form.
inline uint32_t saturated_range(const asn1_integer* range) {
    if (range->size > 1) return UINT32_MAX;
    return range->size == 0 ? 0 : range->limbs[0];
}

inline uint32_t big_octet_count(const asn1_integer* n) {
    return n->size == 0 ? 1 : (asn1_integer_get_bit_size(n) + 7) / 8;
}

// Bits that hold the count of octets, less one, of a big integer of at most `max_octets`.
inline uint32_t octet_count_width(uint32_t max_octets) {
    return max_octets > 1 ? field_width(max_octets - 1) : 1;
}

// Bits of the top limb of a number of `bits` bits; the limbs below it are full.
inline uint32_t top_limb_width(uint32_t bits) { return bits % 32 == 0 ? 32 : bits % 32; }

}  // namespace orlenta::per
