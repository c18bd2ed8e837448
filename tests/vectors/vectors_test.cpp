// SPDX-License-Identifier: Apache-2.0
// Every row of the vector files, both ways: what an independent tool encoded is decoded to the row's JSON, and the
// row's JSON is encoded to the same octets. Explained, the octets are those of the row's values, each bit told once.
#include <gtest/gtest.h>
#include <orlenta/explain.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <map>
#include <nlohmann/json.hpp>
#include <random>

#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/support/failing_allocator.hpp"
#include "tests/vectors/exclusions.hpp"
#include "tests/vectors/octet_rows.hpp"
#include "tests/vectors/vector_file.hpp"

namespace orlenta::test {
namespace {

struct Column {
    const char* rule;
    Bytes VectorRow::*octets;
    orlenta_rules rules;
};
constexpr Column kColumns[] = {{"UPER", &VectorRow::uper, ORLENTA_RULES_UPER},
                               {"APER", &VectorRow::aper, ORLENTA_RULES_APER},
                               {"OER", &VectorRow::oer, ORLENTA_RULES_OER},
                               {"DER", &VectorRow::der, ORLENTA_RULES_BER}};

const Rule& rule_named(const std::string& name) {
    for (const Rule& rule : all_rules()) {
        if (rule.name == name) return rule;
    }
    throw std::runtime_error("no rule " + name);
}

using Types = std::map<std::string, const asn1_type_desc*>;

// All named types as REGION.Name.
const Types& catalogue() {
    static const Types types = [] {
        Types all;
        for (const Region& region : all_regions()) {
            for (const TableEntry& entry : region.entries) {
                if (entry.name[0] != '\0') all[std::string(region.name) + "." + entry.name] = entry.type;
            }
        }
        return all;
    }();
    return types;
}

std::string to_json(const asn1_type_desc* type, const void* value) {
    asn1_jer_encode_options compact = {};
    uint8_t* text = nullptr;
    int64_t size = asn1_jer_encode2(&text, type, value, &compact);
    std::string json(reinterpret_cast<char*>(text), size < 0 ? 0 : static_cast<size_t>(size));
    asn1_free(text);
    return json;
}

using Json = nlohmann::ordered_json;

// A row's JSON with its members in the order of `ours`, since a key must stand before its open type, and not all rows
// have the order of the type. The rows have plain hex for an extensible bit string of one root size; its length may
// vary, so that it is an object with a length here (X.697 clause 24.2).
Json adapt(const Json& theirs, const Json& ours) {
    if (ours.is_object() && theirs.is_string()) return {{"length", ours.at("length")}, {"value", theirs}};
    if (ours.type() != theirs.type() || ours.size() != theirs.size() || !ours.is_structured()) return theirs;
    Json adapted = ours.is_object() ? Json::object() : Json::array();
    for (const auto& member : ours.items()) {
        if (ours.is_array()) {
            adapted.push_back(adapt(theirs[adapted.size()], member.value()));
        } else if (theirs.contains(member.key())) {
            adapted[member.key()] = adapt(theirs[member.key()], member.value());
        } else {
            return theirs;
        }
    }
    return adapted;
}

Bytes encode(const Rule& rule, const asn1_type_desc* type, const void* value) {
    uint8_t* out = nullptr;
    int64_t size = rule.encode(&out, type, value);
    EXPECT_GE(size, 0);
    Bytes octets(out, out + (size < 0 ? 0 : size));
    asn1_free(out);
    return octets;
}

Value from_json(const asn1_type_desc* type, const std::string& json, asn1_error* error) {
    void* value = nullptr;
    asn1_jer_decode(&value, type, reinterpret_cast<const uint8_t*>(json.data()), json.size(), error);
    return Value(value, {type});
}

struct Case {
    const char* file;
    Column column;
};

class Vectors : public testing::TestWithParam<Case> {
  protected:
    // Calls `check` for each row that is in force, with the row's type.
    template <typename Check>
    void for_each_row(const Check& check) {
        const Column& column = GetParam().column;
        int rows = 0, excluded = 0;
        for (const VectorRow& row : read_vectors(std::string(ORLENTA_TEST_DATA) + "/" + GetParam().file)) {
            if (is_excluded(GetParam().file, row.line, column.rule)) {
                ++excluded;
                continue;
            }
            SCOPED_TRACE(std::string(GetParam().file) + ":" + std::to_string(row.line) + " " + row.type);
            auto entry = catalogue().find(row.region + "." + row.type);
            ASSERT_NE(entry, catalogue().end());
            const asn1_type_desc* type = entry->second;
            bool is_der = column.octets == &VectorRow::der;
            check(row, type, is_der ? with_table_tag(row.der, type) : row.*column.octets);
            ++rows;
        }
        EXPECT_EQ(live_blocks(), 0u);
        ASSERT_GT(rows, 0);
        printf("%s %s: %d rows, %d excluded\n", GetParam().file, column.rule, rows, excluded);
    }
};

// What an empty encoding becomes on its own in PER (X.691 clause 11.1.3); no bit of it is the value's.
bool is_empty_encoding(const Bytes& octets, int64_t used) { return used == 0 && octets == Bytes{0}; }

Value decode(const Rule& rule, const asn1_type_desc* type, const Bytes& octets) {
    void* value = nullptr;
    asn1_error error = {};
    int64_t used = rule.decode(&value, type, octets.data(), octets.size(), &error);
    EXPECT_TRUE(used == static_cast<int64_t>(octets.size()) || is_empty_encoding(octets, used))
        << used << " octets used; " << error.message << " at " << error.path;
    return Value(value, {type});
}

TEST_P(Vectors, OctetsToJsonAndBack) {
    const Rule& rule = rule_named(GetParam().column.rule);
    for_each_row([&](const VectorRow& row, const asn1_type_desc* type, const Bytes& octets) {
        Value value = decode(rule, type, octets);
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(encode(rule, type, value.get()), octets);
        Json ours = Json::parse(to_json(type, value.get()));
        Json theirs = adapt(Json::parse(row.json), ours);
        EXPECT_EQ(ours, theirs);

        asn1_error error = {};
        Value from_text = from_json(type, theirs.dump(), &error);
        ASSERT_NE(from_text, nullptr) << error.message;
        EXPECT_EQ(encode(rule, type, from_text.get()), octets);
    });
}

// Whatever is cut off takes bits of the value with it, but for the octet that stands for an empty encoding.
TEST_P(Vectors, TruncationsAreErrors) {
    const Rule& rule = rule_named(GetParam().column.rule);
    bool is_per =
        GetParam().column.octets == &VectorRow::uper || GetParam().column.octets == &VectorRow::aper;
    for_each_row([&](const VectorRow&, const asn1_type_desc* type, const Bytes& octets) {
        void* value = nullptr;
        int64_t used = rule.decode(&value, type, octets.data(), octets.size(), nullptr);
        asn1_free_value(type, value);
        if (is_empty_encoding(octets, used)) return;
        size_t step = octets.size() / 400 + 1;
        for (size_t size = 0; size < octets.size(); size += step) {
            std::unique_ptr<uint8_t[]> exact(new uint8_t[size]);
            std::copy_n(octets.begin(), size, exact.get());
            asn1_error error = {};
            ASSERT_EQ(rule.decode(&value, type, exact.get(), size, &error), -1) << "cut to " << size;
            ASSERT_EQ(value, nullptr);
            ASSERT_LE(error.bit_position, static_cast<int64_t>(8 * size));
            if (is_per) {
                ASSERT_STRNE(error.message, "") << "cut to " << size;
            }
        }
    });
}

// What was told of a message.
struct Told {
    uint64_t bits = 0;
    bool is_refused = false;
    const Json* value = nullptr;  // null: not compared
};

// "a.b[3].c" as a JSON pointer (RFC 6901).
Json::json_pointer pointer_of(const std::string& path) {
    std::string pointer = path.empty() || path[0] == '[' ? "" : "/";
    for (char c : path)
        if (c != ']') pointer += c == '.' || c == '[' ? '/' : c;
    return Json::json_pointer(pointer);
}

void take_bits(void* user, const orlenta_bits* bits) {
    Told& told = *static_cast<Told*>(user);
    EXPECT_EQ(bits->offset, told.bits);
    EXPECT_FALSE(told.is_refused);
    EXPECT_LE(bits->width, bits->kind == ORLENTA_BITS_PADDING ? 8u : UINT32_MAX) << bits->path;
    EXPECT_STRNE(bits->text, "");
    told.bits += bits->width;
    told.is_refused = bits->kind == ORLENTA_BITS_REFUSED;
    if (!told.value) return;
    EXPECT_NE(bits->kind, ORLENTA_BITS_TRAILING);
    if (bits->value && bits->path[0] != '(') {
        EXPECT_EQ(Json::parse(bits->value), told.value->at(pointer_of(bits->path))) << bits->path;
    }
}

// As the decoder has it, and every bit told, whatever the octets are. The octets end where they are allocated.
void expect_told(const Column& column, const asn1_type_desc* type, const uint8_t* data, size_t size) {
    std::unique_ptr<uint8_t[]> exact(new uint8_t[size]);
    std::copy_n(data, size, exact.get());
    asn1_error error = {}, expected = {};
    void* value = nullptr;
    int64_t used = rule_named(column.rule).decode(&value, type, exact.get(), size, &expected);
    asn1_free_value(type, value);
    Told told;
    ASSERT_EQ(orlenta_explain(type, column.rules, exact.get(), size, take_bits, &told, &error), used);
    ASSERT_EQ(told.bits, 8 * size);
    ASSERT_STREQ(error.message, expected.message);
    ASSERT_STREQ(error.path, expected.path);
    ASSERT_EQ(error.bit_position, expected.bit_position);
}

TEST_P(Vectors, EachBitIsToldOnce) {
    const Column& column = GetParam().column;
    for_each_row([&](const VectorRow& row, const asn1_type_desc* type, Bytes octets) {
        Json json = Json::parse(to_json(type, decode(rule_named(column.rule), type, octets).get()));
        Told told;
        told.value = &json;
        int64_t used =
            orlenta_explain(type, column.rules, octets.data(), octets.size(), take_bits, &told, nullptr);
        EXPECT_TRUE(used == static_cast<int64_t>(octets.size()) || is_empty_encoding(octets, used));
        EXPECT_EQ(told.bits, 8 * octets.size());
        for (size_t size = 0; size < octets.size(); size += octets.size() / 10 + 1)
            expect_told(column, type, octets.data(), size);
        // Bits turned over here and there, more and more of them.
        std::minstd_rand random(static_cast<unsigned>(row.line));
        for (int i = 0; i < 20 && !octets.empty(); ++i) {
            octets[random() % octets.size()] ^= static_cast<uint8_t>(1 << random() % 8);
            expect_told(column, type, octets.data(), octets.size());
        }
    });
}

std::vector<Case> all_cases() {
    std::vector<Case> cases;
    for (const char* file : {ORLENTA_VECTOR_FILES}) {
        for (const Column& column : kColumns) cases.push_back({file, column});
    }
    return cases;
}

std::string case_name(const testing::TestParamInfo<Case>& info) {
    std::string name = std::string(info.param.file) + "_" + info.param.column.rule;
    for (char& c : name) c = isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Files, Vectors, testing::ValuesIn(all_cases()), case_name);

}  // namespace
}  // namespace orlenta::test
