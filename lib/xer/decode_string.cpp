// SPDX-License-Identifier: Apache-2.0
// BIT STRING, OCTET STRING, character strings.
#include <orlenta/scalar.h>

#include "xer/decode.hpp"

namespace orlenta::xer {

// Gives back what the block of `old_size` bytes has beyond `size`. If that fails the block stays as it is, which is no
// harm.
static uint8_t* shrink(asn1_xer_parser* parser, uint8_t* block, uint64_t old_size, uint64_t size) {
    void* shrunk = reallocate(&parser->memory, block, old_size, size);
    return shrunk ? static_cast<uint8_t*>(shrunk) : block;
}

// A zero-filled block for a value of up to `size` bytes; null after an error.
static uint8_t* new_zero_block(asn1_xer_parser* parser, uint64_t size) {
    uint8_t* block = new_block(parser, size);
    if (block) memset(block, 0, size);
    return block;
}

// ---- BIT STRING -------------------------------------------------------------------------------------------

// Sets the bits of `value` by the current text, up to its first NUL.
static int read_bits(asn1_xer_parser* parser, asn1_bit_string* value) {
    uint64_t bits = 0;
    for (const char* at = text_of(parser); *at != '\0'; ++at) {
        if (is_space(static_cast<uint8_t>(*at))) continue;
        if (*at != '0' && *at != '1') return parse_error(parser, "expecting binary digits in bit string");
        if (*at == '1') value->data[bits / 8] |= static_cast<uint8_t>(0x80 >> bits % 8);
        ++bits;
    }
    value->length = bits;
    return 0;
}

int decode_bit_string(asn1_xer_parser* parser, void* value) {
    asn1_bit_string* bits = static_cast<asn1_bit_string*>(value);
    bool is_empty = parser->token == XER_TOKEN_END;
    if (!is_empty && parser->token != XER_TOKEN_TEXT)
        return parse_error(parser, "expecting bit string value");
    uint64_t bytes = is_empty ? 0 : (parser->contents.length + 7) / 8;
    bits->data = new_zero_block(parser, bytes);
    if (!bits->data) return -1;
    if (is_empty) return 0;
    if (read_bits(parser, bits) != 0) return -1;
    uint64_t used = (bits->length + 7) / 8;
    if (used < bytes) bits->data = shrink(parser, bits->data, bytes, used);
    return next_token(parser);
}

// ---- OCTET STRING -----------------------------------------------------------------------------------------

// Sets the nibbles of `value` by the current text, up to its first NUL. The last one may be missing, and is
// 0.
static int read_nibbles(asn1_xer_parser* parser, asn1_string* value) {
    uint64_t nibbles = 0;
    for (const char* at = text_of(parser); *at != '\0'; ++at) {
        uint8_t c = static_cast<uint8_t>(*at);
        if (is_space(c)) continue;
        int digit = hex_digit(c);
        if (digit < 0) return parse_error(parser, "expecting hexadecimal digits in octet string");
        value->data[nibbles / 2] |= static_cast<uint8_t>(nibbles % 2 == 0 ? digit << 4 : digit);
        ++nibbles;
    }
    value->length = (nibbles + 1) / 2;
    return 0;
}

int asn1_xer_decode_octet_string(asn1_xer_parser* parser, asn1_string* value) {
    bool is_empty = parser->token == XER_TOKEN_END;
    if (!is_empty && parser->token != XER_TOKEN_TEXT) {
        return parse_error(parser, "expecting octet string value");
    }
    uint64_t bytes = is_empty ? 0 : (parser->contents.length + 1) / 2;
    value->data = new_zero_block(parser, bytes);
    if (!value->data) return -1;
    if (is_empty) return 0;
    if (read_nibbles(parser, value) != 0) return -1;
    if (value->length < bytes) value->data = shrink(parser, value->data, bytes, value->length);
    return next_token(parser);
}

// ---- character strings ------------------------------------------------------------------------------------

// The names of the control characters that have an empty element of their own (X.680 clause 12.15,
// xmlcstring). Tab, line feed and carriage return have none: they stand for themselves in XML.
static constexpr struct {
    uint8_t code;
    const char* name;
} xml_string_tags[] = {
    {0, "nul"},  {1, "soh"},  {2, "stx"},  {3, "etx"},  {4, "eot"},  {5, "enq"},  {6, "ack"},  {7, "bel"},
    {8, "bs"},   {11, "vt"},  {12, "ff"},  {14, "so"},  {15, "si"},  {16, "dle"}, {17, "dc1"}, {18, "dc2"},
    {19, "dc3"}, {20, "dc4"}, {21, "nak"}, {22, "syn"}, {23, "etb"}, {24, "can"}, {25, "em"},  {26, "sub"},
    {27, "esc"}, {28, "is4"}, {29, "is3"}, {30, "is2"}, {31, "is1"},
};

// A string that grows from one piece of text to the next. The value owns the block all the while.
struct growing_string {
    asn1_string* value;
    uint64_t count, capacity;  // code units
    uint32_t shift;            // log2 of a unit's bytes
    bool is_utf8;              // the bytes of the text are the units
};

// Room for `more` units.
static int reserve_units(asn1_xer_parser* parser, growing_string* string, uint64_t more) {
    if (more <= string->capacity - string->count) return 0;
    void* block = string->value->data;
    uint64_t unit = UINT64_C(1) << string->shift;
    if (!grow_buffer(&parser->memory, &block, unit, &string->capacity, string->count + more)) {
        return parse_error(parser, kNotEnoughMemory);
    }
    string->value->data = static_cast<uint8_t*>(block);
    return 0;
}

// One unit for each code point; high bits that a unit has no room for are lost.
static int append_code_points(asn1_xer_parser* parser, growing_string* string) {
    const uint8_t* at = parser->contents.data;
    const uint8_t* end = at + parser->contents.length;
    while (at < end) {
        int32_t code = *at < 0x80 ? *at++ : asn1_from_utf8(at, static_cast<uint64_t>(end - at), &at);
        if (code < 0) return parse_error(parser, "invalid UTF-8 code");
        store_code_unit(string->value->data, string->count++, string->shift, static_cast<uint32_t>(code));
    }
    return 0;
}

static int append_text(asn1_xer_parser* parser, growing_string* string) {
    uint64_t length = parser->contents.length;
    if (reserve_units(parser, string, length) != 0) return -1;
    if (string->is_utf8) {
        memcpy(string->value->data + string->count, parser->contents.data, length);
        string->count += length;
    } else if (append_code_points(parser, string) != 0) {
        return -1;
    }
    return next_token(parser);
}

static int append_control(asn1_xer_parser* parser, growing_string* string) {
    for (const auto& control : xml_string_tags) {
        if (!is_tag(parser, XER_TOKEN_START, control.name)) continue;
        if (next_token(parser) != 0 || skip_closing_tag(parser, control.name) != 0) return -1;
        if (reserve_units(parser, string, 1) != 0) return -1;
        store_code_unit(string->value->data, string->count++, string->shift, control.code);
        return 0;
    }
    return parse_error(parser, "unexpected tag <%s> in character string", parser->name);
}

static int append_pieces(asn1_xer_parser* parser, growing_string* string) {
    for (;;) {
        int result;
        switch (parser->token) {
            case XER_TOKEN_TEXT: result = append_text(parser, string); break;
            case XER_TOKEN_START: result = append_control(parser, string); break;
            default: return 0;
        }
        if (result != 0) return -1;
    }
}

int decode_char_string(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    uint32_t of = string_type(type);
    growing_string string = {static_cast<asn1_string*>(value), 0, 0, code_unit_shift(of),
                             of == ASN1_STRING_UTF8};
    if (append_pieces(parser, &string) != 0) return -1;
    if (string.count < string.capacity) {
        string.value->data =
            shrink(parser, string.value->data, string.capacity << string.shift, string.count << string.shift);
    }
    string.value->length = string.count;
    return 0;
}

}  // namespace orlenta::xer
