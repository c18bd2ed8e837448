// A codec: the programs of one type, one for each set of rules.
#pragma once

#include <orlenta/codec.h>

#include "program/format.hpp"

namespace orlenta::program {

// A program and the op of its outermost value, all in one block.
struct rule_program {
    uint32_t root;
    program code;
};

}  // namespace orlenta::program

struct orlenta_codec {
    const asn1_type_desc* type;
    uint64_t record_size;
    // Null: not made so far. That of kUnaligned is there from the start, since values are released by it.
    mutable const orlenta::program::rule_program* programs[orlenta::program::kRuleCount];
};

namespace orlenta::program {

// A new program, which asn1_free() releases; null without memory.
const rule_program* build_program(const asn1_type_desc* type, rule rule);

// Has the program made; null without memory.
const rule_program* make_program(const orlenta_codec* codec, rule rule);

// The program of the rule, made if this is its first use; null without memory. Any number of threads may come first.
inline const rule_program* program_for(const orlenta_codec* codec, rule rule) {
    const rule_program* made = __atomic_load_n(&codec->programs[rule], __ATOMIC_ACQUIRE);
    return __builtin_expect(made != nullptr, 1) ? made : make_program(codec, rule);
}

}  // namespace orlenta::program
