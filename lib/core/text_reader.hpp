// What the decoders of text (GSER, JER, XER) read alike: the input with its line, numbers and identifiers,
// lookup by name, the frame of a SEQUENCE, and the beginning and end of a decode.
#pragma once

#include <ctype.h>
#include <orlenta/error.h>
#include <orlenta/integer.h>
#include <orlenta/memory.h>
#include <orlenta/type_info.h>
#include <orlenta/value.h>

#include "core/decode_memory.hpp"
#include "core/stack.hpp"

namespace orlenta {

inline constexpr char kNotEnoughMemory[] = "not enough memory";

// ---- input and errors -------------------------------------------------------------------------------------

// The head of each parser: struct asn1_xxx_parser : text_parser { its token }.
struct text_parser {
    const uint8_t* cursor;
    const uint8_t* end;
    uint32_t line;                    // from 1
    const asn1_parent_frame* frames;  // innermost SEQUENCE or SET, null outside
    stack_guard stack;
    decode_memory memory;
    asn1_error error;
};

// At the beginning of `length` bytes, on line 1, without frames or error.
void init_text_parser(text_parser* parser, const uint8_t* data, uint64_t length);

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

// An INTEGER as read. One of up to 18 digits needs no memory.
struct text_integer {
    bool is_big;
    int64_t small;     // is_big false
    asn1_integer big;  // is_big true; owned
};

inline void clear_text_integer(text_integer* integer) {
    if (integer->is_big) asn1_integer_clear(&integer->big);
    integer->is_big = false;
}

// Stores the number in `v`; -1 if 64 bits do not hold it.
int text_integer_to_si64(const text_integer* integer, int64_t* v);

// Sets `dst`, which must be initialised, to the number; -1 if memory was not to be had.
int text_integer_copy(const text_integer* integer, asn1_integer* dst);

struct text_number {
    bool is_real;
    double real;           // is_real true
    text_integer integer;  // is_real false; owned
};

// Takes a number at the cursor, where an optional minus and a digit must stand. It is a real only if it has
// an exponent (letter E, or e too if `lower_e`); else it is the integer before the full stop, and the cursor
// is left there. `scratch` is emptied and may be filled.
int lex_number(text_parser* parser, asn1_byte_buffer* scratch, bool lower_e, text_number* number);

// ---- lookup by name ---------------------------------------------------------------------------------------

// Whether the NUL-terminated `name` is exactly the `length` bytes of `text`.
inline bool cstr_equal(const char* text, size_t length, const char* name) {
    if (length == 0) return name[0] == '\0';
    return name[0] == text[0] && strlen(name) == length && memcmp(name, text, length) == 0;
}

// Index by name, or -1. Root and extension alternatives and items alike.
int32_t find_alternative(const choice_layout& choice, const char* text, size_t length);
int32_t find_item(const enum_layout& items, const char* text, size_t length);

// ---- values -----------------------------------------------------------------------------------------------

// Stores a 32-bit INTEGER; false if the word, signed or unsigned by the type, does not hold the number.
bool store_integer32(const asn1_type_desc* type, void* value, int64_t number);

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
}

// Pops the frame. If `result` is 0, absent DEFAULT components are filled before, and the rules of presence
// applied.
int close_sequence(text_parser* parser, text_sequence* sequence, int result);

// ---- the end of a decode ----------------------------------------------------------------------------------

// The result of an entry point: hands out `value` and gives `length`, or releases it, copies the error (if
// the caller wants it) and gives -1.
int64_t finish_text_decode(const text_parser* parser, int result, const asn1_type_desc* type, void* value,
                           void** out, uint64_t length, asn1_error* error);

}  // namespace orlenta
