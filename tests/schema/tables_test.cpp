// SPDX-License-Identifier: Apache-2.0
// The CN tables in the library, word for word where a layout is telling, and the counts of each region's tables.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <orlenta/cn.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "compiler/emit/summary.hpp"
#include "compiler/frontend.hpp"
#include "compiler/layout/layout.hpp"
#include "tests/compiler/region_sources.hpp"

using namespace orlentac;

namespace {

using Words = std::vector<uint64_t>;

void expect_numbers(const asn1_type_desc* type, size_t from, const Words& expected) {
    for (size_t i = 0; i < expected.size(); i++)
        EXPECT_EQ(type[from + i].number, expected[i]) << "word " << from + i;
}

TEST(CnTables, Integers) {
    expect_numbers(asn1_type_CN_Latitude, 0, {0x2D800002, 0xCA5B1700, 0x35A4E901});
    EXPECT_STREQ(asn1_type_CN_Latitude[3].text, "Latitude");
    expect_numbers(asn1_type_CN_DTimeOffset, 0, {0x2D900006, 0xFFFFFCB8, 0x348});
    EXPECT_STREQ(asn1_type_CN_DTimeOffset[3].text, "DTimeOffset");
}

TEST(CnTables, Enumerated) {
    const asn1_type_desc* type = asn1_type_CN_EventSource;
    expect_numbers(type, 0, {0x4E100002, 6, 0});
    const char* names[] = {"unknown",  "police",    "government", "meteorological",
                           "internet", "detection", "EventSource"};
    for (size_t i = 0; i < std::size(names); i++) EXPECT_STREQ(type[3 + i].text, names[i]);
}

TEST(CnTables, CharString) {
    expect_numbers(asn1_type_CN_DescriptiveName, 0, {0x7D800016, 3, 1, 63, 1, 0, 0x7F});
    EXPECT_STREQ(asn1_type_CN_DescriptiveName[7].text, "DescriptiveName");
}

TEST(CnTables, List) {
    const asn1_type_desc* type = asn1_type_CN_ConnectsToList;
    expect_numbers(type, 0, {0x0D900004, 1, 8, 48});
    EXPECT_EQ(type[4].type, asn1_type_CN_Connection);
    EXPECT_EQ(type[5].number, 0u);
    EXPECT_STREQ(type[6].text, "ConnectsToList");
}

// A TAGGED of the given context number before `inner`.
void expect_wrapper(const asn1_word* type, uint64_t word0, const asn1_type_desc* inner) {
    EXPECT_EQ(type[0].number, word0);
    EXPECT_EQ(type[1].type, inner);
}

TEST(CnTables, Sequence) {
    const asn1_type_desc* type = asn1_type_CN_Connection;
    expect_numbers(type, 0, {0x04000010, 3, 48});
    EXPECT_EQ(type[3].number, 0u);
    expect_wrapper(type[4].type, 0x58100000, asn1_type_CN_NodeReferenceID);
    EXPECT_EQ(type[5].number, 0u);
    EXPECT_STREQ(type[6].text, "remoteIntersection");
    EXPECT_EQ(type[7].number, 0x08000010u);
    EXPECT_EQ(type[8].type, asn1_type_CN_ConnectingLane);
    EXPECT_EQ(type[8].type[0].number, 0x04100001u);
    EXPECT_EQ(type[9].number, 12u);
    EXPECT_STREQ(type[10].text, "connectingLane");
    EXPECT_EQ(type[11].number, 0x0800002Cu);
    expect_wrapper(type[12].type, 0x58100002, asn1_type_CN_PhaseID);
    EXPECT_EQ(type[13].number, 40u);
    EXPECT_STREQ(type[14].text, "phaseId");
    EXPECT_STREQ(type[15].text, "Connection");
}

TEST(CnTables, Choice) {
    const asn1_type_desc* type = asn1_type_CN_Description;
    expect_numbers(type, 0, {0x24000000, 2, 24, 0, 8});
    EXPECT_EQ(type[5].type[0].number, 0x58100000u);
    expect_numbers(type[5].type[1].type, 0, {0x79800016, 3, 1, 512, 1, 0, 0x7F});
    EXPECT_STREQ(type[6].text, "textString");
    EXPECT_EQ(type[7].type[0].number, 0x58100001u);
    expect_numbers(type[7].type[1].type, 0, {0x41800004, 2, 512});
    EXPECT_STREQ(type[8].text, "textGB2312");
    EXPECT_STREQ(type[9].text, "Description");
    // A reference to it is explicit: component 5 of RTEData, optional.
    const asn1_word* field = asn1_type_CN_RTEData + 3 + 4 * 5;
    EXPECT_STREQ(field[3].text, "description");
    expect_wrapper(field[1].type, 0x5A100005, type);

    const asn1_type_desc* frame = asn1_type_CN_MessageFrame;
    expect_numbers(frame, 0, {0x26000000, 5, 0});
    EXPECT_STREQ(frame[7].text, "bsmFrame");
}

// Fills a record by its members and reads it by its table.
TEST(CnTables, RecordsOfTheHeaderAreThoseOfTheTables) {
    asn1_CN_MessageFrame frame = {};
    frame.choice = asn1_CN_MessageFrame_spatFrame;
    EXPECT_EQ(asn1_CN_MessageFrame_rsiFrame, 4);
    EXPECT_EQ(asn1_CN_LightState_flashing_red, 2);
    EXPECT_EQ(sizeof frame, asn1_type_CN_MessageFrame[3].number);
    EXPECT_EQ(offsetof(asn1_CN_MessageFrame, u), asn1_type_CN_MessageFrame[5].number);
    frame.u.spatFrame.has_moy = 1;
    frame.u.spatFrame.moy = 527040;
    const asn1_word* moy = asn1_type_CN_SPAT + 3 + 4;
    const char* record = reinterpret_cast<const char*>(&frame.u.spatFrame);
    EXPECT_EQ(*reinterpret_cast<const uint32_t*>(record + moy[2].number), 1u);
    EXPECT_EQ(*reinterpret_cast<const uint32_t*>(record + (moy[0].number & ASN1_FIELD_OFFSET_MASK)), 527040u);
}

// ---- counts -----------------------------------------------------------------------------------------------

struct Region {
    Schema schema;
    Layout layout;
};

std::unique_ptr<Region> load_region(const std::string& name, uint32_t first_local = 1) {
    auto region = std::make_unique<Region>();
    Diagnostics diags;
    EXPECT_TRUE(load_schema(test::region_sources(name), {.shipped_forms = true}, region->schema, diags));
    EXPECT_TRUE(make_layout(region->schema, {name, first_local, false}, region->layout, diags));
    return region;
}

Summary count_region(const std::string& name) { return summarise(load_region(name)->layout); }

TEST(Counts, Cn) {
    Summary counts = count_region("cn");
    EXPECT_EQ(counts.named, 162u);
    EXPECT_EQ(counts.nested, 0u);
    EXPECT_EQ(counts.anonymous, 127u);
    EXPECT_EQ(counts.table_constraints + counts.containing_constraints + counts.values, 0u);
}

TEST(Counts, Eu) {
    Summary counts = count_region("eu");
    EXPECT_EQ(counts.named, 669u);
    EXPECT_EQ(counts.nested, 81u);
    EXPECT_EQ(counts.anonymous, 595u);
    EXPECT_EQ(counts.table_constraints, 29u);
}

TEST(Counts, Us) {
    Summary counts = count_region("us");
    EXPECT_EQ(counts.named, 2278u);
    EXPECT_EQ(counts.nested, 1866u);
    EXPECT_EQ(counts.anonymous, 3466u);
    EXPECT_EQ(counts.table_constraints, 70u);
    EXPECT_EQ(counts.containing_constraints, 14u);
}

// ---- every word -------------------------------------------------------------------------------------------

std::string words_text(const std::vector<Word>& words);

std::string text(const Object& object) {
    const Value& value = object.value;
    return fmt::format("{}:{}:{}:{}:{}:{}", object.local, static_cast<int>(object.sort),
                       words_text(object.words), value.number.str(), value.item, value.bytes);
}

std::string words_text(const std::vector<Word>& words) {
    std::string all;
    for (const Word& word : words) {
        all += fmt::format("{:x} {} {} ", word.number, word.table ? word.table->symbol : "", word.text);
        if (word.object) all += text(*word.object);
    }
    return all;
}

// FNV-1a over the names and words of all tables.
uint64_t digest(const Layout& layout) {
    uint64_t hash = 0xCBF29CE484222325;
    for (const Table* table : layout.tables)
        for (unsigned char byte : table->symbol + "=" + words_text(table->words) + ";")
            hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

// Programs are built against these: a digest changes only with the version of the library.
TEST(MessageSets, StayWordForWord) {
    EXPECT_EQ(digest(load_region("cn", 1)->layout), 1283895327508467496u);
    EXPECT_EQ(digest(load_region("eu", 1001)->layout), 12902128754475646961u);
    EXPECT_EQ(digest(load_region("us", 3001)->layout), 13257348477247401435u);
}

// ---- what holds over all message sets ---------------------------------------------------------------------

struct Census {
    std::array<size_t, 18> kinds{};
    size_t without_pointers = 0, nested_integers = 0, value_tables = 0, defaults = 0;
    std::vector<std::string> indirect;
    uint32_t largest_tag = 0;
    size_t most_components = 0, most_alternatives = 0, most_items = 0;
};

void count_parts(Census& census, const Table& table) {
    switch (table.kind) {
        case ASN1_KIND_SEQUENCE:
            census.most_components = std::max(census.most_components, table.parts.size());
            for (const Part& part : table.parts) {
                uint64_t option = table.words[part.offset_word].number >> ASN1_FIELD_OPTION_SHIFT & 3;
                census.defaults += option == ASN1_OPTION_DEFAULT;
            }
            break;
        case ASN1_KIND_CHOICE:
            census.most_alternatives = std::max(census.most_alternatives, table.parts.size());
            EXPECT_TRUE(payload_offset(table) == 4 || payload_offset(table) == 8) << table.symbol;
            break;
        case ASN1_KIND_ENUMERATED:
            census.most_items = std::max(census.most_items, table.type->items.size());
            census.value_tables += (word0(table) & ASN1_WORD0_VALUE_TABLE) != 0;
            break;
        case ASN1_KIND_TAGGED: {
            const Table& inner = *table.parts[0].table;
            EXPECT_NE(inner.kind, uint32_t{ASN1_KIND_TAGGED}) << table.symbol;
            bool is_untagged_choice =
                inner.kind == ASN1_KIND_CHOICE && (word0(inner) & ASN1_WORD0_TAG_MASK) == 0;
            EXPECT_EQ((word0(table) & ASN1_WORD0_EXPLICIT) != 0, is_untagged_choice) << table.symbol;
            if (word0(table) & ASN1_WORD0_INDIRECT) census.indirect.push_back(inner.symbol);
            break;
        }
        default: break;
    }
}

TEST(MessageSets, HoldWhatTheFormatPromises) {
    Census census;
    for (const char* name : {"cn", "eu", "us"}) {
        auto region = load_region(name);
        for (const Table* table : region->layout.tables) {
            census.kinds[table->kind]++;
            census.nested_integers +=
                table->kind == ASN1_KIND_INTEGER && table->table_class == Table::Class::nested;
            uint32_t tag = word0(*table) & ASN1_WORD0_TAG_MASK;
            census.largest_tag = std::max(census.largest_tag, tag & ASN1_TAG_NUMBER_MASK);
            census.without_pointers += std::ranges::all_of(
                table->words, [](const Word& word) { return word.sort == Word::Sort::number; });
            bool has_bit26 = (word0(*table) & ASN1_WORD0_HAS_NAME) != 0;
            EXPECT_EQ(has_bit26, table->table_class == Table::Class::named) << table->symbol;
            EXPECT_EQ(word0(*table) >> 31 != 0, table->words[0].number >> 32 == 0xFFFFFFFF) << table->symbol;
            count_parts(census, *table);
        }
    }
    // Three ENUMERATED of ISO TS 19091 stand in place in the EU set, where two more TAGGED would do.
    EXPECT_EQ(census.kinds, (std::array<size_t, 18>{2064, 636, 0, 0, 461, 1232, 168, 276, 181, 1121 + 3, 313,
                                                    2649 - 2, 2, 0, 0, 33, 99, 8}));
    EXPECT_EQ(census.without_pointers, 1579u);
    EXPECT_EQ(census.nested_integers, 6u);
    EXPECT_EQ(census.value_tables, 20u);
    EXPECT_EQ(census.defaults, 29u);
    EXPECT_EQ(census.indirect, std::vector<std::string>{"eu_InternationalSign_destinationInformation"});
    EXPECT_EQ(census.largest_tag, 127u);
    EXPECT_EQ(census.most_components, 73u);
    EXPECT_EQ(census.most_alternatives, 128u);
    EXPECT_EQ(census.most_items, 96u);
}

}  // namespace
