// SPDX-License-Identifier: Apache-2.0
// The OER decoder's context, and what its files call of each other. Results are 0, or negative with or without a
// message.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type_info.h>
#include <orlenta/value.h>

#include "core/decode_memory.hpp"
#include "core/observer.hpp"
#include "core/stack.hpp"

namespace orlenta::oer {

struct asn1_oer_decoder {
    const uint8_t* data;
    uint64_t size;  // end of the readable area; lowered for the time of an open type
    uint64_t position;
    const asn1_parent_frame* frames;
    struct ::asn1_error error;
    stack_guard stack;
    decode_memory memory;
    bit_observer* observer;  // null in an ordinary decode
};

// ---- reading (decode_scalar.cpp) --------------------------------------------------------------------------

// Records message and position, and returns -1.
int asn1_error(asn1_oer_decoder* decoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));

inline int report_no_memory(asn1_oer_decoder* decoder) { return asn1_error(decoder, "not enough memory"); }

// Whether what is read has to be named: tell_bits(decoder->observer, bits_read(decoder), ...).
inline bool is_observed(const asn1_oer_decoder* decoder) {
    return kObserves && __builtin_expect(decoder->observer != nullptr, 0);
}
inline uint64_t bits_read(const asn1_oer_decoder* decoder) { return decoder->position * 8; }

// Whether `count` bytes are left; if not, that is reported.
inline bool has_bytes(asn1_oer_decoder* decoder, uint64_t count) {
    if (__builtin_expect(count <= decoder->size - decoder->position, 1)) return true;
    asn1_error(decoder, "unexpected end of stream");
    return false;
}

// The next `count` bytes, at most 4, big-endian. The caller knows that they are there.
inline uint32_t take(asn1_oer_decoder* decoder, uint32_t count) {
    uint32_t number = 0;
    for (; count > 0; --count) number = number << 8 | decoder->data[decoder->position++];
    return number;
}

// The next byte, or -1.
inline int get_byte(asn1_oer_decoder* decoder) {
    return has_bytes(decoder, 1) ? decoder->data[decoder->position++] : -1;
}

int get_bytes(asn1_oer_decoder* decoder, void* destination, uint64_t count);

// A length, which fits 31 bits, or a negative result.
int32_t decode_len(asn1_oer_decoder* decoder);
// The length of an open type, whose bytes must lie in the readable area: the position of their end, or a negative result.
int64_t decode_end(asn1_oer_decoder* decoder);
// Length and unsigned contents of up to 32 bits: a count or a number.
int asn1_decode_uint32(asn1_oer_decoder* decoder, uint32_t* out);

// ---- kinds ------------------------------------------------------------------------------------------------

// decode_scalar.cpp
int asn1_oer_decode_integer(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value);
int asn1_oer_decode_boolean(asn1_oer_decoder* decoder, void* value);
int asn1_oer_decode_enumerated(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value);
int asn1_oer_decode_real(asn1_oer_decoder* decoder, void* value);

// decode_string.cpp
constexpr uint32_t kVariable = UINT32_MAX;
// `fixed_bits` bits, or, if that is kVariable, as many as the length before them says.
int asn1_oer_decode_bit_string1(asn1_oer_decoder* decoder, asn1_bit_string* value, uint32_t fixed_bits);
int asn1_oer_decode_bit_string(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_bit_string* value);
int asn1_oer_decode_octet_string(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_string* value);
int asn1_oer_decode_char_string(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_string* value);
// A length and that many bytes.
int asn1_oer_decode_octets(asn1_oer_decoder* decoder, asn1_string* value);

// decode_sequence.cpp
int asn1_oer_decode_sequence(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value);
int asn1_oer_decode_sequence_of(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_array* value);

// decode.cpp
int asn1_oer_decode_type(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value);
int asn1_oer_decode_open_type(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value);

}  // namespace orlenta::oer
