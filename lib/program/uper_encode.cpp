// SPDX-License-Identifier: Apache-2.0
namespace orlenta::program {

constexpr bool kIsAligned = false;

}

#include "program/per_encode_ops.hpp"

namespace orlenta::program {

encode_result run_uper_encode(const orlenta_codec* codec, uint8_t** out, const void* value) {
    return run_encode(codec, kUnaligned, out, value);
}

}  // namespace orlenta::program
