// SPDX-License-Identifier: Apache-2.0
// What a type is made of, as the public interface tells it.
#include <orlenta/catalogue.h>
#include <orlenta/type_info.h>
#include <orlenta/value.h>

#include "core/descriptor.hpp"

namespace orlenta {

static bool is_record(const asn1_type_desc* type) {
    return kind_of(type) == ASN1_KIND_SEQUENCE || kind_of(type) == ASN1_KIND_SET;
}

// ---- the facts --------------------------------------------------------------------------------------------

static void describe_record(orlenta_type_facts* facts) {
    const asn1_field* field = components(facts->type);
    facts->count = component_count(facts->type);
    for (uint32_t i = 0; i < facts->count; ++i) facts->root_count += !is_addition(field + i);
}

// A bound that is not there is 0, whatever the reader of the table gives.
static void describe_size(orlenta_type_facts* facts, bool has_lower, bool has_upper, uint32_t lower,
                          uint32_t upper) {
    facts->has_lower = has_lower;
    facts->has_upper = has_upper;
    if (has_lower) facts->lower = lower;
    if (has_upper) facts->upper = upper;
}

static void describe_list(orlenta_type_facts* facts) {
    list_layout list = list_of(facts->type);
    describe_size(facts, list.has_lower, list.has_upper, list.lower, list.upper);
    facts->element = list.element;
    facts->stride = list.stride;
}

static void describe_choice(orlenta_type_facts* facts) {
    choice_layout choice = choice_of(facts->type);
    facts->root_count = choice.root;
    facts->count = choice.total;
}

static int64_t bound_of(const asn1_type_desc* type, uint32_t pattern) {
    return is_unsigned_integer(type) ? int64_t{pattern} : static_cast<int32_t>(pattern);
}

static void describe_integer(orlenta_type_facts* facts) {
    const asn1_type_desc* type = facts->type;
    facts->is_big = is_big_integer(type);
    if (facts->is_big) {
        big_bounds bounds = big_bounds_of(type);
        facts->big_lower = bounds.lower;
        facts->big_upper = bounds.upper;
        return;
    }
    integer_bounds bounds = integer_bounds_of(type);
    facts->is_unsigned = is_unsigned_integer(type);
    facts->has_lower = bounds.has_lower;
    facts->has_upper = bounds.has_upper;
    facts->lower = bound_of(type, bounds.lower);
    facts->upper = bound_of(type, bounds.upper);
}

static void describe_octets(orlenta_type_facts* facts) {
    size_bounds size = size_bounds_of(facts->type);
    describe_size(facts, size.has_lower, size.has_upper, size.lower, size.upper);
    facts->contained = asn1_get_containing_type(facts->type);
}

static void describe_enumerated(orlenta_type_facts* facts) {
    enum_layout items = enum_of(facts->type);
    facts->root_count = items.root;
    facts->count = items.total;
}

static void describe_characters(orlenta_type_facts* facts) {
    facts->string_type = string_type(facts->type);
    if (facts->string_type >= ASN1_STRING_UTF8) return;
    char_string_layout layout = char_string_of(facts->type);
    const size_bounds& size = layout.size;
    describe_size(facts, size.has_lower, size.has_upper, size.lower, size.upper);
    facts->root_count = facts->count = layout.range_count > 0 ? static_cast<uint32_t>(layout.range_count) : 0;
}

static void describe_open_type(orlenta_type_facts* facts) {
    const asn1_table_constraint* constraint = table_constraint_of(facts->type);
    if (!constraint) return;
    facts->object_class = constraint->object_class.type;
    facts->column = low32(constraint->column);
    facts->root_count = facts->count = low32(constraint->row_count);
    facts->key_count = low32(constraint->selector_count);
}

}  // namespace orlenta

using namespace orlenta;

void orlenta_type_describe(const asn1_type_desc* type, orlenta_type_facts* facts) {
    *facts = {};
    if (kind_of(type) == ASN1_KIND_TAGGED) facts->inner = tagged_inner(type);
    for (; kind_of(type) == ASN1_KIND_TAGGED; type = tagged_inner(type))
        facts->pointer_count += is_indirect(type);
    facts->type = type;
    facts->kind = kind_of(facts->type);
    facts->is_extensible = is_extensible(facts->type);
    if (facts->kind <= ASN1_KIND_ANY) facts->record_size = static_cast<uint64_t>(asn1_get_size(facts->type));
    switch (facts->kind) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return describe_record(facts);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return describe_list(facts);
        case ASN1_KIND_CHOICE: return describe_choice(facts);
        case ASN1_KIND_INTEGER: return describe_integer(facts);
        case ASN1_KIND_BIT_STRING:
        case ASN1_KIND_OCTET_STRING: return describe_octets(facts);
        case ASN1_KIND_ENUMERATED: return describe_enumerated(facts);
        case ASN1_KIND_CHAR_STRING: return describe_characters(facts);
        case ASN1_KIND_ANY: return describe_open_type(facts);
        case ASN1_KIND_OBJECT_CLASS:
            facts->root_count = facts->count = class_field_count(facts->type);
            return;
        default: return;
    }
}

// ---- the parts --------------------------------------------------------------------------------------------

static void describe_presence(const asn1_field* field, orlenta_component* part) {
    part->has_presence_word = is_presence_flagged(field);
    if (part->has_presence_word) part->presence_offset = presence_offset(field);
    uint32_t option = field_option(field);
    part->presence = option == ASN1_OPTION_OPTIONAL  ? ORLENTA_OPTIONAL
                     : option == ASN1_OPTION_DEFAULT ? ORLENTA_DEFAULT
                                                     : ORLENTA_MANDATORY;
    if (part->presence != ORLENTA_DEFAULT) return;
    if (holds_big_integer(untagged(part->type))) {
        part->big_default = field->extra.integer;
    } else {
        part->default_word = low32(field->extra);
    }
}

int orlenta_type_component(const asn1_type_desc* type, uint32_t index, orlenta_component* part) {
    if (!is_record(type) || index >= component_count(type)) return -1;
    const asn1_field* field = components(type) + index;
    *part = {};
    part->name = field_name(field);
    part->type = field_type(field);
    part->offset = field_offset(field);
    part->is_addition = is_addition(field);
    part->opens_group = opens_group(field);
    part->closes_group = closes_group(field);
    describe_presence(field, part);
    return 0;
}

int orlenta_type_alternative(const asn1_type_desc* type, uint32_t index, orlenta_alternative* part) {
    if (kind_of(type) != ASN1_KIND_CHOICE) return -1;
    choice_layout choice = choice_of(type);
    if (index >= choice.total) return -1;
    *part = {alternative_name(choice, index), alternative_type(choice, index), index >= choice.root,
             choice.selector_offset, choice.payload_offset};
    return 0;
}

int orlenta_type_item(const asn1_type_desc* type, uint32_t index, orlenta_item* part) {
    if (kind_of(type) != ASN1_KIND_ENUMERATED) return -1;
    enum_layout items = enum_of(type);
    if (index >= items.total) return -1;
    *part = {items.names[index].text, enum_value(type, items, index), index >= items.root};
    return 0;
}

int orlenta_type_range(const asn1_type_desc* type, uint32_t index, orlenta_range* part) {
    if (kind_of(type) != ASN1_KIND_CHAR_STRING || string_type(type) >= ASN1_STRING_UTF8) return -1;
    char_string_layout layout = char_string_of(type);
    if (int64_t{index} >= layout.range_count) return -1;
    *part = {range_first(layout, static_cast<int32_t>(index)),
             range_last(layout, static_cast<int32_t>(index))};
    return 0;
}

int orlenta_type_field(const asn1_type_desc* object_class, uint32_t index, orlenta_class_field* part) {
    if (kind_of(object_class) != ASN1_KIND_OBJECT_CLASS || index >= class_field_count(object_class))
        return -1;
    const asn1_class_field* field = class_fields(object_class) + index;
    *part = {field->name.text, field->type.type, class_field_sort(field) == ASN1_CLASS_FIELD_TYPE};
    return 0;
}

int orlenta_type_cell(const asn1_type_desc* type, uint32_t row, uint32_t column, orlenta_cell* part) {
    const asn1_table_constraint* constraint = table_constraint_of(type);
    if (!constraint || row >= constraint->row_count.number) return -1;
    uint32_t columns = class_field_count(constraint->object_class.type);
    if (column >= columns) return -1;
    const asn1_word* cell = constraint->rows.type + uint64_t{row} * columns + column;
    uint32_t sort = class_field_sort(class_fields(constraint->object_class.type) + column);
    *part = {};
    if (sort == ASN1_CLASS_FIELD_TYPE) {
        part->type = cell->type;
    } else {
        part->value = cell->address;
    }
    return 0;
}

int orlenta_type_key(const asn1_type_desc* type, uint32_t index, orlenta_key* part) {
    const asn1_table_constraint* constraint = table_constraint_of(type);
    if (!constraint || index >= constraint->selector_count.number) return -1;
    const asn1_word* word = selectors_of(constraint);
    for (uint32_t i = 0;; ++i) {
        *part = {};
        part->levels_up = low32(*word++);
        for (bool is_last = false; !is_last; ++word) {
            is_last = (low32(*word) & ASN1_SELECTOR_LAST) != 0;
            uint32_t step = part->path_length++;
            if (step < ORLENTA_KEY_PATH) part->path[step] = low32(*word) & ~ASN1_SELECTOR_LAST;
        }
        part->column = low32(*word++);
        if (i == index) return 0;
    }
}
