/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Building values: what the functions of the generated headers <orlenta/cn_build.h> and the like are made of. All is
 * inline, allocates by asn1_malloc and asn1_realloc, and works on any record of its shape, decoded or made by hand.
 *
 * Functions that return int give 0, or -1 where memory ran out; pointers are null then. The record is as it was
 * before, and the caller still owns it.
 */
#ifndef ORLENTA_BUILD_H
#define ORLENTA_BUILD_H

#include <orlenta/memory.h>
#include <orlenta/type.h>
#include <orlenta/value.h>
#include <string.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Lists
 * @{ */

/** The block `data` of `count` elements of `size` bytes with room for `capacity` of them, which is `count` at least; null
 * without memory. What is new is zero-filled. */
static inline void* orlenta_block_grow(void* data, uint64_t count, uint64_t capacity, size_t size) {
    void* block;
    if (capacity > PTRDIFF_MAX / size) return NULL;
    block = asn1_realloc(data, (size_t)capacity * size);
    if (block != NULL) memset((uint8_t*)block + (size_t)count * size, 0, (size_t)(capacity - count) * size);
    return block;
}

/** The block with room for one element more, which is zero-filled; null without memory. A list's record tells its count and
 * no capacity, so the allocator is asked each time, for a power of two: a block of that size it returns as it is, and n
 * elements are copied some 2 n times at most. */
static inline void* orlenta_block_add(void* data, uint64_t count, size_t size) {
    void* block;
    uint64_t capacity = 4;
    if (count >= PTRDIFF_MAX / 2 / size) return NULL;
    while (capacity <= count) capacity *= 2;
    block = asn1_realloc(data, (size_t)capacity * size);
    if (block != NULL) memset((uint8_t*)block + (size_t)count * size, 0, size);
    return block;
}

/** @} */

/** @name Strings
 * @{ */

/** A copy of `size` bytes in place of the block `*data`. */
static inline int orlenta_block_set(uint8_t** data, const void* bytes, uint64_t size) {
    uint8_t* block = (uint8_t*)asn1_malloc((size_t)size);
    if (block == NULL) return -1;
    if (size != 0) memcpy(block, bytes, (size_t)size);
    asn1_free(*data);
    *data = block;
    return 0;
}

/** `length` code units of `unit` bytes: 1, but 2 in a BMPString and 4 in a UniversalString. */
static inline int orlenta_string_set(asn1_string* string, const void* text, uint64_t length, size_t unit) {
    if (length > PTRDIFF_MAX / unit || orlenta_block_set(&string->data, text, length * unit) != 0) return -1;
    string->length = length;
    return 0;
}

/** `length` bits of `bytes`, the first of which is bit 7 of the first byte. */
static inline int orlenta_bit_string_set(asn1_bit_string* string, const void* bytes, uint64_t length) {
    if (length > PTRDIFF_MAX || orlenta_block_set(&string->data, bytes, (length + 7) / 8) != 0) return -1;
    if (length % 8 != 0) string->data[length / 8] &= (uint8_t)(0xFF00U >> length % 8);
    string->length = length;
    return 0;
}

/** Sets or clears the bit at `index`; a string that has it not yet is made as long as that, or `least` bits, with zeros. */
static inline int orlenta_bit_string_set_bit(asn1_bit_string* string, uint64_t index, int value,
                                             uint64_t least) {
    uint64_t length = index < least ? least : index + 1;
    uint8_t mask = (uint8_t)(0x80U >> index % 8);
    if (index >= PTRDIFF_MAX) return -1;
    if (index >= string->length) {
        void* block = orlenta_block_grow(string->data, (string->length + 7) / 8, (length + 7) / 8, 1);
        if (block == NULL) return -1;
        string->data = (uint8_t*)block;
        if (string->length % 8 != 0) /* bits after the end may have been anything */
            string->data[string->length / 8] &= (uint8_t)(0xFF00U >> string->length % 8);
        string->length = length;
    }
    if (value)
        string->data[index / 8] = (uint8_t)(string->data[index / 8] | mask);
    else
        string->data[index / 8] = (uint8_t)(string->data[index / 8] & ~mask);
    return 0;
}

/** The bit at `index`; 0 after the end. */
static inline int orlenta_bit_string_get_bit(const asn1_bit_string* string, uint64_t index) {
    return index < string->length && (string->data[index / 8] >> (7 - index % 8) & 1) != 0;
}

/** @} */

/** @name Open types and alternatives
 * @{ */

/** A zero-filled value of `type` in place of what the open type holds. */
static inline void* orlenta_open_set(asn1_open_value* open, const asn1_type_desc* type) {
    void* value = asn1_mallocz_value(type);
    if (value == NULL) return NULL;
    if (open->type != NULL)
        asn1_free_value(open->type, open->data);
    else
        asn1_free(open->data);
    open->type = type;
    open->data = value;
    open->length = 0;
    return value;
}

/** The value, if it is of `type`; else null. */
static inline void* orlenta_open_get(const asn1_open_value* open, const asn1_type_desc* type) {
    return open->type == type ? open->data : NULL;
}

/** Releases what the record of a CHOICE of `size` bytes holds, and leaves it zero-filled. */
static inline void orlenta_choice_clear(void* record, const asn1_type_desc* type, size_t size) {
    asn1_free_value_struct(type, record);
    memset(record, 0, size);
}

/** @} */

#ifdef __cplusplus
}
#endif

#endif
