// SPDX-License-Identifier: Apache-2.0
// The parts of one constraint check. Every test returns 0 for a pass or the negative result of
// asn1_check_error.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type_info.h>

#include "core/descriptor.hpp"
#include "core/stack.hpp"

namespace orlenta::check {

struct check_state;

// What the octets of a string with a CONTAINING constraint are held against.
using contents_check = int(check_state* state, const asn1_type_desc* contained, const uint8_t* data,
                           uint64_t size);

struct check_state {
    asn1_type_path path;
    asn1_error error;
    stack_guard stack;
    bool is_whole;                    // open types and the index of an ENUMERATED count as well
    contents_check* contents;         // null: contained values do not count
    const asn1_parent_frame* frames;  // innermost SEQUENCE or SET, null outside
};

// Fills the record with the current path and the message; returns -1.
int asn1_check_error(check_state* state, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Whether there is something behind a pointer with a length or count. asn1_check_constraints asks where it reads on alone.
int check_data(check_state* state, bool is_read, const void* data, uint64_t length);

// check.cpp
int check_from_root(const asn1_type_desc* type, const void* value, bool is_whole, contents_check* contents,
                    asn1_error* error);
int asn1_check_value(check_state* state, const asn1_type_desc* type, const void* value);

int check_open_value(check_state* state, const asn1_type_desc* type, const asn1_open_value* value);

// numbers.cpp
int check_integer(check_state* state, const asn1_type_desc* type, const void* value);
int check_enumerated(check_state* state, const asn1_type_desc* type, const void* value);

// strings.cpp
int check_binary_string(check_state* state, const asn1_type_desc* type, const void* value);
int check_char_string(check_state* state, const asn1_type_desc* type, const void* value);

}  // namespace orlenta::check
