// SPDX-License-Identifier: Apache-2.0
// BIT STRING, OCTET STRING, character strings.
#include "jer/encode.hpp"

namespace orlenta::jer {

void print_hex(asn1_jer_encoder* encoder, const uint8_t* data, uint64_t bits) {
    asn1_byte_buffer* buf = &encoder->buffer;
    uint64_t nibbles = bits / 4 + (bits % 4 != 0);
    put_char(buf, '"');
    put_hex_digits(buf, data, nibbles, kLowerHexDigits);
    if (nibbles % 2 != 0) put_char(buf, '0');
    put_char(buf, '"');
}

int encode_bit_string(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const asn1_bit_string* bits = static_cast<const asn1_bit_string*>(value);
    size_bounds size = size_bounds_of(type);
    if (size.lower == size.upper && !is_extensible(type)) {
        print_hex(encoder, bits->data, bits->length);
        return 0;
    }
    put_char(&encoder->buffer, '{');
    ++encoder->depth;
    put_member_name(encoder, true, "length");
    put_unsigned(&encoder->buffer, static_cast<uint32_t>(bits->length));
    put_member_name(encoder, false, "value");
    print_hex(encoder, bits->data, bits->length);
    --encoder->depth;
    put_break(encoder);
    put_char(&encoder->buffer, '}');
    return 0;
}

int encode_octet_string(asn1_jer_encoder* encoder, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    print_hex(encoder, string->data, 8 * string->length);
    return 0;
}

// ---- character strings ------------------------------------------------------------------------------------

// The letter behind the backslash of a unit that has an escape of its own, or 0.
static char escape_letter(uint32_t unit) {
    switch (unit) {
        case '"': return '"';
        case '\\': return '\\';
        case '\b': return 'b';
        case '\t': return 't';
        case '\n': return 'n';
        case '\f': return 'f';
        case '\r': return 'r';
        default: return 0;
    }
}

static void put_escaped(asn1_byte_buffer* buf, uint32_t unit) {
    put_char(buf, '\\');
    char letter = escape_letter(unit);
    if (letter != 0) {
        put_char(buf, letter);
        return;
    }
    const uint8_t code[2] = {0, static_cast<uint8_t>(unit)};
    put_char(buf, 'u');
    put_hex_digits(buf, code, 4, kLowerHexDigits);
}

static bool is_plain(uint32_t unit) { return unit >= 0x20 && unit != '"' && unit != '\\'; }

// UTF-8 is printed as it stands, unchecked; units of other types above ASCII become UTF-8.
static void put_unit(asn1_byte_buffer* buf, uint32_t unit, bool is_utf8) {
    if (!is_plain(unit)) {
        put_escaped(buf, unit);
    } else if (unit < 0x80 || is_utf8) {
        put_char(buf, static_cast<char>(unit));
    } else {
        put_utf8(buf, unit);
    }
}

int encode_char_string(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    uint32_t of = string_type(type);
    if (of > ASN1_STRING_UTF8) return encode_octet_string(encoder, value);
    asn1_byte_buffer* buf = &encoder->buffer;
    uint32_t shift = code_unit_shift(of);
    int32_t length = static_cast<int32_t>(string->length);  // lengths beyond 31 bits are not told apart
    put_char(buf, '"');
    for (int32_t i = 0; i < length; ++i) {
        put_unit(buf, load_code_unit(string->data, static_cast<uint64_t>(i), shift), of == ASN1_STRING_UTF8);
    }
    put_char(buf, '"');
    return 0;
}

}  // namespace orlenta::jer
