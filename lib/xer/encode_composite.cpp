// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, SEQUENCE OF, SET OF, CHOICE, open types.
#include "core/presence.hpp"
#include "xer/encode.hpp"

namespace orlenta::xer {

int encode_sequence(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* record) {
    const asn1_field* field = components(type);
    const asn1_field* end = field + component_count(type);
    for (; field < end; ++field) {
        if (!is_encoded(field, record)) continue;
        if (encode_element(encoder, field_name(field), field_type(field), field_value(field, record)) != 0) {
            return -1;
        }
    }
    return 0;
}

// Whether an element of a list is an element of XML by itself, so that no wrapper named after its type is
// needed.
static bool is_bare_element(const asn1_xer_encoder* encoder, const asn1_type_desc* element) {
    switch (kind_of(untagged(element))) {
        case ASN1_KIND_CHOICE: return true;
        case ASN1_KIND_BOOLEAN: return !encoder->boolean_text;
        case ASN1_KIND_ENUMERATED: return !encoder->enumerated_text;
        default: return false;
    }
}

int encode_list(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    list_layout layout = list_of(type);
    const asn1_array* list = static_cast<const asn1_array*>(value);
    bool is_bare = is_bare_element(encoder, layout.element);
    for (uint64_t i = 0; i < list->count; ++i) {
        const void* element = at_offset(static_cast<const void*>(list->data), i * layout.stride);
        int result;
        if (layout.element_tag) {
            result = encode_element(encoder, layout.element_tag, layout.element, element);
        } else if (is_bare) {
            result = asn1_xer_encode_type(encoder, layout.element, element);
        } else {
            result = asn1_xer_encode_typed_value(encoder, layout.element, element);
        }
        if (result != 0) return -1;
    }
    return 0;
}

int encode_choice(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    choice_layout choice = choice_of(type);
    uint32_t selector = selector_of(choice, value);
    if (selector >= choice.total) return -1;
    return encode_element(encoder, alternative_name(choice, selector), alternative_type(choice, selector),
                          at_offset(value, choice.payload_offset));
}

int encode_any(asn1_xer_encoder* encoder, const void* value) {
    const asn1_open_value* open = static_cast<const asn1_open_value*>(value);
    if (open->type) return open->data ? asn1_xer_encode_typed_value(encoder, open->type, open->data) : -1;
    start_tag(encoder, "OCTET_STRING");
    start_text(encoder);
    print_hex(encoder, open->data, 8 * open->length);
    end_tag(encoder, "OCTET_STRING");
    return 0;
}

}  // namespace orlenta::xer
