#include "per/bit_window.hpp"

namespace orlenta::per {

// The first `count` octets (1 to 8) of a window.
static void store_top(uint8_t* out, uint64_t window, uint64_t count) {
    window = to_big_endian(window);
    uint8_t octets[8];
    memcpy(octets, &window, sizeof octets);
    if (count >= 4) {
        memcpy(out, octets, 4);
        memcpy(out + count - 4, octets + count - 4, 4);
    } else {
        out[0] = octets[0];
        out[count / 2] = octets[count / 2];
        out[count - 1] = octets[count - 1];
    }
}

void copy_bits(const bit_window_source* source, uint64_t position, uint8_t* out, uint64_t count) {
    const uint8_t* from = source->octets + position / 8;
    uint32_t shift = position % 8;
    if (shift == 0 && count >= 64) {
        uint64_t octets = count / 8;
        memcpy(out, from, octets);
        out += octets;
        position += octets * 8;
        count %= 8;
    }
    for (; count > 64; count -= 64, position += 64, from += 8, out += 8) {
        uint64_t window = load_big_endian(from) << shift | from[8] >> (8 - shift);
        store_top(out, window, 8);
    }
    for (uint32_t now; count > 0; count -= now, position += now, out += 7) {
        now = count < 56 ? static_cast<uint32_t>(count) : 56;
        store_top(out, window_at(source, position) & UINT64_MAX << (64 - now), (now + 7) / 8);
    }
}

}  // namespace orlenta::per
