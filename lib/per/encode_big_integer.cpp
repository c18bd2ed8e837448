// SPDX-License-Identifier: Apache-2.0
#include "per/encode_numbers.hpp"
#include "per/encode_type.hpp"
#include "per/widths.hpp"

namespace orlenta::per {

static uint32_t limb_or_zero(const asn1_integer* a, uint32_t index) {
    return index < a->size ? a->limbs[index] : 0;
}

// The limbs below number `count`, from the top one down.
static void put_whole_limbs(asn1_per_encoder* encoder, const asn1_integer* a, uint32_t count) {
    while (count-- > 0) asn1_put_bits(encoder, 32, limb_or_zero(a, count));
}

static void encode_large_positive_integer(asn1_per_encoder* encoder, const uint32_t* limbs,
                                          uint32_t limb_count) {
    if (limb_count == 0) {
        asn1_put_bits(encoder, 8, 0);
        return;
    }
    uint32_t top = limbs[limb_count - 1];
    asn1_put_bits(encoder, 8 * octet_count(top), top);
    for (uint32_t i = limb_count - 1; i-- > 0;) asn1_put_bits(encoder, 32, limbs[i]);
}

static void put_counted_octets(asn1_per_encoder* encoder, const asn1_integer* range,
                               const asn1_integer* offset) {
    asn1_put_bits(encoder, octet_count_width(big_octet_count(range)), big_octet_count(offset) - 1);
    asn1_align(encoder);
    encode_large_positive_integer(encoder, offset->limbs, offset->size);
}

static void put_bit_field(asn1_per_encoder* encoder, const asn1_integer* range, const asn1_integer* offset) {
    uint32_t top = range->size - 1;
    asn1_put_bits(encoder, top_limb_width(asn1_integer_get_bit_size(range)), limb_or_zero(offset, top));
    put_whole_limbs(encoder, offset, top);
}

static void put_offset(asn1_per_encoder* encoder, const asn1_integer* range, const asn1_integer* offset) {
    if (range->size == 0) return;
    switch (range_form_of(encoder->aligned != 0, saturated_range(range))) {
        case kBitField: put_bit_field(encoder, range, offset); break;
        case kOneOctet:
            asn1_align(encoder);
            asn1_put_bits(encoder, 8, limb_or_zero(offset, 0));
            break;
        case kTwoOctets:
            asn1_align(encoder);
            asn1_put_bits(encoder, 16, limb_or_zero(offset, 0));
            break;
        case kCountedOctets: put_counted_octets(encoder, range, offset); break;
    }
}

static int encode_constrained(asn1_per_encoder* encoder, const big_bounds& bounds,
                              const asn1_integer* value) {
    asn1_integer range, offset;
    asn1_integer_init(&range);
    asn1_integer_init(&offset);
    int result = 0;
    if (asn1_integer_add_internal(&range, bounds.upper, bounds.lower, 1) != 0 ||
        asn1_integer_add_internal(&offset, value, bounds.lower, 1) != 0) {
        result = asn1_encode_error(encoder, "not enough memory");
    } else {
        put_offset(encoder, &range, &offset);
    }
    asn1_integer_clear(&range);
    asn1_integer_clear(&offset);
    return result;
}

// A number of more than 16383 octets goes without its length, here and below.
static int encode_semi_constrained(asn1_per_encoder* encoder, const asn1_integer* lower,
                                   const asn1_integer* value) {
    asn1_integer offset;
    asn1_integer_init(&offset);
    int result = 0;
    if (asn1_integer_add_internal(&offset, value, lower, 1) != 0) {
        result = asn1_encode_error(encoder, "not enough memory");
    } else {
        asn1_per_encode_unconstrained_length(encoder, big_octet_count(&offset));
        encode_large_positive_integer(encoder, offset.limbs, offset.size);
    }
    asn1_integer_clear(&offset);
    return result;
}

// `form` holds the low limbs of a two's complement number that takes `bits` bits besides its sign.
static void put_two_complement(asn1_per_encoder* encoder, const asn1_integer* form, uint32_t bits,
                               bool negative) {
    uint32_t octets = (bits + 8) / 8;
    asn1_per_encode_unconstrained_length(encoder, octets);
    if (bits % 32 == 0) {
        // The sign has no limb of its own.
        asn1_put_bits(encoder, 8, negative ? 0xFF : 0x00);
        --octets;
        if (bits == 0) return;
    }
    uint32_t width = top_limb_width(8 * octets);
    uint32_t top = form->size - 1;
    asn1_put_bits(encoder, width, form->limbs[top] & UINT32_MAX >> (32 - width));
    put_whole_limbs(encoder, form, top);
}

static int encode_unconstrained(asn1_per_encoder* encoder, const asn1_integer* value) {
    if (value->size == 0) {
        asn1_per_encode_unconstrained_length(encoder, 1);
        asn1_put_bits(encoder, 8, 0);
        return 0;
    }
    asn1_integer tmp;
    uint32_t bits;
    const asn1_integer* form = asn1_integer_to_2comp(&tmp, value, &bits);
    if (!form) return asn1_encode_error(encoder, "not enough memory");
    put_two_complement(encoder, form, bits, value->negative != 0);
    if (form == &tmp) asn1_integer_clear(&tmp);
    return 0;
}

int encode_big_integer(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_integer* value) {
    big_bounds bounds = big_bounds_of(type);
    bool in_root = (!bounds.lower || asn1_integer_cmp(value, bounds.lower) >= 0) &&
                   (!bounds.upper || asn1_integer_cmp(value, bounds.upper) <= 0);
    if (is_extensible(type)) {
        asn1_put_bits(encoder, 1, in_root ? 0 : 1);
        if (!in_root) return encode_unconstrained(encoder, value);
    } else if (!in_root) {
        return -1;
    }
    if (bounds.lower && bounds.upper) return encode_constrained(encoder, bounds, value);
    if (bounds.lower) return encode_semi_constrained(encoder, bounds.lower, value);
    return encode_unconstrained(encoder, value);
}

}  // namespace orlenta::per
