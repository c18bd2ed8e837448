// SPDX-License-Identifier: Apache-2.0
// What the encoders of text (GSER, JER, XER) print alike. Nothing here reports a failed growth of the buffer:
// finish_text() looks at the buffer's flag once, at the end.
#pragma once

#include <orlenta/text.h>
#include <orlenta/value.h>

#include "core/buffer.hpp"
#include "core/descriptor.hpp"
#include "core/stack.hpp"

namespace orlenta {

// ---- the encoder ------------------------------------------------------------------------------------------

struct text_hook {
    asn1_text_hook* function;  // null: none
    void* data;
};

// The head of each encoder: struct asn1_xxx_encoder : text_encoder { its options }.
struct text_encoder {
    asn1_byte_buffer buffer;
    int64_t depth;  // nesting level; wide, so that no level given by the caller overflows
    text_hook hook;
    stack_guard stack;
};

void begin_text(text_encoder* encoder, int32_t depth, const text_hook& hook);

// Hands the text to the caller if the walk and all growths went well: its length, or else a negative result
// and null.
int64_t finish_text(text_encoder* encoder, int result, uint8_t** out);

// ---- the caller's hook ------------------------------------------------------------------------------------

// A text that the hook made, owned until put_hook_text() has appended it.
struct hook_text {
    char* data;
    int64_t length;
};

// Offers a value to the hook; false if the encoder has to print it.
inline bool call_hook(const text_encoder* encoder, const asn1_type_desc* type, const void* value,
                      hook_text* text) {
    if (!encoder->hook.function) return false;
    text->data = nullptr;
    int32_t depth = static_cast<int32_t>(encoder->depth);
    text->length = encoder->hook.function(encoder->hook.data, &text->data, type, value, depth);
    return text->length >= 0;
}

void put_hook_text(asn1_byte_buffer* buf, const hook_text& text);

// Both in one.
inline bool put_by_hook(text_encoder* encoder, const asn1_type_desc* type, const void* value) {
    hook_text text;
    if (!call_hook(encoder, type, value, &text)) return false;
    put_hook_text(&encoder->buffer, text);
    return true;
}

// ---- what a value holds -----------------------------------------------------------------------------------

// The name of an ENUMERATED's item; null if the index is none.
inline const char* item_name(const asn1_type_desc* type, const void* value) {
    enum_layout items = enum_of(type);
    uint32_t index = load32(value);
    return index < items.total ? items.names[index].text : nullptr;
}

// The value behind a TAGGED type's tag; null if it should be in a record of its own and is not there.
inline const void* tagged_value(const asn1_type_desc* type, const void* value) {
    return is_indirect(type) ? load_pointer(value) : value;
}

// ---- characters and numbers -------------------------------------------------------------------------------

inline constexpr char kLowerHexDigits[] = "0123456789abcdef";
inline constexpr char kUpperHexDigits[] = "0123456789ABCDEF";

inline void put_char(asn1_byte_buffer* buf, char c) { put_byte(buf, static_cast<uint8_t>(c)); }

// A text of the program itself, without the NUL at its end.
template <size_t size>
inline void put_literal(asn1_byte_buffer* buf, const char (&text)[size]) {
    if (!reserve(buf, size - 1)) return;
    memcpy(buf->data + buf->length, text, size - 1);
    buf->length += size - 1;
}

// Appends `n` spaces; nothing if `n` is below 1.
void put_spaces(asn1_byte_buffer* buf, int64_t n);

void put_unsigned(asn1_byte_buffer* buf, uint32_t v);
void put_signed(asn1_byte_buffer* buf, int32_t v);

// An INTEGER of either form in decimal. -1 if the text of a big one could not be made.
int put_integer(asn1_byte_buffer* buf, const asn1_type_desc* type, const void* value);

// How a syntax writes the doubles that have no digits, and its exponent letter, 'e' or 'E'.
struct real_forms {
    const char* plus_zero;
    const char* minus_zero;
    const char* not_a_number;
    const char* plus_infinity;
    const char* minus_infinity;
    char exponent;
};

// A REAL: one of the forms, or 19 digits and an exponent without a plus sign. The decimal point is the
// locale's.
void put_real(asn1_byte_buffer* buf, const void* value, const real_forms& forms);

// ---- strings ----------------------------------------------------------------------------------------------

// `nibbles` hexadecimal digits, the high nibble of each byte first.
void put_hex_digits(asn1_byte_buffer* buf, const uint8_t* data, uint64_t nibbles, const char* digits);

// `bits` digits 0 or 1, the high bit of each byte first.
void put_binary_digits(asn1_byte_buffer* buf, const uint8_t* data, uint64_t bits);

// The UTF-8 form of a code point.
void put_utf8(asn1_byte_buffer* buf, uint32_t code);

}  // namespace orlenta
