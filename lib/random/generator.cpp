// SPDX-License-Identifier: Apache-2.0
#include "random/random.hpp"

namespace orlenta::random {

void fill_random(asn1_random_params* params, uint8_t* data, uint64_t length) {
    for (uint64_t i = 0; i < length; ++i) data[i] = random_byte(params);
}

// A number of `bits` bits, 1 to 32, its top bit set and the others from `random`.
static uint32_t with_bit_length(uint32_t random, uint32_t bits) {
    uint32_t top = UINT32_C(1) << (bits - 1);
    return (random & (top - 1)) | top;
}

static uint32_t bit_width(uint32_t number) {
    return number != 0 ? 32 - static_cast<uint32_t>(__builtin_clz(number)) : 0;
}

uint32_t random_uint(asn1_random_params* params, uint32_t limit) {
    uint32_t bits = draw(params) % (bit_width(limit) + 1);
    if (bits == 0) return 0;
    uint32_t number = with_bit_length(draw(params), bits);
    return number > limit ? limit : number;
}

int random_large_uint(asn1_random_params* params, uint32_t default_bits, asn1_integer* result,
                      const asn1_integer* limit) {
    uint32_t max_bits = limit ? asn1_integer_get_bit_size(limit) : default_bits;
    uint32_t bits = draw(params) % (max_bits + 1);
    if (bits == 0) return asn1_integer_set_ui(result, 0);
    uint32_t top = (bits - 1) / 32;
    if (asn1_integer_resize(result, top + 1) < 0) return -1;
    for (uint32_t i = 0; i < top; ++i) result->limbs[i] = draw(params);
    result->limbs[top] = with_bit_length(draw(params), bits - 32 * top);
    if (limit && asn1_integer_cmp(result, limit) > 0) return asn1_integer_set(result, limit);
    return 0;
}

bool leaves_root(asn1_random_params* params, const asn1_type_desc* type) {
    return is_extensible(type) && !params->is_valid && coin(params);
}

size_range choose_bounds(asn1_random_params* params, const asn1_type_desc* type, uint32_t lower,
                         uint32_t upper) {
    if (leaves_root(params, type)) return {0, UINT32_MAX};
    return {lower, upper};
}

uint32_t choose_length(asn1_random_params* params, size_range range, uint32_t spread) {
    uint32_t width = range.maximum - range.minimum;
    return range.minimum + draw(params) % ((width < spread ? width : spread) + 1);
}

}  // namespace orlenta::random
