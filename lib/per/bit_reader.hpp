// The PER decoder's context and its bit reader. Results are 0, or -1 after a report.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type_info.h>

#include "core/decode_memory.hpp"
#include "core/stack.hpp"

namespace orlenta::per {

// A row of octets and the part of it that is being read: all of it, or the contents of an open type. A read loads the
// eight octets around its position, so that it does not wait for the one before it.
struct bit_source {
    const uint8_t* octets;  // eight of them at least can be loaded
    uint64_t last_window;   // the highest index from which eight can be loaded
    uint64_t position;      // the next bit
    uint64_t end;           // one past the last bit of the part
    uint64_t origin;        // its first bit, from which alignment and reported positions count
    uint8_t* copy;          // the octets, if they are a block of this decode, which may move them about
};

struct asn1_per_decoder {
    bit_source source;
    int32_t aligned;
    const asn1_parent_frame* frames;  // innermost SEQUENCE or SET
    asn1_type_path path;
    struct ::asn1_error error;
    stack_guard stack;
    decode_memory memory;
    uint8_t short_input[8];  // an input of fewer than eight octets, with zeros behind it
};

// Sets the decoder to the beginning of the input.
void begin_reading(asn1_per_decoder* decoder, const uint8_t* data, uint64_t size);

// Records message, bit position and path, and returns -1.
int asn1_decode_error(asn1_per_decoder* decoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

inline int report_no_memory(asn1_per_decoder* decoder) {
    return asn1_decode_error(decoder, "not enough memory");
}

// Reports that the input is at an end.
int report_end(asn1_per_decoder* decoder) __attribute__((cold));

inline uint64_t bits_consumed(const asn1_per_decoder* decoder) {
    return decoder->source.position - decoder->source.origin;
}
inline uint64_t bits_left(const asn1_per_decoder* decoder) {
    return decoder->source.end - decoder->source.position;
}

// Eight octets, the first one on top.
inline uint64_t load_window(const uint8_t* octets) {
    uint64_t window;
    memcpy(&window, octets, sizeof window);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    window = __builtin_bswap64(window);
#endif
    return window;
}

// The next `width` bits (0 to 57), right-justified; the caller knows that they are there. Near the end of the octets
// the last window holds them.
inline uint64_t peek_bits(const bit_source& source, uint32_t width) {
    uint64_t octet = source.position / 8;
    if (octet > source.last_window) octet = source.last_window;
    uint64_t window = load_window(source.octets + octet) << ((source.position - octet * 8) & 63);
    return window >> 1 >> (63 - width);
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

// Drops the bits up to an octet boundary, of which the input has a whole number.
inline void asn1_align(asn1_per_decoder* decoder) {
    decoder->source.position += (decoder->source.origin - decoder->source.position) & 7;
}

// Reads whole octets; where they run out, those that are there have been read. `out` may lie in the source's own copy,
// below the octets that are read.
int get_octets(asn1_per_decoder* decoder, uint8_t* out, uint64_t count);

// Reads and drops whole octets.
int skip_octets(asn1_per_decoder* decoder, uint64_t count);

}  // namespace orlenta::per
