// SPDX-License-Identifier: Apache-2.0
// The encoder's walker and its kinds. Results are 0, or a failure that goes up unchanged.
#pragma once

#include "core/descriptor.hpp"
#include "per/bit_writer.hpp"

namespace orlenta::per {

// The value of any type.
int asn1_per_encode_type(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value);

// A component or alternative under its name in the path.
int encode_named(asn1_per_encoder* encoder, const char* name, const asn1_type_desc* type, const void* value);

// To be asked where a recursive type passes through: reports if the stack runs low.
int check_depth(asn1_per_encoder* encoder);

// Reports a null where a pointer to a value belongs.
int report_missing(asn1_per_encoder* encoder);

// One function a kind.
int encode_sequence(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* record);
int encode_list(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_array* list);
int encode_choice(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* record);
int encode_integer(asn1_per_encoder* encoder, const asn1_type_desc* type, uint32_t value);
int encode_big_integer(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_integer* value);
int encode_real(asn1_per_encoder* encoder, const void* value);
int encode_bit_string(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_bit_string* string);
int encode_octet_string(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_string* string);
int encode_object_identifier(asn1_per_encoder* encoder, const asn1_string* contents);
int encode_char_string(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_string* string);
int encode_any(asn1_per_encoder* encoder, const asn1_open_value* value);

// The additions of a SEQUENCE or SET, in whose `presence`, a byte a component, kPresent is set where due.
int encode_additions(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* record,
                     uint8_t* presence);
enum { kPresent = 1, kUnitPresent = 2, kUnitStart = 4 };

// A value, or an extension addition group of `count` members from `field` on, wrapped as an open type.
int asn1_per_encode_open_type(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value);
int asn1_per_encode_ext_group(asn1_per_encoder* encoder, const void* record, const asn1_field* field,
                              const uint8_t* presence, uint32_t count);

}  // namespace orlenta::per
