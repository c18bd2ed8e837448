/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * OER: the Octet Encoding Rules (X.696), in their basic form.
 *
 * Constraints decide widths and are not looked at otherwise: asn1_check_constraints() is a separate call. All
 * functions may run in any number of threads at once, on distinct values.
 *
 * Differences from X.696: the tag of a CHOICE alternative has 5 bits of number and more octets from
 * number 31 on, as in BER; an untagged CHOICE inside a CHOICE is preceded by the tag of its first alternative; a REAL
 * always has the contents octets of BER behind a length; an INTEGER with a lower bound of -2^63 or one above has a
 * length in front, not 8 octets; a character string whose two size bounds are equal has no length even if it is
 * extensible, so that one of another size is not read back; and the octets of an open type that its value does not
 * consume are not passed over. UTF8String octets are passed as they are, both ways.
 */
#ifndef ORLENTA_OER_H
#define ORLENTA_OER_H

#include <orlenta/error.h>
#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Decodes the value of `type` at the start of `data`, which holds `size` bytes. Returns the bytes consumed, with the
 * new value in `*out`, to be released by asn1_free_value(); or -1 with `*out` null and, if `error` is not null, the
 * message and the bit position where reading stopped. A few failures, such as a length octet of 0x80 or 0xFF, have
 * an empty message. Bytes after the value are not an error; extension additions that `type` does not know are dropped;
 * unknown items of an ENUMERATED and alternatives of a CHOICE are errors. A value that nests more deeply than the
 * calling thread's stack allows is an error as well. */
ORLENTA_API int64_t asn1_oer_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                    uint64_t size, asn1_error* error);

/** Encodes `value`. Returns the length in bytes with the block in `*out`, to be released by asn1_free(). The encoding
 * may be empty, as that of a NULL is: the result is 0 then, with `*out` null. On failure -1, `*out` null and, if
 * `error` is not null, the message. An INTEGER too large for the width that its bounds give is cut off. */
ORLENTA_API int64_t asn1_oer_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                                     asn1_error* error);

/** The same without a report. */
ORLENTA_API int64_t asn1_oer_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

#ifdef __cplusplus
}
#endif

#endif
