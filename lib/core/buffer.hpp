// SPDX-License-Identifier: Apache-2.0
// The byte buffer's inline part: what a writer does for every byte.
#pragma once

#include <orlenta/memory.h>

namespace orlenta {

// The length that `n` more bytes give; a sum beyond 64 bits becomes one that no growth can meet.
inline uint64_t length_with(const asn1_byte_buffer* buf, uint64_t n) {
    uint64_t sum;
    return __builtin_add_overflow(buf->length, n, &sum) ? UINT64_MAX : sum;
}

// Makes room for `n` more bytes; false if memory is not to be had.
inline bool reserve(asn1_byte_buffer* buf, uint64_t n) {
    return n <= buf->capacity - buf->length || __asn1_byte_buffer_realloc(buf, length_with(buf, n)) == 0;
}

// Appends one byte; dropped if memory is not to be had, which `failed` tells at the end.
inline void put_byte(asn1_byte_buffer* buf, uint8_t byte) {
    if (reserve(buf, 1)) buf->data[buf->length++] = byte;
}

}  // namespace orlenta
