// SPDX-License-Identifier: Apache-2.0
// Comparison, addition, subtraction, and division by a small number, limb by limb with 64-bit intermediates.
#include <orlenta/integer.h>
#include <orlenta/memory.h>
#include <string.h>

// ---- comparison -------------------------------------------------------------------------------------------

static int compare_magnitudes(const asn1_integer* a, const asn1_integer* b) {
    if (a->size != b->size) return a->size > b->size ? 1 : -1;
    for (uint32_t i = a->size; i-- > 0;) {
        if (a->limbs[i] != b->limbs[i]) return a->limbs[i] > b->limbs[i] ? 1 : -1;
    }
    return 0;
}

static int sign_of(const asn1_integer* a) { return a->size == 0 ? 0 : a->negative != 0 ? -1 : 1; }

int asn1_integer_cmp(const asn1_integer* a, const asn1_integer* b) {
    int sign_a = sign_of(a), sign_b = sign_of(b);
    if (sign_a != sign_b) return sign_a > sign_b ? 1 : -1;
    int order = compare_magnitudes(a, b);
    return sign_a < 0 ? -order : order;
}

int asn1_integer_cmp_si(const asn1_integer* a, int32_t v) {
    uint32_t limb = v < 0 ? 0 - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
    asn1_integer b = {.limbs = &limb, .size = limb != 0 ? 1u : 0u, .capacity = 1, .negative = v < 0};
    return asn1_integer_cmp(a, &b);
}

// ---- addition and subtraction -----------------------------------------------------------------------------

// out = a + b by limbs, a being no shorter; both may be out. Returns the carry.
static uint32_t add_limbs(uint32_t* out, const asn1_integer* a, const asn1_integer* b) {
    uint64_t carry = 0;
    uint32_t i = 0;
    for (; i < b->size; ++i) {
        carry += static_cast<uint64_t>(a->limbs[i]) + b->limbs[i];
        out[i] = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
    for (; i < a->size && carry != 0; ++i) {
        out[i] = a->limbs[i] + 1;
        carry = out[i] == 0;
    }
    if (i < a->size && out != a->limbs) memcpy(out + i, a->limbs + i, (a->size - i) * sizeof *out);
    return static_cast<uint32_t>(carry);
}

// out = a - b by limbs, a being the larger; both may be out.
static void subtract_limbs(uint32_t* out, const asn1_integer* a, const asn1_integer* b) {
    uint64_t borrow = 0;
    uint32_t i = 0;
    for (; i < b->size; ++i) {
        uint64_t difference = static_cast<uint64_t>(a->limbs[i]) - b->limbs[i] - borrow;
        out[i] = static_cast<uint32_t>(difference);
        borrow = difference >> 63;
    }
    for (; i < a->size && borrow != 0; ++i) {
        borrow = a->limbs[i] == 0;
        out[i] = a->limbs[i] - 1;
    }
    if (i < a->size && out != a->limbs) memcpy(out + i, a->limbs + i, (a->size - i) * sizeof *out);
}

// The record to compute in: `r`, or `tmp` if r's limbs are those of the shorter operand and must last.
static asn1_integer* work_record(asn1_integer* r, asn1_integer* tmp, const asn1_integer* longer,
                                 const asn1_integer* shorter) {
    asn1_integer_init(tmp);
    return r == shorter && r != longer ? tmp : r;
}

static void finish(asn1_integer* r, asn1_integer* work, bool negative) {
    if (work != r) {
        asn1_free(r->limbs);
        *r = *work;
    }
    r->negative = negative ? 1 : 0;
    asn1_integer_renorm(r);
}

static int give_up(asn1_integer* tmp) {
    asn1_integer_clear(tmp);
    return -1;
}

static int add_magnitudes(asn1_integer* r, const asn1_integer* a, const asn1_integer* b, bool negative) {
    const asn1_integer* longer = a->size >= b->size ? a : b;
    const asn1_integer* shorter = longer == a ? b : a;
    if (shorter->size == 0) {
        if (asn1_integer_set(r, longer) != 0) return -1;
        finish(r, r, negative);
        return 0;
    }
    asn1_integer tmp;
    asn1_integer* work = work_record(r, &tmp, longer, shorter);
    uint32_t size = longer->size;
    if (asn1_integer_resize(work, size) != 0) return give_up(&tmp);
    if (add_limbs(work->limbs, longer, shorter) != 0) {
        if (asn1_integer_resize(work, size + 1) != 0) return give_up(&tmp);
        work->limbs[size] = 1;
    }
    finish(r, work, negative);
    return 0;
}

static int subtract_magnitudes(asn1_integer* r, const asn1_integer* a, const asn1_integer* b,
                               bool b_negative) {
    int order = compare_magnitudes(a, b);
    if (order == 0) return asn1_integer_set_ui(r, 0);
    const asn1_integer* larger = order > 0 ? a : b;
    const asn1_integer* smaller = order > 0 ? b : a;
    bool negative = order > 0 ? a->negative != 0 : b_negative;
    asn1_integer tmp;
    asn1_integer* work = work_record(r, &tmp, larger, smaller);
    if (asn1_integer_resize(work, larger->size) != 0) return give_up(&tmp);
    subtract_limbs(work->limbs, larger, smaller);
    finish(r, work, negative);
    return 0;
}

int asn1_integer_add_internal(asn1_integer* r, const asn1_integer* a, const asn1_integer* b, int sub) {
    bool b_negative = (b->negative != 0) != (sub != 0);
    if (b_negative == (a->negative != 0)) return add_magnitudes(r, a, b, b_negative);
    return subtract_magnitudes(r, a, b, b_negative);
}

// ---- the rest ---------------------------------------------------------------------------------------------

uint32_t asn1_integer_div_ui(asn1_integer* a, uint32_t d) {
    uint64_t remainder = 0;
    for (uint32_t i = a->size; i-- > 0;) {
        uint64_t dividend = remainder << 32 | a->limbs[i];
        a->limbs[i] = static_cast<uint32_t>(dividend / d);
        remainder = dividend % d;
    }
    asn1_integer_renorm(a);
    return static_cast<uint32_t>(remainder);
}

uint32_t asn1_integer_get_bit_size(const asn1_integer* a) {
    if (a->size == 0) return 0;
    uint32_t top = a->limbs[a->size - 1];
    return a->size * 32 - (top != 0 ? static_cast<uint32_t>(__builtin_clz(top)) : 32);
}
