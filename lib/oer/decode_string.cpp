// SPDX-License-Identifier: Apache-2.0
// OER decoding of strings (X.696 clauses 13, 14, 21, 22, 27).
#include "core/code_units.hpp"
#include "oer/decoder.hpp"
#include "oer/width.hpp"

namespace orlenta::oer {

// The next `count` bytes in a block of their own, or null.
static uint8_t* get_block(asn1_oer_decoder* decoder, uint64_t count) {
    if (!has_bytes(decoder, count)) return nullptr;
    uint8_t* block = static_cast<uint8_t*>(allocate(&decoder->memory, count));
    if (block == nullptr) {
        report_no_memory(decoder);
        return nullptr;
    }
    get_bytes(decoder, block, count);
    return block;
}

// ---- bits -------------------------------------------------------------------------------------------------

// The length and the count of unused bits before a string of variable size: the number of its bits, or negative.
static int64_t decode_bit_count(asn1_oer_decoder* decoder) {
    int32_t length = decode_len(decoder);
    if (length < 0) return length;
    if (length == 0) return asn1_error(decoder, "bit string: length must be >= 1");
    int unused = get_byte(decoder);
    if (unused < 0) return -1;
    if (length == 1 && unused != 0) return asn1_error(decoder, "bit string: first byte must be zero");
    if (unused > 7) return asn1_error(decoder, "bit string: first byte must be <= 7");
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "unused bits %d", unused);
    }
    return INT64_C(8) * length - 8 - unused;
}

int asn1_oer_decode_bit_string1(asn1_oer_decoder* decoder, asn1_bit_string* value, uint32_t fixed_bits) {
    int64_t bits = fixed_bits != kVariable ? fixed_bits : decode_bit_count(decoder);
    if (bits < 0) return static_cast<int>(bits);
    value->length = static_cast<uint64_t>(bits);
    value->data = get_block(decoder, (value->length + 7) / 8);
    if (value->data == nullptr) return -1;
    // A value compares equal whatever the sender left in the unused bits.
    if (bits % 8 != 0) value->data[bits / 8] &= static_cast<uint8_t>(0xFF00 >> bits % 8);
    return 0;
}

int asn1_oer_decode_bit_string(asn1_oer_decoder* decoder, const asn1_type_desc* type,
                               asn1_bit_string* value) {
    size_bounds bounds = size_bounds_of(type);
    bool is_fixed = !is_extensible(type) && is_fixed_size(bounds);
    return asn1_oer_decode_bit_string1(decoder, value, is_fixed ? bounds.lower : kVariable);
}

// ---- octets -----------------------------------------------------------------------------------------------

// `count` units of 1 << `shift` bytes.
static int get_units(asn1_oer_decoder* decoder, asn1_string* value, uint64_t count, uint32_t shift) {
    value->length = count;
    value->data = get_block(decoder, count << shift);
    if (value->data == nullptr) return -1;
    units_from_big_endian(value->data, count, shift);
    return 0;
}

int asn1_oer_decode_octets(asn1_oer_decoder* decoder, asn1_string* value) {
    int32_t length = decode_len(decoder);
    return length < 0 ? length : get_units(decoder, value, static_cast<uint64_t>(length), 0);
}

int asn1_oer_decode_octet_string(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_string* value) {
    size_bounds bounds = size_bounds_of(type);
    if (!is_extensible(type) && is_fixed_size(bounds)) return get_units(decoder, value, bounds.lower, 0);
    return asn1_oer_decode_octets(decoder, value);
}

int asn1_oer_decode_char_string(asn1_oer_decoder* decoder, const asn1_type_desc* type, asn1_string* value) {
    if (string_type(type) > ASN1_STRING_UNIVERSAL) return asn1_oer_decode_octets(decoder, value);
    uint32_t shift = code_unit_shift(string_type(type));
    size_bounds bounds = char_string_of(type).size;
    if (is_fixed_size(bounds)) return get_units(decoder, value, bounds.lower, shift);
    int32_t length = decode_len(decoder);
    if (length < 0) return length;
    int width = 1 << shift;
    if (length % width != 0) {
        return asn1_error(decoder, "character string length must be multiple of %d (%d)", width, length);
    }
    return get_units(decoder, value, static_cast<uint64_t>(length) >> shift, shift);
}

}  // namespace orlenta::oer
