// SPDX-License-Identifier: Apache-2.0
// Words of whole octets, the first one on top.
#pragma once

#include "per/bit_source.hpp"

namespace orlenta::program {

constexpr uint32_t kGroupOctets = 120;  // of a group in OER, at the most

inline uint32_t to_big_endian32(uint32_t word) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap32(word);
#else
    return word;
#endif
}
inline uint32_t load_octets32(const uint8_t* octets) {
    uint32_t word;
    memcpy(&word, octets, sizeof word);
    return to_big_endian32(word);
}
inline void store_octets32(uint8_t* octets, uint32_t word) {
    word = to_big_endian32(word);
    memcpy(octets, &word, sizeof word);
}
inline uint64_t load_octets64(const uint8_t* octets) { return per::load_window(octets); }
inline void store_octets64(uint8_t* octets, uint64_t word) { per::store_window(octets, word); }

// Most strings are short, for which a call costs more than the copy.
inline void copy_octets(uint8_t* out, const uint8_t* octets, uint64_t count) {
    if (count > 16) {
        memcpy(out, octets, count);
    } else if (count >= 8) {
        memcpy(out, octets, 8);
        memcpy(out + count - 8, octets + count - 8, 8);
    } else if (count >= 4) {
        memcpy(out, octets, 4);
        memcpy(out + count - 4, octets + count - 4, 4);
    } else if (count != 0) {
        out[0] = octets[0];
        out[count / 2] = octets[count / 2];
        out[count - 1] = octets[count - 1];
    }
}

}  // namespace orlenta::program
