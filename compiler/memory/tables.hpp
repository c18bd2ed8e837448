// SPDX-License-Identifier: Apache-2.0
// The tables of a layout in memory, for programs that have no time to ask a C compiler: word for word those that
// emit/tables.hpp writes as text.
#pragma once

#include <orlenta/type.h>

#include <string>
#include <vector>

#include "compiler/layout/layout.hpp"

namespace orlentac {

struct MemoryTable {
    std::string symbol;  // as Table::symbol
    const asn1_type_desc* type = nullptr;
};

// Owns all that its tables point at, and needs the layout no more. Moving leaves the tables where they are.
struct MemoryTables {
    std::vector<MemoryTable> tables;  // as Layout::tables
    std::vector<asn1_word> words;     // descriptors and constants
    std::vector<char> texts;

    MemoryTables() = default;
    MemoryTables(MemoryTables&&) = default;
    MemoryTables& operator=(MemoryTables&&) = default;
    MemoryTables(const MemoryTables&) = delete;
    MemoryTables& operator=(const MemoryTables&) = delete;
};

MemoryTables make_tables(const Layout& layout);

}  // namespace orlentac
