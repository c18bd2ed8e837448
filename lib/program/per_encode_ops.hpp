// SPDX-License-Identifier: Apache-2.0
// PER by a program. What is unusual ends the run, and the walker encodes the value or finds the report.
//
// Whoever includes this has said by `kIsAligned` which of the two it is to be: one source, compiled twice.
#pragma once

#include <orlenta/memory.h>

#include "core/stack.hpp"
#include "per/char_params.hpp"
#include "per/piece.hpp"
#include "per/widths.hpp"
#include "program/per_encode.hpp"

namespace orlenta::program {

namespace {

struct encoder {
    per::bit_sink sink;
    const program* code;
    stack_guard stack;
    uint32_t walker_pieces;
};

}  // namespace

#define HOT static inline __attribute__((always_inline))
#define WARM static __attribute__((noinline))  // so that small ops pay for no large frame
#define COLD static __attribute__((noinline, cold))

static bool encode_op(encoder* e, const op* o, const uint8_t* value);
static bool encode_sequence(encoder* e, const sequence* s, const uint8_t* record);
WARM bool encode_fork(encoder* e, const sequence* s, const uint8_t* record);
WARM bool encode_list(encoder* e, const op* o, const asn1_array* array);
WARM bool encode_choice(encoder* e, const op* o, const uint8_t* record);

HOT void put(encoder* e, uint32_t width, uint64_t bits) { per::put_bits(&e->sink, width, bits); }

HOT void put_field(encoder* e, uint32_t width, uint64_t bits) {
    if (width != 0) put(e, width, bits);
}

// Bits up to the next octet boundary behind `width` more.
HOT uint32_t padding_behind(const encoder* e, uint32_t width) { return -(e->sink.pending_count + width) & 7; }

// As put_field, where a call is no matter.
WARM void put_few(encoder* e, uint32_t width, uint64_t bits) { put_field(e, width, bits); }

static inline void align(encoder* e) { put_few(e, padding_behind(e, 0), 0); }

// A field that begins on an octet boundary.
HOT void put_aligned(encoder* e, uint32_t width, uint64_t bits) {
    put_field(e, padding_behind(e, 0) + width, bits);
}

// ---- the walker ---------------------------------------------------------------------------------------------

COLD bool by_walker(encoder* e, const op* o, const void* value) {
    ++e->walker_pieces;
    return per::encode_one(&e->sink, kIsAligned, &e->stack, e->code->types[o->type], value) == 0;
}

// ---- leaves -------------------------------------------------------------------------------------------------

HOT bool encode_leaf(encoder* e, const op* o, const uint8_t* value) {
    uint32_t number = load32(value) - o->low;
    if (__builtin_expect(number > o->range, 0)) return by_walker(e, o, value);
    put_field(e, o->width, number);
    return true;
}

HOT bool encode_aligned_leaf(encoder* e, const op* o, const uint8_t* value) {
    uint32_t number = load32(value) - o->low;
    if (__builtin_expect(number > o->range, 0)) return by_walker(e, o, value);
    put_aligned(e, o->width, number);
    return true;
}

HOT bool is_there(const option& one, const uint8_t* record) {
    return load32(record + one.offset) != one.absent;
}

HOT bool any_there(const option* options, uint32_t count, const uint8_t* record) {
    bool any = false;
    for (uint32_t i = 0; i < count; ++i) any |= is_there(options[i], record);
    return any;
}

// A group as the components that it was made of.
COLD bool encode_singly(encoder* e, const group* g, const uint8_t* record) {
    const op* one = &e->code->ops[g->ops];
    for (const op* end = one + g->op_count; one != end; ++one) {
        if (!encode_op(e, one, record + one->offset)) return false;
    }
    return true;
}

// Adds leaves to a window; true if a number is beyond its range.
HOT bool load_leaves(const leaf* one, const leaf* end, const uint8_t* record, uint64_t* window) {
    uint64_t beyond = 0;  // its top bit
    for (; one != end; ++one) {
        uint32_t number = load32(record + (one->place >> 8)) - one->low;
        beyond |= uint64_t{one->range} - number;
        *window |= uint64_t{number} << (one->place & 63);
    }
    return beyond >> 63 != 0;
}

// The gates stay 0: with an addition behind one of them the group goes out singly.
HOT bool encode_group(encoder* e, const op* o, const uint8_t* record, bool aligned = false) {
    uint64_t bits = 0;
    const leaf* leaves = &e->code->leaves[o->part];
    bool is_beyond = load_leaves(leaves + o->gates, leaves + o->count, record, &bits);
    const group* g = &e->code->groups[o->low];
    bool is_extended = o->gates != 0 && any_there(&e->code->options[g->options], g->option_count, record);
    if (__builtin_expect(is_beyond || is_extended, 0)) return encode_singly(e, g, record);
    uint32_t padding = aligned ? padding_behind(e, 0) : 0;
    put_field(e, padding + o->width, per::top_bits(bits, o->width));
    return true;
}

HOT bool encode_marked_leaf(encoder* e, const op* o, const uint8_t* value) {
    uint32_t number = load32(value) - o->low;
    if (__builtin_expect(number > o->range, 0)) return by_walker(e, o, value);
    put(e, 1 + padding_behind(e, 1) + o->width, number);
    return true;
}

HOT bool encode_counted_leaf(encoder* e, const op* o, const uint8_t* value) {
    uint32_t number = load32(value) - o->low;
    if (__builtin_expect(number > o->range, 0)) return by_walker(e, o, value);
    uint32_t octets = per::octet_count(number);
    uint32_t width = padding_behind(e, 2) + 8 * octets;
    put(e, 2 + width, uint64_t{octets - 1} << width | number);
    return true;
}

// A number of 64 bits, negative ones in two's complement; false if it has more, or leading zeros.
HOT bool load_number(const asn1_integer* value, uint64_t* number) {
    if (value->size > 2 || (value->size != 0 && !value->limbs)) return false;
    *number = value->size > 0 ? value->limbs[0] : 0;
    if (value->size > 1) *number |= uint64_t{value->limbs[1]} << 32;
    bool is_normal = value->size == 0 || value->limbs[value->size - 1] != 0;
    if (value->negative != 0) *number = 0 - *number;
    return is_normal;
}

WARM bool encode_big_integer(encoder* e, const op* o, const asn1_integer* value) {
    uint64_t number, lower = 0;
    if (!load_number(value, &number)) return by_walker(e, o, value);
    if (o->count != 0) {
        big_bounds bounds = big_bounds_of(e->code->types[o->type]);
        if (asn1_integer_cmp(value, bounds.lower) < 0 || asn1_integer_cmp(value, bounds.upper) > 0)
            return false;
        load_number(bounds.lower, &lower);
        number -= lower;
    } else if (value->negative != 0) {
        return by_walker(e, o, value);
    }
    if (number > (uint64_t{o->range} << 32 | o->low)) return false;
    if (o->kind == kCountedBigInteger) {
        uint32_t octets = (71 - static_cast<uint32_t>(__builtin_clzll(number | 1))) / 8;
        put_few(e, o->width, octets - 1);
        align(e);
        put_few(e, 8 * octets, number);
    } else {
        put_few(e, o->width, number);
    }
    return true;
}

WARM bool encode_aligned_op(encoder* e, const op* o, const uint8_t* value);

// An op that is none of the most frequent, but for ALIGNED PER.
HOT bool encode_next(encoder* e, const op* o, const uint8_t* value) {
    if (!kIsAligned || o->kind < kAlignedLeaf) return encode_op(e, o, value);
    switch (o->kind) {
        case kAlignedLeaf: return encode_aligned_leaf(e, o, value);
        case kAlignedGroup: return encode_group(e, o, value, true);
        case kCountedLeaf: return encode_counted_leaf(e, o, value);
        default: return encode_aligned_op(e, o, value);
    }
}

// ---- SEQUENCE with variants ---------------------------------------------------------------------------------

// Writes the preamble and the leaves that follow it; null, with nothing written, if they do not fit a variant.
HOT const variant* encode_head(encoder* e, const sequence* s, const uint8_t* record) {
    const option* options = &e->code->options[s->options];
    const variant* v = &e->code->variants[s->variants];
    if (s->option_count == 1) {
        v = step_if(v, is_there(options[0], record), 1);
    } else if (s->option_count == 2) {
        v = step_if(v, is_there(options[0], record), 2);
        v = step_if(v, is_there(options[1], record), 1);
    }
    const leaf* leaves = &e->code->leaves[v->leaves];
    uint64_t bits = v->preamble;
    bool is_other = load_leaves(leaves + v->gates, leaves + v->count, record, &bits);
    is_other |= any_there(&e->code->options[v->options], v->option_count, record);
    is_other |= any_there(&e->code->options[s->addition_options], s->addition_count, record);
    if (__builtin_expect(is_other, 0)) return nullptr;
    put_field(e, v->width, per::top_bits(bits, v->width));
    return v;
}

WARM bool encode_tail(encoder* e, const variant* v, const uint8_t* record) {
    const op* o = &e->code->ops[v->ops];
    bool is_done = true;
    for (const op* end = o + v->op_count; o != end && is_done; ++o) {
        const uint8_t* value = record + o->offset;
        switch (o->kind) {
            case kLeaf: is_done = encode_leaf(e, o, value); break;
            case kGroup: is_done = encode_group(e, o, value); break;
            case kFork: is_done = encode_fork(e, &e->code->sequences[o->part], value); break;
            case kList: is_done = encode_list(e, o, reinterpret_cast<const asn1_array*>(value)); break;
            case kChoice: is_done = encode_choice(e, o, value); break;
            default: is_done = encode_next(e, o, value); break;
        }
    }
    return is_done;
}

// What fits no variant is encoded in the general way.
WARM bool encode_fork(encoder* e, const sequence* s, const uint8_t* record) {
    const variant* v = encode_head(e, s, record);
    if (__builtin_expect(v == nullptr, 0)) return encode_sequence(e, s, record);
    return v->op_count == 0 || encode_tail(e, v, record);
}

// The same, in a list, whose elements often have nothing behind the head.
HOT bool encode_forks(encoder* e, const sequence* s, const uint8_t* at, const uint8_t* end, uint64_t stride) {
    bool is_done = true;
    for (; at != end && is_done; at += stride) {
        const variant* v = encode_head(e, s, at);
        if (__builtin_expect(v == nullptr, 0)) {
            is_done = encode_sequence(e, s, at);
        } else if (v->op_count != 0) {
            is_done = encode_tail(e, v, at);
        }
    }
    return is_done;
}

// ---- strings and lists --------------------------------------------------------------------------------------

// Width of a general length; 0 where it takes fragments.
HOT uint32_t general_width(uint64_t length) { return length < 128 ? 8 : length <= 16383 ? 16 : 0; }

HOT uint64_t general_bits(uint64_t length) { return length < 128 ? length : 0x8000 | length; }

// The length, and what stands between it and the contents. False, with nothing written, if the length has a form that the
// walker knows, or none.
HOT bool put_length(encoder* e, const op* o, uint64_t length) {
    uint64_t bits = length - o->low;
    uint32_t width = o->width;
    bool aligned = kIsAligned && (o->alignment & kAlignLength) != 0;
    if (width == kGeneralLength) {
        width = general_width(length);
        if (width == 0 || length < o->low) return false;
        bits = general_bits(length);
        aligned = kIsAligned;
    } else if (bits > o->range) {
        return false;
    }
    put_field(e, width + (aligned ? padding_behind(e, 0) : 0), bits);
    if (kIsAligned && (o->alignment & kAlignContents) != 0) align(e);
    return true;
}

// Of octets or bits: both records are alike.
WARM bool encode_string(encoder* e, const op* o, const asn1_string* string) {
    if (string->length != 0 && !string->data) return false;
    if (!put_length(e, o, string->length)) return by_walker(e, o, string);
    put_bits_of(&e->sink, string->data, o->kind == kBits ? string->length : string->length * 8);
    return true;
}

// Adds a character to a word. One that is too wide damages what is before it, in the walker's way: false.
HOT bool add_char(const op* o, const char_string_layout& alphabet, uint32_t code, uint64_t* word) {
    uint32_t range_count = static_cast<uint32_t>(alphabet.range_count);
    bool has_place = o->kind == kChars || per::find_position(alphabet.ranges, range_count, &code);
    *word = *word << o->count | code;
    return has_place && code >> o->count == 0;
}

WARM bool encode_chars(encoder* e, const op* o, const asn1_string* string) {
    if (string->length != 0 && !string->data) return false;
    if (!put_length(e, o, string->length)) return by_walker(e, o, string);
    char_string_layout alphabet = char_string_of(e->code->types[o->type]);
    uint32_t batch = kWindowBits / o->count;
    for (uint64_t i = 0; i < string->length;) {
        uint64_t left = string->length - i;
        uint32_t count = left < batch ? static_cast<uint32_t>(left) : batch;
        uint64_t word = 0;
        for (uint32_t k = 0; k < count; ++k, ++i) {
            if (!add_char(o, alphabet, string->data[i], &word)) return false;
        }
        put_few(e, count * o->count, word);
    }
    return true;
}

WARM bool encode_list(encoder* e, const op* o, const asn1_array* array) {
    if ((array->count != 0 && !array->data) || !has_stack(&e->stack)) return false;
    if (!put_length(e, o, array->count)) return by_walker(e, o, array);
    const list* l = &e->code->lists[o->part];
    const op* element = &e->code->ops[l->element];
    const uint8_t* at = static_cast<const uint8_t*>(array->data);
    const uint8_t* end = at + l->stride * array->count;
    if (element->kind == kLeaf) {
        for (at += element->offset, end += element->offset; at != end; at += l->stride) {
            if (!encode_leaf(e, element, at)) return false;
        }
    } else if (element->kind == kFork) {
        return encode_forks(e, &e->code->sequences[element->part], at, end, l->stride);
    } else if (element->kind == kGroup) {
        for (; at != end; at += l->stride) {
            if (!encode_group(e, element, at)) return false;
        }
    } else if (element->kind == kSequence) {
        const sequence* s = &e->code->sequences[element->part];
        for (; at != end; at += l->stride) {
            if (!encode_sequence(e, s, at)) return false;
        }
    } else {
        for (; at != end; at += l->stride) {
            if (!encode_op(e, element, at + element->offset)) return false;
        }
    }
    return true;
}

// ---- open types ---------------------------------------------------------------------------------------------

// Contents are written in place behind one octet for their length. A length of two octets moves them up by one.
HOT uint64_t begin_wrapped(encoder* e) {
    if (kIsAligned) align(e);
    uint64_t start = bits_written(e->sink);
    put_few(e, 8, 0);
    return start;
}

// Completes the contents: at least one octet, and whole ones. Their length in octets.
static uint64_t complete_contents(encoder* e, uint64_t start) {
    uint64_t bits = bits_written(e->sink) - start - 8;
    if (bits == 0) put_few(e, 8, 0);
    if (bits % 8 != 0) put_few(e, 8 - bits % 8, 0);
    return (bits_written(e->sink) - start - 8) / 8;
}

// Adds bits to zeros in memory, 24 from the one at `start` on at the most.
static void patch(uint8_t* octets, uint64_t start, uint32_t width, uint32_t bits) {
    bits <<= 32 - width - start % 8;
    for (octets += start / 8; bits != 0; bits <<= 8) *octets++ |= static_cast<uint8_t>(bits >> 24);
}

static bool end_wrapped(encoder* e, uint64_t start) {
    uint64_t length = complete_contents(e, start);
    per::bit_sink* sink = &e->sink;
    asn1_byte_buffer* buffer = &sink->buffer;
    if (length > 16383 || !per::make_room(buffer, 24) || buffer->failed) return false;
    // All bits go to memory, zeros behind them, and those behind the last whole word are taken back at the end.
    per::store_window(buffer->data + buffer->length, sink->pending);
    if (length < 128) {
        patch(buffer->data, start, 8, static_cast<uint32_t>(length));
    } else {
        // Of the octet in which the contents begin, the length has the bits above them, which are zero.
        uint8_t* contents = buffer->data + start / 8 + 1;
        uint8_t* end = buffer->data + buffer->length + sizeof sink->pending;
        memmove(contents + 1, contents, static_cast<size_t>(end - contents));
        *contents = 0;
        patch(buffer->data, start, 16, 0x8000 | static_cast<uint32_t>(length));
        sink->pending_count += 8;
    }
    if (sink->pending_count >= 64) {
        buffer->length += 8;
        sink->pending_count -= 64;
    }
    uint64_t last = per::load_window(buffer->data + buffer->length);
    sink->pending = sink->pending_count == 0 ? 0 : last & UINT64_MAX << (64 - sink->pending_count);
    return true;
}

static bool encode_wrapped(encoder* e, const op* o, const uint8_t* value) {
    uint64_t start = begin_wrapped(e);
    return has_stack(&e->stack) && encode_op(e, o, value) && end_wrapped(e, start);
}

static const open_type_row* find_row(const encoder* e, const op* o, const asn1_type_desc* type) {
    const row_range& range = e->code->row_ranges[e->code->open_types[o->part].rows];
    const open_type_row* row = &e->code->rows[range.first];
    for (const open_type_row* end = row + range.count; row != end; ++row) {
        if (e->code->types[row->type] == type) return row;
    }
    return nullptr;
}

WARM bool encode_open_type(encoder* e, const op* o, const asn1_open_value* open) {
    if (!open->type) {
        if (open->length != 0 && !open->data) return false;
        uint32_t width = general_width(open->length);
        if (width == 0) return by_walker(e, o, open);
        if (kIsAligned) align(e);
        put_few(e, width, general_bits(open->length));
        put_bits_of(&e->sink, static_cast<const uint8_t*>(open->data), open->length * 8);
        return true;
    }
    const open_type_row* row = open->data ? find_row(e, o, open->type) : nullptr;
    if (!row) return by_walker(e, o, open);
    return encode_wrapped(e, &e->code->ops[row->op], static_cast<const uint8_t*>(open->data));
}

WARM bool encode_indirect(encoder* e, const op* o, const uint8_t* value) {
    const void* inner = load_pointer(value);
    if (!inner || !has_stack(&e->stack)) return false;
    return encode_op(e, &e->code->ops[o->part], static_cast<const uint8_t*>(inner));
}

// ---- CHOICE -------------------------------------------------------------------------------------------------

WARM bool encode_choice(encoder* e, const op* o, const uint8_t* record) {
    const choice* c = &e->code->choices[o->part];
    uint32_t selector = load32(record + c->selector);
    const op* alternative = &e->code->ops[c->ops] + selector;
    if (__builtin_expect(selector <= o->range, 1)) {
        put_field(e, o->width, selector);
        const uint8_t* value = record + c->payload;
        if (alternative->kind == kGroup) return encode_group(e, alternative, value);
        return encode_op(e, alternative, value);
    }
    // An index of 64 or more behind the marker is the walker's.
    if (selector >= c->total) return false;
    if (selector - c->root >= 64) return by_walker(e, o, record);
    put_few(e, 8, 0x80 | (selector - c->root));
    return encode_wrapped(e, alternative, record + c->payload);
}

// ---- SEQUENCE -----------------------------------------------------------------------------------------------

static bool encode_members(encoder* e, const sequence* s, const extension_unit& unit, const uint8_t* record) {
    const op* member = &e->code->ops[s->additions + unit.first];
    const option* options = &e->code->options[s->addition_options + unit.first];
    const uint8_t* has_bit = &e->code->flags[s->has_preamble_bit + unit.first];
    for (uint32_t i = 0; i < unit.count; ++i) {
        if (has_bit[i]) put_few(e, 1, is_there(options[i], record));
    }
    for (uint32_t i = 0; i < unit.count; ++i, ++member) {
        if (is_there(options[i], record) && !encode_op(e, member, record + member->offset)) return false;
    }
    return true;
}

static bool encode_unit(encoder* e, const sequence* s, const extension_unit& unit, const uint8_t* record) {
    const op* first = &e->code->ops[s->additions + unit.first];
    if (!unit.is_group) return encode_wrapped(e, first, record + first->offset);
    uint64_t start = begin_wrapped(e);
    return encode_members(e, s, unit, record) && end_wrapped(e, start);
}

// The bitmap and the units that are there; one wider than a window is the walker's.
COLD bool encode_additions(encoder* e, const sequence* s, const uint8_t* record) {
    const extension_unit* units = &e->code->extension_units[s->units];
    const option* options = &e->code->options[s->addition_options];
    if (s->unit_count > kWindowBits) return false;
    uint64_t bitmap = 0;
    for (uint32_t i = 0; i < s->unit_count; ++i) {
        bitmap = bitmap << 1 | any_there(options + units[i].first, units[i].count, record);
    }
    put_few(e, 7, s->unit_count - 1u);
    put_few(e, s->unit_count, bitmap);
    for (uint32_t i = 0; i < s->unit_count; ++i) {
        bool is_present = bitmap >> (s->unit_count - 1 - i) & 1;
        if (is_present && !encode_unit(e, s, units[i], record)) return false;
    }
    return true;
}

// Runs ops: bit 63 is the first one's.
HOT bool run_ops(encoder* e, const op* o, uint64_t todo, const uint8_t* record) {
    for (; todo != 0; todo <<= 1, ++o) {
        // A branch, not arithmetic: the address of an op does not wait for the preamble.
        if (todo >> 63 == 0) continue;
        const uint8_t* value = record + o->offset;
        bool is_done;
        switch (o->kind) {
            case kLeaf: is_done = encode_leaf(e, o, value); break;
            case kGroup: is_done = encode_group(e, o, value); break;
            case kSequence: is_done = encode_sequence(e, &e->code->sequences[o->part], value); break;
            case kFork: is_done = encode_fork(e, &e->code->sequences[o->part], value); break;
            case kList: is_done = encode_list(e, o, reinterpret_cast<const asn1_array*>(value)); break;
            case kChoice: is_done = encode_choice(e, o, value); break;
            default: is_done = encode_next(e, o, value); break;
        }
        if (!is_done) return false;
    }
    return true;
}

static bool encode_sequence(encoder* e, const sequence* s, const uint8_t* record) {
    uint64_t todo = s->always;
    bool is_extended = false;
    if (s->width != 0) {
        uint64_t preamble = 0;
        if (s->addition_count != 0) {
            is_extended = any_there(&e->code->options[s->addition_options], s->addition_count, record);
            preamble = is_extended;
        }
        const option* one = &e->code->options[s->options];
        for (const option* end = one + s->option_count; one != end; ++one) {
            preamble = preamble << 1 | is_there(*one, record);
        }
        put(e, s->width, preamble);
        preamble = preamble << (63 - s->option_count) << 1;
        const preamble_run* run = &e->code->preamble_runs[s->runs];
        for (uint32_t i = s->run_count; i > 0; --i, ++run) todo |= (preamble & run->mask) >> run->shift;
    }
    if (!run_ops(e, &e->code->ops[s->ops], todo, record)) return false;
    return !is_extended || encode_additions(e, s, record);
}

// ---- any op -------------------------------------------------------------------------------------------------

// Those of ALIGNED PER alone.
WARM bool encode_aligned_op(encoder* e, const op* o, const uint8_t* value) {
    switch (o->kind) {
        case kAlignedLeaf: return encode_aligned_leaf(e, o, value);
        case kAlignedGroup: return encode_group(e, o, value, true);
        case kMarkedLeaf: return encode_marked_leaf(e, o, value);
        case kCountedLeaf: return encode_counted_leaf(e, o, value);
        case kCountedBigInteger:
            return encode_big_integer(e, o, reinterpret_cast<const asn1_integer*>(value));
        default: return by_walker(e, o, value);
    }
}

static bool encode_op(encoder* e, const op* o, const uint8_t* value) {
    switch (o->kind) {
        case kLeaf: return encode_leaf(e, o, value);
        case kGroup: return encode_group(e, o, value);
        case kSequence: return encode_sequence(e, &e->code->sequences[o->part], value);
        case kFork: return encode_fork(e, &e->code->sequences[o->part], value);
        case kList: return encode_list(e, o, reinterpret_cast<const asn1_array*>(value));
        case kChoice: return encode_choice(e, o, value);
        case kOctets:
        case kBits: return encode_string(e, o, reinterpret_cast<const asn1_string*>(value));
        case kChars:
        case kMappedChars: return encode_chars(e, o, reinterpret_cast<const asn1_string*>(value));
        case kBigInteger: return encode_big_integer(e, o, reinterpret_cast<const asn1_integer*>(value));
        case kOpenType: return encode_open_type(e, o, reinterpret_cast<const asn1_open_value*>(value));
        case kIndirect: return encode_indirect(e, o, value);
        case kNull: return true;
        default: return kIsAligned ? encode_aligned_op(e, o, value) : by_walker(e, o, value);
    }
}

static encode_result run_encode(const orlenta_codec* codec, rule rule, uint8_t** out, const void* value) {
    const rule_program* code = program_for(codec, rule);
    *out = nullptr;
    if (!code) return {false, 0, 0};
    encoder e;
    e.sink = {};
    e.code = code->code;
    e.stack = begin_stack();
    e.walker_pieces = 0;
    const op* root = &code->code->ops[code->root];
    bool is_done = encode_op(&e, root, static_cast<const uint8_t*>(value));
    if (is_done && bits_written(e.sink) == 0) put_few(&e, 8, 0);  // X.691 clause 11.1
    is_done = is_done && flush(&e.sink) == 0;
    if (!is_done) {
        asn1_free(e.sink.buffer.data);
        e.sink.buffer = {};
    }
    *out = e.sink.buffer.data;
    return {is_done, e.sink.buffer.length, e.walker_pieces};
}

}  // namespace orlenta::program
