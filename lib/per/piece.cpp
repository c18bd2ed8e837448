#include "per/piece.hpp"

#include "per/decode_type.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

int decode_one(decode_piece* piece, const asn1_type_desc* type, void* value) {
    asn1_per_decoder decoder = {};
    decoder.data = piece->data;
    decoder.size = piece->size;
    decoder.position = piece->position / 8;
    decoder.frames = piece->frames;
    decoder.stack = piece->stack;
    uint32_t before;
    int result = asn1_get_bits(&decoder, piece->position % 8, &before);
    if (result == 0) result = asn1_per_decode_type(&decoder, type, value);
    piece->position = bits_consumed(&decoder);
    piece->stack = decoder.stack;
    return result;
}

int encode_one(encode_piece* piece, const asn1_type_desc* type, const void* value) {
    asn1_per_encoder encoder = {};
    encoder.buffer = piece->buffer;
    for (; piece->pending_count >= 8; piece->pending_count -= 8, piece->pending <<= 8) {
        put_byte(&encoder.buffer, static_cast<uint8_t>(piece->pending >> 56));
    }
    encoder.accumulator = static_cast<uint32_t>(piece->pending >> 32);
    encoder.bit_count = static_cast<int32_t>(piece->pending_count);
    encoder.stack = piece->stack;
    int result = asn1_per_encode_type(&encoder, type, value);
    piece->stack = encoder.stack;
    piece->buffer = encoder.buffer;
    piece->pending = uint64_t{encoder.accumulator} << 32;
    piece->pending_count = static_cast<uint32_t>(encoder.bit_count);
    return result;
}

}  // namespace orlenta::per
