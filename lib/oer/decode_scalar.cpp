// SPDX-License-Identifier: Apache-2.0
// OER decoding of lengths and numbers (X.696 clauses 8.6, 9 to 12).
#include <orlenta/scalar.h>

#include "core/error.hpp"
#include "core/integer_octets.hpp"
#include "oer/decoder.hpp"
#include "oer/width.hpp"

namespace orlenta::oer {

// ---- errors and bytes -------------------------------------------------------------------------------------

int asn1_error(asn1_oer_decoder* decoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&decoder->error, format, args);
    va_end(args);
    decoder->error.bit_position = static_cast<int32_t>(static_cast<uint32_t>(decoder->position * 8));
    return -1;
}

int get_bytes(asn1_oer_decoder* decoder, void* destination, uint64_t count) {
    if (!has_bytes(decoder, count)) return -1;
    if (count != 0) memcpy(destination, decoder->data + decoder->position, count);
    decoder->position += count;
    return 0;
}

// ---- lengths ----------------------------------------------------------------------------------------------

static int32_t get_len(asn1_oer_decoder* decoder) {
    int first = get_byte(decoder);
    if (first < 0x80) return first;
    if (first == 0x80) return -2;
    if (first == 0xFF) return -1;
    uint32_t length = 0;
    for (int octets = first & 0x7F; octets > 0; --octets) {
        int octet = get_byte(decoder);
        if (octet < 0 || length > 0x7FFFFF) return -1;
        length = length << 8 | static_cast<uint32_t>(octet);
    }
    return static_cast<int32_t>(length);
}

int32_t decode_len(asn1_oer_decoder* decoder) {
    int32_t length = get_len(decoder);
    if (is_observed(decoder) && length >= 0) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "length %d", length);
    }
    return length;
}

int64_t decode_end(asn1_oer_decoder* decoder) {
    int32_t length = get_len(decoder);
    if (length < 0) return length;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "open type length %d", length);
    }
    if (!has_bytes(decoder, static_cast<uint64_t>(length))) return -1;
    return static_cast<int64_t>(decoder->position) + length;
}

// ---- INTEGER of 32 bits -----------------------------------------------------------------------------------

static uint32_t sign_extend(uint32_t number, uint32_t octets) {
    uint32_t shift = 32 - octets * 8;
    return static_cast<uint32_t>(static_cast<int32_t>(number << shift) >> shift);
}

static int get_number(asn1_oer_decoder* decoder, uint32_t* out, int32_t octets) {
    if (octets < 1 || octets > 4) return asn1_error(decoder, "invalid integer length");
    if (!has_bytes(decoder, static_cast<uint64_t>(octets))) return -1;
    *out = take(decoder, static_cast<uint32_t>(octets));
    return 0;
}

static int asn1_decode_int32_internal(asn1_oer_decoder* decoder, uint32_t* out, int32_t octets) {
    if (get_number(decoder, out, octets) != 0) return -1;
    *out = sign_extend(*out, static_cast<uint32_t>(octets));
    return 0;
}

int asn1_decode_uint32(asn1_oer_decoder* decoder, uint32_t* out) {
    int32_t octets = decode_len(decoder);
    return octets < 0 ? octets : get_number(decoder, out, octets);
}

static int decode_int32(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    integer_form form = integer_form_of(type);
    int32_t octets = form.octets != 0 ? static_cast<int32_t>(form.octets) : decode_len(decoder);
    if (octets < 0) return octets;
    uint32_t number = 0;
    int result = form.is_unsigned ? get_number(decoder, &number, octets)
                                  : asn1_decode_int32_internal(decoder, &number, octets);
    if (result == 0) store32(value, number);
    return result;
}

// ---- INTEGER of any size ----------------------------------------------------------------------------------

// In `fixed_octets` octets, or behind a length if that is 0.
static int asn1_oer_decode_large_integer1(asn1_oer_decoder* decoder, asn1_integer* value,
                                          uint32_t fixed_octets, bool is_unsigned) {
    int32_t octets = fixed_octets != 0 ? static_cast<int32_t>(fixed_octets) : decode_len(decoder);
    if (octets < 1) return -1;
    if (!has_bytes(decoder, static_cast<uint64_t>(octets))) return -1;
    const uint8_t* contents = decoder->data + decoder->position;
    if (read_integer_octets(&decoder->memory, value, contents, static_cast<uint32_t>(octets), is_unsigned) !=
        0) {
        return report_no_memory(decoder);
    }
    decoder->position += static_cast<uint64_t>(octets);
    return 0;
}

static int get_form(asn1_oer_decoder* decoder, const asn1_type_desc* type, integer_form* form) {
    big_bounds bounds = big_bounds_of(type);
    uint64_t limbs = bounds.lower && bounds.upper ? limbs_of_sum(bounds.lower->size, bounds.upper->size) : 0;
    if (!count_limbs(&decoder->memory, limbs)) return -1;
    int result = big_integer_form_of(type, form);
    uncount_limbs(&decoder->memory, limbs);
    return result;
}

int asn1_oer_decode_integer(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    if (!is_big_integer(type)) return decode_int32(decoder, type, value);
    integer_form form;
    if (get_form(decoder, type, &form) != 0) return report_no_memory(decoder);
    return asn1_oer_decode_large_integer1(decoder, static_cast<asn1_integer*>(value), form.octets,
                                          form.is_unsigned);
}

// ---- BOOLEAN, ENUMERATED, REAL ----------------------------------------------------------------------------

int asn1_oer_decode_boolean(asn1_oer_decoder* decoder, void* value) {
    int octet = get_byte(decoder);
    if (octet < 0) return -1;
    store32(value, octet != 0);
    return 0;
}

int asn1_oer_decode_enumerated(asn1_oer_decoder* decoder, const asn1_type_desc* type, void* value) {
    int octet = get_byte(decoder);
    if (octet < 0) return -1;
    uint32_t number = static_cast<uint32_t>(octet);
    if (octet >= 0x80) {
        if (is_observed(decoder)) {
            tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "length %d", octet & 0x7F);
        }
        if (asn1_decode_int32_internal(decoder, &number, octet & 0x7F) != 0) return -1;
    }
    enum_layout items = enum_of(type);
    int32_t index = asn1_find_enum_index(items.names, items.total, static_cast<int32_t>(number), word0(type));
    if (index < 0) return asn1_error(decoder, "enumerated value out of range");
    store32(value, static_cast<uint32_t>(index));
    return 0;
}

int asn1_oer_decode_real(asn1_oer_decoder* decoder, void* value) {
    int32_t length = decode_len(decoder);
    if (length < 0) return length;
    uint32_t octets = static_cast<uint32_t>(length);
    if (octets > decoder->size - decoder->position) return -1;
    double number;
    if (asn1_decode_real_ber(decoder->data + decoder->position, octets, &number) != 0) {
        return asn1_error(decoder, "real: error in encoding");
    }
    memcpy(value, &number, sizeof number);
    decoder->position += octets;
    return 0;
}

}  // namespace orlenta::oer
