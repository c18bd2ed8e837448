/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Codecs prepared for one type: what asn1_uper_decode() and its like derive from the descriptor with every message is
 * derived once, into a compact program that runs several times as fast. Values, bytes, results and error records are the
 * same.
 *
 * A codec is made from any descriptor and may be used by any number of threads at once. The descriptors that it was made
 * from must stay valid. Each set of encoding rules has its own program, which takes up to a millisecond to make and some
 * kilobytes (for the largest types of LTE RRC some hundred): the one for UNALIGNED PER is made with the codec, another
 * one by the first call that needs it. To avoid that cost with the first message, decode anything beforehand, even an
 * empty message. If there is no memory for a program, the descriptor is walked.
 */
#ifndef ORLENTA_CODEC_H
#define ORLENTA_CODEC_H

#include <orlenta/error.h>
#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A type's programs. */
typedef struct orlenta_codec orlenta_codec;

/** A codec for values of `type`, which the caller releases by orlenta_codec_free; null if memory ran out, or if
 * the type has no values. */
ORLENTA_API orlenta_codec* orlenta_codec_new(const asn1_type_desc* type);

/** The codec of `type` that is compiled in, if there is one, else null: those of the message sets and of other schemas for
 * which orlentac has written programs. asn1_uper_decode() and its like look for it by themselves; to decode into an arena,
 * ask for it once. It is constant: do not pass it to orlenta_codec_free(). */
ORLENTA_API const orlenta_codec* orlenta_codec_find(const asn1_type_desc* type);

/** Releases a codec of orlenta_codec_new; null is allowed. Values outlive it. */
ORLENTA_API void orlenta_codec_free(orlenta_codec* codec);

/** @name UNALIGNED PER
 * @{ */

/** As asn1_uper_decode (per.h): the number of bytes used and a new value in `*out`, or -1 with a null `*out` and, if it
 * is not null, `error` filled. The caller releases the value by orlenta_free_value or by asn1_free_value. */
ORLENTA_API int64_t orlenta_uper_decode(const orlenta_codec* codec, void** out, const uint8_t* data,
                                        uint64_t size, asn1_error* error);

/** As asn1_uper_encode2 (per.h): the number of bytes, at least 1, in a new block `*out` that the caller releases by
 * asn1_free; or -1 with a null `*out` and, if it is not null, `error` filled. */
ORLENTA_API int64_t orlenta_uper_encode2(const orlenta_codec* codec, uint8_t** out, const void* value,
                                         asn1_error* error);

/** @} */

/** @name ALIGNED PER
 * @{ */

/** As orlenta_uper_decode, by the rules of asn1_aper_decode (per.h). */
ORLENTA_API int64_t orlenta_aper_decode(const orlenta_codec* codec, void** out, const uint8_t* data,
                                        uint64_t size, asn1_error* error);

/** As orlenta_uper_encode2, by the rules of asn1_aper_encode2 (per.h). */
ORLENTA_API int64_t orlenta_aper_encode2(const orlenta_codec* codec, uint8_t** out, const void* value,
                                         asn1_error* error);

/** @} */

/** @name OER
 * @{ */

/** As orlenta_uper_decode, by the rules of asn1_oer_decode (oer.h). */
ORLENTA_API int64_t orlenta_oer_decode(const orlenta_codec* codec, void** out, const uint8_t* data,
                                       uint64_t size, asn1_error* error);

/** As orlenta_uper_encode2, by the rules of asn1_oer_encode2 (oer.h): an encoding may be empty, with a result of 0 and a
 * null `*out`. */
ORLENTA_API int64_t orlenta_oer_encode2(const orlenta_codec* codec, uint8_t** out, const void* value,
                                        asn1_error* error);

/** @} */

/** @name Arenas
 *
 * For programs that decode, look and discard: all blocks of a value come from one arena, at a fraction of an allocator's
 * cost, and are released by its reset. An arena serves one thread at a time.
 * @{ */

/** Memory for values that go together. */
typedef struct orlenta_arena orlenta_arena;

/** A value in an arena. It must not be changed, nor given to asn1_free_value or orlenta_free_value, and ends with the next
 * reset. Reading, encoding, checking, comparing and cloning are as with any value. */
typedef struct orlenta_arena_value {
    const void* record; /**< of the codec's type; null: none */
} orlenta_arena_value;

/** An empty arena that takes chunks of `chunk_size` bytes (0: 16 KiB) and more from asn1_malloc; null if memory was not to
 * be had. The caller releases it by orlenta_arena_destroy. */
ORLENTA_API orlenta_arena* orlenta_arena_create(size_t chunk_size);

/** Ends all values in the arena. Its chunks stay for those to come. */
ORLENTA_API void orlenta_arena_reset(orlenta_arena* arena);

/** Ends all values in the arena, and releases it; null is allowed. */
ORLENTA_API void orlenta_arena_destroy(orlenta_arena* arena);

/** As orlenta_uper_decode, with the value in the arena, beside those that are there; a null `out->record` on
 * failure. */
ORLENTA_API int64_t orlenta_uper_decode_arena(const orlenta_codec* codec, orlenta_arena* arena,
                                              orlenta_arena_value* out, const uint8_t* data, uint64_t size,
                                              asn1_error* error);
/** The same as orlenta_aper_decode. */
ORLENTA_API int64_t orlenta_aper_decode_arena(const orlenta_codec* codec, orlenta_arena* arena,
                                              orlenta_arena_value* out, const uint8_t* data, uint64_t size,
                                              asn1_error* error);
/** The same as orlenta_oer_decode. */
ORLENTA_API int64_t orlenta_oer_decode_arena(const orlenta_codec* codec, orlenta_arena* arena,
                                             orlenta_arena_value* out, const uint8_t* data, uint64_t size,
                                             asn1_error* error);

/** @} */

/** @name Values
 * @{ */

/** As asn1_free_value (value.h), for a value of the codec's type, wherever it comes from; null is allowed. */
ORLENTA_API void orlenta_free_value(const orlenta_codec* codec, void* value);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
