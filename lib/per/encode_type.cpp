// SPDX-License-Identifier: Apache-2.0
#include "per/encode_type.hpp"

#include "core/path.hpp"
#include "per/encode_numbers.hpp"

namespace orlenta::per {

ORLENTA_NOINLINE int check_depth(asn1_per_encoder* encoder) {
    return has_stack(&encoder->stack) ? 0 : asn1_encode_error(encoder, "value nested too deeply");
}

int report_missing(asn1_per_encoder* encoder) { return asn1_encode_error(encoder, "value is missing"); }

static int encode_boolean(asn1_per_encoder* encoder, const void* value) {
    asn1_put_bits(encoder, 1, load32(value) != 0 ? 1 : 0);
    return 0;
}

// The position in the schema's list is what goes out. X.691 clause 14.1 would sort the items by number first, which
// gives the same but where they do not ascend.
static int encode_enumerated(asn1_per_encoder* encoder, const asn1_type_desc* type, uint32_t index) {
    enum_layout items = enum_of(type);
    if (index >= items.total) return -1;
    if (index >= items.root) {
        asn1_put_bits(encoder, 1, 1);
        return asn1_per_encode_normally_small_non_neg_whole_number(encoder, index - items.root);
    }
    if (is_extensible(type)) asn1_put_bits(encoder, 1, 0);
    return asn1_per_encode_constrained_whole_number(encoder, 0, items.root - 1, index);
}

static int encode_any_integer(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (is_big_integer(type))
        return encode_big_integer(encoder, type, static_cast<const asn1_integer*>(value));
    return encode_integer(encoder, type, load32(value));
}

// A tag writes nothing.
static int encode_tagged(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (is_indirect(type) && check_depth(encoder) != 0) return -1;
    if (!enter_tag(type, value)) return report_missing(encoder);
    return asn1_per_encode_type(encoder, type, value);
}

int encode_named(asn1_per_encoder* encoder, const char* name, const asn1_type_desc* type, const void* value) {
    push_name(&encoder->path, name);
    int result = asn1_per_encode_type(encoder, type, value);
    pop(&encoder->path);
    return result;
}

int asn1_per_encode_type(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return encode_sequence(encoder, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return encode_list(encoder, type, static_cast<const asn1_array*>(value));
        case ASN1_KIND_CHOICE: return encode_choice(encoder, type, value);
        case ASN1_KIND_INTEGER: return encode_any_integer(encoder, type, value);
        case ASN1_KIND_BOOLEAN: return encode_boolean(encoder, value);
        case ASN1_KIND_BIT_STRING:
            return encode_bit_string(encoder, type, static_cast<const asn1_bit_string*>(value));
        case ASN1_KIND_OCTET_STRING:
            return encode_octet_string(encoder, type, static_cast<const asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return encode_enumerated(encoder, type, load32(value));
        case ASN1_KIND_NULL: return 0;
        case ASN1_KIND_TAGGED: return encode_tagged(encoder, type, value);
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            return encode_object_identifier(encoder, static_cast<const asn1_string*>(value));
        case ASN1_KIND_REAL: return encode_real(encoder, value);
        case ASN1_KIND_CHAR_STRING:
            return encode_char_string(encoder, type, static_cast<const asn1_string*>(value));
        case ASN1_KIND_ANY: return encode_any(encoder, static_cast<const asn1_open_value*>(value));
        default: return -1;
    }
}

}  // namespace orlenta::per
