// SPDX-License-Identifier: Apache-2.0
// OER by a program. The place to write at travels in a register: each function takes it and returns the next one, or
// null. What is unusual ends the run, and the walker encodes the value or finds the report.
#include "program/oer_encode.hpp"

#include <orlenta/memory.h>

#include "core/stack.hpp"
#include "oer/piece.hpp"
#include "program/octets.hpp"

namespace orlenta::program {

namespace {

struct encoder {
    asn1_byte_buffer buffer;  // but for its length
    uint8_t* limit;           // of what make_room() gives; a word more can be stored
    const program* code;
    stack_guard stack;
    uint32_t walker_pieces;
};

}  // namespace

#define HOT static inline __attribute__((always_inline))
#define WARM static __attribute__((noinline))
#define COLD static __attribute__((noinline, cold))

static uint8_t* encode_op(encoder* e, const op* o, const uint8_t* value, uint8_t* at);
static uint8_t* encode_sequence(encoder* e, const sequence* s, const uint8_t* record, uint8_t* at);
static uint8_t* encode_fork(encoder* e, const sequence* s, const uint8_t* record, uint8_t* at);
static uint8_t* encode_list(encoder* e, const op* o, const asn1_array* array, uint8_t* at);
static uint8_t* encode_choice(encoder* e, const op* o, const uint8_t* record, uint8_t* at);

// ---- room ---------------------------------------------------------------------------------------------------

constexpr uint64_t kSlack = 8;  // stores are of whole words

static void set_limit(encoder* e) { e->limit = e->buffer.data + e->buffer.capacity - kSlack; }

// First for an ordinary message, then for a large one.
COLD uint8_t* grow(encoder* e, uint8_t* at, uint64_t count) {
    constexpr uint64_t kFirstRoom = 512, kSecondRoom = 2048;
    uint64_t length = e->buffer.data ? static_cast<uint64_t>(at - e->buffer.data) : 0;
    uint64_t room = e->buffer.data ? kSecondRoom : kFirstRoom, needed = length + count + kSlack;
    if (__asn1_byte_buffer_realloc(&e->buffer, needed > room ? needed : room) != 0) return nullptr;
    set_limit(e);
    return e->buffer.data + length;
}

// Where `count` octets can be written, and a word more.
HOT uint8_t* make_room(encoder* e, uint8_t* at, uint64_t count) {
    return __builtin_expect(count <= static_cast<uint64_t>(e->limit - at), 1) ? at : grow(e, at, count);
}

// ---- the walker ---------------------------------------------------------------------------------------------

COLD uint8_t* by_walker(encoder* e, const op* o, const void* value, uint8_t* at) {
    ++e->walker_pieces;
    e->buffer.length = static_cast<uint64_t>(at - e->buffer.data);
    int result = oer::encode_one(&e->buffer, &e->stack, e->code->types[o->type], value);
    if (result != 0 || e->buffer.capacity - e->buffer.length < kSlack) {
        return result != 0 ? nullptr : grow(e, e->buffer.data + e->buffer.length, 0);
    }
    set_limit(e);
    return e->buffer.data + e->buffer.length;
}

// ---- numbers ------------------------------------------------------------------------------------------------

HOT uint32_t word_of(const octet_leaf& leaf, uint32_t number) {
    uint32_t negate = static_cast<uint32_t>(leaf.negate);
    return ((number ^ negate) - negate) << leaf.out_shift;
}

HOT uint8_t* encode_leaf(encoder* e, const op* o, const uint8_t* value, uint8_t* at) {
    const octet_leaf& leaf = e->code->octet_leaves[o->part];
    uint32_t number = load32(value);
    if (__builtin_expect(number > leaf.range, 0)) return by_walker(e, o, value, at);
    at = make_room(e, at, 4);
    if (!at) return nullptr;
    store_octets32(at, word_of(leaf, number));
    return at + o->width;
}

HOT bool is_there(const option& one, const uint8_t* record) {
    return load32(record + one.offset) != one.absent;
}

static bool any_there(const option* options, uint32_t count, const uint8_t* record) {
    bool any = false;
    for (uint32_t i = 0; i < count; ++i) any |= is_there(options[i], record);
    return any;
}

// A group as the components that it was made of.
COLD uint8_t* encode_singly(encoder* e, const group* g, const uint8_t* record, uint8_t* at) {
    const op* one = &e->code->ops[g->ops];
    for (const op* end = one + g->op_count; one != end && at; ++one) {
        at = encode_op(e, one, record + one->offset, at);
    }
    return at;
}

// Whether all leaves are within their ranges. Each is stored with zeros behind it, over which the next one goes.
HOT bool store_leaves(const octet_leaf* leaf, uint32_t gates, uint32_t count, const uint8_t* record,
                      uint8_t* at) {
    uint64_t beyond = 0;  // its top bit, if a number is beyond its range
    const octet_leaf* gate = leaf;
    leaf += gates;
    for (const octet_leaf* end = gate + count; leaf != end; ++leaf) {
        uint32_t number = load32(record + leaf->offset);
        beyond |= uint64_t{leaf->range} - number;
        store_octets32(at + leaf->at, word_of(*leaf, number));
    }
    for (; gates > 0; --gates, ++gate) at[gate->at] = 0;
    return beyond >> 63 == 0;
}

// With an addition behind a gate the group goes out singly.
HOT uint8_t* encode_group(encoder* e, const op* o, const uint8_t* record, uint8_t* at) {
    at = make_room(e, at, o->width);
    if (__builtin_expect(!at, 0)) return nullptr;
    bool is_within = store_leaves(&e->code->octet_leaves[o->part], o->gates, o->count, record, at);
    const group* g = &e->code->groups[o->low];
    bool is_extended = o->gates != 0 && any_there(&e->code->options[g->options], g->option_count, record);
    if (__builtin_expect(!is_within || is_extended, 0)) return encode_singly(e, g, record, at);
    return at + o->width;
}

// Where there is no frame as yet.
WARM uint8_t* encode_lone_group(encoder* e, const op* o, const uint8_t* record, uint8_t* at) {
    return encode_group(e, o, record, at);
}

// ---- SEQUENCE with variants ---------------------------------------------------------------------------------

// Writes the preamble and the leaves that follow it; null, with `*at` where it was, if they do not fit a variant, and
// `*at` null if there is no room.
HOT const variant* encode_head(encoder* e, const sequence* s, const uint8_t* record, uint8_t** at) {
    const option* options = &e->code->options[s->options];
    const variant* v = &e->code->variants[s->variants];
    if (s->option_count == 1) {
        v = step_if(v, is_there(options[0], record), 1);
    } else if (s->option_count == 2) {
        v = step_if(v, is_there(options[0], record), 2);
        v = step_if(v, is_there(options[1], record), 1);
    }
    uint8_t* octets = *at = make_room(e, *at, v->width);
    if (__builtin_expect(!octets, 0)) return v;
    *octets = static_cast<uint8_t>(v->preamble >> 56);
    bool is_other = !store_leaves(&e->code->octet_leaves[v->leaves], v->gates, v->count, record, octets);
    is_other |= any_there(&e->code->options[v->options], v->option_count, record);
    is_other |= any_there(&e->code->options[s->addition_options], s->addition_count, record);
    if (__builtin_expect(is_other, 0)) return nullptr;
    *at = octets + v->width;
    return v;
}

WARM uint8_t* encode_tail(encoder* e, const variant* v, const uint8_t* record, uint8_t* at) {
    const op* o = &e->code->ops[v->ops];
    for (const op* end = o + v->op_count; o != end && at; ++o) {
        const uint8_t* value = record + o->offset;
        switch (o->kind) {
            case kLeaf: at = encode_leaf(e, o, value, at); break;
            case kGroup: at = encode_group(e, o, value, at); break;
            case kFork: at = encode_fork(e, &e->code->sequences[o->part], value, at); break;
            case kList: at = encode_list(e, o, reinterpret_cast<const asn1_array*>(value), at); break;
            case kChoice: at = encode_choice(e, o, value, at); break;
            default: at = encode_op(e, o, value, at); break;
        }
    }
    return at;
}

// What fits no variant is encoded in the general way.
WARM uint8_t* encode_fork(encoder* e, const sequence* s, const uint8_t* record, uint8_t* at) {
    const variant* v = encode_head(e, s, record, &at);
    if (__builtin_expect(v == nullptr, 0)) return encode_sequence(e, s, record, at);
    return v->op_count == 0 ? at : encode_tail(e, v, record, at);
}

// The same, in a list, whose elements often have nothing behind the head.
HOT uint8_t* encode_forks(encoder* e, const sequence* s, const uint8_t* value, const uint8_t* end,
                          uint64_t stride, uint8_t* at) {
    for (; value != end && at; value += stride) {
        const variant* v = encode_head(e, s, value, &at);
        if (__builtin_expect(v == nullptr, 0)) {
            at = encode_sequence(e, s, value, at);
        } else if (v->op_count != 0) {
            at = encode_tail(e, v, value, at);
        }
    }
    return at;
}

// ---- other numbers ------------------------------------------------------------------------------------------

// The fewest octets of a number, on top of a word.
HOT uint32_t count_unsigned(uint32_t number) {
    return number == 0 ? 1 : (39 - static_cast<uint32_t>(__builtin_clz(number))) / 8;
}
HOT uint32_t count_signed(uint32_t number) {
    uint32_t magnitude = number ^ static_cast<uint32_t>(static_cast<int32_t>(number) >> 31);
    return magnitude == 0 ? 1 : (40 - static_cast<uint32_t>(__builtin_clz(magnitude))) / 8;
}

// A first octet, and the low octets of a number.
HOT uint8_t* put_number(encoder* e, uint8_t* at, uint32_t first, uint32_t number, uint32_t octets) {
    at = make_room(e, at, 5);
    if (!at) return nullptr;
    *at++ = static_cast<uint8_t>(first);
    store_octets32(at, number << (32 - octets * 8));
    return at + octets;
}

WARM uint8_t* encode_counted_number(encoder* e, const op* o, const uint8_t* value, uint8_t* at) {
    uint32_t number = load32(value);
    uint32_t octets = o->low != 0 ? count_signed(number) : count_unsigned(number);
    return put_number(e, at, octets, number, octets);
}

WARM uint8_t* encode_enumeration(encoder* e, const op* o, const uint8_t* value, uint8_t* at) {
    const asn1_type_desc* type = e->code->types[o->type];
    uint32_t number = load32(value);
    if (has_flag(type, ASN1_WORD0_VALUE_TABLE)) {
        enum_layout items = enum_of(type);
        if (number >= items.total) return nullptr;
        number = static_cast<uint32_t>(enum_value(type, items, number));
    }
    uint32_t octets = count_signed(number);
    if (number >= 0x80) return put_number(e, at, 0x80 | octets, number, octets);
    at = make_room(e, at, 1);
    if (!at) return nullptr;
    *at = static_cast<uint8_t>(number);
    return at + 1;
}

// One with a sign or a length is the walker's, and so is one that is wider than its octets.
WARM uint8_t* encode_big_integer(encoder* e, const op* o, const asn1_integer* value, uint8_t* at) {
    bool is_plain = o->range != 0 && o->width != 0 && value->negative == 0 && value->size <= 2 &&
                    (value->size == 0 || value->limbs);
    if (!is_plain || (value->size != 0 && value->limbs[value->size - 1] == 0)) {
        return by_walker(e, o, value, at);
    }
    uint64_t number = value->size > 0 ? value->limbs[0] : 0;
    if (value->size > 1) number |= uint64_t{value->limbs[1]} << 32;
    if (o->width < 8 && number >> o->width * 8 != 0) return by_walker(e, o, value, at);
    at = make_room(e, at, 8);
    if (!at) return nullptr;
    store_octets64(at, number << (64 - o->width * 8));
    return at + o->width;
}

// ---- strings and lists --------------------------------------------------------------------------------------

// For a length there is room, five octets at the most.
HOT uint8_t* put_length(uint8_t* at, uint32_t length) {
    if (__builtin_expect(length < 0x80, 1)) {
        *at = static_cast<uint8_t>(length);
        return at + 1;
    }
    uint32_t octets = count_unsigned(length);
    *at++ = static_cast<uint8_t>(0x80 | octets);
    store_octets32(at, length << (32 - octets * 8));
    return at + octets;
}

HOT uint8_t* put_octets(uint8_t* at, const void* octets, uint64_t count) {
    copy_octets(at, static_cast<const uint8_t*>(octets), count);
    return at + count;
}

// Behind a length, if there is one.
WARM uint8_t* put_string(encoder* e, const void* data, uint64_t length, bool has_length, uint8_t* at) {
    if (length > INT32_MAX || (length != 0 && !data)) return nullptr;
    at = make_room(e, at, length + 5);
    if (!at) return nullptr;
    if (has_length) at = put_length(at, static_cast<uint32_t>(length));
    return put_octets(at, data, length);
}

// The length of a string of characters is not looked at.
static uint8_t* encode_octets(encoder* e, const op* o, const asn1_string* string, uint8_t* at) {
    bool has_length = o->width == kGeneralLength;
    if (o->kind == kOctets && !has_length && string->length != o->low) return nullptr;
    return put_string(e, string->data, string->length, has_length, at);
}

WARM uint8_t* encode_bits(encoder* e, const op* o, const asn1_bit_string* string, uint8_t* at) {
    uint64_t bits = string->length, octets = bits / 8 + (bits % 8 != 0);
    bool has_length = o->width == kGeneralLength;
    if (octets >= INT32_MAX || (bits != 0 && !string->data) || (!has_length && bits != o->low))
        return nullptr;
    at = make_room(e, at, octets + 6);
    if (!at) return nullptr;
    if (has_length) {
        at = put_length(at, static_cast<uint32_t>(octets) + 1);
        *at++ = static_cast<uint8_t>(-bits & 7);
    }
    at = put_octets(at, string->data, octets);
    if (bits % 8 != 0) at[-1] &= static_cast<uint8_t>(0xFF00 >> bits % 8);
    return at;
}

HOT uint8_t* encode_elements(encoder* e, const list* l, const uint8_t* value, uint64_t count, uint8_t* at) {
    const op* element = &e->code->ops[l->element];
    const uint8_t* end = value + l->stride * count;
    if (element->kind == kGroup) {
        for (; value != end && at; value += l->stride) at = encode_group(e, element, value, at);
    } else if (element->kind == kFork) {
        const sequence* s = &e->code->sequences[element->part];
        return encode_forks(e, s, value, end, l->stride, at);
    } else if (element->kind == kSequence) {
        const sequence* s = &e->code->sequences[element->part];
        for (; value != end && at; value += l->stride) at = encode_sequence(e, s, value, at);
    } else {
        for (; value != end && at; value += l->stride) at = encode_op(e, element, value, at);
    }
    return at;
}

WARM uint8_t* encode_list(encoder* e, const op* o, const asn1_array* array, uint8_t* at) {
    bool is_usual = array->count <= UINT32_MAX && (array->count == 0 || array->data);
    if (!is_usual || !has_stack(&e->stack)) return nullptr;
    uint32_t count = static_cast<uint32_t>(array->count), octets = count_unsigned(count);
    at = put_number(e, at, octets, count, octets);
    if (!at) return nullptr;
    const uint8_t* value = static_cast<const uint8_t*>(array->data);
    return encode_elements(e, &e->code->lists[o->part], value, count, at);
}

// ---- open types ---------------------------------------------------------------------------------------------

// Contents are written in place behind one octet for their length. A longer length moves them up.
static uint8_t* end_wrapped(encoder* e, uint64_t start, uint8_t* at) {
    uint64_t length = static_cast<uint64_t>(at - e->buffer.data) - start - 1;
    if (length > INT32_MAX) return nullptr;
    uint32_t more = length < 0x80 ? 0 : count_unsigned(static_cast<uint32_t>(length));
    at = make_room(e, at, more);
    if (!at) return nullptr;
    uint8_t* octet = e->buffer.data + start;
    if (__builtin_expect(more == 0, 1)) {
        *octet = static_cast<uint8_t>(length);
        return at;
    }
    memmove(octet + 1 + more, octet + 1, length);
    *octet = static_cast<uint8_t>(0x80 | more);
    for (uint32_t left = more; left > 0;) *++octet = static_cast<uint8_t>(length >> --left * 8);
    return at + more;
}

WARM uint8_t* encode_wrapped(encoder* e, const op* o, const uint8_t* value, uint8_t* at) {
    at = make_room(e, at, 1);
    if (!at || !has_stack(&e->stack)) return nullptr;
    uint64_t start = static_cast<uint64_t>(at - e->buffer.data);
    at = encode_op(e, o, value, at + 1);
    return at ? end_wrapped(e, start, at) : nullptr;
}

static const open_type_row* find_row(const encoder* e, const op* o, const asn1_type_desc* type) {
    const row_range& range = e->code->row_ranges[e->code->open_types[o->part].rows];
    const open_type_row* row = &e->code->rows[range.first];
    for (const open_type_row* end = row + range.count; row != end; ++row) {
        if (e->code->types[row->type] == type) return row;
    }
    return nullptr;
}

WARM uint8_t* encode_open_type(encoder* e, const op* o, const asn1_open_value* open, uint8_t* at) {
    if (!open->type) return put_string(e, open->data, open->length, true, at);
    const open_type_row* row = open->data ? find_row(e, o, open->type) : nullptr;
    if (!row) return by_walker(e, o, open, at);
    return encode_wrapped(e, &e->code->ops[row->op], static_cast<const uint8_t*>(open->data), at);
}

WARM uint8_t* encode_indirect(encoder* e, const op* o, const uint8_t* value, uint8_t* at) {
    const void* inner = load_pointer(value);
    if (!inner || !has_stack(&e->stack)) return nullptr;
    return encode_op(e, &e->code->ops[o->part], static_cast<const uint8_t*>(inner), at);
}

// ---- CHOICE -------------------------------------------------------------------------------------------------

WARM uint8_t* encode_choice(encoder* e, const op* o, const uint8_t* record, uint8_t* at) {
    const choice* c = &e->code->choices[o->part];
    uint32_t selector = load32(record + c->selector);
    if (selector >= c->total) return nullptr;
    const identifier& tag = e->code->identifiers[c->identifiers + selector];
    at = make_room(e, at, 4);
    if (!at || tag.count == 0) return nullptr;
    store_octets32(at, tag.octets);
    at += tag.count;
    const op* alternative = &e->code->ops[c->ops] + selector;
    const uint8_t* payload = record + c->payload;
    if (__builtin_expect(selector >= c->root, 0)) return encode_wrapped(e, alternative, payload, at);
    if (alternative->kind == kGroup) return encode_lone_group(e, alternative, payload, at);
    return encode_op(e, alternative, payload, at);
}

// ---- SEQUENCE -----------------------------------------------------------------------------------------------

// At most 64 bits, in whole octets.
HOT uint8_t* put_bits(encoder* e, uint64_t bits, uint32_t count, uint8_t* at) {
    if (count == 0) return at;
    at = make_room(e, at, 8);
    if (!at) return nullptr;
    store_octets64(at, bits << (64 - count));
    return at + (count + 7) / 8;
}

static uint8_t* encode_members(encoder* e, const sequence* s, const extension_unit& unit,
                               const uint8_t* record, uint8_t* at) {
    const op* member = &e->code->ops[s->additions + unit.first];
    const option* options = &e->code->options[s->addition_options + unit.first];
    const uint8_t* has_bit = &e->code->flags[s->has_preamble_bit + unit.first];
    uint64_t preamble = 0;
    uint32_t width = 0;
    if (unit.count > kWindowBits) return nullptr;
    for (uint32_t i = 0; i < unit.count; ++i) {
        if (!has_bit[i]) continue;
        preamble = preamble << 1 | is_there(options[i], record);
        ++width;
    }
    at = put_bits(e, preamble, width, at);
    for (uint32_t i = 0; i < unit.count && at; ++i, ++member) {
        if (is_there(options[i], record)) at = encode_op(e, member, record + member->offset, at);
    }
    return at;
}

static uint8_t* encode_unit(encoder* e, const sequence* s, const extension_unit& unit, const uint8_t* record,
                            uint8_t* at) {
    const op* first = &e->code->ops[s->additions + unit.first];
    if (!unit.is_group) return encode_wrapped(e, first, record + first->offset, at);
    at = make_room(e, at, 1);
    if (!at) return nullptr;
    uint64_t start = static_cast<uint64_t>(at - e->buffer.data);
    at = encode_members(e, s, unit, record, at + 1);
    return at ? end_wrapped(e, start, at) : nullptr;
}

// The bitmap and the units that are there; one wider than a window is the walker's.
WARM uint8_t* encode_additions(encoder* e, const sequence* s, const uint8_t* record, uint8_t* at) {
    const extension_unit* units = &e->code->extension_units[s->units];
    const option* options = &e->code->options[s->addition_options];
    uint32_t count = s->unit_count;
    if (count > kWindowBits) return nullptr;
    uint64_t bitmap = 0;
    for (uint32_t i = 0; i < count; ++i) {
        bitmap = bitmap << 1 | any_there(options + units[i].first, units[i].count, record);
    }
    at = put_number(e, at, (count + 7) / 8 + 1, -count & 7, 1);
    if (at) at = put_bits(e, bitmap, count, at);
    for (uint32_t i = 0; i < count && at; ++i) {
        bool is_present = bitmap >> (count - 1 - i) & 1;
        if (is_present) at = encode_unit(e, s, units[i], record, at);
    }
    return at;
}

// Leaves from an op on that stand and are present one behind the other. Stays at the last one.
HOT uint8_t* encode_leaves(encoder* e, const op** o, uint64_t* todo, const uint8_t* record, uint8_t* at) {
    const op* one = *o;
    at = make_room(e, at, one->count * 4u);
    if (__builtin_expect(!at, 0)) return nullptr;
    const octet_leaf* leaves = e->code->octet_leaves;
    const op* last = one + one->count - 1;
    for (;; ++one, *todo <<= 1) {
        const octet_leaf& leaf = leaves[one->part];
        uint32_t number = load32(record + one->offset);
        if (__builtin_expect(number > leaf.range, 0)) {
            at = by_walker(e, one, record + one->offset, at);
            break;
        }
        store_octets32(at, word_of(leaf, number));
        at += one->width;
        if (one == last || (*todo >> 62 & 1) == 0) break;
    }
    *o = one;
    return at;
}

// Runs ops: bit 63 is the first one's.
HOT uint8_t* run_ops(encoder* e, const op* o, uint64_t todo, const uint8_t* record, uint8_t* at) {
    for (; todo != 0; todo <<= 1, ++o) {
        // A branch, not arithmetic: where op follows op its address does not wait for the preamble.
        if (todo >> 63 == 0) {
            uint32_t skipped = static_cast<uint32_t>(__builtin_clzll(todo));
            todo <<= skipped;
            o += skipped;
        }
        const uint8_t* value = record + o->offset;
        switch (o->kind) {
            case kLeaf: at = encode_leaves(e, &o, &todo, record, at); break;
            case kGroup: at = encode_group(e, o, value, at); break;
            case kSequence: at = encode_sequence(e, &e->code->sequences[o->part], value, at); break;
            case kFork: at = encode_fork(e, &e->code->sequences[o->part], value, at); break;
            case kList: at = encode_list(e, o, reinterpret_cast<const asn1_array*>(value), at); break;
            case kChoice: at = encode_choice(e, o, value, at); break;
            default: at = encode_op(e, o, value, at); break;
        }
        if (__builtin_expect(!at, 0)) return nullptr;
    }
    return at;
}

static uint8_t* encode_sequence(encoder* e, const sequence* s, const uint8_t* record, uint8_t* at) {
    uint64_t todo = s->always;
    bool is_extended = s->addition_count != 0 &&
                       any_there(&e->code->options[s->addition_options], s->addition_count, record);
    if (s->width != 0) {
        uint64_t preamble = is_extended && s->extensible;
        const option* one = &e->code->options[s->options];
        for (const option* end = one + s->option_count; one != end; ++one) {
            preamble = preamble << 1 | is_there(*one, record);
        }
        at = put_bits(e, preamble, s->width, at);
        if (!at) return nullptr;
        preamble = preamble << (63 - s->option_count) << 1;
        const preamble_run* run = &e->code->preamble_runs[s->runs];
        for (uint32_t i = s->run_count; i > 0; --i, ++run) todo |= (preamble & run->mask) >> run->shift;
    }
    at = run_ops(e, &e->code->ops[s->ops], todo, record, at);
    return is_extended && at ? encode_additions(e, s, record, at) : at;
}

// ---- any op -------------------------------------------------------------------------------------------------

static uint8_t* encode_op(encoder* e, const op* o, const uint8_t* value, uint8_t* at) {
    switch (o->kind) {
        case kLeaf: return encode_leaf(e, o, value, at);
        case kGroup: return encode_lone_group(e, o, value, at);
        case kSequence: return encode_sequence(e, &e->code->sequences[o->part], value, at);
        case kFork: return encode_fork(e, &e->code->sequences[o->part], value, at);
        case kList: return encode_list(e, o, reinterpret_cast<const asn1_array*>(value), at);
        case kChoice: return encode_choice(e, o, value, at);
        case kOctets:
        case kChars: return encode_octets(e, o, reinterpret_cast<const asn1_string*>(value), at);
        case kBits: return encode_bits(e, o, reinterpret_cast<const asn1_bit_string*>(value), at);
        case kBigInteger: return encode_big_integer(e, o, reinterpret_cast<const asn1_integer*>(value), at);
        case kCountedNumber: return encode_counted_number(e, o, value, at);
        case kEnumeration: return encode_enumeration(e, o, value, at);
        case kOpenType: return encode_open_type(e, o, reinterpret_cast<const asn1_open_value*>(value), at);
        case kIndirect: return encode_indirect(e, o, value, at);
        case kNull: return at;
        default: return by_walker(e, o, value, at);
    }
}

encode_result run_oer_encode(const orlenta_codec* codec, uint8_t** out, const void* value) {
    const rule_program* code = program_for(codec, kOer);
    *out = nullptr;
    if (!code) return {false, 0, 0};
    encoder e;
    e.buffer = {};
    e.code = code->code;
    e.stack = begin_stack();
    e.walker_pieces = 0;
    uint8_t* at = grow(&e, nullptr, 0);
    if (at) at = encode_op(&e, &code->code->ops[code->root], static_cast<const uint8_t*>(value), at);
    uint64_t octets = at ? static_cast<uint64_t>(at - e.buffer.data) : 0;
    if (octets == 0) {
        asn1_free(e.buffer.data);
        e.buffer.data = nullptr;
    }
    *out = e.buffer.data;
    return {at != nullptr, octets, e.walker_pieces};
}

}  // namespace orlenta::program
