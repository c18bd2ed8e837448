// SPDX-License-Identifier: Apache-2.0
// To machine integers, with overflow detection.
#include <orlenta/integer.h>

// The magnitude of a record of at most two limbs.
static uint64_t small_magnitude(const asn1_integer* a) {
    uint64_t low = a->size > 0 ? a->limbs[0] : 0, high = a->size > 1 ? a->limbs[1] : 0;
    return high << 32 | low;
}

int asn1_integer_get_si_ov(const asn1_integer* a, int32_t* v) {
    if (a->size > 1) return -1;
    int64_t magnitude = static_cast<int64_t>(small_magnitude(a)),
            wide = a->negative != 0 ? -magnitude : magnitude;
    if (wide < INT32_MIN || wide > INT32_MAX) return -1;
    *v = static_cast<int32_t>(wide);
    return 0;
}

int asn1_integer_get_ui_ov(const asn1_integer* a, uint32_t* v) {
    if (a->size > 1 || (a->size != 0 && a->negative != 0)) return -1;
    *v = static_cast<uint32_t>(small_magnitude(a));
    return 0;
}

int asn1_integer_get_si64_ov(const asn1_integer* a, int64_t* v) {
    constexpr uint64_t limit = UINT64_C(1) << 63;
    if (a->size > 2) return -1;
    uint64_t magnitude = small_magnitude(a);
    bool negative = a->negative != 0;
    if (magnitude > (negative ? limit : limit - 1)) return -1;
    *v = static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
    return 0;
}

int asn1_integer_get_ui64_ov(const asn1_integer* a, uint64_t* v) {
    if (v == nullptr || a->size > 2 || (a->size != 0 && a->negative != 0)) return -1;
    *v = small_magnitude(a);
    return 0;
}
