// SPDX-License-Identifier: Apache-2.0
// BER encoding of numbers and NULL (X.690 clauses 8.2 to 8.5, 8.8; in DER's form, clause 11).
#include <orlenta/scalar.h>

#include "ber/encoder.hpp"
#include "core/integer_octets.hpp"

namespace orlenta::ber {

static int encode_big_integer(asn1_ber_encoder* encoder, const asn1_integer* value, uint32_t tag) {
    if (value->size == 0) {  // whatever its sign says
        put_tag(encoder, tag, 0);
        put_len(encoder, 1);
        put_byte(&encoder->buffer, 0);
        return 0;
    }
    asn1_integer negative;
    asn1_integer_init(&negative);
    uint32_t bits;
    const asn1_integer* form = asn1_integer_to_2comp(&negative, value, &bits);
    if (form == nullptr) {
        asn1_integer_clear(&negative);
        return -1;
    }
    uint32_t octets = bits / 8 + 1;  // one bit at least for the sign
    put_tag(encoder, tag, 0);
    put_len(encoder, octets);
    put_integer_octets(&encoder->buffer, form, octets, value->negative != 0 ? 0xFF : 0x00);
    if (form == &negative) asn1_integer_clear(&negative);
    return 0;
}

// A number from 2^31 up, stored in 32 bits.
static int encode_large_uint32(asn1_ber_encoder* encoder, uint32_t number) {
    const uint8_t contents[] = {5,
                                0,
                                static_cast<uint8_t>(number >> 24),
                                static_cast<uint8_t>(number >> 16),
                                static_cast<uint8_t>(number >> 8),
                                static_cast<uint8_t>(number)};
    asn1_put_bytes(&encoder->buffer, contents, sizeof contents);
    return 0;
}

int asn1_ber_encode_integer(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                            uint32_t tag) {
    if (is_big_integer(type))
        return encode_big_integer(encoder, static_cast<const asn1_integer*>(value), tag);
    put_tag(encoder, tag, 0);
    int32_t number = static_cast<int32_t>(load32(value));
    if (number < 0 && is_unsigned_integer(type)) return encode_large_uint32(encoder, load32(value));
    return asn1_ber_encode_int32(&encoder->buffer, number);
}

int asn1_ber_encode_boolean(asn1_ber_encoder* encoder, const void* value, uint32_t tag) {
    put_tag(encoder, tag, 0);
    put_len(encoder, 1);
    put_byte(&encoder->buffer, load32(value) != 0 ? 0xFF : 0x00);
    return 0;
}

int asn1_ber_encode_enumerated(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                               uint32_t tag) {
    uint32_t index = load32(value);
    int32_t number = static_cast<int32_t>(index);
    if (has_flag(type, ASN1_WORD0_VALUE_TABLE)) {
        enum_layout items = enum_of(type);
        if (index >= items.total) return -1;
        number = enum_value(type, items, index);
    }
    put_tag(encoder, tag, 0);
    return asn1_ber_encode_int32(&encoder->buffer, number);
}

int asn1_ber_encode_null(asn1_ber_encoder* encoder, uint32_t tag) {
    put_tag(encoder, tag, 0);
    put_len(encoder, 0);
    return 0;
}

int asn1_ber_encode_real(asn1_ber_encoder* encoder, const void* value, uint32_t tag) {
    double number;
    memcpy(&number, value, sizeof number);
    uint8_t contents[ASN1_REAL_DER_MAX];
    int length = asn1_encode_real_der(contents, number);
    put_tag(encoder, tag, 0);
    put_len(encoder, static_cast<uint64_t>(length));
    asn1_put_bytes(&encoder->buffer, contents, static_cast<uint64_t>(length));
    return 0;
}

}  // namespace orlenta::ber
