// SPDX-License-Identifier: Apache-2.0
// Schemas that are compiled while a program runs: names, messages, and values by their descriptors.
#include <gtest/gtest.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/schema.h>
#include <orlenta/value.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/universal_types.hpp"

namespace {

using namespace orlenta::test;

struct Free {
    void operator()(orlenta_schema* schema) const { orlenta_schema_free(schema); }
};
using Schema = std::unique_ptr<orlenta_schema, Free>;

Schema compile(const std::string& text, const char* region) {
    orlenta_schema_source source = {"m.asn1", text.data(), text.size()};
    orlenta_schema_options options = {region, 0};
    return Schema(orlenta_schema_compile(&source, 1, &options));
}

std::string messages(const Schema& schema) {
    std::string all;
    for (size_t i = 0; i < orlenta_schema_message_count(schema.get()); ++i) {
        const orlenta_schema_message* message = orlenta_schema_message_at(schema.get(), i);
        all += std::string(message->file) + ":" + std::to_string(message->line) + ":" +
               std::to_string(message->column) + (message->is_note ? " note " : " ") + message->text + "\n";
    }
    EXPECT_EQ(orlenta_schema_message_at(schema.get(), orlenta_schema_message_count(schema.get())), nullptr);
    return all;
}

const asn1_type_desc* type_of(const Schema& schema, const char* name) {
    orlenta_type_entry entry = {};
    EXPECT_EQ(orlenta_catalogue_find(orlenta_schema_catalogue(schema.get()), name, &entry, nullptr), 0)
        << name;
    return entry.type;
}

const char* const kTwoModules =
    "A DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
    "Reading ::= SEQUENCE { unit Unit-Name, level INTEGER (0..255) OPTIONAL }\n"
    "Unit-Name ::= ENUMERATED { volt, watt }\nEND\n"
    "B DEFINITIONS AUTOMATIC TAGS ::= BEGIN Reading ::= BOOLEAN END";

TEST(Schema, FindsTypesByTheirNames) {
    Schema schema = compile(kTwoModules, "MY");
    EXPECT_EQ(
        messages(schema),
        "m.asn1:2:1 note 'Reading' is defined in the modules 'A' and 'B': the names in C are A_Reading, "
        "B_Reading\n");
    const orlenta_catalogue* catalogue = orlenta_schema_catalogue(schema.get());
    ASSERT_NE(catalogue, nullptr);
    struct Row {
        const char* name;
        const char* table;  // null: none, or not one
        size_t found;
    };
    for (const Row& row : std::vector<Row>{{"Unit-Name", "Unit_Name", 1},
                                           {"Unit_Name", "Unit_Name", 1},
                                           {"MY.A.Unit-Name", "Unit_Name", 1},
                                           {"A.Reading", "A_Reading", 1},
                                           {"MY.B.Reading", "B_Reading", 1},
                                           {"B_Reading", "B_Reading", 1},
                                           {"Reading", nullptr, 2},
                                           {"MY.Reading", nullptr, 2},
                                           {"OTHER.Unit-Name", nullptr, 0},
                                           {"OTHER.A.Unit-Name", nullptr, 0},
                                           {"MY.B.Unit-Name", nullptr, 0},
                                           {"B.Unit-Name", nullptr, 0},
                                           {"Unit-Nam", nullptr, 0},
                                           {"Unit-Names", nullptr, 0},
                                           {"MY.A.B.Reading", nullptr, 0},
                                           {"A.", nullptr, 0},
                                           {"", nullptr, 0}}) {
        size_t found = 99;
        orlenta_type_entry entry, again;
        int result = orlenta_catalogue_find(catalogue, row.name, &entry, &found);
        EXPECT_EQ(found, row.found) << row.name;
        ASSERT_EQ(result, row.table ? 0 : -1) << row.name;
        if (!row.table) continue;
        EXPECT_STREQ(entry.table, row.table);
        EXPECT_EQ(entry.is_root, std::string(entry.name) == "Reading");
        ASSERT_EQ(orlenta_catalogue_find_type(catalogue, entry.type, &again), 0);
        EXPECT_STREQ(again.table, row.table);
    }
    orlenta_type_entry entry;
    EXPECT_EQ(orlenta_catalogue_count(catalogue), 3u);
    EXPECT_EQ(orlenta_catalogue_get(catalogue, 3, &entry), -1);
    EXPECT_EQ(orlenta_catalogue_find_type(catalogue, nullptr, &entry), -1);
    EXPECT_STREQ(orlenta_catalogue_region(catalogue, 0), "MY");
    EXPECT_EQ(orlenta_catalogue_region(catalogue, 1), nullptr);
}

TEST(Schema, ServesTheCodecs) {
    Schema schema = compile(kTwoModules, nullptr);
    const asn1_type_desc* type = type_of(schema, "A.Reading");
    const std::string json = R"({"unit": "watt", "level": 200})";
    void* value;
    asn1_error error;
    ASSERT_EQ(
        asn1_jer_decode(&value, type, reinterpret_cast<const uint8_t*>(json.data()), json.size(), &error),
        static_cast<int64_t>(json.size()))
        << error.message;
    uint8_t* bytes;
    ASSERT_EQ(asn1_uper_encode2(&bytes, type, value, &error), 2) << error.message;
    EXPECT_EQ(bytes[0] << 8 | bytes[1], 0xF200);  // there; watt; 200
    asn1_free(bytes);
    asn1_free_value(type, value);
}

TEST(Schema, TellsAllErrors) {
    EXPECT_EQ(messages(compile("A DEFINITIONS ::= BEGIN\nT ::= No\nU ::= Nor\nEND", "MY")),
              "m.asn1:2:7 unknown type 'No'\nm.asn1:3:7 unknown type 'Nor'\n");
    EXPECT_EQ(messages(compile(kTwoModules, "1-2")),
              ":0:0 a region's name is made of letters, digits and underscores, a letter first\n");
    EXPECT_EQ(orlenta_schema_catalogue(compile("A", "MY").get()), nullptr);
    const char* path = "/nowhere/x.asn1";
    Schema unread(orlenta_schema_compile_files(&path, 1, nullptr));
    EXPECT_EQ(messages(unread), ":0:0 cannot read '/nowhere/x.asn1'\n");
    EXPECT_EQ(orlenta_schema_catalogue(unread.get()), nullptr);
    orlenta_schema_free(nullptr);
}

TEST(Schema, CompilesPublishedModulesFromFiles) {
    const char* path = ORLENTA_SCHEMA_DIR "/cn/CN-MessageSet.asn1";
    orlenta_schema_options options = {"CN", 1};
    Schema schema(orlenta_schema_compile_files(&path, 1, &options));
    EXPECT_EQ(messages(schema), "");
    orlenta_type_entry frame;
    ASSERT_EQ(
        orlenta_catalogue_find(orlenta_schema_catalogue(schema.get()), "CN.MessageFrame", &frame, nullptr),
        0);
    EXPECT_STREQ(frame.name, "MessageFrame");
    EXPECT_TRUE(frame.is_root);
    EXPECT_EQ(asn1_get_size(frame.type), static_cast<int64_t>(frame.type[3].number));
    EXPECT_STREQ(orlenta_version(), ORLENTA_VERSION);
}

// ---- what a schema says of its types ------------------------------------------------------------------------

// The first paragraph of the comment above; `A ::= NULL` stands behind the text.
TEST(Schema, TellsWhatCommentsSay) {
    const std::pair<const char*, const char*> rows[] = {
        {"-- One.\n", "One."},
        {"  --One --  \r\n\t--   and  \"two\"\t\\ ?"
         "?/.\n",
         "One and \"two\" \\ ?"
         "?/."},
        {"-- One.\n--\n-- Two.\n", "One."},
        {"------\n-- One.\n------\n", "One."},
        {"-- === Section ===\n-- One.\n", "One."},
        {"--\n-- ### Section\n--\n", ""},
        {"-- Apart.\n\n", ""},
        {"B ::= NULL -- Behind another.\n", ""},
        {"-- One. -- B ::= NULL\n", ""},
        {"-- One.\nB ::= NULL ", ""},
        {"-- B ::= NULL\n", ""},
        {"--@ note\n", ""},
        {"/* One. */\n", "One."},
        {"/**\n * @brief One\n * -- two.\n *\n * Three.\n */\n", "One two."},
        {"/* One.\n@unit m */\n", "One."},
        {"B ::= NULL /* One.\n */\n", ""},
        {"/* One */ B ::= /* two\n */ NULL\n", ""},
        {"/* One */ /* two */\n", ""},
        {"/* One -- two --- three - -- four. */\n", "One - two - three - - four."},
        {"-- \xE9\xE9 One.\n", "One."},
        {"-- \xE9\x80\x9F\xF0\x9F\x9A\x97.\n", "\xE9\x80\x9F\xF0\x9F\x9A\x97."},
        {"-- \xED\xA0\x80 One.\n", "One."},
    };
    for (const auto& [comment, about] : rows) {
        SCOPED_TRACE(comment);
        Schema schema = compile(
            std::string("M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n") + comment + "A ::= NULL\nEND\n", "");
        orlenta_type_entry entry = {};
        ASSERT_EQ(orlenta_catalogue_find(orlenta_schema_catalogue(schema.get()), "A", &entry, nullptr), 0);
        EXPECT_STREQ(entry.about ? entry.about : "", about);
        EXPECT_EQ(entry.about == nullptr, *about == '\0');
    }
}

// ---- units ------------------------------------------------------------------------------------------------

std::string shown(const orlenta_unit* unit, int64_t number) {
    if (!unit) return "";
    const orlenta_special* special = orlenta_unit_special(unit, number);
    if (special && special->is_limit == 0) return special->meaning;
    char text[64];
    snprintf(text, sizeof text, "%.*f %s", static_cast<int>(unit->digits),
             static_cast<double>(number) * unit->scale + unit->offset, unit->symbol);
    return text + std::string(special ? special->is_limit > 0 ? " or more" : " or less" : "");
}

TEST(Schema, HasUnits) {
    Schema schema = compile(
        "A DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
        "Speed ::= INTEGER (0..8191) --@ unit 0.02 m/s; 8191 unavailable\n"
        "Pressure ::= INTEGER { none (0) } (0..255) --@ unit 200 Pa + 57800; 0 unavailable; 254..255 orMore "
        "--\n"
        "R ::= SEQUENCE { s Speed, t INTEGER (-60..67) OPTIONAL, --@ unit 1 degC - 40.5; -60 orLess\n"
        "  slow Speed (0..100),\n"
        "  r REAL, --@ unit 60 s\n"
        "  l SEQUENCE OF INTEGER (0..3), --@ unit 0.5 %\n  n INTEGER (0..3), c Same }\n"
        "E ::= SEQUENCE { e [99] EXPLICIT INTEGER (0..9) --@ unit 0.25 km -- DEFAULT 3 }\n"
        "Same ::= Speed\nEND",
        "MY");
    const orlenta_catalogue* catalogue = orlenta_schema_catalogue(schema.get());
    ASSERT_NE(catalogue, nullptr) << messages(schema);
    const struct {
        const char *record, *component;
        int64_t number;
        const char* text;
    } rows[] = {
        {"R", "s", 917, "18.34 m/s"},
        {"R", "s", 8191, "unavailable"},
        {"R", "t", 10, "-30.5 degC"},
        {"R", "t", -60, "-100.5 degC or less"},
        {"R", "slow", 7, "0.14 m/s"},
        {"E", "e", 7, "1.75 km"},
        {"R", "r", 2, "120 s"},
        {"R", "l", 3, "1.5 %"},
        {"R", "n", 3, ""},
        {"R", "c", 8191, "unavailable"},
    };
    for (const auto& [record, name, number, text] : rows) {
        orlenta_component component = {};
        for (uint32_t i = 0; component.name == nullptr || std::string(component.name) != name; ++i)
            ASSERT_EQ(orlenta_type_component(type_of(schema, record), i, &component), 0) << name;
        orlenta_type_facts facts;
        orlenta_type_describe(component.type, &facts);
        EXPECT_EQ(shown(orlenta_unit_of(catalogue, facts.element ? facts.element : component.type), number),
                  text)
            << name;
    }
    const orlenta_unit* pressure = orlenta_unit_of(catalogue, type_of(schema, "Pressure"));
    EXPECT_EQ(shown(pressure, 1) + ", " + shown(pressure, 0) + ", " + shown(pressure, 254),
              "58000 Pa, unavailable, 108600 Pa or more");
    EXPECT_EQ(orlenta_unit_of(catalogue, type_of(schema, "R")), nullptr);
    EXPECT_EQ(orlenta_unit_of(orlenta_catalogue_builtin(), type_of(schema, "Speed")), nullptr);
}

// ---- what a type is made of -------------------------------------------------------------------------------

// Types of one module as text, put together from what the interface tells.
std::string shown(const asn1_type_desc* type);

std::string shown_bounds(const orlenta_type_facts& facts) {
    if (!facts.has_lower && !facts.has_upper) return "";
    return "[" + (facts.has_lower ? std::to_string(facts.lower) : "") + ".." +
           (facts.has_upper ? std::to_string(facts.upper) : "") + "]";
}

std::string shown_row(const orlenta_type_facts& facts, uint32_t row) {
    std::string text;
    orlenta_cell cell;
    for (uint32_t i = 0; orlenta_type_cell(facts.type, row, i, &cell) == 0; ++i)
        text +=
            cell.type ? shown(cell.type) : std::to_string(*static_cast<const uint32_t*>(cell.value)) + ">";
    return text;
}

std::string shown_keys(const orlenta_type_facts& facts) {
    std::string text;
    orlenta_key key;
    for (uint32_t i = 0; orlenta_type_key(facts.type, i, &key) == 0; ++i) {
        text += "@" + std::to_string(key.column) + "^" + std::to_string(key.levels_up);
        for (uint32_t k = 0; k < key.path_length; ++k) text += "." + std::to_string(key.path[k]);
    }
    EXPECT_EQ(facts.key_count == 0, text.empty());
    return text + (facts.object_class ? "#" + std::to_string(facts.column) + shown(facts.object_class) : "");
}

std::string shown_parts(const orlenta_type_facts& facts) {
    std::string text;
    for (uint32_t i = 0; i < facts.count; ++i) {
        orlenta_component component;
        orlenta_alternative alternative;
        orlenta_item item;
        orlenta_range range;
        orlenta_class_field field;
        text += i == 0 ? "" : i == facts.root_count ? "|" : ",";
        if (orlenta_type_component(facts.type, i, &component) == 0) {
            text += component.opens_group ? "[" : "";
            text += component.name + ("+" + std::to_string(component.offset)) + shown(component.type);
            if (component.presence == ORLENTA_OPTIONAL) text += "?";
            if (component.presence == ORLENTA_DEFAULT) text += "=" + std::to_string(component.default_word);
            if (component.has_presence_word) text += "@" + std::to_string(component.presence_offset);
            text += component.closes_group ? "]" : "";
        } else if (orlenta_type_alternative(facts.type, i, &alternative) == 0) {
            text +=
                alternative.name + ("+" + std::to_string(alternative.value_offset)) + shown(alternative.type);
        } else if (orlenta_type_item(facts.type, i, &item) == 0) {
            text += item.name + ("=" + std::to_string(item.number));
        } else if (orlenta_type_range(facts.type, i, &range) == 0) {
            text += std::to_string(range.first) + "-" + std::to_string(range.last);
        } else if (orlenta_type_field(facts.type, i, &field) == 0) {
            text += field.name + std::string(field.is_type ? "" : shown(field.type));
        } else {
            text += shown_row(facts, i);
        }
    }
    orlenta_class_field field;
    orlenta_cell cell;
    EXPECT_EQ(orlenta_type_field(facts.type, facts.count, &field), -1);
    EXPECT_EQ(orlenta_type_cell(facts.type, facts.count, 0, &cell), -1);
    orlenta_component component;
    orlenta_alternative alternative;
    orlenta_item item;
    orlenta_range range;
    EXPECT_EQ(orlenta_type_component(facts.type, facts.count, &component), -1);
    EXPECT_EQ(orlenta_type_alternative(facts.type, facts.count, &alternative), -1);
    EXPECT_EQ(orlenta_type_item(facts.type, facts.count, &item), -1);
    EXPECT_EQ(orlenta_type_range(facts.type, facts.count, &range), -1);
    return text.empty() ? "" : "{" + text + "}";
}

std::string shown(const asn1_type_desc* type) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    std::string text = ":" + std::to_string(facts.kind) + (facts.is_big ? "big" : "") +
                       (facts.is_unsigned ? "u" : "") + (facts.inner ? "t" : "") + shown_bounds(facts) +
                       (facts.is_extensible ? "..." : "") + shown_parts(facts);
    text += shown_keys(facts);
    if (facts.element) text += shown(facts.element);
    if (facts.contained) text += "<" + shown(facts.contained) + ">";
    return text;
}

TEST(Schema, TellsWhatTypesAreMadeOf) {
    Schema schema = compile(
        "A DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
        "R ::= SEQUENCE { i INTEGER (-5..7) DEFAULT 3, o BOOLEAN OPTIONAL, ..., [[ g NULL, h NULL ]], m "
        "BOOLEAN }\n"
        "C ::= CHOICE { a [7] INTEGER (0..MAX), ..., b NULL }\n"
        "E ::= ENUMERATED { x(5), y(9), ..., z(12) }\n"
        "S ::= IA5String (SIZE (1..4)) (FROM (\"a\"..\"c\" | \"x\"))\n"
        "L ::= SEQUENCE (SIZE (2..MAX, ...)) OF OCTET STRING (CONTAINING E)\n"
        "B ::= INTEGER (0..18446744073709551615)\n"
        "T ::= SET { b BIT STRING (SIZE (9)), u UTF8String, n INTEGER (MIN..8), r REAL, d B DEFAULT "
        "70000000000 }\n"
        "U ::= SET OF INTEGER (0..70)\n"
        "K ::= CLASS { &id INTEGER (0..9) UNIQUE, &Type }\n"
        "Known K ::= { { &id 3, &Type BOOLEAN } | { &id 4, &Type NULL }, ... }\n"
        "O ::= SEQUENCE { in SEQUENCE { id K.&id ({Known}) }, value K.&Type ({Known}{@in.id}) }\nEND",
        "MY");
    ASSERT_NE(orlenta_schema_catalogue(schema.get()), nullptr) << messages(schema);
    const std::pair<const char*, const char*> rows[] = {
        {"R", ":0...{i+0:5[-5..7]=3,o+8:6?@4|[g+0:10@12,h+0:10@16],m+24:6@20}"},
        {"C", ":4...{a+8:5big|b+8:10}"},
        {"E", ":9...{x=5,y=9|z=12}"},
        {"S", ":15[1..4]{97-99,120-120}"},
        {"L", ":1[2..]...:8[0..]<:9...{x=5,y=9|z=12}>"},
        {"B", ":5big"},
        {"T", ":2{b+0:7[9..9],u+16:15,n+32:5big,r+56:14,d+64:5big=0}"},
        {"U", ":3[0..]:5u[0..70]"},
        {"O", ":0{in+0:0{id+0:5u[0..9]},value+8:16t{3>:6,4>:10}@0^0.0.0#1:17{&id:5u[0..9],&Type}}"},
        {"K", ":17{&id:5u[0..9],&Type}"},
    };
    for (const auto& [name, text] : rows) EXPECT_EQ(shown(type_of(schema, name)), text) << name;
    EXPECT_EQ(shown(kIa5), ":15[0..]");
    EXPECT_EQ(shown(kClass), ":17");
    const asn1_word free_text[] = {head(ASN1_KIND_CHAR_STRING), num(ASN1_STRING_IA5), num(0)};
    EXPECT_EQ(shown(free_text), ":15");
    orlenta_type_facts big;
    orlenta_type_describe(type_of(schema, "B"), &big);
    ASSERT_TRUE(big.is_big && big.big_lower && big.big_upper);
    EXPECT_EQ(asn1_integer_get_bit_size(big.big_upper), 64u);
}

}  // namespace
