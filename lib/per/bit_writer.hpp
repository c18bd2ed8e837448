// SPDX-License-Identifier: Apache-2.0
// The PER encoder's context and its bit writer.
#pragma once

#include <orlenta/error.h>

#include "core/stack.hpp"
#include "per/bit_sink.hpp"

namespace orlenta::per {

struct asn1_per_encoder {
    bit_sink sink;
    int32_t aligned;
    bool is_piece;        // the sink began elsewhere: see asn1_put_char()
    uint32_t total_bits;  // of a complete encoding, padding of the last octet apart
    asn1_type_path path;
    asn1_error error;
    stack_guard stack;
};

// Readies all but `aligned`.
inline void begin_writing(asn1_per_encoder* encoder) {
    encoder->sink = {};
    encoder->is_piece = false;
    encoder->total_bits = 0;
    encoder->path.depth = 0;
    asn1_error_init(&encoder->error);
    encoder->stack = begin_stack();
}

// Appends the low `width` bits (1 to 32) of `bits`, which must have none set above them.
inline void asn1_put_bits(asn1_per_encoder* encoder, uint32_t width, uint32_t bits) {
    put_bits(&encoder->sink, width, bits);
}

// Appends a character. Bits that it has above `width` damage those before it, back to the last boundary of 32 bits. A
// piece does not know where that is: -1.
inline int asn1_put_char(asn1_per_encoder* encoder, uint32_t width, uint32_t code) {
    if (uint64_t{code} >> width != 0) {
        if (encoder->is_piece) return -1;
        uint32_t reach = width + bits_written(encoder->sink) % 32;
        if (reach < 32) code &= (UINT32_C(1) << reach) - 1;
    }
    asn1_put_bits(encoder, width, code);
    return 0;
}

// Fills up to an octet boundary.
inline void asn1_align(asn1_per_encoder* encoder) {
    uint32_t padding = -encoder->sink.pending_count & 7;
    if (padding != 0) asn1_put_bits(encoder, padding, 0);
}

// Appends whole octets.
inline void put_octets(asn1_per_encoder* encoder, const uint8_t* octets, uint64_t count) {
    put_bits_of(&encoder->sink, octets, count * 8);
}

// Makes a complete encoding of what was put (X.691 clause 11.1): at least one octet, and whole ones. -1 if memory failed
// at any time.
int complete_encoding(asn1_per_encoder* encoder);

// Records message, bit position and path, and returns -1.
int asn1_encode_error(asn1_per_encoder* encoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

}  // namespace orlenta::per
