// SPDX-License-Identifier: Apache-2.0
// What the codecs' error functions have in common.
#pragma once

#include <orlenta/error.h>
#include <stdarg.h>

namespace orlenta {

// Formats the message, cut to the room it has, and returns -1: the last line of every codec's error function.
int set_message(asn1_error* error, const char* format, va_list args) __attribute__((format(printf, 2, 0)));

// Gives the caller, who may have passed null, a codec's own record. Returns -1.
inline int hand_out_error(asn1_error* caller, const asn1_error* own) {
    if (caller != nullptr) *caller = *own;
    return -1;
}

// Copies as much of `str` as fits before `end` and advances the cursor. Writes no terminator.
void asn1_buf_add(char** cursor, char* end, const char* str);

}  // namespace orlenta
