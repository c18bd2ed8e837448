// SPDX-License-Identifier: Apache-2.0
#include <orlenta/memory.h>
#include <orlenta/scalar.h>
#include <stdlib.h>

#include "core/buffer.hpp"
#include "core/object_identifier.hpp"
#include "random/random.hpp"

namespace orlenta::random {

// ---- BIT STRING, OCTET STRING -----------------------------------------------------------------------------

int asn1_random_bit_string(asn1_random_params* params, const asn1_type_desc* type, asn1_bit_string* value) {
    size_bounds size = size_bounds_of(type);
    size_range range = choose_bounds(params, type, size.lower, size.upper);
    uint64_t bits = choose_length(params, range, params->bit_string_spread);
    uint64_t bytes = (bits + 7) / 8;
    value->data = static_cast<uint8_t*>(asn1_malloc(bytes));
    if (!value->data) return -1;
    value->length = bits;
    fill_random(params, value->data, bytes);
    if (bits % 8 != 0) value->data[bytes - 1] &= static_cast<uint8_t>(0xFF00 >> bits % 8);
    return 0;
}

static int asn1_random_octet_string1(asn1_random_params* params, uint32_t spread, asn1_string* value,
                                     uint32_t minimum, uint32_t maximum) {
    uint32_t length = choose_length(params, {minimum, maximum}, spread);
    value->data = static_cast<uint8_t*>(asn1_malloc(length));
    if (!value->data) return -1;
    value->length = length;
    fill_random(params, value->data, length);
    return 0;
}

int asn1_random_octet_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value) {
    size_bounds size = size_bounds_of(type);
    size_range range = choose_bounds(params, type, size.lower, size.upper);
    return asn1_random_octet_string1(params, params->string_spread, value, range.minimum, range.maximum);
}

// ---- character strings ------------------------------------------------------------------------------------

// Characters of the alphabet, modulo 2^32: 0 for all code points of 32 bits.
static uint32_t alphabet_size(const char_string_layout& layout) {
    uint32_t size = 0;
    for (int32_t i = 0; i < layout.range_count; ++i)
        size += range_last(layout, i) - range_first(layout, i) + 1;
    return size;
}

// The alphabet's character at `index`. A table whose alphabet does not reach that far is defective.
static uint32_t character_at(const char_string_layout& layout, uint32_t index) {
    for (int32_t i = 0; i < layout.range_count; ++i) {
        uint32_t span = range_last(layout, i) - range_first(layout, i);
        if (index <= span) return range_first(layout, i) + index;
        index -= span + 1;
    }
    abort();
}

int make_code_units(asn1_random_params* params, const asn1_type_desc* type, const char_string_layout& layout,
                    asn1_string* value) {
    size_range range = choose_bounds(params, type, layout.size.lower, layout.size.upper);
    uint64_t length = choose_length(params, range, params->string_spread);
    uint64_t bytes = length << code_unit_shift(string_type(type));
    if (bytes > SIZE_MAX) return -1;
    value->data = static_cast<uint8_t*>(asn1_malloc(static_cast<size_t>(bytes)));
    if (!value->data) return -1;
    value->length = length;
    return 0;
}

static int asn1_random_restricted_mult_string(asn1_random_params* params, const asn1_type_desc* type,
                                              asn1_string* value) {
    char_string_layout layout = char_string_of(type);
    if (make_code_units(params, type, layout, value) < 0) return -1;
    uint32_t shift = code_unit_shift(string_type(type));
    uint32_t size = alphabet_size(layout);
    for (uint64_t i = 0; i < value->length; ++i) {
        uint32_t r = draw(params);
        uint32_t index = size == 0 ? r & 0x7FFFFFFF : r % size;
        store_code_unit(value->data, i, shift, character_at(layout, index));
    }
    return 0;
}

int take_buffer(const asn1_byte_buffer& buffer, asn1_string* value) {
    if (buffer.failed) {
        asn1_free(buffer.data);
        return -1;
    }
    *value = {buffer.data, buffer.length};
    return 0;
}

// UTF8String descriptors have no bounds. Surrogates are among the code points.
static int asn1_random_utf8_string(asn1_random_params* params, asn1_string* value) {
    uint32_t count = draw(params) % (params->string_spread + 1);
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t bytes[4];
        int n = asn1_to_utf8(bytes, random_uint(params, 0x10FFFF));
        asn1_put_bytes(&buffer, bytes, static_cast<uint64_t>(n));
    }
    return take_buffer(buffer, value);
}

int asn1_random_char_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value) {
    uint32_t sort = string_type(type);
    if (sort < ASN1_STRING_UTF8) return asn1_random_restricted_mult_string(params, type, value);
    if (sort == ASN1_STRING_UTF8) return asn1_random_utf8_string(params, value);
    return asn1_random_octet_string1(params, params->string_spread, value, 0, UINT32_MAX);
}

// ---- OBJECT IDENTIFIER, RELATIVE-OID, open types ----------------------------------------------------------

// Every subidentifier of an absolute identifier stays below 120, so that the first one is a pair of two valid
// arcs (X.690 clause 8.19.4).
int asn1_random_object_identifier(asn1_random_params* params, const asn1_type_desc* type,
                                  asn1_string* value) {
    uint32_t limit = kind_of(type) == ASN1_KIND_OBJECT_IDENTIFIER ? 120 : 10000;
    uint32_t count = draw(params) % 10 + 1;
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    for (uint32_t i = 0; i < count; ++i) {
        put_subidentifier(&buffer, draw(params) % limit);
    }
    return take_buffer(buffer, value);
}

// A BER OCTET STRING of up to 99 octets as unresolved bytes.
int asn1_random_any(asn1_random_params* params, asn1_open_value* value) {
    uint32_t length = draw(params) % 100;
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    put_byte(&buffer, 0x04);
    put_byte(&buffer, static_cast<uint8_t>(length));
    for (uint32_t i = 0; i < length; ++i) put_byte(&buffer, random_byte(params));
    asn1_string bytes;
    if (take_buffer(buffer, &bytes) < 0) return -1;
    *value = {nullptr, bytes.data, bytes.length};
    return 0;
}

}  // namespace orlenta::random
