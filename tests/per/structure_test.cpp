// SPDX-License-Identifier: Apache-2.0
// SEQUENCE, SET, CHOICE, TAGGED, and what stands behind extension markers.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

constexpr uint32_t kMandatory = ASN1_OPTION_MANDATORY;

// A component's presence and its number in the record that sequence() lays out for components of 32 bits each.
uint32_t& presence(const value_pointer& record, uint32_t index) {
    return static_cast<uint32_t*>(record.get())[4 * index];
}
uint32_t& slot(const value_pointer& record, uint32_t index) {
    return static_cast<uint32_t*>(record.get())[4 * index + 2];
}

TEST(PerSequence, RootComponents) {
    Type ab = sequence({{kSmall, "a"}, {kBoolean, "b", kOptional}});
    Type defaults = sequence({{kSmall, "a", kDefault, 0, num(3)}, {kSmall, "b", kDefault}, {kSmall, "c"}});
    Type inverse = sequence({{kSmall, "b"}, {kBoolean, "a"}}, 0, ASN1_KIND_SET);
    value_pointer big_default = value_of(kBig, "4294967296");
    Type two_32 = sequence({{kBig, "a", kDefault, 0, big(static_cast<asn1_integer*>(big_default.get()))}});
    expect_rows({
        {ab, "{a 5}", "0 101"},
        {ab, "{a 5, b TRUE}", "1 101 1"},
        // A DEFAULT component is sent if it differs; a default of 0 is one, too.
        {defaults, "{a 3, b 0, c 6}", "00 110"},
        {defaults, "{a 3, b 1, c 6}", "01 001 110"},
        {two_32, "{a 4294967296}", "0"},
        {two_32, "{a 1}", "1 | x0101"},
        {inverse, "{b 5, a TRUE}", "101 1"},  // in the order of the descriptor
        {sequence({}), "{}", "x00"},
        {kNull, "NULL", "x00"},
    });
    expect_decoded(kAligned, defaults, "10 011 110",
                   "{a 3, b 0, c 6}");                            // a default that is sent all the same
    expect_decoded(kAligned, sequence({}, kExt), "x00FF", "{}");  // what follows is not looked at
    value_pointer present = value_of(ab, "{a 5, b TRUE}");
    presence(present, 1) = 0x100;  // any bit of the presence word counts
    EXPECT_EQ(encoded(kUnaligned, ab, present.get()), bits("1 101 1"));
}

TEST(PerSequence, ErrorsTellPositionAndPath) {
    Type list = list_of(sequence({{kSmall, "x"}, {kSmall, "y"}}), 0, 3);
    Type outer = sequence({{kSmall, "first"}, {list, "list"}});
    Type pick = choice(-1, {{kSmall, "small"}, {integer(0, 255), "byte"}});
    Type three = choice(-1, {{kSmall, "a"}, {kSmall, "b"}, {kSmall, "c"}});
    expect_encode_error(kUnaligned, outer, "{first 7, list {{x 1, y 2}, {x 3, y 9}}}",
                        "integer outside range (9 0-7)", 14, "list[1].y");
    uint32_t bad[2] = {2, 0};
    expect_encode_error(kAligned, pick, bad, "choice value 2 out of range");
    Type far =
        sequence({{keep({head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(2)), ref(kSmall)}), "far"}});
    const asn1_open_value nowhere = {};
    expect_encode_error(kUnaligned, far, &nowhere, "value is missing", 0, "far");
    const asn1_open_value lost = {kBoolean, nullptr, 0};
    expect_encode_error(kAligned, kAny, &lost, "value is missing");
    expect_refused({
        {kAligned, outer, "111 10 001 010 011 00", "reading after end of stream", 14, "list[1].y"},
        {kAligned, pick, "1 0010000", "reading after end of stream", 8, "byte"},
        {kUnaligned, three, "11 000", "overflow in constrained whole number", 2},
        {kUnaligned, sequence({}, kExt), "", "reading after end of stream", 0},
    });
}

// ---- extension additions ----------------------------------------------------------------------------------

// a; then additions b (mandatory), [[c, d OPTIONAL, e DEFAULT 2]], [[f]], g, of which earlier versions have the first.
const std::vector<Component> kParts = {
    {kSmall, "a"},
    {kSmall, "b", kMandatory, kAddition},
    {kSmall, "c", kMandatory, kOpens},
    {kBoolean, "d", kOptional, kAddition},
    {kSmall, "e", kDefault, kCloses, num(2)},
    {kNull, "f", kOptional, kOpens | kCloses},
    {kSmall, "g", kDefault, kAddition, num(1)},
};
const Type kV1 = sequence({kParts[0]}, kExt), kV2 = sequence({kParts[0], kParts[1]}, kExt),
           kV3 = sequence(kParts, kExt);
const char* const kEverything =
    "1 101 0000011 1111 | x01 110 00000 x02 11 011 1 100 0000000 x01 1 0000000 x01 x00";

// Any record of the last version, by the numbers of its components.
using Numbers = std::vector<uint32_t>;
constexpr uint32_t kAbsent = UINT32_MAX;
value_pointer record_of(const Numbers& numbers) {
    value_pointer record = value_of(kV3, "{a 0}");
    for (uint32_t i = 0; i < numbers.size(); ++i) {
        presence(record, i) = numbers[i] != kAbsent;
        slot(record, i) = numbers[i] != kAbsent ? numbers[i] : 0;
    }
    return record;
}

TEST(PerExtensions, BothDirections) {
    Type pair = sequence({{kBoolean, "f"}, {kOctets, "o"}});
    Type nested = sequence({{pair, "a", kOptional, kAddition}}, kExt);
    // Open types are whole octets; only the bitmap before them is aligned.
    expect_rows({{kV1, "{a 5}", "0 101"},
                 {kV2, "{a 5, b 6}", "1 101 0000000 1 | x01 110 00000"},
                 {nested, "{a {f TRUE, o 'AB'H}}", "1 0000000 1 x03 1 x01AB 0000000",
                  "1 0000000 1 | x03 1 0000000 x01AB"},
                 {kV3, "{a 5, b 6, c 3, d TRUE, e 4, f NULL, g 0}", kEverything}});
    // A decoder fills in no default behind the marker, so that these do not come back as they were.
    const struct {
        Numbers numbers;
        const char* encoding;
    } rows[] = {
        {{5, kAbsent, kAbsent, kAbsent, 2, kAbsent, 1}, "0 101"},
        {{5, 6, kAbsent, kAbsent, 2, kAbsent, 1}, "1 101 0000011 1000 | x01 110 00000"},
        {{5, kAbsent, 3, kAbsent, 2, kAbsent, 1}, "1 101 0000011 0100 | x01 00 011 000"},
        {{5, kAbsent, 3, 1, 4, 0, 0}, "1 101 0000011 0111 | x02 11 011 1 100 0000000 x01 x80 x01 x00"},
    };
    for (const auto& row : rows) {
        for (Variant variant : kVariants) {
            EXPECT_EQ(encoded(variant, kV3, record_of(row.numbers).get()),
                      bits(row.encoding, variant.aligned));
        }
    }
}

TEST(PerExtensions, AcrossVersions) {
    // A reader of an earlier version drops what it does not know, and goes on behind it.
    Type pair = sequence({{kV2, "v2"}, {kSmall, "after"}}),
         old_pair = sequence({{kV1, "v1"}, {kSmall, "after"}});
    for (Variant variant : kVariants) {
        expect_decoded(variant, pair, std::string(kEverything) + " 110", "{v2 {a 5, b 6}, after 6}");
        expect_decoded(variant, old_pair, std::string(kEverything) + " 110", "{v1 {a 5}, after 6}");
        // What is not there stays absent.
        decoded v2 = decode(variant.decode, kV3, bits("1 101 0000000 1 | x01 110 00000", variant.aligned));
        ASSERT_NE(v2.value, nullptr) << v2.error.message;
        EXPECT_EQ(slot(v2.value, 1), 6u);
        EXPECT_EQ(slot(v2.value, 4), 0u);
    }
    // Octets behind a value inside its open type belong to a later version.
    expect_decoded(kUnaligned, kV2, "1 101 0000000 1 x03 110 00000 xFFFF", "{a 5, b 6}");
}

TEST(PerExtensions, Errors) {
    const char *at_end = "reading after end of stream", *empty = "unexpected zero length";
    expect_refused({
        {kUnaligned, kV2, "1 101 0000000 1 x00", empty, 20, "b"},
        {kUnaligned, kV3, "1 101 0000001 01 x00", empty, 21},
        {kAligned, kV2, "1 101 1 | x00", empty, 16},
        {kAligned, kV2, "1 101 1 | xC1", "fragmentation is not supported", 16},
        {kAligned, kV2, "1 101 1 | x81FF xFF", at_end, 32},
        // Inside an open type positions count from its start.
        {kAligned, kV3, "1 101 0000001 01 | x01 11 111 1 01", at_end, 6, "e"},
        {kUnaligned, kV1, "1 101 0000000 1 x02 x00", at_end, 28},
    });
    value_pointer bad_e = record_of({5, kAbsent, 3, kAbsent, 9}), bad_b = record_of({5, 8});
    expect_encode_error(kAligned, kV3, bad_e.get(), "integer outside range (9 0-7)", 5, "e");
    expect_encode_error(kUnaligned, kV3, bad_b.get(), "integer outside range (8 0-7)", 0, "b");
}

// More than 64 positions take a general length; the bitmap goes out whole. A reader of an earlier version drops what
// it does not know, also in fragments.
TEST(PerExtensions, ManyAdditions) {
    const std::string fragments = "xC1" + hex(octets(16384, 0x5A)).substr(1) + "0122";
    for (uint32_t count : {64u, 65u, 200u}) {
        std::vector<Component> additions(count, {integer(0, 255), "middle", kOptional, kAddition});
        additions.front().name = "first";
        additions.back().name = "last";
        std::string length = count == 64 ? "0 111111 " : count == 65 ? "1 | x41 " : "1 | x80C8 ";
        std::string head = "1 " + length + "1" + std::string(count - 2, '0') + "1 | x0111 ";
        Type type = sequence(additions, kExt);
        expect_per(type, value_of(type, "{first 17, last 34}").get(), head + "x0122");
        Type old_pair = sequence({{sequence({additions[0]}, kExt), "old"}, {kSmall, "after"}});
        for (const Variant& variant : kVariants)
            expect_decoded(variant, old_pair, head + fragments + " 110", "{old {first 17}, after 6}");
    }
}

TEST(PerChoice, BothDirections) {
    Type byte = integer(0, 255);
    Type versions = choice(2, {{kSmall, "a"}, {byte, "b"}, {kSmall, "c"}, {kNull, "d"}});
    expect_rows({{choice(-1, {{kSmall, "only"}}), "only : 5", "101"},
                 {versions, "b : 85", "0 1 | x55"},
                 {versions, "c : 5", "1 0 000000 x01 101 00000"},
                 {versions, "d : NULL", "1 0 000001 x01 x00"}});
    expect_refused({{kUnaligned, versions, "1 0 000000 x00", "unexpected zero length", 16, "c"}});
    std::vector<Component> many(66, {kSmall, "middle"});  // an index of 64 and more has a length of its own
    many[64].name = "e63";
    many[65].name = "e64";
    Type wide = choice(65, many);
    expect_rows(
        {{wide, "e63 : 5", "1 0 111111 | x01 101 00000"}, {wide, "e64 : 5", "1 1 | x0140 x01 101 00000"}});

    // The earlier version keeps the index and drops the contents, so that what follows can be read.
    Type pair = sequence({{choice(0, {{kSmall, "a"}, {byte, "b"}}), "choice"}, {kSmall, "after"}});
    const std::pair<const char*, uint32_t> indexes[] = {
        {"1 0 000000", 2}, {"1 0 000101", 7}, {"1 1 x0141", 67}};
    for (const auto& [index, selector] : indexes) {
        decoded result = decode(asn1_uper_decode, pair, bits(std::string(index) + " x02 xABCD 110"));
        ASSERT_NE(result.value, nullptr) << result.error.message;
        EXPECT_EQ(slot(result.value, 0), selector);
        EXPECT_EQ(static_cast<uint32_t*>(result.value.get())[8], 6u);
    }
}

// ---- TAGGED and recursion ---------------------------------------------------------------------------------

TEST(PerTagged, InPlaceAndIndirect) {
    Type tagged = keep({head(ASN1_KIND_TAGGED, 0, context(1)), ref(kSmall)});
    Type indirect = keep({head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(2)), ref(tagged)});
    expect_rows({{tagged, "5", "101"}, {indirect, "5", "101"}});
}

// Node ::= SEQUENCE { next [0] Node OPTIONAL }, the next node held through a pointer: one bit a level.
TEST(PerTagged, NestedAsDeepAsTheStackBears) {
    static asn1_word node[7], tagged[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(node)};
    std::copy_n(sequence({{tagged, "next", kOptional}}), 7, node);
    octets deep(125, 0xFF);
    deep.push_back(0);
    decoded thousand = decode(asn1_uper_decode, node, deep);
    ASSERT_EQ(thousand.consumed, 126) << thousand.error.message;
    EXPECT_EQ(encoded(kAligned, node, thousand.value.get()), deep);

    decoded endless = decode(asn1_uper_decode, node, octets(1 << 20, 0xFF));
    EXPECT_EQ(endless.consumed, -1);
    EXPECT_STREQ(endless.error.message, "value nested too deeply");
    EXPECT_EQ(std::string(endless.error.path).substr(0, 11), "(...).next.");
}

}  // namespace
}  // namespace orlenta::test
