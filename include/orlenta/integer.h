/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Big integers: INTEGER values that do not fit 32 bits, or that have no bounds.
 *
 * Sign and magnitude in 32-bit limbs, least significant first. A normalised value has a non-zero top limb, and zero
 * is size 0 with negative 0. A zero-filled record is a valid zero. A record holds at most 0x3FFFFFF limbs. Functions
 * with an int result return 0, or -1 on failure (memory or the limit), unless said otherwise; after a failure the
 * value is unspecified, but still owned and fit to be cleared.
 */
#ifndef ORLENTA_INTEGER_H
#define ORLENTA_INTEGER_H

#include <orlenta/type.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A big integer. */
typedef struct asn1_integer {
    ORLENTA_POINTER(uint32_t*, limbs); /**< owned; null if nothing was allocated */
    uint32_t size;                     /**< limbs in use */
    uint32_t capacity;                 /**< limbs allocated */
    int32_t negative;                  /**< 1 below zero, else 0 */
} asn1_integer;

/** @name Life
 * @{ */

/** Zero-fills the record. */
ORLENTA_API void asn1_integer_init(asn1_integer* a);
/** Frees the limbs. The record is finished: asn1_integer_init must come before any further use. */
ORLENTA_API void asn1_integer_clear(asn1_integer* a);
/** Makes `size` n limbs. New limbs hold no meaning; the allocation never shrinks. */
ORLENTA_API int asn1_integer_resize(asn1_integer* a, uint32_t n);
/** Strips high zero limbs. The result carries no information. */
ORLENTA_API int asn1_integer_renorm(asn1_integer* a);

/** @} */

/** @name Setting
 * @{ */

/** A copy of `src`, which may be `dst` itself. */
ORLENTA_API int asn1_integer_set(asn1_integer* dst, const asn1_integer* src);
/** The number `v`. */
ORLENTA_API int asn1_integer_set_ui(asn1_integer* a, uint32_t v);
/** The number `v`. */
ORLENTA_API int asn1_integer_set_si(asn1_integer* a, int32_t v);
/** The number `v`. */
ORLENTA_API int asn1_integer_set_ui64(asn1_integer* a, uint64_t v);
/** The number `v`. */
ORLENTA_API int asn1_integer_set_si64(asn1_integer* a, int64_t v);

/** @} */

/** @name Arithmetic
 *
 * Operands must be normalised.
 * @{ */

/** -1, 0 or 1 by value. */
ORLENTA_API int asn1_integer_cmp(const asn1_integer* a, const asn1_integer* b);
/** The same against a 32-bit number; allocates nothing. */
ORLENTA_API int asn1_integer_cmp_si(const asn1_integer* a, int32_t v);
/** r = a + b if `sub` is 0, r = a - b if it is 1. Any of the three may be the same record. */
ORLENTA_API int asn1_integer_add_internal(asn1_integer* r, const asn1_integer* a, const asn1_integer* b,
                                          int sub);
/** Divides the magnitude in place by `d` (not 0) and returns the remainder. The sign is not touched. */
ORLENTA_API uint32_t asn1_integer_div_ui(asn1_integer* a, uint32_t d);
/** Bits of the magnitude; 0 for zero. */
ORLENTA_API uint32_t asn1_integer_get_bit_size(const asn1_integer* a);

/** @} */

/** @name Machine integers
 *
 * The result is 0, with the number stored, or -1 on overflow, with nothing stored.
 * @{ */

/** As a signed number of 32 bits. */
ORLENTA_API int asn1_integer_get_si_ov(const asn1_integer* a, int32_t* v);
/** As an unsigned number of 32 bits. */
ORLENTA_API int asn1_integer_get_ui_ov(const asn1_integer* a, uint32_t* v);
/** As a signed number of 64 bits. */
ORLENTA_API int asn1_integer_get_si64_ov(const asn1_integer* a, int64_t* v);
/** As an unsigned number of 64 bits. A null `v` gives -1. */
ORLENTA_API int asn1_integer_get_ui64_ov(const asn1_integer* a, uint64_t* v);

/** @} */

/** @name Two's complement
 * @{ */

/** A record whose limbs are the low limbs of a's two's complement form (limbs above its size are all ones for a
 * negative a): `a` itself if it is not negative, else `tmp`, which the caller then clears. `*bits` becomes the bits
 * that the form needs without its sign bit. Null if memory ran out. */
ORLENTA_API const asn1_integer* asn1_integer_to_2comp(asn1_integer* tmp, const asn1_integer* a,
                                                      uint32_t* bits);
/** Turns limbs that hold a two's complement number, its sign the top bit of the top limb, into sign and magnitude. */
ORLENTA_API int asn1_integer_from_2comp(asn1_integer* a);
/** The width in bits that a bound takes in a two's complement field: bit size + 1 for zero and above, bit size of
 * a - 1, plus 1, below. */
ORLENTA_API int asn1_integer_get_bit_size_2comp(uint32_t* bits, const asn1_integer* a);

/** @} */

/** @name Decimal text
 * @{ */

/** The NUL-terminated text, inside a block that the caller releases by asn1_free(*block). `len`, if not null, receives
 * the characters. Null, with a null `*block`, if memory ran out. */
ORLENTA_API char* asn1_integer_to_str(const asn1_integer* a, char** block, size_t* len);
/** Writes the text to a stream, without a newline. */
ORLENTA_API int asn1_integer_out_str(FILE* stream, const asn1_integer* a);
/** Reads an optional minus and digits at `*cursor` and leaves the cursor after them. `a` must be initialised. No
 * digit at all gives 0 and is no failure. */
ORLENTA_API int asn1_integer_from_str(asn1_integer* a, const char** cursor);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
