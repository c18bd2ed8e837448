// SPDX-License-Identifier: Apache-2.0
// The XML encoder by subject. Results are 0 or -1; the buffer's own failure shows at the end.
#pragma once

#include "core/text_writer.hpp"

namespace orlenta::xer {

struct asn1_xer_encoder : text_encoder {
    bool indent, empty_tags, boolean_text, enumerated_text;
    bool tag_open;  // a start tag still lacks its >
    bool has_text;  // the current element has character data
};

// layout.cpp: tags with their line breaks and indentation. start_text() comes before character data.
void start_tag(asn1_xer_encoder* encoder, const char* name);
void end_tag(asn1_xer_encoder* encoder, const char* name);
void start_text(asn1_xer_encoder* encoder);

// encode.cpp: a value in an element of this name, in one that is named after its type, and in none.
int encode_element(asn1_xer_encoder* encoder, const char* name, const asn1_type_desc* type,
                   const void* value);
int asn1_xer_encode_typed_value(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);
int asn1_xer_encode_type(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);

// encode_composite.cpp
int encode_sequence(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* record);
int encode_list(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_choice(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_any(asn1_xer_encoder* encoder, const void* value);

// encode_scalar.cpp
int encode_integer(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_boolean(asn1_xer_encoder* encoder, const void* value);
int encode_enumerated(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);
int encode_real(asn1_xer_encoder* encoder, const void* value);
int encode_object_identifier(asn1_xer_encoder* encoder, const void* value, bool relative);

// encode_string.cpp: the first prints as many hexadecimal digits as `bits` fill.
void print_hex(asn1_xer_encoder* encoder, const void* data, uint64_t bits);
int encode_bit_string(asn1_xer_encoder* encoder, const void* value);
int encode_octet_string(asn1_xer_encoder* encoder, const void* value);
int encode_char_string(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::xer
