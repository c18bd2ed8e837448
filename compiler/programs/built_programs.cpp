// SPDX-License-Identifier: Apache-2.0
#include "compiler/programs/built_programs.hpp"

#include <new>

namespace orlentac {

CodedRegion make_coded_region(const Layout& layout, std::vector<CodedType> types) {
    CodedRegion region = {layout, std::move(types), make_tables(layout), {}, {}};
    for (size_t i = 0; i < layout.tables.size(); i++) {
        region.addresses[layout.tables[i]] = region.memory.tables[i].type;
        region.tables[region.memory.tables[i].type] = layout.tables[i];
    }
    return region;
}

static void build_program(BuiltProgram& out, const CodedRegion& region, const std::vector<CodedType>& types,
                          orlenta::program::rule rule, const BuiltProgram* before) {
    orlenta::program::begin_builder(&out.arrays, rule);
    for (uint64_t i = 0; before && i < before->arrays.types.count; i++)
        orlenta::program::type_index(&out.arrays, before->arrays.types.items[i]);
    for (const CodedType& type : types) {
        out.roots.emplace_back();
        if ((type.rules >> rule & 1) != 0)
            out.roots.back() = orlenta::program::whole_op(&out.arrays, region.addresses.at(type.table));
    }
    if (out.arrays.failed) throw std::bad_alloc();
}

void build_programs(BuiltPrograms& out, const CodedRegion& region, const std::vector<CodedType>& types) {
    const BuiltProgram* before = nullptr;
    for (size_t rule = 0; rule < out.size(); before = &out[rule++])
        build_program(out[rule], region, types, static_cast<orlenta::program::rule>(rule), before);
}

}  // namespace orlentac
