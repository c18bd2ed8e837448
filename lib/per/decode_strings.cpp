// SPDX-License-Identifier: Apache-2.0
#include <orlenta/scalar.h>
#include <string.h>

#include "per/char_params.hpp"
#include "per/decode_items.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

// Item reader: bits, into an asn1_bit_string. `first` is a multiple of 8.
static int asn1_per_decode_bit_string1(asn1_per_decoder* decoder, uint32_t first, uint32_t count,
                                       void* argument) {
    asn1_bit_string* string = static_cast<asn1_bit_string*>(argument);
    uint64_t length = uint64_t{first} + count;
    if (grow_block(decoder, &string->data, first / 8, (length + 7) / 8) != 0) return -1;
    string->length = length;
    uint8_t* octets = string->data + first / 8;
    if (get_octets(decoder, octets, count / 8) != 0) return -1;
    uint32_t rest = count % 8;
    if (rest != 0) {
        uint32_t bits;
        if (asn1_get_bits(decoder, rest, &bits) != 0) return -1;
        octets[count / 8] = static_cast<uint8_t>(bits << (8 - rest));
    }
    return 0;
}

static int get_chars(asn1_per_decoder* decoder, const asn1_per_char_params* params, uint8_t* units,
                     uint64_t first, uint64_t count) {
    if (params->bits == 8 && params->unit_shift == 0 && params->range_count == 0) {
        return get_octets(decoder, units + first, count);
    }
    for (uint64_t i = first; i < first + count; ++i) {
        uint32_t code;
        if (asn1_get_bits(decoder, params->bits, &code) != 0) return -1;
        if (params->range_count != 0 && !find_code_point(params->ranges, params->range_count, &code)) {
            return asn1_decode_error(decoder, "character outside range");
        }
        store_code_unit(units, i, params->unit_shift, code);
    }
    return 0;
}

// Item reader: characters, into the asn1_string that the parameters name.
static int asn1_per_decode_char_string1(asn1_per_decoder* decoder, uint32_t first, uint32_t count,
                                        void* argument) {
    const asn1_per_char_params* params = static_cast<const asn1_per_char_params*>(argument);
    asn1_string* string = static_cast<asn1_string*>(params->data);
    uint64_t length = uint64_t{first} + count;
    uint32_t shift = params->unit_shift;
    if (grow_block(decoder, &string->data, uint64_t{first} << shift, length << shift) != 0) return -1;
    string->length = length;
    return get_chars(decoder, params, string->data, first, count);
}

int decode_bit_string(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_bit_string* string) {
    *string = {};
    return decode_sized_items(decoder, layout_of_bit_string(type), asn1_per_decode_bit_string1, string,
                              "string too short");
}

int decode_octet_string(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_string* string) {
    *string = {};
    return decode_sized_items(decoder, layout_of_octet_string(type), asn1_per_decode_octet_string1, string,
                              "string too short");
}

int decode_object_identifier(asn1_per_decoder* decoder, asn1_string* contents) {
    *contents = {};
    return asn1_per_decode_ulength_items(decoder, asn1_per_decode_octet_string1, contents, nullptr);
}

int decode_char_string(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_string* string) {
    *string = {};
    if (string_type(type) > ASN1_STRING_UNIVERSAL) {
        return asn1_per_decode_ulength_items(decoder, asn1_per_decode_octet_string1, string, nullptr);
    }
    char_string_layout chars = char_string_of(type);
    asn1_per_char_params params;
    if (find_char_params(&params, type, chars, decoder->aligned != 0) != 0) {
        return asn1_decode_error(decoder, "inconsistent number of ranges");
    }
    params.data = string;
    return decode_sized_items(decoder, layout_of_char_string(type, chars.size, params.bits),
                              asn1_per_decode_char_string1, &params, "string too short");
}

int decode_real(asn1_per_decoder* decoder, void* value) {
    asn1_string contents = {};
    double number;
    int result = asn1_per_decode_ulength_items(decoder, asn1_per_decode_octet_string1, &contents, nullptr);
    if (result == 0) {
        result = asn1_decode_real_ber(contents.data, static_cast<uint32_t>(contents.length), &number);
        if (result != 0) {
            asn1_decode_error(decoder, "real: error in encoding");
        } else {
            memcpy(value, &number, sizeof number);
        }
    }
    release(&decoder->memory, contents.data, contents.length);
    return result;
}

}  // namespace orlenta::per
