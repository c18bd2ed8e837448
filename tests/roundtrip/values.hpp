// SPDX-License-Identifier: Apache-2.0
// Random values for all tables of the message sets.
#pragma once

#include <orlenta/value.h>

#include <memory>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

namespace orlenta::test {

// A table of a region, those of simple types in place among them.
struct TableEntry {
    const char* table;  // "Latitude", "Lpn_1"; of what has no name "<n>th in place"
    const char* name;   // in the schema; "" in place
    const asn1_type_desc* type;
};

struct Region {
    const char* name;
    std::span<const TableEntry> entries;
};
inline void PrintTo(const Region& region, std::ostream* out) { *out << region.name; }
std::span<const Region> all_regions();

// The type of that name in the schema; null if there is none, or no such region is built.
const asn1_type_desc* find_type(std::string_view region_name, std::string_view name);

// The types to which no other one of the region refers: its messages, and what only stands in a module.
std::vector<TableEntry> roots_of(const Region& region);

struct Release {
    const asn1_type_desc* type;
    void operator()(void* value) const { asn1_free_value(type, value); }
};
using Value = std::unique_ptr<void, Release>;

struct Sample {
    Value value;
    bool has_raw;  // an open type whose key selects nothing is left with raw bytes
};

// A random value whose open types hold values of the types that their keys select.
Sample make_sample(const asn1_type_desc* type, uint32_t seed);

// Whether a value of the type can hold another one of it.
bool is_recursive(const asn1_type_desc* type);

// A seed for the `round`th value of a table: large and different for each.
uint32_t seed_of(const TableEntry& entry, uint32_t round);

}  // namespace orlenta::test
