// SPDX-License-Identifier: Apache-2.0
// The JSON decoder by subject. Each function takes the current token and all that belong to the value, and leaves the
// token behind the value current. Results are 0, or -1 with the parser's error filled.
#pragma once

#include "jer/lexer.hpp"

namespace orlenta::jer {

// decode.cpp
int asn1_jer_decode_type(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);

// decode_composite.cpp
int decode_sequence(asn1_jer_parser* parser, const asn1_type_desc* type, void* record);
int decode_list(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);
int decode_choice(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);

// decode_scalar.cpp
int decode_integer(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);
int decode_boolean(asn1_jer_parser* parser, void* value);
int decode_enumerated(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);
int decode_null(asn1_jer_parser* parser);
int decode_real(asn1_jer_parser* parser, void* value);
int decode_object_identifier(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);

// decode_string.cpp
int decode_bit_string(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);
int decode_octet_string(asn1_jer_parser* parser, void* value);
int decode_char_string(asn1_jer_parser* parser, const asn1_type_desc* type, void* value);

}  // namespace orlenta::jer
