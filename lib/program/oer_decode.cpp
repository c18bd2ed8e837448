// SPDX-License-Identifier: Apache-2.0
// OER by a program.
#include "program/oer_decode.hpp"

#include <orlenta/memory.h>

#include "core/integer_octets.hpp"
#include "oer/piece.hpp"
#include "program/octets.hpp"

namespace orlenta::program {

namespace {

// In octets.
typedef position_or_failure octet_position;

struct decoder : decode_state {
    const uint8_t* data;
    uint64_t end;  // of what may be read: the input's, or the open type's
};

}  // namespace

#define HOT static inline __attribute__((always_inline))
#define WARM static __attribute__((noinline))  // so that small ops pay for no large frame
#define COLD static __attribute__((noinline, cold))

static octet_position decode_op(decoder* d, const op* o, uint8_t* value, octet_position position);
static octet_position decode_sequence(decoder* d, const sequence* s, uint8_t* record,
                                      octet_position position);
static octet_position decode_fork(decoder* d, const sequence* s, uint8_t* record, octet_position position);
static octet_position decode_enumeration(decoder* d, const op* o, uint8_t* value, octet_position position);
static octet_position decode_list(decoder* d, const op* o, asn1_array* array, octet_position position);
static octet_position decode_choice(decoder* d, const op* o, uint8_t* record, octet_position position);

// ---- octets -------------------------------------------------------------------------------------------------

HOT bool has_octets(const decoder* d, octet_position position, uint64_t count) {
    return __builtin_expect(count <= d->end - position, 1);
}

// What is left, with zeros behind it, on top of a word of 64 bits.
WARM uint64_t load_last(const decoder* d, octet_position position) {
    uint64_t left = d->end - position;
    uint8_t octets[8] = {};
    memcpy(octets, d->data + position, left < sizeof octets ? left : sizeof octets);
    return load_octets64(octets);
}

HOT uint64_t window_at(const decoder* d, octet_position position) {
    return has_octets(d, position, 8) ? load_octets64(d->data + position) : load_last(d, position);
}
HOT uint32_t word_at(const decoder* d, octet_position position) {
    if (has_octets(d, position, 4)) return load_octets32(d->data + position);
    return static_cast<uint32_t>(load_last(d, position) >> 32);
}

// ---- the walker ---------------------------------------------------------------------------------------------

// The walker's blocks are no part of an arena.
COLD octet_position by_walker(decoder* d, const op* o, void* value, octet_position position) {
    if (d->arena && !is_flat(d->code->types[o->type])) return kNotMine;
    ++d->walker_pieces;
    oer::decode_piece piece = {d->data, d->end, position, d->frames, d->stack, d->memory};
    int result = oer::decode_one(&piece, d->code->types[o->type], value);
    d->stack = piece.stack;
    d->memory = piece.memory;
    return result == 0 ? piece.position : kNotMine;
}

// ---- numbers ------------------------------------------------------------------------------------------------

// The number that begins a word, as it is in memory.
HOT uint32_t number_of(const octet_leaf& leaf, uint32_t word) {
    uint32_t number = static_cast<uint32_t>((uint64_t{word} + leaf.carry) >> leaf.in_shift);
    return (number ^ leaf.sign) - leaf.sign;
}

// A number beyond its range is an item of an ENUMERATED in another form, or none.
HOT octet_position decode_word(decoder* d, const op* o, uint8_t* value, uint32_t word,
                               octet_position position) {
    const octet_leaf& leaf = d->code->octet_leaves[o->part];
    uint32_t number = number_of(leaf, word);
    if (__builtin_expect(number > leaf.range, 0)) return decode_enumeration(d, o, value, position);
    store32(value, number);
    return position + o->width;
}

WARM octet_position decode_last_leaf(decoder* d, const op* o, uint8_t* value, octet_position position) {
    if (!has_octets(d, position, o->width)) return kRefused;
    return decode_word(d, o, value, word_at(d, position), position);
}

HOT octet_position decode_leaf(decoder* d, const op* o, uint8_t* value, octet_position position) {
    if (__builtin_expect(!has_octets(d, position, 4), 0)) return decode_last_leaf(d, o, value, position);
    return decode_word(d, o, value, load_octets32(d->data + position), position);
}

// A group as the components that it was made of.
COLD octet_position decode_singly(decoder* d, const op* o, uint8_t* record, octet_position position) {
    const group* g = &d->code->groups[o->low];
    const op* one = &d->code->ops[g->ops];
    for (const op* end = one + g->op_count; one != end && !is_failure(position); ++one) {
        position = decode_op(d, one, record + one->offset, position);
    }
    return position;
}

// Whether all leaves of a group are within their ranges. Three octets behind the group are read.
HOT bool load_leaves(const octet_leaf* leaf, uint32_t count, uint8_t* record, const uint8_t* octets) {
    uint64_t beyond = 0;  // its top bit, if a number is beyond its range
    for (const octet_leaf* end = leaf + count; leaf != end; ++leaf) {
        uint32_t number = number_of(*leaf, load_octets32(octets + leaf->at));
        beyond |= uint64_t{leaf->range} - number;
        store32(record + leaf->offset, number);
    }
    return beyond >> 63 == 0;
}

// Where the octets end.
WARM octet_position decode_last_group(decoder* d, const op* o, uint8_t* record, octet_position position) {
    if (!has_octets(d, position, o->width)) return kRefused;
    uint8_t copy[kGroupOctets + 3];
    memcpy(copy, d->data + position, o->width);
    memset(copy + o->width, 0, 3);
    bool is_within = load_leaves(&d->code->octet_leaves[o->part], o->count, record, copy);
    return is_within ? position + o->width : decode_singly(d, o, record, position);
}

HOT octet_position decode_group(decoder* d, const op* o, uint8_t* record, octet_position position) {
    if (__builtin_expect(!has_octets(d, position, o->width + 3u), 0)) {
        return decode_last_group(d, o, record, position);
    }
    const octet_leaf* leaves = &d->code->octet_leaves[o->part];
    bool is_within = load_leaves(leaves, o->count, record, d->data + position);
    return __builtin_expect(is_within, 1) ? position + o->width : decode_singly(d, o, record, position);
}

// Where there is no frame as yet.
WARM octet_position decode_lone_group(decoder* d, const op* o, uint8_t* record, octet_position position) {
    return decode_group(d, o, record, position);
}

// ---- SEQUENCE with variants ---------------------------------------------------------------------------------

// Reads the preamble and the leaves that follow it; null if they do not fit a variant.
HOT const variant* decode_head(const decoder* d, const sequence* s, uint8_t* record,
                               octet_position position) {
    if (!has_octets(d, position, 1)) return nullptr;
    const uint8_t* octets = d->data + position;
    const variant* v = &d->code->variants[s->variants];
    uint32_t preamble = uint32_t{*octets} << s->extensible;  // options from bit 7 on
    if (__builtin_expect((*octets & s->extensible << 7) != 0, 0)) return nullptr;
    if (s->option_count == 1) {
        v = step_if(v, (preamble & 0x80) != 0, 1);
    } else if (s->option_count == 2) {
        v = step_if(v, (preamble & 0x80) != 0, 2);
        v = step_if(v, (preamble & 0x40) != 0, 1);
    }
    if (!has_octets(d, position, v->width + 3u)) return nullptr;
    bool is_within = load_leaves(&d->code->octet_leaves[v->leaves], v->count, record, octets);
    const option* one = &d->code->options[v->settings];
    for (const option* end = one + v->setting_count; one != end; ++one)
        store32(record + one->offset, one->absent);
    return __builtin_expect(is_within, 1) ? v : nullptr;
}

WARM octet_position decode_tail(decoder* d, const variant* v, uint8_t* record, octet_position position) {
    const op* o = &d->code->ops[v->ops];
    for (const op* end = o + v->op_count; o != end && !is_failure(position); ++o) {
        uint8_t* value = record + o->offset;
        switch (o->kind) {
            case kLeaf: position = decode_leaf(d, o, value, position); break;
            case kGroup: position = decode_group(d, o, value, position); break;
            case kFork: position = decode_fork(d, &d->code->sequences[o->part], value, position); break;
            case kList: position = decode_list(d, o, reinterpret_cast<asn1_array*>(value), position); break;
            case kChoice: position = decode_choice(d, o, value, position); break;
            default: position = decode_op(d, o, value, position); break;
        }
    }
    return position;
}

// What fits no variant is decoded in the general way.
WARM octet_position decode_fork(decoder* d, const sequence* s, uint8_t* record, octet_position position) {
    const variant* v = decode_head(d, s, record, position);
    if (__builtin_expect(v == nullptr, 0)) return decode_sequence(d, s, record, position);
    position += v->width;
    return v->op_count == 0 ? position : decode_tail(d, v, record, position);
}

// The same, in a list, whose elements often have nothing behind the head.
HOT octet_position decode_forks(decoder* d, const sequence* s, uint8_t* at, const uint8_t* end,
                                uint64_t stride, octet_position position) {
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

// ---- other numbers ------------------------------------------------------------------------------------------

// The lowest of the bytes of a word that the first `octets` (1 to 4) are, with a sign.
HOT uint32_t signed_number(uint32_t word, uint32_t octets) {
    return static_cast<uint32_t>(static_cast<int32_t>(word) >> (32 - octets * 8));
}

WARM octet_position decode_counted_number(decoder* d, const op* o, uint8_t* value, octet_position position) {
    if (!has_octets(d, position, 1)) return kRefused;
    uint32_t octets = d->data[position];
    if (octets - 1 > 3) return octets > 0x80 ? by_walker(d, o, value, position) : kRefused;
    if (!has_octets(d, ++position, octets)) return kRefused;
    uint32_t word = word_at(d, position);
    store32(value, o->low != 0 ? signed_number(word, octets) : word >> (32 - octets * 8));
    return position + octets;
}

WARM octet_position decode_enumeration(decoder* d, const op* o, uint8_t* value, octet_position position) {
    if (!has_octets(d, position, 1)) return kRefused;
    uint32_t number = d->data[position++];
    if (number >= 0x80) {
        uint32_t octets = number & 0x7F;
        if (octets - 1 > 3 || !has_octets(d, position, octets)) return kRefused;
        number = signed_number(word_at(d, position), octets);
        position += octets;
    }
    const asn1_type_desc* type = d->code->types[o->type];
    enum_layout items = enum_of(type);
    int32_t index = asn1_find_enum_index(items.names, items.total, static_cast<int32_t>(number), word0(type));
    if (index < 0) return kRefused;
    store32(value, static_cast<uint32_t>(index));
    return position;
}

// ---- lengths ------------------------------------------------------------------------------------------------

// A length that is not one octet.
WARM octet_position get_long_length(const decoder* d, octet_position position, uint32_t* length) {
    uint32_t octets = d->data[position++] & 0x7F;
    if (octets == 0 || octets == 0x7F || !has_octets(d, position, octets)) return kRefused;
    *length = 0;
    for (; octets > 0; --octets) {
        if (*length > 0x7FFFFF) return kRefused;
        *length = *length << 8 | d->data[position++];
    }
    return position;
}

HOT octet_position get_length(const decoder* d, octet_position position, uint32_t* length) {
    if (!has_octets(d, position, 1)) return kRefused;
    *length = d->data[position];
    return __builtin_expect(*length < 0x80, 1) ? position + 1 : get_long_length(d, position, length);
}

// The same, and whether so many octets are there.
HOT octet_position get_contents(const decoder* d, octet_position position, uint32_t* length) {
    position = get_length(d, position, length);
    return !is_failure(position) && has_octets(d, position, *length) ? position : kRefused;
}

// ---- big integers -------------------------------------------------------------------------------------------

// The walker holds the sum of the bounds before it takes the number's own block.
WARM octet_position decode_big_integer(decoder* d, const op* o, asn1_integer* value,
                                       octet_position position) {
    constexpr uint32_t kManyOctets = 64;
    uint32_t octets = o->width;
    octet_position contents = octets != 0 ? position : get_length(d, position, &octets);
    if (is_failure(contents) || octets == 0 || !has_octets(d, contents, octets)) return kRefused;
    if (octets > kManyOctets) return by_walker(d, o, value, position);
    if (d->memory.left < o->low * sizeof(uint32_t)) return kNoMemory;
    uint32_t limbs = limbs_of_octets(octets);
    value->limbs = static_cast<uint32_t*>(take_block(d, limbs * sizeof(uint32_t)));
    if (!value->limbs) return kNoMemory;
    value->size = value->capacity = limbs;
    set_integer_octets(value, d->data + contents, octets, o->range != 0);
    return contents + octets;
}

// ---- strings ------------------------------------------------------------------------------------------------

WARM octet_position decode_octets(decoder* d, const op* o, asn1_string* string, octet_position position) {
    uint32_t length = o->low;
    if (o->width == kGeneralLength) position = get_length(d, position, &length);
    if (is_failure(position) || !has_octets(d, position, length)) return kRefused;
    string->data = static_cast<uint8_t*>(take_block(d, length));
    if (!string->data) return kNoMemory;
    string->length = length;
    copy_octets(string->data, d->data + position, length);
    return position + length;
}

// The length and the count of unused bits before the bits of a string of variable size.
HOT octet_position get_bit_count(const decoder* d, octet_position position, uint64_t* bits) {
    uint32_t length;
    position = get_length(d, position, &length);
    if (is_failure(position) || length == 0 || !has_octets(d, position, 1)) return kRefused;
    uint32_t unused = d->data[position];
    if (unused > 7 || (length == 1 && unused != 0)) return kRefused;
    *bits = (uint64_t{length} - 1) * 8 - unused;
    return position + 1;
}

WARM octet_position decode_bits(decoder* d, const op* o, asn1_bit_string* string, octet_position position) {
    uint64_t bits = o->low;
    if (o->width == kGeneralLength) position = get_bit_count(d, position, &bits);
    uint64_t octets = (bits + 7) / 8;
    if (is_failure(position) || !has_octets(d, position, octets)) return kRefused;
    string->data = static_cast<uint8_t*>(take_block(d, octets));
    if (!string->data) return kNoMemory;
    string->length = bits;
    copy_octets(string->data, d->data + position, octets);
    if (bits % 8 != 0) string->data[bits / 8] &= static_cast<uint8_t>(0xFF00 >> bits % 8);
    return position + octets;
}

// ---- lists --------------------------------------------------------------------------------------------------

HOT octet_position decode_elements(decoder* d, const op* element, uint8_t* at, uint64_t stride,
                                   uint64_t count, octet_position position) {
    const uint8_t* end = at + stride * count;
    switch (element->kind) {
        case kLeaf:
            for (; at != end && !is_failure(position); at += stride)
                position = decode_leaf(d, element, at, position);
            break;
        case kGroup:
            for (; at != end && !is_failure(position); at += stride)
                position = decode_group(d, element, at, position);
            break;
        case kFork: return decode_forks(d, &d->code->sequences[element->part], at, end, stride, position);
        default:
            for (; at != end && !is_failure(position); at += stride)
                position = decode_op(d, element, at, position);
    }
    return position;
}

WARM octet_position decode_growing(decoder* d, const op* element, asn1_array* array, uint64_t stride,
                                   uint32_t count, octet_position position) {
    growing_list growing;
    if (!begin_elements(d, &growing, array, stride, count)) return kNoMemory;
    for (; count > 0 && !is_failure(position); --count) {
        void* at = next_element(d, &growing);
        if (!at) return kNoMemory;
        position = decode_op(d, element, static_cast<uint8_t*>(at), position);
    }
    return position;
}

// A count in one to four octets behind their length.
HOT octet_position get_count(const decoder* d, octet_position position, uint32_t* count) {
    uint32_t octets;
    position = get_contents(d, position, &octets);
    if (is_failure(position) || octets - 1 > 3) return kRefused;
    *count = __builtin_expect(octets == 1, 1) ? d->data[position] : word_at(d, position) >> (32 - octets * 8);
    return position + octets;
}

WARM octet_position decode_list(decoder* d, const op* o, asn1_array* array, octet_position position) {
    uint32_t count;
    position = get_count(d, position, &count);
    if (is_failure(position)) return position;
    if (!has_stack(&d->stack)) return kNotMine;
    const list* l = &d->code->lists[o->part];
    const op* element = &d->code->ops[l->element];
    uint64_t size = l->stride * count;
    if (__builtin_expect(size > kTrustedListBytes, 0)) {
        return decode_growing(d, element, array, l->stride, count, position);
    }
    array->data = take_block(d, size);
    if (!array->data) return kNoMemory;
    array->count = count;
    if (!l->dense) zero(array->data, size);
    return decode_elements(d, element, static_cast<uint8_t*>(array->data), l->stride, count, position);
}

// ---- open types ---------------------------------------------------------------------------------------------

// Contents behind their length. What they leave of it is read again as what follows.
WARM octet_position decode_wrapped(decoder* d, const op* o, uint8_t* value, octet_position position) {
    uint32_t length;
    position = get_contents(d, position, &length);
    if (is_failure(position)) return position;
    if (!has_stack(&d->stack)) return kNotMine;
    uint64_t end = d->end;
    d->end = position + length;
    position = decode_op(d, o, value, position);
    d->end = end;
    return position;
}

// An open type that has no type is kept as octets.
static octet_position decode_raw(decoder* d, asn1_open_value* open, octet_position position) {
    uint32_t length;
    position = get_contents(d, position, &length);
    if (is_failure(position)) return position;
    open->data = take_block(d, length);
    if (!open->data) return kNoMemory;
    open->length = length;
    copy_octets(static_cast<uint8_t*>(open->data), d->data + position, length);
    return position + length;
}

WARM octet_position decode_open_type(decoder* d, const op* o, uint8_t* value, octet_position position) {
    asn1_open_value* open = reinterpret_cast<asn1_open_value*>(value);
    const asn1_type_desc* type;
    const open_type_row* row = find_row(d, o, value, &type);
    if (!row) return type ? kNotMine : decode_raw(d, open, position);
    open->type = type;
    open->data = new_record(d, row->size);
    if (!open->data) return kNoMemory;
    return decode_wrapped(d, &d->code->ops[row->op], static_cast<uint8_t*>(open->data), position);
}

WARM octet_position decode_indirect(decoder* d, const op* o, uint8_t* value, octet_position position) {
    if (!has_stack(&d->stack)) return kNotMine;
    uint8_t* record = static_cast<uint8_t*>(new_record(d, o->low));
    if (!record) return kNoMemory;
    store_pointer(value, record);
    return decode_op(d, &d->code->ops[o->part], record, position);
}

// ---- CHOICE -------------------------------------------------------------------------------------------------

// A tag whose number is not in its first octet. Numbers of five digits or more count as the largest.
static octet_position get_long_tag_number(const decoder* d, octet_position position, uint32_t* number) {
    uint32_t digits = 0;
    uint8_t octet;
    *number = 0;
    do {
        if (!has_octets(d, position, 1)) return kRefused;
        octet = d->data[position++];
        if (digits == 0 && (octet & 0x7F) == 0) return kRefused;
        *number = *number << 7 | (octet & 0x7F);
        if (digits < 5) ++digits;
    } while ((octet & 0x80) != 0);
    if (digits >= 5) *number = ASN1_TAG_NUMBER_MASK;
    return position;
}

// Any tag.
WARM octet_position get_alternative(const decoder* d, const choice* c, octet_position position,
                                    uint32_t* alternative) {
    uint32_t octet = d->data[position++];
    uint32_t number = octet & 0x1F;
    if (number == 0x1F) position = get_long_tag_number(d, position, &number);
    if (is_failure(position)) return position;
    uint32_t tag = octet >> 6 << ASN1_TAG_CLASS_SHIFT | number;
    const choice_tag* one = &d->code->choice_tags[c->tags];
    const choice_tag* end = one + c->tag_count;
    while (one != end && one->tag != tag) ++one;
    if (one == end) return kRefused;
    *alternative = one->alternative;
    return position;
}

WARM octet_position decode_choice(decoder* d, const op* o, uint8_t* record, octet_position position) {
    const choice* c = &d->code->choices[o->part];
    if (!has_octets(d, position, 1)) return kRefused;
    uint32_t selector = (d->data[position] & 0xDFu) - c->first_octet;
    if (__builtin_expect(selector < c->direct, 1)) {
        ++position;
    } else {
        position = get_alternative(d, c, position, &selector);
        if (is_failure(position)) return position;
    }
    store32(record + c->selector, selector);
    const op* alternative = &d->code->ops[c->ops] + selector;
    uint8_t* payload = record + c->payload;
    if (__builtin_expect(selector >= c->root, 0)) return decode_wrapped(d, alternative, payload, position);
    if (alternative->kind == kGroup) return decode_lone_group(d, alternative, payload, position);
    return decode_op(d, alternative, payload, position);
}

// ---- SEQUENCE -----------------------------------------------------------------------------------------------

// The members of an extension addition group.
static octet_position decode_members(decoder* d, const sequence* s, const extension_unit& unit,
                                     uint8_t* record, octet_position position) {
    const op* member = &d->code->ops[s->additions + unit.first];
    const uint8_t* has_bit = &d->code->flags[s->has_preamble_bit + unit.first];
    uint32_t width = 0;
    for (uint32_t i = 0; i < unit.count; ++i) width += has_bit[i];
    if (!has_octets(d, position, (width + 7) / 8)) return kRefused;
    uint64_t preamble = window_at(d, position);
    uint64_t present = 0;
    position += (width + 7) / 8;
    for (uint32_t i = 0; i < unit.count; ++i) {
        bool is_present = !has_bit[i] || preamble >> 63 != 0;
        preamble <<= has_bit[i];
        present |= uint64_t{is_present} << i;
        if (is_present && member[i].presence != kNone) store32(record + member[i].presence, 1);
    }
    for (; present != 0 && !is_failure(position); present >>= 1, ++member) {
        if ((present & 1) != 0) position = decode_op(d, member, record + member->offset, position);
    }
    return position;
}

static octet_position decode_group_unit(decoder* d, const sequence* s, const extension_unit& unit,
                                        uint8_t* record, octet_position position) {
    uint32_t length;
    position = get_contents(d, position, &length);
    if (is_failure(position)) return position;
    if (unit.count > kWindowBits) return kNotMine;
    uint64_t end = d->end;
    d->end = position + length;
    position = decode_members(d, s, unit, record, position);
    d->end = end;
    return position;
}

static octet_position decode_unit(decoder* d, const sequence* s, const extension_unit& unit, uint8_t* record,
                                  octet_position position) {
    if (unit.is_group) return decode_group_unit(d, s, unit, record, position);
    const op* first = &d->code->ops[s->additions + unit.first];
    if (first->presence != kNone) store32(record + first->presence, 1);
    return decode_wrapped(d, first, record + first->offset, position);
}

// An addition of a later version of the type.
static octet_position skip_addition(const decoder* d, octet_position position) {
    uint32_t length;
    position = get_contents(d, position, &length);
    return is_failure(position) ? position : position + length;
}

// The bitmap and what it announces; one that is wider than a window is the walker's. It counts as a block as long as its
// additions are read.
WARM octet_position decode_additions(decoder* d, const sequence* s, uint8_t* record,
                                     octet_position position) {
    uint64_t bits;
    position = get_bit_count(d, position, &bits);
    if (is_failure(position) || !has_octets(d, position, (bits + 7) / 8)) return kRefused;
    if (bits > kWindowBits) return kNotMine;
    uint64_t held = counted_size((bits + 7) / 8);
    if (!count_bytes(&d->memory, held)) return kNoMemory;
    uint64_t bitmap = bits == 0 ? 0 : window_at(d, position) & UINT64_MAX << (64 - bits);
    position += (bits + 7) / 8;
    const extension_unit* units = &d->code->extension_units[s->units];
    while (bitmap != 0 && !is_failure(position)) {
        uint32_t i = static_cast<uint32_t>(__builtin_clzll(bitmap));
        bitmap ^= UINT64_C(1) << 63 >> i;
        position =
            i < s->unit_count ? decode_unit(d, s, units[i], record, position) : skip_addition(d, position);
    }
    uncount_bytes(&d->memory, held);
    return position;
}

// Leaves from an op on that stand and are present one behind the other. Stays at the last one. One that is always there has
// its own place for a presence word.
HOT octet_position decode_leaves(decoder* d, const op** o, uint64_t* todo, uint8_t* record,
                                 octet_position position) {
    const op* one = *o;
    if (__builtin_expect(!has_octets(d, position, one->count * 4u), 0)) {
        store32(record + one->presence, 1);
        return decode_leaf(d, one, record + one->offset, position);
    }
    const octet_leaf* leaves = d->code->octet_leaves;
    const uint8_t* octets = d->data + position;
    const op* last = one + one->count - 1;
    for (;; ++one, *todo <<= 1) {
        store32(record + one->presence, 1);
        const octet_leaf& leaf = leaves[one->part];
        uint32_t number = number_of(leaf, load_octets32(octets));
        if (__builtin_expect(number > leaf.range, 0)) {
            *o = one;
            return decode_enumeration(d, one, record + one->offset, static_cast<uint64_t>(octets - d->data));
        }
        store32(record + one->offset, number);
        octets += one->width;
        if (one == last || (*todo >> 62 & 1) == 0) break;
    }
    *o = one;
    return static_cast<uint64_t>(octets - d->data);
}

// Runs ops: bit 63 is the first one's.
HOT octet_position run_ops(decoder* d, const op* o, uint64_t todo, uint8_t* record, octet_position position) {
    for (; todo != 0; todo <<= 1, ++o) {
        // A branch, not arithmetic: where op follows op its address does not wait for the preamble.
        if (todo >> 63 == 0) {
            uint32_t skipped = static_cast<uint32_t>(__builtin_clzll(todo));
            todo <<= skipped;
            o += skipped;
        }
        uint8_t* value = record + o->offset;
        if (o->kind != kLeaf && o->presence != kNone) store32(record + o->presence, 1);
        switch (o->kind) {
            case kLeaf: position = decode_leaves(d, &o, &todo, record, position); break;
            case kGroup: position = decode_group(d, o, value, position); break;
            case kSequence:
                position = decode_sequence(d, &d->code->sequences[o->part], value, position);
                break;
            case kFork: position = decode_fork(d, &d->code->sequences[o->part], value, position); break;
            case kList: position = decode_list(d, o, reinterpret_cast<asn1_array*>(value), position); break;
            case kChoice: position = decode_choice(d, o, value, position); break;
            default: position = decode_op(d, o, value, position); break;
        }
        if (__builtin_expect(is_failure(position), 0)) return position;
    }
    return position;
}

static octet_position decode_sequence(decoder* d, const sequence* s, uint8_t* record,
                                      octet_position position) {
    uint64_t todo = s->always;
    bool extended = false;
    if (s->width != 0) {
        uint32_t octets = (s->width + 7u) / 8;
        if (!has_octets(d, position, octets)) return kRefused;
        uint64_t preamble = window_at(d, position);
        position += octets;
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
    if (__builtin_expect(s->held != 0, 0) && !count_bytes(&d->memory, s->held)) return kNoMemory;
    position = run_ops(d, &d->code->ops[s->ops], todo, record, position);
    uncount_bytes(&d->memory, s->held);
    if (__builtin_expect(extended, 0) && !is_failure(position))
        position = decode_additions(d, s, record, position);
    if (s->needs_frame) d->frames = frame.parent;
    return position;
}

// ---- any op -------------------------------------------------------------------------------------------------

static octet_position decode_op(decoder* d, const op* o, uint8_t* value, octet_position position) {
    switch (o->kind) {
        case kLeaf: return decode_leaf(d, o, value, position);
        case kGroup: return decode_lone_group(d, o, value, position);
        case kSequence: return decode_sequence(d, &d->code->sequences[o->part], value, position);
        case kFork: return decode_fork(d, &d->code->sequences[o->part], value, position);
        case kList: return decode_list(d, o, reinterpret_cast<asn1_array*>(value), position);
        case kChoice: return decode_choice(d, o, value, position);
        case kOctets:
        case kChars: return decode_octets(d, o, reinterpret_cast<asn1_string*>(value), position);
        case kBits: return decode_bits(d, o, reinterpret_cast<asn1_bit_string*>(value), position);
        case kBigInteger: return decode_big_integer(d, o, reinterpret_cast<asn1_integer*>(value), position);
        case kCountedNumber: return decode_counted_number(d, o, value, position);
        case kEnumeration: return decode_enumeration(d, o, value, position);
        case kOpenType: return decode_open_type(d, o, value, position);
        case kIndirect: return decode_indirect(d, o, value, position);
        case kNull: return position;
        default: return by_walker(d, o, value, position);
    }
}

decode_result run_oer_decode(const orlenta_codec* codec, orlenta_arena* arena, void** out,
                             const uint8_t* data, uint64_t size) {
    const rule_program* code = program_for(codec, kOer);
    *out = nullptr;
    if (!code) return {kGaveUp, 0, 0, false, 0};
    decoder d;
    d.code = code->code;
    d.frames = nullptr;
    d.stack = begin_stack();
    d.memory = begin_decode_memory(size);
    d.arena = arena;
    d.walker_pieces = 0;
    d.data = data;
    d.end = size;
    uint64_t allowed = d.memory.left;
    *out = new_outermost_record(&d, codec->record_size);
    if (!*out) return {kOutOfMemory, 0, 0, false, 0};
    const op* root = &code->code->ops[code->root];
    octet_position position = decode_op(&d, root, static_cast<uint8_t*>(*out), 0);
    if (__builtin_expect(!is_failure(position), 1)) return {kDone, position * 8, 0, true, d.walker_pieces};
    if (!arena) orlenta_free_value(codec, *out);
    *out = nullptr;
    return {outcome_of(position), 0, allowed - d.memory.left, true, d.walker_pieces};
}

}  // namespace orlenta::program
