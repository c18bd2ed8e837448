// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/memory.h>
#include <orlenta/random.h>
#include <orlenta/value.h>

#include <bit>
#include <memory>
#include <string>
#include <vector>

#include "core/descriptor.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {
namespace {

// ---- a value as text --------------------------------------------------------------------------------------

std::string hex(uint64_t number, int width) {
    char text[17];
    snprintf(text, sizeof text, "%0*llx", width, static_cast<unsigned long long>(number));
    return text;
}

std::string octets(const void* data, uint64_t bytes) {
    std::string out;
    for (uint64_t i = 0; i < bytes; ++i) out += hex(static_cast<const uint8_t*>(data)[i], 2);
    return out;
}

std::string show_big(const asn1_integer* v) {
    std::string out = v->negative ? "-" : "";
    if (v->size == 0) return out + "0";
    for (uint32_t i = v->size; i-- > 0;) out += hex(v->limbs[i], i + 1 == v->size ? 1 : 8);
    return out;
}

// SEQUENCE {...}, SEQUENCE OF [...], CHOICE index:(...), REAL as its bits, strings length:octets.
std::string show(const asn1_type_desc* type, const void* value) {
    std::string out;
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
            for (const asn1_field *f = components(type), *end = f + component_count(type); f < end; ++f) {
                bool absent = is_presence_flagged(f) && presence_word(f, value) == 0;
                out += (out.empty() ? "" : ",") + (absent ? "-" : show(field_type(f), field_value(f, value)));
            }
            return "{" + out + "}";
        case ASN1_KIND_SEQUENCE_OF: {
            auto* array = static_cast<const asn1_array*>(value);
            list_layout list = list_of(type);
            for (uint64_t i = 0; i < array->count; ++i)
                out += (i ? "," : "") + show(list.element, at_offset(array->data, i * list.stride));
            return "[" + out + "]";
        }
        case ASN1_KIND_CHOICE: {
            choice_layout choice = choice_of(type);
            uint32_t i = load32(value);
            out = show(alternative_type(choice, i), at_offset(value, choice.payload_offset));
            return std::to_string(i) + ":(" + out + ")";
        }
        case ASN1_KIND_INTEGER:
            if (is_big_integer(type)) return show_big(static_cast<const asn1_integer*>(value));
            [[fallthrough]];
        case ASN1_KIND_BOOLEAN:
        case ASN1_KIND_ENUMERATED: return std::to_string(load32(value));
        case ASN1_KIND_NULL: return "null";
        case ASN1_KIND_REAL: return hex(std::bit_cast<uint64_t>(*static_cast<const double*>(value)), 16);
        case ASN1_KIND_ANY: {
            auto* open = static_cast<const asn1_open_value*>(value);
            EXPECT_EQ(open->type, nullptr);
            return std::to_string(open->length) + ":" + octets(open->data, open->length);
        }
    }
    auto* string = static_cast<const asn1_string*>(value);
    uint64_t bytes = string->length;
    if (kind_of(type) == ASN1_KIND_BIT_STRING) bytes = (bytes + 7) / 8;
    if (kind_of(type) == ASN1_KIND_CHAR_STRING) bytes <<= code_unit_shift(string_type(type));
    return std::to_string(string->length) + ":" + octets(string->data, bytes);
}

// Long texts are cut, their length and FNV-1a hash standing for the rest.
std::string shorten(const std::string& text) {
    if (text.size() <= 90) return text;
    uint64_t hash = UINT64_C(0xCBF29CE484222325);
    for (unsigned char c : text) hash = (hash ^ c) * UINT64_C(0x100000001B3);
    return text.substr(0, 24) + "..." + std::to_string(text.size()) + "#" + hex(hash, 16);
}

// ---- types ------------------------------------------------------------------------------------------------

const asn1_word kFree[] = {head(ASN1_KIND_INTEGER)};
const asn1_word kUpper5[] = {head(ASN1_KIND_INTEGER, kUpper), num(5)};
const asn1_word kFrom0[] = {head(ASN1_KIND_INTEGER, kLower), num(0)};
const asn1_word kFromMinus5[] = {head(ASN1_KIND_INTEGER, kLower), num(-5)};
const asn1_word kMinus8To1000[] = {head(ASN1_KIND_INTEGER, kBounds), num(-8), num(1000)};
const asn1_word k5[] = {head(ASN1_KIND_INTEGER, kBounds), num(5), num(5)};
const asn1_word k0To7[] = {head(ASN1_KIND_INTEGER, kBounds), num(0), num(7)};
const asn1_word k0To7Ext[] = {head(ASN1_KIND_INTEGER, kBounds | kExt), num(0), num(7)};

uint32_t limbs_of_minus_2_32[] = {0, 1};
uint32_t limbs_of_2_64[] = {0, 0, 1};
const asn1_integer kMinus2To32 = {limbs_of_minus_2_32, 2, 2, 1};
const asn1_integer k2To64 = {limbs_of_2_64, 3, 3, 0};
const asn1_word kBigRange[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG | kBounds), big(&kMinus2To32),
                               big(&k2To64)};
const asn1_word kBigExt[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG | kBounds | kExt), big(&kMinus2To32),
                             big(&k2To64)};
const asn1_word kBigLower[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG | kLower), big(&kMinus2To32)};
const asn1_word kBigUpper[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG | kUpper), big(&k2To64)};

const asn1_word kFiveItems[] = {
    head(ASN1_KIND_ENUMERATED, kExt), num(3), num(2), txt("a"), txt("b"), txt("c"), txt("d"), txt("e")};

const asn1_word k3To20Bits[] = {head(ASN1_KIND_BIT_STRING, kBounds), num(3), num(20)};
const asn1_word kBitsExt[] = {head(ASN1_KIND_BIT_STRING, kBounds | kExt), num(4), num(4)};
const asn1_word kThousand[] = {head(ASN1_KIND_OCTET_STRING, kBounds), num(1000), num(1002)};
const asn1_word kOctets5[] = {head(ASN1_KIND_OCTET_STRING, kBounds), num(5), num(5)};
const asn1_word kOctetsExt[] = {head(ASN1_KIND_OCTET_STRING, kBounds | kExt), num(2), num(2)};

constexpr asn1_word chars(uint32_t flags) { return head(ASN1_KIND_CHAR_STRING, flags); }
const asn1_word kNumeric[] = {
    chars(kBounds), num(ASN1_STRING_NUMERIC), num(1), num(12), num(2), num(' '), num(' '), num('0'),
    num('9')};
const asn1_word kIa5Ext[] = {
    chars(kBounds | kExt), num(ASN1_STRING_IA5), num(2), num(2), num(1), num(0), num(0x7F)};
const asn1_word kTwoRanges[] = {chars(kBounds), num(ASN1_STRING_BMP), num(2),      num(6),     num(2),
                                num(0x100),     num(0x1FF),           num(0x4E00), num(0x9FFF)};
const asn1_word kAnyUniversal[] = {chars(kBounds), num(ASN1_STRING_UNIVERSAL), num(2), num(4), num(1), num(0),
                                   num(0xFFFFFFFF)};
const asn1_word kGeneral[] = {chars(0), num(ASN1_STRING_GENERAL)};

const asn1_word kList[] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(1), num(4), ref(k0To7), num(0)};
const asn1_word kListExt[] = {
    head(ASN1_KIND_SEQUENCE_OF, kBounds | kExt), num(1), num(2), num(4), ref(k0To7), num(0)};
// clang-format off
const asn1_word kThreeWays[] = {
    head(ASN1_KIND_CHOICE, kExt), num(2), num(1), num(8), num(0), num(4),
    ref(k0To7), txt("a"), ref(kNull), txt("b"), ref(kBoolean), txt("c")};
// clang-format on

constexpr uint32_t kOpens = kAddition | ASN1_FIELD_OPENS_GROUP;
constexpr uint32_t kCloses = kAddition | ASN1_FIELD_CLOSES_GROUP;
constexpr uint32_t kMandatory = ASN1_OPTION_MANDATORY, kOptional = ASN1_OPTION_OPTIONAL,
                   kDefault = ASN1_OPTION_DEFAULT;
// clang-format off
const asn1_word kSequence[] = {
    head(ASN1_KIND_SEQUENCE, kExt), num(8), num(56),
    field(0), ref(k0To7), num(0), txt("a"),
    field(8, kOptional), ref(k0To7), num(4), txt("b"),
    field(12, kDefault), ref(k0To7), num(9), txt("c"),
    field(20, kMandatory, kAddition), ref(k0To7), num(16), txt("d"),
    field(28, kMandatory, kOpens), ref(k0To7), num(24), txt("e"),
    field(36, kOptional, kAddition), ref(k0To7), num(32), txt("f"),
    field(40, kDefault, kCloses), ref(k0To7), num(9), txt("g"),
    field(48, kOptional, kAddition), ref(k0To7), num(44), txt("h"),
};
// A group of one, whose flag hides additions behind it from the count.
const asn1_word kLoneGroup[] = {
    head(ASN1_KIND_SEQUENCE, kExt), num(6), num(48),
    field(4, kOptional, kOpens | kCloses), ref(k0To7), num(0), txt("a"),
    field(12, kMandatory, kAddition), ref(k0To7), num(8), txt("b"),
    field(20, kMandatory, kAddition), ref(k0To7), num(16), txt("c"),
    field(28, kMandatory, kOpens), ref(k0To7), num(24), txt("d"),
    field(36, kMandatory, kCloses), ref(k0To7), num(32), txt("e"),
    field(44, kMandatory, kAddition), ref(k0To7), num(40), txt("f"),
};
// 5 takes no draw, a fixed size does.
const asn1_word kFixedFirst[] = {
    head(ASN1_KIND_SEQUENCE), num(3), num(32),
    field(0), ref(k5), num(0), txt("a"),
    field(8), ref(kOctets5), num(0), txt("b"),
    field(24), ref(kFree), num(0), txt("c"),
};
// clang-format on
const asn1_word kEmpty[] = {head(ASN1_KIND_SEQUENCE), num(0), num(1)};

// SEQUENCE of the types given, one after the other.
std::vector<asn1_word> record_of(std::initializer_list<const asn1_type_desc*> types) {
    std::vector<asn1_word> words = {head(ASN1_KIND_SEQUENCE), num(types.size()), num(0)};
    uint32_t offset = 0;
    for (const asn1_type_desc* type : types) {
        for (asn1_word word : {field(offset), ref(type), num(0), txt("x")}) words.push_back(word);
        offset += (static_cast<uint32_t>(asn1_get_size(type)) + 7) / 8 * 8;
    }
    words[2] = num(offset);
    return words;
}

struct Release {
    const asn1_type_desc* type;
    void operator()(void* value) const { asn1_free_value(type, value); }
};
using Value = std::unique_ptr<void, Release>;
Value random_value(const asn1_type_desc* type, uint32_t seed) { return {asn1_random(type, seed), {type}}; }

// ---- tests ------------------------------------------------------------------------------------------------

// Made by a second implementation of the generator. Seed 453354545 makes the word z wrap to 0.
TEST(Random, GoldenValues) {
    static const struct {
        const asn1_type_desc* type;
        uint32_t seed;
        const char* text;
    } rows[] = {
        // clang-format off
        {kFree, 0, "3248432896"}, {kUpper5, 0, "3248432901"}, {kFrom0, 0, "1046534400"},
        {kFromMinus5, 0, "1046534395"}, {kFromMinus5, 0xFFFFFFFF, "599803"}, {kMinus8To1000, 0xFFFFFFFF, "248"},
        {kFree, 453354545, "2147483648"}, {k5, 7, "5"}, {k0To7Ext, 1013904226, "1"},
        {k0To7Ext, 2654435761, "45626"}, {k0To7Ext, 3084875576, "2147483648"},
        {kBig, 2, "5d4fc34f54447f92f4a7c116...102#368d7a8596b37a83"}, {kBig, 2654435761, "a59d"},
        {kBigRange, 2, "-1f8d4e00"}, {kBigRange, 2654435761, "-fff95a63"},
        {kBigLower, 2, "5d4fc34f54447f92f4a7c116...102#626503515561e582"}, {kBigLower, 2654435761, "-ffff5a63"},
        {kBigUpper, 2, "-5d4fc34f54447f92f4a7c11...103#48e05b4f6fab0db5"},
        {kBigUpper, 2654435761, "ffffffffffff5a63"}, {kBigExt, 2, "-ffff3961"},
        {kBigExt, 2654435761, "36a4a2d771b1e79b3d3ebbb9c2c88b23a"}, {kBig, 1113569782, "-0"},
        {kBig, 969976040, "0"}, {kBig, 2528090685, "-500d"}, {kBigRange, 3929271828, "10000000000000000"},
        {kBigRange, 2858864944, "-100000000"},
        {kBigExt, 2027808452, "84366e53f9aa0bc91b3dc60f...125#cfe071cc704c8f14"}, {kBoolean, 2654435761, "1"},
        {kFiveItems, 1, "1"}, {kFiveItems, 2654435761, "3"}, {kNull, 1, "null"},
        {kReal, 1753536851, "7ff8000000000000"}, {kReal, 3872769170, "0000000000000000"},
        {kReal, 2218897875, "8000000000000000"}, {kReal, 774553834, "7ff0000000000000"},
        {kReal, 1013904226, "fff0000000000000"}, {kReal, 4055616904, "000d78e461cd7895"},
        {kReal, 2654435761, "800bbb9c2c88b23a"}, {kReal, 3668339987, "3b2359d5c799d05f"},
        {kReal, 3041712678, "e6d5daab0d0c5a6f"}, {k3To20Bits, 1788458060, "8:55"},
        {k3To20Bits, 3668339987, "15:d65e"}, {kBitsExt, 1013904226, "4:20"},
        {kBitsExt, 2654435761, "30:3a9cb374"}, {kBitsExt, 508523922, "0:"},
        {kThousand, 1, "1002:004f493e6d180e7e9f1...2009#2266122181ee1edd"},
        {kThousand, 2654435761, "1001:9d3a9cb3779d8c71460...2007#4d33838b0c911301"},
        {kOctetsExt, 1013904226, "2:2539"},
        {kOctetsExt, 2654435761, "82:3a9cb3779d8c71460f80f...167#42fe6dac8ebf3735"},
        {kNumeric, 1, "9:373937363231373239"}, {kNumeric, 387276917, "10:37383538393938333635"},
        {kTwoRanges, 1, "3:00534f764986"}, {kTwoRanges, 387276917, "5:0e9a35600e5f93517783"},
        {kAnyUniversal, 1, "4:00d9c1554fe3444d49de0c533eab0764"},
        {kAnyUniversal, 387276917, "2:0e3c4f5935a85b1c"}, {kIa5Ext, 1013904226, "2:2539"},
        {kIa5Ext, 2654435761, "82:3a1c33771d0c71460f007...167#1bf542a7555fb8b5"},
        {kUtf8, 1, "380:c38ff1baacbe04c3bef4...764#fb7cf66339a46866"},
        {kUtf8, 4, "96:f48fbfbfd3bbe3b1a2f18...195#53a2e7f25d5ccfd5"}, {kUtf8, 1086890262, "0:"},
        {kGeneral, 1, "167:004f493e6d180e7e9f1b...338#8c348b7eeed48830"}, {kOid, 5, "9:611f1922244337180e"},
        {kOid, 2654435761, "4:3d1a541b"}, {kRelativeOid, 5, "18:8f619e1fb0518b1acb74ab7bc87799688f5e"},
        {kRelativeOid, 2654435761, "8:c87daf0a8c1c9013"},
        {kAny, 5, "50:0430018f713a247b47781...103#8826557100fbd746"}, {kList, 5, "[1]"},
        {kList, 2654435761, "[1,0,7,1,1,4,0,0,2]"}, {kListExt, 2654435761, "[2,7,1,1,4]"},
        {kThreeWays, 5, "2:(1)"}, {kThreeWays, 2654435761, "1:(null)"},
        {kListExt, 387276917, "[1,7,1,7,1,2,0,4]"}, {kListExt, 1788458060, "[]"},
        {kList, 4203543429, "[1,4,2,2,0,1,7,3,4,0,0]"}, {kSequence, 3041712678, "{7,3,9,-,-,-,9,-}"},
        {kSequence, 2027808452, "{2,-,2,0,-,-,9,-}"}, {kSequence, 4055616904, "{0,0,9,0,1,-,1,1}"},
        {kSequence, 2654435761, "{1,-,5,0,1,0,9,-}"}, {kSequence, 922480359, "{2,-,1,0,1,2,9,1}"},
        {kLoneGroup, 3668339987, "{-,-,-,-,-,-}"}, {kLoneGroup, 2654435761, "{2,-,-,-,-,-}"},
        {kLoneGroup, 1013904226, "{1,5,-,-,-,-}"}, {kLoneGroup, 1161830751, "{-,7,-,-,-,-}"}, {kEmpty, 1, "{}"},
        {kFixedFirst, 5, "{5,5:018f713a24,1939037511}"},
        // clang-format on
    };
    int line = 0;
    for (const auto& row : rows) {
        Value value = random_value(row.type, row.seed);
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(shorten(show(row.type, value.get())), row.text) << "row " << line << ", seed " << row.seed;
        ++line;
    }
}

// An indirect component is allocated and filled; a TAGGED in place draws as its inner type does.
TEST(Random, Tags) {
    const asn1_word in_place[] = {head(ASN1_KIND_TAGGED, 0, context(1)), ref(kFree)};
    const asn1_word indirect[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(2)), ref(in_place)};
    Value direct = random_value(kFree, 77), placed = random_value(in_place, 77),
          pointed = random_value(indirect, 77);
    EXPECT_EQ(load32(placed.get()), load32(direct.get()));
    EXPECT_EQ(load32(load_pointer(pointed.get())), load32(direct.get()));
}

// Tables that no compiler writes leave the value as it is.
TEST(Random, DefectiveTables) {
    const asn1_word negative[] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(0x80000000), num(4), ref(kFree),
                                  num(0)};
    const asn1_word huge[] = {
        head(ASN1_KIND_SEQUENCE_OF, kLower), num(16), {.number = UINT64_C(1) << 60}, ref(kFree), num(0)};
    const asn1_word no_items[] = {head(ASN1_KIND_ENUMERATED), num(0), num(0)};
    const asn1_word no_alternatives[] = {head(ASN1_KIND_CHOICE), num(0), num(8), num(0), num(4)};
    for (const asn1_type_desc* type : {negative, huge, no_items, no_alternatives}) {
        Value value = random_value(type, 5);
        ASSERT_NE(value, nullptr);
        static const uint8_t zero[16] = {};
        EXPECT_EQ(memcmp(value.get(), zero, static_cast<size_t>(asn1_get_size(type))), 0);
    }
    const asn1_word object_class[] = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME), num(0), txt("C")};
    void* block = asn1_random(object_class, 5);
    EXPECT_NE(block, nullptr);
    asn1_free(block);
}

TEST(RandomDeathTest, CharacterWithoutAlphabetAborts) {
    const asn1_word none[] = {chars(kBounds), num(ASN1_STRING_VISIBLE), num(1), num(1), num(0)};
    EXPECT_DEATH(asn1_random(none, 1), "");
}

// ---- types that hold themselves ---------------------------------------------------------------------------

// Tree ::= SEQUENCE (SIZE (2..MAX)) OF CHOICE { tree Tree, far SEQUENCE { b BOOLEAN }, near SEQUENCE {} }
extern const asn1_word kEndlessTree[5];
const asn1_word kFar[] = {
    head(ASN1_KIND_SEQUENCE), num(1), num(4), field(0), ref(kBoolean), num(0), txt("b")};
// clang-format off
const asn1_word kBranch[] = {
    head(ASN1_KIND_CHOICE), num(3), num(24), num(0), num(8),
    ref(kEndlessTree), txt("tree"), ref(kFar), txt("far"), ref(kEmpty), txt("near")};
// clang-format on
const asn1_word kEndlessTree[5] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(2), num(24), ref(kBranch),
                                   num(0)};

// CHOICE { tree Tree, set SET { b BOOLEAN DEFAULT FALSE, c CHOICE ... }, list SET (SIZE (1)) OF c, c CHOICE { none SEQUENCE {} } }
// clang-format off
const asn1_word kDeepest[] = {
    head(ASN1_KIND_CHOICE), num(1), num(24), num(0), num(8), ref(kEmpty), txt("none")};
const asn1_word kDeepSet[] = {
    head(ASN1_KIND_SET), num(2), num(32),
    field(0, ASN1_OPTION_DEFAULT), ref(kBoolean), num(0), txt("b"), field(8), ref(kDeepest), num(0), txt("c")};
const asn1_word kDeepList[] = {head(ASN1_KIND_SET_OF, kBounds), num(1), num(1), num(24), ref(kDeepest), num(0)};
const asn1_word kDeep[] = {
    head(ASN1_KIND_CHOICE), num(4), num(40), num(0), num(8),
    ref(kEndlessTree), txt("tree"), ref(kDeepSet), txt("set"), ref(kDeepList), txt("list"), ref(kDeepest), txt("c")};
// clang-format on

// Once the limit of levels is met, what is still to come gets its smallest content.
TEST(Random, SmallestContentBehindTheLimit) {
    static const struct {
        const asn1_type_desc* type;
        const char* text;
    } rows[] = {
        // clang-format off
        {kFree, "0"}, {kUpper5, "5"}, {kFromMinus5, "4294967291"}, {kMinus8To1000, "4294967288"}, {k0To7Ext, "0"},
        {kBig, "0"}, {kBigRange, "-100000000"}, {kBigExt, "-100000000"}, {kBigUpper, "10000000000000000"},
        {kBoolean, "0"}, {kFiveItems, "0"}, {kNull, "null"}, {kReal, "0000000000000000"}, {k3To20Bits, "3:00"},
        {kOctets5, "5:0000000000"}, {kOctetsExt, "2:0000"}, {kNumeric, "1:20"}, {kTwoRanges, "2:00010001"},
        {kUtf8, "0:"}, {kGeneral, "0:"}, {kOid, "1:00"}, {kRelativeOid, "1:00"}, {kAny, "2:0400"}, {kList, "[0]"},
        {kListExt, "[0]"}, {kThreeWays, "0:(0)"}, {kBranch, "2:({})"}, {kEndlessTree, "[2:({}),2:({})]"},
        {kDeep, "3:(0:({}))"},
        {kSequence, "{0,-,9,-,-,-,9,-}"}, {kEmpty, "{}"},
        // clang-format on
    };
    for (const auto& row : rows) {
        std::vector<asn1_word> both = record_of({kEndlessTree, row.type});
        Value value = random_value(both.data(), 1);
        ASSERT_NE(value, nullptr) << row.text;
        EXPECT_EQ(show(row.type, field_value(components(both.data()) + 1, value.get())), row.text);
    }
}

// A type without a finite value has none, on any stack.
TEST(Random, NoValueWithoutEnd) {
    asn1_word link[2] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), {}};
    std::vector<asn1_word> chain = record_of({link});
    link[1] = ref(chain.data());
    asn1_word choice[9] = {
        head(ASN1_KIND_CHOICE), num(2), num(24), num(0), num(8), {}, txt("a"), {}, txt("b")};
    const asn1_word list[] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(1), num(24), ref(choice), num(0)};
    choice[5] = choice[7] = ref(list);
    EXPECT_EQ(random_value(chain.data(), 1), nullptr);
    EXPECT_EQ(random_value(list, 1), nullptr);
}

}  // namespace
}  // namespace orlenta::test
