// SPDX-License-Identifier: Apache-2.0
#include <orlenta/per.h>

#include "core/error.hpp"
#include "per/encode_type.hpp"
#include "per/walk.hpp"

namespace orlenta::per {

static int encode_value(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    int result = asn1_per_encode_type(encoder, type, value);
    if (result == 0) {
        result = complete_encoding(encoder) == 0 ? 0 : asn1_encode_error(encoder, "not enough memory");
    } else {
        encoder->total_bits = static_cast<uint32_t>(bits_written(encoder->sink)) + encoder->sink.dropped_bits;
    }
    return result;
}

// The part of all entry points.
static int64_t encode_to_block(asn1_per_encoder* encoder, uint8_t** out, const asn1_type_desc* type,
                               const void* value, asn1_error* error, int32_t aligned) {
    begin_writing(encoder);
    encoder->aligned = aligned;
    if (encode_value(encoder, type, value) == 0) {
        *out = encoder->sink.buffer.data;
        return static_cast<int64_t>(encoder->sink.buffer.length);
    }
    asn1_free(encoder->sink.buffer.data);
    *out = nullptr;
    return hand_out_error(error, &encoder->error);
}

int64_t asn1_per_encode(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error,
                        int32_t aligned) {
    asn1_per_encoder encoder;
    return encode_to_block(&encoder, out, type, value, error, aligned);
}

static int64_t encode_counting_bits(uint8_t** out, const asn1_type_desc* type, const void* value,
                                    asn1_error* error, int32_t* bits) {
    asn1_per_encoder encoder;
    int64_t result = encode_to_block(&encoder, out, type, value, error, 0);
    if (bits && encoder.total_bits > 0) *bits = static_cast<int32_t>(encoder.total_bits);
    return result;
}

}  // namespace orlenta::per

int64_t asn1_uper_encode2_ng(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error,
                             int32_t* bits) {
    return orlenta::per::encode_counting_bits(out, type, value, error, bits);
}
