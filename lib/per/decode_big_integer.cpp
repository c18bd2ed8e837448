// SPDX-License-Identifier: Apache-2.0
#include "per/decode_numbers.hpp"
#include "per/decode_type.hpp"
#include "per/widths.hpp"

namespace orlenta::per {

// Fills `limb_count` limbs, of which the top one has `top_width` bits, from the top down.
static int get_limbs(asn1_per_decoder* decoder, asn1_integer* value, uint32_t limb_count,
                     uint32_t top_width) {
    if (!count_limbs(&decoder->memory, limb_count) || asn1_integer_resize(value, limb_count) != 0) {
        return report_no_memory(decoder);
    }
    uint32_t width = top_width;
    for (uint32_t i = limb_count; i-- > 0; width = 32) {
        if (asn1_get_bits(decoder, width, &value->limbs[i]) != 0) return -1;
    }
    return 0;
}

static int decode_large_positive_integer(asn1_per_decoder* decoder, asn1_integer* value, uint32_t octets) {
    if (get_limbs(decoder, value, (octets + 3) / 4, top_limb_width(8 * octets)) != 0) return -1;
    asn1_integer_renorm(value);
    return 0;
}

// Two's complement behind its length. More octets than needed are taken.
static int decode_large_integer(asn1_per_decoder* decoder, asn1_integer* value) {
    uint32_t octets;
    if (asn1_per_decode_unconstrained_length(decoder, &octets) != 0) return -1;
    if (octets == 0) return asn1_decode_error(decoder, "integer cannot have zero length");
    uint32_t top_width = top_limb_width(8 * octets);
    if (get_limbs(decoder, value, (octets + 3) / 4, top_width) != 0) return -1;
    uint32_t* top = &value->limbs[value->size - 1];
    *top = static_cast<uint32_t>(static_cast<int32_t>(*top << (32 - top_width)) >> (32 - top_width));
    return asn1_integer_from_2comp(value) != 0 ? report_no_memory(decoder) : 0;
}

static int get_bit_field(asn1_per_decoder* decoder, asn1_integer* value, const asn1_integer* range) {
    uint32_t width = asn1_integer_get_bit_size(range);
    if (get_limbs(decoder, value, (width + 31) / 32, top_limb_width(width)) != 0) return -1;
    asn1_integer_renorm(value);
    return 0;
}

static int get_octet_field(asn1_per_decoder* decoder, asn1_integer* value, uint32_t width) {
    uint32_t number;
    asn1_align(decoder);
    if (asn1_get_bits(decoder, width, &number) != 0) return -1;
    if (!count_limbs(&decoder->memory, 1) || asn1_integer_set_ui(value, number) != 0) {
        return report_no_memory(decoder);
    }
    return 0;
}

static int get_counted_octets(asn1_per_decoder* decoder, asn1_integer* value, const asn1_integer* range) {
    uint32_t octets;
    if (asn1_get_bits(decoder, octet_count_width(big_octet_count(range)), &octets) != 0) return -1;
    if (is_observed(decoder)) tell_length(decoder, octets + 1);
    asn1_align(decoder);
    return decode_large_positive_integer(decoder, value, octets + 1);
}

static int get_offset(asn1_per_decoder* decoder, asn1_integer* value, const asn1_integer* range) {
    switch (range_form_of(decoder->aligned != 0, saturated_range(range))) {
        case kOneOctet: return get_octet_field(decoder, value, 8);
        case kTwoOctets: return get_octet_field(decoder, value, 16);
        case kCountedOctets: return get_counted_octets(decoder, value, range);
        case kBitField: break;
    }
    return get_bit_field(decoder, value, range);
}

bool add_lower(decode_memory* memory, asn1_integer* value, const asn1_integer* lower) {
    uint32_t had = value->capacity;
    uint64_t taken = limbs_of_sum(had, lower->size);
    if (!count_limbs(memory, taken) || asn1_integer_add_internal(value, value, lower, 0) != 0) return false;
    uncount_limbs(memory, taken + had - value->capacity);
    return true;
}

static int get_within_range(asn1_per_decoder* decoder, asn1_integer* value, const asn1_integer* lower,
                            const asn1_integer* range) {
    // A range of one number leaves the value at 0, whatever that number is.
    if (range->size == 0) return 0;
    if (get_offset(decoder, value, range) != 0) return -1;
    if (asn1_integer_cmp(value, range) > 0) {
        return asn1_decode_error(decoder, "overflow in constrained whole number");
    }
    return add_lower(&decoder->memory, value, lower) ? 0 : report_no_memory(decoder);
}

static int decode_constrained(asn1_per_decoder* decoder, const big_bounds& bounds, asn1_integer* value) {
    asn1_integer range;
    asn1_integer_init(&range);
    uint64_t taken = limbs_of_sum(bounds.upper->size, bounds.lower->size);
    if (!count_limbs(&decoder->memory, taken)) return report_no_memory(decoder);
    int result = asn1_integer_add_internal(&range, bounds.upper, bounds.lower, 1) != 0
                     ? report_no_memory(decoder)
                     : get_within_range(decoder, value, bounds.lower, &range);
    asn1_integer_clear(&range);
    uncount_limbs(&decoder->memory, taken);
    return result;
}

static int decode_semi_constrained(asn1_per_decoder* decoder, const asn1_integer* lower,
                                   asn1_integer* value) {
    uint32_t octets;
    if (asn1_per_decode_unconstrained_length(decoder, &octets) != 0) return -1;
    if (octets == 0) return asn1_decode_error(decoder, "integer cannot have zero length");
    if (decode_large_positive_integer(decoder, value, octets) != 0) return -1;
    return add_lower(&decoder->memory, value, lower) ? 0 : report_no_memory(decoder);
}

int decode_big_integer(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_integer* value) {
    asn1_integer_init(value);
    big_bounds bounds = big_bounds_of(type);
    if (is_extensible(type)) {
        uint32_t is_extended;
        if (get_extension_bit(decoder, &is_extended) != 0) return -1;
        if (is_extended) return decode_large_integer(decoder, value);
    }
    if (bounds.lower && bounds.upper) return decode_constrained(decoder, bounds, value);
    if (bounds.lower) return decode_semi_constrained(decoder, bounds.lower, value);
    return decode_large_integer(decoder, value);
}

}  // namespace orlenta::per
