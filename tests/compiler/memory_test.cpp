// SPDX-License-Identifier: Apache-2.0
// Tables in memory beside those that a C compiler made of the generated text: every word, every constant.
#include <gtest/gtest.h>
#include <orlenta/integer.h>

#include <cstring>
#include <memory>
#include <unordered_map>

#include "catalogue/region.hpp"
#include "compiler/layout/constant_form.hpp"
#include "compiler/memory/tables.hpp"
#include "tests/compiler/region_sources.hpp"

extern "C" {
const orlenta_catalogue* orlenta_catalogue_CN();
const orlenta_catalogue* orlenta_catalogue_EU();
const orlenta_catalogue* orlenta_catalogue_US();
const orlenta_catalogue* orlenta_catalogue_Tricky();
const orlenta_catalogue* orlenta_catalogue_Published();
}

using namespace orlentac;

namespace {

struct RegionCase {
    const char* name;
    std::vector<SourceText> sources;
    LayoutOptions options;
    bool shipped_forms;
    const orlenta_catalogue* (*generated)();
    size_t tables;  // 0: not counted
};

// The two sides of a comparison. Of the generated one the catalogue tells where to begin.
struct Sides {
    std::unordered_map<const asn1_word*, const Table*> in_memory;
    std::unordered_map<const Table*, const asn1_word*> generated;
    std::vector<const Table*> waiting;
    size_t differences = 0;
};

// False if another table was met under this name before.
bool meet(Sides& sides, const Table* table, const asn1_word* generated) {
    auto [known, is_new] = sides.generated.try_emplace(table, generated);
    if (is_new) sides.waiting.push_back(table);
    return known->second == generated;
}

void expect_same(Sides& sides, const std::vector<Word>& words, const asn1_word* generated,
                 const asn1_word* in_memory, const std::string& where);

bool are_same_bytes(const void* a, const void* b, size_t size) {
    return (a == nullptr) == (size == 0) && (b == nullptr) == (size == 0) &&
           (size == 0 || memcmp(a, b, size) == 0);
}

template <typename Record>
bool are_same_strings(const void* a, const void* b, size_t size) {
    auto* first = static_cast<const Record*>(a);
    auto* second = static_cast<const Record*>(b);
    return first->length == second->length && are_same_bytes(first->data, second->data, size);
}

bool are_same_integers(const void* a, const void* b) {
    auto* first = static_cast<const asn1_integer*>(a);
    auto* second = static_cast<const asn1_integer*>(b);
    return first->size == second->size && first->capacity == second->capacity &&
           first->negative == second->negative &&
           are_same_bytes(first->limbs, second->limbs, first->size * sizeof(uint32_t));
}

bool are_same_constants(const Object& object, const void* a, const void* b) {
    ConstantForm form = form_of(object);
    switch (form.record) {
        case ConstantForm::Record::word: return memcmp(a, b, sizeof(uint32_t)) == 0;
        case ConstantForm::Record::null: return memcmp(a, b, 1) == 0;
        case ConstantForm::Record::integer: return are_same_integers(a, b);
        case ConstantForm::Record::string: return are_same_strings<asn1_string>(a, b, form.bytes.size());
        case ConstantForm::Record::bit_string:
            return are_same_strings<asn1_bit_string>(a, b, form.bytes.size());
        case ConstantForm::Record::octets: return are_same_bytes(a, b, form.bytes.size());
        case ConstantForm::Record::words: break;
    }
    return false;
}

bool is_same(Sides& sides, const Word& word, asn1_word generated, asn1_word in_memory,
             const std::string& where) {
    switch (word.sort) {
        case Word::Sort::number: return generated.number == in_memory.number;
        case Word::Sort::table:
            return sides.in_memory.at(in_memory.type) == word.table &&
                   meet(sides, word.table, generated.type);
        case Word::Sort::text: return strcmp(generated.text, in_memory.text) == 0;
        case Word::Sort::object: break;
    }
    if (form_of(*word.object).record != ConstantForm::Record::words)
        return are_same_constants(*word.object, generated.address, in_memory.address);
    expect_same(sides, word.object->words, generated.type, in_memory.type, where + " constant");
    return true;
}

void expect_same(Sides& sides, const std::vector<Word>& words, const asn1_word* generated,
                 const asn1_word* in_memory, const std::string& where) {
    for (size_t i = 0; i < words.size(); i++) {
        if (is_same(sides, words[i], generated[i], in_memory[i], where)) continue;
        if (++sides.differences <= 10) ADD_FAILURE() << where << ", word " << i;
    }
}

class MemoryTablesTest : public testing::TestWithParam<RegionCase> {};

TEST_P(MemoryTablesTest, AreTheGeneratedOnes) {
    const RegionCase& region = GetParam();
    auto schema = std::make_unique<Schema>();
    auto layout = std::make_unique<Layout>();
    Diagnostics diags;
    ASSERT_TRUE(load_schema(region.sources, {region.shipped_forms}, *schema, diags));
    ASSERT_TRUE(make_layout(*schema, region.options, *layout, diags));
    MemoryTables moved = make_tables(*layout);
    const MemoryTables tables = std::move(moved);
    std::unordered_map<const Table*, const asn1_word*> in_memory;
    std::unordered_map<std::string, const Table*> by_name;
    Sides sides;
    for (size_t i = 0; i < tables.tables.size(); i++) {
        EXPECT_EQ(tables.tables[i].symbol, layout->tables[i]->symbol);
        by_name[tables.tables[i].symbol] = layout->tables[i];
        in_memory[layout->tables[i]] = tables.tables[i].type;
        sides.in_memory[tables.tables[i].type] = layout->tables[i];
    }
    for (const Alias& alias : layout->aliases)
        by_name[std::string(region.name) + "_" + alias.name] = alias.table;
    orlenta_type_entry entry;
    for (size_t i = 0; orlenta_catalogue_get(region.generated(), i, &entry) == 0; i++)
        EXPECT_TRUE(meet(sides, by_name.at(std::string(region.name) + "_" + entry.table), entry.type))
            << entry.table;
    while (!sides.waiting.empty()) {
        const Table* table = sides.waiting.back();
        sides.waiting.pop_back();
        expect_same(sides, table->words, sides.generated.at(table), in_memory.at(table), table->symbol);
    }
    EXPECT_EQ(sides.differences, 0u);
    EXPECT_EQ(sides.generated.size(), tables.tables.size());
    EXPECT_TRUE(region.tables == 0 || region.tables == tables.tables.size());
}

std::vector<SourceText> test_module(const char* name) {
    return {test::source_of(std::string(ORLENTA_COMPILER_TESTS "/") + name)};
}

INSTANTIATE_TEST_SUITE_P(
    Regions, MemoryTablesTest,
    testing::Values(
        RegionCase{"CN", test::region_sources("cn"), {"CN", 1, false}, true, orlenta_catalogue_CN, 289},
        RegionCase{"EU", test::region_sources("eu"), {"EU", 1001, false}, true, orlenta_catalogue_EU, 1345},
        RegionCase{"US", test::region_sources("us"), {"US", 3001, false}, true, orlenta_catalogue_US, 7610},
        RegionCase{
            "Tricky", test_module("tricky.asn1"), {"Tricky", 1, false}, false, orlenta_catalogue_Tricky, 0},
        RegionCase{"Published",
                   test_module("published.asn1"),
                   {"Published", 1, false},
                   false,
                   orlenta_catalogue_Published,
                   0}),
    [](const auto& info) { return info.param.name; });

}  // namespace
