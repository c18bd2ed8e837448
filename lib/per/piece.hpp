// SPDX-License-Identifier: Apache-2.0
// One value inside of a message, for a codec that reads or writes on its own what is around it.
#pragma once

#include "per/bit_reader.hpp"
#include "per/bit_writer.hpp"

namespace orlenta::per {

// The decoder goes on in `source`, from its position to its end, and leaves the position behind the value. 0,
// or -1 without a report.
struct decode_piece {
    bit_source source;
    bool aligned;
    const asn1_parent_frame* frames;
    stack_guard stack;
    decode_memory memory;
};
int decode_one(decode_piece* piece, const asn1_type_desc* type, void* value);

// The same, behind what `sink` holds.
int encode_one(bit_sink* sink, bool aligned, stack_guard* stack, const asn1_type_desc* type,
               const void* value);

// asn1_uper_decode() or asn1_aper_decode() with `memory` for the blocks of the value.
int64_t decode_within(const decode_memory& memory, bool aligned, void** out, const asn1_type_desc* type,
                      const uint8_t* data, uint64_t size, asn1_error* error);

}  // namespace orlenta::per
