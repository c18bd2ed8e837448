// SPDX-License-Identifier: Apache-2.0
#include "per/encode_numbers.hpp"
#include "per/encode_type.hpp"
#include "per/widths.hpp"

namespace orlenta::per {

// Octets in which a number survives sign extension.
static uint32_t signed_octet_count(uint32_t value) {
    uint32_t magnitude = static_cast<int32_t>(value) < 0 ? ~value : value;
    return magnitude == 0 ? 1 : field_width(magnitude) / 8 + 1;
}

static int encode_unconstrained(asn1_per_encoder* encoder, uint32_t value) {
    uint32_t octets = signed_octet_count(value);
    asn1_per_encode_unconstrained_length(encoder, octets);
    asn1_put_bits(encoder, 8 * octets, value & UINT32_MAX >> (32 - 8 * octets));
    return 0;
}

static int encode_semi_constrained(asn1_per_encoder* encoder, uint32_t low, uint32_t value) {
    uint32_t offset = value - low;
    uint32_t octets = octet_count(offset);
    asn1_per_encode_unconstrained_length(encoder, octets);
    asn1_put_bits(encoder, 8 * octets, offset);
    return 0;
}

static bool is_below(bool is_unsigned, uint32_t a, uint32_t b) {
    return is_unsigned ? a < b : static_cast<int32_t>(a) < static_cast<int32_t>(b);
}

static int report_below(asn1_per_encoder* encoder, bool is_unsigned, uint32_t value, uint32_t low) {
    if (is_unsigned) return asn1_encode_error(encoder, "integer < lower end (%u < %u)", value, low);
    return asn1_encode_error(encoder, "integer < lower end (%d < %d)", static_cast<int32_t>(value),
                             static_cast<int32_t>(low));
}

int encode_integer(asn1_per_encoder* encoder, const asn1_type_desc* type, uint32_t value) {
    integer_bounds bounds = integer_bounds_of(type);
    bool is_unsigned = bounds.has_lower && static_cast<int32_t>(bounds.lower) >= 0;
    uint32_t low = bounds.has_lower ? bounds.lower : UINT32_C(0x80000000);
    uint32_t high = bounds.has_upper ? bounds.upper : is_unsigned ? UINT32_MAX : INT32_MAX;

    if (is_extensible(type)) {
        bool in_root = !is_below(is_unsigned, value, low) && !is_below(is_unsigned, high, value);
        asn1_put_bits(encoder, 1, in_root ? 0 : 1);
        if (!in_root) return encode_unconstrained(encoder, value);
    }
    if (bounds.has_lower && bounds.has_upper) {
        return asn1_per_encode_constrained_whole_number(encoder, low, high, value);
    }
    if (bounds.has_lower) {
        if (is_below(is_unsigned, value, low)) return report_below(encoder, is_unsigned, value, low);
        return encode_semi_constrained(encoder, low, value);
    }
    if (bounds.has_upper && is_below(false, high, value)) {
        return asn1_encode_error(encoder, "integer < higher end (%d > %d)", static_cast<int32_t>(value),
                                 static_cast<int32_t>(high));
    }
    return encode_unconstrained(encoder, value);
}

}  // namespace orlenta::per
