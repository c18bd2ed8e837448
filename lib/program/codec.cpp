// The entry points: a program first, and the walker for all that it gives up and for every report.
#include <orlenta/per.h>

#include "program/uper_decode.hpp"
#include "program/uper_encode.hpp"

using namespace orlenta::program;

int64_t orlenta_uper_decode(const orlenta_codec* codec, void** out, const uint8_t* data, uint64_t size,
                            asn1_error* error) {
    decode_result result = run_uper_decode(codec, out, data, size);
    if (__builtin_expect(result.how == kDone, 1)) return static_cast<int64_t>((result.bits + 7) / 8);
    if (result.how == kInvalid && !error) return -1;
    return asn1_uper_decode(out, codec->type, data, size, error);
}

int64_t orlenta_uper_encode2(const orlenta_codec* codec, uint8_t** out, const void* value,
                             asn1_error* error) {
    encode_result result = run_uper_encode(codec, out, value);
    if (__builtin_expect(result.is_done, 1)) return static_cast<int64_t>(result.octets);
    return asn1_uper_encode2(out, codec->type, value, error);
}
