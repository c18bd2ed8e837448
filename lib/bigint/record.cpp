// SPDX-License-Identifier: Apache-2.0
// The record itself: life, size, setting.
#include <orlenta/integer.h>
#include <orlenta/memory.h>
#include <string.h>

// The largest count of limbs whose bytes stay below 2^28.
static constexpr uint64_t kMaxLimbs = 0x3FFFFFF;

void asn1_integer_init(asn1_integer* a) { *a = {}; }

void asn1_integer_clear(asn1_integer* a) {
    asn1_free(a->limbs);
    a->limbs = nullptr;
}

int asn1_integer_resize(asn1_integer* a, uint32_t n) {
    if (a->capacity < n) {
        uint64_t grown = static_cast<uint64_t>(a->capacity) + a->capacity / 2;
        uint64_t capacity = grown > n ? grown : n;
        if (capacity > kMaxLimbs) return -1;
        void* limbs = asn1_realloc(a->limbs, capacity * sizeof *a->limbs);
        if (limbs == nullptr) return -1;
        a->limbs = static_cast<uint32_t*>(limbs);
        a->capacity = static_cast<uint32_t>(capacity);
    }
    a->size = n;
    return 0;
}

int asn1_integer_renorm(asn1_integer* a) {
    while (a->size != 0 && a->limbs[a->size - 1] == 0) --a->size;
    return 0;
}

int asn1_integer_set(asn1_integer* dst, const asn1_integer* src) {
    if (dst == src) return 0;
    if (asn1_integer_resize(dst, src->size) != 0) return -1;
    if (src->size != 0) memcpy(dst->limbs, src->limbs, src->size * sizeof *src->limbs);
    dst->negative = src->negative;
    return 0;
}

static int set_magnitude(asn1_integer* a, uint64_t magnitude, bool negative) {
    uint32_t low = static_cast<uint32_t>(magnitude), high = static_cast<uint32_t>(magnitude >> 32);
    if (asn1_integer_resize(a, high != 0 ? 2 : low != 0 ? 1 : 0) != 0) return -1;
    if (a->size > 0) a->limbs[0] = low;
    if (a->size > 1) a->limbs[1] = high;
    a->negative = negative ? 1 : 0;
    return 0;
}

int asn1_integer_set_ui(asn1_integer* a, uint32_t v) { return set_magnitude(a, v, false); }

int asn1_integer_set_si(asn1_integer* a, int32_t v) { return asn1_integer_set_si64(a, v); }

int asn1_integer_set_ui64(asn1_integer* a, uint64_t v) { return set_magnitude(a, v, false); }

int asn1_integer_set_si64(asn1_integer* a, int64_t v) {
    uint64_t bits = static_cast<uint64_t>(v);
    return set_magnitude(a, v < 0 ? 0 - bits : bits, v < 0);
}
