// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, SEQUENCE OF, SET OF, CHOICE, open types.
#include "core/growing_list.hpp"
#include "xer/decode.hpp"

namespace orlenta::xer {

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

// The start tag of a component is current.
static int decode_component(asn1_xer_parser* parser, text_sequence* sequence) {
    const asn1_field* field = claim_component(parser, sequence, parser->name, parser->name_length);
    if (!field) return -1;
    void* value = field_value(field, sequence->record);
    int result = decode_element(parser, field_name(field), field_type(field), value);
    component_read(sequence, field);
    return result;
}

// Up to a token that begins no component.
static int decode_components(asn1_xer_parser* parser, text_sequence* sequence) {
    for (;;) {
        if (skip_spaces(parser) != 0) return -1;
        if (parser->token != XER_TOKEN_START) return 0;
        if (decode_component(parser, sequence) != 0) return -1;
    }
}

int decode_sequence(asn1_xer_parser* parser, const asn1_type_desc* type, void* record) {
    text_sequence sequence;
    if (open_sequence(parser, &sequence, type, record) != 0) return -1;
    return close_sequence(parser, &sequence, decode_components(parser, &sequence));
}

// ---- SEQUENCE OF, SET OF ----------------------------------------------------------------------------------

// An element in a tag that the list's type names.
static int decode_named_element(asn1_xer_parser* parser, const list_layout& layout, void* value) {
    if (!is_tag(parser, XER_TOKEN_START, layout.element_tag)) {
        return parse_error(parser, "expecting <%s> tag\n", layout.element_tag);
    }
    return decode_element(parser, layout.element_tag, layout.element, value);
}

// Whether the current start tag is the element's own content, with no wrapper named after its type around it.
static bool is_bare_element(const asn1_xer_parser* parser, uint32_t element_kind) {
    switch (element_kind) {
        case ASN1_KIND_CHOICE: return true;
        case ASN1_KIND_BOOLEAN:
        case ASN1_KIND_ENUMERATED: return parser->is_empty_tag;
        default: return false;
    }
}

static int decode_list_element(asn1_xer_parser* parser, const list_layout& layout, uint32_t element_kind,
                               void* value) {
    if (layout.element_tag) return decode_named_element(parser, layout, value);
    if (is_bare_element(parser, element_kind)) return asn1_xer_decode_type(parser, layout.element, value);
    return asn1_xer_decode_typed_value(parser, layout.element, value);
}

int decode_list(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    list_layout layout = list_of(type);
    uint32_t element_kind = kind_of(untagged(layout.element));
    growing_list list = begin_list(&parser->memory, static_cast<asn1_array*>(value), layout.stride);
    if (check_depth(parser) != 0) return -1;
    for (;;) {
        if (skip_spaces(parser) != 0) return -1;
        if (parser->token != XER_TOKEN_START) break;
        void* element = add_element(&list);
        if (!element) return parse_error(parser, kNotEnoughMemory);
        if (decode_list_element(parser, layout, element_kind, element) != 0) return -1;
    }
    end_list(list);
    return 0;
}

// ---- CHOICE -----------------------------------------------------------------------------------------------

int decode_choice(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    if (skip_spaces(parser) != 0) return -1;
    if (parser->token != XER_TOKEN_START) return parse_error(parser, "choice: expecting open tag");
    choice_layout choice = choice_of(type);
    int32_t index = select_alternative(parser, choice, value, parser->name, parser->name_length);
    if (index < 0) return -1;
    uint32_t selector = static_cast<uint32_t>(index);
    return decode_element(parser, alternative_name(choice, selector), alternative_type(choice, selector),
                          at_offset(value, choice.payload_offset));
}

// ---- open types -------------------------------------------------------------------------------------------

// The bytes of a value whose type is not known.
static int decode_raw(asn1_xer_parser* parser, asn1_open_value* open) {
    static constexpr char kWrapper[] = "OCTET_STRING";
    if (is_blank(parser) && next_token(parser) != 0) return -1;
    if (!is_tag(parser, XER_TOKEN_START, kWrapper)) return parse_error(parser, "expecting open type");
    if (next_token(parser) != 0) return -1;
    asn1_string bytes = {};
    int result = asn1_xer_decode_octet_string(parser, &bytes);
    open->data = bytes.data;
    open->length = bytes.length;
    return result == 0 ? skip_closing_tag(parser, kWrapper) : -1;
}

int decode_any(asn1_xer_parser* parser, const asn1_type_desc* type, void* value) {
    asn1_open_value* open = static_cast<asn1_open_value*>(value);
    const asn1_type_desc* actual = asn1_get_constrained_type(parser->frames, type);
    if (!actual) return decode_raw(parser, open);
    if (make_open_value(parser, open, actual) != 0) return -1;
    return asn1_xer_decode_typed_value(parser, actual, open->data);
}

}  // namespace orlenta::xer
