/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Random values of any type, for tests: the same seed and descriptor give the same value on every machine. */
#ifndef ORLENTA_RANDOM_H
#define ORLENTA_RANDOM_H

#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A new value of type `type`, made from `seed`; the caller releases it by asn1_free_value (value.h).
 *
 * The values reach into corners: extreme integers, NaN and infinities, extension additions, sizes outside an
 * extensible constraint. They are well formed in memory, but need not satisfy every constraint. An open type
 * holds raw bytes, a BER OCTET STRING; a CONTAINING constraint is not honoured.
 *
 * Lists have up to 10 elements above their lower bound, strings up to 200 octets or characters (BIT STRING:
 * 100 bits), big integers without an upper limit up to 512 bits. A type that can contain itself gives very
 * large values for some seeds. The first time that a value reaches 2048 levels of nesting, all that is still
 * missing of it takes its smallest legal content: optional parts absent, least counts, lower bounds, the
 * alternative that ends soonest. Such a value takes some 300 KiB of stack.
 *
 * Returns null if the value's record could not be allocated, if the calling thread's stack does not suffice for the
 * value, or if the type contains itself without a way to end. If memory ran out later, the value is filled as
 * far as it went, and is released in the same way: an indirect component may be a null pointer then. A
 * descriptor whose alphabet is empty ends the process by abort(). */
ORLENTA_API void* asn1_random(const asn1_type_desc* type, uint32_t seed);

/** A new value of moderate size that satisfies every constraint known from the descriptor (orlenta_check passes it) and
 * comes back the same from all encoding rules; the caller releases it by asn1_free_value (value.h).
 *
 * Sizes and numbers are within the root of extensible constraints, characters printable where the alphabet has such,
 * reals finite. An open type holds a value of a type from its object set, and its key is set to that; one without a
 * type to choose from is left out if it is optional, and else holds raw bytes, which the text rules do not take back.
 * A string with a CONTAINING constraint holds a valid value in unaligned PER.
 *
 * From 40 levels or 600 parts on, what is missing gets its smallest content. Null if memory ran out, if the thread's
 * stack does not suffice, or if the type has no value that ends. */
ORLENTA_API void* orlenta_random_valid(const asn1_type_desc* type, uint32_t seed);

#ifdef __cplusplus
}
#endif

#endif
