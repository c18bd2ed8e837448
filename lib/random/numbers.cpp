// SPDX-License-Identifier: Apache-2.0
#include "random/random.hpp"

namespace orlenta::random {

// ---- INTEGER in 32 bits; all arithmetic is modulo 2^32 ----------------------------------------------------

// 0 to `range`; nothing is drawn for 0.
static uint32_t random_up_to(asn1_random_params* params, uint32_t range) {
    return range == 0 ? 0 : random_uint(params, range);
}

static uint32_t random_unbounded(asn1_random_params* params) {
    uint32_t magnitude = random_uint(params, UINT32_C(0x80000000));
    return coin(params) ? 0 - magnitude : magnitude;
}

int asn1_random_integer(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    integer_bounds bounds = integer_bounds_of(type);
    bool unbounded = leaves_root(params, type) || (!bounds.has_lower && !bounds.has_upper);
    uint32_t number;
    if (unbounded) {
        number = random_unbounded(params);
    } else if (bounds.has_lower) {
        // Without an upper bound the sign of the lower one tells how the word will be read.
        uint32_t natural_top = static_cast<int32_t>(bounds.lower) < 0 ? INT32_MAX : UINT32_MAX;
        uint32_t top = bounds.has_upper ? bounds.upper : natural_top;
        number = bounds.lower + random_up_to(params, top - bounds.lower);
    } else {
        number = bounds.upper - random_up_to(params, bounds.upper + UINT32_C(0x80000000));
    }
    store32(value, number);
    return 0;
}

// ---- INTEGER as a big integer -----------------------------------------------------------------------------

static int random_large_between(asn1_random_params* params, const big_bounds& bounds, asn1_integer* value) {
    asn1_integer range;
    asn1_integer_init(&range);
    int result = asn1_integer_add_internal(&range, bounds.upper, bounds.lower, 1);
    if (result == 0) result = random_large_uint(params, params->integer_bits, value, &range);
    if (result == 0) result = asn1_integer_add_internal(value, value, bounds.lower, 0);
    asn1_integer_clear(&range);
    return result;
}

int asn1_random_large_integer(asn1_random_params* params, const asn1_type_desc* type, asn1_integer* value) {
    bool unbounded = leaves_root(params, type);
    big_bounds bounds = unbounded ? big_bounds{nullptr, nullptr} : big_bounds_of(type);
    asn1_integer_init(value);
    if (bounds.lower && bounds.upper) return random_large_between(params, bounds, value);
    if (random_large_uint(params, params->integer_bits, value, nullptr) < 0) return -1;
    if (bounds.lower) return asn1_integer_add_internal(value, value, bounds.lower, 0);
    if (bounds.upper) return asn1_integer_add_internal(value, bounds.upper, value, 1);
    // The magnitude is not looked at but for valid values: a negative zero may result, which codecs must bear.
    if (coin(params) && (!params->is_valid || value->size > 0)) value->negative = 1;
    return 0;
}

// ---- the others -------------------------------------------------------------------------------------------

int asn1_random_boolean(asn1_random_params* params, void* value) {
    store32(value, coin(params));
    return 0;
}

int asn1_random_enumerated(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    uint32_t items = enum_of(type).total;
    if (items == 0) return -1;
    store32(value, draw(params) % items);
    return 0;
}

// Bits of an IEEE 754 double without its sign: subnormal, or normal with every finite exponent equally
// likely.
static uint64_t random_finite_real(asn1_random_params* params, bool normal) {
    uint64_t low = draw(params);
    uint64_t high = draw(params);
    uint64_t mantissa = (high << 32 | low) & ((UINT64_C(1) << 52) - 1);
    if (normal) return static_cast<uint64_t>(draw(params) % 2046 + 1) << 52 | mantissa;
    return mantissa == 0 ? 1 : mantissa;
}

// A fraction whose decimal digits are few, so that it stays the same in text.
static int random_plain_real(asn1_random_params* params, void* value) {
    double real = static_cast<double>(static_cast<int32_t>(draw(params))) / 1024;
    memcpy(value, &real, sizeof real);
    return 0;
}

int asn1_random_real(asn1_random_params* params, void* value) {
    if (is_worn_out(params)) return 0;  // the number 0; a draw of 0 means NaN
    if (params->is_valid) return random_plain_real(params, value);
    uint32_t sort = draw(params) % 20;
    uint64_t bits = UINT64_C(0x7FF8000000000000);
    if (sort > 0) {
        uint64_t sign = static_cast<uint64_t>(coin(params)) << 63;
        switch (sort) {
            case 1: bits = 0; break;
            case 2: bits = UINT64_C(0x7FF0000000000000); break;
            default: bits = random_finite_real(params, sort > 3); break;
        }
        bits |= sign;
    }
    memcpy(value, &bits, sizeof bits);
    return 0;
}

}  // namespace orlenta::random
