// SPDX-License-Identifier: Apache-2.0
// The walkers of a whole message, for the entry points and for what stands between them and the walkers.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type.h>

#include "core/decode_memory.hpp"
#include "core/observer.hpp"

namespace orlenta::oer {

// As asn1_oer_decode().
int64_t decode(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
               struct ::asn1_error* error);

// The same, with `memory` for the blocks of the value.
int64_t decode_within(const decode_memory& memory, void** out, const asn1_type_desc* type,
                      const uint8_t* data, uint64_t size, struct ::asn1_error* error);

// As asn1_oer_decode(), told to `observer`; `error` is not null.
int64_t decode_observed(bit_observer* observer, void** out, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t size, struct ::asn1_error* error);

// As asn1_oer_encode2().
int64_t encode(uint8_t** out, const asn1_type_desc* type, const void* value, struct ::asn1_error* error);

}  // namespace orlenta::oer
