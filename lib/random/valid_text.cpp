// SPDX-License-Identifier: Apache-2.0
// Character strings of valid values: what can be printed, if the alphabet has it.
#include <orlenta/scalar.h>

#include "core/buffer.hpp"
#include "random/random.hpp"

namespace orlenta::random {

static bool is_printable(uint32_t code) {
    if (code < 0xA0) return code >= 0x20 && code < 0x7F;
    bool is_surrogate = code >= 0xD800 && code <= 0xDFFF;
    return !is_surrogate && code <= 0x10FFFF && (code & 0xFFFE) != 0xFFFE;
}

static uint32_t random_ascii(asn1_random_params* params) { return 0x20 + draw(params) % 0x5F; }

// A printable character of one of the ranges, or of ASCII, or else the first of the alphabet.
static uint32_t choose_character(asn1_random_params* params, const char_string_layout& layout) {
    uint32_t ascii = random_ascii(params);
    if (layout.range_count <= 0) return ascii;
    int32_t range = static_cast<int32_t>(draw(params) % static_cast<uint32_t>(layout.range_count));
    uint32_t first = range_first(layout, range), span = range_last(layout, range) - first;
    uint32_t code = span == UINT32_MAX ? draw(params) : first + draw(params) % (span + 1);
    if (is_printable(code)) return code;
    return in_alphabet(layout, ascii) ? ascii : range_first(layout, 0);
}

static int random_restricted(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value) {
    char_string_layout layout = char_string_of(type);
    uint32_t shift = code_unit_shift(string_type(type));
    if (make_code_units(params, type, layout, value) < 0) return -1;
    for (uint64_t i = 0; i < value->length; ++i)
        store_code_unit(value->data, i, shift, choose_character(params, layout));
    return 0;
}

// UTF8String of ASCII and some characters of two to four octets; strings of other sets in ASCII.
static int random_octets(asn1_random_params* params, bool is_utf8, asn1_string* value) {
    static constexpr uint32_t kLongCharacters[] = {0xE9, 0xDF, 0x20AC, 0x4E2D, 0x1F697};
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    for (uint32_t count = draw(params) % (params->string_spread + 1); count > 0; --count) {
        uint32_t code = random_ascii(params);
        if (is_utf8 && draw(params) % 8 == 1) code = kLongCharacters[draw(params) % 5];
        uint8_t bytes[4];
        asn1_put_bytes(&buffer, bytes, static_cast<uint64_t>(asn1_to_utf8(bytes, code)));
    }
    return take_buffer(buffer, value);
}

int random_valid_char_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value) {
    uint32_t sort = string_type(type);
    return sort < ASN1_STRING_UTF8 ? random_restricted(params, type, value)
                                   : random_octets(params, sort == ASN1_STRING_UTF8, value);
}

}  // namespace orlenta::random
