/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Packed Encoding Rules (ITU-T X.691 | ISO/IEC 8825-2): UNALIGNED ("uper") and ALIGNED ("aper"), BASIC-PER.
 *
 * The codecs walk a descriptor and a value together and enforce no constraint beyond what the encoding itself
 * cannot carry; asn1_check_constraints() is a separate call. Functions keep no state between calls and may run in
 * several threads at once on different values.
 *
 * Errors: where a function takes an `error`, it may be null. The record is written on failure only: `message`, the
 * component path, and `bit_position`, counted from the start of the encoding or, inside an open type or extension
 * addition, from the start of that open type. A failure without a text of its own leaves `message` empty, as an item
 * index or a character that the type does not have.
 *
 * A character outside the permitted alphabet makes encoding fail only where characters are sent as positions in the
 * alphabet. Where they go as themselves, as in an IA5String, its surplus bits fall into those in front of it: what
 * is decoded then differs there too. Check before encoding. UTF8String octets are passed as they are, both ways.
 *
 * An ENUMERATED goes by its items' positions in the schema. Where the items of a type do not ascend, as in
 * US.GenericLocations and US.IncidentResponseEquipment, X.691 clause 14.1 sorts them first, and a peer that does so
 * reads other items.
 *
 * What stands after an extension marker and is unknown to the descriptor is skipped in decoding and is not kept,
 * apart from the index of an unknown alternative or item. These rules can't encode such a value again.
 */
#ifndef ORLENTA_PER_H
#define ORLENTA_PER_H

#include <orlenta/error.h>
#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Encoding
 * @{ */

/** Encodes `value`, a record of `type`, in UNALIGNED PER. Returns the number of bytes of the complete encoding (X.691
 * clause 11.1), which is at least 1, with a new block in `*out` that the caller releases by asn1_free; or -1 with a
 * null `*out`.
 *
 * Components that equal their DEFAULT are left out. A SET and a SET OF go out in the order of descriptor and value. */
ORLENTA_API int64_t asn1_uper_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

/** The same in ALIGNED PER. */
ORLENTA_API int64_t asn1_aper_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

/** asn1_uper_encode that on failure tells in `error` what was wrong. */
ORLENTA_API int64_t asn1_uper_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                                      asn1_error* error);

/** The same in ALIGNED PER. */
ORLENTA_API int64_t asn1_aper_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                                      asn1_error* error);

/** asn1_uper_encode2 that also stores the length in bits, without the zero bits that fill the last byte, in `*bits`
 * if `bits` is not null. An encoding of no bits is one zero byte and counts 8. On failure `*bits` receives what had
 * been written, unless that was nothing. */
ORLENTA_API int64_t asn1_uper_encode2_ng(uint8_t** out, const asn1_type_desc* type, const void* value,
                                         asn1_error* error, int32_t* bits);

/** @} */

/** @name Decoding
 * @{ */

/** Decodes a value of `type` from the `size` bytes at `data`. Returns the number of bytes used, the last one perhaps in
 * part, with a new value in `*out` that the caller releases by asn1_free_value; or -1 with a null `*out`. Bytes
 * after the value are not looked at. */
ORLENTA_API int64_t asn1_uper_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                     uint64_t size, asn1_error* error);

/** The same from ALIGNED PER. */
ORLENTA_API int64_t asn1_aper_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                     uint64_t size, asn1_error* error);

/** asn1_uper_decode of a value that begins `start_bit` bits into `data` and need not end on a byte boundary. The
 * offset works modulo 8192: it must be below that. `*bits`, which must not be null, receives the bits of the value;
 * the result counts the bytes from `data` to the value's end. A `start_bit` beyond the input fails with an empty
 * report. `line` is 0 in reports of this function. */
ORLENTA_API int64_t asn1_uper_decode_ng(void** out, const asn1_type_desc* type, uint32_t start_bit,
                                        const uint8_t* data, uint64_t size, asn1_error* error, int32_t* bits);

/** Unaligned decoding into the caller's record `*value_pointer`, which must be zero-filled and as large as
 * asn1_get_size says. Returns the number of bytes used, or 4294967295 (not -1) on failure. The caller releases what
 * the record owns by asn1_free_value_struct in both cases: after a failure it holds a partial value. */
ORLENTA_API int64_t asn1_uper_decode_to_addr(void** value_pointer, const asn1_type_desc* type,
                                             const uint8_t* data, int32_t size);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
