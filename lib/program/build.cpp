// SPDX-License-Identifier: Apache-2.0
// Makes a codec. A program is the builder's arrays, laid one behind the other in one block.
#include "program/build.hpp"

#include <orlenta/value.h>
#include <string.h>

#include "program/codec.hpp"

namespace orlenta::program {

static uint64_t padded(uint64_t size) { return (size + 7) & ~UINT64_C(7); }

template <typename T>
static uint64_t size_of(const growing<T>& array) {
    return padded(array.count * sizeof(T));
}

void* grow_block(builder* b, void* block, uint64_t size, uint64_t* capacity, uint64_t needed) {
    if (needed < 2 * *capacity) needed = 2 * *capacity;
    if (needed < 16) needed = 16;
    if (__asn1_realloc_buf(&block, size, capacity, needed, 0) == 0) return block;
    b->failed = true;
    return nullptr;
}

// Copies to the block, and returns where it stood.
static __attribute__((noinline)) uint8_t* append(uint8_t** block, const void* items, uint64_t size) {
    uint8_t* to = *block;
    if (size != 0) memcpy(to, items, size);
    *block += padded(size);
    return to;
}

template <typename T>
static void move_to(uint8_t** block, growing<T>* from, const T** to) {
    *to = reinterpret_cast<const T*>(append(block, from->items, from->count * sizeof(T)));
}

static uint64_t total_size(const builder& b) {
    uint64_t size = 0;
#define ORLENTA_ARRAY(type, name) size += size_of(b.name);
    ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
    return size;
}

static void move_arrays(builder* b, uint8_t* block, program* to) {
#define ORLENTA_ARRAY(type, name) move_to(&block, &b->name, &to->name);
    ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
}

void begin_builder(builder* b, rule rule) {
    b->aligned = rule == kAligned;
    b->octets = rule == kOer;
    reserve_item(b, &b->row_ranges);  // the set of no rows
}

void free_builder(builder* b) {
#define ORLENTA_ARRAY(type, name) asn1_free(b->name.items);
    ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
    asn1_free(b->known.items);
    asn1_free(b->type_at.slots);
    asn1_free(b->row_sets.entries);
    free_spare_parts(b);
}

static const rule_program* finish_program(builder* b, uint32_t root) {
    uint64_t head = padded(sizeof(rule_program)) + padded(sizeof(program));
    uint8_t* block = static_cast<uint8_t*>(asn1_malloc(head + total_size(*b)));
    if (!block) return nullptr;
    rule_program* made = reinterpret_cast<rule_program*>(block);
    program* code = reinterpret_cast<program*>(block + padded(sizeof(rule_program)));
    *made = {root, code};
    move_arrays(b, block + head, code);
    return made;
}

const rule_program* build_program(const asn1_type_desc* type, rule rule) {
    builder b = {};
    begin_builder(&b, rule);
    uint32_t root = whole_op(&b, type);
    const rule_program* made = b.failed ? nullptr : finish_program(&b, root);
    free_builder(&b);
    return made;
}

static void free_program(const rule_program* made) { asn1_free(const_cast<rule_program*>(made)); }

const rule_program* make_program(const orlenta_codec* codec, rule rule) {
    if (codec->is_constant) return nullptr;
    const rule_program* made = build_program(codec->type, rule);
    const rule_program* first = nullptr;
    auto* place = const_cast<const rule_program**>(&codec->programs[rule]);
    if (!made ||
        __atomic_compare_exchange_n(place, &first, made, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE)) {
        return made;
    }
    free_program(made);  // another thread was faster
    return first;
}

}  // namespace orlenta::program

using namespace orlenta::program;

orlenta_codec* orlenta_codec_new(const asn1_type_desc* type) {
    if (orlenta::kind_of(type) > ASN1_KIND_ANY) return nullptr;  // no values
    orlenta_codec* codec = static_cast<orlenta_codec*>(asn1_mallocz(sizeof(orlenta_codec)));
    if (!codec) return nullptr;
    codec->format = kFormat;
    codec->type = type;
    codec->record_size = static_cast<uint64_t>(asn1_get_size(type));
    if (make_program(codec, kUnaligned)) return codec;
    asn1_free(codec);
    return nullptr;
}

void orlenta_codec_free(orlenta_codec* codec) {
    if (!codec) return;
    for (const rule_program* made : codec->programs) free_program(made);
    asn1_free(codec);
}
