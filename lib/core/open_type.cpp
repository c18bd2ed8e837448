// SPDX-License-Identifier: Apache-2.0
#include "core/open_type.hpp"

#include <orlenta/value.h>

using namespace orlenta;

namespace {

// The component that a selector points at, and the class column that it must equal.
struct key_component {
    const asn1_type_desc* type;
    const void* value;
    uint32_t column;
};

}  // namespace

static bool has_component(const asn1_type_desc* type, uint32_t index) {
    uint32_t kind = kind_of(type);
    return (kind == ASN1_KIND_SEQUENCE || kind == ASN1_KIND_SET) && index < component_count(type);
}

// Steps from a record to its component at `index`; false if there is no such thing in it.
static bool enter_component(key_component* key, uint32_t index) {
    if (key->type == nullptr || !has_component(key->type, index)) return false;
    const asn1_field* field = components(key->type) + index;
    if (is_presence_flagged(field) && presence_word(field, key->value) == 0) return false;
    key->value = field_value(field, key->value);
    key->type = field_type(field);
    return true;
}

// Finds the key of the selector at `*selector`, which moves on to the next one.
static bool find_key(const asn1_word** selector, const asn1_parent_frame* frame, key_component* key) {
    const asn1_word* word = *selector;
    for (uint32_t levels = low32(*word++); levels != 0 && frame != nullptr; --levels) frame = frame->parent;
    if (frame == nullptr) return false;
    key->type = frame->desc;
    key->value = frame->value;
    uint32_t step;
    do {
        step = low32(*word++);
        if (!enter_component(key, step & ~ASN1_SELECTOR_LAST)) return false;
    } while ((step & ASN1_SELECTOR_LAST) == 0);
    if (key->type == nullptr) return false;
    key->column = low32(*word++);
    *selector = word;
    return true;
}

// The value that the row has for a key; null if the key's column is not one of values.
static const void* key_of_row(const asn1_table_constraint* constraint, const asn1_word* row,
                              uint32_t column) {
    const asn1_class_field* field = &class_fields(constraint->object_class.type)[column];
    if (class_field_sort(field) != ASN1_CLASS_FIELD_VALUE) return nullptr;
    const void* value = row[column].address;
    return value != nullptr ? value : field->default_value.address;
}

static bool row_matches(const asn1_table_constraint* constraint, const asn1_word* row,
                        const asn1_parent_frame* frame) {
    const asn1_word* selector = selectors_of(constraint);
    for (uint32_t i = 0, n = low32(constraint->selector_count); i < n; ++i) {
        key_component key;
        if (!find_key(&selector, frame, &key)) return false;
        const void* wanted = key_of_row(constraint, row, key.column);
        if (wanted == nullptr || asn1_cmp_value(key.type, key.value, wanted) != 0) return false;
    }
    return true;
}

// The only row that matches; null if none or several do.
static const asn1_word* find_row(const asn1_table_constraint* constraint, const asn1_parent_frame* frame) {
    const asn1_word* row = constraint->rows.type;
    const asn1_word* found = nullptr;
    uint32_t stride = class_field_count(constraint->object_class.type);
    for (uint32_t i = 0, n = low32(constraint->row_count); i < n; ++i, row += stride) {
        if (!row_matches(constraint, row, frame)) continue;
        if (found != nullptr) return nullptr;
        found = row;
    }
    return found;
}

const asn1_type_desc* orlenta::type_of_row(const asn1_table_constraint* constraint, const asn1_word* row) {
    uint32_t column = low32(constraint->column);
    if (row[column].type != nullptr) return row[column].type;
    return class_fields(constraint->object_class.type)[column].type.type;
}

bool orlenta::set_keys(const asn1_table_constraint* constraint, const asn1_word* row,
                       const asn1_parent_frame* frame) {
    const asn1_word* selector = selectors_of(constraint);
    for (uint32_t i = 0, n = low32(constraint->selector_count); i < n; ++i) {
        key_component key;
        if (!find_key(&selector, frame, &key)) return false;
        const void* wanted = key_of_row(constraint, row, key.column);
        if (wanted == nullptr) return false;
        void* place = const_cast<void*>(key.value);
        int64_t size = asn1_get_size(key.type);
        asn1_free_value_struct(key.type, place);
        memset(place, 0, static_cast<size_t>(size));
        if (asn1_copy_value(key.type, place, wanted) != 0) return false;
    }
    return true;
}

const asn1_type_desc* asn1_get_constrained_type(const asn1_parent_frame* frame, const asn1_type_desc* desc) {
    const asn1_table_constraint* constraint = table_constraint_of(desc);
    if (constraint == nullptr) return nullptr;
    const asn1_word* row = find_row(constraint, frame);
    return row != nullptr ? type_of_row(constraint, row) : nullptr;
}

const asn1_type_desc* asn1_get_containing_type(const asn1_type_desc* desc) {
    uint32_t kind = kind_of(desc);
    if (kind != ASN1_KIND_BIT_STRING && kind != ASN1_KIND_OCTET_STRING) return nullptr;
    const asn1_word* constraint = string_constraint(desc);
    if (constraint == nullptr || low32(constraint[0]) != ASN1_CONSTRAINT_CONTAINING) return nullptr;
    return reinterpret_cast<const asn1_containing_constraint*>(constraint)->type.type;
}
