// SPDX-License-Identifier: Apache-2.0
#include <orlenta/memory.h>
#include <stdlib.h>
#include <string.h>

// Weak, so that an application's own three replace these for the whole library. Nothing else in the library calls
// the system's allocator.
__attribute__((weak)) void* asn1_malloc(size_t size) { return malloc(size != 0 ? size : 1); }

__attribute__((weak)) void* asn1_realloc(void* ptr, size_t size) {
    return realloc(ptr, size != 0 ? size : 1);
}

__attribute__((weak)) void asn1_free(void* ptr) { free(ptr); }

void* asn1_mallocz(size_t size) {
    void* block = asn1_malloc(size);
    if (block != nullptr) memset(block, 0, size);
    return block;
}

char* asn1_strdup(const char* str) {
    size_t size = strlen(str) + 1;
    void* copy = asn1_malloc(size);
    if (copy != nullptr) memcpy(copy, str, size);
    return static_cast<char*>(copy);
}

static uint64_t largest(uint64_t a, uint64_t b, uint64_t c) {
    uint64_t ab = a > b ? a : b;
    return ab > c ? ab : c;
}

static bool is_too_large(uint64_t n) { return n > SIZE_MAX / 2; }

int __asn1_realloc_buf(void** ptr, uint64_t element_size, uint64_t* capacity, uint64_t needed, int zero) {
    uint64_t old_capacity = *capacity;
    size_t bytes;
    if (is_too_large(old_capacity)) return -1;
    uint64_t new_capacity = largest(old_capacity + old_capacity / 2, 4, needed);
    if (is_too_large(new_capacity)) return -1;
    if (__builtin_mul_overflow(element_size, new_capacity, &bytes)) return -1;
    void* block = asn1_realloc(*ptr, bytes);
    if (block == nullptr) return -1;
    if (zero != 0) {
        size_t old_bytes = static_cast<size_t>(element_size * old_capacity);
        memset(static_cast<uint8_t*>(block) + old_bytes, 0, bytes - old_bytes);
    }
    *ptr = block;
    *capacity = new_capacity;
    return 0;
}

int __asn1_byte_buffer_realloc(asn1_byte_buffer* buf, uint64_t needed) {
    if (buf->failed != 0) return -1;
    uint64_t new_capacity = largest(buf->capacity + buf->capacity / 2, 16, needed);
    void* block =
        is_too_large(new_capacity) ? nullptr : asn1_realloc(buf->data, static_cast<size_t>(new_capacity));
    if (block == nullptr) {
        buf->failed = 1;
        return -1;
    }
    buf->data = static_cast<uint8_t*>(block);
    buf->capacity = new_capacity;
    return 0;
}
