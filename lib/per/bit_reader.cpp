#include "per/bit_reader.hpp"

#include "core/error.hpp"

namespace orlenta::per {

void begin_reading(asn1_per_decoder* decoder, const uint8_t* data, uint64_t size) {
    if (size < sizeof decoder->short_input) {
        for (uint64_t i = 0; i < sizeof decoder->short_input; ++i)
            decoder->short_input[i] = i < size ? data[i] : 0;
        data = decoder->short_input;
    }
    if (size > UINT64_MAX / 8) size = UINT64_MAX / 8;  // no input is that long
    decoder->source = {data, size < 8 ? 0 : size - 8, 0, size * 8, 0, nullptr};
    decoder->memory = begin_decode_memory(size);
}

int asn1_decode_error(asn1_per_decoder* decoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&decoder->error, format, args);
    va_end(args);
    decoder->error.bit_position = static_cast<int32_t>(bits_consumed(decoder));
    asn1_type_path_to_str(&decoder->path, decoder->error.path, sizeof decoder->error.path);
    return -1;
}

int report_end(asn1_per_decoder* decoder) {
    return asn1_decode_error(decoder, "reading after end of stream");
}

static void store_window(uint8_t* octets, uint64_t window) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    window = __builtin_bswap64(window);
#endif
    memcpy(octets, &window, sizeof window);
}

// Octets that are known to be there. Off an octet boundary each takes bits of two.
static void copy_octets(bit_source* source, uint8_t* out, uint64_t count) {
    const uint8_t* from = source->octets + source->position / 8;
    uint32_t shift = source->position % 8;
    source->position += count * 8;
    if (shift == 0) {
        if (count != 0) memmove(out, from, count);
        return;
    }
    for (; count >= 8; count -= 8, from += 8, out += 8)
        store_window(out, load_window(from) << shift | from[8] >> (8 - shift));
    for (; count > 0; --count, ++from)
        *out++ = static_cast<uint8_t>(from[0] << shift | from[1] >> (8 - shift));
}

int get_octets(asn1_per_decoder* decoder, uint8_t* out, uint64_t count) {
    uint64_t left = bits_left(decoder) / 8;
    copy_octets(&decoder->source, out, count < left ? count : left);
    return count <= left ? 0 : report_end(decoder);
}

int skip_octets(asn1_per_decoder* decoder, uint64_t count) {
    uint64_t left = bits_left(decoder) / 8;
    decoder->source.position += 8 * (count < left ? count : left);
    return count <= left ? 0 : report_end(decoder);
}

}  // namespace orlenta::per
