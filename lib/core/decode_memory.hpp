// SPDX-License-Identifier: Apache-2.0
// The memory that one decode may hold. A few octets of input can claim gigabytes of value, by list counts and by
// elements that take no bits; so every decoder takes the blocks of a value here, and none elsewhere.
//
// What counts: every block that is alive, by the bytes asked for and one at the least, but for the record of the
// outermost value. Blocks that serve the decode alone count while they live; a decoder of text, whose buffers are as
// long as its input bears and no longer, pays for these at the start (set_aside()). So the peak of all that a decode
// holds is 1 MiB and 4,096 bytes for each octet of input. Real messages take some 2,000 bytes an octet at the most.
//
// Null, or false, means that memory is not to be had or would pass that bound: "not enough memory" either way.
#pragma once

#include <orlenta/memory.h>
#include <orlenta/value.h>

#include "core/descriptor.hpp"

namespace orlenta {

struct decode_memory {
    uint64_t left;  // bytes that may still be taken; never more than a size_t holds
};

constexpr uint64_t kDecodeBytes = 1024 * 1024;
constexpr uint64_t kDecodeBytesPerOctet = 4096;

inline decode_memory begin_decode_memory(uint64_t input_octets) {
    constexpr uint64_t kMost = SIZE_MAX / 2;
    if (input_octets > (kMost - kDecodeBytes) / kDecodeBytesPerOctet) return {kMost};
    return {kDecodeBytes + kDecodeBytesPerOctet * input_octets};
}

// ---- counting ---------------------------------------------------------------------------------------------

inline bool count_bytes(decode_memory* memory, uint64_t bytes) {
    if (__builtin_expect(bytes > memory->left, 0)) return false;
    memory->left -= bytes;
    return true;
}

inline void uncount_bytes(decode_memory* memory, uint64_t bytes) { memory->left += bytes; }

// Counts what a decoder may hold besides the value, and gives none of it back.
inline void set_aside(decode_memory* memory, uint64_t bytes) {
    memory->left -= bytes < memory->left ? bytes : memory->left;
}

// ---- blocks -----------------------------------------------------------------------------------------------

// An allocator gives a block of at least one byte.
inline uint64_t counted_size(uint64_t size) { return size + (size == 0); }

inline void* allocate(decode_memory* memory, uint64_t size) {
    if (!count_bytes(memory, counted_size(size))) return nullptr;
    return asn1_malloc(static_cast<size_t>(size));
}

inline void* allocate_zeroed(decode_memory* memory, uint64_t size) {
    if (!count_bytes(memory, counted_size(size))) return nullptr;
    return asn1_mallocz(static_cast<size_t>(size));
}

// A zero-filled record for a value of the type: an indirect component, the value of an open type.
inline void* allocate_value(decode_memory* memory, const asn1_type_desc* type) {
    int64_t size = asn1_get_size(type);
    return size >= 0 ? allocate_zeroed(memory, static_cast<uint64_t>(size)) : nullptr;
}

// `block`, if not null, has `old_size` bytes. Without memory it stays as it is.
inline void* reallocate(decode_memory* memory, void* block, uint64_t old_size, uint64_t size) {
    uint64_t before = block ? counted_size(old_size) : 0, after = counted_size(size);
    if (after > before && after - before > memory->left) return nullptr;
    void* moved = asn1_realloc(block, static_cast<size_t>(size));
    if (moved) memory->left += before - after;
    return moved;
}

// Grows a buffer of `*capacity` elements to `needed` or more, as __asn1_realloc_buf() does without zero-filling.
inline bool grow_buffer(decode_memory* memory, void** block, uint64_t element_size, uint64_t* capacity,
                        uint64_t needed) {
    uint64_t wanted = *capacity + *capacity / 2;
    if (wanted < 4) wanted = 4;
    if (wanted < needed) wanted = needed;
    uint64_t size;
    if (__builtin_mul_overflow(wanted, element_size, &size)) return false;
    void* moved = reallocate(memory, *block, *capacity * element_size, size);
    if (!moved) return false;
    *block = moved;
    *capacity = wanted;
    return true;
}

inline void release(decode_memory* memory, void* block, uint64_t size) {
    if (block) uncount_bytes(memory, counted_size(size));
    asn1_free(block);
}

// ---- big integers -----------------------------------------------------------------------------------------

// Counts `limbs` limbs before the arithmetic takes them.
inline bool count_limbs(decode_memory* memory, uint64_t limbs) {
    return count_bytes(memory, limbs * sizeof(uint32_t));
}

inline void uncount_limbs(decode_memory* memory, uint64_t limbs) {
    uncount_bytes(memory, limbs * sizeof(uint32_t));
}

// Limbs that are alive at the most while a sum or difference of numbers of so many limbs is made.
inline uint64_t limbs_of_sum(uint32_t a, uint32_t b) { return 3 * (uint64_t{a > b ? a : b} + 1); }

// Fills an absent DEFAULT component in. 0, or -1 without memory.
inline int fill_default(decode_memory* memory, void* record, const asn1_field* field) {
    if (holds_big_integer(field_type(field)) && !count_limbs(memory, field->extra.integer->size)) return -1;
    return asn1_sequence_set_default_value(record, field);
}

// The same for all `n` components that were not seen.
inline int fill_defaults(decode_memory* memory, const asn1_field* fields, uint32_t n, void* record,
                         const uint8_t* seen) {
    for (uint32_t i = 0; i < n; ++i) {
        if (seen[i] != 0 || field_option(&fields[i]) != ASN1_OPTION_DEFAULT) continue;
        if (fill_default(memory, record, &fields[i]) != 0) return -1;
    }
    return 0;
}

}  // namespace orlenta
