// SPDX-License-Identifier: Apache-2.0
// Bits that are being written: whole words of 64 in a buffer, and the rest in a register's width.
#pragma once

#include "core/buffer.hpp"
#include "per/bit_source.hpp"

namespace orlenta::per {

struct bit_sink {
    asn1_byte_buffer buffer;
    uint64_t pending;        // the oldest bit on top, zero below the pending ones
    uint32_t pending_count;  // 0 to 63
    uint32_t dropped_bits;   // of words for which there was no memory
};

inline uint64_t bits_written(const bit_sink& sink) { return sink.buffer.length * 8 + sink.pending_count; }

// Makes room for `count` more octets where there is too little: first for an ordinary message, then for a large one.
bool grow_sink(asn1_byte_buffer* buffer, uint64_t count);

inline bool make_room(asn1_byte_buffer* buffer, uint64_t count) {
    return __builtin_expect(count <= buffer->capacity - buffer->length, 1) || grow_sink(buffer, count);
}

// Stores a whole word; dropped if memory is not to be had.
inline void put_word(bit_sink* sink, uint64_t word) {
    if (!make_room(&sink->buffer, sizeof word)) {
        sink->dropped_bits += 64;
        return;
    }
    store_window(sink->buffer.data + sink->buffer.length, word);
    sink->buffer.length += sizeof word;
}

// Appends the low `width` bits (1 to 64) of `bits`, which must have none set above them.
inline void put_bits(bit_sink* sink, uint32_t width, uint64_t bits) {
    int32_t room = 64 - static_cast<int32_t>(sink->pending_count + width);
    if (room > 0) {
        sink->pending |= bits << room;
        sink->pending_count += width;
        return;
    }
    uint32_t left = static_cast<uint32_t>(-room);
    put_word(sink, sink->pending | bits >> left);
    sink->pending = left == 0 ? 0 : bits << (64 - left);
    sink->pending_count = left;
}

// Appends the first `count` bits at `octets`.
void put_bits_of(bit_sink* sink, const uint8_t* octets, uint64_t count);

// Stores the pending bits, the last octet filled with zeros. -1 if memory failed at any time.
int flush(bit_sink* sink);

}  // namespace orlenta::per
