// SPDX-License-Identifier: Apache-2.0
// The entry points: a program first, and the walker for all that it gives up and for every report.
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include "core/error.hpp"
#include "core/stackless.hpp"
#include "oer/walk.hpp"
#include "per/piece.hpp"
#include "per/walk.hpp"
#include "program/arena.hpp"
#include "program/oer_decode.hpp"
#include "program/oer_encode.hpp"
#include "program/per_decode.hpp"
#include "program/per_encode.hpp"

namespace orlenta::program {

static void report_no_record(asn1_error* error) {
    asn1_error_init(error);
    asn1_pstrcpy(error->message, sizeof error->message, "not enough memory");
}

static decode_result run_decode(rule rule, const orlenta_codec* codec, orlenta_arena* arena, void** out,
                                const uint8_t* data, uint64_t size) {
    if (rule == kOer) return run_oer_decode(codec, arena, out, data, size);
    if (rule == kAligned) return run_aper_decode(codec, arena, out, data, size);
    return run_uper_decode(codec, arena, out, data, size);
}

static int64_t decode_by_walker(rule rule, const orlenta_codec* codec, void** out, const uint8_t* data,
                                uint64_t size, asn1_error* error) {
    if (rule == kOer) return oer::decode(out, codec->type, data, size, error);
    return per::asn1_per_decode(out, codec->type, data, size, rule == kAligned, error);
}

// The walker comes to the same block when it may hold no more than the program did, and fails there.
static int64_t report_no_memory(const decode_result& result, rule rule, const orlenta_codec* codec,
                                void** out, const uint8_t* data, uint64_t size, asn1_error* error) {
    if (result.has_record) {
        decode_memory held = {result.memory};
        if (rule == kOer) return oer::decode_within(held, out, codec->type, data, size, error);
        return per::decode_within(held, rule == kAligned, out, codec->type, data, size, error);
    }
    report_no_record(error);
    return -1;
}

static int64_t decode_otherwise(const decode_result& result, rule rule, const orlenta_codec* codec,
                                void** out, const uint8_t* data, uint64_t size, asn1_error* error) {
    if (!error && result.how != kGaveUp) return -1;
    if (result.how == kOutOfMemory) return report_no_memory(result, rule, codec, out, data, size, error);
    return decode_by_walker(rule, codec, out, data, size, error);
}

// A value of the walker's in place of one in the arena.
static int64_t decode_into_heap(const decode_result& result, rule rule, const orlenta_codec* codec,
                                orlenta_arena* arena, orlenta_arena_value* out, const uint8_t* data,
                                uint64_t size, asn1_error* error) {
    void* value = nullptr;
    int64_t used = decode_otherwise(result, rule, codec, &value, data, size, error);
    if (used < 0) return -1;
    if (!adopt(arena, codec->type, value)) {
        release_value(begin_stack(), codec->type, value);
        if (error) report_no_record(error);
        return -1;
    }
    out->record = value;
    return used;
}

static inline int64_t octets_of(const decode_result& result) {
    return static_cast<int64_t>((result.bits + 7) / 8);
}

static inline __attribute__((always_inline)) int64_t decode(rule rule, const orlenta_codec* codec, void** out,
                                                            const uint8_t* data, uint64_t size,
                                                            asn1_error* error) {
    decode_result result = run_decode(rule, codec, nullptr, out, data, size);
    if (__builtin_expect(result.how == kDone, 1)) return octets_of(result);
    return decode_otherwise(result, rule, codec, out, data, size, error);
}

static inline __attribute__((always_inline)) int64_t decode_in_arena(rule rule, const orlenta_codec* codec,
                                                                     orlenta_arena* arena,
                                                                     orlenta_arena_value* out,
                                                                     const uint8_t* data, uint64_t size,
                                                                     asn1_error* error) {
    arena_mark before = mark_of(arena);
    void* value;
    decode_result result = run_decode(rule, codec, arena, &value, data, size);
    out->record = value;
    if (__builtin_expect(result.how == kDone, 1)) return octets_of(result);
    rewind(arena, before);
    return decode_into_heap(result, rule, codec, arena, out, data, size, error);
}

}  // namespace orlenta::program

using namespace orlenta::program;

int64_t orlenta_uper_decode(const orlenta_codec* codec, void** out, const uint8_t* data, uint64_t size,
                            asn1_error* error) {
    return decode(kUnaligned, codec, out, data, size, error);
}

int64_t orlenta_aper_decode(const orlenta_codec* codec, void** out, const uint8_t* data, uint64_t size,
                            asn1_error* error) {
    return decode(kAligned, codec, out, data, size, error);
}

int64_t orlenta_oer_decode(const orlenta_codec* codec, void** out, const uint8_t* data, uint64_t size,
                           asn1_error* error) {
    return decode(kOer, codec, out, data, size, error);
}

int64_t orlenta_uper_decode_arena(const orlenta_codec* codec, orlenta_arena* arena, orlenta_arena_value* out,
                                  const uint8_t* data, uint64_t size, asn1_error* error) {
    return decode_in_arena(kUnaligned, codec, arena, out, data, size, error);
}

int64_t orlenta_aper_decode_arena(const orlenta_codec* codec, orlenta_arena* arena, orlenta_arena_value* out,
                                  const uint8_t* data, uint64_t size, asn1_error* error) {
    return decode_in_arena(kAligned, codec, arena, out, data, size, error);
}

int64_t orlenta_oer_decode_arena(const orlenta_codec* codec, orlenta_arena* arena, orlenta_arena_value* out,
                                 const uint8_t* data, uint64_t size, asn1_error* error) {
    return decode_in_arena(kOer, codec, arena, out, data, size, error);
}

int64_t orlenta_uper_encode2(const orlenta_codec* codec, uint8_t** out, const void* value,
                             asn1_error* error) {
    encode_result result = run_uper_encode(codec, out, value);
    if (__builtin_expect(result.is_done, 1)) return static_cast<int64_t>(result.octets);
    return orlenta::per::asn1_per_encode(out, codec->type, value, error, 0);
}

int64_t orlenta_aper_encode2(const orlenta_codec* codec, uint8_t** out, const void* value,
                             asn1_error* error) {
    encode_result result = run_aper_encode(codec, out, value);
    if (__builtin_expect(result.is_done, 1)) return static_cast<int64_t>(result.octets);
    return orlenta::per::asn1_per_encode(out, codec->type, value, error, 1);
}

int64_t orlenta_oer_encode2(const orlenta_codec* codec, uint8_t** out, const void* value, asn1_error* error) {
    encode_result result = run_oer_encode(codec, out, value);
    if (__builtin_expect(result.is_done, 1)) return static_cast<int64_t>(result.octets);
    return orlenta::oer::encode(out, codec->type, value, error);
}
