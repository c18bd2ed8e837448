// SPDX-License-Identifier: Apache-2.0
// The order of two values. It can't be refused: where the stack runs low, the levels of the walk wait in a list.
#include <orlenta/memory.h>
#include <orlenta/value.h>
#include <stdlib.h>

#include "core/descriptor.hpp"
#include "core/stackless.hpp"

using namespace orlenta;

// ---- values without others in them ------------------------------------------------------------------------

template <typename T>
static int order(T a, T b) {
    return (a > b) - (a < b);
}

static int compare_bytes(const void* a, const void* b, uint64_t size) {
    return size != 0 ? memcmp(a, b, size) : 0;
}

// The low halves of two lengths or counts.
static int order_low32(uint64_t a, uint64_t b) {
    return order(static_cast<uint32_t>(a), static_cast<uint32_t>(b));
}

static int compare_integers(const asn1_type_desc* desc, const void* a, const void* b) {
    if (is_big_integer(desc)) {
        return asn1_integer_cmp(static_cast<const asn1_integer*>(a), static_cast<const asn1_integer*>(b));
    }
    if (is_unsigned_integer(desc)) return order(load32(a), load32(b));
    return order(static_cast<int32_t>(load32(a)), static_cast<int32_t>(load32(b)));
}

static int compare_words(const void* a, const void* b) {
    return order(static_cast<int32_t>(load32(a)), static_cast<int32_t>(load32(b)));
}

static int compare_bit_strings(const asn1_bit_string* a, const asn1_bit_string* b) {
    if (int result = order_low32(a->length, b->length); result != 0) return result;
    return compare_bytes(a->data, b->data, (static_cast<uint64_t>(static_cast<uint32_t>(a->length)) + 7) / 8);
}

static int compare_octet_strings(const asn1_string* a, const asn1_string* b) {
    if (int result = order_low32(a->length, b->length); result != 0) return result;
    return compare_bytes(a->data, b->data, static_cast<uint32_t>(a->length));
}

static int compare_char_strings(const asn1_type_desc* desc, const asn1_string* a, const asn1_string* b) {
    uint32_t shift = code_unit_shift(string_type(desc));
    if (shift == 0) return compare_octet_strings(a, b);
    if (int result = order_low32(a->length, b->length); result != 0) return result;
    for (uint64_t i = 0, n = static_cast<uint32_t>(a->length); i < n; ++i) {
        int result = order(load_code_unit(a->data, i, shift), load_code_unit(b->data, i, shift));
        if (result != 0) return result;
    }
    return 0;
}

static int compare_reals(const void* a, const void* b) {
    double x, y;
    memcpy(&x, a, sizeof x);
    memcpy(&y, b, sizeof y);
    return asn1_cmp_real(x, y);
}

// ---- SEQUENCE, SET and their lists ------------------------------------------------------------------------

namespace {

// What is left to compare of two SEQUENCEs or SETs, or, if `field` is null, of two lists.
struct pair_level {
    const void* a;
    const void* b;
    const asn1_field* field;
    const asn1_field* end;
    const asn1_type_desc* element;
    uint64_t stride, count;
};

struct compare_walk {
    stack_guard stack;
    pair_level* waiting;
    uint64_t count, capacity;
    bool is_waiting;     // the list is being worked off
    bool has_no_memory;  // for the list
};

}  // namespace

static int compare_pair(compare_walk* walk, const asn1_type_desc* desc, const void* a, const void* b);

// The order of the presence of a component; `is_there` if it is there in both records.
static int compare_presence(const asn1_field* field, const void* a, const void* b, bool* is_there) {
    *is_there = true;
    if (!is_presence_flagged(field)) return 0;
    int32_t in_a = static_cast<int32_t>(presence_word(field, a));
    int32_t in_b = static_cast<int32_t>(presence_word(field, b));
    if (in_a != in_b) return order(in_a, in_b);
    *is_there = in_a != 0;
    return 0;
}

// ---- without recursion ------------------------------------------------------------------------------------

static bool add_waiting(compare_walk* walk, const pair_level& level) {
    void* list = walk->waiting;
    if (walk->count == walk->capacity &&
        __asn1_realloc_buf(&list, sizeof level, &walk->capacity, walk->count + 1, 0) != 0) {
        return false;
    }
    walk->waiting = static_cast<pair_level*>(list);
    walk->waiting[walk->count++] = level;
    return true;
}

// Compares the next pair of records of the level at the list's end, or takes the level off if there is none.
static int compare_next_pair(compare_walk* walk) {
    pair_level* level = &walk->waiting[walk->count - 1];
    const void *a = level->a, *b = level->b;
    if (level->field < level->end) {
        const asn1_field* field = level->field++;
        bool is_there;
        int result = compare_presence(field, a, b, &is_there);
        if (result != 0 || !is_there) return result;
        return compare_pair(walk, field_type(field), field_value(field, a), field_value(field, b));
    }
    if (level->count > 0) {
        --level->count;
        level->a = at_offset(a, level->stride);
        level->b = at_offset(b, level->stride);
        return compare_pair(walk, level->element, a, b);
    }
    --walk->count;
    return 0;
}

// What a pair adds to the list's end comes before the pair's next neighbour, so that the first difference decides,
// as in recursion.
static int compare_waiting(compare_walk* walk) {
    int result = 0;
    walk->is_waiting = true;
    while (walk->count > 0 && result == 0) result = compare_next_pair(walk);
    asn1_free(walk->waiting);
    walk->waiting = nullptr;
    walk->count = walk->capacity = 0;
    walk->is_waiting = false;
    return result;
}

// Takes over a level where the stack runs low; `result` is then the order as far as it is known. False if there is no
// memory for the list: the caller goes on by recursion, which may still do.
ORLENTA_NOINLINE static bool compare_without_stack(compare_walk* walk, const pair_level& level, int* result) {
    if (walk->has_no_memory || !add_waiting(walk, level)) {
        walk->has_no_memory = true;  // from here on: within a recursion nothing may be put off
        return false;
    }
    *result = walk->is_waiting ? 0 : compare_waiting(walk);
    return true;
}

ORLENTA_NOINLINE static bool compare_components_without_stack(compare_walk* walk, const asn1_type_desc* desc,
                                                              const void* a, const void* b, int* result) {
    const asn1_field* fields = components(desc);
    return compare_without_stack(walk, {a, b, fields, fields + component_count(desc), nullptr, 0, 0}, result);
}

ORLENTA_NOINLINE static bool compare_lists_without_stack(compare_walk* walk, const asn1_type_desc* desc,
                                                         const asn1_array* a, const asn1_array* b,
                                                         int* result) {
    list_layout list = list_of(desc);
    uint64_t count = static_cast<uint32_t>(a->count);
    return compare_without_stack(walk, {a->data, b->data, nullptr, nullptr, list.element, list.stride, count},
                                 result);
}

// ---- the walk ---------------------------------------------------------------------------------------------

ORLENTA_NOINLINE static int compare_components(compare_walk* walk, const asn1_type_desc* desc, const void* a,
                                               const void* b) {
    int result;
    if (!has_stack(&walk->stack) && compare_components_without_stack(walk, desc, a, b, &result))
        return result;
    const asn1_field* field = components(desc);
    for (const asn1_field* end = field + component_count(desc); field < end; ++field) {
        bool is_there;
        result = compare_presence(field, a, b, &is_there);
        if (result != 0) return result;
        if (!is_there) continue;
        result = compare_pair(walk, field_type(field), field_value(field, a), field_value(field, b));
        if (result != 0) return result;
    }
    return 0;
}

ORLENTA_NOINLINE static int compare_lists(compare_walk* walk, const asn1_type_desc* desc, const asn1_array* a,
                                          const asn1_array* b) {
    int result = order_low32(a->count, b->count);
    if (result != 0) return result;
    if (!has_stack(&walk->stack) && compare_lists_without_stack(walk, desc, a, b, &result)) return result;
    list_layout list = list_of(desc);
    for (uint64_t i = 0, n = static_cast<uint32_t>(a->count); i < n; ++i) {
        result = compare_pair(walk, list.element, at_offset(a->data, i * list.stride),
                              at_offset(b->data, i * list.stride));
        if (result != 0) return result;
    }
    return 0;
}

// Steps from two CHOICE values to the alternative of both; false if there is nothing to step to, and then `result`
// is the order.
static bool enter_alternatives(const asn1_type_desc*& desc, const void*& a, const void*& b, int& result) {
    choice_layout choice = choice_of(desc);
    uint32_t selector = selector_of(choice, a);
    result = order(selector, selector_of(choice, b));
    if (result != 0 || selector >= choice.total) return false;
    desc = alternative_type(choice, selector);
    a = at_offset(a, choice.payload_offset);
    b = at_offset(b, choice.payload_offset);
    return true;
}

// The same for two open types of one actual type.
static bool enter_open_values(const asn1_type_desc*& desc, const void*& a, const void*& b, int& result) {
    const asn1_open_value* open_a = static_cast<const asn1_open_value*>(a);
    const asn1_open_value* open_b = static_cast<const asn1_open_value*>(b);
    result = order(reinterpret_cast<uintptr_t>(open_a->type), reinterpret_cast<uintptr_t>(open_b->type));
    if (result != 0) return false;
    if (open_a->type == nullptr) {
        result = order(open_a->length, open_b->length);
        if (result == 0) result = compare_bytes(open_a->data, open_b->data, open_a->length);
        return false;
    }
    desc = open_a->type;
    a = open_a->data;
    b = open_b->data;
    return true;
}

static void enter_tagged(const asn1_type_desc*& desc, const void*& a, const void*& b) {
    if (is_indirect(desc)) {
        a = load_pointer(a);
        b = load_pointer(b);
    }
    desc = tagged_inner(desc);
}

static int compare_pair(compare_walk* walk, const asn1_type_desc* desc, const void* a, const void* b) {
    int result;
    for (;;) {
        if (a == nullptr || b == nullptr)
            return order(a != nullptr, b != nullptr);  // a copy that lacked memory
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return compare_components(walk, desc, a, b);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF:
                return compare_lists(walk, desc, static_cast<const asn1_array*>(a),
                                     static_cast<const asn1_array*>(b));
            case ASN1_KIND_CHOICE:
                if (!enter_alternatives(desc, a, b, result)) return result;
                break;
            case ASN1_KIND_INTEGER: return compare_integers(desc, a, b);
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED: return compare_words(a, b);
            case ASN1_KIND_BIT_STRING:
                return compare_bit_strings(static_cast<const asn1_bit_string*>(a),
                                           static_cast<const asn1_bit_string*>(b));
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
                return compare_octet_strings(static_cast<const asn1_string*>(a),
                                             static_cast<const asn1_string*>(b));
            case ASN1_KIND_NULL: return 0;
            case ASN1_KIND_TAGGED: enter_tagged(desc, a, b); break;
            case ASN1_KIND_REAL: return compare_reals(a, b);
            case ASN1_KIND_CHAR_STRING:
                return compare_char_strings(desc, static_cast<const asn1_string*>(a),
                                            static_cast<const asn1_string*>(b));
            case ASN1_KIND_ANY:
                if (!enter_open_values(desc, a, b, result)) return result;
                break;
            default: abort();
        }
    }
}

int orlenta::compare_values(const stack_guard& stack, const asn1_type_desc* desc, const void* a,
                            const void* b) {
    compare_walk walk = {stack, nullptr, 0, 0, false, false};
    return compare_pair(&walk, desc, a, b);
}

int asn1_cmp_value(const asn1_type_desc* desc, const void* a, const void* b) {
    return compare_values(begin_stack(), desc, a, b);
}

// Unsigned keys that sort as the numbers do (IEEE 754): below zero all bits turned over, above it the top bit set.
static uint64_t real_key(double value) {
    constexpr uint64_t sign = UINT64_C(1) << 63, infinity = UINT64_C(0x7FF0000000000000);
    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    if ((bits & ~sign) > infinity) return UINT64_MAX;
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

int asn1_cmp_real(double a, double b) { return order(real_key(a), real_key(b)); }
