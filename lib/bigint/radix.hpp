// SPDX-License-Identifier: Apache-2.0
// Between base 2^32, in which a number is kept, and base 10^9, in which it is written. Digits of either base stand least
// significant first in 32 bits each.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace orlenta {

inline constexpr int kGroupDigits = 9;  // decimal digits that make one of base 10^9

// Up to this many digits of one base need no memory, and then no more than kFewResult of the other.
inline constexpr size_t kFewDigits = 32;
inline constexpr size_t kFewResult = 36;

// Both give the digits in the other base, `*result_count` of them without high zeros: in `few`, which has room for
// kFewResult, or in a new block that the caller releases by asn1_free(); null if memory was not to be had. The block is
// some four times as large as the number.
uint32_t* limbs_to_groups(const uint32_t* limbs, size_t count, uint32_t* few, size_t* result_count);
uint32_t* groups_to_limbs(const uint32_t* groups, size_t count, uint32_t* few, size_t* result_count);

}  // namespace orlenta
