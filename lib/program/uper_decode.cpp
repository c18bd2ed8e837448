// SPDX-License-Identifier: Apache-2.0
namespace orlenta::program {

constexpr bool kIsAligned = false;

}

#include "program/per_decode_ops.hpp"

namespace orlenta::program {

decode_result run_uper_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                              const uint8_t* data, uint64_t size) {
    return run_decode(codec, kUnaligned, arena, out, data, size);
}

}  // namespace orlenta::program
