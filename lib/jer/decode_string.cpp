// SPDX-License-Identifier: Apache-2.0
// BIT STRING, OCTET STRING, character strings.
#include <orlenta/scalar.h>

#include "jer/decode.hpp"

namespace orlenta::jer {

// `count` bytes from twice as many hexadecimal digits; false at anything else.
static bool read_hex(const char* text, uint8_t* out, uint64_t count) {
    for (uint64_t i = 0; i < count; ++i) {
        int high = hex_digit(static_cast<uint8_t>(text[2 * i]));
        int low = hex_digit(static_cast<uint8_t>(text[2 * i + 1]));
        if (high < 0 || low < 0) return false;
        out[i] = static_cast<uint8_t>(high << 4 | low);
    }
    return true;
}

// ---- BIT STRING -------------------------------------------------------------------------------------------

// The members of the object form, as far as read.
struct bit_string_members {
    bool has_length, has_value;
    uint32_t length;         // bits
    string_token text;       // of `value`
    asn1_byte_buffer block;  // which it may lie in
};

static int decode_length_member(asn1_jer_parser* parser, bit_string_members* members) {
    if (parser->token != JER_TOKEN_INTEGER) return parse_error(parser, "expecting integer value");
    int64_t length;
    if (text_integer_to_si64(&parser->number.integer, &length) != 0 || length < 0 || length > UINT32_MAX) {
        return parse_error(parser, "invalid bit string length");
    }
    members->length = static_cast<uint32_t>(length);
    return next_token(parser);
}

static int decode_value_member(asn1_jer_parser* parser, bit_string_members* members) {
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting string value");
    members->text = parser->string;
    members->block = take_string_block(parser);
    return next_token(parser);
}

// "length": integer, or "value": string
static int decode_bit_string_member(asn1_jer_parser* parser, bit_string_members* members) {
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting property name");
    bool is_length = is_string(parser, "length");
    if (!is_length && !is_string(parser, "value")) {
        return parse_error(parser, "unexpected property: '%.*s'", shown_length(parser->string.length),
                           parser->string.text);
    }
    bool* has = is_length ? &members->has_length : &members->has_value;
    if (*has) return parse_error(parser, "duplicate property");
    *has = true;
    if (next_token(parser) != 0 || skip_token(parser, ':') != 0) return -1;
    return is_length ? decode_length_member(parser, members) : decode_value_member(parser, members);
}

// Up to the closing brace, which stays current. There is one member at the least.
static int decode_bit_string_members(asn1_jer_parser* parser, bit_string_members* members) {
    bool is_last = false;
    while (!is_last) {
        if (next_token(parser) != 0 || decode_bit_string_member(parser, members) != 0) return -1;
        if (end_item(parser, '}', &is_last) != 0) return -1;
    }
    return 0;
}

static int store_bit_string(asn1_jer_parser* parser, asn1_bit_string* value, const string_token& text,
                            uint64_t bits) {
    uint64_t bytes = (bits + 7) / 8;
    if (text.length != 2 * bytes) return parse_error(parser, "invalid string length");
    value->data = new_block(parser, bytes);
    if (!value->data) return -1;
    value->length = bits;
    if (!read_hex(text.text, value->data, bytes)) {
        return parse_error(parser, "invalid hex digit");
    }
    if (bits % 8 != 0 && (value->data[bytes - 1] & (0xFF >> (bits % 8))) != 0) {
        return parse_error(parser, "trailing bits must be zero");
    }
    return next_token(parser);
}

static int decode_bit_string_object(asn1_jer_parser* parser, asn1_bit_string* value) {
    bit_string_members members = {};
    int result = decode_bit_string_members(parser, &members);
    if (result == 0) result = store_bit_string(parser, value, members.text, members.length);
    asn1_free(members.block.data);
    return result;
}

int decode_bit_string(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    asn1_bit_string* bits = static_cast<asn1_bit_string*>(value);
    if (parser->token == '{') return decode_bit_string_object(parser, bits);
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting string value");
    size_bounds size = size_bounds_of(type);
    if (size.lower != size.upper || is_extensible(type)) {
        return parse_error(parser, "variable length bit string must be encoded as a JSON object");
    }
    return store_bit_string(parser, bits, parser->string, size.lower);
}

// ---- OCTET STRING -----------------------------------------------------------------------------------------

// The current STRING token as pairs of hexadecimal digits.
static int asn1_jer_decode_octet_string(asn1_jer_parser* parser, asn1_string* value) {
    uint64_t digits = parser->string.length;
    if (digits % 2 != 0) return parse_error(parser, "invalid octet string");
    value->data = new_block(parser, digits / 2);
    if (!value->data) return -1;
    value->length = digits / 2;
    if (!read_hex(parser->string.text, value->data, digits / 2))
        return parse_error(parser, "invalid octet string");
    return next_token(parser);
}

int decode_octet_string(asn1_jer_parser* parser, void* value) {
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting octet string value");
    return asn1_jer_decode_octet_string(parser, static_cast<asn1_string*>(value));
}

// ---- character strings ------------------------------------------------------------------------------------

static int copy_bytes(asn1_jer_parser* parser, asn1_string* value) {
    const string_token& text = parser->string;
    value->data = new_block(parser, text.length);
    if (!value->data) return -1;
    value->length = text.length;
    memcpy(value->data, text.text, text.length);
    return next_token(parser);
}

// One unit of 1 << `shift` bytes for each code point; high bits that a unit has no room for are lost.
static int copy_code_points(asn1_jer_parser* parser, asn1_string* value, uint32_t shift) {
    uint64_t count = parser->string.code_points;
    if (count > UINT64_MAX >> shift) return parse_error(parser, kNotEnoughMemory);
    value->data = new_block(parser, count << shift);
    if (!value->data) return -1;
    value->length = count;
    const uint8_t* at = reinterpret_cast<const uint8_t*>(parser->string.text);
    const uint8_t* end = at + parser->string.length;
    for (uint64_t i = 0; i < count; ++i) {
        int32_t code = at < end ? asn1_from_utf8(at, static_cast<uint64_t>(end - at), &at) : -1;
        if (code < 0) return parse_error(parser, "internal UTF-8 error");
        store_code_unit(value->data, i, shift, static_cast<uint32_t>(code));
    }
    return next_token(parser);
}

int decode_char_string(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting character string");
    asn1_string* string = static_cast<asn1_string*>(value);
    uint32_t of = string_type(type);
    if (of > ASN1_STRING_UTF8) return asn1_jer_decode_octet_string(parser, string);
    uint32_t shift = code_unit_shift(of);
    // With as many bytes as code points the text is ASCII, whose code points are its bytes.
    bool is_ascii = parser->string.length == parser->string.code_points;
    if (of == ASN1_STRING_UTF8 || (shift == 0 && is_ascii)) return copy_bytes(parser, string);
    return copy_code_points(parser, string, shift);
}

}  // namespace orlenta::jer
