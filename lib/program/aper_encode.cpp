// SPDX-License-Identifier: Apache-2.0
namespace orlenta::program {

constexpr bool kIsAligned = true;

}

#include "program/per_encode_ops.hpp"

namespace orlenta::program {

encode_result run_aper_encode(const orlenta_codec* codec, uint8_t** out, const void* value) {
    return run_encode(codec, kAligned, out, value);
}

}  // namespace orlenta::program
