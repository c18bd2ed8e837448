// SPDX-License-Identifier: Apache-2.0
// Programs of a region's types, made by the library's own builder over tables in memory.
#pragma once

#include <array>
#include <optional>
#include <unordered_map>
#include <vector>

#include "compiler/layout/layout.hpp"
#include "compiler/memory/tables.hpp"
#include "compiler/programs/coded_types.hpp"
#include "program/build.hpp"

namespace orlentac {

// A region whose types get programs.
struct CodedRegion {
    const Layout& layout;
    std::vector<CodedType> types;  // in the order of Layout::tables
    MemoryTables memory;
    std::unordered_map<const Table*, const asn1_type_desc*> addresses;
    std::unordered_map<const asn1_type_desc*, const Table*> tables;
};
CodedRegion make_coded_region(const Layout& layout, std::vector<CodedType> types);

// A program for a rule, with an outermost op for each of some types; what they have in common is in it once.
struct BuiltProgram {
    orlenta::program::builder arrays = {};
    std::vector<std::optional<uint32_t>> roots;  // by type; of one without this rule there is none

    BuiltProgram() = default;
    BuiltProgram(const BuiltProgram&) = delete;
    BuiltProgram& operator=(const BuiltProgram&) = delete;
    ~BuiltProgram() { orlenta::program::free_builder(&arrays); }
};

// Programs for all rules, by rule. The types[] of each begin with those of the one before, so that the last one's serve
// all of them.
using BuiltPrograms = std::array<BuiltProgram, orlenta::program::kRuleCount>;

// Throws std::bad_alloc.
void build_programs(BuiltPrograms& out, const CodedRegion& region, const std::vector<CodedType>& types);

}  // namespace orlentac
