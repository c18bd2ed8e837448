// SPDX-License-Identifier: Apache-2.0
// The BER decoder's context, and what its files call of each other.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type_info.h>
#include <orlenta/value.h>

#include "core/decode_memory.hpp"
#include "core/observer.hpp"
#include "core/stack.hpp"

namespace orlenta::ber {

struct asn1_ber_decoder {
    const uint8_t* input;
    uint64_t limit;             // one past the last byte that may be read now
    uint64_t position;          // next byte
    uint64_t tag_start;         // identifier octet that decode_tag_start() read last
    bool indefinite;            // the current element has indefinite length
    bool end_of_contents_seen;  // ... and its two zero octets have been read
    const asn1_parent_frame* frames;
    stack_guard stack;
    decode_memory memory;
    struct ::asn1_error error;
    bit_observer* observer;  // null in an ordinary decode
};

// What an element restores when it ends.
struct asn1_ber_limit {
    uint64_t limit;
    bool indefinite;
};

// The length of an element that ends at its end-of-contents octets.
constexpr int32_t kIndefinite = -2;
// Result of decode_tag_start() where no further element follows.
constexpr int32_t kEndOfContents = -2;

// Whether what is read has to be named: tell_bits(decoder->observer, bits_read(decoder), ...).
inline bool is_observed(const asn1_ber_decoder* decoder) {
    return __builtin_expect(decoder->observer != nullptr, 0);
}
inline uint64_t bits_read(const asn1_ber_decoder* decoder) { return decoder->position * 8; }

// Names the identifier and the length that have just been read, unless they are told: whose they are is known only by
// the tag.
void tell_header(asn1_ber_decoder* decoder, uint32_t tag, int32_t length) __attribute__((cold));

// Bits of the last octet that are no part of a BIT STRING.
inline uint64_t unused_bits(const asn1_bit_string* string) { return -string->length & 7; }

// ---- errors (decode_tag.cpp) ------------------------------------------------------------------------------

// Records message and position, and returns -1.
int asn1_error(asn1_ber_decoder* decoder, const char* format, ...)
    __attribute__((format(printf, 2, 3), cold));
inline int report_no_memory(asn1_ber_decoder* decoder) { return asn1_error(decoder, "not enough memory"); }
// The position alone, for a message that is in the record already.
int report_position(asn1_ber_decoder* decoder);
// The one message that every element of definite length leaves behind at its end, and so has to be cheap.
int report_end_of_stream(asn1_ber_decoder* decoder);

inline int require_constructed(asn1_ber_decoder* decoder, int constructed) {
    return constructed != 0 ? 0 : asn1_error(decoder, "expecting constructed encoding");
}
inline int require_primitive(asn1_ber_decoder* decoder, int constructed) {
    return constructed == 0 ? 0 : asn1_error(decoder, "expecting primitive encoding");
}

// ---- bounded reads ----------------------------------------------------------------------------------------

// The next octet, or -1.
inline int get_byte(asn1_ber_decoder* decoder) {
    if (decoder->position >= decoder->limit) return report_end_of_stream(decoder);
    return decoder->input[decoder->position++];
}

inline int get_bytes(asn1_ber_decoder* decoder, void* destination, uint64_t count) {
    if (count > decoder->limit - decoder->position) return report_end_of_stream(decoder);
    if (count != 0) memcpy(destination, decoder->input + decoder->position, count);
    decoder->position += count;
    return 0;
}

// ---- elements (decode_tag.cpp) ----------------------------------------------------------------------------

// Reads identifier and length. Returns the tag word, -1, or kEndOfContents.
int32_t decode_tag_start(asn1_ber_decoder* decoder, asn1_ber_limit* saved, int* constructed, int32_t* length);
// Closes what decode_tag_start() opened. Returns 0 or -1.
int decode_tag_end(asn1_ber_decoder* decoder, const asn1_ber_limit& saved);
// Passes over the contents of an element whose identifier and length have been read.
int asn1_ber_skip_tag(asn1_ber_decoder* decoder, int32_t length);

// ---- contents: `length` octets behind identifier and length, which have been read -------------------------

// decode_scalar.cpp
int asn1_ber_decode_integer(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                            int constructed, int32_t length);
int asn1_ber_decode_boolean(asn1_ber_decoder* decoder, void* value, int constructed, int32_t length);
int asn1_ber_decode_enumerated(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                               int constructed, int32_t length);
int asn1_ber_decode_null(asn1_ber_decoder* decoder, int constructed, int32_t length);
int asn1_ber_decode_real(asn1_ber_decoder* decoder, void* value, int constructed, int32_t length);

// decode_string.cpp
int asn1_ber_decode_bit_string(asn1_ber_decoder* decoder, asn1_bit_string* value, int constructed,
                               int32_t length);
int asn1_ber_decode_octet_string(asn1_ber_decoder* decoder, asn1_string* value, int constructed,
                                 int32_t length);
int asn1_ber_decode_char_string(asn1_ber_decoder* decoder, const asn1_type_desc* type, asn1_string* value,
                                int constructed, int32_t length);
int asn1_ber_decode_object_identifier(asn1_ber_decoder* decoder, asn1_string* value, int constructed,
                                      int32_t length);

// decode_sequence.cpp
int asn1_ber_decode_sequence(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                             int constructed);
int asn1_ber_decode_sequence_of(asn1_ber_decoder* decoder, const asn1_type_desc* type, asn1_array* value,
                                int constructed);

// decode.cpp: a value of any type, with and without its identifier and length. 0, or negative.
int asn1_ber_decode_type(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value);
int asn1_ber_decode_type_tag(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value, uint32_t tag,
                             int constructed, int32_t length);

}  // namespace orlenta::ber
