// SPDX-License-Identifier: Apache-2.0
// The XML decoder by subject. Results are 0, or -1 with the parser's error filled.
//
// Each function reads the content of an element: the first token inside is current when it is called, the one
// behind the content when it returns. The element's end tag is left to the caller.
#pragma once

#include "xer/lexer.hpp"

namespace orlenta::xer {

// decode.cpp: the first takes the whole element whose start tag is current and has this name, the second a
// value in an element that is named after its type.
int decode_element(asn1_xer_parser* parser, const char* name, const asn1_type_desc* type, void* value);
int asn1_xer_decode_typed_value(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);
int asn1_xer_decode_type(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);

// decode_composite.cpp
int decode_sequence(asn1_xer_parser* parser, const asn1_type_desc* type, void* record);
int decode_list(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);
int decode_choice(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);
int decode_any(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);

// decode_scalar.cpp
int decode_integer(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);
int decode_boolean(asn1_xer_parser* parser, void* value);
int decode_enumerated(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);
int decode_real(asn1_xer_parser* parser, void* value);
int decode_object_identifier(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);

// decode_string.cpp
int decode_bit_string(asn1_xer_parser* parser, void* value);
int asn1_xer_decode_octet_string(asn1_xer_parser* parser, asn1_string* value);
int decode_char_string(asn1_xer_parser* parser, const asn1_type_desc* type, void* value);

}  // namespace orlenta::xer
