// SPDX-License-Identifier: Apache-2.0
#include "program/decoding.hpp"

namespace orlenta::program {

void zero_many(uint8_t* at, uint64_t size) { memset(at, 0, size); }

void* new_record(decode_state* d, uint64_t size) { return take_record(d, size); }

void* new_outermost_record(const decode_state* d, uint64_t size) {
    void* record = d->arena ? take(d->arena, size) : asn1_malloc(static_cast<size_t>(size));
    if (record) memset(record, 0, size);
    return record;
}

// ---- lists --------------------------------------------------------------------------------------------------

// As grow_list() grows a list.
static uint64_t next_capacity(const decode_state* d, const growing_list& growing) {
    uint64_t capacity = growing.capacity;
    uint64_t trusted = kTrustedListBytes / growing.stride;
    uint64_t wanted = capacity > 1 ? capacity + capacity / 2 : capacity + 1;
    if (capacity == 0 && trusted > 1) wanted = trusted;
    if (wanted > growing.claimed) wanted = growing.claimed;
    uint64_t payable = d->memory.left / growing.stride;
    return capacity == 0 || wanted < payable ? wanted : payable;
}

// In an arena outgrown blocks are left behind, and no longer count.
static bool grow_in_arena(decode_state* d, growing_list* growing) {
    uint64_t held = growing->capacity * growing->stride;
    uncount_bytes(&d->memory, held);
    uint64_t larger = next_capacity(d, *growing);
    void* block = larger > growing->capacity ? take_record(d, larger * growing->stride) : nullptr;
    if (!block) return false;
    if (held != 0) memcpy(block, growing->list->data, held);
    growing->list->data = block;
    growing->capacity = larger;
    return true;
}

void* next_element(decode_state* d, growing_list* growing) {
    asn1_array* list = growing->list;
    if (d->arena && list->count == growing->capacity && !grow_in_arena(d, growing)) return nullptr;
    return add_element(growing);
}

// ---- open types ---------------------------------------------------------------------------------------------

static const open_type_row* find_key(const decode_state* d, const row_range& range, uint32_t key) {
    const open_type_row* rows = &d->code->rows[range.first];
    uint32_t low = 0, high = range.count;
    while (low < high) {
        uint32_t middle = (low + high) / 2;
        if (rows[middle].key < key) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < range.count && rows[low].key == key ? &rows[low] : nullptr;
}

const open_type_row* find_row(decode_state* d, const op* o, const uint8_t* value,
                              const asn1_type_desc** type) {
    const open_type* open = &d->code->open_types[o->part];
    const row_range& range = d->code->row_ranges[open->rows];
    const open_type_row* row = nullptr;
    *type = nullptr;
    if (open->has_key) {
        row = find_key(d, range, load32(value + open->key));
    } else if (const asn1_type_desc* found = asn1_get_constrained_type(d->frames, d->code->types[o->type])) {
        *type = found;
        const open_type_row* end = &d->code->rows[range.first] + range.count;
        for (row = end - range.count; row != end && d->code->types[row->type] != found;) ++row;
        if (row == end) row = nullptr;
    }
    if (row) *type = d->code->types[row->type];
    return row;
}

// ---- SEQUENCE -----------------------------------------------------------------------------------------------

void settle_options(const decode_state* d, const sequence* s, uint8_t* record, uint64_t preamble) {
    const option* options = &d->code->options[s->options];
    for (uint64_t absent = ~preamble & s->defaults; absent != 0;) {
        uint32_t i = static_cast<uint32_t>(__builtin_clzll(absent));
        absent ^= UINT64_C(1) << 63 >> i;
        store32(record + options[i].offset, options[i].absent);
    }
    if (!s->needs_frame) return;
    for (uint32_t i = 0; i < s->option_count; ++i) {
        bool present = (preamble >> (63 - i) & 1) != 0;
        if (present && (s->defaults >> (63 - i) & 1) == 0) store32(record + options[i].offset, 1);
    }
}

}  // namespace orlenta::program
