// SPDX-License-Identifier: Apache-2.0
// Programs beside the walker: the same results, reports, bytes, values and blocks, whatever comes in.
#include <gtest/gtest.h>
#include <orlenta/codec.h>
#include <orlenta/memory.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/random.h>
#include <string.h>

#include <algorithm>
#include <map>
#include <random>

#include "core/descriptor.hpp"
#include "program/oer_decode.hpp"
#include "program/oer_encode.hpp"
#include "program/per_decode.hpp"
#include "program/per_encode.hpp"
#include "tests/per/per_types.hpp"
#include "tests/program/image.hpp"
#include "tests/roundtrip/values.hpp"
#include "tests/support/failing_allocator.hpp"
#include "tests/support/nesting.hpp"
#include "tests/vectors/vector_file.hpp"

namespace orlenta::test {
namespace {

struct FreeCodec {
    void operator()(orlenta_codec* codec) const { orlenta_codec_free(codec); }
};
using Codec = std::unique_ptr<orlenta_codec, FreeCodec>;

// What a set of encoding rules has for a program, and its walker.
struct Rules {
    const char* name;
    int64_t (*walk)(void**, Type, const uint8_t*, uint64_t, asn1_error*);
    int64_t (*walk_back)(uint8_t**, Type, const void*, asn1_error*);
    int64_t (*decode)(const orlenta_codec*, void**, const uint8_t*, uint64_t, asn1_error*);
    int64_t (*encode)(const orlenta_codec*, uint8_t**, const void*, asn1_error*);
    int64_t (*decode_in_arena)(const orlenta_codec*, orlenta_arena*, orlenta_arena_value*, const uint8_t*,
                               uint64_t, asn1_error*);
    program::decode_result (*run_decode)(const orlenta_codec*, orlenta_arena*, void**, const uint8_t*,
                                         uint64_t);
    program::encode_result (*run_encode)(const orlenta_codec*, uint8_t**, const void*);
};

constexpr Rules kRules[] = {
    {"UPER", asn1_uper_decode, asn1_uper_encode2, orlenta_uper_decode, orlenta_uper_encode2,
     orlenta_uper_decode_arena, program::run_uper_decode, program::run_uper_encode},
    {"APER", asn1_aper_decode, asn1_aper_encode2, orlenta_aper_decode, orlenta_aper_encode2,
     orlenta_aper_decode_arena, program::run_aper_decode, program::run_aper_encode},
    {"OER", asn1_oer_decode, asn1_oer_encode2, orlenta_oer_decode, orlenta_oer_encode2,
     orlenta_oer_decode_arena, program::run_oer_decode, program::run_oer_encode},
};

struct Tally {
    int decodes = 0, values = 0, encodes = 0;
    int whole = 0;        // valid encodings and values that a program takes
    int pieces = 0;       // parts of them that the walker took
    int values_left = 0;  // valid, and given up
};

bool operator==(const asn1_error& a, const asn1_error& b) {
    return a.line == b.line && a.bit_position == b.bit_position && strcmp(a.path, b.path) == 0 &&
           strcmp(a.message, b.message) == 0;
}

std::string text_of(const asn1_error& error, int64_t result) {
    return std::to_string(result) + " at bit " + std::to_string(error.bit_position) + ", " + error.path +
           ": " + error.message;
}

std::string hex_of(const Bytes& bytes) {
    std::string text = std::to_string(bytes.size()) + " octets ";
    char digits[3];
    for (size_t i = 0; i < std::min<size_t>(bytes.size(), 200); ++i) {
        snprintf(digits, sizeof digits, "%02x", bytes[i]);
        text += digits;
    }
    return text;
}

// A type under test.
class Subject {
  public:
    Subject(const Rules& rules, Type type, Tally& tally)
        : rules_(rules), type_(type), codec_(orlenta_codec_new(type)), tally_(tally) {
        EXPECT_NE(codec_, nullptr);
        EXPECT_EQ(orlenta_codec_find(type), nullptr);  // or asn1_uper_decode() were no walker
    }

    // Decodes both ways; the walker's value, or null.
    Value decode(const Bytes& bytes) {
        // In a block of their own, so that a sanitizer sees a read behind the end.
        std::unique_ptr<uint8_t[]> copy(new uint8_t[bytes.size()]);
        std::copy(bytes.begin(), bytes.end(), copy.get());
        asn1_error error[2] = {};
        void* value[2] = {};
        int64_t result = rules_.walk(&value[0], type_, copy.get(), bytes.size(), &error[0]);
        int64_t by_program = rules_.decode(codec_.get(), &value[1], copy.get(), bytes.size(), &error[1]);
        EXPECT_TRUE(result == by_program && error[0] == error[1] && !value[0] == !value[1])
            << hex_of(bytes) << "\nwalker:  " << text_of(error[0], result)
            << "\nprogram: " << text_of(error[1], by_program);
        ++tally_.decodes;
        Value walkers(value[0], {type_});
        if (value[0] && value[1]) {
            EXPECT_EQ(image_of(type_, value[0]), image_of(type_, value[1])) << hex_of(bytes);
            ++tally_.values;
        }
        orlenta_free_value(codec_.get(), value[1]);
        decode_in_arena(bytes, value[0], result, error[0]);
        if (result < 0) {
            value[1] = &error;
            EXPECT_EQ(rules_.decode(codec_.get(), &value[1], copy.get(), bytes.size(), nullptr), -1);
            EXPECT_EQ(value[1], nullptr);
        }
        return walkers;
    }

    // Encodes both ways; the encoding, or nothing.
    Bytes encode(const void* value) {
        asn1_error error[2] = {};
        uint8_t* out[2] = {};
        int64_t size = rules_.walk_back(&out[0], type_, value, &error[0]);
        int64_t by_program = rules_.encode(codec_.get(), &out[1], value, &error[1]);
        bool same = size == by_program && error[0] == error[1] && !out[0] == !out[1];
        EXPECT_TRUE(same) << "walker:  " << text_of(error[0], size)
                          << "\nprogram: " << text_of(error[1], by_program);
        Bytes bytes(out[0], out[0] + std::max<int64_t>(size, 0));
        EXPECT_TRUE(!same || std::equal(bytes.begin(), bytes.end(), out[1])) << hex_of(bytes);
        asn1_free(out[0]);
        asn1_free(out[1]);
        ++tally_.encodes;
        return bytes;
    }

    // A program takes what is valid, both ways.
    void expect_taken(const Bytes& bytes, const void* value) {
        void* decoded = nullptr;
        program::decode_result in =
            rules_.run_decode(codec_.get(), nullptr, &decoded, bytes.data(), bytes.size());
        orlenta_free_value(codec_.get(), decoded);
        uint8_t* encoded = nullptr;
        program::encode_result out = rules_.run_encode(codec_.get(), &encoded, value);
        asn1_free(encoded);
        EXPECT_NE(in.how, program::kInvalid) << hex_of(bytes);
        tally_.values_left += (in.how != program::kDone) + !out.is_done;
        tally_.whole += 2;
        tally_.pieces += static_cast<int>(in.walker_pieces + out.walker_pieces);
    }

    // Encodes the value with one of its words changed, with a selector of no alternative, and with pointers null.
    void encode_changed(void* value, std::mt19937& random) {
        Holdings all = all_holdings(type_, value);
        if (!all.words.empty()) {
            uint32_t word = random() % 4 == 0 ? static_cast<uint32_t>(random()) : random() % 600 - 100;
            encode_with(value, all.words[random() % all.words.size()], word);
        }
        if (!all.selectors.empty()) {
            encode_with(value, all.selectors[random() % all.selectors.size()], random() | 0x1000);
        }
        for (const Block& block : all.blocks) {  // that of an open type or indirect component
            if (block.inner && block.stride == 0)
                encode_with(value, block.place, static_cast<void*>(nullptr));
        }
    }

    const orlenta_codec* codec() const { return codec_.get(); }

  private:
    void decode_in_arena(const Bytes& bytes, void* value, int64_t result, const asn1_error& walkers_error) {
        asn1_error error = {};
        orlenta_arena_value in_arena;
        int64_t used =
            rules_.decode_in_arena(codec_.get(), arena_.get(), &in_arena, bytes.data(), bytes.size(), &error);
        EXPECT_TRUE(used == result && error == walkers_error && !value == !in_arena.record)
            << hex_of(bytes) << "\nwalker: " << text_of(walkers_error, result)
            << "\narena:  " << text_of(error, used);
        EXPECT_TRUE(!value || !in_arena.record || asn1_cmp_value(type_, value, in_arena.record) == 0);
        if (random_() % 2 == 0) orlenta_arena_reset(arena_.get());
    }

    template <typename Word>
    void encode_with(const void* value, void* place, Word word) {
        Word before;
        memcpy(&before, place, sizeof before);
        memcpy(place, &word, sizeof word);
        encode(value);
        memcpy(place, &before, sizeof before);
    }

    struct DestroyArena {
        void operator()(orlenta_arena* arena) const { orlenta_arena_destroy(arena); }
    };

    const Rules& rules_;
    Type type_;
    Codec codec_;
    std::unique_ptr<orlenta_arena, DestroyArena> arena_{orlenta_arena_create(1)};
    std::minstd_rand random_;
    Tally& tally_;
};

Bytes damage(const Bytes& original, std::mt19937& random) {
    Bytes bytes = original;
    if (bytes.empty()) return bytes;
    uint32_t flips = random() % 4;
    if (flips == 0) bytes.resize(random() % bytes.size());
    for (uint32_t i = 0; i < flips; ++i)
        bytes[random() % bytes.size()] ^= static_cast<uint8_t>(1u << random() % 8);
    return bytes;
}

// A valid value and its encoding, then `rounds` damaged encodings and changed values.
void compare(Subject& subject, void* value, int rounds, std::mt19937& random) {
    Bytes bytes = subject.encode(value);
    subject.decode(bytes);
    if (bytes.empty() || bytes.size() > 20000) return;  // some values of recursive types
    subject.expect_taken(bytes, value);
    for (int i = 0; i < rounds; ++i) {
        Value decoded = subject.decode(damage(bytes, random));
        if (decoded) subject.encode(decoded.get());
        subject.encode_changed(value, random);
    }
}

void print(const Rules& rules, const char* name, const Tally& tally) {
    std::printf(
        "%s, %s: %d decodes, %d of them to a value, %d encodes; of %d valid ones %d given up, %d parts by "
        "the "
        "walker\n",
        rules.name, name, tally.decodes, tally.values, tally.encodes, tally.whole, tally.values_left,
        tally.pieces);
}

class Tables : public testing::TestWithParam<std::tuple<Rules, Region>> {};

TEST_P(Tables, RandomValues) {
    const auto& [rules, region] = GetParam();
    std::mt19937 random(7);
    Tally tally;
    for (const TableEntry& entry : region.entries) {
        if (kind_of(entry.type) == ASN1_KIND_OBJECT_CLASS) continue;
        SCOPED_TRACE(entry.table);
        size_t before = live_blocks();
        {
            Subject subject(rules, entry.type, tally);
            for (uint32_t round = is_recursive(entry.type); round < 2; ++round) {
                Sample sample = make_sample(entry.type, seed_of(entry, round));
                compare(subject, sample.value.get(), 4, random);
            }
        }
        ASSERT_EQ(live_blocks(), before);
        if (HasFailure()) return;
    }
    print(rules, region.name, tally);
    EXPECT_EQ(tally.values_left, 0);
}

INSTANTIATE_TEST_SUITE_P(Program, Tables,
                         testing::Combine(testing::ValuesIn(kRules),
                                          testing::ValuesIn(all_regions().begin(), all_regions().end())),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param).name) + std::get<1>(info.param).name;
                         });

class Program : public testing::TestWithParam<Rules> {};

INSTANTIATE_TEST_SUITE_P(Program, Program, testing::ValuesIn(kRules),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- vectors ----------------------------------------------------------------------------------------------

const std::map<std::string, Type>& named_types() {
    static const std::map<std::string, Type> types = [] {
        std::map<std::string, Type> all;
        for (const Region& region : all_regions()) {
            for (const TableEntry& entry : region.entries) {
                if (entry.name[0]) all[std::string(region.name) + "." + entry.name] = entry.type;
            }
        }
        return all;
    }();
    return types;
}

Value value_of(const VectorRow& row, Type type) {
    void* value = nullptr;
    asn1_uper_decode(&value, type, row.uper.data(), row.uper.size(), nullptr);
    return Value(value, {type});
}

// The rows of the sets that are built, with their types.
std::vector<std::pair<VectorRow, Type>> vector_rows() {
    std::vector<std::pair<VectorRow, Type>> rows;
    for (const char* file : {"cn.tsv", "eu.tsv", "us.tsv", "us-rrc.tsv"}) {
        for (VectorRow& row : read_vectors(std::string(ORLENTA_TEST_DATA) + "/" + file)) {
            auto found = named_types().find(row.region + "." + row.type);
            if (found != named_types().end()) rows.emplace_back(std::move(row), found->second);
        }
    }
    return rows;
}

// All other rows follow from that of UNALIGNED PER.
TEST_P(Program, Vectors) {
    std::mt19937 random(11);
    Tally tally;
    for (const auto& [row, type] : vector_rows()) {
        SCOPED_TRACE(row.region + " line " + std::to_string(row.line));
        Subject subject(GetParam(), type, tally);
        Value value = value_of(row, type);
        ASSERT_NE(value, nullptr);
        compare(subject, value.get(), 12, random);
        Bytes bytes = subject.encode(value.get());
        for (size_t size = 0; size < std::min<size_t>(bytes.size(), 64); ++size) {
            subject.decode(Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)));
        }
        if (HasFailure()) return;
    }
    print(GetParam(), "vectors", tally);
    EXPECT_EQ(tally.values_left, 0);
    EXPECT_GT(tally.values, 2000);
}

// ---- forms that no message set uses -----------------------------------------------------------------------

std::vector<Component> components_of(size_t count, Type type, uint32_t option, uint32_t flags = 0) {
    return std::vector<Component>(count, {type, "c", option, flags});
}

// A record whose open type has no key in a number of the record itself.
Type record_with_open_type() {
    static const char* const words[] = {"&id", "&Type"};
    static const uint8_t short_id[] = {1}, long_id[] = {1, 2};
    static const asn1_string ids[] = {{const_cast<uint8_t*>(short_id), 1},
                                      {const_cast<uint8_t*>(long_id), 2}};
    Type object_class = keep({head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(2), num(1), ref(kOid),
                              num(0), txt(words[0]), num(0), num(0), num(0), txt(words[1]), txt("CLASS")});
    Type rows = keep({{.address = &ids[0]}, ref(kSmall), {.address = &ids[1]}, ref(kOctets)});
    Type table = keep({num(ASN1_CONSTRAINT_TABLE), ref(object_class), num(1), ref(rows), num(2), num(1),
                       num(0), num(ASN1_SELECTOR_LAST), num(0)});
    Type open = keep({head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(table)});
    return sequence({{kOid, "id"}, {open, "value"}, {kSmall, "last", kOptional}});
}

// An open type whose set has two rows for 2, one for 3 without a type, and at last one without a key; 4 and REAL stand in
// if the class has defaults.
Type open_type(bool has_defaults, int64_t rows, const Words& selectors) {
    static const uint32_t keys[] = {1, 2, 3, 4};
    auto key = [](int i) { return asn1_word{.address = &keys[i - 1]}; };
    Type object_class =
        keep({head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(2), num(ASN1_CLASS_FIELD_VALUE),
              ref(kSmall), has_defaults ? key(4) : num(0), txt("&id"), num(ASN1_CLASS_FIELD_TYPE),
              ref(has_defaults ? kReal : nullptr), num(0), txt("&Type"), txt("CLASS")});
    Type set = keep({key(1), ref(kBoolean), key(2), ref(kNull), key(2), ref(kSmall), key(3), num(0), num(0),
                     ref(kOctets)});
    Words table = {num(ASN1_CONSTRAINT_TABLE),
                   ref(object_class),
                   num(1),
                   ref(set),
                   num(rows),
                   num(static_cast<int64_t>(selectors.size() / 3))};
    table.insert(table.end(), selectors.begin(), selectors.end());
    return keep({head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(keep(table))});
}

// Tags of one octet to four.
Type choice_of_tags() {
    std::vector<Component> alternatives;
    for (uint32_t number : {0u, 30u, 31u, 127u, 128u, 16383u, 16384u, ASN1_TAG_NUMBER_MASK})
        alternatives.push_back({keep({head(ASN1_KIND_TAGGED, 0, context(number)), ref(kSmall)}), "a"});
    return choice(-1, alternatives);
}

Type big_integer(uint64_t upper) {
    struct Bound {
        uint32_t limbs[2];
        asn1_integer number;
    };
    static std::deque<Bound> bounds;
    uint32_t low = static_cast<uint32_t>(upper), high = static_cast<uint32_t>(upper >> 32);
    Bound& bound = bounds.emplace_back(Bound{{low, high}, {}});
    bound.number = {bound.limbs, high != 0 ? 2u : 1u, 2, 0};
    static const asn1_integer zero = {};
    return keep({head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_BIG), big(&zero), big(&bound.number)});
}
const Type big_to_200 = big_integer(200), big_to_2_33 = big_integer(UINT64_C(1) << 33);

std::vector<std::pair<const char*, Type>> unusual_types() {
    const Words by_first = {num(0), num(ASN1_SELECTOR_LAST), num(0)},
                by_outer = {num(1), num(ASN1_SELECTOR_LAST), num(0)};
    Words twice = by_first;
    twice.insert(twice.end(), by_first.begin(), by_first.end());
    Type plain = open_type(false, 3, by_first), asking = open_type(false, 5, by_first);
    static const asn1_integer zero = {};
    Type byte = integer(0, 255), extensible = integer(0, 9, kExt), wide = integer(INT32_MIN, INT32_MAX, kExt);
    Type flat =
        sequence({{byte, "a"}, {extensible, "b"}, {kBoolean, "c", kOptional, ASN1_FIELD_ADDITION}}, kExt);
    Type text = char_string(ASN1_STRING_IA5, 0, 20, {{0, 127}}, kExt),
         digits = char_string(ASN1_STRING_NUMERIC, 1, 9, {{' ', ' '}, {'0', '9'}});
    auto with = [](std::vector<Component> first, const std::vector<Component>& more) {
        first.insert(first.end(), more.begin(), more.end());
        return first;
    };
    return {
        {"ops beyond a set of 64", sequence(with(components_of(70, byte, kOptional), {{kBoolean, "z"}}))},
        {"a preamble beyond a window", sequence(components_of(60, kBoolean, kOptional), kExt)},
        {"a bitmap beyond a window",
         sequence(with({{byte, "a"}}, components_of(60, byte, kOptional, ASN1_FIELD_ADDITION)), kExt)},
        {"a group beyond a window",
         sequence(with({{byte, "a"}, {byte, "o", kOptional, kOpens}},
                       with(components_of(58, kBoolean, kOptional, ASN1_FIELD_ADDITION),
                            {{byte, "c", kOptional, kCloses}})),
                  kExt)},
        {"alternatives beyond 64 extensions", choice(80, components_of(83, byte, ASN1_OPTION_MANDATORY))},
        {"flat records behind gates", list_of(sequence({{flat, "f"}, {flat, "g"}, {byte, "h"}}), 0, 40)},
        {"an optional flat record", sequence({{flat, "f", kOptional}, {byte, "g", kDefault, 0, num(7)}})},
        {"an extensible list", list_of(extensible, 2, 3, kExt)},
        {"a long list", list_of(octet_string(0, 3), 0, -1)},
        {"big numbers of few bits", list_of(sequence({{big_to_200, "a"}, {big_to_2_33, "b"}}), 0, 3)},
        {"numbers of all widths", sequence({{wide, "w"},
                                            {integer(5, 5), "n"},
                                            {integer(-3, 60000), "m"},
                                            {at_least(-7), "s"},
                                            {at_most(9), "t"},
                                            {kInteger, "u"}})},
        {"strings", sequence({{text, "t"},
                              {digits, "d"},
                              {bit_string(0, 70), "b"},
                              {octet_string(3, 3), "o"},
                              {octet_string(0, 5, kExt), "x"},
                              {octet_string(2, -1), "y"},
                              {bit_string(1, -1), "g"}})},
        {"characters that are not printed",
         sequence(
             {{char_string(ASN1_STRING_UNIVERSAL, 0, 9, {{0, UINT32_MAX}}), "u"},
              {char_string(ASN1_STRING_BMP, 0, 9, {{0x7E, 0x90}, {0xD7FF, 0xE000}, {0xFFFD, 0xFFFF}}), "b"},
              {char_string(ASN1_STRING_IA5, 0, 9, {{0, 9}, {'a', 'a'}}), "c"}})},
        {"an open type with a key of octets", record_with_open_type()},
        {"an open type as an addition",
         sequence({{byte, "a"}, {kAny, "b", kOptional, ASN1_FIELD_ADDITION}}, kExt)},
        {"rows of defaults",
         sequence({{kSmall, "id"}, {open_type(true, 5, by_first), "v"}}, 0, ASN1_KIND_SET)},
        {"a row without a type", sequence({{kSmall, "id"}, {open_type(false, 4, by_first), "v"}})},
        {"a row without a key", list_of(sequence({{kSmall, "id"}, {asking, "v"}}), 0, 3)},
        {"a record that is asked", sequence({{sequence({{kSmall, "id"}, {asking, "v"}}), "in"}})},
        {"an optional key", sequence({{kSmall, "id", kOptional}, {plain, "v"}})},
        {"a key in an addition",
         sequence({{kSmall, "id", ASN1_OPTION_MANDATORY, ASN1_FIELD_ADDITION}, {plain, "v"}}, kExt)},
        {"a key of two parts", sequence({{kSmall, "id"}, {open_type(false, 3, twice), "v"}})},
        {"a key further out",
         sequence({{kSmall, "id"}, {sequence({{open_type(false, 4, by_outer), "v"}}), "in"}})},
        {"no key at all", list_of(plain, 0, 3)},
        {"leaves of no bits",
         sequence(with(components_of(210, integer(5, 5), ASN1_OPTION_MANDATORY), {{kBoolean, "z"}}))},
        {"flat leaves of no bits",
         list_of(sequence(components_of(60, integer(5, 5), ASN1_OPTION_MANDATORY)), 0, 3)},
        {"a flat record with a big addition",
         list_of(sequence({{byte, "a"}, {kBig, "b", kDefault, ASN1_FIELD_ADDITION, big(&zero)}}, kExt), 0,
                 3)},
        {"a long enumeration", enumerated(200, -1)},
        {"alternatives beyond an octet", choice(-1, components_of(300, kBoolean, ASN1_OPTION_MANDATORY))},
        {"tags of several octets", list_of(choice_of_tags(), 0, 9)},
        {"an alternative with any tag",
         choice(-1, {{choice(-1, {{kBoolean, "b"}, {kAny, "any"}}), "in"}, {kOctets, "o"}})},
        {"a list of nothing", list_of(kNull, 0, 9)},
        {"nothing", sequence({})},
        {"nothing, extensible", sequence({{kNull, "n"}, {kNull, "o", kOptional}}, kExt)},
    };
}

TEST_P(Program, UnusualTypes) {
    std::mt19937 random(13);
    Tally tally;
    for (auto [name, type] : unusual_types()) {
        SCOPED_TRACE(name);
        Subject subject(GetParam(), type, tally);
        for (uint32_t seed = 1; seed <= 300 && !HasFailure(); ++seed) {
            Value value(seed % 2 ? asn1_random(type, seed) : orlenta_random_valid(type, seed), {type});
            ASSERT_NE(value, nullptr);
            compare(subject, value.get(), 6, random);
        }
    }
    print(GetParam(), "unusual types", tally);
    EXPECT_GT(tally.pieces, 100);
}

// What no decoder gives: numbers and lengths out of their bounds, characters that are too wide.
TEST_P(Program, ValuesOutOfBounds) {
    uint32_t limbs[] = {201, 0, 1}, item = 9;
    uint8_t data[8] = {0xFF, 0xFF};
    asn1_integer negative = {limbs, 1, 1, 1}, above = {limbs, 1, 1, 0}, long_one = {limbs, 3, 3, 0},
                 padded = {limbs, 2, 2, 0};
    asn1_string string = {data, 1}, wide = {data, 2};
    asn1_array list = {data, 1};
    const std::pair<Type, const void*> rows[] = {
        {big_to_200, &negative},
        {big_to_200, &above},
        {big_to_200, &long_one},
        {big_to_200, &padded},
        {octet_string(2, -1), &string},
        {octet_string(2, 9), &string},
        {list_of(kBoolean, 2, -1), &list},
        {char_string(ASN1_STRING_IA5, 0, 9, {{0, 127}}), &wide},
        {choice(-1, components_of(3, kBoolean, ASN1_OPTION_MANDATORY)), &item},
        {enumerated(3, -1), &item},
        {octet_string(3, 3), &string},
        {bit_string(8, 8), &string},
    };
    Tally tally;
    for (const auto& [type, value] : rows) Subject(GetParam(), type, tally).encode(value);
    EXPECT_EQ(orlenta_codec_new(kClass), nullptr);
    orlenta_codec_free(nullptr);
}

// Fragments of 16K items, in strings, lists and open types.
TEST_P(Program, Fragments) {
    Tally tally;
    for (Type type : {kOctets, kBits, kRecord, list_of(kSmall, 0, -1), Type{kOpenRecord<kOpen>}}) {
        Subject subject(GetParam(), type, tally);
        for (uint8_t marker : {0xC0, 0xC1, 0xC4, 0xC5, 0xFF}) {
            Bytes bytes(70000, 0x11);
            bytes[0] = marker;
            bytes[16385] = 0;
            subject.decode(bytes);
        }
    }
    Bytes long_octets(40000, 0x5A);
    asn1_string string = {long_octets.data(), long_octets.size()};
    Subject octets(GetParam(), kOctets, tally);
    octets.decode(octets.encode(&string));
    EXPECT_GT(tally.values, 3);
}

// ---- scarce memory and stack ------------------------------------------------------------------------------

// One that has its program.
Codec prepared_codec(const Rules& rules, Type type) {
    Codec codec(orlenta_codec_new(type));
    void* value = nullptr;
    rules.decode(codec.get(), &value, nullptr, 0, nullptr);
    orlenta_free_value(codec.get(), value);
    return codec;
}

// Encodes with each allocation failing in turn; how often that failed the encoding.
int encode_with_failures(const Rules& rules, const Codec& codec, const void* value) {
    int failures = 0;
    for_each_failed_allocation([&] {
        uint8_t* out = nullptr;
        asn1_error error = {};
        int64_t size = rules.encode(codec.get(), &out, value, &error);
        EXPECT_TRUE(size >= 0 || allocator_has_failed());
        EXPECT_EQ(size < 0, out == nullptr);
        asn1_free(out);
        failures += size < 0;
    });
    return failures;
}

// The output grows wherever it happens to be full.
TEST_P(Program, OutputWithoutMemory) {
    int failures = 0;
    for (auto [name, element] : unusual_types()) {
        SCOPED_TRACE(name);
        Type type = list_of(element, 100, 100);
        Codec codec = prepared_codec(GetParam(), type);
        Value value(asn1_random(type, 7), {type});
        Tally tally;
        if (Subject(GetParam(), type, tally).encode(value.get()).empty()) continue;  // OER has no form for it
        failures += encode_with_failures(GetParam(), codec, value.get());
    }
    EXPECT_GT(failures, 100);
}

// Where memory runs out the report is the walker's, and nothing is left behind.
TEST_P(Program, ScarceMemory) {
    int failures = 0;
    auto rows = vector_rows();
    for (size_t i = 0; i < rows.size(); i += 23) {
        const VectorRow& row = rows[i].first;
        const asn1_type_desc* type = rows[i].second;
        if (row.uper.size() > 400) continue;
        SCOPED_TRACE(row.region + " line " + std::to_string(row.line));
        Codec codec = prepared_codec(GetParam(), type);
        Value value = value_of(row, type);
        Tally tally;
        Bytes bytes = Subject(GetParam(), type, tally).encode(value.get());
        for_each_failed_allocation([&] {
            void* decoded = nullptr;
            asn1_error error = {};
            int64_t used = GetParam().decode(codec.get(), &decoded, bytes.data(), bytes.size(), &error);
            // One failure may be over when the walker comes to look for the report.
            EXPECT_TRUE(used >= 0 ||
                        (allocator_has_failed() && strcmp(error.message, "not enough memory") == 0));
            EXPECT_EQ(used < 0, decoded == nullptr);
            orlenta_free_value(codec.get(), decoded);
            failures += used < 0;
        });
        encode_with_failures(GetParam(), codec, value.get());
        for_each_failed_allocation([&, chunk_size = i % 2 * 1000] {
            orlenta_arena* arena = orlenta_arena_create(chunk_size);
            orlenta_arena_value held = {};
            bool is_held = arena && GetParam().decode_in_arena(codec.get(), arena, &held, bytes.data(),
                                                               bytes.size(), nullptr) >= 0;
            EXPECT_TRUE(is_held || allocator_has_failed());
            EXPECT_EQ(is_held, held.record != nullptr);
            orlenta_arena_destroy(arena);
        });
        if (HasFailure()) return;
    }
    EXPECT_GT(failures, 500);
    for_each_failed_allocation([] {
        Codec made(orlenta_codec_new(kOpenRecord<kOpen>));
        EXPECT_EQ(made == nullptr, allocator_has_failed());
    });
}

// A program is made at its first use. Where that fails the walker stands in, and a later use makes it.
TEST_P(Program, MadeInScarceMemory) {
    uint64_t allocations = 0;
    for (const auto& row : unusual_types()) {
        SCOPED_TRACE(row.first);
        Type type = row.second;
        Value value(orlenta_random_valid(type, 3), {type});
        Tally tally;
        const Bytes bytes = Subject(GetParam(), type, tally).encode(value.get());
        if (bytes.empty()) continue;  // OER has no form for it
        auto encode = [&](const Codec& codec) {
            uint8_t* out = nullptr;
            int64_t size = GetParam().encode(codec.get(), &out, value.get(), nullptr);
            bool is_same = size >= 0 && Bytes(out, out + size) == bytes;
            EXPECT_TRUE(is_same || (size < 0 && allocator_has_failed()));
            asn1_free(out);
            return is_same;
        };
        allocations += for_each_failed_allocation([&] {
            Codec codec(orlenta_codec_new(type));
            EXPECT_TRUE(codec || allocator_has_failed());
            if (!codec) return;
            encode(codec);
            allocator_recovers();
            EXPECT_TRUE(encode(codec));
        });
    }
    EXPECT_GT(allocations, 500);
}

// As in the walker: the same block fails, and the report names its place.
TEST_P(Program, ReportOfScarceMemory) {
    for (const auto& [row, type] : vector_rows()) {
        if (row.region != "CN")
            continue;  // which has no big integers: the walker takes blocks besides for these
        Codec codec = prepared_codec(GetParam(), type);
        Tally tally;
        Bytes bytes = Subject(GetParam(), type, tally).encode(value_of(row, type).get());
        for (uint64_t call = 1;; ++call) {
            asn1_error error[2] = {};
            void* value[2] = {};
            allocator_fails_at(call);
            int64_t by_program =
                GetParam().decode(codec.get(), &value[1], bytes.data(), bytes.size(), &error[1]);
            bool has_failed = allocator_has_failed();
            allocator_fails_at(call);
            int64_t result = GetParam().walk(&value[0], type, bytes.data(), bytes.size(), &error[0]);
            allocator_never_fails();
            EXPECT_TRUE(result == by_program && error[0] == error[1])
                << "walker:  " << text_of(error[0], result) << "\nprogram: " << text_of(error[1], by_program);
            for (void* each : value) asn1_free_value(type, each);
            if (!has_failed || HasFailure()) break;
        }
        if (HasFailure()) return;
    }
}

// What a large stack decodes is released on a small one, and encoded or refused there. How deep a walk gets depends on
// how deep it begins: reports differ by their place alone.
TEST_P(Program, SmallStacks) {
    Bytes tree(5000, 1), chain(625, 0xFF);
    tree.push_back(0);
    chain.push_back(0);
    Tally tally;
    std::pair<Type, Bytes> rows[] = {{kTree, tree}, {kChain, chain}};
    for (const std::pair<Type, Bytes>& row : rows) {
        Type type = row.first;
        void* whole = nullptr;
        asn1_uper_decode(&whole, type, row.second.data(), row.second.size(), nullptr);
        Subject subject(GetParam(), type, tally);
        Bytes bytes = subject.encode(whole);
        Value value = subject.decode(bytes);
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(asn1_cmp_value(type, value.get(), whole), 0);
        asn1_free_value(type, whole);
        run_on_stack(kTightStack, [&] {
            asn1_error error = {};
            void* decoded = nullptr;
            EXPECT_EQ(GetParam().decode(subject.codec(), &decoded, bytes.data(), bytes.size(), &error), -1);
            EXPECT_STREQ(error.message, "value nested too deeply");
            uint8_t* out = nullptr;
            EXPECT_EQ(GetParam().encode(subject.codec(), &out, value.get(), &error), -1);
            EXPECT_STREQ(error.message, "value nested too deeply");
            orlenta_free_value(subject.codec(), value.release());
        });
    }
}

}  // namespace
}  // namespace orlenta::test
