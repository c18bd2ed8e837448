// SPDX-License-Identifier: Apache-2.0
#include "per/char_params.hpp"

#include "per/widths.hpp"

namespace orlenta::per {

// Rounds a width of 1 to 32 up to a power of two (X.691 clause 30.5.2).
static uint32_t aligned_width(uint32_t width) {
    return width == 1 ? 1 : UINT32_C(1) << field_width(width - 1);
}

static uint32_t char_width(const char_string_layout& string, bool aligned) {
    if (string.range_count < 0) return 32;
    uint32_t alphabet = 0;
    for (int32_t i = 0; i < string.range_count; ++i) {
        alphabet += range_last(string, i) - range_first(string, i) + 1;
    }
    if (alphabet == 1) return 0;
    uint32_t width = field_width(alphabet - 1);
    return aligned ? aligned_width(width) : width;
}

int find_char_params(asn1_per_char_params* params, const asn1_type_desc* type,
                     const char_string_layout& string, bool aligned) {
    if (string.range_count == 0) return -1;
    params->unit_shift = code_unit_shift(string_type(type));
    params->bits = char_width(string, aligned);
    params->range_count = 0;
    params->ranges = string.ranges;
    if (string.range_count > 0) {
        uint64_t largest = (UINT64_C(1) << params->bits) - 1;
        bool fits = range_last(string, string.range_count - 1) <= largest;
        if (!fits) params->range_count = static_cast<uint32_t>(string.range_count);
    }
    return 0;
}

}  // namespace orlenta::per
