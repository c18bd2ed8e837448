// The walk over the descriptor that fills a value.
#include "random/random.hpp"

#include <orlenta/memory.h>
#include <orlenta/random.h>
#include <orlenta/value.h>

namespace orlenta::random {

// -1: the value can't end.
static int refuse(asn1_random_params* params) {
    params->is_refused = true;
    return -1;
}

int asn1_random_choice(asn1_random_params* params, const asn1_type_desc* type, void* record) {
    choice_layout choice = choice_of(type);
    if (choice.total == 0) return -1;
    uint32_t selector = is_worn_out(params) ? soonest_alternative(choice) : draw(params) % choice.total;
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
    uint64_t count = choose_length(params, range, params->list_spread);
    uint64_t bytes;
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

static int random_by_kind(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return asn1_random_sequence(params, type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return random_list(params, type, static_cast<asn1_array*>(value));
        case ASN1_KIND_CHOICE: return asn1_random_choice(params, type, value);
        case ASN1_KIND_INTEGER: return random_integer(params, type, value);
        case ASN1_KIND_BOOLEAN: return asn1_random_boolean(params, value);
        case ASN1_KIND_BIT_STRING:
            return asn1_random_bit_string(params, type, static_cast<asn1_bit_string*>(value));
        case ASN1_KIND_OCTET_STRING:
            return asn1_random_octet_string(params, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ENUMERATED: return asn1_random_enumerated(params, type, value);
        case ASN1_KIND_NULL: return 0;
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            return asn1_random_object_identifier(params, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_REAL: return asn1_random_real(params, value);
        case ASN1_KIND_CHAR_STRING:
            return asn1_random_char_string(params, type, static_cast<asn1_string*>(value));
        case ASN1_KIND_ANY: return asn1_random_any(params, static_cast<asn1_open_value*>(value));
        default: return -1;
    }
}

int asn1_random_type(asn1_random_params* params, const asn1_type_desc* type, void* value) {
    if (enter_tags(&type, &value) < 0) return -1;
    if (params->depth >= kDepthLimit) wear_out(params);
    if (params->depth >= kDepthLimit + kEndingLevels || !has_stack(&params->stack)) return refuse(params);
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
                                 .stack = orlenta::begin_stack()};
    // Without memory the value is partly filled and fit for release, which is the result all the same.
    asn1_random_type(&params, type, value);
    asn1_free(state);
    if (!params.is_refused) return value;
    asn1_free_value(type, value);
    return nullptr;
}
