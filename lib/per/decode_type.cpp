// SPDX-License-Identifier: Apache-2.0
#include "per/decode_type.hpp"

#include "core/path.hpp"
#include "per/decode_numbers.hpp"

namespace orlenta::per {

int check_depth(asn1_per_decoder* decoder) {
    return has_stack(&decoder->stack) ? 0 : asn1_decode_error(decoder, "value nested too deeply");
}

static int decode_boolean(asn1_per_decoder* decoder, void* value) {
    uint32_t bit;
    if (asn1_get_bits(decoder, 1, &bit) != 0) return -1;
    store32(value, bit);
    return 0;
}

static int get_enumerated_index(asn1_per_decoder* decoder, const asn1_type_desc* type, uint32_t* index) {
    enum_layout items = enum_of(type);
    if (is_extensible(type)) {
        uint32_t is_extended;
        if (get_extension_bit(decoder, &is_extended) != 0) return -1;
        if (is_extended) {
            // An item of a later version of the schema is taken as it comes.
            if (asn1_per_decode_normally_small_non_neg_whole_number(decoder, index) != 0) return -1;
            *index += items.root;
            return 0;
        }
    }
    return asn1_per_decode_constrained_whole_number(decoder, 0, items.root - 1, index);
}

static int decode_enumerated(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    uint32_t index;
    if (get_enumerated_index(decoder, type, &index) != 0) return -1;
    store32(value, index);
    return 0;
}

static int decode_any_integer(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    if (is_big_integer(type)) return decode_big_integer(decoder, type, static_cast<asn1_integer*>(value));
    uint32_t number;
    if (decode_integer(decoder, type, &number) != 0) return -1;
    store32(value, number);
    return 0;
}

static int decode_tagged(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    const asn1_type_desc* inner = tagged_inner(type);
    if (is_indirect(type)) {
        if (check_depth(decoder) != 0) return -1;
        void* separate = allocate_value(&decoder->memory, inner);
        if (!separate) return report_no_memory(decoder);
        store_pointer(value, separate);
        value = separate;
    }
    return asn1_per_decode_type(decoder, inner, value);
}

int decode_named(asn1_per_decoder* decoder, const char* name, const asn1_type_desc* type, void* value) {
    push_name(&decoder->path, name);
    int result = asn1_per_decode_type(decoder, type, value);
    pop(&decoder->path);
    return result;
}

static int decode_kind(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return decode_sequence(decoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return decode_list(decoder, type, static_cast<asn1_array*>(value));
        case ASN1_KIND_CHOICE: return decode_choice(decoder, type, value);
        case ASN1_KIND_INTEGER: return decode_any_integer(decoder, type, value);
        case ASN1_KIND_BOOLEAN: return decode_boolean(decoder, value);
        case ASN1_KIND_BIT_STRING:
            return decode_bit_string(decoder, type, static_cast<asn1_bit_string*>(value));
        case ASN1_KIND_OCTET_STRING:
            return decode_octet_string(decoder, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return decode_enumerated(decoder, type, value);
        case ASN1_KIND_NULL: return 0;
        case ASN1_KIND_TAGGED: return decode_tagged(decoder, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            return decode_object_identifier(decoder, static_cast<asn1_string*>(value));
        case ASN1_KIND_REAL: return decode_real(decoder, value);
        case ASN1_KIND_CHAR_STRING:
            return decode_char_string(decoder, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ANY: return decode_any(decoder, type, static_cast<asn1_open_value*>(value));
        default: return asn1_decode_error(decoder, "unsupported type (%d)", static_cast<int>(kind_of(type)));
    }
}

static __attribute__((cold, noinline)) int decode_told(asn1_per_decoder* decoder, const asn1_type_desc* type,
                                                       void* value) {
    const asn1_type_desc* outer = set_type(decoder->observer, type);
    int result = decode_kind(decoder, type, value);
    if (result == 0) tell_value(decoder->observer, decoder->source.position, value);
    set_type(decoder->observer, outer);
    return result;
}

int asn1_per_decode_type(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    return is_observed(decoder) ? decode_told(decoder, type, value) : decode_kind(decoder, type, value);
}

}  // namespace orlenta::per
