// SPDX-License-Identifier: Apache-2.0
#include <orlenta/scalar.h>

#include "check/check.hpp"

namespace orlenta::check {

// BIT STRING in bits, OCTET STRING in bytes; the two records have one layout.
int check_binary_string(check_state* state, const asn1_type_desc* type, const void* value) {
    static_assert(offsetof(asn1_bit_string, length) == offsetof(asn1_string, length));
    if (is_extensible(type)) return 0;
    size_bounds size = size_bounds_of(type);
    uint64_t length = static_cast<const asn1_string*>(value)->length;
    if (length >= size.lower && length <= size.upper) return 0;
    return asn1_check_error(state, "bit/octet string length (%u) not in range %u .. %u",
                            static_cast<uint32_t>(length), size.lower, size.upper);
}

static int check_alphabet(check_state* state, const char_string_layout& layout, uint32_t shift,
                          const asn1_string* string) {
    int result = check_data(state, layout.range_count > 0, string->data, string->length);
    if (result < 0 || layout.range_count <= 0) return result;
    for (uint64_t i = 0; i < string->length; ++i) {
        if (!in_alphabet(layout, load_code_unit(string->data, i, shift))) {
            return asn1_check_error(state, "character at position %u is not allowed",
                                    static_cast<uint32_t>(i));
        }
    }
    return 0;
}

// The size test is on the low half of the length. The marker relaxes the size alone: the alphabet stays in
// force.
static int check_restricted_string(check_state* state, const asn1_type_desc* type,
                                   const asn1_string* string) {
    char_string_layout layout = char_string_of(type);
    uint32_t length = static_cast<uint32_t>(string->length);
    if (!is_extensible(type) && (length < layout.size.lower || length > layout.size.upper)) {
        return asn1_check_error(state, "char string length (%u) not in range %u .. %u", length,
                                layout.size.lower, layout.size.upper);
    }
    return check_alphabet(state, layout, code_unit_shift(string_type(type)), string);
}

static int check_utf8(check_state* state, const asn1_string* string) {
    const uint8_t* next = string->data;
    uint64_t available = string->length;
    while (available > 0) {
        const uint8_t* start = next;
        if (asn1_from_utf8(start, available, &next) < 0) return asn1_check_error(state, "invalid UTF-8 code");
        available -= static_cast<uint64_t>(next - start);
    }
    return 0;
}

int check_char_string(check_state* state, const asn1_type_desc* type, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    uint32_t sort = string_type(type);
    if (sort < ASN1_STRING_UTF8) return check_restricted_string(state, type, string);
    bool is_utf8 = sort == ASN1_STRING_UTF8;
    int result = check_data(state, is_utf8, string->data, string->length);
    return result < 0 || !is_utf8 ? result : check_utf8(state, string);
}

}  // namespace orlenta::check
