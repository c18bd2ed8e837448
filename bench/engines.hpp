// SPDX-License-Identifier: Apache-2.0
// The ways from bytes to a value and back that are measured.
#pragma once

#include <orlenta/error.h>
#include <orlenta/type.h>

#include <string>
#include <vector>

#include "cli/rules.hpp"

namespace bench {

struct Engine {
    const cli::Rules* rules;
    // "walker": the descriptor is walked with the value. "library": asn1_uper_decode() and its like, which find the
    // programs that are built in. "program": a codec made once is run. "arena": the same, decoded into an arena.
    const char* name;
    int64_t (*decode)(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                      asn1_error* error);
    void (*release)(const asn1_type_desc* type, void* value);
    int64_t (*encode)(uint8_t** out, const asn1_type_desc* type, const void* value, const cli::Style& style,
                      asn1_error* error);
};

// Every way of every encoding rule; those of one rule stand together.
std::vector<Engine> all_engines();

// `value` by the engine, text on one line. Ends the program if it is refused.
std::string encode_by(const Engine& engine, const asn1_type_desc* type, const void* value);

// How often a program leaves a message, or a part of one, to the walker.
struct GivenUp {
    size_t messages = 0, parts = 0;
};
GivenUp given_up_by_program(const asn1_type_desc* type, const void* value);

}  // namespace bench
