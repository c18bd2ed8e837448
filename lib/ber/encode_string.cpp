// SPDX-License-Identifier: Apache-2.0
// BER encoding of strings, primitive and in segments (X.690 clauses 8.6, 8.7, 8.19, 8.20, 8.23).
#include "ber/encoder.hpp"
#include "core/buffer.hpp"
#include "core/code_units.hpp"

namespace orlenta::ber {

static constexpr uint32_t kTagBitString = 3;
static constexpr uint32_t kTagOctetString = 4;

static uint64_t segment_size(const asn1_ber_encoder* encoder) {
    return static_cast<uint32_t>(encoder->params.segment_size);
}

// ---- octets -----------------------------------------------------------------------------------------------

static void put_octets(asn1_ber_encoder* encoder, uint32_t tag, const uint8_t* data, uint64_t length) {
    put_tag(encoder, tag, 0);
    put_len(encoder, length);
    asn1_put_bytes(&encoder->buffer, data, length);
}

int asn1_ber_encode_octet_string1(asn1_ber_encoder* encoder, uint32_t tag, const uint8_t* data,
                                  uint64_t length) {
    const uint64_t most = segment_size(encoder);
    if (most == 0 || most >= length) {
        put_octets(encoder, tag, data, length);
        return 0;
    }
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    for (uint64_t done = 0; done < length; done += most) {
        uint64_t left = length - done;
        put_octets(encoder, kTagOctetString, data + done, left < most ? left : most);
    }
    put_len_end(encoder, start);
    return 0;
}

int asn1_ber_encode_char_string(asn1_ber_encoder* encoder, const asn1_type_desc* type,
                                const asn1_string* value, uint32_t tag) {
    uint32_t shift = code_unit_shift(string_type(type));
    if (shift == 0) return asn1_ber_encode_octet_string1(encoder, tag, value->data, value->length);
    size_t length;
    if (__builtin_mul_overflow(value->length, UINT64_C(1) << shift, &length)) return -1;
    uint8_t* octets = static_cast<uint8_t*>(asn1_malloc(length));
    if (octets == nullptr) return -1;
    units_to_big_endian(octets, value->data, value->length, shift);
    int result = asn1_ber_encode_octet_string1(encoder, tag, octets, length);
    asn1_free(octets);
    return result;
}

int asn1_ber_encode_object_identifier(asn1_ber_encoder* encoder, const asn1_string* value, uint32_t tag) {
    put_octets(encoder, tag, value->data, value->length);
    return 0;
}

// ---- bits -------------------------------------------------------------------------------------------------

// `data` begins with the first of the `bits`.
static void put_bits(asn1_ber_encoder* encoder, uint32_t tag, const uint8_t* data, uint64_t bits) {
    put_tag(encoder, tag, 0);
    put_len(encoder, (bits + 7) / 8 + 1);
    put_byte(&encoder->buffer, static_cast<uint8_t>(-bits & 7));
    asn1_put_bytes(&encoder->buffer, data, bits / 8);
    if (bits % 8 != 0) put_byte(&encoder->buffer, static_cast<uint8_t>(data[bits / 8] & 0xFF00 >> bits % 8));
}

int asn1_ber_encode_bit_string(asn1_ber_encoder* encoder, const asn1_bit_string* value, uint32_t tag) {
    const uint64_t most = segment_size(encoder);
    if (most == 0 || most > (value->length + 7) / 8) {
        put_bits(encoder, tag, value->data, value->length);
        return 0;
    }
    // The count of unused bits takes the only octet of such a segment.
    if (most == 1) return -1;
    const uint64_t most_bits = (most - 1) * 8;
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    for (uint64_t done = 0; done < value->length; done += most_bits) {
        uint64_t left = value->length - done;
        put_bits(encoder, kTagBitString, value->data + done / 8, left < most_bits ? left : most_bits);
    }
    put_len_end(encoder, start);
    return 0;
}

}  // namespace orlenta::ber
