/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * BER and DER: the Basic and Distinguished Encoding Rules (X.690).
 *
 * The decoder takes every form of BER, so DER as well. Constraints are not looked at: asn1_check_constraints() is a
 * separate call. All functions may run in any number of threads at once, on distinct values and buffers.
 *
 * A type that the tables hold under the tag which it has as a component stands under that tag on its own as well: 1,828
 * of the 3,101 named types of the shipped sets begin with a context tag, not with that of their kind, when they are
 * encoded alone, and are decoded alone only from there. UTF8String octets are passed as they are, both ways.
 */
#ifndef ORLENTA_BER_H
#define ORLENTA_BER_H

#include <orlenta/error.h>
#include <orlenta/memory.h>
#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Decoding
 * @{ */

/** Decodes the value of `type` at the start of `data`, which holds `length` bytes. Returns the bytes consumed, with
 * the new value in `*out`, to be released by asn1_free_value(); or -1 with `*out` null and, if `error` is not null,
 * the message and the bit position where reading stopped. Bytes after the value are not an error. The most frequent
 * failure, a length beyond what is left, has no message of its own, nor has the length octet 0xFF: the text is empty
 * then, or tells of the end of an earlier part that had passed.
 *
 * Looser than X.690: an INTEGER of no octets is 0, lengths and long-form tags need not be minimal, stray bits after
 * a BIT STRING are cleared, the optional components between two mandatory ones may come in any order, unknown
 * components at the end of a SEQUENCE and anywhere in a SET are skipped. Stricter: lengths stay below 2^31, unknown
 * items of an extensible ENUMERATED and alternatives of an extensible CHOICE are errors. A value that nests more
 * deeply than the calling thread's stack allows is an error as well. */
ORLENTA_API int64_t asn1_ber_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                    uint64_t length, asn1_error* error);

/** @} */

/** @name Encoding
 * @{ */

/** The choices that BER leaves to the sender. A record of zeros asks for definite lengths, primitive strings, and no
 * sorting. */
typedef struct asn1_ber_encode_params {
    /** Non-zero: constructed encodings have the indefinite form (8.1.3.6). */
    int32_t indefinite_length;
    /** The most octets in a segment of a string (8.7.3); 0: strings are primitive. A segment of a BIT STRING needs 2 at
     * least, one of which counts the unused bits. */
    int32_t segment_size;
    int32_t sort_set;    /**< non-zero: components of a SET in the order of their tags (10.3) */
    int32_t sort_set_of; /**< non-zero: elements of a SET OF in the order of their encodings (11.6) */
} asn1_ber_encode_params;

/** Encodes `value`. Returns the length in bytes with the block in `*out`, to be released by asn1_free(); or -1 with
 * `*out` null: a selector or item out of range, a BIT STRING with a segment size of 1, nesting that exceeds the
 * stack, or no memory. There is no message. A component equal to its DEFAULT is left out. */
ORLENTA_API int64_t asn1_ber_encode(uint8_t** out, const asn1_type_desc* type, const void* value,
                                    const asn1_ber_encode_params* params);

/** The same in DER: definite lengths, primitive strings, both sorts (clauses 10 and 11). */
ORLENTA_API int64_t asn1_der_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

/** @} */

/** @name Writers
 *
 * For encodings made by hand, into a buffer that the caller initialises, tests for `failed` at the end and releases
 * by asn1_free(). A constructed element whose size is not known beforehand is:
 *
 *     asn1_ber_put_tag(&buf, tag, 1);
 *     uint32_t start = asn1_ber_put_len_start(&buf);
 *     ... contents, by any writers ...
 *     asn1_ber_put_len_end(&buf, start);
 *
 * Such pairs nest, and close in reverse order. Lengths and offsets are below 2^32.
 * @{ */

/** Identifier octets (8.1.2). `tag` has the class in bits 20..19 and the number in bits 18..0; `constructed` is 0 or
 * 1. */
ORLENTA_API void asn1_ber_put_tag(asn1_byte_buffer* buf, uint32_t tag, int constructed);

/** A definite length in the fewest octets (8.1.3.3 to 8.1.3.5, 10.1). */
ORLENTA_API void asn1_ber_put_len(asn1_byte_buffer* buf, uint32_t length);

/** Keeps room for a length, and returns the offset in the buffer at which it begins. */
ORLENTA_API uint32_t asn1_ber_put_len_start(asn1_byte_buffer* buf);

/** Writes the length of all that came since asn1_ber_put_len_start() returned `start`, and moves that up to it.
 * Returns the buffer's new length in bytes. */
ORLENTA_API uint64_t asn1_ber_put_len_end(asn1_byte_buffer* buf, uint32_t start);

/** Length and contents of an INTEGER, in the fewest octets (8.3). Returns 0. */
ORLENTA_API int asn1_ber_encode_int32(asn1_byte_buffer* buf, int32_t value);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
