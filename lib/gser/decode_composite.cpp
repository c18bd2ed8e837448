// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, SEQUENCE OF, SET OF, CHOICE.
#include "core/growing_list.hpp"
#include "gser/decode.hpp"

namespace orlenta::gser {

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

// name value
static int decode_component(asn1_gser_parser* parser, text_sequence* sequence) {
    if (parser->token != GSER_TOKEN_IDENTIFIER)
        return parse_error(parser, "expecting sequence/set component name");
    const asn1_field* field =
        claim_component(parser, sequence, parser->identifier.text, parser->identifier.length);
    if (!field || next_token(parser) != 0) return -1;
    int result = asn1_gser_decode_type(parser, field_type(field), field_value(field, sequence->record));
    component_read(sequence, field);
    return result;
}

// From the token behind the opening brace to the one behind the closing brace.
static int decode_components(asn1_gser_parser* parser, text_sequence* sequence) {
    bool is_last = parser->token == '}';
    while (!is_last) {
        if (decode_component(parser, sequence) != 0 || end_item(parser, '}', &is_last) != 0) return -1;
        if (!is_last && next_token(parser) != 0) return -1;
    }
    return next_token(parser);
}

int decode_sequence(asn1_gser_parser* parser, const asn1_type_desc* type, void* record) {
    text_sequence sequence;
    if (skip_token(parser, '{') != 0 || open_sequence(parser, &sequence, type, record) != 0) return -1;
    return close_sequence(parser, &sequence, decode_components(parser, &sequence));
}

// ---- SEQUENCE OF, SET OF ----------------------------------------------------------------------------------

// Up to the closing brace, which stays current.
static int decode_elements(asn1_gser_parser* parser, const asn1_type_desc* element, growing_list* list) {
    bool is_last = parser->token == '}';
    while (!is_last) {
        void* value = add_element(list);
        if (!value) return parse_error(parser, kNotEnoughMemory);
        if (asn1_gser_decode_type(parser, element, value) != 0) return -1;
        if (end_item(parser, '}', &is_last) != 0) return -1;
        if (!is_last && next_token(parser) != 0) return -1;
    }
    return 0;
}

int decode_list(asn1_gser_parser* parser, const asn1_type_desc* type, void* value) {
    list_layout layout = list_of(type);
    growing_list list = begin_list(&parser->memory, static_cast<asn1_array*>(value), layout.stride);
    if (check_depth(parser) != 0 || skip_token(parser, '{') != 0) return -1;
    if (decode_elements(parser, layout.element, &list) != 0) return -1;
    end_list(list);
    return next_token(parser);
}

// ---- CHOICE -----------------------------------------------------------------------------------------------

// alternative : value
int decode_choice(asn1_gser_parser* parser, const asn1_type_desc* type, void* value) {
    if (parser->token != GSER_TOKEN_IDENTIFIER) return parse_error(parser, "expecting choice identifier");
    const text_identifier* name = &parser->identifier;
    choice_layout choice = choice_of(type);
    int32_t index = select_alternative(parser, choice, value, name->text, name->length);
    if (index < 0) return -1;
    if (next_token(parser) != 0 || skip_token(parser, ':') != 0) return -1;
    void* payload = at_offset(value, choice.payload_offset);
    return asn1_gser_decode_type(parser, alternative_type(choice, static_cast<uint32_t>(index)), payload);
}

}  // namespace orlenta::gser
