// SPDX-License-Identifier: Apache-2.0
// BIT STRING, OCTET STRING, character strings.
#include "gser/encode.hpp"

namespace orlenta::gser {

void print_hex(asn1_byte_buffer* buffer, const void* data, uint64_t bits) {
    put_char(buffer, '\'');
    put_hex_digits(buffer, static_cast<const uint8_t*>(data), bits / 4, kUpperHexDigits);
    asn1_puts(buffer, "'H");
}

static void print_binary(asn1_byte_buffer* buffer, const void* data, uint64_t bits) {
    put_char(buffer, '\'');
    put_binary_digits(buffer, static_cast<const uint8_t*>(data), bits);
    asn1_puts(buffer, "'B");
}

int encode_bit_string(asn1_gser_encoder* encoder, const void* value) {
    const asn1_bit_string* bits = static_cast<const asn1_bit_string*>(value);
    if (encoder->hex_bit_strings && bits->length % 4 == 0) {
        print_hex(&encoder->buffer, bits->data, bits->length);
    } else {
        print_binary(&encoder->buffer, bits->data, bits->length);
    }
    return 0;
}

int encode_octet_string(asn1_gser_encoder* encoder, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    print_hex(&encoder->buffer, string->data, 8 * string->length);
    return 0;
}

// ---- character strings ------------------------------------------------------------------------------------

// Units of one byte. What needs no change goes to the buffer in one piece; UTF-8 is printed as it stands, unchecked.
static void put_bytes_quoted(asn1_byte_buffer* buf, const uint8_t* at, const uint8_t* end, bool is_utf8) {
    while (at < end) {
        const uint8_t* start = at;
        while (at < end && *at != '"' && (is_utf8 || *at < 0x80)) ++at;
        if (at > start) asn1_put_bytes(buf, start, static_cast<uint64_t>(at - start));
        if (at == end) return;
        uint8_t unit = *at++;
        if (unit == '"') {
            asn1_puts(buf, "\"\"");
        } else {
            put_utf8(buf, unit);
        }
    }
}

// Units of two or four bytes.
static int put_units_quoted(asn1_byte_buffer* buf, const uint8_t* data, uint64_t count, uint32_t shift) {
    for (uint64_t i = 0; i < count; ++i) {
        uint32_t unit = load_code_unit(data, i, shift);
        if (unit > INT32_MAX) return -1;
        if (unit == '"') put_char(buf, '"');
        put_utf8(buf, unit);
    }
    return 0;
}

int encode_char_string(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    uint32_t of = string_type(type);
    uint32_t shift = code_unit_shift(of);
    put_char(&encoder->buffer, '"');
    if (shift == 0) {
        put_bytes_quoted(&encoder->buffer, string->data, string->data + string->length,
                         of == ASN1_STRING_UTF8);
    } else if (put_units_quoted(&encoder->buffer, string->data, string->length, shift) != 0) {
        return -1;
    }
    put_char(&encoder->buffer, '"');
    return 0;
}

}  // namespace orlenta::gser
