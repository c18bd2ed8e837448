// SPDX-License-Identifier: Apache-2.0
// The decoder's walker and its kinds. Values come zero-filled. Results are 0, or -1.
#pragma once

#include "core/descriptor.hpp"
#include "per/bit_reader.hpp"

namespace orlenta::per {

// The value of any type.
int asn1_per_decode_type(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value);

// A component or alternative under its name in the path.
int decode_named(asn1_per_decoder* decoder, const char* name, const asn1_type_desc* type, void* value);

// To be asked where a recursive type passes through: reports if the stack runs low.
int check_depth(asn1_per_decoder* decoder);

// One function a kind.
int decode_sequence(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record);
int decode_list(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_array* list);
int decode_choice(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record);
int decode_integer(asn1_per_decoder* decoder, const asn1_type_desc* type, uint32_t* value);
int decode_big_integer(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_integer* value);
int decode_real(asn1_per_decoder* decoder, void* value);
int decode_bit_string(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_bit_string* string);
int decode_octet_string(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_string* string);
int decode_object_identifier(asn1_per_decoder* decoder, asn1_string* contents);
int decode_char_string(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_string* string);
int decode_any(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_open_value* value);

// The additions of a SEQUENCE or SET, from the bitmap on.
int decode_additions(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record);

// A value, or an extension addition group of `count` members from `field` on, wrapped as an open type.
int asn1_per_decode_open_type(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value);
int asn1_per_decode_ext_group(asn1_per_decoder* decoder, void* record, const asn1_field* field,
                              uint32_t count);

}  // namespace orlenta::per
