// SPDX-License-Identifier: Apache-2.0
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include "core/error.hpp"
#include "core/failed_value.hpp"
#include "per/decode_type.hpp"
#include "per/piece.hpp"
#include "per/walk.hpp"

namespace orlenta::per {

static int64_t bytes_used(const asn1_per_decoder* decoder) {
    return static_cast<int64_t>((bits_consumed(decoder) + 7) / 8);
}

static void begin(asn1_per_decoder* decoder, const uint8_t* data, uint64_t size) {
    begin_reading(decoder, data, size);
    decoder->aligned = 0;
    decoder->frames = nullptr;
    decoder->path.depth = 0;
    asn1_error_init(&decoder->error);
    decoder->stack = begin_stack();
}

// The counter of words is 8 bits wide: offsets work modulo 8192.
static void skip_bits(asn1_per_decoder* decoder, uint32_t count) {
    uint32_t ignored;
    for (uint8_t words = static_cast<uint8_t>(count / 32); words > 0; --words)
        asn1_get_bits(decoder, 32, &ignored);
    asn1_get_bits(decoder, count % 32, &ignored);
}

// A new value of the type in `*out`, or null and the caller's record filled.
static int decode_to_new_value(asn1_per_decoder* decoder, void** out, const asn1_type_desc* type,
                               uint32_t start_bit, asn1_error* error) {
    *out = asn1_mallocz_value(type);
    if (*out) {
        skip_bits(decoder, start_bit);
        if (asn1_per_decode_type(decoder, type, *out) == 0) return 0;
        free_failed_value(type, *out);
        *out = nullptr;
    } else {
        report_no_memory(decoder);
    }
    return hand_out_error(error, &decoder->error);
}

int64_t asn1_per_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                        int32_t aligned, asn1_error* error) {
    asn1_per_decoder decoder;
    begin(&decoder, data, size);
    decoder.aligned = aligned;
    return decode_to_new_value(&decoder, out, type, 0, error) == 0 ? bytes_used(&decoder) : -1;
}

int64_t decode_within(const decode_memory& memory, bool aligned, void** out, const asn1_type_desc* type,
                      const uint8_t* data, uint64_t size, asn1_error* error) {
    asn1_per_decoder decoder;
    begin(&decoder, data, size);
    decoder.aligned = aligned;
    decoder.memory = memory;
    return decode_to_new_value(&decoder, out, type, 0, error) == 0 ? bytes_used(&decoder) : -1;
}

int64_t decode_observed(bit_observer* observer, void** out, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t size, int32_t aligned, asn1_error* error) {
    asn1_per_decoder decoder;
    begin(&decoder, data, size);
    decoder.aligned = aligned;
    decoder.observer = observer;
    observer->path = &decoder.path;
    int result = decode_to_new_value(&decoder, out, type, 0, error);
    observer->path = &observer->own_path;
    return result == 0 ? bytes_used(&decoder) : -1;
}

static int64_t decode_from_bit(void** out, const asn1_type_desc* type, uint32_t start_bit,
                               const uint8_t* data, uint64_t size, asn1_error* error, int32_t* bits) {
    asn1_per_decoder decoder;
    begin(&decoder, data, size);
    decoder.error.line = 0;
    if (static_cast<uint32_t>(size * 8) < start_bit) {
        *out = nullptr;
        return hand_out_error(error, &decoder.error);
    }
    if (decode_to_new_value(&decoder, out, type, start_bit, error) != 0) return -1;
    *bits = static_cast<int32_t>(bits_consumed(&decoder) - start_bit);
    return bytes_used(&decoder);
}

// What tells of a failure where 32 bits of the result are looked at.
constexpr int64_t kToAddrFailed = 0xFFFFFFFF;

static int64_t decode_to_addr(void* value, const asn1_type_desc* type, const uint8_t* data, int32_t size) {
    asn1_per_decoder decoder;
    begin(&decoder, data, size < 0 ? 0 : static_cast<uint64_t>(size));
    return asn1_per_decode_type(&decoder, type, value) == 0 ? bytes_used(&decoder) : kToAddrFailed;
}

}  // namespace orlenta::per

int64_t asn1_uper_decode_ng(void** out, const asn1_type_desc* type, uint32_t start_bit, const uint8_t* data,
                            uint64_t size, asn1_error* error, int32_t* bits) {
    return orlenta::per::decode_from_bit(out, type, start_bit, data, size, error, bits);
}

int64_t asn1_uper_decode_to_addr(void** value_pointer, const asn1_type_desc* type, const uint8_t* data,
                                 int32_t size) {
    return orlenta::per::decode_to_addr(*value_pointer, type, data, size);
}
