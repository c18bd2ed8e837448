// SPDX-License-Identifier: Apache-2.0
// OER: the forms read and written, the forms refused, and input spoiled in every way.
#include <orlenta/oer.h>

#include "tests/oer/oer_types.hpp"
#include "tests/support/failing_allocator.hpp"
#include "tests/support/octet_codec.hpp"
#include "tests/support/recursive_types.hpp"

namespace orlenta::test {
namespace {

struct form {
    const char* name;
    const asn1_type_desc* type;
    const char* input;
    const char* encoding;  // what the value is encoded as; null: the input itself
};

const form kForms[] = {
    // INTEGER: the form follows from the bounds
    {"0..255", kByte, "C8", nullptr},
    {"0..256", kRange<0, 256>, "00 C8", nullptr},
    {"0..65535", kRange<0, 65535>, "FF FE", nullptr},
    {"0..65536", kRange<0, 65536>, "00 00 FF FE", nullptr},
    {"0..4294967295", kUint32, "FF FF FF FE", nullptr},
    {"-1..127", kRange<-1, 127>, "FF", nullptr},
    {"-128..128", kRange<-128, 128>, "FF 80", nullptr},
    {"-32769..0", kRange<-32769, 0>, "FF FF 7F FF", nullptr},
    {"extensible 0..255", kByteExt, "02 00 C8", nullptr},
    {"extensible, sign bits", kByteExt, "03 00 00 05", "01 05"},
    {"0..", kFrom<0>, "01 C8", nullptr},
    {"0.., 32 bits", kFrom<0>, "04 FF FF FF FF", nullptr},
    {"0.., leading zeros", kFrom<0>, "82 00 04 00 00 00 05", "01 05"},
    {"0.., long length", kFrom<0>, "85 00 00 00 00 01 C8", "01 C8"},
    {"-1..", kFrom<-1>, "02 00 C8", nullptr},
    {"..-1", kUpTo, "01 FF", nullptr},
    // INTEGER of any size
    {"big zero", kBig, "01 00", nullptr},
    {"big -1", kBig, "02 FF FF", "01 FF"},
    {"big 2^31", kBig, "05 00 80 00 00 00", nullptr},
    {"big -2^31", kBig, "04 80 00 00 00", nullptr},
    {"big -2^32", kBig, "05 FF 00 00 00 00", nullptr},
    {"big from 0: 0", kBigFrom0, "01 00", nullptr},
    {"big from 0: 2^32 - 1", kBigFrom0, "05 00 FF FF FF FF", "04 FF FF FF FF"},
    {"big from -1", kBigFromMinus1, "02 00 FF", nullptr},
    {"big to 2^64 - 1", kBigTo64, "FF FF FF FF FF FF FF FF", nullptr},
    {"big to 2^64 - 1: 5", kBigTo64, "00 00 00 00 00 00 00 05", nullptr},
    {"big to 2^64", kBigTo65, "01 05", nullptr},
    {"big -1..2^31 - 1", kBigSigned32, "FF FF FF FE", nullptr},
    {"big -1..2^31 - 1: highest", kBigSigned32, "7F FF FF FF", nullptr},
    {"big -1..2^31 - 1: 0", kBigSigned32, "00 00 00 00", nullptr},
    {"big -128..127", kBigSigned8, "FF 80", nullptr},
    {"extensible big", kBigExt, "01 05", nullptr},
    // other scalars
    {"true", kBoolean, "01", "FF"},
    {"false", kBoolean, "00", nullptr},
    {"item 7", kEnum, "07", nullptr},
    {"item 7 in two octets", kEnum, "82 00 07", "07"},
    {"item -1", kEnum, "81 FF", nullptr},
    {"item 128", kEnum, "82 00 80", nullptr},
    {"item 300", kEnum, "82 01 2C", nullptr},
    {"null", kNull, "", nullptr},
    {"real", kReal, "03 80 FF 03", nullptr},
    {"real zero", kReal, "00", nullptr},
    // strings
    {"12 bits", kBits12, "AB CF", "AB C0"},
    {"12 bits, extensible", kBits12Ext, "03 04 AB CF", "03 04 AB C0"},
    {"any bits", kBits, "81 03 04 AB CF", "03 04 AB C0"},
    {"no bits", kBits, "01 00", nullptr},
    {"bits of size 0", kBits0, "", nullptr},
    {"2 octets", kOctets2, "AA BB", nullptr},
    {"2 octets, extensible", kOctets2Ext, "02 AA BB", nullptr},
    {"any octets", kOctets, "02 AA BB", nullptr},
    {"no octets", kOctets, "00", nullptr},
    {"ia5", kIa5, "03 61 62 63", nullptr},
    {"ia5 of size 2", kIa5Size2, "61 62", nullptr},
    {"bmp", kBmp, "04 00 41 20 AC", nullptr},
    {"bmp of size 2", kBmpSize2, "00 41 20 AC", nullptr},
    {"universal", kUniversal, "04 00 01 F6 00", nullptr},
    {"utf8", kUtf8, "03 E2 82 AC", nullptr},
    {"object identifier", kOid, "03 2A 86 48", nullptr},
    {"relative oid", kRelativeOid, "02 87 67", nullptr},
    // CHOICE
    {"null alternative", kChoice, "05", nullptr},
    {"constructed bit", kChoice, "25", "05"},
    {"tag number 31", kChoice, "9F 1F 00 00 00 05", nullptr},
    {"addition", kChoice, "04 03 02 AA BB", nullptr},
    {"choice in choice", kOuterChoice, "05 9F 1F 00 00 00 05", nullptr},
    {"choice in choice, by its own tag", kOuterChoice, "9F 1F 05", "05 05"},
    {"behind choice in choice", kOuterChoice, "09 03 80 00 01", nullptr},
    {"tagged choice", kExplicitChoice, "05", nullptr},
    // SEQUENCE
    {"mandatory components only", kRecord, "00 00 00 00 01 FF", nullptr},
    {"fill bits of the preamble", kRecord, "07 00 00 00 01 FF", "00 00 00 00 01 FF"},
    {"optional components", kRecord, "68 00 00 00 01 FF 02 AA BB 00 00 00 00 09", nullptr},
    {"default sent", kRecord, "10 00 00 00 01 00 00 00 05 00", "00 00 00 00 01 00"},
    {"not the default", kRecord, "10 00 00 00 01 00 00 00 06 00", nullptr},
    {"additions", kRecord, "80 00 00 00 01 FF 02 05 E0 01 FF 06 80 00 00 00 02 FF 03 02 AA BB", nullptr},
    {"group without its optional member", kRecord, "80 00 00 00 01 FF 02 05 40 02 00 FF", nullptr},
    {"unknown additions", kRecord, "80 00 00 00 01 FF 03 04 80 F0 01 FF 01 00 00 02 AA BB 00",
     "80 00 00 00 01 FF 02 05 80 01 FF"},
    {"fewer additions", kRecord, "80 00 00 00 01 FF 02 07 80 01 00", "80 00 00 00 01 FF 02 05 80 01 00"},
    {"no addition set", kRecord, "80 00 00 00 01 FF 01 00", "00 00 00 00 01 FF"},
    {"nine optional components", kNine, "80 80 01 02", nullptr},
    {"nine additions", kNineAdditions, "80 03 07 80 00 01 01", nullptr},
    {"extensible and empty", kEmptyExt, "00", nullptr},
    {"empty", kEmpty, "", nullptr},
    {"set", kSet, "80 02 AA BB 05 FF", nullptr},
    // lists
    {"list", kBooleans, "01 03 FF 00 01", "01 03 FF 00 FF"},
    {"count in two octets", kBooleans, "02 00 01 FF", "01 01 FF"},
    {"empty list", kBooleans, "01 00", nullptr},
    {"list of fixed size", kTwoBytes, "01 02 AA BB", nullptr},
    {"list of nothing", kNulls, "02 13 88", nullptr},  // 5000 elements
    // open types
    {"any", kAny, "02 AA BB", nullptr},
    {"open type resolved", kOpenRecord<kOpen>, "02 03 02 AA BB", nullptr},
    {"open type unresolved", kOpenRecord<kOpen>, "03 02 AA BB", nullptr},
};

TEST(Oer, ReadsAndWritesForms) {
    for (const form& f : kForms) {
        SCOPED_TRACE(f.name);
        octets input = from_digits(f.input);
        const size_t size = input.size();
        input.push_back(0xFF);  // what follows is left alone
        decoded result = decode(asn1_oer_decode, f.type, input);
        ASSERT_EQ(result.consumed, static_cast<int64_t>(size)) << result.error.message;
        std::string expected = normal_digits(f.encoding != nullptr ? f.encoding : f.input);
        EXPECT_EQ(encode(asn1_oer_encode, f.type, result.value.get()), expected);
    }
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(Oer, GoesOnWhereAnOpenTypesValueEnds) {
    decoded open = decode(asn1_oer_decode, kOpenRecord<kOpen>, from_digits("01 05 FF AA AA AA AA"));
    EXPECT_EQ(open.consumed, 3);
    decoded group =
        decode(asn1_oer_decode, kRecord, from_digits("80 00 00 00 01 FF 02 05 60 03 00 FF 02 01 AA"));
    ASSERT_EQ(group.consumed, 15) << group.error.message;
    EXPECT_EQ(encode(asn1_oer_encode, kRecord, group.value.get()),
              "80 00 00 00 01 FF 02 05 60 02 00 FF 02 01 AA");
}

// It stays 0, which is not the default, and so is sent.
TEST(Oer, FillsInNoDefaultOfAnAddition) {
    decoded absent = decode(asn1_oer_decode, kDefaultAddition, from_digits("00"));
    EXPECT_EQ(encode(asn1_oer_encode, kDefaultAddition, absent.value.get()), "80 02 07 80 01 00");
    decoded sent = decode(asn1_oer_decode, kDefaultAddition, from_digits("80 02 07 80 01 05"));
    EXPECT_EQ(encode(asn1_oer_encode, kDefaultAddition, sent.value.get()), "00");
    decoded in_group = decode(asn1_oer_decode, kDefaultInGroup, from_digits("80 02 07 80 02 40 09"));
    EXPECT_EQ(encode(asn1_oer_encode, kDefaultInGroup, in_group.value.get()), "80 02 07 80 03 C0 00 09");
}

TEST(Oer, SuccessMayBeEmpty) {
    uint8_t* out = reinterpret_cast<uint8_t*>(1);
    EXPECT_EQ(asn1_oer_encode(&out, kNull, &out), 0);
    EXPECT_EQ(out, nullptr);
}

struct refusal {
    const asn1_type_desc* type;
    const char* input;
    const char* message;
    int32_t octets;  // that were read up to there; 0 without a message
};

const refusal kRefusals[] = {
    {kBoolean, "", "unexpected end of stream", 0},
    {kUint32, "00 00 00", "unexpected end of stream", 0},
    {kOctets, "80", "", 0},
    {kOctets, "FF", "", 0},
    {kOctets, "84 80 00 00 00", "", 0},
    {kOctets, "85 01 00 00 00 00", "", 0},
    {kOctets, "84 7F FF FF FF", "unexpected end of stream", 5},
    {kOctets, "82 00", "unexpected end of stream", 2},
    {kFrom<0>, "00", "invalid integer length", 1},
    {kFrom<0>, "05 00 00 00 00 01", "invalid integer length", 1},
    {kByteExt, "05 00 00 00 00 01", "invalid integer length", 1},
    {kBig, "00", "", 0},
    {kBig, "84 7F FF FF FF", "unexpected end of stream", 5},
    {kBigTo64, "00 00 00 00 00 00 00", "unexpected end of stream", 0},
    {kEnum, "05", "enumerated value out of range", 1},
    {kEnum, "80", "invalid integer length", 1},
    {kEnum, "85 00 00 00 00 07", "invalid integer length", 1},
    {kReal, "01 44", "real: error in encoding", 1},
    {kReal, "05 80", "", 0},
    {kBits, "00", "bit string: length must be >= 1", 1},
    {kBits, "01 01", "bit string: first byte must be zero", 2},
    {kBits, "02 08 AA", "bit string: first byte must be <= 7", 2},
    {kBits, "03 00 AA", "unexpected end of stream", 2},
    {kUniversal, "06 00 00 00 41 00 00", "character string length must be multiple of 4 (6)", 1},
    {kBmp, "03 00 41 20", "character string length must be multiple of 2 (3)", 1},
    {kChoice, "", "invalid choice tag", 0},
    {kChoice, "1F", "invalid choice tag", 1},
    {kChoice, "9F 9F", "invalid choice tag", 2},
    {kChoice, "BF 80 01", "invalid choice tag", 2},
    {kChoice, "02", "tag 0x2 not present in choice", 1},
    {kChoice, "9F 87 FF FF FF 7F", "tag 0x17ffff not present in choice", 6},
    {kChoice, "04 03 02 AA", "unexpected end of stream", 2},
    {kChoice, "04 02 02 AA BB", "unexpected end of stream", 3},
    {kRecord, "80 00 00 00 01 FF 00", "bit string: length must be >= 1", 7},
    {kRecord, "80 00 00 00 01 FF 03 04 00 80 02 AA", "unexpected end of stream", 11},
    {kRecord, "80 00 00 00 01 FF 02 05 40 03 00 FF", "unexpected end of stream", 10},
    {kRecord, "80 00 00 00 01 FF 02 05 40 01 00 FF", "unexpected end of stream", 11},
    {kNine, "80", "unexpected end of stream", 1},
    {kBooleans, "05 00 00 00 00 01 FF", "invalid integer length", 1},
    // Four billion elements are claimed, and not believed.
    {kBooleans, "04 FF FF FF FF FF", "unexpected end of stream", 6},
    {kOpenRecord<kOpen>, "01 00", "unexpected end of stream", 2},
    {kOpenRecord<kOpen>, "01 02 FF", "unexpected end of stream", 2},
    {kClass, "00", "unsupported type (17)", 0},
};

TEST(Oer, RefusesForms) {
    for (const refusal& r : kRefusals) {
        SCOPED_TRACE(r.input);
        decoded result = decode(asn1_oer_decode, r.type, from_digits(r.input));
        EXPECT_EQ(result.consumed, -1);
        EXPECT_STREQ(result.error.message, r.message);
        EXPECT_EQ(result.error.bit_position, r.octets * 8);
    }
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(Oer, SurvivesSpoiledInput) {
    for (const form& f : kForms) {
        SCOPED_TRACE(f.name);
        octets input = from_digits(f.input);
        for (size_t size = 0; size < input.size(); ++size) {
            decoded cut = decode(asn1_oer_decode, f.type, octets(input.begin(), input.begin() + size));
            EXPECT_EQ(cut.consumed, -1) << size;
        }
        spoil_bytes(input, [&](const octets& spoiled) {
            expect_whole_value(asn1_oer_decode, asn1_oer_encode, f.type, spoiled);
        });
        if (HasFailure()) return;
    }
    EXPECT_EQ(live_blocks(), 0u);
}

// Each of a thousand nested lists claims four billion elements, 64 GiB.
TEST(Oer, RefusesListsThatClaimTooMuch) {
    octets bytes;
    for (int i = 0; i < 1000; ++i) bytes.insert(bytes.end(), {0x04, 0xFF, 0xFF, 0xFF, 0xFF});
    decoded result = decode(asn1_oer_decode, kTree, bytes);
    EXPECT_EQ(result.consumed, -1);
    EXPECT_EQ(result.error.bit_position, static_cast<int32_t>(bytes.size() * 8));
}

}  // namespace
}  // namespace orlenta::test
