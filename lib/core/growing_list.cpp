#include "core/growing_list.hpp"

namespace orlenta {

// What an element is counted as. One without bytes still takes the time to decode it.
static uint64_t element_cost(const growing_list& growing) { return growing.stride != 0 ? growing.stride : 1; }

static uint64_t smaller(uint64_t a, uint64_t b) { return a < b ? a : b; }

// Elements that a first block has room for, where that many are wanted.
static uint64_t trusted_elements(const growing_list& growing, uint64_t wanted) {
    uint64_t trusted = kTrustedListBytes / element_cost(growing);
    return smaller(wanted, trusted != 0 ? trusted : 1);
}

static bool set_capacity(growing_list* growing, uint64_t capacity) {
    asn1_array* list = growing->list;
    uint64_t added = capacity - growing->capacity;
    if (growing->stride == 0 && !count_bytes(growing->memory, added)) return false;
    uint64_t old_size = growing->capacity * growing->stride;
    uint64_t size;
    if (__builtin_mul_overflow(capacity, growing->stride, &size)) return false;
    void* block = reallocate(growing->memory, list->data, old_size, size);
    if (!block) return false;
    memset(at_offset(block, old_size), 0, static_cast<size_t>(size - old_size));
    list->data = block;
    growing->capacity = capacity;
    return true;
}

bool claim_elements(growing_list* growing, uint64_t count) {
    growing->claimed = growing->list->count + count;
    return growing->list->data || set_capacity(growing, trusted_elements(*growing, count));
}

// Half as many elements again, but none beyond the claim, and only if need be fewer than that for want of memory.
bool grow_list(growing_list* growing) {
    constexpr uint64_t kFirstUnclaimed = 4;
    uint64_t capacity = growing->capacity;
    uint64_t wanted = capacity > 1 ? capacity + capacity / 2 : capacity + 1;
    if (capacity == 0) wanted = trusted_elements(*growing, kFirstUnclaimed);
    wanted = smaller(wanted, growing->claimed);
    uint64_t payable = capacity + growing->memory->left / element_cost(*growing);
    return payable > capacity && set_capacity(growing, smaller(wanted, payable));
}

}  // namespace orlenta
