// SPDX-License-Identifier: Apache-2.0
// BIT STRING, OCTET STRING, character strings.
#include <orlenta/scalar.h>

#include "gser/decode.hpp"

namespace orlenta::gser {

static bool is_bits(const asn1_gser_parser* parser) {
    return parser->token == GSER_TOKEN_BIT_STRING || parser->token == GSER_TOKEN_HEX_STRING;
}

// A new block with the first `bytes` bytes of the token's contents, or null after an error.
static uint8_t* copy_contents(asn1_gser_parser* parser, uint64_t bytes) {
    uint8_t* data = new_block(parser, bytes);
    if (data) memcpy(data, parser->contents.data, bytes);
    return data;
}

// ---- BIT STRING -------------------------------------------------------------------------------------------

int decode_bit_string(asn1_gser_parser* parser, void* value) {
    if (!is_bits(parser)) return parse_error(parser, "expecting bit string value");
    asn1_bit_string* bits = static_cast<asn1_bit_string*>(value);
    bits->data = copy_contents(parser, (parser->length + 7) / 8);
    if (!bits->data) return -1;
    bits->length = parser->length;
    return next_token(parser);
}

// ---- OCTET STRING -----------------------------------------------------------------------------------------

int decode_whole_bytes(asn1_gser_parser* parser, void** data, uint64_t* length) {
    if (parser->length % 8 != 0) return parse_error(parser, "number of bits must be multiple of 8");
    *data = copy_contents(parser, parser->length / 8);
    if (!*data) return -1;
    *length = parser->length / 8;
    return next_token(parser);
}

// Not one byte for each character: as many bytes as there are characters, of code points with four bytes each.
static int decode_octets_from_string(asn1_gser_parser* parser, asn1_string* value) {
    value->data = copy_contents(parser, parser->length);
    if (!value->data) return -1;
    value->length = parser->length;
    return next_token(parser);
}

int decode_octet_string(asn1_gser_parser* parser, void* value) {
    asn1_string* string = static_cast<asn1_string*>(value);
    if (parser->token == GSER_TOKEN_STRING) return decode_octets_from_string(parser, string);
    if (!is_bits(parser)) return parse_error(parser, "expecting octet string value");
    void* data = nullptr;
    int result = decode_whole_bytes(parser, &data, &string->length);
    string->data = static_cast<uint8_t*>(data);
    return result;
}

// ---- character strings ------------------------------------------------------------------------------------

static uint32_t code_point(const asn1_gser_parser* parser, uint64_t index) {
    return load_code_unit(parser->contents.data, index, 2);
}

static uint64_t utf8_length(const asn1_gser_parser* parser) {
    uint64_t bytes = parser->length;
    for (uint64_t i = 0; i < parser->length; ++i) {
        uint32_t code = code_point(parser, i);
        bytes += (code >= 0x80) + (code >= 0x800) + (code >= 0x10000);
    }
    return bytes;
}

static int decode_utf8_string(asn1_gser_parser* parser, asn1_string* value) {
    uint64_t bytes = utf8_length(parser);
    uint8_t* out = new_block(parser, bytes);
    if (!out) return -1;
    *value = {out, bytes};
    for (uint64_t i = 0; i < parser->length; ++i) out += asn1_to_utf8(out, code_point(parser, i));
    return next_token(parser);
}

// One unit of 1 << `shift` bytes for each code point; high bits that a unit has no room for are lost.
static int decode_units(asn1_gser_parser* parser, asn1_string* value, uint32_t shift) {
    value->data = new_block(parser, parser->length << shift);
    if (!value->data) return -1;
    value->length = parser->length;
    for (uint64_t i = 0; i < parser->length; ++i) {
        store_code_unit(value->data, i, shift, code_point(parser, i));
    }
    return next_token(parser);
}

int decode_char_string(asn1_gser_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != GSER_TOKEN_STRING) return parse_error(parser, "expecting character string");
    asn1_string* string = static_cast<asn1_string*>(value);
    uint32_t of = string_type(type);
    if (of == ASN1_STRING_UTF8) return decode_utf8_string(parser, string);
    return decode_units(parser, string, code_unit_shift(of));
}

}  // namespace orlenta::gser
