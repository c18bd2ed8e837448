// SPDX-License-Identifier: Apache-2.0
// The JSON encoder by subject. Results are 0 or -1; the buffer's own failure shows at the end.
#pragma once

#include "core/text_writer.hpp"

namespace orlenta::jer {

struct asn1_jer_encoder : text_encoder {
    int64_t indent;  // spaces per level; 0: compact
};

// Indented text only: a new line at the current level.
inline void put_break(asn1_jer_encoder* encoder) {
    if (encoder->indent == 0) return;
    put_char(&encoder->buffer, '\n');
    put_spaces(&encoder->buffer, encoder->depth * encoder->indent);
}

// "name" as it stands, in quotes, behind `before` and in front of `after`, unless these are 0.
inline void put_quoted(asn1_byte_buffer* buf, char before, const char* name, char after) {
    size_t length = strlen(name);
    if (!reserve(buf, length + 4)) return;
    uint8_t* at = buf->data + buf->length;
    *at = static_cast<uint8_t>(before);
    at += before != 0;
    *at++ = '"';
    memcpy(at, name, length);
    at += length;
    *at++ = '"';
    *at = static_cast<uint8_t>(after);
    at += after != 0;
    buf->length = static_cast<uint64_t>(at - buf->data);
}

// The name of a member, behind a comma unless it is the first one.
inline void put_member_name(asn1_jer_encoder* encoder, bool is_first, const char* name) {
    asn1_byte_buffer* buf = &encoder->buffer;
    if (encoder->indent == 0) {
        put_quoted(buf, is_first ? '\0' : ',', name, ':');
        return;
    }
    if (!is_first) put_char(buf, ',');
    put_break(encoder);
    put_quoted(buf, '\0', name, ':');
    put_char(buf, ' ');
}

// encode.cpp
int asn1_jer_encode_type(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value);

// encode_composite.cpp
int encode_sequence(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* record);
int encode_list(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_choice(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value);

// encode_string.cpp: the first prints `bits` bits as a string of hexadecimal digits, always whole bytes.
void print_hex(asn1_jer_encoder* encoder, const uint8_t* data, uint64_t bits);
int encode_bit_string(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_octet_string(asn1_jer_encoder* encoder, const void* value);
int encode_char_string(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::jer
