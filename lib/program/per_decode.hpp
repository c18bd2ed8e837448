// SPDX-License-Identifier: Apache-2.0
// Decoding PER by a program.
#pragma once

#include "program/decoding.hpp"

namespace orlenta::program {

// A new value in `*out`, and null there if there is none. Its blocks are the arena's, if that is not null; those of a
// decode that failed are left there.
decode_result run_uper_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                              const uint8_t* data, uint64_t size);
decode_result run_aper_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                              const uint8_t* data, uint64_t size);

}  // namespace orlenta::program
