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

// Works out all but `data`. Returns 0, or -1 if the descriptor has no range at all.
int find_char_params(asn1_per_char_params* params, const asn1_type_desc* type,
                     const char_string_layout& string, bool aligned);

}  // namespace orlenta::per
