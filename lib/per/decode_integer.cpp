// SPDX-License-Identifier: Apache-2.0
#include "per/decode_numbers.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

int decode_integer(asn1_per_decoder* decoder, const asn1_type_desc* type, uint32_t* value) {
    integer_bounds bounds = integer_bounds_of(type);
    if (is_extensible(type)) {
        uint32_t is_extended;
        if (get_extension_bit(decoder, &is_extended) != 0) return -1;
        if (is_extended) return asn1_per_decode_unconstrainted_whole_number(decoder, value);
    }
    if (bounds.has_lower && bounds.has_upper) {
        return asn1_per_decode_constrained_whole_number(decoder, bounds.lower, bounds.upper, value);
    }
    if (bounds.has_lower) return asn1_per_decode_semi_constrained_whole_number(decoder, bounds.lower, value);
    if (asn1_per_decode_unconstrainted_whole_number(decoder, value) != 0) return -1;
    int32_t number = static_cast<int32_t>(*value);
    int32_t upper = static_cast<int32_t>(bounds.upper);
    if (bounds.has_upper && number > upper) {
        return asn1_decode_error(decoder, "integer < higher end (%d > %d)", number, upper);
    }
    return 0;
}

}  // namespace orlenta::per
