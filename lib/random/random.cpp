// SPDX-License-Identifier: Apache-2.0
// The walk over the descriptor that fills a value.
#include "random/random.hpp"

#include <orlenta/memory.h>
#include <orlenta/random.h>
#include <orlenta/value.h>

#include "core/failed_value.hpp"
#include "core/stackless.hpp"

namespace orlenta::random {

// -1: the value can't end.
static int refuse(asn1_random_params* params) {
    params->is_refused = true;
    return -1;
}

// The number of alternatives if there is none to take.
static uint32_t select(asn1_random_params* params, const choice_layout& choice) {
    if (params->is_valid) return valid_alternative(params, choice);
    return is_worn_out(params) ? soonest_alternative(choice) : draw(params) % choice.total;
}

int asn1_random_choice(asn1_random_params* params, const asn1_type_desc* type, void* record) {
    choice_layout choice = choice_of(type);
    if (choice.total == 0) return -1;
    uint32_t selector = select(params, choice);
    if (selector == choice.total) return refuse(params);
    store32(at_offset(record, choice.selector_offset), selector);
    return asn1_random_type(params, alternative_type(choice, selector),
                            at_offset(record, choice.payload_offset));
}

// The count is stored only with its block, so that a list without memory can still be released.
static int random_list(asn1_random_params* params, const asn1_type_desc* type, asn1_array* value) {
    list_layout list = list_of(type);
    size_range range = choose_bounds(params, type, list.lower, list.upper);
    if (static_cast<int32_t>(range.minimum) < 0) return -1;
    if (params->is_valid && !has_valid_value(list.element)) range.maximum = range.minimum;
    uint64_t count = choose_length(params, range, params->list_spread);
    size_t bytes;
    if (__builtin_mul_overflow(count, list.stride, &bytes)) return -1;
    value->data = asn1_mallocz(bytes);
    if (!value->data) return -1;
    value->count = count;
    for (uint64_t i = 0; i < count; ++i) {
        int result = asn1_random_type(params, list.element, at_offset(value->data, i * list.stride));
        if (result < 0) return result;
    }
    return 0;
}

// Goes behind all tags, allocating what indirect ones point at. -1 without memory.
static int enter_tags(const asn1_type_desc** type, void** value) {
    while (kind_of(*type) == ASN1_KIND_TAGGED) {
        const asn1_type_desc* inner = tagged_inner(*type);
        if (is_indirect(*type)) {
            void* block = asn1_mallocz_value(inner);
            store_pointer(*value, block);
            if (!block) return -1;
            *value = block;
        }
        *type = inner;
    }
    return 0;
}

static int random_integer(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    if (is_big_integer(type))
        return asn1_random_large_integer(params, type, static_cast<asn1_integer*>(value));
    return asn1_random_integer(params, type, value);
}

static int random_sequence(asn1_random_params* params, const asn1_type_desc* type, void* record) {
    return params->is_valid ? random_valid_sequence(params, type, record)
                            : asn1_random_sequence(params, type, record);
}

// The contained value of a string, which only valid values look at; null if it contains none.
static const asn1_type_desc* contained_type(const asn1_random_params* params, const asn1_type_desc* type) {
    return params->is_valid ? asn1_get_containing_type(type) : nullptr;
}

static int random_bit_string(asn1_random_params* params, const asn1_type_desc* type, asn1_bit_string* value) {
    const asn1_type_desc* contained = contained_type(params, type);
    if (!contained) return asn1_random_bit_string(params, type, value);
    asn1_string octets = {};
    int result = random_contained(params, contained, &octets);
    *value = {octets.data, 8 * octets.length};
    return result;
}

static int random_octet_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value) {
    const asn1_type_desc* contained = contained_type(params, type);
    return contained ? random_contained(params, contained, value)
                     : asn1_random_octet_string(params, type, value);
}

static int random_char_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value) {
    return params->is_valid ? random_valid_char_string(params, type, value)
                            : asn1_random_char_string(params, type, value);
}

static int random_any(asn1_random_params* params, const asn1_type_desc* type, asn1_open_value* value) {
    return params->is_valid ? random_valid_open_value(params, type, value) : asn1_random_any(params, value);
}

static int random_by_kind(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return random_sequence(params, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return random_list(params, type, static_cast<asn1_array*>(value));
        case ASN1_KIND_CHOICE: return asn1_random_choice(params, type, value);
        case ASN1_KIND_INTEGER: return random_integer(params, type, value);
        case ASN1_KIND_BOOLEAN: return asn1_random_boolean(params, value);
        case ASN1_KIND_BIT_STRING:
            return random_bit_string(params, type, static_cast<asn1_bit_string*>(value));
        case ASN1_KIND_OCTET_STRING:
            return random_octet_string(params, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return asn1_random_enumerated(params, type, value);
        case ASN1_KIND_NULL: return 0;
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            return asn1_random_object_identifier(params, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_REAL: return asn1_random_real(params, value);
        case ASN1_KIND_CHAR_STRING: return random_char_string(params, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ANY: return random_any(params, type, static_cast<asn1_open_value*>(value));
        default: return -1;
    }
}

// Counts one more part of a valid value.
static bool is_used_up(asn1_random_params* params) {
    if (params->parts_left != 0) --params->parts_left;
    return params->parts_left == 0;
}

int asn1_random_type(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    if (enter_tags(&type, &value) < 0) return -1;
    uint32_t limit = params->is_valid ? kValidDepth : kDepthLimit;
    if (params->depth >= limit || (params->is_valid && is_used_up(params))) wear_out(params);
    if (params->depth >= limit + kEndingLevels || !has_stack(&params->stack)) return refuse(params);
    ++params->depth;
    int result = random_by_kind(params, type, value);
    --params->depth;
    return result;
}

static void seed_state(asn1_random_state* state, uint32_t seed) {
    state->w = seed == 0 ? 1 : seed;
    state->z = seed * 314159 + 1;
    if (state->z == 0) state->z = 1;
}

}  // namespace orlenta::random

void* asn1_random(const asn1_type_desc* type, uint32_t seed) {
    using namespace orlenta::random;
    void* value = asn1_mallocz_value(type);
    if (!value) return nullptr;
    auto* state = static_cast<asn1_random_state*>(asn1_malloc(sizeof(asn1_random_state)));
    if (!state) return value;
    seed_state(state, seed);
    asn1_random_params params = {.state = state,
                                 .list_spread = 10,
                                 .string_spread = 200,
                                 .bit_string_spread = 100,
                                 .integer_bits = 512,
                                 .extensions = 1,
                                 .depth = 0,
                                 .is_refused = false,
                                 .stack = orlenta::begin_stack(),
                                 .is_valid = false,
                                 .parts_left = 0,
                                 .frames = nullptr};
    // Without memory the value is partly filled and fit for release, which is the result all the same.
    asn1_random_type(&params, type, value);
    asn1_free(state);
    if (!params.is_refused) return value;
    orlenta::release_value(orlenta::begin_stack(), type, value);
    return nullptr;
}

void* orlenta_random_valid(const asn1_type_desc* type, uint32_t seed) {
    using namespace orlenta::random;
    asn1_random_state state;
    seed_state(&state, seed);
    asn1_random_params params = {.state = &state,
                                 .list_spread = 3,
                                 .string_spread = 12,
                                 .bit_string_spread = 16,
                                 .integer_bits = 96,
                                 .extensions = 1,
                                 .depth = 0,
                                 .is_refused = false,
                                 .stack = orlenta::begin_stack(),
                                 .is_valid = true,
                                 .parts_left = kValidParts,
                                 .frames = nullptr};
    void* value = asn1_mallocz_value(type);
    if (!value || asn1_random_type(&params, type, value) == 0) return value;
    orlenta::free_failed_value(type, value);
    return nullptr;
}
