/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Scalars: REAL contents octets, UTF-8, short bit strings as integers, object identifier text. */
#ifndef ORLENTA_SCALAR_H
#define ORLENTA_SCALAR_H

#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Room that asn1_encode_real_der may need: first octet, 2 of exponent, 7 of mantissa. */
#define ASN1_REAL_DER_MAX 10

/** Writes the contents octets of `value` (X.690 clause 8.5, in the DER form of 11.3) and returns their number, 0 to
 * ASN1_REAL_DER_MAX. */
ORLENTA_API int asn1_encode_real_der(uint8_t* out, double value);

/** Reads `length` contents octets, binary of any base or decimal. Returns 0, or -1 with `out` untouched. The decimal
 * form depends on the thread's locale. */
ORLENTA_API int asn1_decode_real_ber(const uint8_t* in, uint32_t length, double* out);

/** Writes the UTF-8 form of a code point, 1 to 4 bytes, and returns the byte count. Surrogates are not refused. */
ORLENTA_API int asn1_to_utf8(uint8_t* out, uint32_t code);

/** Reads one code point from `in`, of which `available` bytes (at least 1) may be touched. Returns it, with the
 * address after the sequence in `*next`, or -1 for a malformed or overlong one. */
ORLENTA_API int32_t asn1_from_utf8(const uint8_t* in, uint64_t available, const uint8_t** next);

/** A bit string of up to 8 bits as an integer, its first bit at the integer's most significant one. Returns 0, or
 * 1 with a line on the standard error stream if an argument is null or the string too long. */
ORLENTA_API int asn1_conv_bitstring_8(const asn1_bit_string* bits, uint8_t* out);
/** The same for up to 16 bits. */
ORLENTA_API int asn1_conv_bitstring_16(const asn1_bit_string* bits, uint16_t* out);
/** The same for up to 32 bits. */
ORLENTA_API int asn1_conv_bitstring_32(const asn1_bit_string* bits, uint32_t* out);

/** Dotted text to contents octets (X.690 clause 8.19, and 8.20 if `relative` is non-zero). `text` is NUL-terminated
 * and `length` bytes long. Arcs go up to 2147483647; the second arc of an absolute identifier up to 39. Returns 0
 * with a new block in `out`, to be released by asn1_free, or -1 with `out` untouched. */
ORLENTA_API int asn1_parse_object_identifier(asn1_string* out, const char* text, uint64_t length,
                                             int relative);

#ifdef __cplusplus
}
#endif

#endif
