// A SEQUENCE OF or SET OF whose number of elements is not known before the last one is read: the decoders of
// text, and BER. An element is counted before it is decoded, so that asn1_free_value() finds it if that
// fails.
#pragma once

#include <orlenta/memory.h>

namespace orlenta {

struct growing_list {
    asn1_array* list;
    uint64_t stride;    // bytes of an element
    uint64_t capacity;  // elements allocated
};

// Makes `list` an empty list.
inline growing_list begin_list(asn1_array* list, uint64_t stride) {
    list->data = nullptr;
    list->count = 0;
    return {list, stride, 0};
}

// A zero-filled element at the list's end, already counted; null if memory was not to be had.
inline void* add_element(growing_list* growing) {
    asn1_array* list = growing->list;
    if (list->count + 1 > growing->capacity &&
        __asn1_realloc_buf(&list->data, growing->stride, &growing->capacity, list->count + 1, 1) != 0) {
        return nullptr;
    }
    return static_cast<uint8_t*>(list->data) + list->count++ * growing->stride;
}

// Gives back the room behind the last element. If that fails the list stays as it is, which is no harm.
inline void end_list(const growing_list& growing) {
    asn1_array* list = growing.list;
    if (list->count == growing.capacity) return;
    void* block = asn1_realloc(list->data, list->count * growing.stride);
    if (block) list->data = block;
}

}  // namespace orlenta
