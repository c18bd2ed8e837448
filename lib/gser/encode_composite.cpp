// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, SEQUENCE OF, SET OF, CHOICE.
#include "core/presence.hpp"
#include "gser/encode.hpp"

namespace orlenta::gser {

static void put_indentation(asn1_gser_encoder* encoder) { put_spaces(&encoder->buffer, 2 * encoder->depth); }

// The first item of braces begins on a line of its own, and so do the others and the closing brace.
static void open_braces(asn1_gser_encoder* encoder) {
    asn1_puts(&encoder->buffer, "{\n");
    ++encoder->depth;
}
static void begin_item(asn1_gser_encoder* encoder, bool is_first) {
    if (!is_first) asn1_puts(&encoder->buffer, ",\n");
    put_indentation(encoder);
}
static void close_braces(asn1_gser_encoder* encoder, bool is_empty) {
    if (!is_empty) put_char(&encoder->buffer, '\n');
    --encoder->depth;
    put_indentation(encoder);
    put_char(&encoder->buffer, '}');
}

int encode_sequence(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* record) {
    const asn1_field* field = components(type);
    const asn1_field* end = field + component_count(type);
    bool is_empty = true;
    open_braces(encoder);
    for (; field < end; ++field) {
        if (!is_encoded(field, record)) continue;
        begin_item(encoder, is_empty);
        is_empty = false;
        asn1_puts(&encoder->buffer, field_name(field));
        put_char(&encoder->buffer, ' ');
        if (asn1_gser_encode_type(encoder, field_type(field), field_value(field, record)) != 0) return -1;
    }
    close_braces(encoder, is_empty);
    return 0;
}

int encode_list(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    list_layout layout = list_of(type);
    const asn1_array* list = static_cast<const asn1_array*>(value);
    open_braces(encoder);
    for (uint64_t i = 0; i < list->count; ++i) {
        begin_item(encoder, i == 0);
        const void* element = at_offset(static_cast<const void*>(list->data), i * layout.stride);
        if (asn1_gser_encode_type(encoder, layout.element, element) != 0) return -1;
    }
    close_braces(encoder, list->count == 0);
    return 0;
}

int encode_choice(asn1_gser_encoder* encoder, const asn1_type_desc* type, const void* value) {
    choice_layout choice = choice_of(type);
    uint32_t selector = selector_of(choice, value);
    if (selector >= choice.total) return -1;
    asn1_puts(&encoder->buffer, alternative_name(choice, selector));
    asn1_puts(&encoder->buffer, ": ");
    return asn1_gser_encode_type(encoder, alternative_type(choice, selector),
                                 at_offset(value, choice.payload_offset));
}

}  // namespace orlenta::gser
