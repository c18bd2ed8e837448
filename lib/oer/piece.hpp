// SPDX-License-Identifier: Apache-2.0
// One value inside of a message, for a codec that reads or writes on its own what is around it.
#pragma once

#include "oer/decoder.hpp"
#include "oer/encoder.hpp"

namespace orlenta::oer {

// The decoder goes on at `position` of `size` octets, and leaves there the position behind the value. 0, or negative
// without a report.
struct decode_piece {
    const uint8_t* data;
    uint64_t size, position;
    const asn1_parent_frame* frames;
    stack_guard stack;
    decode_memory memory;
};
int decode_one(decode_piece* piece, const asn1_type_desc* type, void* value);

// The same, behind what `buffer` holds.
int encode_one(asn1_byte_buffer* buffer, stack_guard* stack, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::oer
