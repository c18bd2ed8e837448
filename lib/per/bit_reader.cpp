// SPDX-License-Identifier: Apache-2.0
#include "per/bit_reader.hpp"

#include "core/error.hpp"

namespace orlenta::per {

void begin_reading(asn1_per_decoder* decoder, const uint8_t* data, uint64_t size) {
    decoder->source = begin_source(data, size, &decoder->short_input);
    decoder->memory = begin_decode_memory(size);
    decoder->observer = nullptr;
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

int get_octets(asn1_per_decoder* decoder, uint8_t* out, uint64_t count) {
    uint64_t left = bits_left(decoder) / 8;
    uint64_t there = count < left ? count : left;
    uint64_t position = decoder->source.position;
    decoder->source.position += there * 8;
    copy_octets(decoder->source, position, out, there);
    return count <= left ? 0 : report_end(decoder);
}

int skip_octets(asn1_per_decoder* decoder, uint64_t count) {
    uint64_t left = bits_left(decoder) / 8;
    decoder->source.position += 8 * (count < left ? count : left);
    return count <= left ? 0 : report_end(decoder);
}

}  // namespace orlenta::per
