// SPDX-License-Identifier: Apache-2.0
#include "core/growing_list.hpp"

namespace orlenta {

// What an element is counted as. One without bytes still takes the time to decode it.
static uint64_t element_cost(const growing_list& growing) { return growing.stride != 0 ? growing.stride : 1; }

// Elements that a first block has room for, where that many are wanted.
static uint64_t trusted_elements(const growing_list& growing, uint64_t wanted) {
    uint64_t cost = element_cost(growing);
    if (wanted <= kTrustedListBytes && cost <= kTrustedListBytes && wanted * cost <= kTrustedListBytes) {
        return wanted;
    }
    uint64_t trusted = kTrustedListBytes / cost;
    if (trusted == 0) trusted = 1;
    return trusted < wanted ? trusted : wanted;
}

static bool set_capacity(growing_list* growing, uint64_t capacity) {
    asn1_array* list = growing->list;
    uint64_t old_size = growing->capacity * growing->stride;
    uint64_t size;
    if (__builtin_mul_overflow(capacity, growing->stride, &size)) return false;
    if (growing->stride == 0 && !count_bytes(growing->memory, capacity - growing->capacity)) return false;
    void* block = reallocate(growing->memory, list->data, old_size, size);
    if (!block) return false;
    memset(at_offset(block, old_size), 0, static_cast<size_t>(size - old_size));
    list->data = block;
    growing->capacity = capacity;
    return true;
}

bool start_list(growing_list* growing) {
    return set_capacity(growing, trusted_elements(*growing, growing->claimed));
}

// Half as many elements again, but none beyond the claim, or as many as can still be paid for.
bool grow_list(growing_list* growing) {
    constexpr uint64_t kFirstUnclaimed = 4;
    uint64_t capacity = growing->capacity;
    uint64_t wanted = capacity > 1 ? capacity + capacity / 2 : capacity + 1;
    if (capacity == 0) wanted = trusted_elements(*growing, kFirstUnclaimed);
    if (wanted > growing->claimed) wanted = growing->claimed;
    if (set_capacity(growing, wanted)) return true;
    uint64_t payable = capacity + growing->memory->left / element_cost(*growing);
    return payable > capacity && payable < wanted && set_capacity(growing, payable);
}

}  // namespace orlenta
