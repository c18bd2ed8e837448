// SPDX-License-Identifier: Apache-2.0
namespace orlenta::program {

constexpr bool kIsAligned = true;

}

#include "program/per_decode_ops.hpp"

namespace orlenta::program {

decode_result run_aper_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                              const uint8_t* data, uint64_t size) {
    return run_decode(codec, kAligned, arena, out, data, size);
}

}  // namespace orlenta::program
