// SPDX-License-Identifier: Apache-2.0
#include <orlenta/memory.h>
#include <stdio.h>
#include <string.h>

#include "core/buffer.hpp"

// Room that every formatted text has at its first attempt.
static constexpr uint64_t kPrintRoom = 512;

void asn1_byte_buffer_init(asn1_byte_buffer* buf) { *buf = {}; }

int asn1_put_bytes(asn1_byte_buffer* buf, const void* src, uint64_t n) {
    if (buf->failed != 0 || !orlenta::reserve(buf, n)) return -1;
    if (n != 0) memcpy(buf->data + buf->length, src, n);
    buf->length += n;
    return 0;
}

int asn1_puts(asn1_byte_buffer* buf, const char* str) { return asn1_put_bytes(buf, str, strlen(str)); }

int asn1_vprintf(asn1_byte_buffer* buf, const char* format, va_list args) {
    if (buf->failed != 0 || !orlenta::reserve(buf, kPrintRoom)) return -1;
    for (;;) {
        uint64_t room = buf->capacity - buf->length;
        va_list attempt;
        va_copy(attempt, args);
        int size = vsnprintf(reinterpret_cast<char*>(buf->data) + buf->length, room, format, attempt);
        va_end(attempt);
        if (size < 0) {
            buf->failed = 1;  // a text with a gap must not pass for a whole one
            return -1;
        }
        if (static_cast<uint64_t>(size) < room) {
            buf->length += static_cast<uint64_t>(size);
            return size;
        }
        if (!orlenta::reserve(buf, static_cast<uint64_t>(size) + 1)) return -1;
    }
}

void asn1_printf(asn1_byte_buffer* buf, const char* format, ...) {
    va_list args;
    va_start(args, format);
    asn1_vprintf(buf, format, args);
    va_end(args);
}

void asn1_pstrcpy(char* dst, size_t size, const char* src) {
    if (size == 0) return;
    size_t length = strnlen(src, size - 1);
    memcpy(dst, src, length);
    dst[length] = '\0';
}
