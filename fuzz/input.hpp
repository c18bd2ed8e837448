// SPDX-License-Identifier: Apache-2.0
// An input of fuzz_convert: four bytes that choose, and the message.
#pragma once

#include <span>
#include <vector>

#include "cli/rules.hpp"
#include "tests/roundtrip/values.hpp"

namespace fuzz {

using Bytes = std::vector<uint8_t>;

struct Table {
    const char* region;
    const orlenta::test::TableEntry* entry;

    const asn1_type_desc* type() const { return entry->type; }
};

// All types that can have values, those of all message sets and of hand-made kinds.
std::span<const Table> all_tables();

// The head. Every value of its bytes means something, so that mutation loses none: they are taken modulo what there
// is to choose from.
struct Choice {
    uint16_t table = 0;
    uint8_t from = 0, to = 0;  // rules to decode and to encode by, of cli::all_rules()
    uint8_t style = 0;         // how the encoder writes
};
constexpr size_t kHeadBytes = 4;

Choice read_head(const uint8_t* data);
void write_head(const Choice& choice, uint8_t* data);
Bytes make_input(const Choice& choice, std::span<const uint8_t> message);

const Table& table_of(const Choice& choice);
const cli::Rules& source_of(const Choice& choice);
const cli::Rules& target_of(const Choice& choice);
cli::Style style_of(const Choice& choice);

}  // namespace fuzz
