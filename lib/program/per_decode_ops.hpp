// SPDX-License-Identifier: Apache-2.0
// PER by a program. The position travels in a register: each function takes it and returns the next one. Nothing is
// recorded on the way: a failure ends the run, and the walker finds the report.
//
// Whoever includes this has said by `kIsAligned` which of the two it is to be: one source, compiled twice.
#pragma once

#include <orlenta/memory.h>

#include "per/char_params.hpp"
#include "per/decode_numbers.hpp"
#include "per/piece.hpp"
#include "program/per_decode.hpp"

namespace orlenta::program {

namespace {

using per::top_bits;

// In bits.
typedef position_or_failure bit_position;

struct decoder : decode_state {
    per::bit_source source;  // but for its position
};

}  // namespace

#define HOT static inline __attribute__((always_inline))
#define WARM static __attribute__((noinline))  // so that small ops pay for no large frame
#define COLD static __attribute__((noinline, cold))

static bit_position decode_op(decoder* d, const op* o, uint8_t* value, bit_position position);
static bit_position decode_sequence(decoder* d, const sequence* s, uint8_t* record, bit_position position);
WARM bit_position decode_fork(decoder* d, const sequence* s, uint8_t* record, bit_position position);
WARM bit_position decode_list(decoder* d, const op* o, asn1_array* array, bit_position position);
WARM bit_position decode_choice(decoder* d, const op* o, uint8_t* record, bit_position position);

HOT bool has_bits(const decoder* d, bit_position position, uint64_t count) {
    return position + count <= d->source.end;
}
HOT uint64_t window_at(const decoder* d, bit_position position) {
    return per::window_at(d->source, position);
}

// The next octet boundary, which every end of contents is as well.
HOT bit_position align(bit_position position) { return (position + 7) & ~UINT64_C(7); }

// Whether a number has its extension bit set.
HOT bool is_extended(const op* o, uint64_t number) {
    return o->extensible != 0 && number >> (o->width - 1) != 0;
}

// ---- the walker ---------------------------------------------------------------------------------------------

// The walker's blocks are no part of an arena.
COLD bit_position by_walker(decoder* d, const op* o, void* value, bit_position position) {
    if (d->arena && !is_flat(d->code->types[o->type])) return kNotMine;
    ++d->walker_pieces;
    per::decode_piece piece = {d->source, kIsAligned, d->frames, d->stack, d->memory};
    piece.source.position = position;
    int result = per::decode_one(&piece, d->code->types[o->type], value);
    d->stack = piece.stack;
    d->memory = piece.memory;
    return result == 0 ? piece.source.position : kNotMine;
}

// What is not a number of the root: an extension's, which the walker reads, or none.
COLD bit_position decode_other_leaf(decoder* d, const op* o, void* value, bit_position position) {
    bool is_extension = o->extensible != 0 && has_bits(d, position, 1) && window_at(d, position) >> 63 != 0;
    return is_extension ? by_walker(d, o, value, position) : kRefused;
}

// ---- leaves -------------------------------------------------------------------------------------------------

HOT bit_position decode_leaf(decoder* d, const op* o, uint8_t* value, bit_position position) {
    uint64_t number = top_bits(window_at(d, position), o->width);
    if (__builtin_expect(!has_bits(d, position, o->width) || number > o->range, 0)) {
        return decode_other_leaf(d, o, value, position);
    }
    store32(value, o->low + static_cast<uint32_t>(number));
    return position + o->width;
}

// Stores the leaves of a window; true if a number is beyond its range.
HOT bool store_leaves(const leaf* one, const leaf* end, uint64_t window, uint8_t* record) {
    uint64_t beyond = 0;  // its top bit
    for (; one != end; ++one) {
        uint32_t number = static_cast<uint32_t>(window >> (one->place & 63)) & one->mask;
        beyond |= uint64_t{one->range} - number;
        store32(record + (one->place >> 8), one->low + number);
    }
    return beyond >> 63 != 0;
}

// A group as the components that it was made of.
COLD bit_position decode_singly(decoder* d, const op* o, uint8_t* record, bit_position position) {
    const group* g = &d->code->groups[o->low];
    const op* one = &d->code->ops[g->ops];
    for (const op* end = one + g->op_count; one != end && !is_failure(position); ++one) {
        position = decode_op(d, one, record + one->offset, position);
    }
    return position;
}

HOT bit_position decode_group(decoder* d, const op* o, uint8_t* record, bit_position position) {
    if (__builtin_expect(!has_bits(d, position, o->width), 0)) return decode_singly(d, o, record, position);
    const leaf* leaves = &d->code->leaves[o->part];
    bool is_beyond = store_leaves(leaves, leaves + o->count, window_at(d, position), record);
    if (__builtin_expect(is_beyond, 0)) return decode_singly(d, o, record, position);
    return position + o->width;
}

// A count of octets, less one, in `width` bits, and the octets, eight at the most; stands behind them.
HOT bit_position get_counted(decoder* d, bit_position position, uint32_t width, uint32_t* octets,
                             uint64_t* number) {
    if (!has_bits(d, position, width)) return kRefused;
    *octets = static_cast<uint32_t>(top_bits(window_at(d, position), width)) + 1;
    position = align(position + width);
    if (!has_bits(d, position, 8 * *octets)) return kRefused;
    *number = window_at(d, position) >> (64 - 8 * *octets);
    return position + 8 * *octets;
}

HOT bit_position decode_marked_leaf(decoder* d, const op* o, uint8_t* value, bit_position position) {
    if (!has_bits(d, position, 1)) return kRefused;
    if (window_at(d, position) >> 63 != 0) return by_walker(d, o, value, position);
    position = align(position + 1);
    uint64_t number = top_bits(window_at(d, position), o->width);
    if (!has_bits(d, position, o->width) || number > o->range) return kRefused;
    store32(value, o->low + static_cast<uint32_t>(number));
    return position + o->width;
}

HOT bit_position decode_counted_leaf(decoder* d, const op* o, uint8_t* value, bit_position position) {
    uint32_t octets;
    uint64_t number;
    position = get_counted(d, position, 2, &octets, &number);
    if (__builtin_expect(is_failure(position) || number > o->range, 0)) return kRefused;
    store32(value, o->low + static_cast<uint32_t>(number));
    return position;
}

// Stores a number in as many limbs as its field has.
HOT bool set_limbs(decoder* d, asn1_integer* value, uint64_t number, uint32_t limbs) {
    value->limbs = static_cast<uint32_t*>(take_block(d, limbs * sizeof(uint32_t)));
    if (!value->limbs) return false;
    value->size = value->capacity = limbs;
    value->limbs[0] = static_cast<uint32_t>(number);
    if (limbs > 1) value->limbs[1] = static_cast<uint32_t>(number >> 32);
    asn1_integer_renorm(value);
    return true;
}

// A field that may be wider than a window is sure to be.
HOT uint64_t wide_bits(const decoder* d, bit_position position, uint32_t width) {
    if (width <= kWindowBits) return top_bits(window_at(d, position), width);
    uint64_t high = top_bits(window_at(d, position), width - 32);
    return high << 32 | window_at(d, position + width - 32) >> 32;
}

WARM bit_position decode_big_integer(decoder* d, const op* o, asn1_integer* value, bit_position position) {
    uint64_t number = 0;
    uint32_t octets = 0, limbs = o->part;
    if (d->arena && o->count != 0) return kNotMine;  // the arithmetic takes blocks of the allocator
    if (o->kind == kCountedBigInteger) {
        position = get_counted(d, position, o->width, &octets, &number);
        limbs = (octets + 3) / 4;
    } else if (has_bits(d, position, o->width)) {
        number = wide_bits(d, position, o->width);
        position += o->width;
    } else {
        return kRefused;
    }
    if (is_failure(position) || number > (uint64_t{o->range} << 32 | o->low)) return kRefused;
    if (!set_limbs(d, value, number, limbs)) return kNoMemory;
    const asn1_type_desc* type = d->code->types[o->type];
    bool is_done = o->count == 0 || per::add_lower(&d->memory, value, big_bounds_of(type).lower);
    return is_done ? position : kNoMemory;
}

// ---- lengths ------------------------------------------------------------------------------------------------

HOT bit_position get_general_length(decoder* d, bit_position position, uint32_t* length) {
    if (kIsAligned) position = align(position);
    if (!has_bits(d, position, 8)) return kRefused;
    uint64_t window = window_at(d, position);
    *length = static_cast<uint32_t>(window >> 56);
    if (*length < 0x80) return position + 8;
    if (*length >= 0xC0) return kOtherForm;  // fragments
    if (!has_bits(d, position, 16)) return kRefused;
    *length = static_cast<uint32_t>(window >> 48) & 0x3FFF;
    return position + 16;
}

HOT bit_position get_length(decoder* d, const op* o, bit_position position, uint32_t* length) {
    if (o->width == kGeneralLength) {
        position = get_general_length(d, position, length);
        return *length < o->low && !is_failure(position) ? kRefused : position;
    }
    if (kIsAligned && (o->alignment & kAlignLength) != 0) position = align(position);
    if (!has_bits(d, position, o->width)) return o->extensible ? kOtherForm : kRefused;
    uint64_t number = top_bits(window_at(d, position), o->width);
    *length = o->low + static_cast<uint32_t>(number);
    if (__builtin_expect(number > o->range, 0)) return is_extended(o, number) ? kOtherForm : kRefused;
    return position + o->width;
}

// ---- strings ------------------------------------------------------------------------------------------------

// The first `count` octets (1 to 8) of a window.
HOT void store_top(uint8_t* out, uint64_t window, uint64_t count) {
    uint8_t octets[8];
    per::store_window(octets, window);
    if (count >= 4) {
        memcpy(out, octets, 4);
        memcpy(out + count - 4, octets + count - 4, 4);
    } else {
        out[0] = octets[0];
        out[count / 2] = octets[count / 2];
        out[count - 1] = octets[count - 1];
    }
}

// Copies `count` bits that are there to whole octets, the last one filled with zeros.
WARM void copy_many_bits(decoder* d, bit_position position, uint8_t* out, uint64_t count) {
    if (count > 2 * kWindowBits) {
        copy_octets(d->source, position, out, count / 8);
        out += count / 8;
        position += count / 8 * 8;
        count %= 8;
    }
    for (uint32_t now; count > 0; count -= now, position += now, out += 7) {
        now = count < 56 ? static_cast<uint32_t>(count) : 56;
        store_top(out, window_at(d, position) & UINT64_MAX << (64 - now), (now + 7) / 8);
    }
}

HOT void copy_bits(decoder* d, bit_position position, uint8_t* out, uint64_t count) {
    if (count > 56) return copy_many_bits(d, position, out, count);
    if (count != 0) store_top(out, window_at(d, position) & UINT64_MAX << (64 - count), (count + 7) / 8);
}

// What strings have in common: the length, and a block for as many units of `unit_bits`. A general length of 0 makes no
// block.
HOT bit_position begin_string(decoder* d, const op* o, asn1_string* string, bit_position position,
                              uint32_t unit_bits) {
    uint32_t length;
    position = get_length(d, o, position, &length);
    if (__builtin_expect(is_failure(position), 0)) return position;
    if (kIsAligned && (o->alignment & kAlignContents) != 0) position = align(position);
    if (!has_bits(d, position, uint64_t{length} * unit_bits)) return kRefused;
    if (length == 0 && o->width == kGeneralLength) return position;
    uint64_t size = o->kind == kBits ? (uint64_t{length} + 7) / 8 : length;
    string->data = static_cast<uint8_t*>(take_block(d, size));
    if (!string->data) return kNoMemory;
    string->length = length;
    return position;
}

HOT bit_position fail_string(decoder* d, const op* o, void* string, bit_position position,
                             bit_position failure) {
    return failure == kOtherForm ? by_walker(d, o, string, position) : failure;
}

// Of octets or bits: both records are alike.
WARM bit_position decode_string(decoder* d, const op* o, asn1_string* string, bit_position position) {
    uint32_t unit_bits = o->kind == kBits ? 1 : 8;
    bit_position contents = begin_string(d, o, string, position, unit_bits);
    if (is_failure(contents)) return fail_string(d, o, string, position, contents);
    uint64_t bits = string->length * unit_bits;
    copy_bits(d, contents, string->data, bits);
    return contents + bits;
}

// Puts the characters of their places in the alphabet in place of these; false if one has none.
static bool map_chars(const asn1_string* string, const char_string_layout& alphabet) {
    for (uint64_t i = 0; i < string->length; ++i) {
        uint32_t code = string->data[i];
        uint32_t range_count = static_cast<uint32_t>(alphabet.range_count);
        if (!per::find_code_point(alphabet.ranges, range_count, &code)) return false;
        string->data[i] = static_cast<uint8_t>(code);
    }
    return true;
}

WARM bit_position decode_chars(decoder* d, const op* o, asn1_string* string, bit_position position) {
    uint32_t width = o->count;
    bit_position contents = begin_string(d, o, string, position, width);
    if (is_failure(contents)) return fail_string(d, o, string, position, contents);
    uint32_t batch = kWindowBits / width;
    for (uint64_t i = 0; i < string->length;) {
        uint64_t window = window_at(d, contents);
        uint64_t left = string->length - i;
        uint32_t count = left < batch ? static_cast<uint32_t>(left) : batch;
        contents += count * width;
        for (; count > 0; --count, window <<= width) {
            string->data[i++] = static_cast<uint8_t>(window >> (64 - width));
        }
    }
    if (o->kind == kChars) return contents;
    return map_chars(string, char_string_of(d->code->types[o->type])) ? contents : kRefused;
}

WARM bit_position decode_aligned_op(decoder* d, const op* o, uint8_t* value, bit_position position);

// An op that is none of the most frequent, but for ALIGNED PER.
HOT bit_position decode_next(decoder* d, const op* o, uint8_t* value, bit_position position) {
    if (!kIsAligned || o->kind < kAlignedLeaf) return decode_op(d, o, value, position);
    switch (o->kind) {
        case kAlignedLeaf: return decode_leaf(d, o, value, align(position));
        case kAlignedGroup: return decode_group(d, o, value, align(position));
        case kCountedLeaf: return decode_counted_leaf(d, o, value, position);
        default: return decode_aligned_op(d, o, value, position);
    }
}

// ---- SEQUENCE with variants ---------------------------------------------------------------------------------

// Reads the preamble and the leaves that follow it; null if they do not fit a variant.
HOT const variant* decode_head(const decoder* d, const sequence* s, uint8_t* record, bit_position position) {
    uint64_t window = window_at(d, position);
    uint64_t preamble = window << s->extensible;
    if (__builtin_expect((window & uint64_t{s->extensible} << 63) != 0, 0)) return nullptr;
    const variant* v = &d->code->variants[s->variants];
    if (s->option_count == 1) {
        v = step_if(v, preamble >> 63 != 0, 1);
    } else if (s->option_count == 2) {
        v = step_if(v, preamble >> 63 != 0, 2);
        v = step_if(v, (preamble >> 62 & 1) != 0, 1);
    }
    const leaf* leaves = &d->code->leaves[v->leaves];
    bool is_beyond = store_leaves(leaves, leaves + v->count, window, record);
    if (__builtin_expect(is_beyond || !has_bits(d, position, v->width), 0)) return nullptr;
    return v;
}

WARM bit_position decode_tail(decoder* d, const variant* v, uint8_t* record, bit_position position) {
    const op* o = &d->code->ops[v->ops];
    for (const op* end = o + v->op_count; o != end && !is_failure(position); ++o) {
        uint8_t* value = record + o->offset;
        switch (o->kind) {
            case kLeaf: position = decode_leaf(d, o, value, position); break;
            case kGroup: position = decode_group(d, o, value, position); break;
            case kFork: position = decode_fork(d, &d->code->sequences[o->part], value, position); break;
            case kList: position = decode_list(d, o, reinterpret_cast<asn1_array*>(value), position); break;
            case kChoice: position = decode_choice(d, o, value, position); break;
            default: position = decode_next(d, o, value, position); break;
        }
    }
    return position;
}

// What fits no variant is decoded in the general way.
WARM bit_position decode_fork(decoder* d, const sequence* s, uint8_t* record, bit_position position) {
    const variant* v = decode_head(d, s, record, position);
    if (__builtin_expect(v == nullptr, 0)) return decode_sequence(d, s, record, position);
    position += v->width;
    return v->op_count == 0 ? position : decode_tail(d, v, record, position);
}

// The same, in a list, whose elements often have nothing behind the head.
HOT bit_position decode_forks(decoder* d, const sequence* s, uint8_t* at, const uint8_t* end, uint64_t stride,
                              bit_position position) {
    for (; at != end && !is_failure(position); at += stride) {
        const variant* v = decode_head(d, s, at, position);
        if (__builtin_expect(v == nullptr, 0)) {
            position = decode_sequence(d, s, at, position);
        } else {
            position += v->width;
            if (v->op_count != 0) position = decode_tail(d, v, at, position);
        }
    }
    return position;
}

// ---- lists --------------------------------------------------------------------------------------------------

// Elements that are leaves, as many at a time as a window holds.
HOT bit_position decode_leaves(decoder* d, const op* element, uint8_t* at, const uint8_t* end,
                               uint64_t stride, bit_position position) {
    uint32_t width = element->width, low = element->low;
    uint64_t range = element->range;
    uint64_t beyond = 0;  // its top bit, if a number is beyond its range
    bit_position next = position;
    uint8_t* each = at;
    while (each != end) {
        uint64_t window = window_at(d, next);
        uint32_t left = element->count;
        for (; left > 0 && each != end; --left, each += stride) {
            uint64_t number = top_bits(window, width);
            window <<= width;
            beyond |= range - number;
            store32(each, low + static_cast<uint32_t>(number));
        }
        next += (element->count - left) * width;
        if (__builtin_expect(next > d->source.end, 0)) break;
    }
    if (__builtin_expect(beyond >> 63 == 0 && next <= d->source.end, 1)) return next;
    for (; at != end && !is_failure(position); at += stride) position = decode_leaf(d, element, at, position);
    return position;
}

HOT bit_position decode_elements(decoder* d, const op* element, uint8_t* at, const uint8_t* end,
                                 uint64_t stride, bit_position position) {
    at += element->offset;
    end += element->offset;
    switch (element->kind) {
        case kLeaf: return decode_leaves(d, element, at, end, stride, position);
        case kGroup:
            for (; at != end && !is_failure(position); at += stride)
                position = decode_group(d, element, at, position);
            break;
        case kAlignedGroup:
            for (; at != end && !is_failure(position); at += stride)
                position = decode_group(d, element, at, align(position));
            break;
        case kSequence: {
            const sequence* s = &d->code->sequences[element->part];
            for (; at != end && !is_failure(position); at += stride)
                position = decode_sequence(d, s, at, position);
            break;
        }
        case kFork: return decode_forks(d, &d->code->sequences[element->part], at, end, stride, position);
        default:
            for (; at != end && !is_failure(position); at += stride)
                position = decode_op(d, element, at, position);
    }
    return position;
}

// Elements of a list that is too long to be taken at its word.
COLD bit_position decode_growing(decoder* d, const op* element, asn1_array* array, uint64_t stride,
                                 uint32_t count, bit_position position) {
    growing_list growing;
    if (!begin_elements(d, &growing, array, stride, count)) return kNoMemory;
    for (; count > 0 && !is_failure(position); --count) {
        void* at = next_element(d, &growing);
        if (!at) return kNoMemory;
        position = decode_op(d, element, static_cast<uint8_t*>(at) + element->offset, position);
    }
    return position;
}

WARM bit_position decode_list(decoder* d, const op* o, asn1_array* array, bit_position position) {
    uint32_t count;
    bit_position contents = get_length(d, o, position, &count);
    if (contents == kOtherForm) return by_walker(d, o, array, position);
    if (is_failure(contents)) return contents;
    if (!has_stack(&d->stack)) return kNotMine;
    if (count == 0 && o->width == kGeneralLength) return contents;
    const list* l = &d->code->lists[o->part];
    const op* element = &d->code->ops[l->element];
    uint64_t size = l->stride * count;
    if (__builtin_expect(size > kTrustedListBytes, 0)) {
        return decode_growing(d, element, array, l->stride, count, contents);
    }
    array->data = take_block(d, size);
    if (!array->data) return kNoMemory;
    array->count = count;
    if (!l->dense) zero(array->data, size);
    uint8_t* first = static_cast<uint8_t*>(array->data);
    return decode_elements(d, element, first, first + size, l->stride, contents);
}

// ---- open types ---------------------------------------------------------------------------------------------

namespace {

// What an open type's contents take the place of.
struct outside {
    uint64_t end;
    const asn1_parent_frame* frames;
};

}  // namespace

// Stands at the contents; kOtherForm for fragments.
HOT bit_position enter(decoder* d, outside* outer, bit_position position) {
    if (!has_stack(&d->stack)) return kNotMine;
    uint32_t length;
    position = get_general_length(d, position, &length);
    if (is_failure(position)) return position;
    if (length == 0 || !has_bits(d, position, uint64_t{length} * 8)) return kRefused;
    *outer = {d->source.end, d->frames};
    d->source.end = position + uint64_t{length} * 8;
    d->frames = nullptr;
    return position;
}

// Stands behind the contents, whatever of them was read.
HOT bit_position leave(decoder* d, const outside& outer, bit_position position) {
    if (is_failure(position)) return position;
    position = d->source.end;
    d->source.end = outer.end;
    d->frames = outer.frames;
    return position;
}

static bit_position decode_wrapped(decoder* d, const op* o, uint8_t* value, bit_position position) {
    outside outer;
    position = enter(d, &outer, position);
    if (is_failure(position)) return position;
    return leave(d, outer, decode_op(d, o, value, position));
}

static bit_position skip_wrapped(decoder* d, bit_position position) {
    outside outer;
    position = enter(d, &outer, position);
    return is_failure(position) ? position : leave(d, outer, position);
}

// An open type that has no type is kept as octets.
COLD bit_position decode_raw(decoder* d, asn1_open_value* open, bit_position position) {
    uint32_t length;
    position = get_general_length(d, position, &length);
    if (is_failure(position) || length == 0) return position;
    if (!has_bits(d, position, uint64_t{length} * 8)) return kRefused;
    open->data = take_block(d, length);
    if (!open->data) return kNoMemory;
    open->length = length;
    copy_many_bits(d, position, static_cast<uint8_t*>(open->data), uint64_t{length} * 8);
    return position + uint64_t{length} * 8;
}

WARM bit_position decode_open_type(decoder* d, const op* o, uint8_t* value, bit_position position) {
    asn1_open_value* open = reinterpret_cast<asn1_open_value*>(value);
    const asn1_type_desc* type;
    const open_type_row* row = find_row(d, o, value, &type);
    if (!row) return type ? kNotMine : decode_raw(d, open, position);
    open->type = type;
    open->data = new_record(d, row->size);
    if (!open->data) return kNoMemory;
    outside outer;
    position = enter(d, &outer, position);
    if (is_failure(position)) return position;
    return leave(d, outer, decode_op(d, &d->code->ops[row->op], static_cast<uint8_t*>(open->data), position));
}

WARM bit_position decode_indirect(decoder* d, const op* o, uint8_t* value, bit_position position) {
    if (!has_stack(&d->stack)) return kNotMine;
    uint8_t* record = static_cast<uint8_t*>(new_record(d, o->low));
    if (!record) return kNoMemory;
    store_pointer(value, record);
    return decode_op(d, &d->code->ops[o->part], record, position);
}

// ---- CHOICE -------------------------------------------------------------------------------------------------

// An index below 64 behind the extension marker; a larger one is the walker's.
static bit_position decode_extension(decoder* d, const op* o, uint8_t* record, bit_position position) {
    if (!has_bits(d, position, 2)) return kRefused;
    uint64_t window = window_at(d, position);
    if (window >> 62 != 2) return by_walker(d, o, record, position);
    if (!has_bits(d, position, 8)) return kRefused;
    const choice* c = &d->code->choices[o->part];
    uint32_t selector = c->root + (window >> 56 & 63);
    store32(record + c->selector, selector);
    position += 8;
    if (selector >= c->total) return skip_wrapped(d, position);
    return decode_wrapped(d, &d->code->ops[c->ops + selector], record + c->payload, position);
}

WARM bit_position decode_choice(decoder* d, const op* o, uint8_t* record, bit_position position) {
    const choice* c = &d->code->choices[o->part];
    if (!has_bits(d, position, o->width)) return kRefused;  // an extension is longer
    uint64_t selector = top_bits(window_at(d, position), o->width);
    if (__builtin_expect(selector > o->range, 0)) {
        return is_extended(o, selector) ? decode_extension(d, o, record, position) : kRefused;
    }
    store32(record + c->selector, static_cast<uint32_t>(selector));
    const op* chosen = &d->code->ops[c->ops + selector];
    record += c->payload;
    position += o->width;
    if (chosen->kind == kGroup) return decode_group(d, chosen, record, position);
    return decode_op(d, chosen, record, position);
}

// ---- SEQUENCE -----------------------------------------------------------------------------------------------

// The members of an extension addition group, `first` to `first + count - 1` of the additions.
static bit_position decode_members(decoder* d, const sequence* s, const extension_unit& unit, uint8_t* record,
                                   bit_position position) {
    const op* member = &d->code->ops[s->additions + unit.first];
    const uint8_t* has_bit = &d->code->flags[s->has_preamble_bit + unit.first];
    uint32_t width = 0;
    for (uint32_t i = 0; i < unit.count; ++i) width += has_bit[i];
    if (width > kWindowBits) return kNotMine;
    if (!has_bits(d, position, width)) return kRefused;
    uint64_t preamble = window_at(d, position);
    position += width;
    for (uint32_t i = 0; i < unit.count && !is_failure(position); ++i, ++member) {
        bool present = !has_bit[i] || preamble >> 63 != 0;
        preamble <<= has_bit[i];
        if (!present) continue;
        if (member->presence != kNone) store32(record + member->presence, 1);
        position = decode_op(d, member, record + member->offset, position);
    }
    return position;
}

static bit_position decode_unit(decoder* d, const sequence* s, const extension_unit& unit, uint8_t* record,
                                bit_position position) {
    const op* first = &d->code->ops[s->additions + unit.first];
    if (!unit.is_group) {
        if (first->presence != kNone) store32(record + first->presence, 1);
        return decode_wrapped(d, first, record + first->offset, position);
    }
    outside outer;
    position = enter(d, &outer, position);
    if (is_failure(position)) return position;
    return leave(d, outer, decode_members(d, s, unit, record, position));
}

// The bitmap and what it announces; one that is wider than a window is the walker's.
COLD bit_position decode_additions(decoder* d, const sequence* s, uint8_t* record, bit_position position) {
    if (!has_bits(d, position, 7)) return kRefused;
    uint64_t count = (window_at(d, position) >> 57) + 1;
    if (count > kWindowBits) return kNotMine;
    position += 7;
    if (!has_bits(d, position, count)) return kRefused;
    uint64_t bitmap = window_at(d, position) & UINT64_MAX << (64 - count);
    position += count;
    const extension_unit* units = &d->code->extension_units[s->units];
    while (bitmap != 0 && !is_failure(position)) {
        uint32_t i = static_cast<uint32_t>(__builtin_clzll(bitmap));
        bitmap ^= UINT64_C(1) << 63 >> i;
        position =
            i < s->unit_count ? decode_unit(d, s, units[i], record, position) : skip_wrapped(d, position);
    }
    return position;
}

// Runs ops: bit 63 is the first one's.
HOT bit_position run_ops(decoder* d, const op* o, uint64_t todo, uint8_t* record, bit_position position) {
    uint32_t no_presence;
    for (; todo != 0; todo <<= 1, ++o) {
        // A branch, not arithmetic: the address of an op does not wait for the preamble.
        if (todo >> 63 == 0) continue;
        store32(o->presence == kNone ? static_cast<void*>(&no_presence) : record + o->presence, 1);
        uint8_t* value = record + o->offset;
        switch (o->kind) {
            case kLeaf: position = decode_leaf(d, o, value, position); break;
            case kGroup: position = decode_group(d, o, value, position); break;
            case kSequence:
                position = decode_sequence(d, &d->code->sequences[o->part], value, position);
                break;
            case kFork: position = decode_fork(d, &d->code->sequences[o->part], value, position); break;
            case kList: position = decode_list(d, o, reinterpret_cast<asn1_array*>(value), position); break;
            case kChoice: position = decode_choice(d, o, value, position); break;
            default: position = decode_next(d, o, value, position); break;
        }
        if (__builtin_expect(is_failure(position), 0)) return position;
    }
    return position;
}

static bit_position decode_sequence(decoder* d, const sequence* s, uint8_t* record, bit_position position) {
    uint64_t todo = s->always;
    bool extended = false;
    if (s->width != 0) {
        if (!has_bits(d, position, s->width)) return kRefused;
        uint64_t preamble = window_at(d, position);
        position += s->width;
        extended = (preamble >> 63 & s->extensible) != 0;
        preamble <<= s->extensible;
        const preamble_run* run = &d->code->preamble_runs[s->runs];
        for (uint32_t i = s->run_count; i > 0; --i, ++run) todo |= (preamble & run->mask) >> run->shift;
        if ((~preamble & s->defaults) != 0 || s->needs_frame) settle_options(d, s, record, preamble);
    }
    asn1_parent_frame frame;
    if (s->needs_frame) {
        frame = {d->frames, d->code->types[s->type], record};
        d->frames = &frame;
    }
    position = run_ops(d, &d->code->ops[s->ops], todo, record, position);
    if (__builtin_expect(extended, 0) && !is_failure(position))
        position = decode_additions(d, s, record, position);
    if (s->needs_frame) d->frames = frame.parent;
    return position;
}

// ---- any op -------------------------------------------------------------------------------------------------

// Those of ALIGNED PER alone.
WARM bit_position decode_aligned_op(decoder* d, const op* o, uint8_t* value, bit_position position) {
    switch (o->kind) {
        case kAlignedLeaf: return decode_leaf(d, o, value, align(position));
        case kAlignedGroup: return decode_group(d, o, value, align(position));
        case kMarkedLeaf: return decode_marked_leaf(d, o, value, position);
        case kCountedLeaf: return decode_counted_leaf(d, o, value, position);
        case kCountedBigInteger:
            return decode_big_integer(d, o, reinterpret_cast<asn1_integer*>(value), position);
        default: return by_walker(d, o, value, position);
    }
}

static bit_position decode_op(decoder* d, const op* o, uint8_t* value, bit_position position) {
    switch (o->kind) {
        case kLeaf: return decode_leaf(d, o, value, position);
        case kGroup: return decode_group(d, o, value, position);
        case kSequence: return decode_sequence(d, &d->code->sequences[o->part], value, position);
        case kFork: return decode_fork(d, &d->code->sequences[o->part], value, position);
        case kList: return decode_list(d, o, reinterpret_cast<asn1_array*>(value), position);
        case kChoice: return decode_choice(d, o, value, position);
        case kOctets:
        case kBits: return decode_string(d, o, reinterpret_cast<asn1_string*>(value), position);
        case kChars:
        case kMappedChars: return decode_chars(d, o, reinterpret_cast<asn1_string*>(value), position);
        case kBigInteger: return decode_big_integer(d, o, reinterpret_cast<asn1_integer*>(value), position);
        case kOpenType: return decode_open_type(d, o, value, position);
        case kIndirect: return decode_indirect(d, o, value, position);
        case kNull: return position;
        default:
            return kIsAligned ? decode_aligned_op(d, o, value, position) : by_walker(d, o, value, position);
    }
}

// malloc keeps small blocks that were freed in lists by their size, where they are found again at once, until a large one
// is asked for: then it puts them together, and cuts the next ones anew. So a large outermost record, which would come
// first, comes last, and is put together on the stack until then, where it leaves the levels of the value about half of
// what they have before they must ask the system.
constexpr uint64_t kLeastLate = 1024, kMostLate = 6 * 1024 + 512;
static_assert(kMostLate < kStackAllowance - 5 * 1024);

// `*out` is null if there is no memory for it.
static __attribute__((noinline)) bit_position decode_late(decoder* d, const orlenta_codec* codec,
                                                          const op* root, void** out) {
    alignas(16) uint8_t record[kMostLate];
    zero(record, codec->record_size);
    bit_position position = decode_op(d, root, record, 0);
    if (!is_failure(position)) *out = asn1_malloc(static_cast<size_t>(codec->record_size));
    if (*out) {
        memcpy(*out, record, codec->record_size);
    } else {
        release_contents(codec, record);
    }
    return position;
}

static decode_result run_decode(const orlenta_codec* codec, rule rule, orlenta_arena* arena, void** out,
                                const uint8_t* data, uint64_t size) {
    const rule_program* code = program_for(codec, rule);
    *out = nullptr;
    if (!code) return {kGaveUp, 0, 0, false, 0};
    decoder d;
    per::short_input room;
    d.source = per::begin_source(data, size, &room);
    d.code = code->code;
    d.frames = nullptr;
    d.stack = begin_stack();
    d.memory = begin_decode_memory(size);
    d.arena = arena;
    d.walker_pieces = 0;
    uint64_t allowed = d.memory.left;
    const op* root = &code->code->ops[code->root];
    bit_position position;
    if (!arena && codec->record_size > kLeastLate && codec->record_size <= kMostLate) {
        position = decode_late(&d, codec, root, out);
        if (!is_failure(position) && !*out) return {kOutOfMemory, 0, 0, false, 0};
    } else {
        *out = new_outermost_record(&d, codec->record_size);
        if (!*out) return {kOutOfMemory, 0, 0, false, 0};
        position = decode_op(&d, root, static_cast<uint8_t*>(*out), 0);
        if (is_failure(position) && !arena) orlenta_free_value(codec, *out);
    }
    if (__builtin_expect(!is_failure(position), 1)) return {kDone, position, 0, true, d.walker_pieces};
    *out = nullptr;
    return {outcome_of(position), 0, allowed - d.memory.left, true, d.walker_pieces};
}

}  // namespace orlenta::program
