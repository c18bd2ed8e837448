// SPDX-License-Identifier: Apache-2.0
#include "program/arena.hpp"

#include <orlenta/memory.h>
#include <orlenta/value.h>

namespace orlenta::program {

static void enter(orlenta_arena* arena, arena_chunk* chunk) {
    arena->current = chunk;
    arena->next = reinterpret_cast<uint8_t*>(chunk + 1);
    arena->end = reinterpret_cast<uint8_t*>(chunk) + chunk->size;
}

static arena_chunk* new_chunk(uint64_t size) {
    arena_chunk* chunk = static_cast<arena_chunk*>(asn1_malloc(static_cast<size_t>(size)));
    if (chunk) *chunk = {nullptr, size};
    return chunk;
}

__attribute__((noinline)) void* take_from_next_chunk(orlenta_arena* arena, uint64_t size) {
    uint64_t needed = size + sizeof(arena_chunk);
    arena_chunk* chunk = arena->current->next;
    if (!chunk || chunk->size < needed) {
        chunk = new_chunk(needed > arena->chunk_size ? needed : arena->chunk_size);
        if (!chunk) return nullptr;
        chunk->next = arena->current->next;
        arena->current->next = chunk;
    }
    enter(arena, chunk);
    void* block = arena->next;
    arena->next += size;
    return block;
}

void rewind(orlenta_arena* arena, const arena_mark& mark) {
    enter(arena, mark.current);
    arena->next = mark.next;
}

bool adopt(orlenta_arena* arena, const asn1_type_desc* type, void* value) {
    walkers_value* adopted = static_cast<walkers_value*>(take(arena, sizeof(walkers_value)));
    if (!adopted) return false;
    *adopted = {arena->walkers_values, type, value};
    arena->walkers_values = adopted;
    return true;
}

static void free_walkers_values(orlenta_arena* arena) {
    for (walkers_value* each = arena->walkers_values; each; each = each->next) {
        asn1_free_value(each->type, each->value);
    }
    arena->walkers_values = nullptr;
}

}  // namespace orlenta::program

using namespace orlenta::program;

orlenta_arena* orlenta_arena_create(size_t chunk_size) {
    constexpr size_t kDefaultChunk = 16 * 1024, kLeastChunk = 256;
    if (chunk_size == 0) chunk_size = kDefaultChunk;
    if (chunk_size < kLeastChunk) chunk_size = kLeastChunk;
    orlenta_arena* arena = static_cast<orlenta_arena*>(asn1_malloc(sizeof(orlenta_arena)));
    arena_chunk* first = arena ? new_chunk(chunk_size) : nullptr;
    if (!first) {
        asn1_free(arena);
        return nullptr;
    }
    arena->first = first;
    arena->walkers_values = nullptr;
    arena->chunk_size = chunk_size;
    enter(arena, first);
    return arena;
}

void orlenta_arena_reset(orlenta_arena* arena) {
    if (arena->walkers_values) free_walkers_values(arena);
    enter(arena, arena->first);
}

void orlenta_arena_destroy(orlenta_arena* arena) {
    if (!arena) return;
    free_walkers_values(arena);
    for (arena_chunk *chunk = arena->first, *next; chunk; chunk = next) {
        next = chunk->next;
        asn1_free(chunk);
    }
    asn1_free(arena);
}
