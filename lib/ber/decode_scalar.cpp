// SPDX-License-Identifier: Apache-2.0
// BER decoding of numbers and NULL (X.690 clauses 8.2 to 8.5, 8.8).
#include <orlenta/scalar.h>

#include "ber/decoder.hpp"
#include "core/integer_octets.hpp"

namespace orlenta::ber {

// `count` octets, at most 4, in two's complement. The caller knows that they are there.
static uint32_t asn1_decode_int32(asn1_ber_decoder* decoder, int32_t count) {
    const uint8_t* octets = decoder->input + decoder->position;
    uint32_t number = count > 0 && (octets[0] & 0x80) != 0 ? UINT32_MAX : 0;
    for (int32_t i = 0; i < count; ++i) number = number << 8 | octets[i];
    decoder->position += static_cast<uint64_t>(count);
    return number;
}

static int decode_int32(asn1_ber_decoder* decoder, void* value, int32_t length) {
    if (length > 5) return asn1_error(decoder, "integer larger than 32 bits");
    if (length == 5) {
        // An unsigned number from 2^31 up.
        if (get_byte(decoder) != 0) return asn1_error(decoder, "integer larger than 32 bits");
        length = 4;
    }
    store32(value, asn1_decode_int32(decoder, length));
    return 0;
}

static int decode_big_integer(asn1_ber_decoder* decoder, asn1_integer* value, int32_t length) {
    asn1_integer_init(value);
    if (length == 0) return 0;
    const uint8_t* octets = decoder->input + decoder->position;
    if (read_integer_octets(&decoder->memory, value, octets, static_cast<uint32_t>(length), false) != 0) {
        return report_no_memory(decoder);
    }
    decoder->position += static_cast<uint64_t>(length);
    return 0;
}

int asn1_ber_decode_integer(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                            int constructed, int32_t length) {
    if (require_primitive(decoder, constructed) != 0) return -1;
    if (is_big_integer(type)) return decode_big_integer(decoder, static_cast<asn1_integer*>(value), length);
    return decode_int32(decoder, value, length);
}

int asn1_ber_decode_boolean(asn1_ber_decoder* decoder, void* value, int constructed, int32_t length) {
    if (require_primitive(decoder, constructed) != 0) return -1;
    if (length != 1) return asn1_error(decoder, "boolean must contain a single byte");
    store32(value, get_byte(decoder) != 0);
    return 0;
}

int asn1_ber_decode_enumerated(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                               int constructed, int32_t length) {
    if (require_primitive(decoder, constructed) != 0) return -1;
    if (length < 1 || length > 4) return asn1_error(decoder, "enumerated value out of range");
    enum_layout items = enum_of(type);
    int32_t number = static_cast<int32_t>(asn1_decode_int32(decoder, length));
    int32_t index = asn1_find_enum_index(items.names, items.total, number, word0(type));
    if (index < 0) return asn1_error(decoder, "enumerated value out of range");
    store32(value, static_cast<uint32_t>(index));
    return 0;
}

int asn1_ber_decode_null(asn1_ber_decoder* decoder, int constructed, int32_t length) {
    if (require_primitive(decoder, constructed) != 0) return -1;
    return length == 0 ? 0 : asn1_error(decoder, "expecting zero length for null type");
}

int asn1_ber_decode_real(asn1_ber_decoder* decoder, void* value, int constructed, int32_t length) {
    if (require_primitive(decoder, constructed) != 0) return -1;
    double number;
    if (asn1_decode_real_ber(decoder->input + decoder->position, static_cast<uint32_t>(length), &number) !=
        0) {
        return asn1_error(decoder, "real: error in encoding");
    }
    memcpy(value, &number, sizeof number);
    decoder->position += static_cast<uint64_t>(length);
    return 0;
}

}  // namespace orlenta::ber
