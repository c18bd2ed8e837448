// The builder of programs. Descriptors are trusted; what can fail is memory, which is told at the end.
#pragma once

#include <orlenta/memory.h>

#include "program/format.hpp"

namespace orlenta::program {

// ---- growing arrays -----------------------------------------------------------------------------------------

template <typename T>
struct growing {
    T* items;
    uint64_t count, capacity;
};

struct type_entry {
    const asn1_type_desc* type;
    uint32_t value;
    uint32_t is_used;
};

// Descriptors and what is known of them, by hashed address.
struct type_map {
    type_entry* entries;
    uint64_t size;  // a power of two, or 0
    uint64_t count;
};

struct builder {
    growing<op> ops;
    growing<leaf> leaves;
    growing<group> groups;
    growing<option> options;
    growing<preamble_run> preamble_runs;
    growing<sequence> sequences;
    growing<extension_unit> extension_units;
    growing<list> lists;
    growing<choice> choices;
    growing<open_type> open_types;
    growing<row_range> sets;
    growing<open_type_row> rows;
    growing<uint8_t> flags;
    growing<const asn1_type_desc*> types;
    type_map parts;     // op::part of a type
    type_map whole;     // ops[] of what stands in an open type
    type_map type_at;   // types[]
    type_map row_sets;  // row_ranges[], by table constraint if sorted, else by open type
    type_map facts;     // see type_facts
    bool failed;        // memory
};

// Appends; on failure `failed` is set and nothing appended.
template <typename T>
void add(builder* b, growing<T>* array, const T& item) {
    if (array->count == array->capacity) {
        void* block = array->items;
        if (__asn1_realloc_buf(&block, sizeof(T), &array->capacity, array->count + 1, 0) != 0) {
            b->failed = true;
            return;
        }
        array->items = static_cast<T*>(block);
    }
    array->items[array->count++] = item;
}

// Appends a row of items, of which the first gets the index that is returned.
template <typename T>
uint32_t add_all(builder* b, growing<T>* array, const T* items, uint64_t count) {
    uint32_t first = static_cast<uint32_t>(array->count);
    for (uint64_t i = 0; i < count; ++i) add(b, array, items[i]);
    return first;
}

// Appends an item that will be filled in later; 0 if that failed.
template <typename T>
uint32_t reserve_item(builder* b, growing<T>* array) {
    add(b, array, T{});
    return b->failed ? 0 : static_cast<uint32_t>(array->count - 1);
}

// The value of a type, or kNone.
uint32_t find(const type_map& map, const asn1_type_desc* type);
void put(builder* b, type_map* map, const asn1_type_desc* type, uint32_t value);

// ---- what is asked of a type --------------------------------------------------------------------------------

struct type_facts {
    bool owns;         // a value may own blocks
    bool needs_frame;  // an open type inside is resolved by its enclosing records
};
type_facts facts_of(builder* b, const asn1_type_desc* type);

// A number in a field of its own: BOOLEAN, INTEGER with two bounds, ENUMERATED; the extension bit is a part of it.
struct leaf_form {
    bool is_leaf;
    uint32_t low, range;
    uint32_t width, extension;
};
leaf_form leaf_of(const asn1_type_desc* type);

// Bits that hold the numbers from 0 to `range`.
uint32_t range_width(uint32_t range);

// ---- ops ----------------------------------------------------------------------------------------------------

// The op of a value at `offset` of its record.
op make_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence);

// The same, where a SEQUENCE of nothing but leaves is one group.
op make_fused_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence);

// Indices of parts. Each type has one, open types apart: their keys lie in the record around them.
uint32_t sequence_part(builder* b, const asn1_type_desc* type);
uint32_t open_type_part(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing,
                        uint32_t offset);

// Whether the type of an open type is told by one 32-bit component of the SEQUENCE that it is a component of, one that
// is always there; then `offset` is the component's and `column` that of the object class.
bool find_simple_key(const asn1_type_desc* open, const asn1_type_desc* enclosing, uint32_t* offset,
                     uint32_t* column);

uint32_t type_index(builder* b, const asn1_type_desc* type);

// The op of a value that has a record of its own, as what stands in an open type.
uint32_t whole_op(builder* b, const asn1_type_desc* type);

}  // namespace orlenta::program
