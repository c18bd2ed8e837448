// SPDX-License-Identifier: Apache-2.0
// Code units of BMPString and UniversalString: native in memory, big-endian in an encoding.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta {

// Turns `count` big-endian units of 1 << `shift` bytes into native ones, in place.
inline void units_from_big_endian(uint8_t* data, uint64_t count, uint32_t shift) {
    for (uint64_t i = 0; shift != 0 && i < count; ++i) {
        const uint8_t* unit = data + (i << shift);
        uint32_t code = 0;
        for (uint32_t octet = 0; octet < UINT32_C(1) << shift; ++octet) code = code << 8 | unit[octet];
        store_code_unit(data, i, shift, code);
    }
}

// Writes `count` native units of 1 << `shift` bytes to `out`, big-endian.
inline void units_to_big_endian(uint8_t* out, const void* units, uint64_t count, uint32_t shift) {
    for (uint64_t i = 0; i < count; ++i) {
        uint32_t code = load_code_unit(units, i, shift);
        for (uint32_t octet = UINT32_C(1) << shift; octet-- > 0;)
            *out++ = static_cast<uint8_t>(code >> octet * 8);
    }
}

}  // namespace orlenta
