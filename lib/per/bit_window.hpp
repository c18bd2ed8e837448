// Bits read by position: windows of 64 bits out of a row of octets. There is no state to refill, so that a read does not
// wait for the one before it.
#pragma once

#include <stdint.h>
#include <string.h>

namespace orlenta::per {

// Octets as a number, the first one on top, and back.
inline uint64_t to_big_endian(uint64_t word) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap64(word);
#else
    return word;
#endif
}
inline uint64_t load_big_endian(const uint8_t* octets) {
    uint64_t word;
    memcpy(&word, octets, sizeof word);
    return to_big_endian(word);
}

// Bits of a window that are sure to be there, wherever it begins.
constexpr uint32_t kWindowBits = 57;

struct bit_window_source {
    const uint8_t* octets;  // eight of them at least can be loaded
    uint64_t last_window;   // the highest index from which eight can be loaded
    uint64_t end;           // one past the last bit
    uint8_t short_input[8];
};

// Makes `source` the `size` octets at `data`; fewer than eight are copied.
inline void begin_windows(bit_window_source* source, const uint8_t* data, uint64_t size) {
    if (size > UINT64_MAX / 16) size = UINT64_MAX / 16;  // no input is as long as positions reach
    source->octets = data;
    source->last_window = size - 8;
    source->end = size * 8;
    if (size >= 8) return;
    memset(source->short_input, 0, sizeof source->short_input);
    for (uint64_t i = 0; i < size; ++i) source->short_input[i] = data[i];
    source->octets = source->short_input;
    source->last_window = 0;
}

inline bool has_bits(const bit_window_source* source, uint64_t position, uint64_t count) {
    return position + count <= source->end;
}

// kWindowBits at least from `position` on, or all that are left, on top.
inline uint64_t window_at(const bit_window_source* source, uint64_t position) {
    uint64_t octet = position / 8;
    if (__builtin_expect(octet > source->last_window, 0)) octet = source->last_window;
    return load_big_endian(source->octets + octet) << ((position - octet * 8) & 63);
}

// The topmost `width` bits, 0 to 63.
inline uint64_t top_bits(uint64_t window, uint32_t width) { return window >> 1 >> (63 - width); }

// Copies `count` bits that are there to whole octets, the last one filled with zeros.
void copy_bits(const bit_window_source* source, uint64_t position, uint8_t* out, uint64_t count);

}  // namespace orlenta::per
