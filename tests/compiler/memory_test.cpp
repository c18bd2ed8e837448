// SPDX-License-Identifier: Apache-2.0
// Tables in memory beside those that a C compiler made of the generated text: every word, every constant.
#include <gtest/gtest.h>
#include <orlenta/integer.h>

#include <cstring>
#include <memory>
#include <span>
#include <unordered_map>

#include "compiler/emit/catalogue_entry.hpp"
#include "compiler/layout/constant_form.hpp"
#include "compiler/memory/tables.hpp"
#include "tests/compiler/region_sources.hpp"

#define DECLARE_CATALOGUE(region)                                      \
    extern const orlenta_catalogue_entry orlenta_catalogue_##region[]; \
    extern const size_t orlenta_catalogue_##region##_count;
DECLARE_CATALOGUE(Tricky)
DECLARE_CATALOGUE(Published)

using namespace orlentac;

namespace {

struct RegionCase {
    const char* name;
    std::vector<SourceText> sources;
    LayoutOptions options;
    bool shipped_forms;
    std::span<const orlenta_catalogue_entry> generated;
    size_t tables;
};

// The two sides of a comparison.
struct Sides {
    std::unordered_map<const asn1_word*, const Table*> generated, in_memory;
    size_t differences = 0;
};

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
            return sides.generated.at(generated.type) == word.table &&
                   sides.in_memory.at(in_memory.type) == word.table;
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
    size_t listed_aliases = layout->lists_aliases ? layout->aliases.size() : 0;
    ASSERT_EQ(tables.tables.size() + listed_aliases, region.tables);
    ASSERT_EQ(region.generated.size(), region.tables);

    Sides sides;
    for (size_t i = 0; i < tables.tables.size(); i++) {
        EXPECT_EQ(tables.tables[i].symbol, std::string(region.name) + "_" + region.generated[i].table);
        sides.generated[region.generated[i].type] = layout->tables[i];
        sides.in_memory[tables.tables[i].type] = layout->tables[i];
    }
    for (size_t i = 0; i < tables.tables.size(); i++)
        expect_same(sides, layout->tables[i]->words, region.generated[i].type, tables.tables[i].type,
                    tables.tables[i].symbol);
    EXPECT_EQ(sides.differences, 0u);
}

#define GENERATED(region) \
    { orlenta_catalogue_##region, orlenta_catalogue_##region##_count }

std::vector<SourceText> test_module(const char* name) {
    return {test::source_of(std::string(ORLENTA_COMPILER_TESTS "/") + name)};
}

INSTANTIATE_TEST_SUITE_P(
    Regions, MemoryTablesTest,
    testing::Values(
        RegionCase{"CN", test::region_sources("cn"), {"CN", 1, false}, true, GENERATED(CN), 289},
        RegionCase{"EU", test::region_sources("eu"), {"EU", 1001, false}, true, GENERATED(EU), 1345},
        RegionCase{"US", test::region_sources("us"), {"US", 3001, false}, true, GENERATED(US), 7610},
        RegionCase{"Tricky",
                   test_module("tricky.asn1"),
                   {"Tricky", 1, false},
                   false,
                   GENERATED(Tricky),
                   orlenta_catalogue_Tricky_count},
        RegionCase{"Published",
                   test_module("published.asn1"),
                   {"Published", 1, false},
                   false,
                   GENERATED(Published),
                   orlenta_catalogue_Published_count}),
    [](const auto& info) { return info.param.name; });

}  // namespace
