// SPDX-License-Identifier: Apache-2.0
// The walk over descriptor and value.
#include "check/check.hpp"

#include <orlenta/check.h>
#include <stdlib.h>

#include "core/error.hpp"
#include "core/extension.hpp"
#include "core/path.hpp"
#include "core/presence.hpp"

namespace orlenta::check {

// Encoders write the mandatory members of a group that is there without a look at their presence (X.691 clause 19.9).
static int check_group(check_state* state, const asn1_field* first, const asn1_field* last,
                       const void* record) {
    const asn1_field* missing = nullptr;
    bool is_present = false;
    for (const asn1_field* field = first; field <= last; ++field) {
        bool is_there = is_encoded(field, record);
        is_present |= is_there;
        if (!is_there && !missing && field_option(field) == ASN1_OPTION_MANDATORY) missing = field;
    }
    if (!is_present || !missing) return 0;
    return asn1_check_error(state, kMissingMember, field_name(missing));
}

// A DEFAULT component is always stored, and so always checked.
static int check_component(check_state* state, const asn1_field* field, const void* record) {
    if (is_presence_flagged(field) && presence_word(field, record) == 0) return 0;
    push_name(&state->path, field_name(field));
    int result = asn1_check_value(state, field_type(field), field_value(field, record));
    pop(&state->path);
    return result;
}

static int check_sequence(check_state* state, const asn1_type_desc* type, const void* record) {
    const asn1_field* field = components(type);
    const asn1_field* end = field + component_count(type);
    const asn1_field* group = field;
    asn1_parent_frame frame = {state->frames, type, record};
    state->frames = &frame;
    for (; field < end; ++field) {
        if (opens_group(field)) group = field;
        if (check_component(state, field, record) < 0) return -1;
        if (state->is_whole && closes_group(field) && check_group(state, group, field, record) < 0) return -1;
    }
    state->frames = frame.parent;
    return 0;
}

static int check_list(check_state* state, const asn1_type_desc* type, const void* value) {
    list_layout list = list_of(type);
    const asn1_array* array = static_cast<const asn1_array*>(value);
    if (!is_extensible(type) && (array->count < list.lower || array->count > list.upper)) {
        return asn1_check_error(state, "sequence of length not in range %u .. %u", list.lower, list.upper);
    }
    int result = check_data(state, true, array->data, array->count);
    for (uint64_t i = 0; i < array->count && result >= 0; ++i) {
        push_index(&state->path, static_cast<int32_t>(i));
        result = asn1_check_value(state, list.element, at_offset(array->data, i * list.stride));
        pop(&state->path);
    }
    return result;
}

static int check_choice(check_state* state, const asn1_type_desc* type, const void* record) {
    choice_layout choice = choice_of(type);
    uint32_t selector = selector_of(choice, record);
    if (selector >= choice.total) {
        return asn1_check_error(state, "invalid choice index (%d) range: %u .. %u",
                                static_cast<int32_t>(selector), 0u, choice.total - 1);
    }
    push_name(&state->path, alternative_name(choice, selector));
    int result =
        asn1_check_value(state, alternative_type(choice, selector), at_offset(record, choice.payload_offset));
    pop(&state->path);
    return result;
}

// BIT STRING and OCTET STRING, whose records have one layout.
static int check_octets(check_state* state, const asn1_type_desc* type, const void* value) {
    const asn1_string* string = static_cast<const asn1_string*>(value);
    int result = check_binary_string(state, type, value);
    if (result >= 0) result = check_data(state, false, string->data, string->length);
    if (result < 0 || !state->contents) return result;
    const asn1_type_desc* contained = asn1_get_containing_type(type);
    if (!contained) return 0;
    uint64_t size = kind_of(type) == ASN1_KIND_BIT_STRING ? (string->length + 7) / 8 : string->length;
    return state->contents(state, contained, string->data, size);
}

static int check_arcs(check_state* state, const asn1_string* arcs) {
    return check_data(state, false, arcs->data, arcs->length);
}

// Raw bytes pass: no rules are known by which to read them.
int check_open_value(check_state* state, const asn1_type_desc* type, const asn1_open_value* value) {
    if (!value->type) return check_data(state, false, value->data, value->length);
    if (!value->data) return asn1_check_error(state, "value is missing");
    if (!state->is_whole) return 0;
    if (table_constraint_of(type) && asn1_get_constrained_type(state->frames, type) != value->type)
        return asn1_check_error(state, "open type does not fit its key");
    return asn1_check_value(state, value->type, value->data);
}

int asn1_check_value(check_state* state, const asn1_type_desc* type, const void* value) {
    if (!has_stack(&state->stack)) return asn1_check_error(state, "value nested too deeply");
    while (kind_of(type) == ASN1_KIND_TAGGED) {
        if (!enter_tag(type, value)) return asn1_check_error(state, "value is missing");
    }
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return check_sequence(state, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return check_list(state, type, value);
        case ASN1_KIND_CHOICE: return check_choice(state, type, value);
        case ASN1_KIND_INTEGER: return check_integer(state, type, value);
        case ASN1_KIND_BIT_STRING:
        case ASN1_KIND_OCTET_STRING: return check_octets(state, type, value);
        case ASN1_KIND_ENUMERATED: return check_enumerated(state, type, value);
        case ASN1_KIND_CHAR_STRING: return check_char_string(state, type, value);
        case ASN1_KIND_ANY: return check_open_value(state, type, static_cast<const asn1_open_value*>(value));
        case ASN1_KIND_BOOLEAN:
        case ASN1_KIND_NULL:
        case ASN1_KIND_REAL: return 0;
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: return check_arcs(state, static_cast<const asn1_string*>(value));
        default: abort();
    }
}

int check_from_root(const asn1_type_desc* type, const void* value, bool is_whole, contents_check* contents,
                    asn1_error* error) {
    check_state state;
    state.path.depth = 0;
    asn1_error_init(&state.error);
    state.stack = begin_stack();
    state.is_whole = is_whole;
    state.contents = contents;
    state.frames = nullptr;
    bool is_lost = is_whole && !value;
    if ((is_lost ? asn1_check_error(&state, "value is missing") : asn1_check_value(&state, type, value)) >= 0)
        return 1;
    hand_out_error(error, &state.error);
    return 0;
}

}  // namespace orlenta::check

int asn1_check_constraints(const asn1_type_desc* type, const void* value, asn1_error* error) {
    return orlenta::check::check_from_root(type, value, false, nullptr, error);
}

int orlenta_check_values(const asn1_type_desc* type, const void* value, asn1_error* error) {
    return orlenta::check::check_from_root(type, value, true, nullptr, error);
}
