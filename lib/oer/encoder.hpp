// SPDX-License-Identifier: Apache-2.0
// The OER encoder's context, and what its files call of each other. Results are 0 or -1; a buffer that can't grow
// shows at the end.
#pragma once

#include <orlenta/ber.h>
#include <orlenta/error.h>

#include "core/descriptor.hpp"
#include "core/stack.hpp"

namespace orlenta::oer {

struct asn1_oer_encoder {
    asn1_byte_buffer buffer;
    struct ::asn1_error error;  // only the message is filled
    stack_guard stack;
};

// Records the message and returns -1 (encode.cpp).
int asn1_encode_error(asn1_oer_encoder* encoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

inline void put_len(asn1_oer_encoder* encoder, uint64_t length) {
    asn1_ber_put_len(&encoder->buffer, static_cast<uint32_t>(length));
}

// encode_scalar.cpp
// Length and unsigned contents: a count or a number.
int asn1_encode_uint32(asn1_oer_encoder* encoder, uint32_t number);
int asn1_oer_encode_integer(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value);
int asn1_oer_encode_boolean(asn1_oer_encoder* encoder, const void* value);
int asn1_oer_encode_enumerated(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value);
int asn1_oer_encode_real(asn1_oer_encoder* encoder, const void* value);

// encode_string.cpp
// The bits of a string of variable size, behind its length and the count of unused bits.
void asn1_oer_put_variable_bits(asn1_oer_encoder* encoder, const uint8_t* data, uint64_t bits);
int asn1_oer_encode_bit_string(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                               const asn1_bit_string* value);
int asn1_oer_encode_octet_string(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                                 const asn1_string* value);
int asn1_oer_encode_char_string(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                                const asn1_string* value);
int asn1_oer_encode_octets(asn1_oer_encoder* encoder, const void* data, uint64_t length);

// encode_sequence.cpp
int asn1_oer_encode_sequence(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value);
int asn1_oer_encode_sequence_of(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                                const asn1_array* value);

// encode.cpp
// To be asked where a recursive type passes through: reports if the stack runs low.
int check_depth(asn1_oer_encoder* encoder);
int asn1_oer_encode_type(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value);
int asn1_oer_encode_open_type(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::oer
