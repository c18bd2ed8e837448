// SPDX-License-Identifier: Apache-2.0
// Whole numbers and short lengths on the wire (X.691 clauses 11.3 to 11.9). Results are 0, or -1 after a report.
#pragma once

#include "per/bit_reader.hpp"

namespace orlenta::per {

// A number from `low` to `high`, all 32-bit patterns.
int asn1_per_decode_constrained_whole_number(asn1_per_decoder* decoder, uint32_t low, uint32_t high,
                                             uint32_t* out);

// Names a length that has been read.
inline void tell_length(asn1_per_decoder* decoder, uint32_t length) {
    tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_LENGTH, "length %u", length);
}

// A length below 16384; a fragment is refused.
int asn1_per_decode_unconstrained_length(asn1_per_decoder* decoder, uint32_t* out);

// A number of at least `low`, in the fewest octets.
int asn1_per_decode_semi_constrained_whole_number(asn1_per_decoder* decoder, uint32_t low, uint32_t* out);

// A number that is small as a rule: an index behind an extension marker.
int asn1_per_decode_normally_small_non_neg_whole_number(asn1_per_decoder* decoder, uint32_t* out);

// A two's complement number in the fewest octets.
int asn1_per_decode_unconstrainted_whole_number(asn1_per_decoder* decoder, uint32_t* out);

// Adds a lower bound to the big integer that was read above it; false without memory.
bool add_lower(decode_memory* memory, asn1_integer* value, const asn1_integer* lower);

}  // namespace orlenta::per
