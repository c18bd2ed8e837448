// SPDX-License-Identifier: Apache-2.0
// Decoding OER by a program.
#pragma once

#include "program/decoding.hpp"

namespace orlenta::program {

// As run_uper_decode().
decode_result run_oer_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                             const uint8_t* data, uint64_t size);

}  // namespace orlenta::program
