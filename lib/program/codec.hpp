// SPDX-License-Identifier: Apache-2.0
// A codec: the programs of one type, one for each set of rules.
#pragma once

#include <orlenta/codec.h>

#include "program/format.hpp"

namespace orlenta::program {

// A program and the op of its outermost value.
struct rule_program {
    uint32_t root;
    const program* code;
};

}  // namespace orlenta::program

// One that is compiled in is constant: what it lacks is left to the walker. Its format is that of the orlentac that wrote
// it, and tells whether anything behind `type` is to be looked at.
struct orlenta_codec {
    uint32_t format;
    uint32_t is_constant;
    const asn1_type_desc* type;
    uint64_t record_size;
    // Null: not made so far. That of kUnaligned is there from the start, since values are released by it.
    const orlenta::program::rule_program* programs[orlenta::program::kRuleCount];
};

namespace orlenta::program {

// A new program, which asn1_free() releases; null without memory.
const rule_program* build_program(const asn1_type_desc* type, rule rule);

// Has the program made; null without memory, or if the codec is constant.
const rule_program* make_program(const orlenta_codec* codec, rule rule);

// Releases what a value of the codec's type owns.
void release_contents(const orlenta_codec* codec, void* value);

// The program of the rule, made if this is its first use; null if there is none, so that the walker has to do it. Any
// number of threads may come first.
inline const rule_program* program_for(const orlenta_codec* codec, rule rule) {
    if (__builtin_expect(codec->format != kFormat, 0)) return nullptr;
    const rule_program* made = __atomic_load_n(&codec->programs[rule], __ATOMIC_ACQUIRE);
    return __builtin_expect(made != nullptr, 1) ? made : make_program(codec, rule);
}

}  // namespace orlenta::program
