#include <orlenta/per.h>

#include "core/error.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

static int encode_value(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    int result = asn1_per_encode_type(encoder, type, value);
    if (result != 0) return result;
    return complete_encoding(encoder) == 0 ? 0 : asn1_encode_error(encoder, "not enough memory");
}

// The part of all entry points: a zeroed encoder comes in.
static int64_t encode_to_block(asn1_per_encoder* encoder, uint8_t** out, const asn1_type_desc* type,
                               const void* value, asn1_error* error) {
    asn1_error_init(&encoder->error);
    encoder->stack = begin_stack();
    if (encode_value(encoder, type, value) == 0) {
        *out = encoder->buffer.data;
        return static_cast<int64_t>(encoder->buffer.length);
    }
    asn1_free(encoder->buffer.data);
    *out = nullptr;
    return hand_out_error(error, &encoder->error);
}

static int64_t asn1_per_encode(uint8_t** out, const asn1_type_desc* type, const void* value,
                               asn1_error* error, int32_t aligned) {
    asn1_per_encoder encoder = {};
    encoder.aligned = aligned;
    return encode_to_block(&encoder, out, type, value, error);
}

static int64_t encode_counting_bits(uint8_t** out, const asn1_type_desc* type, const void* value,
                                    asn1_error* error, int32_t* bits) {
    asn1_per_encoder encoder = {};
    int64_t result = encode_to_block(&encoder, out, type, value, error);
    if (bits && encoder.total_bits > 0) *bits = static_cast<int32_t>(encoder.total_bits);
    return result;
}

}  // namespace orlenta::per

int64_t asn1_uper_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    return orlenta::per::asn1_per_encode(out, type, value, nullptr, 0);
}

int64_t asn1_aper_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    return orlenta::per::asn1_per_encode(out, type, value, nullptr, 1);
}

int64_t asn1_uper_encode2(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error) {
    return orlenta::per::asn1_per_encode(out, type, value, error, 0);
}

int64_t asn1_aper_encode2(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error) {
    return orlenta::per::asn1_per_encode(out, type, value, error, 1);
}

int64_t asn1_uper_encode2_ng(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error,
                             int32_t* bits) {
    return orlenta::per::encode_counting_bits(out, type, value, error, bits);
}
