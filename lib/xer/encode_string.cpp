// SPDX-License-Identifier: Apache-2.0
// BIT STRING, OCTET STRING, character strings.
#include "xer/encode.hpp"

namespace orlenta::xer {

void print_hex(asn1_xer_encoder* encoder, const void* data, uint64_t bits) {
    put_hex_digits(&encoder->buffer, static_cast<const uint8_t*>(data), bits / 4, kUpperHexDigits);
}

int encode_bit_string(asn1_xer_encoder* encoder, const void* value) {
    const asn1_bit_string* bits = static_cast<const asn1_bit_string*>(value);
    if (bits->length == 0) return 0;
    start_text(encoder);
    put_binary_digits(&encoder->buffer, bits->data, bits->length);
    return 0;
}

int encode_octet_string(asn1_xer_encoder* encoder, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    if (string->length == 0) return 0;
    start_text(encoder);
    print_hex(encoder, string->data, 8 * string->length);
    return 0;
}

// ---- character strings ------------------------------------------------------------------------------------

// Control characters, tab and line ends among them, and what means something in XML.
static bool is_escaped(uint32_t unit) { return unit < ' ' || unit == '&' || unit == '<' || unit == '>'; }

static void put_escaped(asn1_byte_buffer* buf, uint32_t unit) {
    asn1_puts(buf, "&#");
    put_unsigned(buf, unit);
    put_char(buf, ';');
}

// Units of one byte. What needs no change goes to the buffer in one piece; UTF-8 is printed as it stands,
// unchecked.
static void put_bytes_escaped(asn1_byte_buffer* buf, const uint8_t* at, const uint8_t* end, bool is_utf8) {
    while (at < end) {
        const uint8_t* start = at;
        while (at < end && !is_escaped(*at) && (is_utf8 || *at < 0x80)) ++at;
        if (at > start) asn1_put_bytes(buf, start, static_cast<uint64_t>(at - start));
        if (at == end) return;
        uint8_t unit = *at++;
        if (is_escaped(unit)) {
            put_escaped(buf, unit);
        } else {
            put_utf8(buf, unit);
        }
    }
}

// Units of two or four bytes.
static int put_units(asn1_byte_buffer* buf, const uint8_t* data, uint64_t count, uint32_t shift) {
    for (uint64_t i = 0; i < count; ++i) {
        uint32_t unit = load_code_unit(data, i, shift);
        if (unit > INT32_MAX) return -1;
        if (is_escaped(unit)) {
            put_escaped(buf, unit);
        } else {
            put_utf8(buf, unit);
        }
    }
    return 0;
}

int encode_char_string(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    start_text(encoder);
    const asn1_string* string = static_cast<const asn1_string*>(value);
    int32_t length = static_cast<int32_t>(string->length);  // lengths beyond 31 bits are not told apart
    if (length <= 0) return 0;
    uint32_t of = string_type(type);
    uint32_t shift = code_unit_shift(of);
    if (shift != 0) return put_units(&encoder->buffer, string->data, static_cast<uint64_t>(length), shift);
    put_bytes_escaped(&encoder->buffer, string->data, string->data + length, of == ASN1_STRING_UTF8);
    return 0;
}

}  // namespace orlenta::xer
