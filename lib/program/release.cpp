// SPDX-License-Identifier: Apache-2.0
// Releasing a value by its program, which names only the components that may own blocks.
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include "core/stackless.hpp"
#include "program/codec.hpp"

namespace orlenta::program {

namespace {

struct releaser {
    const program* code;
    stack_guard stack;
};

}  // namespace

#define WARM static __attribute__((noinline))  // so that small ops pay for no large frame

static void release_op(releaser* r, const op* o, uint8_t* value);

static void release_sequence(releaser* r, const sequence* s, uint8_t* record) {
    const op* one = &r->code->ops[s->releases];
    for (const op* end = one + s->release_count; one != end; ++one) {
        if (one->presence != kNone && load32(record + one->presence) == 0) continue;
        uint8_t* value = record + one->offset;
        if (one->kind == kBlock) {
            asn1_free(load_pointer(value));
        } else {
            release_op(r, one, value);
        }
    }
}

WARM void release_list(releaser* r, const op* o, asn1_array* array) {
    const list* l = &r->code->lists[o->part];
    if (l->owns && array->data) {
        const op* element = &r->code->ops[l->element];
        uint8_t* at = static_cast<uint8_t*>(array->data);
        uint8_t* end = at + l->stride * array->count;
        if (element->kind == kSequence || element->kind == kFork) {
            const sequence* s = &r->code->sequences[element->part];
            for (; at != end; at += l->stride) release_sequence(r, s, at);
        } else {
            for (; at != end; at += l->stride) release_op(r, element, at);
        }
    }
    asn1_free(array->data);
}

WARM void release_choice(releaser* r, const op* o, uint8_t* record) {
    const choice* c = &r->code->choices[o->part];
    uint32_t selector = load32(record + c->selector);
    if (selector < c->total) release_op(r, &r->code->ops[c->ops + selector], record + c->payload);
}

WARM void release_open_type(releaser* r, const op* o, asn1_open_value* open) {
    if (open->type && open->data) {
        const row_range& range = r->code->row_ranges[r->code->open_types[o->part].rows];
        const open_type_row* row = &r->code->rows[range.first];
        const open_type_row* end = row + range.count;
        while (row != end && r->code->types[row->type] != open->type) ++row;
        if (row == end) return release_value(r->stack, open->type, open->data);
        release_op(r, &r->code->ops[row->op], static_cast<uint8_t*>(open->data));
    }
    asn1_free(open->data);
}

WARM void release_indirect(releaser* r, const op* o, uint8_t* value) {
    uint8_t* inner = static_cast<uint8_t*>(load_pointer(value));
    if (inner) release_op(r, &r->code->ops[o->part], inner);
    asn1_free(inner);
}

// A group owns blocks through additions behind its gates at the most.
WARM void release_group(releaser* r, const op* o, uint8_t* record) {
    if (o->gates == 0) return;
    const group* g = &r->code->groups[o->low];
    const op* one = &r->code->ops[g->ops];
    for (const op* end = one + g->op_count; one != end; ++one) release_op(r, one, record + one->offset);
}

// What holds other values goes to the walker where the stack runs low: that one needs none.
static void release_op(releaser* r, const op* o, uint8_t* value) {
    switch (o->kind) {
        case kLeaf:
        case kAlignedLeaf:
        case kMarkedLeaf:
        case kCountedLeaf:
        case kCountedNumber:
        case kEnumeration:
        case kNull: return;
        case kAlignedGroup:
        case kGroup: return release_group(r, o, value);
        case kSequence:
        case kFork: return release_sequence(r, &r->code->sequences[o->part], value);
        case kBlock: return asn1_free(load_pointer(value));
        case kOctets:
        case kChars:
        case kMappedChars: return asn1_free(reinterpret_cast<asn1_string*>(value)->data);
        case kBits: return asn1_free(reinterpret_cast<asn1_bit_string*>(value)->data);
        case kBigInteger:
        case kCountedBigInteger: return asn1_integer_clear(reinterpret_cast<asn1_integer*>(value));
        case kChoice: return release_choice(r, o, value);
        case kList:
            if (!has_stack(&r->stack)) break;
            return release_list(r, o, reinterpret_cast<asn1_array*>(value));
        case kOpenType:
            if (!has_stack(&r->stack)) break;
            return release_open_type(r, o, reinterpret_cast<asn1_open_value*>(value));
        case kIndirect:
            if (!has_stack(&r->stack)) break;
            return release_indirect(r, o, value);
        case kWalker: break;
    }
    release_struct(r->stack, r->code->types[o->type], value);
}

void release_contents(const orlenta_codec* codec, void* value) {
    const rule_program* code = program_for(codec, kUnaligned);
    if (!code) return asn1_free_value_struct(codec->type, value);
    releaser r = {code->code, begin_stack()};
    release_op(&r, &code->code->ops[code->root], static_cast<uint8_t*>(value));
}

}  // namespace orlenta::program

using namespace orlenta::program;

void orlenta_free_value(const orlenta_codec* codec, void* value) {
    if (!value) return;
    release_contents(codec, value);
    asn1_free(value);
}
