// SPDX-License-Identifier: Apache-2.0
// Bits read by position: windows of 64 bits out of a row of octets. There is no state to refill, so that a read does not
// wait for the one before it.
#pragma once

#include <stdint.h>
#include <string.h>

namespace orlenta::per {

// A row of octets and the part of it that is being read: all of it, or the contents of an open type.
struct bit_source {
    const uint8_t* octets;  // eight of them at least can be loaded
    uint64_t last_window;   // the highest index from which eight can be loaded
    uint64_t position;      // the next bit
    uint64_t end;           // one past the last bit of the part
    uint64_t origin;        // its first bit, from which alignment and reported positions count
    uint8_t* copy;          // the octets, if they are a block of this decode, which may move them about
};

// Room for an input of fewer than eight octets, with zeros behind it.
struct short_input {
    uint8_t octets[8];
};

inline bit_source begin_source(const uint8_t* data, uint64_t size, short_input* room) {
    if (size < sizeof room->octets) {
        for (uint64_t i = 0; i < sizeof room->octets; ++i) room->octets[i] = i < size ? data[i] : 0;
        data = room->octets;
    }
    if (size > UINT64_MAX / 16) size = UINT64_MAX / 16;  // no input is that long
    return {data, size < 8 ? 0 : size - 8, 0, size * 8, 0, nullptr};
}

// Octets as a number, the first one on top, and back.
inline uint64_t to_big_endian(uint64_t word) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap64(word);
#else
    return word;
#endif
}
inline uint64_t load_window(const uint8_t* octets) {
    uint64_t window;
    memcpy(&window, octets, sizeof window);
    return to_big_endian(window);
}
inline void store_window(uint8_t* octets, uint64_t window) {
    window = to_big_endian(window);
    memcpy(octets, &window, sizeof window);
}

// Bits of a window that are sure to be there, wherever it begins.
constexpr uint32_t kWindowBits = 57;

// The bits from `position` on, kWindowBits at least or all that are left, the first one on top. Near the end of the
// octets the last window holds them.
inline uint64_t window_at(const bit_source& source, uint64_t position) {
    uint64_t octet = position / 8;
    if (octet > source.last_window) octet = source.last_window;
    return load_window(source.octets + octet) << ((position - octet * 8) & 63);
}

// The topmost `width` bits, 0 to 63.
inline uint64_t top_bits(uint64_t window, uint32_t width) { return window >> 1 >> (63 - width); }

// Copies whole octets that are known to be there; `out` may lie in the source's own copy, below them.
void copy_octets(const bit_source& source, uint64_t position, uint8_t* out, uint64_t count);

}  // namespace orlenta::per
