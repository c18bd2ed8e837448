// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/check.h>
#include <orlenta/random.h>
#include <orlenta/value.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/universal_types.hpp"

namespace orlenta::test {
namespace {

struct CheckCase {
    const char* name;
    const asn1_type_desc* type;
    const void* value;
    const char* message;  // null: the value passes
    const char* path = "";
};

void expect_outcome(const CheckCase& c) {
    SCOPED_TRACE(c.name);
    asn1_error error;
    std::memset(&error, 0x5A, sizeof error);
    asn1_error untouched = error;
    EXPECT_EQ(asn1_check_constraints(c.type, c.value, &error), c.message ? 0 : 1);
    EXPECT_EQ(asn1_check_constraints(c.type, c.value, nullptr), c.message ? 0 : 1);
    if (c.message) {
        EXPECT_STREQ(error.message, c.message);
        EXPECT_STREQ(error.path, c.path);
        EXPECT_EQ(error.line, 1);
        EXPECT_EQ(error.bit_position, 0);
    } else {
        EXPECT_EQ(std::memcmp(&error, &untouched, sizeof error), 0);
    }
}

asn1_string string(std::string_view text, uint64_t units) {
    return {const_cast<uint8_t*>(reinterpret_cast<const uint8_t*>(text.data())), units};
}
asn1_string string(std::string_view text) { return string(text, text.size()); }

// ---- numbers ----------------------------------------------------------------------------------------------

const asn1_word k3To5[] = {head(ASN1_KIND_INTEGER, kBounds), num(3), num(5)};
const char* const kNot3To5 = "integer range is 3 .. 5";

TEST(CheckConstraints, Integer) {
    const asn1_word free[] = {head(ASN1_KIND_INTEGER)};
    const asn1_word up_to_5[] = {head(ASN1_KIND_INTEGER, kUpper), num(5)};
    const asn1_word from_5[] = {head(ASN1_KIND_INTEGER, kLower), num(5)};
    const asn1_word from_minus_5[] = {head(ASN1_KIND_INTEGER, kLower), num(-5)};
    const asn1_word minus_1_to_5[] = {head(ASN1_KIND_INTEGER, kBounds), num(-1), num(5)};
    const asn1_word extensible[] = {head(ASN1_KIND_INTEGER, kBounds | kExt), num(0), num(5)};
    const struct {
        const char* name;
        const asn1_type_desc* type;
        uint32_t value;
        const char* message;
    } cases[] = {
        {"no bounds", free, 0x80000000, nullptr},
        {"upper only, above", up_to_5, 6, "integer range is -2147483648 .. 5"},
        {"lower only, unsigned", from_5, 0xFFFFFFFF, nullptr},
        {"lower only, below", from_5, 4, "integer range is 5 .. 4294967295"},
        {"negative lower only, below", from_minus_5, 0xFFFFFFFA, "integer range is -5 .. 2147483647"},
        {"unsigned, at the lower bound", k3To5, 3, nullptr},
        {"unsigned, below", k3To5, 2, kNot3To5},
        {"unsigned, above", k3To5, 0xFFFFFFFF, kNot3To5},
        {"signed, at the lower bound", minus_1_to_5, 0xFFFFFFFF, nullptr},
        {"signed, below", minus_1_to_5, 0xFFFFFFFE, "integer range is -1 .. 5"},
        {"signed, at the upper bound", minus_1_to_5, 5, nullptr},
        {"signed, above", minus_1_to_5, 6, "integer range is -1 .. 5"},
        {"the marker switches the range off", extensible, 1000, nullptr},
    };
    for (const auto& c : cases) expect_outcome({c.name, c.type, &c.value, c.message});
}

TEST(CheckConstraints, BigInteger) {
    static uint32_t low_limbs[] = {0, 1}, high_limbs[] = {0, 2}, below_limbs[] = {0xFFFFFFFF},
                    above_limbs[] = {1, 2};
    static const asn1_integer low = {low_limbs, 2, 2, 0}, high = {high_limbs, 2, 2, 0};
    static const asn1_integer below = {below_limbs, 1, 1, 0}, above = {above_limbs, 2, 2, 0};
    constexpr uint32_t bounded = ASN1_WORD0_BIG | kBounds;
    static const asn1_word both[] = {head(ASN1_KIND_INTEGER, bounded), big(&low), big(&high)};
    static const asn1_word both_ext[] = {head(ASN1_KIND_INTEGER, bounded | kExt), big(&low), big(&high)};
    static const asn1_word null_lower[] = {head(ASN1_KIND_INTEGER, bounded), big(nullptr), big(&high)};
    static const asn1_word null_upper[] = {head(ASN1_KIND_INTEGER, bounded), big(&low), big(nullptr)};
    const char* message = "large integer not in range";
    const CheckCase cases[] = {
        {"at the lower bound", both, &low, nullptr},
        {"at the upper bound", both, &high, nullptr},
        {"below", both, &below, message},
        {"above", both, &above, message},
        {"extensible", both_ext, &above, nullptr},
        {"null lower bound", null_lower, &below, nullptr},
        {"null upper bound", null_upper, &above, nullptr},
    };
    for (const CheckCase& c : cases) expect_outcome(c);
}

// The limit is the low half of the first name's address, plus the extension count; the checker does not read names.
TEST(CheckConstraints, EnumeratedLimitIsAnAddress) {
    static const asn1_word items[] = {
        head(ASN1_KIND_ENUMERATED), num(4), txt("a"), txt("b"), txt("c"), txt("d")};
    static const asn1_word low_address[] = {head(ASN1_KIND_ENUMERATED), num(1), {.number = 0x700000064}};
    static const asn1_word extensible[] = {
        head(ASN1_KIND_ENUMERATED, kExt), num(1), num(2), {.number = 0x700000064}};
    static const uint32_t v4 = 4, v99 = 99, v100 = 100, v102 = 102;
    const CheckCase cases[] = {
        {"one past the last item", items, &v4, nullptr},
        {"below the address", low_address, &v99, nullptr},
        {"at the address", low_address, &v100, "invalid enumerated value"},
        {"extensible, below", extensible, &v100, nullptr},
        {"extensible, at", extensible, &v102, "invalid enumerated value"},
    };
    for (const CheckCase& c : cases) expect_outcome(c);
}

// ---- strings ----------------------------------------------------------------------------------------------

TEST(CheckConstraints, BinaryStrings) {
    static uint8_t data[4] = {};
    static const asn1_string length[] = {{data, 0}, {data, 1}, {data, 2},
                                         {data, 3}, {data, 4}, {data, 0x100000002}};
    for (uint32_t kind : {ASN1_KIND_BIT_STRING, ASN1_KIND_OCTET_STRING}) {
        const asn1_word from2[] = {head(kind, kLower), num(2)};
        const asn1_word from2_to3[] = {head(kind, kBounds), num(2), num(3)};
        const asn1_word extensible[] = {head(kind, kBounds | kExt), num(2), num(3)};
        const CheckCase cases[] = {
            {"below", from2_to3, &length[1], "bit/octet string length (1) not in range 2 .. 3"},
            {"lowest", from2_to3, &length[2], nullptr},
            {"highest", from2_to3, &length[3], nullptr},
            {"above", from2_to3, &length[4], "bit/octet string length (4) not in range 2 .. 3"},
            {"compared in 64 bits", from2_to3, &length[5], "bit/octet string length (2) not in range 2 .. 3"},
            {"no upper bound", from2, &length[4], nullptr},
            {"no upper bound, below", from2, &length[0],
             "bit/octet string length (0) not in range 2 .. 4294967295"},
            {"extensible", extensible, &length[0], nullptr},
        };
        for (const CheckCase& c : cases) expect_outcome(c);
    }
}

asn1_word chars(uint32_t flags) { return head(ASN1_KIND_CHAR_STRING, flags); }

TEST(CheckConstraints, RestrictedStrings) {
    const asn1_word ia5[] = {chars(kBounds), num(ASN1_STRING_IA5), num(1), num(3), num(1), num(0), num(0x7F)};
    const asn1_word ia5_ext[] = {
        chars(kBounds | kExt), num(ASN1_STRING_IA5), num(1), num(3), num(1), num('a'), num('c')};
    const asn1_word numeric[] = {
        chars(kLower), num(ASN1_STRING_NUMERIC), num(2), num(2), num(' '), num(' '), num('0'), num('9')};
    const asn1_word no_alphabet[] = {chars(kBounds), num(ASN1_STRING_VISIBLE), num(0), num(3), num(0)};
    const asn1_word bmp[] = {chars(kBounds), num(ASN1_STRING_BMP), num(0),    num(2),
                             num(1),         num(0x100),           num(0x200)};
    const asn1_word universal[] = {chars(kBounds), num(ASN1_STRING_UNIVERSAL), num(0), num(2), num(1), num(0),
                                   num(0x10FFFF)};
    const uint16_t bmp_units[] = {0x200, 0x201};
    const uint32_t universal_units[] = {0x10FFFF, 0x80000000};
    const asn1_string empty = {}, abcd = string("abcd"), high = string("ab\xFF");
    const asn1_string letter = string("1 2x"), one = string("1");
    const asn1_string wrapped = string("ab", 0x100000002), wrapped_long = string("ab", 0x100000009);
    const asn1_string bmp_bad = string({reinterpret_cast<const char*>(bmp_units), 4}, 2);
    const asn1_string universal_bad = string({reinterpret_cast<const char*>(universal_units), 8}, 2);
    const CheckCase cases[] = {
        {"empty", ia5, &empty, "char string length (0) not in range 1 .. 3"},
        {"too long", ia5, &abcd, "char string length (4) not in range 1 .. 3"},
        {"outside the alphabet", ia5, &high, "character at position 2 is not allowed"},
        {"the marker frees the size", ia5_ext, &empty, nullptr},
        {"the marker keeps the alphabet", ia5_ext, &abcd, "character at position 3 is not allowed"},
        {"outside both ranges", numeric, &letter, "character at position 3 is not allowed"},
        {"no upper bound", numeric, &one, "char string length (1) not in range 2 .. 4294967295"},
        {"no alphabet", no_alphabet, &high, nullptr},
        {"length compared in 32 bits", no_alphabet, &wrapped, nullptr},
        {"length compared in 32 bits, long", no_alphabet, &wrapped_long,
         "char string length (9) not in range 0 .. 3"},
        {"2-byte units, above", bmp, &bmp_bad, "character at position 1 is not allowed"},
        {"4-byte units, above", universal, &universal_bad, "character at position 1 is not allowed"},
    };
    for (const CheckCase& c : cases) expect_outcome(c);
}

TEST(CheckConstraints, Utf8AndOpaqueStrings) {
    const asn1_word utf8[] = {chars(0), num(ASN1_STRING_UTF8)};
    const asn1_word general[] = {chars(0), num(ASN1_STRING_GENERAL)};
    const asn1_string empty = {}, good = string("a\xC3\xA9\xF0\x9F\x9A\x97"), cut = string("a\xC3");
    const asn1_string stray = string("ab\x80");
    const CheckCase cases[] = {
        {"empty", utf8, &empty, nullptr},
        {"1, 2 and 4 bytes", utf8, &good, nullptr},
        {"cut off", utf8, &cut, "invalid UTF-8 code"},
        {"stray continuation", utf8, &stray, "invalid UTF-8 code"},
        {"opaque", general, &stray, nullptr},
    };
    for (const CheckCase& c : cases) expect_outcome(c);
}

// ---- constructed types and paths --------------------------------------------------------------------------

const asn1_word kIndirect3To5[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(2)),
                                   ref(kTagged<1, k3To5>)};
const asn1_word kList[] = {
    head(ASN1_KIND_SEQUENCE_OF, kBounds), num(1), num(2), num(4), ref(kTagged<1, k3To5>), num(0)};
const asn1_word kListNoUpper[] = {head(ASN1_KIND_SET_OF, kLower), num(2), num(4), ref(k3To5), num(0)};
const asn1_word kListExt[] = {
    head(ASN1_KIND_SEQUENCE_OF, kBounds | kExt), num(1), num(2), num(4), ref(k3To5), num(0)};

TEST(CheckConstraints, Lists) {
    static uint32_t good[] = {3, 4, 5}, bad[] = {3, 4, 6};
    const asn1_array empty = {nullptr, 0}, three = {good, 3}, three_bad = {bad, 3};
    const asn1_array second_bad = {bad + 1, 2}, huge = {good, 0x100000001};
    const CheckCase cases[] = {
        {"empty", kList, &empty, "sequence of length not in range 1 .. 2"},
        {"too long", kList, &three, "sequence of length not in range 1 .. 2"},
        {"compared in 64 bits", kList, &huge, "sequence of length not in range 1 .. 2"},
        {"no upper bound, empty", kListNoUpper, &empty, "sequence of length not in range 2 .. 4294967295"},
        {"bad element", kList, &second_bad, kNot3To5, "[1]"},
        {"extensible, too long", kListExt, &three, nullptr},
        {"extensible, bad element", kListExt, &three_bad, kNot3To5, "[2]"},
    };
    for (const CheckCase& c : cases) expect_outcome(c);
}

struct ChoiceRecord {
    uint32_t selector;
    uint32_t payload;
};
// clang-format off
const asn1_word kThreeWays[] = {
    head(ASN1_KIND_CHOICE, kExt), num(2), num(1), num(8), num(0), num(4),
    ref(k3To5), txt("number"), ref(kNull), txt("nothing"), ref(k3To5), txt("later")};
// clang-format on
const asn1_word kRootChoice[] = {head(ASN1_KIND_CHOICE), num(1), num(8), num(0), num(4), ref(k3To5),
                                 txt("number")};

TEST(CheckConstraints, Choice) {
    const ChoiceRecord bad = {0, 6}, nothing = {1, 6}, later_bad = {2, 6};
    const ChoiceRecord above = {3, 4}, negative = {0xFFFFFFFF, 4}, above_root = {1, 4};
    const CheckCase cases[] = {
        {"bad payload", kThreeWays, &bad, kNot3To5, "number"},
        {"null payload", kThreeWays, &nothing, nullptr},
        {"bad extension payload", kThreeWays, &later_bad, kNot3To5, "later"},
        {"above the last", kThreeWays, &above, "invalid choice index (3) range: 0 .. 2"},
        {"printed signed", kThreeWays, &negative, "invalid choice index (-1) range: 0 .. 2"},
        {"not extensible", kRootChoice, &above_root, "invalid choice index (1) range: 0 .. 0"},
    };
    for (const CheckCase& c : cases) expect_outcome(c);
}

struct SequenceRecord {
    uint32_t plain;
    uint32_t has_optional, optional;
    uint32_t defaulted;
    uint32_t has_addition, addition;
    uint64_t pointer_room;
    asn1_array list;
    ChoiceRecord choice;
    asn1_open_value open;
};
#define AT(member) static_cast<uint32_t>(offsetof(SequenceRecord, member))
const asn1_word kSequence[] = {
    // clang-format off
    head(ASN1_KIND_SEQUENCE, kExt), num(8), num(sizeof(SequenceRecord)),
    field(AT(plain)), ref(kTagged<1, k3To5>), num(0), txt("plain"),
    field(AT(optional), ASN1_OPTION_OPTIONAL), ref(k3To5), num(AT(has_optional)), txt("optional"),
    field(AT(defaulted), ASN1_OPTION_DEFAULT), ref(k3To5), num(9), txt("defaulted"),
    field(AT(pointer_room)), ref(kIndirect3To5), num(0), txt("indirect"),
    field(AT(list)), ref(kListExt), num(0), txt("list"),
    field(AT(choice)), ref(kThreeWays), num(0), txt("choice"),
    field(AT(open)), ref(kAny), num(0), txt("open"),
    field(AT(addition), ASN1_OPTION_MANDATORY, ASN1_FIELD_ADDITION), ref(k3To5), num(AT(has_addition)), txt("addition"),
    // clang-format on
};
const asn1_word kNested[] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(0), num(sizeof(SequenceRecord)),
                             ref(kSequence), num(0)};
const asn1_word kRoot[] = {head(ASN1_KIND_SET), num(1), num(16), field(0), ref(kNested), num(0), txt("rows")};

uint32_t four = 4, six = 6, three_and_six[] = {3, 6};

// A record in which all is well, and one thing put wrong.
TEST(CheckConstraints, SequenceAndPath) {
    using R = SequenceRecord;
    const struct {
        const char* name;
        void (*change)(R& r);
        const char* message;
        const char* path = "";
    } cases[] = {
        // clang-format off
        {"all well", [](R&) {}, nullptr},
        {"absent optional", [](R& r) { r.optional = 6; }, nullptr},
        {"optional", [](R& r) { r.has_optional = 0x80000000; }, kNot3To5, "rows[1].optional"},
        {"default", [](R& r) { r.defaulted = 9; }, kNot3To5, "rows[1].defaulted"},
        {"absent addition", [](R& r) { r.addition = 6; }, nullptr},
        {"addition", [](R& r) { r.has_addition = 1; }, kNot3To5, "rows[1].addition"},
        {"list element", [](R& r) { r.list.count = 2; }, kNot3To5, "rows[1].list[1]"},
        {"choice payload", [](R& r) { r.choice.selector = 2; }, kNot3To5, "rows[1].choice.later"},
        {"the first fault is told", [](R& r) { r.choice.selector = 7, r.plain = 6; }, kNot3To5, "rows[1].plain"},
        {"no path entry for tags", [](R& r) { r.pointer_room = reinterpret_cast<uintptr_t>(&six); }, kNot3To5, "rows[1].indirect"},
        {"open values are not followed", [](R& r) { r.open.type = k3To5; }, nullptr},
        // clang-format on
    };
    for (const auto& c : cases) {
        SequenceRecord good = {};
        good.plain = good.defaulted = 4;
        good.pointer_room = reinterpret_cast<uintptr_t>(&four);
        good.list = {three_and_six, 1};
        good.choice = {1, 6};
        good.open = {nullptr, &six, 3};
        SequenceRecord records[] = {good, good};
        c.change(records[1]);
        asn1_array rows = {records, 2};
        expect_outcome({c.name, kRoot, &rows, c.message, c.path});
    }
}

TEST(CheckConstraints, KindsWithoutTest) {
    const asn1_open_value garbage = {nullptr, nullptr, 77};
    const asn1_string null_data = {nullptr, 12};
    const uint64_t two = 2;
    const asn1_word empty[] = {head(ASN1_KIND_SEQUENCE), num(0), num(1)};
    for (const asn1_type_desc* type : {kNull, kBoolean, kReal, &empty[0]}) {
        expect_outcome({"number", type, &two, nullptr});
    }
    for (const asn1_type_desc* type : {kOid, kRelativeOid}) {
        expect_outcome({"string", type, &null_data, nullptr});
    }
    expect_outcome({"ANY", kAny, &garbage, nullptr});
    const asn1_open_value lost = {kBoolean, nullptr, 0};
    expect_outcome({"ANY without a value", kAny, &lost, "value is missing"});
}

// ---- the whole check --------------------------------------------------------------------------------------

const asn1_word kSmall[] = {head(ASN1_KIND_INTEGER, kBounds, 2), num(0), num(9)};
const asn1_word kContainingSmall[] = {num(ASN1_CONSTRAINT_CONTAINING), ref(kSmall)};
const asn1_word kHoldsSmall[] = {head(ASN1_KIND_OCTET_STRING, kLower | ASN1_WORD0_CONSTRAINED), num(0),
                                 ref(kContainingSmall)};

const asn1_word kContainingNull[] = {num(ASN1_CONSTRAINT_CONTAINING), ref(kNull)};
const asn1_word kHoldsNull[] = {head(ASN1_KIND_OCTET_STRING, kLower | ASN1_WORD0_CONSTRAINED), num(0),
                                ref(kContainingNull)};

const asn1_word kBitsHoldSmall[] = {head(ASN1_KIND_BIT_STRING, kLower | ASN1_WORD0_CONSTRAINED), num(0),
                                    ref(kContainingSmall)};

struct OpenRecord {
    uint32_t id;
    asn1_open_value value;
};

// All these pass asn1_check_constraints, which looks no further than the record.
TEST(WholeCheck, SeesWhatIsInside) {
    uint32_t truth = 1;
    asn1_string octets = string("ab"), five = string("\x50"), twelve = string("\xC0"),
                longer = string("\x50\x50"), nothing = string(""), by_ber = string("\x02\x01\x05");
    uint8_t zero = 0;
    asn1_string zero_octet = {&zero, 1}, one_octet = string("\1");
    uint32_t last_item = 3, no_item = 4;
    OpenRecord fits = {2, {kOctets, &octets, 0}}, other_key = {1, {kOctets, &octets, 0}},
               no_key = {7, {kBoolean, &truth, 0}}, raw = {2, {nullptr, nullptr, 0}};
    asn1_open_value missed = {kHoldsSmall, &twelve, 0};
    asn1_bit_string four_bits = {five.data, 4};
    const CheckCase cases[] = {
        {"last item", kEnum, &last_item, nullptr},
        {"past the last item", kEnum, &no_item, "invalid enumerated value"},
        {"open type of its key", kOpenRecord<kOpen>, &fits, nullptr},
        {"of another key", kOpenRecord<kOpen>, &other_key, "open type does not fit its key", "value"},
        {"of no key", kOpenRecord<kTaggedOpen>, &no_key, "open type does not fit its key", "value"},
        {"raw bytes", kOpenRecord<kOpen>, &raw, nullptr},
        {"contained", kHoldsSmall, &five, nullptr},
        {"contained, by BER", kHoldsSmall, &by_ber, nullptr},
        {"contained in bits", kBitsHoldSmall, &four_bits, nullptr},
        {"contained, out of range, in an open type", kAny, &missed,
         "contained value: overflow in constrained whole number"},
        {"contained, and more", kHoldsSmall, &longer, "contained value: it ends before the string does"},
        {"no bits contained", kHoldsNull, &zero_octet, nullptr},
        {"no bits contained, and more", kHoldsNull, &one_octet,
         "contained value: it ends before the string does"},
        {"no bits contained, and two octets", kHoldsNull, &octets,
         "contained value: it ends before the string does"},
        {"nothing contained", kHoldsSmall, &nothing, "contained value: reading after end of stream"},
    };
    for (const CheckCase& c : cases) {
        SCOPED_TRACE(c.name);
        asn1_error error = {};
        EXPECT_EQ(asn1_check_constraints(c.type, c.value, nullptr), 1);
        EXPECT_EQ(orlenta_check(c.type, c.value, nullptr), c.message ? 0 : 1);
        EXPECT_EQ(orlenta_check(c.type, c.value, &error), c.message ? 0 : 1);
        EXPECT_STREQ(error.message, c.message ? c.message : "");
        EXPECT_STREQ(error.path, c.path);
    }
}

// A record as a program leaves it by mistake: a length, count or type, and nothing behind the pointer. What is `read`
// already stops asn1_check_constraints; it knows the others by their lengths alone.
TEST(WholeCheck, TellsWhereNothingIsBehindAPointer) {
    static const asn1_integer limb = {nullptr, 1, 0, 0}, zero = {nullptr, 0, 0, 0};
    static const asn1_word from_0[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG | kLower), big(&zero)};
    static const asn1_word from_0_ext[] = {head(ASN1_KIND_INTEGER, ASN1_WORD0_BIG | kLower | kExt),
                                           big(&zero)};
    static const asn1_word digits[] = {
        head(ASN1_KIND_CHAR_STRING, kLower), num(ASN1_STRING_IA5), num(0), num(1), num('0'), num('9')};
    static const asn1_word opaque[] = {head(ASN1_KIND_CHAR_STRING), num(ASN1_STRING_UTF8 + 1)};
    static const asn1_string five = {nullptr, 5};
    static const asn1_array two = {nullptr, 2};
    static const asn1_open_value bytes = {nullptr, nullptr, 7}, typed = {kBoolean, nullptr, 0};
    static const void* nowhere = nullptr;
    const char *no_5 = "no data for a length of 5", *missing = "value is missing";
    const struct {
        const char* name;
        const asn1_type_desc* type;
        const void* value;
        const char* message;
        bool is_read = false;
    } rows[] = {
        {"OCTET STRING", kOctets, &five, no_5},
        {"BIT STRING", kBits, &five, no_5},
        {"with CONTAINING", kHoldsSmall, &five, no_5},
        {"OBJECT IDENTIFIER", kOid, &five, no_5},
        {"RELATIVE-OID", kRelativeOid, &five, no_5},
        {"IA5String", kIa5, &five, no_5},
        {"BMPString", kBmp, &five, no_5},
        {"string of an alphabet", digits, &five, no_5, true},
        {"UTF8String", kUtf8, &five, no_5, true},
        {"other string", opaque, &five, no_5},
        {"list", kBooleans, &two, "no data for a length of 2", true},
        {"large INTEGER", kBig, &limb, "no data for a length of 1"},
        {"with a bound", from_0, &limb, "no data for a length of 1", true},
        {"with a bound that may grow", from_0_ext, &limb, "no data for a length of 1"},
        {"bytes of an open type", kAny, &bytes, "no data for a length of 7"},
        {"value of an open type", kAny, &typed, missing, true},
        {"behind a tag", kIndirect3To5, &nowhere, missing, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        // clang-format off
        const asn1_word choice[] = {head(ASN1_KIND_CHOICE), num(1), num(40), num(0), num(8), ref(row.type), txt("way")};
        const asn1_word record[] = {head(ASN1_KIND_SEQUENCE), num(1), num(40), field(0), ref(choice), num(0), txt("part")};
        // clang-format on
        struct {
            uint64_t selector;
            uint8_t payload[32];
        } value = {};
        std::memcpy(value.payload, row.value, static_cast<size_t>(asn1_get_size(row.type)));
        for (auto* check : {orlenta_check, orlenta_check_values, asn1_check_constraints}) {
            bool fails = check != asn1_check_constraints || row.is_read;
            asn1_error error = {};
            EXPECT_EQ(check(record, &value, &error), fails ? 0 : 1);
            EXPECT_STREQ(error.message, fails ? row.message : "");
            EXPECT_STREQ(error.path, fails ? "part.way" : "");
        }
    }
    asn1_error error = {};
    EXPECT_EQ(orlenta_check(kBoolean, nullptr, &error), 0);
    EXPECT_STREQ(error.message, missing);
}

// Encoders write the mandatory BOOLEAN of kRecord's group whenever the INTEGER before it is there.
TEST(WholeCheck, TellsOfHalfAGroup) {
    const int has_h = 56, has_i = 64;
    for (bool h : {false, true}) {
        for (bool i : {false, true}) {
            SCOPED_TRACE(testing::Message() << h << i);
            alignas(8) uint8_t record[96] = {};
            record[has_h] = h;
            record[has_i] = i;
            const asn1_array records = {record, 1};
            const asn1_word list[] = {head(ASN1_KIND_SEQUENCE_OF), num(96), ref(kRecord), num(0)};
            bool fails = h && !i;
            for (auto* check : {orlenta_check, orlenta_check_values}) {
                asn1_error error = {};
                EXPECT_EQ(check(list, &records, &error), fails ? 0 : 1);
                EXPECT_STREQ(error.message, fails ? "extension group component 'i' must be present" : "");
                EXPECT_STREQ(error.path, fails ? "[0]" : "");
            }
            EXPECT_EQ(asn1_check_constraints(list, &records, nullptr), 1);
        }
    }
}

// Of types that the message sets have not: contents in bits, a string without an alphabet, a CHOICE of nothing but open
// types, which no valid value ends.
TEST(WholeCheck, PassesValidValues) {
    const asn1_word no_way[] = {
        head(ASN1_KIND_CHOICE), num(1), num(32), num(0), num(8), ref(kAny), txt("any")};
    for (uint32_t seed = 1; seed <= 20; ++seed) {
        for (const asn1_type_desc* type : {kBitsHoldSmall, kHoldsSmall, kIa5, kOpenRecord<kOpen>}) {
            void* value = orlenta_random_valid(type, seed);
            ASSERT_NE(value, nullptr);
            EXPECT_EQ(orlenta_check(type, value, nullptr), 1);
            asn1_free_value(type, value);
        }
        for (const asn1_type_desc* type : {no_way, kClass})
            EXPECT_EQ(orlenta_random_valid(type, seed), nullptr);
    }
}

// A list of itself, deeper than any stack: a report, and no crash.
TEST(CheckConstraints, EndlessNesting) {
    asn1_word nest[] = {head(ASN1_KIND_SEQUENCE_OF, kLower), num(0), num(sizeof(asn1_array)), ref(nullptr),
                        num(0)};
    nest[3] = ref(nest);
    std::vector<asn1_array> levels(4'000'000);
    for (size_t i = 0; i + 1 < levels.size(); ++i) levels[i] = {&levels[i + 1], 1};
    asn1_error error;
    EXPECT_EQ(asn1_check_constraints(nest, levels.data(), &error), 0);
    EXPECT_STREQ(error.message, "value nested too deeply");
    EXPECT_EQ(std::string(error.path).substr(0, 11), "(...)[0][0]");
}

TEST(CheckConstraintsDeathTest, ObjectClassAborts) {
    EXPECT_DEATH(asn1_check_constraints(kClass, nullptr, nullptr), "");
}

}  // namespace
}  // namespace orlenta::test
