// SPDX-License-Identifier: Apache-2.0
// Between sign and magnitude and two's complement limbs.
#include <orlenta/integer.h>

static void invert(asn1_integer* a) {
    for (uint32_t i = 0; i < a->size; ++i) a->limbs[i] = ~a->limbs[i];
}

const asn1_integer* asn1_integer_to_2comp(asn1_integer* tmp, const asn1_integer* a, uint32_t* bits) {
    if (a->negative == 0) {
        *bits = asn1_integer_get_bit_size(a);
        return a;
    }
    asn1_integer_init(tmp);
    if (asn1_integer_set(tmp, a) != 0) return nullptr;
    tmp->negative = 0;
    // -m is ~(m - 1)
    for (uint32_t i = 0; i < tmp->size && tmp->limbs[i]-- == 0; ++i) {
    }
    asn1_integer_renorm(tmp);
    *bits = asn1_integer_get_bit_size(tmp);
    invert(tmp);
    return tmp;
}

int asn1_integer_from_2comp(asn1_integer* a) {
    if (a->size == 0) return 0;
    bool negative = a->limbs[a->size - 1] >> 31 != 0;
    if (negative) {
        // The inverted top limb has its top bit clear, so the carry ends there at the latest.
        invert(a);
        for (uint32_t i = 0; i < a->size && ++a->limbs[i] == 0; ++i) {
        }
    }
    a->negative = negative ? 1 : 0;
    asn1_integer_renorm(a);
    return 0;
}

int asn1_integer_get_bit_size_2comp(uint32_t* bits, const asn1_integer* a) {
    if (a->negative == 0) {
        *bits = asn1_integer_get_bit_size(a) + 1;
        return 0;
    }
    uint32_t limb = 1;
    const asn1_integer one = {.limbs = &limb, .size = 1, .capacity = 1, .negative = 0};
    asn1_integer below;
    asn1_integer_init(&below);
    int result = asn1_integer_add_internal(&below, a, &one, 1);
    if (result == 0) *bits = asn1_integer_get_bit_size(&below) + 1;
    asn1_integer_clear(&below);
    return result;
}
