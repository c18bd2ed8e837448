// SPDX-License-Identifier: Apache-2.0
#include "per/bit_writer.hpp"

#include "core/error.hpp"

namespace orlenta::per {

int complete_encoding(asn1_per_encoder* encoder) {
    if (bits_written(encoder->sink) == 0) asn1_put_bits(encoder, 8, 0);
    encoder->total_bits = static_cast<uint32_t>(bits_written(encoder->sink)) + encoder->sink.dropped_bits;
    return flush(&encoder->sink);
}

int asn1_encode_error(asn1_per_encoder* encoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&encoder->error, format, args);
    va_end(args);
    encoder->error.bit_position = static_cast<int32_t>(bits_written(encoder->sink));
    asn1_type_path_to_str(&encoder->path, encoder->error.path, sizeof encoder->error.path);
    return -1;
}

}  // namespace orlenta::per
