// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, SEQUENCE OF, SET OF, CHOICE.
#include "core/presence.hpp"
#include "jer/encode.hpp"

namespace orlenta::jer {

int encode_sequence(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* record) {
    const asn1_field* field = components(type);
    const asn1_field* end = field + component_count(type);
    bool empty = true;
    put_char(&encoder->buffer, '{');
    ++encoder->depth;
    for (; field < end; ++field) {
        if (!is_encoded(field, record)) continue;
        put_member_name(encoder, empty, field_name(field));
        empty = false;
        if (asn1_jer_encode_type(encoder, field_type(field), field_value(field, record)) != 0) return -1;
    }
    --encoder->depth;
    if (!empty) put_break(encoder);
    put_char(&encoder->buffer, '}');
    return 0;
}

int encode_list(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    list_layout layout = list_of(type);
    const asn1_array* list = static_cast<const asn1_array*>(value);
    put_char(&encoder->buffer, '[');
    ++encoder->depth;
    for (uint64_t i = 0; i < list->count; ++i) {
        if (i > 0) put_char(&encoder->buffer, ',');
        put_break(encoder);
        const void* element = at_offset(static_cast<const void*>(list->data), i * layout.stride);
        if (asn1_jer_encode_type(encoder, layout.element, element) != 0) return -1;
    }
    --encoder->depth;
    if (list->count > 0) put_break(encoder);
    put_char(&encoder->buffer, ']');
    return 0;
}

int encode_choice(asn1_jer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    choice_layout choice = choice_of(type);
    uint32_t selector = selector_of(choice, value);
    if (selector >= choice.total) return -1;
    put_char(&encoder->buffer, '{');
    ++encoder->depth;
    put_member_name(encoder, true, alternative_name(choice, selector));
    int result = asn1_jer_encode_type(encoder, alternative_type(choice, selector),
                                      at_offset(value, choice.payload_offset));
    --encoder->depth;
    put_break(encoder);
    put_char(&encoder->buffer, '}');
    return result;
}

}  // namespace orlenta::jer
