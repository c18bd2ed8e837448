#include "per/bit_writer.hpp"

#include <string.h>

#include "core/error.hpp"

namespace orlenta::per {

static uint32_t load_word(const uint8_t* octets) {
    return uint32_t{octets[0]} << 24 | uint32_t{octets[1]} << 16 | uint32_t{octets[2]} << 8 | octets[3];
}

// Appends whole words where the accumulator is empty. The buffer grows as it does for single words.
static void put_whole_words(asn1_byte_buffer* buffer, const uint8_t* octets, uint64_t count) {
    while (count > 0 && reserve(buffer, 4)) {
        uint64_t room = (buffer->capacity - buffer->length) / 4;
        uint64_t piece = 4 * (room < count ? room : count);
        memcpy(buffer->data + buffer->length, octets, piece);
        buffer->length += piece;
        octets += piece;
        count -= piece / 4;
    }
}

void put_octets(asn1_per_encoder* encoder, const uint8_t* octets, uint64_t count) {
    const uint8_t* end = octets + count;
    if (encoder->bit_count % 8 == 0) {
        while (octets < end && encoder->bit_count != 0) asn1_put_bits(encoder, 8, *octets++);
        uint64_t words = static_cast<uint64_t>(end - octets) / 4;
        put_whole_words(&encoder->buffer, octets, words);
        encoder->total_bits += static_cast<uint32_t>(words * 32);
        octets += words * 4;
    }
    for (; end - octets >= 4; octets += 4) asn1_put_bits(encoder, 32, load_word(octets));
    while (octets < end) asn1_put_bits(encoder, 8, *octets++);
}

int asn1_put_bits_flush(asn1_per_encoder* encoder) {
    for (; encoder->bit_count > 7; encoder->bit_count -= 8) {
        put_byte(&encoder->buffer, static_cast<uint8_t>(encoder->accumulator >> 24));
        encoder->accumulator <<= 8;
    }
    if (encoder->bit_count > 0) {
        put_byte(&encoder->buffer, static_cast<uint8_t>(encoder->accumulator >> 24));
        encoder->accumulator = 0;
        encoder->bit_count = 0;
    }
    return encoder->buffer.failed != 0 ? -1 : 0;
}

int complete_encoding(asn1_per_encoder* encoder) {
    if (encoder->bit_count == 0 && encoder->buffer.length == 0) asn1_put_bits(encoder, 8, 0);
    return asn1_put_bits_flush(encoder);
}

int asn1_encode_error(asn1_per_encoder* encoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&encoder->error, format, args);
    va_end(args);
    uint64_t position = encoder->buffer.length * 8 + static_cast<uint32_t>(encoder->bit_count);
    encoder->error.bit_position = static_cast<int32_t>(position);
    asn1_type_path_to_str(&encoder->path, encoder->error.path, sizeof encoder->error.path);
    return -1;
}

}  // namespace orlenta::per
