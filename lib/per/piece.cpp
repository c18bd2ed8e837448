// SPDX-License-Identifier: Apache-2.0
#include "per/piece.hpp"

#include "per/decode_type.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

int decode_one(decode_piece* piece, const asn1_type_desc* type, void* value) {
    asn1_per_decoder decoder;
    decoder.source = piece->source;
    decoder.aligned = piece->aligned;
    decoder.frames = piece->frames;
    decoder.path.depth = 0;
    decoder.stack = piece->stack;
    decoder.memory = piece->memory;
    decoder.observer = nullptr;
    int result = asn1_per_decode_type(&decoder, type, value);
    piece->source.position = decoder.source.position;
    piece->stack = decoder.stack;
    piece->memory = decoder.memory;
    return result;
}

int encode_one(bit_sink* sink, bool aligned, stack_guard* stack, const asn1_type_desc* type,
               const void* value) {
    asn1_per_encoder encoder;
    begin_writing(&encoder);
    encoder.aligned = aligned;
    encoder.is_piece = true;
    encoder.sink = *sink;
    encoder.stack = *stack;
    int result = asn1_per_encode_type(&encoder, type, value);
    *sink = encoder.sink;
    *stack = encoder.stack;
    return result;
}

}  // namespace orlenta::per
