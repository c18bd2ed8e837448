// SPDX-License-Identifier: Apache-2.0
// The release of a value. It cannot be refused: where the stack runs low, blocks wait in a list for their turn.
#include <orlenta/memory.h>
#include <orlenta/value.h>
#include <stdlib.h>

#include "core/descriptor.hpp"
#include "core/stackless.hpp"

namespace orlenta {

namespace {

// Records of one type in a block of their own: the elements of a list, or the one record behind a pointer.
struct owned_block {
    const asn1_type_desc* type;
    void* data;
    uint64_t stride, count;
    uint64_t next;  // the first record not yet released
};

struct release_walk {
    stack_guard stack;
    owned_block* waiting;
    uint64_t count, capacity;
    bool is_waiting;  // the list is being worked off
};

}  // namespace

static void release_record(release_walk* walk, const asn1_type_desc* desc, void* value);

// ---- without recursion ------------------------------------------------------------------------------------

static bool add_waiting(release_walk* walk, const owned_block& block) {
    void* list = walk->waiting;
    if (walk->count == walk->capacity &&
        __asn1_realloc_buf(&list, sizeof block, &walk->capacity, walk->count + 1, 0) != 0) {
        return false;
    }
    walk->waiting = static_cast<owned_block*>(list);
    walk->waiting[walk->count++] = block;
    return true;
}

// Releases the next record of the block at the list's end. With its last record the block leaves the list.
static void release_next_record(release_walk* walk) {
    owned_block* last = &walk->waiting[walk->count - 1];
    const asn1_type_desc* type = last->type;
    void* record = at_offset(last->data, last->next++ * last->stride);
    void* done = nullptr;
    if (last->next == last->count) {
        done = last->data;
        --walk->count;
    }
    release_record(walk, type, record);
    asn1_free(done);
}

// The last block goes first, so that the list grows with the depth of the value and not with its width.
static void release_waiting(release_walk* walk) {
    walk->is_waiting = true;
    while (walk->count > 0) release_next_record(walk);
    asn1_free(walk->waiting);
    walk->waiting = nullptr;
    walk->capacity = 0;
    walk->is_waiting = false;
}

// Takes over a block of at least one record where the stack runs low. False if there is no memory for the list: the
// caller goes on by recursion, which may still do.
ORLENTA_NOINLINE static bool release_without_stack(release_walk* walk, const owned_block& block) {
    if (!add_waiting(walk, block)) return false;
    if (!walk->is_waiting) release_waiting(walk);
    return true;
}

// ---- the walk ---------------------------------------------------------------------------------------------

// The first component from `field` on that may own something; `end` if there is none.
__attribute__((always_inline)) static inline const asn1_field* find_owner(const asn1_field* field,
                                                                          const asn1_field* end,
                                                                          const void* record) {
    for (; field < end; ++field) {
        if (is_flat(field_type(field))) continue;
        if (!is_presence_flagged(field) || presence_word(field, record) != 0) break;
    }
    return field;
}

ORLENTA_NOINLINE static void release_components(release_walk* walk, const asn1_type_desc* desc,
                                                void* record) {
    const asn1_field* field = components(desc);
    const asn1_field* end = field + component_count(desc);
    while ((field = find_owner(field, end, record)) < end) {
        release_record(walk, field_type(field), field_value(field, record));
        ++field;
    }
}

// The same, but for the last one that owns something, which it returns, or null.
static const asn1_field* release_all_but_last(release_walk* walk, const asn1_type_desc* desc, void* record) {
    const asn1_field* end = components(desc) + component_count(desc);
    const asn1_field* last = find_owner(components(desc), end, record);
    if (last == end) return nullptr;
    const asn1_field* next;
    while ((next = find_owner(last + 1, end, record)) < end) {
        release_record(walk, field_type(last), field_value(last, record));
        last = next;
    }
    return last;
}

// A copy that failed for lack of a block has a count and no block.
ORLENTA_NOINLINE static void release_list(release_walk* walk, const asn1_type_desc* desc,
                                          const asn1_array* array) {
    list_layout list = list_of(desc);
    if (array->data != nullptr && array->count != 0 && !is_flat(list.element)) {
        if (!has_stack(&walk->stack) &&
            release_without_stack(walk, {list.element, array->data, list.stride, array->count, 0})) {
            return;
        }
        for (uint64_t i = 0; i < array->count; ++i) {
            release_record(walk, list.element, at_offset(array->data, i * list.stride));
        }
    }
    asn1_free(array->data);
}

// Steps from a CHOICE to the alternative that its value holds; false if that is none of the type's.
__attribute__((always_inline)) static inline bool enter_alternative(const asn1_type_desc*& desc,
                                                                    void*& value) {
    choice_layout choice = choice_of(desc);
    uint32_t selector = selector_of(choice, value);
    if (selector >= choice.total) return false;
    desc = alternative_type(choice, selector);
    value = at_offset(value, choice.payload_offset);
    return true;
}

// Releases what a record owns but for the block behind the pointer that comes last in it. Returns that block, and its
// type in `*block_type`; null if there is none.
static void* release_to_last_pointer(release_walk* walk, const asn1_type_desc* desc, void* value,
                                     const asn1_type_desc** block_type) {
    for (;;) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: {
                const asn1_field* last = release_all_but_last(walk, desc, value);
                if (last == nullptr) return nullptr;
                desc = field_type(last);
                value = field_value(last, value);
                break;
            }
            case ASN1_KIND_CHOICE:
                if (!enter_alternative(desc, value)) return nullptr;
                break;
            case ASN1_KIND_TAGGED: {
                bool is_pointer = is_indirect(desc);
                desc = *block_type = tagged_inner(desc);
                if (is_pointer) return load_pointer(value);
                break;
            }
            case ASN1_KIND_ANY:
                *block_type = static_cast<asn1_open_value*>(value)->type;
                if (*block_type != nullptr) return static_cast<asn1_open_value*>(value)->data;
                [[fallthrough]];
            default: release_record(walk, desc, value); return nullptr;
        }
    }
}

// Releases the block behind a pointer. A chain of such blocks takes no recursion, however long.
ORLENTA_NOINLINE static void release_pointed(release_walk* walk, const asn1_type_desc* desc, void* block) {
    while (block != nullptr) {
        if (!has_stack(&walk->stack) && release_without_stack(walk, {desc, block, 0, 1, 0})) return;
        void* next = release_to_last_pointer(walk, desc, block, &desc);
        asn1_free(block);
        block = next;
    }
}

static void release_open_value(release_walk* walk, const asn1_open_value* open) {
    if (open->type != nullptr) {
        release_pointed(walk, open->type, open->data);
    } else {
        asn1_free(open->data);
    }
}

static void release_record(release_walk* walk, const asn1_type_desc* desc, void* value) {
    for (;;) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return release_components(walk, desc, value);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF: return release_list(walk, desc, static_cast<asn1_array*>(value));
            case ASN1_KIND_CHOICE:
                if (!enter_alternative(desc, value)) return;
                break;
            case ASN1_KIND_INTEGER:
                if (is_big_integer(desc)) asn1_integer_clear(static_cast<asn1_integer*>(value));
                return;
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED:
            case ASN1_KIND_NULL:
            case ASN1_KIND_REAL: return;
            case ASN1_KIND_BIT_STRING: return asn1_free(static_cast<asn1_bit_string*>(value)->data);
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
            case ASN1_KIND_CHAR_STRING: return asn1_free(static_cast<asn1_string*>(value)->data);
            case ASN1_KIND_TAGGED:
                if (is_indirect(desc)) return release_pointed(walk, tagged_inner(desc), load_pointer(value));
                desc = tagged_inner(desc);
                break;
            case ASN1_KIND_ANY: return release_open_value(walk, static_cast<asn1_open_value*>(value));
            default: abort();
        }
    }
}

void release_value(const stack_guard& stack, const asn1_type_desc* desc, void* value) {
    release_walk walk = {stack, nullptr, 0, 0, false};
    release_pointed(&walk, desc, value);
}

void release_struct(const stack_guard& stack, const asn1_type_desc* desc, void* value) {
    release_walk walk = {stack, nullptr, 0, 0, false};
    release_record(&walk, desc, value);
}

}  // namespace orlenta

using namespace orlenta;

void asn1_free_value_struct(const asn1_type_desc* desc, void* value) {
    if (value != nullptr) release_struct(begin_stack(), desc, value);
}
