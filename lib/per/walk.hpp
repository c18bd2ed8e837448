// SPDX-License-Identifier: Apache-2.0
// The walkers of a whole message, for the entry points and for what stands between them and the walkers.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type.h>

#include "core/observer.hpp"

namespace orlenta::per {

// As asn1_uper_decode() and asn1_aper_decode().
int64_t asn1_per_decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                        int32_t aligned, asn1_error* error);

// The same, told to `observer`; `error` is not null.
int64_t decode_observed(bit_observer* observer, void** out, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t size, int32_t aligned, asn1_error* error);

// As asn1_uper_encode2() and asn1_aper_encode2().
int64_t asn1_per_encode(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error* error,
                        int32_t aligned);

}  // namespace orlenta::per
