// SPDX-License-Identifier: Apache-2.0
// Octet encoding rules: the program of a type that has one, and the walker for all others.
#include <orlenta/oer.h>

#include "entry/find.hpp"
#include "oer/walk.hpp"

using namespace orlenta;
using program::kOer;

int64_t asn1_oer_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                        asn1_error* error) {
    if (const orlenta_codec* codec = entry::find_codec_for(kOer, type))
        return orlenta_oer_decode(codec, out, data, size, error);
    return oer::decode(out, type, data, size, error);
}

int64_t asn1_oer_encode2(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error) {
    if (const orlenta_codec* codec = entry::find_codec_for(kOer, type))
        return orlenta_oer_encode2(codec, out, value, error);
    return oer::encode(out, type, value, error);
}

int64_t asn1_oer_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    return asn1_oer_encode2(out, type, value, nullptr);
}
