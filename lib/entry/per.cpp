// SPDX-License-Identifier: Apache-2.0
// Packed encoding rules: the program of a type that has one, and the walker for all others.
#include <orlenta/per.h>

#include "entry/find.hpp"
#include "per/walk.hpp"

using namespace orlenta;
using program::kAligned;
using program::kUnaligned;

int64_t asn1_uper_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                         asn1_error* error) {
    if (const orlenta_codec* codec = entry::find_codec_for(kUnaligned, type))
        return orlenta_uper_decode(codec, out, data, size, error);
    return per::asn1_per_decode(out, type, data, size, 0, error);
}

int64_t asn1_aper_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                         asn1_error* error) {
    if (const orlenta_codec* codec = entry::find_codec_for(kAligned, type))
        return orlenta_aper_decode(codec, out, data, size, error);
    return per::asn1_per_decode(out, type, data, size, 1, error);
}

int64_t asn1_uper_encode2(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error) {
    if (const orlenta_codec* codec = entry::find_codec_for(kUnaligned, type))
        return orlenta_uper_encode2(codec, out, value, error);
    return per::asn1_per_encode(out, type, value, error, 0);
}

int64_t asn1_aper_encode2(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error) {
    if (const orlenta_codec* codec = entry::find_codec_for(kAligned, type))
        return orlenta_aper_encode2(codec, out, value, error);
    return per::asn1_per_encode(out, type, value, error, 1);
}

int64_t asn1_uper_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    return asn1_uper_encode2(out, type, value, nullptr);
}

int64_t asn1_aper_encode(uint8_t** out, const asn1_type_desc* type, const void* value) {
    return asn1_aper_encode2(out, type, value, nullptr);
}
