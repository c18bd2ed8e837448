// SPDX-License-Identifier: Apache-2.0
// OER encoding of numbers (X.696 clauses 9 to 12).
#include <orlenta/scalar.h>

#include "core/integer_octets.hpp"
#include "oer/encoder.hpp"
#include "oer/width.hpp"

namespace orlenta::oer {

// ---- INTEGER ----------------------------------------------------------------------------------------------

// The low `octets` octets, big-endian.
static void put_low_octets(asn1_oer_encoder* encoder, uint32_t number, uint32_t octets) {
    while (octets-- > 0) put_byte(&encoder->buffer, static_cast<uint8_t>(number >> octets * 8));
}

int asn1_encode_uint32(asn1_oer_encoder* encoder, uint32_t number) {
    uint32_t octets = 1;
    while (octets < 4 && number >> octets * 8 != 0) ++octets;
    put_len(encoder, octets);
    put_low_octets(encoder, number, octets);
    return 0;
}

static int encode_int32(asn1_oer_encoder* encoder, const asn1_type_desc* type, uint32_t number) {
    integer_form form = integer_form_of(type);
    if (form.octets == 0) {
        return form.is_unsigned ? asn1_encode_uint32(encoder, number)
                                : asn1_ber_encode_int32(&encoder->buffer, static_cast<int32_t>(number));
    }
    put_low_octets(encoder, number, form.octets);
    return 0;
}

// The octets of the two's complement form `form` of `value`, of which `bits` bits matter besides the sign.
static void put_large_integer(asn1_oer_encoder* encoder, const asn1_integer* value, const asn1_integer* form,
                              uint32_t bits, uint32_t fixed_octets, bool is_unsigned) {
    uint32_t octets = (bits + 8 - is_unsigned) / 8;
    if (fixed_octets == 0) {
        put_len(encoder, octets);
    } else {
        // A sign octet above the top limb doesn't count: it is as good as fill.
        if (!is_unsigned && bits % 32 == 0) --octets;
        if (octets < fixed_octets) octets = fixed_octets;
    }
    put_integer_octets(&encoder->buffer, form, octets, value->negative != 0 ? 0xFF : 0x00);
}

static int put_zero(asn1_oer_encoder* encoder, uint32_t fixed_octets) {
    if (fixed_octets == 0) put_len(encoder, fixed_octets = 1);
    for (; fixed_octets > 0; --fixed_octets) put_byte(&encoder->buffer, 0);
    return 0;
}

// In `fixed_octets` octets, or behind a length if that is 0. A value too wide is written in full.
static int asn1_oer_encode_large_integer1(asn1_oer_encoder* encoder, const asn1_integer* value,
                                          uint32_t fixed_octets, bool is_unsigned) {
    if (value->size == 0) return put_zero(encoder, fixed_octets);  // whatever its sign says
    asn1_integer negative;
    asn1_integer_init(&negative);
    uint32_t bits;
    const asn1_integer* form = asn1_integer_to_2comp(&negative, value, &bits);
    if (form == nullptr) {
        asn1_integer_clear(&negative);
        return asn1_encode_error(encoder, "not enough memory");
    }
    put_large_integer(encoder, value, form, bits, fixed_octets, is_unsigned);
    if (form == &negative) asn1_integer_clear(&negative);
    return 0;
}

int asn1_oer_encode_integer(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (!is_big_integer(type)) return encode_int32(encoder, type, load32(value));
    integer_form form;
    if (big_integer_form_of(type, &form) != 0) return asn1_encode_error(encoder, "not enough memory");
    return asn1_oer_encode_large_integer1(encoder, static_cast<const asn1_integer*>(value), form.octets,
                                          form.is_unsigned);
}

// ---- BOOLEAN, ENUMERATED, REAL ----------------------------------------------------------------------------

int asn1_oer_encode_boolean(asn1_oer_encoder* encoder, const void* value) {
    put_byte(&encoder->buffer, load32(value) != 0 ? 0xFF : 0x00);
    return 0;
}

// The fewest octets from which sign extension gives `number` back.
static uint32_t signed_octets(int32_t number) {
    uint32_t octets = 1;
    while (octets < 4 && number >> (octets * 8 - 1) != 0 && number >> (octets * 8 - 1) != -1) ++octets;
    return octets;
}

int asn1_oer_encode_enumerated(asn1_oer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    uint32_t number = load32(value);
    if (has_flag(type, ASN1_WORD0_VALUE_TABLE)) {
        enum_layout items = enum_of(type);
        if (number >= items.total) {
            return asn1_encode_error(encoder, "invalid enumerated value (%u >= %u)", number, items.total);
        }
        number = static_cast<uint32_t>(enum_value(type, items, number));
    }
    if (number < 0x80) {
        put_byte(&encoder->buffer, static_cast<uint8_t>(number));
        return 0;
    }
    uint32_t octets = signed_octets(static_cast<int32_t>(number));
    put_byte(&encoder->buffer, static_cast<uint8_t>(0x80 | octets));
    put_low_octets(encoder, number, octets);
    return 0;
}

int asn1_oer_encode_real(asn1_oer_encoder* encoder, const void* value) {
    double number;
    memcpy(&number, value, sizeof number);
    uint8_t contents[ASN1_REAL_DER_MAX];
    int length = asn1_encode_real_der(contents, number);
    put_len(encoder, static_cast<uint64_t>(length));
    asn1_put_bytes(&encoder->buffer, contents, static_cast<uint64_t>(length));
    return 0;
}

}  // namespace orlenta::oer
