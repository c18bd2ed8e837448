/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * A message taken apart: what each of its bits is, in order.
 *
 * The decoder itself tells what it reads, so that the explanation is that of the very walk that makes the value. It
 * takes many times as long as a decode: it is for people and for tests, not for traffic.
 */
#ifndef ORLENTA_EXPLAIN_H
#define ORLENTA_EXPLAIN_H

#include <orlenta/error.h>
#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The encoding rules that can be explained. */
typedef enum orlenta_rules {
    ORLENTA_RULES_UPER, /**< X.691, UNALIGNED */
    ORLENTA_RULES_APER, /**< X.691, ALIGNED */
    ORLENTA_RULES_OER,  /**< X.696 */
    ORLENTA_RULES_BER   /**< X.690: BER, and with it DER */
} orlenta_rules;

/** What a run of bits is. */
typedef enum orlenta_bits_kind {
    ORLENTA_BITS_VALUE,     /**< the contents of a value, or a part of them */
    ORLENTA_BITS_EXTENSION, /**< whether what follows lies after an extension marker */
    ORLENTA_BITS_PRESENCE,  /**< which components or extension additions are there */
    ORLENTA_BITS_INDEX,     /**< of the alternative of a CHOICE */
    ORLENTA_BITS_TAG,       /**< identifier octets */
    ORLENTA_BITS_LENGTH,    /**< how many octets, bits, characters or elements follow */
    ORLENTA_BITS_FRAGMENT,  /**< the same of a fragment (X.691 clause 11.9.3.8) */
    ORLENTA_BITS_PADDING,   /**< up to an octet boundary */
    ORLENTA_BITS_END,       /**< end-of-contents octets (X.690 clause 8.1.5) */
    ORLENTA_BITS_UNKNOWN,   /**< what the type does not know: part of a later version of the schema */
    ORLENTA_BITS_TRAILING,  /**< after the message */
    ORLENTA_BITS_REFUSED    /**< what the decoder failed at, and everything after it */
} orlenta_bits_kind;

/** A run of bits. All pointers but `type` are good until the callback returns. */
typedef struct orlenta_bits {
    uint64_t offset; /**< from the start of the message, in bits; that of an octet's highest bit is 0 */
    uint64_t width;  /**< bits; 0 for a value that takes none, as NULL */
    orlenta_bits_kind kind; /**< what the bits are */
    const char* text;       /**< "extension bit 0", "optional: 3 of 8 present", "length 12", "value" ... */
    const char* path;       /**< component path, as a.b[3].c; empty for the message itself */
    const asn1_type_desc* type; /**< the value's, or that of the value which the run belongs to */
    const char* value;          /**< at the last run of a value without components: it, as JSON; else null */
    uint64_t value_length;      /**< its bytes; a zero byte follows them */
} orlenta_bits;

/** Receives one run of bits; `user` is the pointer given to orlenta_explain. */
typedef void orlenta_explain_callback(void* user, const orlenta_bits* bits);

/** Decodes a message of `type` from the `size` bytes at `data` by `rules`, one of ORLENTA_RULES_..., and calls
 * `callback` with `user` for each run of bits, in the order of the message. Every bit of the `size` bytes lies in
 * exactly one run.
 *
 * Returns the bytes that the message takes, the last one perhaps in part, or -1 if it cannot be decoded. Then the runs
 * that were read come first, the last one is ORLENTA_BITS_REFUSED, if any bits are left, and `error`, unless it is
 * null, is filled as by the decoder (per.h, oer.h, ber.h). Other `rules` are such an error, with one run of all bits.
 *
 * Of an open type in fragments, so of more than 16383 octets, the fragments are told and not what is in them. Paths are
 * cut to 1023 characters. Nothing that was allocated is left behind; where there is no memory for the text of a value,
 * `value` is null, as it is for an ENUMERATED item that the type does not know. */
ORLENTA_API int64_t orlenta_explain(const asn1_type_desc* type, int rules, const uint8_t* data, uint64_t size,
                                    orlenta_explain_callback* callback, void* user, asn1_error* error);

#ifdef __cplusplus
}
#endif

#endif
