// SPDX-License-Identifier: Apache-2.0
#include "per/decode_numbers.hpp"

#include "per/widths.hpp"

namespace orlenta::per {

static inline int take_offset(asn1_per_decoder* decoder, uint32_t low, uint32_t range, uint32_t offset,
                              uint32_t* out) {
    if (offset > range) return asn1_decode_error(decoder, "overflow in constrained whole number");
    *out = low + offset;
    return 0;
}

// Apart, so that the other form needs no room on the stack.
static __attribute__((noinline)) int get_aligned_number(asn1_per_decoder* decoder, uint32_t low,
                                                        uint32_t range, uint32_t* out) {
    uint32_t offset, width = range == 255 ? 8 : 16;
    if (range_form_of(true, range) == kCountedOctets) {
        uint32_t octets;
        if (asn1_get_bits(decoder, 2, &octets) != 0) return -1;
        width = 8 * (octets + 1);
        if (is_observed(decoder)) tell_length(decoder, octets + 1);
    }
    asn1_align(decoder);
    if (asn1_get_bits(decoder, width, &offset) != 0) return -1;
    return take_offset(decoder, low, range, offset, out);
}

int asn1_per_decode_constrained_whole_number(asn1_per_decoder* decoder, uint32_t low, uint32_t high,
                                             uint32_t* out) {
    uint32_t range = high - low;
    if (range == 0) {
        *out = low;
        return 0;
    }
    if (range_form_of(decoder->aligned != 0, range) != kBitField) {
        return get_aligned_number(decoder, low, range, out);
    }
    uint32_t offset;
    if (asn1_get_bits(decoder, field_width(range), &offset) != 0) return -1;
    return take_offset(decoder, low, range, offset, out);
}

int asn1_per_decode_unconstrained_length(asn1_per_decoder* decoder, uint32_t* out) {
    if (decoder->aligned) asn1_align(decoder);
    uint32_t first, second;
    if (asn1_get_bits(decoder, 8, &first) != 0) return -1;
    if (first >= 0xC0) {
        *out = 0;
        return asn1_decode_error(decoder, "fragmentation is not supported");
    }
    *out = first;
    if (first >= 0x80) {
        if (asn1_get_bits(decoder, 8, &second) != 0) return -1;
        *out = (first << 8 | second) & 0x3FFF;
    }
    if (is_observed(decoder)) tell_length(decoder, *out);
    return 0;
}

// The length and the octets of a number of 1 to 4 octets.
static int get_counted_octets(asn1_per_decoder* decoder, uint32_t* length, uint32_t* out) {
    if (asn1_per_decode_unconstrained_length(decoder, length) != 0) return -1;
    if (*length == 0 || *length > 4) {
        asn1_decode_error(decoder, "invalid unconstrainted length (%u)", *length);
        return -1;  // said here, so that the compiler knows that `out` is set after 0
    }
    return asn1_get_bits(decoder, 8 * *length, out);
}

int asn1_per_decode_semi_constrained_whole_number(asn1_per_decoder* decoder, uint32_t low, uint32_t* out) {
    uint32_t length, offset;
    if (get_counted_octets(decoder, &length, &offset) != 0) return -1;
    if (octet_count(offset) < length) return asn1_decode_error(decoder, "integer encoding not canonical");
    uint32_t limit = static_cast<int32_t>(low) < 0 ? INT32_MAX - low : ~low;
    if (offset > limit) return asn1_decode_error(decoder, "32 bit integer overflow");
    *out = low + offset;
    return 0;
}

int asn1_per_decode_normally_small_non_neg_whole_number(asn1_per_decoder* decoder, uint32_t* out) {
    uint32_t is_large;
    if (asn1_get_bits(decoder, 1, &is_large) != 0) return -1;
    if (is_large && is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_LENGTH, "number in octets");
    }
    return is_large ? asn1_per_decode_semi_constrained_whole_number(decoder, 0, out)
                    : asn1_get_bits(decoder, 6, out);
}

int asn1_per_decode_unconstrainted_whole_number(asn1_per_decoder* decoder, uint32_t* out) {
    uint32_t length, field;
    if (get_counted_octets(decoder, &length, &field) != 0) return -1;
    uint32_t spare = 32 - 8 * length;
    *out = static_cast<uint32_t>(static_cast<int32_t>(field << spare) >> spare);
    if (length > 1) {
        // The first nine bits all alike: the first octet was not needed.
        uint32_t top = field >> (8 * length - 9);
        if (top == 0 || top == 0x1FF) return asn1_decode_error(decoder, "non canonical encoding of integer");
    }
    return 0;
}

}  // namespace orlenta::per
