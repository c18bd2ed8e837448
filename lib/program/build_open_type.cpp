// SPDX-License-Identifier: Apache-2.0
#include <orlenta/value.h>

#include "program/build.hpp"

namespace orlenta::program {

static bool is_record(const asn1_type_desc* type) {
    return kind_of(type) == ASN1_KIND_SEQUENCE || kind_of(type) == ASN1_KIND_SET;
}

static bool is_number(const asn1_type_desc* type) {
    uint32_t kind = kind_of(type);
    return kind == ASN1_KIND_ENUMERATED || (kind == ASN1_KIND_INTEGER && !is_big_integer(type));
}

static const void* key_of(const asn1_table_constraint* table, const asn1_word* row, uint32_t column) {
    const asn1_class_field* of_class = class_fields(table->object_class.type);
    return row[column].address ? row[column].address : of_class[column].default_value.address;
}

static bool have_keys(const asn1_table_constraint* table, uint32_t column) {
    const asn1_type_desc* object_class = table->object_class.type;
    if (class_field_sort(&class_fields(object_class)[column]) != ASN1_CLASS_FIELD_VALUE) return false;
    const asn1_word* row = table->rows.type;
    for (uint32_t i = 0; i < low32(table->row_count); ++i, row += class_field_count(object_class)) {
        if (!key_of(table, row, column)) return false;
    }
    return true;
}

bool find_simple_key(const asn1_type_desc* open, const asn1_type_desc* enclosing, uint32_t* offset,
                     uint32_t* column) {
    const asn1_table_constraint* table = table_constraint_of(open);
    if (!table || !enclosing || low32(table->selector_count) != 1) return false;
    const asn1_word* word = selectors_of(table);
    if (low32(*word++) != 0) return false;  // levels to go up
    const asn1_type_desc* type = enclosing;
    *offset = 0;
    for (uint32_t step = 0; (step & ASN1_SELECTOR_LAST) == 0;) {
        step = low32(*word++);
        uint32_t index = step & ~ASN1_SELECTOR_LAST;
        if (!is_record(type) || index >= component_count(type)) return false;
        const asn1_field* field = &components(type)[index];
        if (field_option(field) != ASN1_OPTION_MANDATORY || is_addition(field)) return false;
        *offset += field_offset(field);
        type = field_type(field);
    }
    *column = low32(*word);
    return is_number(behind_tags(type)) && have_keys(table, *column);
}

const asn1_type_desc* type_in_row(const asn1_table_constraint* table, uint32_t row) {
    uint32_t column = low32(table->column);
    const asn1_type_desc* object_class = table->object_class.type;
    const asn1_type_desc* type = table->rows.type[row * class_field_count(object_class) + column].type;
    return type ? type : class_fields(object_class)[column].type.type;
}

static open_type_row read_row(builder* b, const asn1_table_constraint* table, uint32_t row) {
    const asn1_type_desc* type = type_in_row(table, row);
    if (!type) return {0, kNone, kNone, 0};
    return {0, whole_op(b, type), type_index(b, type), static_cast<uint32_t>(asn1_get_size(type))};
}

// Keeps the rows in ascending order of their keys.
static void insert_row(builder* b, growing<open_type_row>* rows, const open_type_row& row) {
    add(b, rows, row);
    if (b->failed) return;
    uint64_t i = rows->count - 1;
    for (; i > 0 && rows->items[i - 1].key > row.key; --i) rows->items[i] = rows->items[i - 1];
    rows->items[i] = row;
}

// Takes out rows that give no type: those without one, and those whose key is not theirs alone.
static void drop_unresolved(growing<open_type_row>* rows) {
    uint64_t kept = 0;
    for (uint64_t i = 0; i < rows->count;) {
        uint64_t end = i + 1;
        while (end < rows->count && rows->items[end].key == rows->items[i].key) ++end;
        if (end == i + 1 && rows->items[i].op != kNone) rows->items[kept++] = rows->items[i];
        i = end;
    }
    rows->count = kept;
}

static void read_rows(builder* b, const asn1_table_constraint* table, growing<open_type_row>* rows,
                      bool has_key, uint32_t key_column) {
    const asn1_word* line = table->rows.type;
    uint32_t stride = class_field_count(table->object_class.type);
    for (uint32_t i = 0; i < low32(table->row_count) && !b->failed; ++i, line += stride) {
        open_type_row row = read_row(b, table, i);
        if (has_key) {
            row.key = load32(key_of(table, line, key_column));
            insert_row(b, rows, row);
        } else if (row.op != kNone) {
            add(b, rows, row);
        }
    }
    if (has_key) drop_unresolved(rows);
}

// The rows of an object set, sorted by key or not; shared by the open types that have them.
static uint32_t row_set(builder* b, const asn1_type_desc* type, bool has_key, uint32_t key_column) {
    const asn1_table_constraint* table = table_constraint_of(type);
    const asn1_word* identity = has_key ? &table->sort : type;
    uint32_t known = find(b->row_sets, identity);
    if (known != kNone) return known;
    uint32_t index = reserve_item(b, &b->row_ranges);
    put(b, &b->row_sets, identity, index);
    if (b->failed) return 0;
    growing<open_type_row> rows = {};
    read_rows(b, table, &rows, has_key, key_column);
    row_range range = {add_all(b, &b->rows, rows.items, rows.count), static_cast<uint32_t>(rows.count)};
    b->row_ranges.items[index] = range;
    asn1_free(rows.items);
    return index;
}

uint32_t open_type_part(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing,
                        uint32_t offset) {
    uint32_t part = reserve_item(b, &b->open_types);
    if (!table_constraint_of(type) || b->failed) return part;
    uint32_t key_offset = 0, key_column = 0;
    bool has_key = find_simple_key(type, enclosing, &key_offset, &key_column);
    uint32_t set = row_set(b, type, has_key, key_column);
    if (!b->failed) {
        b->open_types.items[part] = {has_key, static_cast<int32_t>(key_offset - offset), set};
    }
    return part;
}

}  // namespace orlenta::program
