// SPDX-License-Identifier: Apache-2.0
// Where the blocks of values lie that are released together.
#pragma once

#include <orlenta/codec.h>

namespace orlenta::program {

struct alignas(8) arena_chunk {
    arena_chunk* next;
    uint64_t size;  // this head included
};

// A value that the walker made, with blocks of its own.
struct walkers_value {
    walkers_value* next;
    const asn1_type_desc* type;
    void* value;
};

}  // namespace orlenta::program

// Chunks behind `current` are empty.
struct orlenta_arena {
    uint8_t* next;
    uint8_t* end;  // of the current chunk
    orlenta::program::arena_chunk* current;
    orlenta::program::arena_chunk* first;
    orlenta::program::walkers_value* walkers_values;
    uint64_t chunk_size;
};

namespace orlenta::program {

// What an arena held at some time.
struct arena_mark {
    arena_chunk* current;
    uint8_t* next;
};

inline arena_mark mark_of(const orlenta_arena* arena) { return {arena->current, arena->next}; }

// Gives back all that was taken since, but for values that the walker made.
void rewind(orlenta_arena* arena, const arena_mark& mark);

void* take_from_next_chunk(orlenta_arena* arena, uint64_t size);

// A block of `size` bytes that stays until the reset, or null.
inline void* take(orlenta_arena* arena, uint64_t size) {
    size = (size + 7) & ~UINT64_C(7);
    if (__builtin_expect(size > static_cast<uint64_t>(arena->end - arena->next), 0)) {
        return take_from_next_chunk(arena, size);
    }
    void* block = arena->next;
    arena->next += size;
    return block;
}

// Has the value released at the reset; false without memory.
bool adopt(orlenta_arena* arena, const asn1_type_desc* type, void* value);

}  // namespace orlenta::program
