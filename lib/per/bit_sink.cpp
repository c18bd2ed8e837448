// SPDX-License-Identifier: Apache-2.0
#include "per/bit_sink.hpp"

namespace orlenta::per {

bool grow_sink(asn1_byte_buffer* buffer, uint64_t count) {
    constexpr uint64_t kFirstRoom = 256, kSecondRoom = 1024;
    uint64_t room = buffer->capacity == 0 ? kFirstRoom : kSecondRoom;
    uint64_t needed = length_with(buffer, count);
    return __asn1_byte_buffer_realloc(buffer, needed > room ? needed : room) == 0;
}

// Whole words where none are pending.
static uint64_t put_words(bit_sink* sink, const uint8_t* octets, uint64_t count) {
    uint64_t size = count * sizeof(uint64_t);
    if (make_room(&sink->buffer, size)) {
        memcpy(sink->buffer.data + sink->buffer.length, octets, size);
        sink->buffer.length += size;
    } else {
        sink->dropped_bits += static_cast<uint32_t>(size * 8);
    }
    return size;
}

void put_bits_of(bit_sink* sink, const uint8_t* octets, uint64_t count) {
    if (sink->pending_count % 8 == 0) {
        for (; count >= 8 && sink->pending_count != 0; count -= 8) put_bits(sink, 8, *octets++);
        if (count >= 64) {
            octets += put_words(sink, octets, count / 64);
            count %= 64;
        }
    }
    for (; count >= 64; count -= 64, octets += 8) put_bits(sink, 64, load_window(octets));
    if (count == 0) return;
    uint64_t last = 0;
    uint32_t width = 0;
    for (; width < count; width += 8) last = last << 8 | *octets++;
    put_bits(sink, static_cast<uint32_t>(count), last >> (width - count));
}

int flush(bit_sink* sink) {
    uint64_t octets = (sink->pending_count + 7) / 8;
    if (octets != 0 && make_room(&sink->buffer, sizeof sink->pending)) {
        store_window(sink->buffer.data + sink->buffer.length, sink->pending);
        sink->buffer.length += octets;
    }
    sink->pending = 0;
    sink->pending_count = 0;
    return sink->buffer.failed != 0 ? -1 : 0;
}

}  // namespace orlenta::per
