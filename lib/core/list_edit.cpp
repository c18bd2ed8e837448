// SPDX-License-Identifier: Apache-2.0
// One element more or less in a SEQUENCE OF or SET OF.
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include "core/descriptor.hpp"

using namespace orlenta;

static void free_elements(const asn1_type_desc* desc, void* elements, uint64_t count, uint64_t size) {
    for (uint64_t i = 0; i < count; ++i) asn1_free_value_struct(desc, at_offset(elements, i * size));
}

static uint64_t element_size(const asn1_type_desc* desc) {
    return static_cast<uint32_t>(asn1_get_size(desc));
}

// On failure the count stays raised and the new block is left behind, as the interface says.
int asn1_seq_add(const asn1_type_desc* elem_desc, uint64_t* count, void** elements, const void* elem) {
    if (elem == nullptr || elements == nullptr || elem_desc == nullptr) return -1;
    uint64_t old_count = (*count)++, size = element_size(elem_desc);
    size_t bytes;
    if (__builtin_mul_overflow(*count, size, &bytes)) return -1;
    void* block = asn1_malloc(bytes);  // not zero-filled: the copies write every element in full
    if (block == nullptr) return -1;
    for (uint64_t i = 0; i < old_count; ++i) {
        if (asn1_copy_value(elem_desc, at_offset(block, i * size), at_offset(*elements, i * size)) != 0)
            return -1;
    }
    if (asn1_copy_value(elem_desc, at_offset(block, old_count * size), elem) != 0) return -1;
    free_elements(elem_desc, *elements, old_count, size);
    asn1_free(*elements);
    *elements = block;
    return 0;
}

// Deep copies of the `count` elements but the one at `index`, or null. An index of `count` leaves out the last.
static void* copy_without(const asn1_type_desc* desc, const void* elements, uint64_t count, uint64_t index) {
    uint64_t size = element_size(desc);
    size_t bytes;
    if (__builtin_mul_overflow(count - 1, size, &bytes)) return nullptr;
    void* block = asn1_mallocz(bytes);  // zero-filled, so that a partial element can be released
    if (block == nullptr) return nullptr;
    for (uint64_t i = 0; i < count - 1; ++i) {
        const void* src = at_offset(elements, (i < index ? i : i + 1) * size);
        if (asn1_copy_value(desc, at_offset(block, i * size), src) != 0) {
            free_elements(desc, block, i + 1, size);
            asn1_free(block);
            return nullptr;
        }
    }
    return block;
}

int asn1_seq_del(const asn1_type_desc* elem_desc, uint64_t* count, void** elements, int64_t index) {
    if (elements == nullptr || elem_desc == nullptr || index < 0 || static_cast<uint64_t>(index) > *count)
        return -1;
    if (*count == 0) return -1;
    void* block = nullptr;
    if (*count > 1) {
        block = copy_without(elem_desc, *elements, *count, static_cast<uint64_t>(index));
        if (block == nullptr) return -1;
    }
    free_elements(elem_desc, *elements, *count, element_size(elem_desc));
    asn1_free(*elements);
    *elements = block;
    --*count;
    return 0;
}
