// SPDX-License-Identifier: Apache-2.0
// Big integers as contents octets: big-endian, in two's complement or without a sign.
#pragma once

#include "core/buffer.hpp"
#include "core/decode_memory.hpp"

namespace orlenta {

// Limbs of a number in `count` octets (at least 1).
inline uint32_t limbs_of_octets(uint32_t count) { return (count - 1) / 4 + 1; }

// Makes `a`, which has as many limbs, the number in `count` octets.
inline void set_integer_octets(asn1_integer* a, const uint8_t* octets, uint32_t count, bool is_unsigned) {
    uint32_t limb = !is_unsigned && (octets[0] & 0x80) != 0 ? UINT32_MAX : 0;
    for (uint32_t left = count; left > 0; --left) {
        limb = limb << 8 | *octets++;
        if ((left - 1) % 4 == 0) a->limbs[(left - 1) / 4] = limb;
    }
    if (!is_unsigned) {
        asn1_integer_from_2comp(a);
        return;
    }
    a->negative = 0;
    asn1_integer_renorm(a);
}

// The same, with new limbs. Returns 0, or -1 without memory.
inline int read_integer_octets(decode_memory* memory, asn1_integer* a, const uint8_t* octets, uint32_t count,
                               bool is_unsigned) {
    uint32_t size = limbs_of_octets(count);
    asn1_integer_init(a);
    if (!count_limbs(memory, size) || asn1_integer_resize(a, size) != 0) return -1;
    set_integer_octets(a, octets, count, is_unsigned);
    return 0;
}

// Appends the low `count` octets of a two's complement form. Octets above its limbs are `fill`, 0x00 or 0xFF.
inline void put_integer_octets(asn1_byte_buffer* buf, const asn1_integer* form, uint32_t count,
                               uint8_t fill) {
    for (uint32_t i = count; i-- > 0;) {
        put_byte(buf, i / 4 < form->size ? static_cast<uint8_t>(form->limbs[i / 4] >> i % 4 * 8) : fill);
    }
}

}  // namespace orlenta
