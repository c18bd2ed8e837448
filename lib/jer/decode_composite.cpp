// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, SEQUENCE OF, SET OF, CHOICE.
#include "core/growing_list.hpp"
#include "jer/decode.hpp"

namespace orlenta::jer {

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

// Takes "name": at the cursor if it is just that, without escapes.
static bool take_name(asn1_jer_parser* parser, const char* name) {
    const uint8_t* at = parser->cursor;
    const uint8_t* end = parser->end;
    if (at == end || *at++ != '"') return false;
    for (; at < end && *name != '\0' && *at == static_cast<uint8_t>(*name); ++name) ++at;
    if (*name != '\0' || end - at < 2 || at[0] != '"' || at[1] != ':') return false;
    parser->cursor = at + 2;
    return true;
}

// A shortcut for texts that keep to the order of the type: the component whose name comes next, taken without making a
// token of it. Null, and nothing taken, if that is not plain to see.
static const asn1_field* take_member_in_order(asn1_jer_parser* parser, text_sequence* sequence) {
    skip_white_space(parser);
    for (uint32_t i = sequence->expected; i < sequence->count; ++i) {
        if (sequence->seen[i] || !take_name(parser, field_name(sequence->fields + i))) continue;
        sequence->expected = i + 1;
        return sequence->fields + i;
    }
    return nullptr;
}

// The component whose name is the current token, and the colon.
static const asn1_field* take_member(asn1_jer_parser* parser, text_sequence* sequence) {
    if (parser->token != JER_TOKEN_STRING) {
        parse_error(parser, "expecting sequence/set component name");
        return nullptr;
    }
    const string_token& name = parser->string;
    const asn1_field* field = claim_component(parser, sequence, name.text, name.length);
    if (!field || next_token(parser) != 0) return nullptr;
    if (parser->token == ':') return field;
    parse_error(parser, "expecting ':'");
    return nullptr;
}

// From the opening brace, which is current, to the closing one.
static int decode_members(asn1_jer_parser* parser, text_sequence* sequence) {
    for (bool is_last = false; !is_last;) {
        const asn1_field* field = take_member_in_order(parser, sequence);
        if (!field) {
            bool may_end = parser->token == '{';
            if (next_token(parser) != 0) return -1;
            if (may_end && parser->token == '}') return 0;
            field = take_member(parser, sequence);
        }
        if (!field || next_token(parser) != 0) return -1;
        int result = asn1_jer_decode_type(parser, field_type(field), field_value(field, sequence->record));
        component_read(sequence, field);
        if (result != 0 || end_item(parser, '}', &is_last) != 0) return -1;
    }
    return 0;
}

int decode_sequence(asn1_jer_parser* parser, const asn1_type_desc* type, void* record) {
    text_sequence sequence;
    if (parser->token != '{') return parse_error(parser, "expecting '{'");
    if (open_sequence(parser, &sequence, type, record) != 0) return -1;
    int result = decode_members(parser, &sequence);
    if (result == 0) result = next_token(parser);
    return close_sequence(parser, &sequence, result);
}

// ---- SEQUENCE OF, SET OF ----------------------------------------------------------------------------------

// Up to the closing bracket, which stays current.
static int decode_elements(asn1_jer_parser* parser, const asn1_type_desc* element, growing_list* list) {
    bool is_last = parser->token == ']';
    while (!is_last) {
        void* value = add_element(list);
        if (!value) return parse_error(parser, kNotEnoughMemory);
        if (asn1_jer_decode_type(parser, element, value) != 0) return -1;
        if (end_item(parser, ']', &is_last) != 0) return -1;
        if (!is_last && next_token(parser) != 0) return -1;
    }
    return 0;
}

int decode_list(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    list_layout layout = list_of(type);
    growing_list list = begin_list(&parser->memory, static_cast<asn1_array*>(value), layout.stride);
    if (check_depth(parser) != 0 || skip_token(parser, '[') != 0) return -1;
    if (decode_elements(parser, layout.element, &list) != 0) return -1;
    end_list(list);
    return next_token(parser);
}

// ---- CHOICE -----------------------------------------------------------------------------------------------

int decode_choice(asn1_jer_parser* parser, const asn1_type_desc* type, void* value) {
    if (skip_token(parser, '{') != 0) return -1;
    if (parser->token != JER_TOKEN_STRING) return parse_error(parser, "expecting choice identifier");
    choice_layout choice = choice_of(type);
    int32_t index = select_alternative(parser, choice, value, parser->string.text, parser->string.length);
    if (index < 0) return -1;
    if (next_token(parser) != 0 || skip_token(parser, ':') != 0) return -1;
    void* payload = at_offset(value, choice.payload_offset);
    if (asn1_jer_decode_type(parser, alternative_type(choice, static_cast<uint32_t>(index)), payload) != 0)
        return -1;
    return skip_token(parser, '}');
}

}  // namespace orlenta::jer
