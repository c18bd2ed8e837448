// SPDX-License-Identifier: Apache-2.0
// The characters of a known-multiplier string type on the wire (X.691 clause 30.5), the same in both directions.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta::per {

struct asn1_per_char_params {
    void* data;            // encoder: the code units; decoder: the asn1_string
    uint32_t unit_shift;   // log2 of a code unit's bytes in memory
    uint32_t bits;         // of one character on the wire, 0 to 32
    uint32_t range_count;  // 0: a character goes as its own code point, else as its position in the alphabet
    const asn1_word* ranges;  // pairs of first and last code point
};

// Replaces a position in the alphabet by the code point there; false if there is none.
inline bool find_code_point(const asn1_word* ranges, uint32_t range_count, uint32_t* code) {
    uint32_t position = *code;
    for (uint32_t i = 0; i < range_count; ++i) {
        uint32_t first = low32(ranges[2 * i]);
        uint32_t span = low32(ranges[2 * i + 1]) - first;
        if (position <= span) {
            *code = first + position;
            return true;
        }
        position -= span + 1;
    }
    return false;
}

// Replaces a code point by its position in the alphabet; false if it is not in there.
inline bool find_position(const asn1_word* ranges, uint32_t range_count, uint32_t* code) {
    uint32_t before = 0;
    for (uint32_t i = 0; i < range_count; ++i) {
        uint32_t first = low32(ranges[2 * i]);
        uint32_t last = low32(ranges[2 * i + 1]);
        if (*code >= first && *code <= last) {
            *code = before + (*code - first);
            return true;
        }
        before += last - first + 1;
    }
    return false;
}

// Works out all but `data`. Returns 0, or -1 if the descriptor has no range at all.
int find_char_params(asn1_per_char_params* params, const asn1_type_desc* type,
                     const char_string_layout& string, bool aligned);

}  // namespace orlenta::per
