// SPDX-License-Identifier: Apache-2.0
#include "oer/piece.hpp"

#include "core/error.hpp"

namespace orlenta::oer {

int decode_one(decode_piece* piece, const asn1_type_desc* type, void* value) {
    asn1_oer_decoder decoder;
    decoder.data = piece->data;
    decoder.size = piece->size;
    decoder.position = piece->position;
    decoder.frames = piece->frames;
    decoder.stack = piece->stack;
    decoder.memory = piece->memory;
    decoder.observer = nullptr;
    asn1_error_init(&decoder.error);
    int result = asn1_oer_decode_type(&decoder, type, value);
    piece->position = decoder.position;
    piece->stack = decoder.stack;
    piece->memory = decoder.memory;
    return result;
}

int encode_one(asn1_byte_buffer* buffer, stack_guard* stack, const asn1_type_desc* type, const void* value) {
    asn1_oer_encoder encoder;
    encoder.buffer = *buffer;
    encoder.stack = *stack;
    asn1_error_init(&encoder.error);
    int result = asn1_oer_encode_type(&encoder, type, value);
    *buffer = encoder.buffer;
    *stack = encoder.stack;
    return buffer->failed != 0 ? -1 : result;
}

}  // namespace orlenta::oer
