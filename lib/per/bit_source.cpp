// SPDX-License-Identifier: Apache-2.0
#include "per/bit_source.hpp"

namespace orlenta::per {

// Off an octet boundary each octet takes bits of two.
void copy_octets(const bit_source& source, uint64_t position, uint8_t* out, uint64_t count) {
    const uint8_t* from = source.octets + position / 8;
    uint32_t shift = position % 8;
    if (shift == 0) {
        if (count != 0) memmove(out, from, count);
        return;
    }
    for (; count >= 8; count -= 8, from += 8, out += 8)
        store_window(out, load_window(from) << shift | from[8] >> (8 - shift));
    for (; count > 0; --count, ++from)
        *out++ = static_cast<uint8_t>(from[0] << shift | from[1] >> (8 - shift));
}

}  // namespace orlenta::per
