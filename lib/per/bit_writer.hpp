// The PER encoder's context and its bit writer.
#pragma once

#include <orlenta/error.h>

#include "core/buffer.hpp"
#include "core/stack.hpp"

namespace orlenta::per {

struct asn1_per_encoder {
    asn1_byte_buffer buffer;
    int32_t bit_count;     // bits in `accumulator`, 0 to 31
    uint32_t accumulator;  // oldest bit on top, zero below the pending ones
    int32_t aligned;
    uint32_t total_bits;  // all that was put, padding of the last octet apart
    asn1_type_path path;
    asn1_error error;
    stack_guard stack;
};

// Stores a whole word; dropped if memory is not to be had.
inline void put_word(asn1_byte_buffer* buffer, uint32_t word) {
    if (!reserve(buffer, 4)) return;
    uint8_t* octets = buffer->data + buffer->length;
    octets[0] = static_cast<uint8_t>(word >> 24);
    octets[1] = static_cast<uint8_t>(word >> 16);
    octets[2] = static_cast<uint8_t>(word >> 8);
    octets[3] = static_cast<uint8_t>(word);
    buffer->length += 4;
}

// Appends the low `width` bits (1 to 32) of `bits`, which must have none set above them.
inline void asn1_put_bits(asn1_per_encoder* encoder, uint32_t width, uint32_t bits) {
    int32_t room = 32 - encoder->bit_count - static_cast<int32_t>(width);
    encoder->total_bits += width;
    if (room > 0) {
        encoder->accumulator |= bits << room;
        encoder->bit_count += static_cast<int32_t>(width);
        return;
    }
    int32_t left = -room;
    put_word(&encoder->buffer, encoder->accumulator | bits >> left);
    encoder->accumulator = left == 0 ? 0 : bits << (32 - left);
    encoder->bit_count = left;
}

// Fills up to an octet boundary.
inline void asn1_align(asn1_per_encoder* encoder) {
    uint32_t padding = static_cast<uint32_t>(-encoder->bit_count) & 7;
    if (padding != 0) asn1_put_bits(encoder, padding, 0);
}

// Appends whole octets.
void put_octets(asn1_per_encoder* encoder, const uint8_t* octets, uint64_t count);

// Empties the accumulator, its last octet filled with zero bits. -1 if memory failed at any time.
int asn1_put_bits_flush(asn1_per_encoder* encoder);

// Makes a complete encoding of what was put (X.691 clause 11.1): at least one octet, and whole ones.
int complete_encoding(asn1_per_encoder* encoder);

// Records message, bit position and path, and returns -1.
int asn1_encode_error(asn1_per_encoder* encoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

}  // namespace orlenta::per
