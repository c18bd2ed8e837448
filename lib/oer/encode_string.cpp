// SPDX-License-Identifier: Apache-2.0
// OER encoding of strings (X.696 clauses 13, 14, 21, 22, 27).
#include "core/buffer.hpp"
#include "core/code_units.hpp"
#include "oer/encoder.hpp"
#include "oer/width.hpp"

namespace orlenta::oer {

// ---- bits -------------------------------------------------------------------------------------------------

// Unused bits of the last byte are written as 0.
static void put_bits(asn1_oer_encoder* encoder, const uint8_t* data, uint64_t bits) {
    asn1_put_bytes(&encoder->buffer, data, bits / 8);
    if (bits % 8 != 0) put_byte(&encoder->buffer, static_cast<uint8_t>(data[bits / 8] & 0xFF00 >> bits % 8));
}

void asn1_oer_put_variable_bits(asn1_oer_encoder* encoder, const uint8_t* data, uint64_t bits) {
    put_len(encoder, (bits + 7) / 8 + 1);
    put_byte(&encoder->buffer, static_cast<uint8_t>(-bits & 7));
    put_bits(encoder, data, bits);
}

int asn1_oer_encode_bit_string(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                               const asn1_bit_string* value) {
    size_bounds bounds = size_bounds_of(type);
    if (is_extensible(type) || !is_fixed_size(bounds)) {
        asn1_oer_put_variable_bits(encoder, value->data, value->length);
        return 0;
    }
    if (value->length != bounds.lower) {
        return asn1_encode_error(encoder, "invalid bit string size (%u expected=%u)",
                                 static_cast<uint32_t>(value->length), bounds.lower);
    }
    put_bits(encoder, value->data, value->length);
    return 0;
}

// ---- octets -----------------------------------------------------------------------------------------------

int asn1_oer_encode_octets(asn1_oer_encoder* encoder, const void* data, uint64_t length) {
    put_len(encoder, length);
    asn1_put_bytes(&encoder->buffer, data, length);
    return 0;
}

int asn1_oer_encode_octet_string(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                                 const asn1_string* value) {
    size_bounds bounds = size_bounds_of(type);
    if (is_extensible(type) || !is_fixed_size(bounds)) {
        return asn1_oer_encode_octets(encoder, value->data, value->length);
    }
    if (value->length != bounds.lower) {
        return asn1_encode_error(encoder, "invalid octet string size (%u expected=%u)",
                                 static_cast<uint32_t>(value->length), bounds.lower);
    }
    asn1_put_bytes(&encoder->buffer, value->data, value->length);
    return 0;
}

int asn1_oer_encode_char_string(asn1_oer_encoder* encoder, const asn1_type_desc* type,
                                const asn1_string* value) {
    if (string_type(type) > ASN1_STRING_UNIVERSAL) {
        return asn1_oer_encode_octets(encoder, value->data, value->length);
    }
    uint32_t shift = code_unit_shift(string_type(type));
    uint64_t bytes;
    if (__builtin_mul_overflow(value->length, UINT64_C(1) << shift, &bytes)) {
        return asn1_encode_error(encoder, "not enough memory");
    }
    if (!is_fixed_size(char_string_of(type).size)) put_len(encoder, bytes);
    asn1_byte_buffer* buf = &encoder->buffer;
    if (!reserve(buf, bytes)) return 0;
    units_to_big_endian(buf->data + buf->length, value->data, value->length, shift);
    buf->length += bytes;
    return 0;
}

}  // namespace orlenta::oer
