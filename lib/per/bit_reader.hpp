// SPDX-License-Identifier: Apache-2.0
// The PER decoder's context and its bit reader. Results are 0, or -1 after a report.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type_info.h>

#include "core/decode_memory.hpp"
#include "core/observer.hpp"
#include "core/stack.hpp"
#include "per/bit_source.hpp"

namespace orlenta::per {

struct asn1_per_decoder {
    bit_source source;
    int32_t aligned;
    const asn1_parent_frame* frames;  // innermost SEQUENCE or SET
    asn1_type_path path;
    struct ::asn1_error error;
    stack_guard stack;
    decode_memory memory;
    bit_observer* observer;  // null in an ordinary decode
    struct short_input short_input;
};

// Sets the decoder to the beginning of the input, without an observer.
void begin_reading(asn1_per_decoder* decoder, const uint8_t* data, uint64_t size);

// Records message, bit position and path, and returns -1.
int asn1_decode_error(asn1_per_decoder* decoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

inline int report_no_memory(asn1_per_decoder* decoder) {
    return asn1_decode_error(decoder, "not enough memory");
}

// Reports that the input is at an end.
int report_end(asn1_per_decoder* decoder) __attribute__((cold));

// Whether what is read has to be named: tell_bits(decoder->observer, decoder->source.position, ...).
inline bool is_observed(const asn1_per_decoder* decoder) {
    return kObserves && __builtin_expect(decoder->observer != nullptr, 0);
}

inline uint64_t bits_consumed(const asn1_per_decoder* decoder) {
    return decoder->source.position - decoder->source.origin;
}
inline uint64_t bits_left(const asn1_per_decoder* decoder) {
    return decoder->source.end - decoder->source.position;
}

// The next `width` bits (0 to 57), right-justified; the caller knows that they are there.
inline uint64_t peek_bits(const bit_source& source, uint32_t width) {
    return top_bits(window_at(source, source.position), width);
}

// Reads `width` bits (0 to 32), right-justified. At the end of the input nothing is consumed.
inline int asn1_get_bits(asn1_per_decoder* decoder, uint32_t width, uint32_t* out) {
    if (__builtin_expect(width > bits_left(decoder), 0)) {
        report_end(decoder);
        return -1;  // said here, so that the compiler knows that `out` is set after 0
    }
    *out = static_cast<uint32_t>(peek_bits(decoder->source, width));
    decoder->source.position += width;
    return 0;
}

inline int get_extension_bit(asn1_per_decoder* decoder, uint32_t* bit) {
    if (asn1_get_bits(decoder, 1, bit) != 0) return -1;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_EXTENSION, "extension bit %u",
                  *bit);
    }
    return 0;
}

// Drops the bits up to an octet boundary, of which the input has a whole number.
inline void asn1_align(asn1_per_decoder* decoder) {
    decoder->source.position += (decoder->source.origin - decoder->source.position) & 7;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_PADDING, "padding");
    }
}

// Reads whole octets; where they run out, those that are there have been read. `out` may lie in the source's own copy,
// below the octets that are read.
int get_octets(asn1_per_decoder* decoder, uint8_t* out, uint64_t count);

// Reads and drops whole octets.
int skip_octets(asn1_per_decoder* decoder, uint64_t count);

}  // namespace orlenta::per
