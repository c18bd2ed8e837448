// SPDX-License-Identifier: Apache-2.0
// Numbers as the decoders of text read them. The digits of a long one stay where they are in the input until a
// value wants them, so that a run of digits where no number belongs costs no more than reading it.
#pragma once

#include <orlenta/integer.h>

#include "core/text_reader.hpp"

namespace orlenta {

// An INTEGER as read, with its sign.
struct text_integer {
    bool is_long;           // more digits than 64 bits hold for certain
    int64_t number;         // is_long false
    const uint8_t* digits;  // is_long true: the sign, if any, and the digits, in the input
    uint64_t length;
};

// Stores the number in `v`; -1 if 64 bits do not hold it.
int text_integer_to_si64(const text_integer* integer, int64_t* v);

// Counts the memory of a big INTEGER that was set with this result; -1 after an error.
int count_big_integer(text_parser* parser, const asn1_integer* value, int result);

// Sets a big INTEGER, which must be initialised, to the number.
int store_big_integer(text_parser* parser, const text_integer* integer, void* value);

// Stores a 32-bit INTEGER: "integer too large" if the word, signed or unsigned by the type, does not hold the
// number.
int store_integer32(text_parser* parser, const asn1_type_desc* type, void* value, int64_t number);

struct text_number {
    bool is_real;
    double real;           // is_real true
    text_integer integer;  // is_real false
};

// Takes a number at the cursor, where an optional minus and a digit must stand. It is a real only if it has
// an exponent (letter E, or e too if `lower_e`); else it is the integer before the full stop, and the cursor
// is left there. The parser's contents may be overwritten.
int lex_number(text_parser* parser, bool lower_e, text_number* number);

// The number as a double; false for an integer that 64 bits do not hold.
bool text_number_to_real(const text_number* number, double* real);

// How a syntax writes the doubles that have no digits.
struct real_names {
    const char* plus_infinity;
    const char* minus_infinity;
    const char* not_a_number;
    const char* minus_zero;  // null if that is a number like any other
};

// The double of this name; false if it is none.
bool find_named_real(const real_names& names, const char* text, size_t length, double* real);

}  // namespace orlenta
