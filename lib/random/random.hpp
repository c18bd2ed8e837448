// SPDX-License-Identifier: Apache-2.0
// The generator and the parts of a random value. The order of draws is fixed: it decides the values.
#pragma once

#include <orlenta/memory.h>
#include <orlenta/type_info.h>

#include "core/descriptor.hpp"
#include "core/stack.hpp"

namespace orlenta::random {

// A pair of multiply-with-carry generators.
struct asn1_random_state {
    uint32_t w;
    uint32_t z;
};

struct asn1_random_params {
    asn1_random_state* state;    // both words 0: worn out
    uint32_t list_spread;        // elements above the minimum
    uint32_t string_spread;      // octets or characters above the minimum
    uint32_t bit_string_spread;  // bits above the minimum
    uint32_t integer_bits;       // of a big integer without an upper limit
    uint32_t extensions;         // flag: extension additions may be produced
    uint32_t depth;              // descriptors entered and not left
    bool is_refused;             // the stack or the type does not let the value end
    stack_guard stack;
    bool is_valid;                    // keeps to every constraint, and to what all encoding rules can tell
    uint32_t parts_left;              // is_valid: values to be made before it wears out
    const asn1_parent_frame* frames;  // is_valid: innermost SEQUENCE or SET, null outside
};

// Levels of descriptors at which drawing ends. The draws alone end nearly every value of a recursive type far above
// this; but where lists make more of a type than its optional components take away, some seeds would go on for ever.
// To cut only what lies deeper would not help: what is left and right of it grows with each level as well. So the
// first time that the limit is met, all that is still to be filled gets its smallest content.
constexpr uint32_t kDepthLimit = 2048;

// Levels behind the limit in which the smallest content must end.
constexpr uint32_t kEndingLevels = 64;

// Where a valid value wears out: levels, and values of all kinds made so far.
constexpr uint32_t kValidDepth = 40;
constexpr uint32_t kValidParts = 600;

// ---- draws (generator.cpp) --------------------------------------------------------------------------------

inline void step(asn1_random_state* state) {
    state->z = 36969 * (state->z & 0xFFFF) + (state->z >> 16);
    state->w = 18000 * (state->w & 0xFFFF) + (state->w >> 16);
}

// From now on every draw, coin and byte is 0, which the generator never leaves. That gives all kinds their smallest
// content, but for CHOICE and REAL: optional parts absent, defaults, least counts, lower bounds, first items and
// characters.
inline void wear_out(asn1_random_params* params) { *params->state = {0, 0}; }

// No seed gets there: `z` is 0 only after a 0.
inline bool is_worn_out(const asn1_random_params* params) { return params->state->z == 0; }

inline uint32_t draw(asn1_random_params* params) {
    step(params->state);
    return (params->state->z << 16) + params->state->w;
}

inline bool coin(asn1_random_params* params) {
    step(params->state);
    return (params->state->w & 1) != 0;
}

inline uint8_t random_byte(asn1_random_params* params) {
    step(params->state);
    return static_cast<uint8_t>(params->state->w);
}

void fill_random(asn1_random_params* params, uint8_t* data, uint64_t length);

// 0 to `limit`, each bit length equally likely; `limit` is 1 or more.
uint32_t random_uint(asn1_random_params* params, uint32_t limit);
// The same for a big integer; without a `limit`, up to `default_bits` bits. 0 or -1.
int random_large_uint(asn1_random_params* params, uint32_t default_bits, asn1_integer* result,
                      const asn1_integer* limit);

struct size_range {
    uint32_t minimum, maximum;
};
// Whether an extensible type gets a value from outside its root.
bool leaves_root(asn1_random_params* params, const asn1_type_desc* type);
// The bounds that a length is drawn from: the root's, or none outside it.
size_range choose_bounds(asn1_random_params* params, const asn1_type_desc* type, uint32_t lower,
                         uint32_t upper);
// A length at most `spread` above the minimum.
uint32_t choose_length(asn1_random_params* params, size_range range, uint32_t spread);

// ---- values: 0, or -1 without memory or for a defect of the descriptor ------------------------------------

// random.cpp
int asn1_random_type(asn1_random_params* params, const asn1_type_desc* type, void* value);
int asn1_random_choice(asn1_random_params* params, const asn1_type_desc* type, void* record);

// smallest.cpp
// The alternative whose smallest value has the fewest levels, the first of several such; the number of alternatives
// if none ends within kEndingLevels.
uint32_t soonest_alternative(const choice_layout& choice);
// Whether the type has values of a few levels whose open types are of known types.
bool has_valid_value(const asn1_type_desc* type);

// sequence.cpp
int asn1_random_sequence(asn1_random_params* params, const asn1_type_desc* type, void* record);

// numbers.cpp
int asn1_random_integer(asn1_random_params* params, const asn1_type_desc* type, void* value);
int asn1_random_large_integer(asn1_random_params* params, const asn1_type_desc* type, asn1_integer* value);
int asn1_random_boolean(asn1_random_params* params, void* value);
int asn1_random_enumerated(asn1_random_params* params, const asn1_type_desc* type, void* value);
int asn1_random_real(asn1_random_params* params, void* value);

// strings.cpp
int asn1_random_bit_string(asn1_random_params* params, const asn1_type_desc* type, asn1_bit_string* value);
int asn1_random_octet_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value);
int asn1_random_char_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value);
int asn1_random_object_identifier(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value);
int asn1_random_any(asn1_random_params* params, asn1_open_value* value);
// Gives the string a length and a block for its code units, which are not filled.
int make_code_units(asn1_random_params* params, const asn1_type_desc* type, const char_string_layout& layout,
                    asn1_string* value);
// Hands the buffer's block to `value`; -1 if memory ran out while it grew.
int take_buffer(const asn1_byte_buffer& buffer, asn1_string* value);

// valid.cpp: the kinds of which valid values are made in a way of their own
int random_valid_sequence(asn1_random_params* params, const asn1_type_desc* type, void* record);
int random_valid_open_value(asn1_random_params* params, const asn1_type_desc* type, asn1_open_value* value);
int random_contained(asn1_random_params* params, const asn1_type_desc* contained, asn1_string* value);
uint32_t valid_alternative(asn1_random_params* params, const choice_layout& choice);

// valid_text.cpp
int random_valid_char_string(asn1_random_params* params, const asn1_type_desc* type, asn1_string* value);

}  // namespace orlenta::random
