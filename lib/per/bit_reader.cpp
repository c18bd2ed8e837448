#include "per/bit_reader.hpp"

#include <string.h>

#include "core/error.hpp"

namespace orlenta::per {

int asn1_decode_error(asn1_per_decoder* decoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&decoder->error, format, args);
    va_end(args);
    decoder->error.bit_position = static_cast<int32_t>(bits_consumed(decoder));
    asn1_type_path_to_str(&decoder->path, decoder->error.path, sizeof decoder->error.path);
    return -1;
}

static int report_end(asn1_per_decoder* decoder) {
    return asn1_decode_error(decoder, "reading after end of stream");
}

static uint32_t load_word(const uint8_t* octets) {
    return uint32_t{octets[0]} << 24 | uint32_t{octets[1]} << 16 | uint32_t{octets[2]} << 8 | octets[3];
}

static void store_word(uint8_t* octets, uint32_t word) {
    octets[0] = static_cast<uint8_t>(word >> 24);
    octets[1] = static_cast<uint8_t>(word >> 16);
    octets[2] = static_cast<uint8_t>(word >> 8);
    octets[3] = static_cast<uint8_t>(word);
}

int refill_and_get_bits(asn1_per_decoder* decoder, uint32_t width, uint32_t* out) {
    uint32_t kept = static_cast<uint32_t>(decoder->bit_count);
    uint64_t remaining = decoder->size - decoder->position;
    uint32_t word = 0;
    uint32_t loaded = 4;
    if (remaining >= 4) {
        word = load_word(decoder->data + decoder->position);
    } else {
        loaded = static_cast<uint32_t>(remaining);
        if (width > kept + 8 * loaded) return report_end(decoder);
        for (uint32_t i = 0; i < loaded; ++i)
            word |= uint32_t{decoder->data[decoder->position + i]} << (24 - 8 * i);
    }
    uint64_t bits = uint64_t{decoder->accumulator} << 32 | uint64_t{word} << (32 - kept);
    *out = static_cast<uint32_t>(bits >> (64 - width));
    decoder->accumulator = static_cast<uint32_t>(uint64_t{word} << (width - kept));
    decoder->bit_count = static_cast<int32_t>(kept + 8 * loaded - width);
    decoder->position += loaded;
    return 0;
}

static uint64_t octets_left(const asn1_per_decoder* decoder) {
    return decoder->size - decoder->position + static_cast<uint32_t>(decoder->bit_count) / 8;
}

// On an octet boundary: what the accumulator holds, and the rest in one piece.
static void copy_aligned(asn1_per_decoder* decoder, uint8_t* out, uint64_t count) {
    for (; count > 0 && decoder->bit_count > 0; --count) {
        *out++ = static_cast<uint8_t>(decoder->accumulator >> 24);
        decoder->accumulator <<= 8;
        decoder->bit_count -= 8;
    }
    if (count > 0) memcpy(out, decoder->data + decoder->position, count);
    decoder->position += count;
}

// Off an octet boundary: words, each of the kept bits and those of the next word that complete it.
static void copy_shifted(asn1_per_decoder* decoder, uint8_t* out, uint64_t count) {
    uint32_t kept = static_cast<uint32_t>(decoder->bit_count);
    for (; count >= 4 && decoder->size - decoder->position >= 4; count -= 4, out += 4) {
        uint32_t word = load_word(decoder->data + decoder->position);
        store_word(out, decoder->accumulator | word >> kept);
        decoder->accumulator = word << (32 - kept);
        decoder->position += 4;
    }
    for (; count > 0; --count) {
        uint32_t octet = 0;
        asn1_get_bits(decoder, 8, &octet);
        *out++ = static_cast<uint8_t>(octet);
    }
}

int get_octets(asn1_per_decoder* decoder, uint8_t* out, uint64_t count) {
    uint64_t left = octets_left(decoder);
    uint64_t there = count < left ? count : left;
    if (decoder->bit_count % 8 == 0) {
        copy_aligned(decoder, out, there);
    } else {
        copy_shifted(decoder, out, there);
    }
    return there == count ? 0 : report_end(decoder);
}

int skip_octets(asn1_per_decoder* decoder, uint64_t count) {
    uint64_t left = octets_left(decoder);
    uint64_t there = count < left ? count : left;
    uint64_t target = bits_consumed(decoder) + there * 8;
    uint32_t used = target % 8;  // bits of the octet at the target that are behind us
    decoder->position = target / 8;
    decoder->accumulator = 0;
    decoder->bit_count = 0;
    if (used != 0) {
        decoder->accumulator = uint32_t{decoder->data[decoder->position++]} << (24 + used);
        decoder->bit_count = static_cast<int32_t>(8 - used);
    }
    return there == count ? 0 : report_end(decoder);
}

}  // namespace orlenta::per
