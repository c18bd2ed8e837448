// SPDX-License-Identifier: Apache-2.0
// The BER encoder's context, and what its files call of each other. Results are 0 or -1; a buffer that can't grow
// shows at the end.
#pragma once

#include <orlenta/ber.h>

#include "core/descriptor.hpp"
#include "core/stack.hpp"

namespace orlenta::ber {

struct asn1_ber_encoder {
    asn1_byte_buffer buffer;
    asn1_ber_encode_params params;
    stack_guard stack;
};

// The length of a constructed encoding, of which the contents follow: reserved, or left open (encode.cpp).
uint32_t put_len_start(asn1_ber_encoder* encoder);
void put_len_end(asn1_ber_encoder* encoder, uint32_t start);

inline void put_tag(asn1_ber_encoder* encoder, uint32_t tag, int constructed) {
    asn1_ber_put_tag(&encoder->buffer, tag, constructed);
}
inline void put_len(asn1_ber_encoder* encoder, uint64_t length) {
    asn1_ber_put_len(&encoder->buffer, static_cast<uint32_t>(length));
}

// encode_scalar.cpp
int asn1_ber_encode_integer(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                            uint32_t tag);
int asn1_ber_encode_boolean(asn1_ber_encoder* encoder, const void* value, uint32_t tag);
int asn1_ber_encode_enumerated(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                               uint32_t tag);
int asn1_ber_encode_null(asn1_ber_encoder* encoder, uint32_t tag);
int asn1_ber_encode_real(asn1_ber_encoder* encoder, const void* value, uint32_t tag);

// encode_string.cpp
int asn1_ber_encode_bit_string(asn1_ber_encoder* encoder, const asn1_bit_string* value, uint32_t tag);
int asn1_ber_encode_octet_string1(asn1_ber_encoder* encoder, uint32_t tag, const uint8_t* data,
                                  uint64_t length);
int asn1_ber_encode_char_string(asn1_ber_encoder* encoder, const asn1_type_desc* type,
                                const asn1_string* value, uint32_t tag);
int asn1_ber_encode_object_identifier(asn1_ber_encoder* encoder, const asn1_string* value, uint32_t tag);

// encode_sorted.cpp: SET and SET OF in canonical order
int asn1_ber_encode_sorted_set(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                               uint32_t tag);
int asn1_ber_encode_sorted_set_of(asn1_ber_encoder* encoder, const asn1_type_desc* type,
                                  const asn1_array* value, uint32_t tag);

// encode.cpp: a value of any type, under its own tag
int asn1_ber_encode_type(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::ber
