// SPDX-License-Identifier: Apache-2.0
// Encoding PER by a program.
#pragma once

#include "program/codec.hpp"

namespace orlenta::program {

struct encode_result {
    bool is_done;  // else the walker has to tell
    uint64_t octets;
    uint32_t walker_pieces;  // parts of the value that the walker encoded
};

// A new block in `*out`, and null there if there is none.
encode_result run_uper_encode(const orlenta_codec* codec, uint8_t** out, const void* value);
encode_result run_aper_encode(const orlenta_codec* codec, uint8_t** out, const void* value);

}  // namespace orlenta::program
