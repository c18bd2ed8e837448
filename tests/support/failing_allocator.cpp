// SPDX-License-Identifier: Apache-2.0
#include "tests/support/failing_allocator.hpp"

#include <orlenta/memory.h>
#include <stdlib.h>

#include <algorithm>
#include <unordered_map>

namespace {

struct allocator_state {
    uint64_t calls = 0;
    uint64_t first_failure = UINT64_MAX, last_failure = UINT64_MAX;
    bool has_failed = false;
};

allocator_state state;
size_t bytes = 0, peak = 0;

// The live blocks and their sizes.
std::unordered_map<void*, size_t>& live() {
    static std::unordered_map<void*, size_t> blocks;
    return blocks;
}

bool forget(void* block) {
    auto found = live().find(block);
    if (found == live().end()) return false;
    bytes -= found->second;
    live().erase(found);
    return true;
}

void plan(uint64_t first_failure, uint64_t last_failure) {
    state = {.calls = 0, .first_failure = first_failure, .last_failure = last_failure, .has_failed = false};
}

bool fails() {
    ++state.calls;
    if (state.calls < state.first_failure || state.calls > state.last_failure) return false;
    state.has_failed = true;
    return true;
}

}  // namespace

void* asn1_malloc(size_t size) { return asn1_realloc(nullptr, size); }

void* asn1_realloc(void* ptr, size_t size) {
    // A block that is not alive was freed before, or came from elsewhere.
    if (ptr != nullptr && !live().contains(ptr)) abort();
    if (fails()) return nullptr;
    if (ptr != nullptr) forget(ptr);
    if (size == 0) size = 1;
    void* block = realloc(ptr, size);
    if (block == nullptr) abort();
    live()[block] = size;
    bytes += size;
    peak = std::max(peak, bytes);
    return block;
}

void asn1_free(void* ptr) {
    if (ptr == nullptr) return;
    if (!forget(ptr)) abort();
    free(ptr);
}

namespace orlenta::test {

void allocator_never_fails() { plan(UINT64_MAX, UINT64_MAX); }
void allocator_fails_at(uint64_t call) { plan(call, call); }
void allocator_fails_from(uint64_t call) { plan(call, UINT64_MAX); }
void allocator_recovers() { state.first_failure = state.last_failure = UINT64_MAX; }
uint64_t allocator_calls() { return state.calls; }
bool allocator_has_failed() { return state.has_failed; }
size_t live_blocks() { return live().size(); }
size_t size_of_block(const void* block) { return live().at(const_cast<void*>(block)); }
size_t live_bytes() { return bytes; }
void restart_peak() { peak = bytes; }
size_t peak_bytes() { return peak; }

void free_live_blocks() {
    for (const auto& block : live()) free(block.first);
    live().clear();
    bytes = 0;
}

}  // namespace orlenta::test
