// SPDX-License-Identifier: Apache-2.0
#include "per/encode_numbers.hpp"

#include "per/widths.hpp"

namespace orlenta::per {

static int report_outside_range(asn1_per_encoder* encoder, uint32_t low, uint32_t high, uint32_t value) {
    if (static_cast<int32_t>(low) < 0) {
        return asn1_encode_error(encoder, "integer outside range (%d %d-%d)", static_cast<int32_t>(value),
                                 static_cast<int32_t>(low), static_cast<int32_t>(high));
    }
    return asn1_encode_error(encoder, "integer outside range (%u %u-%u)", value, low, high);
}

static void put_aligned_offset(asn1_per_encoder* encoder, uint32_t range, uint32_t offset) {
    uint32_t width = range == 255 ? 8 : 16;
    if (range_form_of(true, range) == kCountedOctets) {
        // X.691 clause 11.5.7.4 counts up to four octets, whatever the range.
        width = 8 * octet_count(offset);
        asn1_put_bits(encoder, 2, width / 8 - 1);
    }
    asn1_align(encoder);
    asn1_put_bits(encoder, width, offset);
}

int asn1_per_encode_constrained_whole_number(asn1_per_encoder* encoder, uint32_t low, uint32_t high,
                                             uint32_t value) {
    uint32_t range = high - low;
    uint32_t offset = value - low;
    if (offset > range) return report_outside_range(encoder, low, high, value);
    if (range == 0) return 0;
    if (range_form_of(encoder->aligned != 0, range) == kBitField) {
        asn1_put_bits(encoder, field_width(range), offset);
    } else {
        put_aligned_offset(encoder, range, offset);
    }
    return 0;
}

int asn1_per_encode_unconstrained_length(asn1_per_encoder* encoder, uint32_t length) {
    if (encoder->aligned) asn1_align(encoder);
    if (length > 16383) return -1;
    if (length < 128) {
        asn1_put_bits(encoder, 8, length);
    } else {
        asn1_put_bits(encoder, 16, 0x8000 | length);
    }
    return 0;
}

int asn1_per_encode_normally_small_non_neg_whole_number(asn1_per_encoder* encoder, uint32_t value) {
    if (value < 64) {
        asn1_put_bits(encoder, 7, value);
        return 0;
    }
    uint32_t octets = octet_count(value);
    asn1_put_bits(encoder, 1, 1);
    asn1_per_encode_unconstrained_length(encoder, octets);
    asn1_put_bits(encoder, 8 * octets, value);
    return 0;
}

}  // namespace orlenta::per
