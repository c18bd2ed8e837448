// SPDX-License-Identifier: Apache-2.0
// The walker of a whole message, for what stands above it.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type.h>

#include "core/observer.hpp"

namespace orlenta::ber {

// As asn1_ber_decode(), told to `observer`; `error` is not null.
int64_t decode_observed(bit_observer* observer, void** out, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t size, struct ::asn1_error* error);

}  // namespace orlenta::ber
