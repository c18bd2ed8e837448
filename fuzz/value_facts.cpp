// SPDX-License-Identifier: Apache-2.0
#include "fuzz/value_facts.hpp"

#include <orlenta/check.h>
#include <orlenta/scalar.h>

#include <algorithm>

#include "core/descriptor.hpp"

namespace fuzz {

using namespace orlenta;

struct Walk {
    Facts facts;
    unsigned depth = 0;
};

static void look_at(const asn1_type_desc* type, const void* value, Walk& walk);

// Where a recursive type passes through.
static void look_inside(const asn1_type_desc* type, const void* value, Walk& walk) {
    walk.facts.depth = std::max(walk.facts.depth, ++walk.depth);
    look_at(type, value, walk);
    --walk.depth;
}

static void look_at_components(const asn1_type_desc* type, const void* record, Walk& walk) {
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = components(type) + i;
        if (is_presence_flagged(field) && presence_word(field, record) == 0) continue;
        look_at(field_type(field), field_value(field, record), walk);
    }
}

static void look_at_elements(const asn1_type_desc* type, const asn1_array* list, Walk& walk) {
    list_layout layout = list_of(type);
    if (is_flat(layout.element) && kind_of(layout.element) != ASN1_KIND_ENUMERATED) return;
    for (uint64_t i = 0; i < list->count; ++i)
        look_inside(layout.element, at_offset(list->data, i * layout.stride), walk);
}

static void look_at_alternative(const asn1_type_desc* type, const void* value, Walk& walk) {
    choice_layout choice = choice_of(type);
    uint32_t selector = selector_of(choice, value);
    if (selector >= choice.total)
        walk.facts.has_unknown = true;
    else
        look_at(alternative_type(choice, selector), at_offset(value, choice.payload_offset), walk);
}

static void look_at_open_value(const asn1_open_value* open, Walk& walk) {
    if (!open->type) {
        walk.facts.has_raw = true;
        return;
    }
    walk.facts.breaks_constraint |= asn1_check_constraints(open->type, open->data, nullptr) != 1;
    look_inside(open->type, open->data, walk);
}

// Whole, shortest subidentifiers of 31 bits; in front of an absolute one arcs up to 2.39.
static bool is_plain_oid(const asn1_string* oid, bool is_absolute) {
    uint64_t number = 0;
    bool begins = true;
    for (uint64_t i = 0; i < oid->length; ++i) {
        if (begins && oid->data[i] == 0x80) return false;
        number = number << 7 | (oid->data[i] & 0x7F);
        if (number > INT32_MAX) return false;
        begins = (oid->data[i] & 0x80) == 0;
        if (!begins) continue;
        if (is_absolute && number >= 120) return false;
        is_absolute = false;
        number = 0;
    }
    return begins && oid->length != 0;
}

static void look_at_oid(const asn1_type_desc* type, const void* value, Walk& walk) {
    bool is_absolute = kind_of(type) == ASN1_KIND_OBJECT_IDENTIFIER;
    walk.facts.has_odd_oid |= !is_plain_oid(static_cast<const asn1_string*>(value), is_absolute);
}

static bool is_character(uint32_t code) { return code < 0xD800 || (code > 0xDFFF && code <= 0x10FFFF); }

static bool is_plain_utf8(const asn1_string* string) {
    const uint8_t *next = string->data, *end = next + string->length;
    while (next < end) {
        const uint8_t* start = next;
        int32_t code = asn1_from_utf8(start, static_cast<uint64_t>(end - start), &next);
        if (code < 0 || !is_character(static_cast<uint32_t>(code))) return false;
        uint8_t form[4];
        int size = asn1_to_utf8(form, static_cast<uint32_t>(code));
        if (!std::equal(start, next, form, form + size)) return false;
    }
    return true;
}

static void look_at_text(const asn1_type_desc* type, const void* value, Walk& walk) {
    const auto* string = static_cast<const asn1_string*>(value);
    uint32_t shift = code_unit_shift(string_type(type));
    if (string_type(type) == ASN1_STRING_UTF8) {
        walk.facts.has_odd_text |= !is_plain_utf8(string);
    } else if (shift != 0) {
        for (uint64_t i = 0; i < string->length; ++i)
            walk.facts.has_odd_text |= !is_character(load_code_unit(string->data, i, shift));
    }
}

static void look_at(const asn1_type_desc* type, const void* value, Walk& walk) {
    if (kind_of(type) == ASN1_KIND_TAGGED && is_indirect(type))
        return look_inside(tagged_inner(type), load_pointer(value), walk);
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: look_at_components(type, value, walk); break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: look_at_elements(type, static_cast<const asn1_array*>(value), walk); break;
        case ASN1_KIND_TAGGED: look_at(tagged_inner(type), value, walk); break;
        case ASN1_KIND_CHOICE: look_at_alternative(type, value, walk); break;
        case ASN1_KIND_ENUMERATED: walk.facts.has_unknown |= load32(value) >= enum_of(type).total; break;
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: look_at_oid(type, value, walk); break;
        case ASN1_KIND_CHAR_STRING: look_at_text(type, value, walk); break;
        case ASN1_KIND_ANY: look_at_open_value(static_cast<const asn1_open_value*>(value), walk); break;
        default: break;
    }
}

Facts facts_of(const asn1_type_desc* type, const void* value) {
    Walk walk;
    walk.facts.breaks_constraint = asn1_check_constraints(type, value, nullptr) != 1;
    look_at(type, value, walk);
    return walk.facts;
}

}  // namespace fuzz
