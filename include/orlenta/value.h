/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Values: allocation, release, copy, comparison, and the rules of presence in a SEQUENCE.
 *
 * All functions walk a descriptor and a value together. They touch only the value given; two threads may read or
 * copy one value at the same time. A kind above 16, which no value can have, ends the process by abort() in free,
 * copy and compare.
 */
#ifndef ORLENTA_VALUE_H
#define ORLENTA_VALUE_H

#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Size of a value record in bytes, or -1 for an unknown kind. */
ORLENTA_API int64_t asn1_get_size(const asn1_type_desc* desc);

/** A zero-filled value record, to be released by asn1_free_value; null for an unknown kind or without memory. */
ORLENTA_API void* asn1_mallocz_value(const asn1_type_desc* desc);

/** Releases all that the value owns, but not the record itself. The record is not zeroed. Null is allowed. A value of
 * any depth can be released on any thread: where the stack runs low, by a list from asn1_malloc. */
ORLENTA_API void asn1_free_value_struct(const asn1_type_desc* desc, void* value);

/** Releases a value and its record. Null is allowed. */
ORLENTA_API void asn1_free_value(const asn1_type_desc* desc, void* value);

/** Deep copy of `src` into the zero-filled record `dst`. Returns 0, or -1 without memory or if the value nests deeper
 * than the thread's stack allows; `dst` is then partial, and fit for asn1_free_value_struct.
 *
 * Memory that cannot be had for an indirect component (a TAGGED with ASN1_WORD0_INDIRECT) or for the value of an
 * open type whose type is known shows as a null pointer there, in a copy that succeeded. Such a copy compares as less
 * than `src`, can be copied and released, and is refused by the encoders and, unless the null is within an open type,
 * by the checker. */
ORLENTA_API int asn1_copy_value(const asn1_type_desc* desc, void* dst, const void* src);

/** A new record with a deep copy of `src`, to be released by asn1_free_value. Null if `src` is null, if the record
 * itself or anything outside indirect components and open types could not be allocated, or if the value nests deeper
 * than the thread's stack allows; nothing is left behind then. Nulls may stand in a copy that succeeded, as above: to
 * rule them out, compare the copy with `src`. */
ORLENTA_API void* asn1_clone_value(const asn1_type_desc* desc, const void* src);

/** Appends a deep copy of `elem` to a list given by the addresses of its count and element block. Returns 0 or -1; after
 * -1 the list must be thrown away.
 *
 * Each call copies all elements to a new block, so that building a list of n elements this way copies some n * n / 2
 * of them. For more than a handful, take a block of n zero-filled elements by asn1_mallocz, fill it, and set the count
 * once. */
ORLENTA_API int asn1_seq_add(const asn1_type_desc* elem_desc, uint64_t* count, void** elements,
                             const void* elem);

/** Removes the element at `index`, which must be below the count. Returns 0 or -1. */
ORLENTA_API int asn1_seq_del(const asn1_type_desc* elem_desc, uint64_t* count, void** elements,
                             int64_t index);

/** Orders two values: negative, 0 or positive. The order is total, with lengths before contents. A null where a value
 * belongs is less than any value. Depth is no limit, as for asn1_free_value_struct. */
ORLENTA_API int asn1_cmp_value(const asn1_type_desc* desc, const void* a, const void* b);

/** Orders two doubles: -1, 0 or 1. -0.0 is below +0.0; all NaNs are equal, and above everything else. */
ORLENTA_API int asn1_cmp_real(double a, double b);

/** The rules of presence after a SEQUENCE was decoded. `fields`, `n` and `seen` as in
 * asn1_sequence_set_default_fields. Returns 0, or -1 with a text in `msg` of at most `msg_size` bytes. */
ORLENTA_API int asn1_sequence_check_fields(const asn1_field* fields, int32_t n, const uint8_t* seen,
                                           char* msg, size_t msg_size);

/** The index of the ENUMERATED item that has the number `value`, or -1. `items` is the descriptor's first item name,
 * `n` its item count, root and extension, `word0` its word 0. */
ORLENTA_API int32_t asn1_find_enum_index(const asn1_word* items, uint32_t n, int32_t value, uint32_t word0);

#ifdef __cplusplus
}
#endif

#endif
