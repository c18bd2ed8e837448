// SPDX-License-Identifier: Apache-2.0
// Memory for a record that lives for one call: taken piece by piece, given back at once.
#pragma once

#include <orlenta/codec.h>
#include <string.h>

#include <memory>
#include <vector>

namespace orlenta::python {

struct Scratch {
    static constexpr size_t kFirstSize = 16 * 1024;

    std::unique_ptr<uint8_t[]> first;
    std::vector<std::unique_ptr<uint8_t[]>> others;
    uint8_t* next = nullptr;
    uint8_t* end = nullptr;
    orlenta_arena* arena = nullptr;  // for values that are decoded

    Scratch() = default;
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() { orlenta_arena_destroy(arena); }
};

// A zero-filled block; null without memory.
void* take_more(Scratch& scratch, size_t size);

inline void* take(Scratch& scratch, size_t size) {
    size = (size + 7) & ~size_t{7};
    if (size > static_cast<size_t>(scratch.end - scratch.next)) return take_more(scratch, size);
    void* block = scratch.next;
    scratch.next += size;
    return memset(block, 0, size);
}

void reset(Scratch& scratch);

// One that no other call has, under the interpreter's lock: objects that are converted may run code of their own, which
// may convert others.
struct ScratchLease {
    Scratch* scratch;

    ScratchLease();
    ScratchLease(const ScratchLease&) = delete;
    ScratchLease& operator=(const ScratchLease&) = delete;
    ~ScratchLease();
};

// The arena, empty; null without memory.
orlenta_arena* arena_of(Scratch& scratch);

}  // namespace orlenta::python
