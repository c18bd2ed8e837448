// SPDX-License-Identifier: Apache-2.0
// A SEQUENCE OF or SET OF that is being decoded. Its block grows as elements arrive, whatever count the encoding claims:
// four octets may claim four billion elements. An element is zero-filled and counted before it is decoded, so that
// asn1_free_value() finds it if that fails.
#pragma once

#include "core/decode_memory.hpp"

namespace orlenta {

// Bytes of a list that are allocated on the strength of a claimed count alone.
constexpr uint64_t kTrustedListBytes = 4096;

struct growing_list {
    asn1_array* list;
    decode_memory* memory;
    uint64_t stride;    // bytes of an element
    uint64_t capacity;  // elements allocated
    uint64_t claimed;   // elements that the encoding announced so far, or kUnclaimed
};
constexpr uint64_t kUnclaimed = UINT64_MAX;

// Makes `list` an empty list, of which the encoding does not tell the count.
inline growing_list begin_list(decode_memory* memory, asn1_array* list, uint64_t stride) {
    list->data = nullptr;
    list->count = 0;
    return {list, memory, stride, 0, kUnclaimed};
}

// Room for one more element, or false.
bool grow_list(growing_list* growing);

// A first block for a claim that may be too large to be trusted.
bool start_list(growing_list* growing);

// The encoding announces `count` elements, or as many more. The list has a block from here on, and one of exactly the
// claimed size when all elements have been added. False without memory.
inline bool claim_elements(growing_list* growing, uint32_t count) {
    asn1_array* list = growing->list;
    growing->claimed = list->count + count;
    if (list->data) return true;
    if (growing->stride - 1 >= kTrustedListBytes || count * growing->stride > kTrustedListBytes) {
        return start_list(growing);
    }
    list->data = allocate_zeroed(growing->memory, count * growing->stride);
    growing->capacity = count;
    return list->data != nullptr;
}

// A zero-filled element at the list's end, already counted; null if memory was not to be had.
inline void* add_element(growing_list* growing) {
    asn1_array* list = growing->list;
    if (list->count == growing->capacity && !grow_list(growing)) return nullptr;
    return at_offset(list->data, list->count++ * growing->stride);
}

// Gives back the room behind the last element. If that fails the list stays as it is, which is no harm.
inline void end_list(const growing_list& growing) {
    asn1_array* list = growing.list;
    if (list->count == growing.capacity) return;
    void* block = reallocate(growing.memory, list->data, growing.capacity * growing.stride,
                             list->count * growing.stride);
    if (block) list->data = block;
}

}  // namespace orlenta
