// SEQUENCE, SET, CHOICE, TAGGED, and what stands behind extension markers.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

const Words kSmall = integer(0, 7);

// Components of 32 bits, each with a presence word before it, used or not.
struct Slot {
    uint32_t present, value;
};
constexpr uint32_t slot(uint32_t index) { return 8 * index + 4; }

TEST(PerSequence, RootComponents) {
    Words ab = sequence(8 * 2, {mandatory(slot(0), kSmall, "a"), optional(slot(1), kBoolean, "b")});
    Slot absent[2] = {{0, 5}, {0, 1}}, present[2] = {{0, 5}, {1, 1}};
    present[1].present = 0x100;  // any bit of the word counts
    EXPECT_EQ(hex(encoded(false, ab, absent)), "x50");
    EXPECT_EQ(hex(encoded(true, ab, present)), hex(bits("1 101 1")));
    Decoded decoded(false, ab, bits("0 101"));
    EXPECT_EQ(decoded.as<Slot[2]>()[0].value, 5u);
    EXPECT_EQ(decoded.as<Slot[2]>()[1].present, 0u);

    // A DEFAULT component is sent if it differs; a default of 0 is one, too.
    Words defaults = sequence(8 * 3, {defaulted(slot(0), kSmall, 3, "a"), defaulted(slot(1), kSmall, 0, "b"),
                                      mandatory(slot(2), kSmall, "c")});
    Slot as_default[3] = {{0, 3}, {0, 0}, {0, 6}}, other[3] = {{0, 3}, {0, 1}, {0, 6}};
    expect_per(defaults, as_default, "00 110", "00 110");
    expect_per(defaults, other, "01 001 110", "01 001 110");
    // A default that is sent all the same is taken.
    Decoded sent(true, defaults, bits("10 011 110"));
    EXPECT_EQ(sent.as<Slot[3]>()[0].value, 3u);

    // A SET goes in the order of its descriptor.
    Words set = sequence(8 * 2, {mandatory(slot(0), kSmall, "b"), mandatory(slot(1), kBoolean, "a")}, 0,
                         ASN1_KIND_SET);
    expect_per(set, present, "101 1", "101 1");
}

TEST(PerSequence, NothingToSend) {
    Words empty = sequence(1, {});
    uint8_t record = 0;
    EXPECT_EQ(hex(encoded(false, empty, &record)), "x00");
    EXPECT_EQ(hex(encoded(true, kNull, &record)), "x00");
    for (const Words& type : {empty, kNull}) EXPECT_EQ(Decoded(true, type, {}).used, 0);
    Words extensible = sequence(1, {}, kExt);
    EXPECT_EQ(Decoded(true, extensible, {}).used, -1);
    EXPECT_EQ(Decoded(true, extensible, {0x00, 0xFF}).used, 1);  // what follows is not looked at
}

TEST(PerSequence, ErrorsTellPositionAndPath) {
    Words inner = sequence(8 * 2, {mandatory(slot(0), kSmall, "x"), mandatory(slot(1), kSmall, "y")});
    Words list = list_type(0, 3, 16, inner);
    Words outer = sequence(24, {mandatory(0, kSmall, "first"), mandatory(8, list, "list")});
    Slot elements[2][2] = {{{0, 1}, {0, 2}}, {{0, 3}, {0, 9}}};
    struct {
        uint32_t first, pad;
        asn1_array list;
    } value = {7, 0, {elements, 2}};
    expect_encode_error(false, outer, &value, "integer outside range (9 0-7)", 14, "list[1].y");
    expect_decode_error(true, outer, "111 10 001 010 011 00", "reading after end of stream", 14, "list[1].y");

    Words pick = choice(8, 4, -1, {{kSmall, "small"}, {kByte, "byte"}});
    uint32_t bad[2] = {2, 0};
    expect_encode_error(true, pick, bad, "choice value 2 out of range");
    expect_decode_error(true, pick, "1 0010000", "reading after end of stream", 8, "byte");
    Words three = choice(8, 4, -1, {{kSmall, "a"}, {kSmall, "b"}, {kSmall, "c"}});
    expect_decode_error(false, three, "11 000", "overflow in constrained whole number", 2);
}

TEST(PerSequence, BigDefault) {
    uint32_t limbs[2] = {0, 1};
    const asn1_integer two_32 = {limbs, 2, 2, 0};
    Words big_integer = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG)};
    Words type = sequence(24, {{field(0, ASN1_OPTION_DEFAULT), big_integer, big(&two_32), "a"}});
    asn1_integer value = two_32, one = {limbs + 1, 1, 1, 0};
    expect_per(type, &value, "0", "0");
    expect_per(type, &one, "1 x0101", "1 | x0101");
}

// ---- extension additions ----------------------------------------------------------------------------------

// One record for all versions of a schema: a; then additions b (mandatory), [[c, d OPTIONAL, e DEFAULT 2]], [[f]], g.
struct Versions {
    Component a = mandatory(slot(0), kSmall, "a"), b = mandatory(slot(1), kSmall, "b", kAddition);
    Component c = mandatory(slot(2), kSmall, "c", kOpens), d = optional(slot(3), kBoolean, "d", kAddition);
    Component e = defaulted(slot(4), kSmall, 2, "e", kCloses);
    Component f = optional(slot(5), kNull, "f", kOpens | kCloses),
              g = defaulted(slot(6), kSmall, 1, "g", kAddition);
    Words v1 = sequence(8 * 7, {a}, kExt);
    Words v2 = sequence(8 * 7, {a, b}, kExt);
    Words v3 = sequence(8 * 7, {a, b, c, d, e, f, g}, kExt);
};
const Versions kVersions;

TEST(PerExtensions, Writing) {
    // Open types are whole octets; only the bitmap before them is aligned.
    const struct {
        Slot slots[7];
        const char *root, *additions;
    } rows[] = {
        {{{0, 5}, {0, 0}, {0, 0}, {0, 0}, {0, 2}, {0, 0}, {0, 1}}, "0 101", ""},
        {{{0, 5}, {1, 6}, {0, 0}, {0, 0}, {0, 2}, {0, 0}, {0, 1}}, "1 101 0000011 1000", "x01 11000000"},
        // The group of c: d absent, e equal to its default.
        {{{0, 5}, {0, 0}, {1, 3}, {0, 0}, {0, 2}, {0, 0}, {0, 1}}, "1 101 0000011 0100", "x01 00 011 000"},
        {{{0, 5}, {0, 0}, {1, 3}, {1, 1}, {0, 4}, {1, 0}, {0, 0}},
         "1 101 0000011 0111",
         "x02 11 011 1 100 0000000 x01 x80 x01 x00"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.additions);
        std::string root = row.root, additions = row.additions;
        EXPECT_EQ(hex(encoded(false, kVersions.v3, row.slots)), hex(bits(root + additions)));
        EXPECT_EQ(hex(encoded(true, kVersions.v3, row.slots)), hex(bits(root + "|" + additions)));
    }
}

TEST(PerExtensions, Reading) {
    const std::string all =
        "1 101 0000011 1111 | x01 11000000 x02 11 011 1 100 0000000 x01 10000000 x01 00000000";
    std::string uper = all;
    uper.erase(uper.find('|'), 1);
    const Words& v3 = kVersions.v3;
    Slot everything[7] = {{0, 5}, {1, 6}, {1, 3}, {1, 1}, {0, 4}, {1, 0}, {0, 0}};
    // The NULL of f takes no room; its value word stays 0.
    expect_per(v3, everything, uper, all);
    // A reader of an earlier version drops what it does not know, and goes on behind it.
    Words pair =
        sequence(8 * 8, {{field(0), kVersions.v2, num(0), "v2"}, mandatory(slot(7), kSmall, "after")});
    for (bool aligned : {false, true}) {
        Decoded decoded(aligned, pair, bits((aligned ? all : uper) + " 110"));
        ASSERT_GT(decoded.used, 0) << decoded.error.message;
        const Slot* slots = static_cast<const Slot*>(decoded.value);
        EXPECT_EQ(slots[1].value, 6u);
        EXPECT_EQ(slots[2].present, 0u);
        EXPECT_EQ(slots[7].value, 6u);
        expect_no_truncation(aligned, kVersions.v1, bits(aligned ? all : uper));
    }
}

TEST(PerExtensions, ReadingEarlierVersions) {
    // What is not there stays absent; a DEFAULT behind the marker is not filled in.
    Decoded v2_only(true, kVersions.v3, bits("1 101 0000000 1 | x01 11000000"));
    ASSERT_GT(v2_only.used, 0) << v2_only.error.message;
    EXPECT_EQ(v2_only.as<Slot[7]>()[1].present, 1u);
    EXPECT_EQ(v2_only.as<Slot[7]>()[1].value, 6u);
    EXPECT_EQ(v2_only.as<Slot[7]>()[4].value, 0u);
    // Octets behind a value inside its open type belong to a later version.
    Decoded surplus(false, kVersions.v2, bits("1 101 0000000 1 x03 110 00000 xFFFF"));
    ASSERT_GT(surplus.used, 0) << surplus.error.message;
    EXPECT_EQ(surplus.as<Slot[2]>()[1].value, 6u);
}

TEST(PerExtensions, Errors) {
    const char* at_end = "reading after end of stream";
    const struct {
        bool aligned;
        const Words& type;
        const char* in;
        const char* message;
        int bit_position;
        const char* path;
    } rows[] = {
        {false, kVersions.v2, "1 101 0000000 1 x00", "unexpected zero length", 20, "b"},
        {false, kVersions.v3, "1 101 0000001 01 x00", "unexpected zero length", 21, ""},
        {true, kVersions.v2, "1 101 1 | x00", "unexpected zero length", 16, ""},
        {true, kVersions.v2, "1 101 1 | xC1", "fragmentation is not supported", 16, ""},
        {true, kVersions.v2, "1 101 1 | x81FF xFF", at_end, 32, ""},
        // Inside an open type positions count from its start.
        {true, kVersions.v3, "1 101 0000001 01 | x01 11 111 1 01", at_end, 6, "e"},
        {false, kVersions.v1, "1 101 0000000 1 x02 x00", at_end, 28, ""},
    };
    for (const auto& row : rows) {
        expect_decode_error(row.aligned, row.type, row.in, row.message, row.bit_position, row.path);
    }
    // The same in writing.
    Slot slots[7] = {{0, 5}, {0, 0}, {1, 3}, {0, 0}, {0, 9}, {0, 0}, {0, 1}};
    expect_encode_error(true, kVersions.v3, slots, "integer outside range (9 0-7)", 5, "e");
    Slot bad_b[7] = {{0, 5}, {1, 8}, {0, 0}, {0, 0}, {0, 2}, {0, 0}, {0, 1}};
    expect_encode_error(false, kVersions.v3, bad_b, "integer outside range (8 0-7)", 0, "b");
}

// More than 64 positions take a general length; the bitmap goes out whole.
TEST(PerExtensions, ManyAdditions) {
    for (uint32_t count : {64u, 65u, 200u}) {
        SCOPED_TRACE(count);
        Words type = sequence(8 * (count + 1), {}, kExt);
        for (uint32_t i = 0; i < count; ++i) {
            Component c = optional(slot(i), kByte, "addition", kAddition);
            type.insert(type.end(), {c.flags, ref(c.type.data()), c.extra, txt(c.name)});
        }
        type[1] = num(count);
        std::vector<Slot> slots(count + 1);
        slots[0] = {1, 0x11};
        slots[count - 1] = {1, 0x22};
        std::string bitmap(count, '0');
        bitmap[0] = bitmap[count - 1] = '1';
        std::string length = count == 64 ? "0 111111 " : count == 65 ? "1 | x41 " : "1 | x80C8 ";
        std::string aper = "1 " + length + bitmap + "| x0111 x0122", uper;
        for (char c : aper) {
            if (c != '|') uper += c;
        }
        expect_per(type, slots.data(), uper, aper);
    }
}

TEST(PerChoice, BothDirections) {
    Words single = choice(8, 4, -1, {{kSmall, "only"}});
    Words versions = choice(8, 4, 2, {{kSmall, "a"}, {kByte, "b"}, {kSmall, "c"}, {kNull, "d"}});
    const struct {
        const Words& type;
        uint32_t value[2];
        const char* uper;
        const char* aper;
    } rows[] = {{single, {0, 5}, "101", "101"},
                {versions, {1, 0x55}, "0 1 x55", "0 1 | x55"},
                {versions, {2, 5}, "1 0 000000 x01 101 00000", "1 0 000000 x01 101 00000"},
                {versions, {3, 0}, "1 0 000001 x01 x00", "1 0 000001 x01 x00"}};
    for (const auto& row : rows) expect_per(row.type, row.value, row.uper, row.aper);
    expect_decode_error(false, versions, "1 0 000000 x00", "unexpected zero length", 16, "c");

    // The earlier version keeps the index and drops the contents, so that what follows can be read.
    Words earlier = choice(8, 4, 0, {{kSmall, "a"}, {kByte, "b"}});
    Words pair = sequence(12, {{field(0), earlier, num(0), "choice"}, mandatory(8, kSmall, "after")});
    for (const char* index : {"1 0 000101", "1 1 x0141"}) {
        Decoded decoded(false, pair, bits(std::string(index) + " x02 xABCD 110"));
        ASSERT_GT(decoded.used, 0) << decoded.error.message;
        EXPECT_EQ(decoded.as<uint32_t[3]>()[0], index[2] == '0' ? 7u : 67u);
        EXPECT_EQ(decoded.as<uint32_t[3]>()[2], 6u);
    }
}

// ---- TAGGED and recursion ---------------------------------------------------------------------------------

TEST(PerTagged, InPlaceAndIndirect) {
    Words tagged = {head(ASN1_KIND_TAGGED, 0, context(1)), ref(kSmall.data())};
    Words indirect = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(2)), ref(tagged.data())};
    uint32_t five = 5;
    void* pointer = &five;
    expect_per(tagged, &five, "101", "101");
    expect_per(indirect, &pointer, "101", "101");
}

// Node ::= SEQUENCE { next [0] Node OPTIONAL }, the next node held through a pointer: one bit a level.
struct Node {
    uint32_t has_next;
    Node* next;
};

TEST(PerTagged, NestedAsDeepAsTheStackBears) {
    Words node =
        sequence(sizeof(Node), {{field(offsetof(Node, next), ASN1_OPTION_OPTIONAL), kNull, num(0), "next"}});
    Words tagged = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(node.data())};
    node[4] = ref(tagged.data());
    Bytes deep(125, 0xFF);
    deep.push_back(0);
    Decoded thousand(false, node, deep);
    ASSERT_EQ(thousand.used, 126) << thousand.error.message;
    EXPECT_EQ(hex(encoded(true, node, thousand.value)), hex(deep));
    int depth = 0;
    for (const Node* n = &thousand.as<Node>(); n->has_next; n = n->next) ++depth;
    EXPECT_EQ(depth, 1000);

    Decoded endless(false, node, Bytes(1 << 20, 0xFF));
    EXPECT_EQ(endless.used, -1);
    EXPECT_STREQ(endless.error.message, "value nested too deeply");
    EXPECT_EQ(std::string(endless.error.path).substr(0, 11), "(...).next.");
}

}  // namespace
}  // namespace orlenta::test
