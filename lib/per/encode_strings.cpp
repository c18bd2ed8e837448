// SPDX-License-Identifier: Apache-2.0
#include <orlenta/scalar.h>
#include <string.h>

#include "per/char_params.hpp"
#include "per/encode_items.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

// Item writer: bits; `first` is a multiple of 8, and what lies behind the last bit is not sent.
static int asn1_per_encode_bits(asn1_per_encoder* encoder, uint64_t first, uint64_t count,
                                const void* argument) {
    const uint8_t* octets = static_cast<const uint8_t*>(argument) + first / 8;
    put_bits_of(&encoder->sink, octets, count);
    return 0;
}

// Item writer: characters.
static int asn1_per_encode_char_string1(asn1_per_encoder* encoder, uint64_t first, uint64_t count,
                                        const void* argument) {
    const asn1_per_char_params* params = static_cast<const asn1_per_char_params*>(argument);
    if (params->bits == 0) return 0;
    if (params->bits == 8 && params->unit_shift == 0 && params->range_count == 0) {
        return asn1_per_encode_buf1(encoder, first, count, params->data);
    }
    for (uint64_t i = first; i < first + count; ++i) {
        uint32_t code = load_code_unit(params->data, i, params->unit_shift);
        if (params->range_count != 0 && !find_position(params->ranges, params->range_count, &code)) return -1;
        if (asn1_put_char(encoder, params->bits, code) != 0) return -1;
    }
    return 0;
}

int encode_bit_string(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_bit_string* string) {
    return encode_sized_items(encoder, layout_of_bit_string(type), asn1_per_encode_bits, string->data,
                              string->length);
}

int encode_octet_string(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_string* string) {
    return encode_sized_items(encoder, layout_of_octet_string(type), asn1_per_encode_buf1, string->data,
                              string->length);
}

int encode_object_identifier(asn1_per_encoder* encoder, const asn1_string* contents) {
    return asn1_per_encode_ulength_items(encoder, asn1_per_encode_buf1, contents->data, contents->length);
}

int encode_char_string(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_string* string) {
    if (string_type(type) > ASN1_STRING_UNIVERSAL) {
        return asn1_per_encode_ulength_items(encoder, asn1_per_encode_buf1, string->data, string->length);
    }
    char_string_layout chars = char_string_of(type);
    asn1_per_char_params params;
    if (find_char_params(&params, type, chars, encoder->aligned != 0) != 0) return -1;
    params.data = string->data;
    return encode_sized_items(encoder, layout_of_char_string(type, chars.size, params.bits),
                              asn1_per_encode_char_string1, &params, string->length);
}

int encode_real(asn1_per_encoder* encoder, const void* value) {
    double number;
    memcpy(&number, value, sizeof number);
    uint8_t octets[ASN1_REAL_DER_MAX];
    int length = asn1_encode_real_der(octets, number);
    return asn1_per_encode_ulength_items(encoder, asn1_per_encode_buf1, octets,
                                         static_cast<uint64_t>(length));
}

}  // namespace orlenta::per
