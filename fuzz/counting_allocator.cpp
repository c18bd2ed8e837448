// SPDX-License-Identifier: Apache-2.0
#include "fuzz/counting_allocator.hpp"

#include <orlenta/memory.h>
#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

static struct {
    size_t live = 0, limit = kUnlimited;
    bool ends_program = false, has_refused = false;
} state;

size_t live_bytes() { return state.live; }
void forbid_above(size_t bytes) { state = {state.live, bytes, true, false}; }
void refuse_above(size_t bytes) { state = {state.live, bytes, false, false}; }
bool has_refused() { return state.has_refused; }

// Whether `added` more bytes are granted.
static bool grant(size_t added) {
    if (state.live <= state.limit && added <= state.limit - state.live) return true;
    if (state.ends_program) {
        std::fprintf(stderr, "%zu bytes alive, and %zu more asked for, where %zu are the limit\n", state.live,
                     added, state.limit);
        std::abort();
    }
    state.has_refused = true;
    return false;
}

}  // namespace fuzz

// The address sanitizer knows of each block what was asked for.
void* asn1_realloc(void* block, size_t size) {
    using namespace fuzz;
    size = std::max<size_t>(size, 1);
    size_t before = block ? __sanitizer_get_allocated_size(block) : 0;
    if (size > before && !grant(size - before)) return nullptr;
    void* moved = realloc(block, size);
    if (moved) state.live += size - before;
    return moved;
}

void* asn1_malloc(size_t size) { return asn1_realloc(nullptr, size); }

void asn1_free(void* block) {
    if (block) fuzz::state.live -= __sanitizer_get_allocated_size(block);
    free(block);
}
