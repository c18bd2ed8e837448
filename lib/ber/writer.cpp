// SPDX-License-Identifier: Apache-2.0
// Identifier, length and INTEGER octets of BER (X.690 clauses 8.1.2, 8.1.3, 8.3).
#include <orlenta/ber.h>
#include <string.h>

#include "core/buffer.hpp"

using namespace orlenta;

// Octets kept for a length that is not known yet: the most that a length below 2^32 takes.
static constexpr uint64_t kReservedLength = 5;

static void put_long_tag_number(asn1_byte_buffer* buf, uint32_t number) {
    uint32_t shift = 0;
    while (number >> shift >= 0x80) shift += 7;
    for (; shift > 0; shift -= 7) put_byte(buf, static_cast<uint8_t>(0x80 | (number >> shift & 0x7F)));
    put_byte(buf, number & 0x7F);
}

void asn1_ber_put_tag(asn1_byte_buffer* buf, uint32_t tag, int constructed) {
    if (buf->failed != 0) return;
    uint32_t number = tag & ASN1_TAG_NUMBER_MASK;
    uint32_t identifier = (tag >> ASN1_TAG_CLASS_SHIFT & 3) << 6 | (constructed != 0 ? 0x20 : 0);
    if (number < 31) {
        put_byte(buf, static_cast<uint8_t>(identifier | number));
    } else {
        put_byte(buf, static_cast<uint8_t>(identifier | 31));
        put_long_tag_number(buf, number);
    }
}

void asn1_ber_put_len(asn1_byte_buffer* buf, uint32_t length) {
    if (buf->failed != 0) return;
    if (length < 0x80) {
        put_byte(buf, static_cast<uint8_t>(length));
        return;
    }
    uint32_t octets = 1;
    while (octets < 4 && length >> octets * 8 != 0) ++octets;
    put_byte(buf, static_cast<uint8_t>(0x80 | octets));
    while (octets-- > 0) put_byte(buf, static_cast<uint8_t>(length >> octets * 8));
}

uint32_t asn1_ber_put_len_start(asn1_byte_buffer* buf) {
    static const uint8_t kZeros[kReservedLength] = {};
    uint32_t start = static_cast<uint32_t>(buf->length);
    asn1_put_bytes(buf, kZeros, sizeof kZeros);
    return start;
}

uint64_t asn1_ber_put_len_end(asn1_byte_buffer* buf, uint32_t start) {
    if (buf->failed != 0) return buf->length;
    uint64_t contents = start + kReservedLength;
    uint64_t size = buf->length - contents;
    // The reserved octets are behind, so that nothing grows here.
    buf->length = start;
    asn1_ber_put_len(buf, static_cast<uint32_t>(size));
    if (buf->length < contents && size != 0) memmove(buf->data + buf->length, buf->data + contents, size);
    buf->length += size;
    return buf->length;
}

int asn1_ber_encode_int32(asn1_byte_buffer* buf, int32_t value) {
    if (buf->failed != 0) return 0;
    uint32_t octets = 1;
    while (octets < 4 && value >> (octets * 8 - 1) != 0 && value >> (octets * 8 - 1) != -1) ++octets;
    asn1_ber_put_len(buf, octets);
    while (octets-- > 0) put_byte(buf, static_cast<uint8_t>(value >> octets * 8));
    return 0;
}
