// SPDX-License-Identifier: Apache-2.0
// Programs that are compiled in: op for op those that are built at run time, for the types that the lists name. Linked
// once with the programs of the shared library, which are one for all types, and once with those of the static one.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "compiler/emit/initializer.hpp"
#include "entry/find.hpp"
#include "program/build.hpp"
#include "tests/roundtrip/values.hpp"

namespace orlenta::program {

static const char* type_word(op_kind) { return ""; }

}  // namespace orlenta::program

namespace orlenta::test {
namespace {

using program::rule;
using Types = std::vector<const asn1_type_desc*>;

// Types with a codec, in the order in which orlentac has them.
Types coded_types(const Region& region) {
    Types types;
    for (const TableEntry& entry : region.entries)
        if (entry::find_codec(entry.type)) types.push_back(entry.type);
    return types;
}

const program::rule_program* program_of(const asn1_type_desc* type, size_t rule) {
    return entry::find_codec(type)->programs[rule];
}

struct Builder : program::builder {
    explicit Builder(size_t rule) : builder{} { begin_builder(this, static_cast<program::rule>(rule)); }
    ~Builder() { free_builder(this); }
};

// Member by member, for between them there may be anything.
template <typename T>
std::string text_of(const T& item) {
    std::string text;
    orlentac::put_initializer(text, item);
    return text;
}
const void* text_of(const asn1_type_desc* type) { return type; }

template <typename T>
void expect_same(const char* name, const program::growing<T>& built, const T* constant) {
    if (built.count == 0) return;
    ASSERT_NE(constant, nullptr) << name;
    for (uint64_t i = 0; i < built.count; ++i)
        ASSERT_EQ(text_of(built.items[i]), text_of(constant[i])) << name << '[' << i << ']';
}

void expect_same(const Builder& built, const program::program& constant) {
#define ORLENTA_ARRAY(type, name) expect_same(#name, built.name, constant.name);
    ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
}

// What orlentac does for types that share programs: one a rule, each with the types[] of the one before to begin with.
void expect_built(const Types& types) {
    Types seen;
    for (size_t rule = 0; rule < program::kRuleCount; ++rule) {
        Builder built(rule);
        for (const asn1_type_desc* type : seen) type_index(&built, type);
        const program::program* code = nullptr;
        for (const asn1_type_desc* type : types) {
            const program::rule_program* constant = program_of(type, rule);
            if (!constant) continue;
            ASSERT_EQ(constant->root, whole_op(&built, type));
            code = constant->code;
        }
        if (code) expect_same(built, *code);
        seen.assign(built.types.items, built.types.items + built.types.count);
    }
}

class Constants : public testing::TestWithParam<Region> {};

TEST_P(Constants, AreTheProgramsBuiltAtRunTime) {
    std::map<const program::program*, Types> sharing;
    Types all = coded_types(GetParam());
    for (const asn1_type_desc* type : all) {
        ASSERT_EQ(entry::find_codec(type)->type, type);
        sharing[program_of(type, program::kUnaligned)->code].push_back(type);
    }
    for (const auto& [code, types] : sharing) expect_built(types);
    EXPECT_EQ(sharing.size(), ORLENTA_TEST_COMMON && !all.empty() ? 1 : all.size());
}

TEST_P(Constants, AreThereForMessagesAndForContentsOfOpenTypes) {
    // Those that the lists name; made by hand are the Kinds.
    static const std::map<std::string, size_t> counts = {{"CN", 6}, {"EU", 26}, {"US", 91}, {"Kinds", 0}};
    EXPECT_EQ(coded_types(GetParam()).size(), counts.at(GetParam().name));
    for (const TableEntry& entry : GetParam().entries) {
        const asn1_table_constraint* table = table_constraint_of(entry.type);
        if (!table) continue;
        size_t stride = class_field_count(table->object_class.type);
        for (uint32_t row = 0; row < low32(table->row_count); ++row) {
            const asn1_type_desc* type = table->rows.type[row * stride + low32(table->column)].type;
            EXPECT_TRUE(!type || entry::find_codec(type)) << entry.table;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Program, Constants, testing::ValuesIn(all_regions().begin(), all_regions().end()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace orlenta::test
