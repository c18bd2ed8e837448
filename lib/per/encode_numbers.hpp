// SPDX-License-Identifier: Apache-2.0
// Whole numbers and short lengths on the wire (X.691 clauses 11.3 to 11.9). Results are 0 or -1.
#pragma once

#include "per/bit_writer.hpp"

namespace orlenta::per {

// A number from `low` to `high`, all three 32-bit patterns.
int asn1_per_encode_constrained_whole_number(asn1_per_encoder* encoder, uint32_t low, uint32_t high,
                                             uint32_t value);

// A number that is small as a rule: an index behind an extension marker.
int asn1_per_encode_normally_small_non_neg_whole_number(asn1_per_encoder* encoder, uint32_t value);

// A length below 16384; a greater one gives -1 without a message.
int asn1_per_encode_unconstrained_length(asn1_per_encoder* encoder, uint32_t length);

}  // namespace orlenta::per
