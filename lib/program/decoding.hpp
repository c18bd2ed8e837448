// SPDX-License-Identifier: Apache-2.0
// What decoding by a program is, whatever the rules: the state, blocks, lists, open types. Nothing is recorded on the way:
// a failure ends the run, and the walker finds the report.
#pragma once

#include <orlenta/type_info.h>

#include "core/growing_list.hpp"
#include "core/stack.hpp"
#include "program/arena.hpp"
#include "program/codec.hpp"

namespace orlenta::program {

enum outcome {
    kDone,
    kInvalid,      // no decoder can make a value of the input
    kOutOfMemory,  // or the bound of what a decode may hold is reached
    kGaveUp        // the walker has to tell
};

struct decode_result {
    outcome how;
    uint64_t bits;           // read, of a value that is done
    uint64_t memory;         // out of memory: bytes held when no more were to be had
    bool has_record;         // out of memory: the outermost record was to be had
    uint32_t walker_pieces;  // parts of the value that the walker decoded
};

// ---- positions ----------------------------------------------------------------------------------------------

// In the input, or a failure. It travels in a register: each function takes it and returns the next one.
typedef uint64_t position_or_failure;
constexpr position_or_failure kRefused = UINT64_MAX;        // kInvalid
constexpr position_or_failure kNoMemory = UINT64_MAX - 1;   // kOutOfMemory
constexpr position_or_failure kNotMine = UINT64_MAX - 2;    // kGaveUp
constexpr position_or_failure kOtherForm = UINT64_MAX - 3;  // of a part, which the walker reads
inline bool is_failure(position_or_failure position) { return position >= kOtherForm; }

inline outcome outcome_of(position_or_failure failure) {
    return failure == kRefused ? kInvalid : failure == kNoMemory ? kOutOfMemory : kGaveUp;
}

// ---- blocks -------------------------------------------------------------------------------------------------

struct decode_state {
    const program* code;
    const asn1_parent_frame* frames;
    stack_guard stack;
    decode_memory memory;
    orlenta_arena* arena;  // that the blocks come from; null: each from the allocator
    uint32_t walker_pieces;
};

// A block that counts; null leaves the count as it was.
inline __attribute__((always_inline)) void* take_block(decode_state* d, uint64_t size) {
    uint64_t left = d->memory.left;
    void* block = nullptr;
    if (!d->arena) {
        block = allocate(&d->memory, size);
    } else if (count_bytes(&d->memory, counted_size(size))) {
        block = take(d->arena, size);
    }
    if (!block) d->memory.left = left;
    return block;
}

void zero_many(uint8_t* at, uint64_t size);

// Most records are small, for which a call costs more than the stores.
inline __attribute__((always_inline)) void zero(void* block, uint64_t size) {
    uint8_t* at = static_cast<uint8_t*>(block);
    if (size > 128) {
        zero_many(at, size);
    } else if (size >= 16) {
        for (uint64_t done = 0; done + 16 < size; done += 16) memset(at + done, 0, 16);
        memset(at + size - 16, 0, 16);
    } else if (size >= 8) {
        memset(at, 0, 8);
        memset(at + size - 8, 0, 8);
    } else {
        for (uint64_t i = 0; i < size; ++i) at[i] = 0;
    }
}

inline __attribute__((always_inline)) void* take_record(decode_state* d, uint64_t size) {
    void* record = take_block(d, size);
    if (__builtin_expect(record != nullptr, 1)) zero(record, size);
    return record;
}

// The same by a call.
void* new_record(decode_state* d, uint64_t size);

// The outermost record does not count.
void* new_outermost_record(const decode_state* d, uint64_t size);

// ---- lists --------------------------------------------------------------------------------------------------

// A list that is too long to be taken at its word; false without memory.
inline bool begin_elements(decode_state* d, growing_list* growing, asn1_array* array, uint64_t stride,
                           uint32_t count) {
    *growing = begin_list(&d->memory, array, stride);
    growing->claimed = count;
    return d->arena || claim_elements(growing, count);
}

// A zero-filled element at its end, already counted; null without memory.
void* next_element(decode_state* d, growing_list* growing);

// ---- open types ---------------------------------------------------------------------------------------------

// The row of the type that an open type has; null, with a null type, if it has none. A type without a row can only come
// from another object set than the descriptor's.
const open_type_row* find_row(decode_state* d, const op* o, const uint8_t* value,
                              const asn1_type_desc** type);

// ---- SEQUENCE -----------------------------------------------------------------------------------------------

// Fills in the DEFAULTs whose preamble bit is 0; where an open type looks for its key all presence words are stored
// before the first component.
void settle_options(const decode_state* d, const sequence* s, uint8_t* record, uint64_t preamble);

}  // namespace orlenta::program
