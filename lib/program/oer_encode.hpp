// SPDX-License-Identifier: Apache-2.0
// Encoding OER by a program.
#pragma once

#include "program/per_encode.hpp"

namespace orlenta::program {

// As run_uper_encode(), but that the encoding may be empty, and the block null then.
encode_result run_oer_encode(const orlenta_codec* codec, uint8_t** out, const void* value);

}  // namespace orlenta::program
