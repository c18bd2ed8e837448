// SPDX-License-Identifier: Apache-2.0
// What a wasm module hands to JavaScript beside the results of its functions.
#pragma once

#include <orlenta/catalogue.h>
#include <orlenta/integer.h>
#include <orlenta/memory.h>

#define ORLENTA_JS extern "C" __attribute__((visibility("default"), used))

namespace orlenta::js {

// Hands over the contents of a buffer, and with them the block. False if memory ran out.
bool hand_over(const asn1_byte_buffer& buffer);

// The module's types; null until there are any.
const orlenta_catalogue* catalogue();

// Whether a number is beyond those that JavaScript's bear one by one.
inline bool is_wide(const asn1_integer* number) {
    constexpr uint32_t kSafeBits = 53;
    return asn1_integer_get_bit_size(number) > kSafeBits;
}

void put_json_string(asn1_byte_buffer* buffer, const char* text);

}  // namespace orlenta::js
