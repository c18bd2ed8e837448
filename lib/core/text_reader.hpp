// SPDX-License-Identifier: Apache-2.0
// What the decoders of text (GSER, JER, XER) read alike: the input with its line, white space and identifiers,
// lookup by name, the frame of a SEQUENCE, and the beginning and end of a decode.
#pragma once

#include <ctype.h>
#include <orlenta/error.h>
#include <orlenta/memory.h>
#include <orlenta/type_info.h>
#include <orlenta/value.h>

#include "core/buffer.hpp"
#include "core/decode_memory.hpp"
#include "core/stack.hpp"

namespace orlenta {

inline constexpr char kNotEnoughMemory[] = "not enough memory";

// ---- input and errors -------------------------------------------------------------------------------------

// The head of each parser: struct asn1_xxx_parser : text_parser { what its tokens hold besides }.
struct text_parser {
    const uint8_t* cursor;
    const uint8_t* end;
    uint32_t line;   // from 1
    uint32_t token;  // kind of the current token, as the syntax numbers them
    // Of a token whose text differs from the input's, by escapes or white space: what it says. Else scratch.
    asn1_byte_buffer contents;
    const asn1_parent_frame* frames;  // innermost SEQUENCE or SET, null outside
    stack_guard stack;
    decode_memory memory;
    asn1_error error;
};

// Puts the message and the current line into the parser's error; always -1.
int parse_error(text_parser* parser, const char* format, ...) __attribute__((format(printf, 2, 3)));

// To be asked where a value of a recursive type passes through: "value nested too deeply" if the stack is used
// up. tagged_place() and make_open_value() ask by themselves; the decoder of a list has to.
inline int check_depth(text_parser* parser) {
    return has_stack(&parser->stack) ? 0 : parse_error(parser, "value nested too deeply");
}

// ---- characters -------------------------------------------------------------------------------------------

inline bool is_digit(uint8_t c) { return c >= '0' && c <= '9'; }
inline bool is_letter(uint8_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// White space in the thread's locale. No locale finds any among the printable characters of ASCII.
inline bool is_space(uint8_t c) { return (c <= ' ' || c >= 0x7F) && isspace(c) != 0; }

// The value of a hexadecimal digit of either case, or -1.
inline int hex_digit(uint8_t c) {
    if (is_digit(c)) return c - '0';
    uint8_t lower = c | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// ---- tokens -----------------------------------------------------------------------------------------------

inline constexpr uint32_t kIdentifierMax = 256;

struct text_identifier {
    uint32_t length;
    char text[kIdentifierMax + 1];  // NUL-terminated
};

// Takes letters, digits and `extra` at the cursor. "identifier too long" beyond kIdentifierMax.
int lex_identifier(text_parser* parser, text_identifier* identifier, uint8_t extra);

// Takes the UTF-8 of one character at the cursor; -1 after "invalid UTF-8 code".
int32_t lex_code_point(text_parser* parser);

// Steps over blanks, tabs and line ends, as JSON has them, and over vertical tab and form feed.
inline void skip_white_space(text_parser* parser) {
    const uint8_t* at = parser->cursor;
    for (; at < parser->end && (*at == ' ' || (*at >= '\t' && *at <= '\r')); ++at) {
        if (*at == '\n') ++parser->line;
    }
    parser->cursor = at;
}

// ---- lookup by name ---------------------------------------------------------------------------------------

// Whether the NUL-terminated `name` is exactly the `length` bytes of `text`. Most differ in their first byte, and most
// names are too short to be worth a call.
inline bool cstr_equal(const char* text, size_t length, const char* name) {
    size_t i = 0;
    while (i < length && name[i] != '\0' && name[i] == text[i]) ++i;
    return i == length && name[i] == '\0';
}

// A name of the input as the arguments of "%.*s"; no message holds more of it.
inline int shown_length(size_t length) {
    constexpr size_t kMost = sizeof(asn1_error::message);
    return static_cast<int>(length < kMost ? length : kMost);
}

// Index by name, or -1. Root and extension alternatives and items alike.
int32_t find_alternative(const choice_layout& choice, const char* text, size_t length);
int32_t find_item(const enum_layout& items, const char* text, size_t length);

// Stores the selector of the alternative of this name, and gives it; or -1 after "choice '%s' not found".
int32_t select_alternative(text_parser* parser, const choice_layout& choice, void* value, const char* name,
                           size_t length);

// Stores an item's index as the value; "enumerated '%s' not found" if it is -1.
int store_item(text_parser* parser, void* value, int32_t index, const char* name, size_t length);

// ---- values -----------------------------------------------------------------------------------------------

// A block for a value's `size` bytes, not cleared; null after an error.
uint8_t* new_block(text_parser* parser, uint64_t size);

// Makes a buffer's block that of the value.
int take_contents(text_parser* parser, asn1_string* value, asn1_byte_buffer* contents);

// Stores the contents octets of dotted text, which ends in a NUL; `invalid` is the report if it is no identifier.
int store_object_identifier(text_parser* parser, asn1_string* value, const char* text, uint64_t length,
                            bool relative, const char* invalid);

// The place of a TAGGED type's inner value: in place, or a new record if it is held through a pointer. Null
// after an error.
void* tagged_place(text_parser* parser, const asn1_type_desc* type, void* value);

// Makes `open` hold a new zero-filled value of `type`.
int make_open_value(text_parser* parser, asn1_open_value* open, const asn1_type_desc* type);

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

inline constexpr uint32_t kSeenInline = 80;

// A SEQUENCE or SET whose components are being read, in any order.
struct text_sequence {
    asn1_parent_frame frame;
    const asn1_field* fields;
    uint32_t count;
    uint32_t expected;  // component that stands next if the text keeps to the order
    uint32_t read;      // components read so far
    void* record;
    uint8_t* seen;  // one byte per component, non-zero once read
    uint8_t seen_inline[kSeenInline];
};

// Pushes the frame. After success close_sequence() must follow.
int open_sequence(text_parser* parser, text_sequence* sequence, const asn1_type_desc* type, void* record);

// The component of this name, or null after an error: it does not exist, or was read already.
const asn1_field* claim_component(text_parser* parser, text_sequence* sequence, const char* name,
                                  size_t length);

// To be called when the component's value was decoded, and also if that failed: a value cut off in an
// optional component is released only if its presence word is set.
inline void component_read(text_sequence* sequence, const asn1_field* field) {
    if (is_presence_flagged(field)) set_presence_word(field, sequence->record, 1);
    sequence->seen[field - sequence->fields] = 1;
    ++sequence->read;
}

// Pops the frame. If `result` is 0, absent DEFAULT components are filled before, and the rules of presence
// applied.
int close_sequence(text_parser* parser, text_sequence* sequence, int result);

// ---- lists between brackets, separated by commas ----------------------------------------------------------

// Behind an item a comma or the closing bracket must be current, else "expecting ',' or '%c'". Tells whether it is
// the bracket, so that the item was the last one; stepping over either is left to the caller.
inline int end_item(text_parser* parser, char closing, bool* is_last) {
    *is_last = parser->token == static_cast<uint32_t>(closing);
    if (*is_last || parser->token == ',') return 0;
    return parse_error(parser, "expecting ',' or '%c'", closing);
}

// ---- beginning and end of a decode ------------------------------------------------------------------------

// Puts the parser at the first of `length` bytes, on line 1, with `token` current, without frames or error. The
// new value, to be handed to finish_text_decode(); null after an error.
void* begin_text_decode(text_parser* parser, uint32_t token, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t length);

// The result of an entry point: hands out `value` and gives `length`, or releases it, copies the error (if
// the caller wants it) and gives -1. The parser is finished.
int64_t finish_text_decode(text_parser* parser, int result, const asn1_type_desc* type, void* value,
                           void** out, uint64_t length, asn1_error* error);

}  // namespace orlenta
