// One value inside of a message, for a codec that reads or writes on its own what is around it.
#pragma once

#include "per/bit_reader.hpp"
#include "per/bit_writer.hpp"

namespace orlenta::per {

struct decode_piece {
    const uint8_t* data;  // the message
    uint64_t size;        // octets up to the end of the message, or of the open type around the value
    uint64_t position;    // bit at which the value begins; behind it afterwards
    const asn1_parent_frame* frames;
    stack_guard stack;
};

// UNALIGNED. 0, or -1 without a report.
int decode_one(decode_piece* piece, const asn1_type_desc* type, void* value);

// What has been written: whole octets, and up to 63 bits behind them, the oldest on top.
struct encode_piece {
    asn1_byte_buffer buffer;
    uint64_t pending;
    uint32_t pending_count;
    stack_guard stack;
};
int encode_one(encode_piece* piece, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::per
