// SPDX-License-Identifier: Apache-2.0
// The GSER encoder by subject. Results are 0 or -1; the buffer's own failure shows at the end.
#pragma once

#include "core/text_writer.hpp"

namespace orlenta::gser {

struct asn1_gser_encoder : text_encoder {
    bool hex_bit_strings;  // BIT STRING in hexadecimal digits where its length allows it
};

// encode.cpp
int asn1_gser_encode_type(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value);

// encode_composite.cpp
int encode_sequence(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* record);
int encode_list(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_choice(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value);

// encode_string.cpp: the first prints as many hexadecimal digits as `bits` fill.
void print_hex(asn1_byte_buffer* buffer, const void* data, uint64_t bits);
int encode_bit_string(asn1_gser_encoder* encoder, const void* value);
int encode_octet_string(asn1_gser_encoder* encoder, const void* value);
int encode_char_string(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::gser
