// SPDX-License-Identifier: Apache-2.0
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

struct map_entry {
    const asn1_word* key;  // null: free
    uint32_t value;
};

// Numbers by address.
struct address_map {
    map_entry* entries;
    uint64_t size;  // a power of two, or 0
    uint64_t count;
};

// Indices of types[], by address and one more than they are: 0 is free.
struct type_map {
    uint32_t* slots;
    uint64_t size;  // a power of two, or 0
};

// What is known of types[] of the same index; kNone: nothing yet.
struct known_type {
    uint32_t part;   // op::part
    uint32_t whole;  // ops[] of what stands in an open type
    uint32_t facts;  // see type_facts
};

struct sequence_parts;

struct builder {
#define ORLENTA_ARRAY(type, name) growing<type> name;
    ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
    growing<known_type> known;
    type_map type_at;
    address_map row_sets;   // row_ranges[], by table constraint if sorted, else by open type
    sequence_parts* spare;  // done with, with room for the next
    bool aligned;           // for ALIGNED PER
    bool octets;            // for OER
    bool failed;            // memory
};

// A larger block for `needed` items of `size` bytes; null, with `failed` set, without memory.
void* grow_block(builder* b, void* block, uint64_t size, uint64_t* capacity, uint64_t needed);

// Makes room for `count` more items; false, with `failed` set, without memory.
template <typename T>
inline bool make_room(builder* b, growing<T>* array, uint64_t count) {
    uint64_t needed = array->count + count;
    if (needed <= array->capacity) return true;
    void* block = grow_block(b, array->items, sizeof(T), &array->capacity, needed);
    if (block) array->items = static_cast<T*>(block);
    return block != nullptr;
}

// Appends, if memory is to be had.
template <typename T>
void add(builder* b, growing<T>* array, const T& item) {
    if (make_room(b, array, 1)) array->items[array->count++] = item;
}

// Appends a row of items, of which the first gets the index that is returned.
template <typename T>
uint32_t add_all(builder* b, growing<T>* array, const T* items, uint64_t count) {
    uint32_t first = static_cast<uint32_t>(array->count);
    if (count != 0 && make_room(b, array, count)) {
        memcpy(array->items + first, items, count * sizeof(T));
        array->count += count;
    }
    return first;
}

// Appends an item that will be filled in later; 0 if that failed.
template <typename T>
uint32_t reserve_item(builder* b, growing<T>* array) {
    if (!make_room(b, array, 1)) return 0;
    memset(static_cast<void*>(array->items + array->count), 0, sizeof(T));
    return static_cast<uint32_t>(array->count++);
}

// The value of a key, or kNone.
uint32_t find(const address_map& map, const asn1_word* key);
// Adds a key that is not there.
void put(builder* b, address_map* map, const asn1_word* key, uint32_t value);

// Index of a type in types[] and known[]. It stays, but what is known may move with every new type.
uint32_t type_index(builder* b, const asn1_type_desc* type);

// Makes a builder of zeros ready for types; whole_op() adds one.
void begin_builder(builder* b, rule rule);
// Releases all arrays.
void free_builder(builder* b);

// ---- what is asked of a type --------------------------------------------------------------------------------

struct type_facts {
    bool owns;         // a value may own blocks
    bool needs_frame;  // an open type inside is resolved by its enclosing records
};
type_facts facts_of(builder* b, const asn1_type_desc* type);

// A number in a field of its own: BOOLEAN, INTEGER with two bounds, ENUMERATED; the extension bit is a part of it.
struct leaf_form {
    bool is_leaf;
    bool aligned;  // begins on an octet boundary
    bool extensible;
    uint32_t low, range;
    uint32_t width;
};
leaf_form leaf_of(bool aligned, const asn1_type_desc* type);

// Bits that hold the numbers from 0 to `range`.
uint32_t range_width(uint32_t range);

// ---- ops ----------------------------------------------------------------------------------------------------

// An op of which only the kind is told.
inline op plain_op(op_kind kind, uint32_t offset, uint32_t presence, uint32_t type) {
    op made = {};
    made.kind = kind;
    made.offset = offset;
    made.presence = presence;
    made.type = type;
    return made;
}

// The op of a value at `offset` of its record.
op make_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence);

// The same, of a leaf.
op leaf_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence, const leaf_form& form);

// The same, where a SEQUENCE of nothing but leaves is one group.
op make_fused_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence);

void free_spare_parts(builder* b);

// Indices of parts. Each type has one, open types apart: their keys lie in the record around them.
uint32_t sequence_part(builder* b, uint32_t type);
uint32_t open_type_part(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing,
                        uint32_t offset);

// Whether the type of an open type is told by one 32-bit component of the SEQUENCE that it is a component of, one that
// is always there; then `offset` is the component's and `column` that of the object class.
bool find_simple_key(const asn1_type_desc* open, const asn1_type_desc* enclosing, uint32_t* offset,
                     uint32_t* column);

// The op of a value that has a record of its own, as what stands in an open type.
uint32_t whole_op(builder* b, const asn1_type_desc* type);

void set_list(builder* b, op* made, const asn1_type_desc* type);
uint32_t choice_part(builder* b, uint32_t type, const choice_layout& layout);
void set_indirect(builder* b, op* made, const asn1_type_desc* type);

// The type in a row of an object set, or null.
const asn1_type_desc* type_in_row(const asn1_table_constraint* table, uint32_t row);

// ---- OER (build_oer.cpp) --------------------------------------------------------------------------------------

// As leaf_of(): numbers of one, two or four octets, that of an ENUMERATED in its short form. `width` is in octets, and
// `low` the bit of a sign that is to be extended, or kAnyOctet: each octet but 0 is a 1.
leaf_form octet_leaf_of(const asn1_type_desc* type);
constexpr uint32_t kAnyOctet = 1;

// What a leaf of a group is kept as until the group is complete, and what becomes of it then.
leaf pack_octet_leaf(const leaf_form& form, uint32_t offset, uint32_t at);
uint32_t add_octet_leaves(builder* b, const growing<leaf>& gates, const growing<leaf>& leaves);

// A leaf on its own.
uint32_t add_octet_leaf(builder* b, const leaf_form& form);

inline leaf_form form_of(const builder* b, const asn1_type_desc* type) {
    return b->octets ? octet_leaf_of(type) : leaf_of(b->aligned, type);
}

// Makes an op of what is no leaf, so far the walker's, one of OER.
void set_octet_op(builder* b, op* made, const asn1_type_desc* type);

// The tags of alternatives whose ops are made.
void add_tags(builder* b, choice* made, const choice_layout& layout);

}  // namespace orlenta::program
