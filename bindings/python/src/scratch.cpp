// SPDX-License-Identifier: Apache-2.0
#include "scratch.hpp"

#include <new>

namespace orlenta::python {

static void use(Scratch& scratch, uint8_t* chunk, size_t size) {
    scratch.next = chunk;
    scratch.end = chunk + size;
}

void* take_more(Scratch& scratch, size_t size) {
    size_t chunk_size = size > Scratch::kFirstSize ? size : Scratch::kFirstSize;
    std::unique_ptr<uint8_t[]> chunk(new (std::nothrow) uint8_t[chunk_size]);
    if (!chunk) return nullptr;
    use(scratch, chunk.get(), chunk_size);
    if (!scratch.first && chunk_size == Scratch::kFirstSize) {
        scratch.first = std::move(chunk);
    } else {
        try {
            scratch.others.push_back(std::move(chunk));
        } catch (const std::bad_alloc&) {
            use(scratch, nullptr, 0);
            return nullptr;
        }
    }
    void* block = scratch.next;
    scratch.next += size;
    return memset(block, 0, size);
}

void reset(Scratch& scratch) {
    scratch.others.clear();
    use(scratch, scratch.first.get(), scratch.first ? Scratch::kFirstSize : 0);
    if (scratch.arena) orlenta_arena_reset(scratch.arena);
}

orlenta_arena* arena_of(Scratch& scratch) {
    if (!scratch.arena) scratch.arena = orlenta_arena_create(0);
    return scratch.arena;
}

// Those that no call has. There are as many as calls that ran at the same time.
static std::vector<std::unique_ptr<Scratch>>& idle() {
    static std::vector<std::unique_ptr<Scratch>> all;
    return all;
}

ScratchLease::ScratchLease() {
    if (idle().empty()) {
        scratch = new (std::nothrow) Scratch;
    } else {
        scratch = idle().back().release();
        idle().pop_back();
    }
}

ScratchLease::~ScratchLease() {
    if (!scratch) return;
    reset(*scratch);
    std::unique_ptr<Scratch> owned(scratch);
    try {
        idle().push_back(std::move(owned));
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace orlenta::python
