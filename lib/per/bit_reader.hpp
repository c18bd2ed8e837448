// The PER decoder's context and its bit reader. Results are 0, or -1 after a report.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type_info.h>

#include "core/stack.hpp"

namespace orlenta::per {

struct asn1_per_decoder {
    const uint8_t* data;
    uint64_t size;
    uint64_t position;     // next byte to load into `accumulator`
    int32_t bit_count;     // bits in `accumulator`, 0 to 32
    uint32_t accumulator;  // next bit on top, zero below the loaded ones
    int32_t aligned;
    const asn1_parent_frame* frames;  // innermost SEQUENCE or SET
    asn1_type_path path;
    struct ::asn1_error error;
    stack_guard stack;
};

// Records message, bit position and path, and returns -1.
int asn1_decode_error(asn1_per_decoder* decoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

inline uint64_t bits_consumed(const asn1_per_decoder* decoder) {
    return decoder->position * 8 - static_cast<uint32_t>(decoder->bit_count);
}

// asn1_get_bits where the accumulator has too few.
int refill_and_get_bits(asn1_per_decoder* decoder, uint32_t width, uint32_t* out);

// Reads `width` bits (0 to 32), right-justified. At the end of the input nothing is consumed.
inline int asn1_get_bits(asn1_per_decoder* decoder, uint32_t width, uint32_t* out) {
    if (width > static_cast<uint32_t>(decoder->bit_count)) return refill_and_get_bits(decoder, width, out);
    uint64_t bits = uint64_t{decoder->accumulator} << width;
    *out = static_cast<uint32_t>(bits >> 32);
    decoder->accumulator = static_cast<uint32_t>(bits);
    decoder->bit_count -= static_cast<int32_t>(width);
    return 0;
}

// Drops the bits up to an octet boundary, which the accumulator always holds.
inline void asn1_align(asn1_per_decoder* decoder) {
    int32_t padding = decoder->bit_count & 7;
    decoder->accumulator <<= padding;
    decoder->bit_count -= padding;
}

// Reads whole octets; where they run out, those that are there have been read.
int get_octets(asn1_per_decoder* decoder, uint8_t* out, uint64_t count);

// Reads and drops whole octets.
int skip_octets(asn1_per_decoder* decoder, uint64_t count);

}  // namespace orlenta::per
