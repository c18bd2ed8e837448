/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Memory: the allocator that an application can replace, and the growing byte buffer of all writers. */
#ifndef ORLENTA_MEMORY_H
#define ORLENTA_MEMORY_H

#include <orlenta/type.h>
#include <stdarg.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Allocator
 *
 * All memory of the library comes from these three. They have weak binding: an application that defines functions
 * of these names has the whole library use them. A replacement must never answer a size of 0 with null, and must
 * be safe for concurrent calls if the application uses the library from several threads. One decode has at most 1 MiB
 * and 4,096 bytes for each octet of its input at a time, the record of the outermost value apart, and fails with "not
 * enough memory" where it would need more.
 * @{ */

/** A block of `size` bytes (0 counts as 1), or null. */
ORLENTA_API void* asn1_malloc(size_t size);

/** The block `ptr` (or a new one, if null) with `size` bytes (0 counts as 1; nothing is freed), or null, and then
 * `ptr` is still valid. */
ORLENTA_API void* asn1_realloc(void* ptr, size_t size);

/** Releases a block; null is allowed. */
ORLENTA_API void asn1_free(void* ptr);

/** A zero-filled block of `size` bytes from asn1_malloc, or null. */
ORLENTA_API void* asn1_mallocz(size_t size);

/** A copy of the text `str` from asn1_malloc, or null. */
ORLENTA_API char* asn1_strdup(const char* str);

/** @} */

/** @name Byte buffer
 *
 * Writers need not look at results: once a growth fails, `failed` is set for good and later writes are dropped.
 * Test it once at the end. The block belongs to whoever takes `data`, who releases it by asn1_free.
 * @{ */

/** A block of bytes that grows. */
typedef struct asn1_byte_buffer {
    uint8_t* data;     /**< null before the first write */
    uint64_t length;   /**< bytes in use */
    uint64_t capacity; /**< bytes allocated */
    int32_t failed;    /**< non-zero once memory has run out */
} asn1_byte_buffer;

/** Empties the record. Nothing is allocated until the first write. */
ORLENTA_API void asn1_byte_buffer_init(asn1_byte_buffer* buf);

/** Makes room for `needed` bytes in all, growing by half the capacity at the least. Returns 0, or -1 with `failed`
 * set and the old block still in place. */
ORLENTA_API int __asn1_byte_buffer_realloc(asn1_byte_buffer* buf, uint64_t needed);

/** Appends `n` bytes. Negative if memory ran out, and then nothing is appended. */
ORLENTA_API int asn1_put_bytes(asn1_byte_buffer* buf, const void* src, uint64_t n);

/** Appends a text without its terminator. Result as asn1_put_bytes. */
ORLENTA_API int asn1_puts(asn1_byte_buffer* buf, const char* str);

/** Appends formatted text without its terminator. Returns the number of bytes appended, or a negative number if memory
 * ran out or the format failed; `failed` is then set. */
ORLENTA_API int asn1_vprintf(asn1_byte_buffer* buf, const char* format, va_list args)
    __attribute__((format(printf, 2, 0)));

/** The same with its arguments in line, and no result. */
ORLENTA_API void asn1_printf(asn1_byte_buffer* buf, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

/** Grows an array of `*capacity` elements of `element_size` bytes at `*ptr` to `needed` elements or more. New
 * elements are zero-filled if `zero` is non-zero. Returns 0, or -1 with nothing changed.
 * `ptr` is the address of the caller's pointer. */
ORLENTA_API int __asn1_realloc_buf(void** ptr, uint64_t element_size, uint64_t* capacity, uint64_t needed,
                                   int zero);

/** Copies at most `size` - 1 characters of `src` and terminates the copy. Does nothing if `size` is 0. */
ORLENTA_API void asn1_pstrcpy(char* dst, size_t size, const char* src);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
