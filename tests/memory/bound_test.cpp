// SPDX-License-Identifier: Apache-2.0
// Types and messages made to claim more memory than they are worth, and memory that runs out where it is not expected.
#include <orlenta/ber.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/xer.h>

#include <cstring>

#include "tests/memory/held.hpp"
#include "tests/per/per_types.hpp"
#include "tests/roundtrip/values.hpp"

namespace orlenta::test {
namespace {

octets times(size_t count, const octets& part) {
    octets all;
    for (size_t i = 0; i < count; ++i) all.insert(all.end(), part.begin(), part.end());
    return all;
}
octets operator+(octets a, const octets& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

constexpr char kNoMemory[] = "not enough memory", kPerEnd[] = "reading after end of stream";

// ---- elements that cost nothing ---------------------------------------------------------------------------

Type record_of_bytes(uint64_t size) {
    return keep({head(ASN1_KIND_SEQUENCE, 0, 16), num(0), {.number = size}});
}
Type indirect(Type inner) {
    return keep({head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(inner)});
}

// No bits in PER, no octets in OER: each makes blocks of another kind.
const Type kFree[] = {kNull,
                      record_of_bytes(1),
                      record_of_bytes(300),
                      record_of_bytes(100000),
                      octet_string(0, 0),
                      bit_string(0, 0),
                      indirect(kNull),
                      indirect(record_of_bytes(300))};
const Type kFreeInPer[] = {integer(7, 7), list_of(kNull, 0, 0), list_of(kNull, 5000, 5000),
                           char_string(ASN1_STRING_BMP, 1000, 1000, {{'a', 'a'}})};

void expect_refused_within_bound(decode_function decode, Type element, const octets& input) {
    Held held = decode_counted(decode, list_of(element, 0, -1), input);
    EXPECT_EQ(held.message, kNoMemory);
    EXPECT_GT(held.bytes, bound_for(input.size()) / 2);  // no stricter than it is said to be
}

TEST(MemoryBound, ElementsThatCostNothing) {
    const octets in_per = octets(20, 0xC4) + octets{0};  // 1.3 million of them
    for (Type element : kFree) {
        SCOPED_TRACE(&element - kFree);
        for (const Variant& variant : kVariants) expect_refused_within_bound(variant.decode, element, in_per);
        expect_refused_within_bound(asn1_oer_decode, element, {0x04, 0xFF, 0xFF, 0xFF, 0xFF});
    }
    for (Type element : kFreeInPer) {
        SCOPED_TRACE(&element - kFreeInPer);
        for (const Variant& variant : kVariants) expect_refused_within_bound(variant.decode, element, in_per);
    }
    // Not even a byte: what counts is the time that they take.
    for (decode_function decode : {asn1_uper_decode, asn1_oer_decode}) {
        Held held = decode_counted(decode, list_of(record_of_bytes(0), 0, -1),
                                   decode == asn1_oer_decode ? octets{0x04, 0xFF, 0xFF, 0xFF, 0xFF} : in_per);
        EXPECT_EQ(held.message, kNoMemory);
    }
}

// What is within the bound is decoded, to the last byte.
TEST(MemoryBound, IsExact) {
    static std::vector<uint32_t> limbs(5000, 1);
    static const asn1_integer kLong = {limbs.data(), 5000, 5000, 0};
    constexpr uint32_t kSequenceTag = 16;
    const Type nulls = list_of(kNull, 0, -1), wide = list_of(record_of_bytes(100000), 0, -1, kSequenceTag),
               defaults = list_of(sequence({{kBig, "a", kDefault, 0, big(&kLong)}}, kSequenceTag), 0, -1,
                                  kSequenceTag);
    const struct {
        decode_function decode;
        Type type;
        octets input;
        const char* message;
    } rows[] = {
        {asn1_oer_decode, nulls, {0x03, 0x10, 0x40, 0x00}, ""},  // 1 MiB and 4 * 4,096
        {asn1_oer_decode, nulls, {0x03, 0x10, 0x40, 0x01}, kNoMemory},
        {asn1_uper_decode, nulls, octets(16, 0xC4) + octets{0xC4, 0}, ""},
        {asn1_uper_decode, nulls, octets(16, 0xC4) + octets{0xC4, 0xC1, 0}, kNoMemory},
        {asn1_ber_decode, wide, octets{0x30, 22} + times(11, {0x30, 0x00}), ""},
        {asn1_ber_decode, wide, octets{0x30, 24} + times(12, {0x30, 0x00}), kNoMemory},
        {asn1_oer_decode, wide, {0x01, 0x0A}, ""},
        {asn1_oer_decode, wide, {0x01, 0x0B}, kNoMemory},
        {asn1_uper_decode, wide, {0x0A}, ""},
        {asn1_uper_decode, wide, {0x0B}, kNoMemory},
        {asn1_uper_decode, wide, {0x8F, 0xFF}, kNoMemory},
        // A bit each, or an octet, for 20,000 bytes of limbs.
        {asn1_uper_decode, defaults, octets{0x81, 0x00} + octets(32, 0), kNoMemory},
        {asn1_uper_decode, defaults, octets{0x20} + octets(4, 0), ""},
        {asn1_oer_decode, defaults, octets{0x02, 0x04, 0x00} + octets(1024, 0), kNoMemory},
        {asn1_ber_decode, defaults, octets{0x30, 0x82, 0x04, 0x00} + times(512, {0x30, 0x00}), kNoMemory},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        Held held = decode_counted(row.decode, row.type, row.input);
        EXPECT_EQ(held.message, row.message);
        EXPECT_EQ(held.succeeded, *row.message == '\0');
    }
}

// An array of a large SEQUENCE that could not be had keeps silent, but not about the buffer that failed before it.
TEST(ScarceMemory, FailedBufferOfOer) {
    const Type large = sequence(std::vector<Component>(70, {kBoolean, "b", kOptional}));
    const Type type = sequence({{kOctets, "a"}, {large, "c"}});
    value_pointer value = value_of(type, "{a '00112233445566778899AABBCCDDEEFF'H, c {}}");
    for (uint64_t call : {1, 2, 3, 4}) {  // the array is the third, the buffer grows before and behind it
        uint8_t* out = nullptr;
        asn1_error error = {};
        allocator_fails_from(call);
        int64_t size = asn1_oer_encode2(&out, type, value.get(), &error);
        allocator_never_fails();
        EXPECT_EQ(size, -1);
        EXPECT_STREQ(error.message, call == 3 ? "" : kNoMemory) << call;
    }
}

// ---- messages of the shipped sets -------------------------------------------------------------------------

TEST(MemoryBound, MessagesThatClaimGigabytes) {
    const octets ivim = from_digits(
        "00 00 00 00 00 00 80 00 00 00 00 00 71 07 88 00 00 71 06 00 00 71"
        " 38 E2 40 1C");
    const octets levels = times(200, from_digits("48 04 00 00 E2 38 E2 40 1C"));
    octets deep = ivim + levels;
    deep.resize(1395);
    const struct {
        Type type;
        octets input;
        const char* message;
    } rows[] = {{find_type("EU", "IVIM"), ivim + octets{0x40}, kPerEnd},
                {find_type("EU", "IVIM"), deep, kPerEnd},
                {find_type("US", "TollAdvertisementMessage"), from_digits("0B 86 00 00 1C 30"), kPerEnd}};
    for (const auto& row : rows) {
        if (!row.type) continue;  // its region is not built
        Held held = decode_counted(asn1_uper_decode, row.type, row.input);
        EXPECT_EQ(held.message, row.message);
        EXPECT_GT(held.bytes, 4000u);
    }
}

// ---- open types within open types -------------------------------------------------------------------------

// Nest ::= SEQUENCE { x INTEGER (0..127), ..., in [0] Nest OPTIONAL }, indirect
extern const asn1_word kNest[11];
const asn1_word kInner[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(kNest)};
const asn1_word kSeptet[] = {head(ASN1_KIND_INTEGER, kBounds), num(0), num(127)};
const asn1_word kNest[11] = {head(ASN1_KIND_SEQUENCE, kExt, 16),
                             num(2),
                             num(24),
                             field(0),
                             ref(kSeptet),
                             num(0),
                             txt("x"),
                             field(16, ASN1_OPTION_OPTIONAL, kAddition),
                             ref(kInner),
                             num(8),
                             txt("in")};

// An open type's length and contents, in fragments if need be.
octets wrapped(octets contents) {
    octets out;
    size_t at = 0;
    for (size_t left; (left = contents.size() - at) >= 16384;) {
        size_t pieces = std::min<size_t>(left / 16384, 4);
        out.push_back(static_cast<uint8_t>(0xC0 + pieces));
        out.insert(out.end(), contents.begin() + static_cast<long>(at),
                   contents.begin() + static_cast<long>(at + pieces * 16384));
        at += pieces * 16384;
    }
    size_t left = contents.size() - at;
    if (left >= 128) out.push_back(static_cast<uint8_t>(0x80 + left / 256));
    out.push_back(static_cast<uint8_t>(left));
    out.insert(out.end(), contents.begin() + static_cast<long>(at), contents.end());
    return out;
}

// Each level took a copy of all that lies within it.
TEST(MemoryBound, OpenTypesAreNotCopiedAtEachLevel) {
    for (size_t size : {16000u, 40000u}) {
        octets input = {0x00};
        for (size_t levels = 0; levels < 1500 || input.size() < size; ++levels) {
            octets level = {0x85, 0x01};
            if (levels == 1500) input.resize(size);  // what stands behind a value is ignored
            input = level + wrapped(input);
        }
        for (const Variant& variant : kVariants) {
            Held held = decode_counted(variant.decode, kNest, input);
            EXPECT_TRUE(held.succeeded) << held.message;
            EXPECT_LT(held.bytes, 64 * input.size());
        }
    }
}

}  // namespace
}  // namespace orlenta::test
