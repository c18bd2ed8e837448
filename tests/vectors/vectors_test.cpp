// Every row of the vector files, both ways: what an independent tool encoded is decoded to the row's JSON, and the
// row's JSON is encoded to the same octets.
#include <gtest/gtest.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <map>
#include <nlohmann/json.hpp>

#include "compiler/emit/catalogue_entry.hpp"
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
};
constexpr Column kColumns[] = {{"UPER", &VectorRow::uper},
                               {"APER", &VectorRow::aper},
                               {"OER", &VectorRow::oer},
                               {"DER", &VectorRow::der}};

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
            for (const orlenta_catalogue_entry& entry : region.entries) {
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
