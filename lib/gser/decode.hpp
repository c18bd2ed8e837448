// SPDX-License-Identifier: Apache-2.0
// The GSER decoder by subject. Each function takes the current token and all that belong to the value, and leaves the
// token behind the value current. Results are 0, or -1 with the parser's error filled.
#pragma once

#include "gser/lexer.hpp"

namespace orlenta::gser {

// decode.cpp
int asn1_gser_decode_type(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);

// decode_composite.cpp
int decode_sequence(asn1_gser_parser* parser, const asn1_type_desc* type, void* record);
int decode_list(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);
int decode_choice(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);

// decode_scalar.cpp
int decode_integer(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);
int decode_boolean(asn1_gser_parser* parser, void* value);
int decode_enumerated(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);
int decode_real(asn1_gser_parser* parser, void* value);
int decode_object_identifier(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);

// decode_string.cpp: the first takes the bits of the current token as whole bytes.
int decode_whole_bytes(asn1_gser_parser* parser, void** data, uint64_t* length);
int decode_bit_string(asn1_gser_parser* parser, void* value);
int decode_octet_string(asn1_gser_parser* parser, void* value);
int decode_char_string(asn1_gser_parser* parser, const asn1_type_desc* type, void* value);

}  // namespace orlenta::gser
