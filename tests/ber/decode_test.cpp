// SPDX-License-Identifier: Apache-2.0
// BER decoding: the forms accepted, the forms refused, and input spoiled in every way.
#include <orlenta/ber.h>

#include "tests/support/failing_allocator.hpp"
#include "tests/support/octet_codec.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {
namespace {

struct form {
    const char* name;
    const asn1_type_desc* type;
    const char* input;
    const char* der;  // the value's encoding; empty: the input itself
};

const form kForms[] = {
    // identifier and length
    {"long tag of a small number", kInt32, "1F 02 01 05", "02 01 05"},
    {"long length", kInt32, "02 81 01 05", "02 01 05"},
    {"length with leading zeros", kInt32, "02 88 00 00 00 00 00 00 00 01 05", "02 01 05"},
    {"tag number 31", kChoice, "9F 1F 01 05", ""},
    // scalars
    {"true", kBoolean, "01 01 40", "01 01 FF"},
    {"false", kBoolean, "01 01 00", ""},
    {"integer of no octets", kInt32, "02 00", "02 01 00"},
    {"redundant octets", kInt32, "02 04 FF FF FF FE", "02 01 FE"},
    {"lowest", kInt32, "02 04 80 00 00 00", ""},
    {"unsigned above 2^31", kUint32, "02 05 00 80 00 00 00", ""},
    {"enumerated by its number", kEnum, "0A 01 FF", ""},
    {"enumerated addition", kEnum, "0A 03 00 01 2C", "0A 02 01 2C"},
    {"null", kNull, "05 00", ""},
    {"real with an even mantissa", kReal, "09 03 80 00 02", "09 03 80 01 01"},
    {"real zero", kReal, "09 00", ""},
    {"decimal real", kReal, "09 04 03 31 2E 35", "09 03 80 FF 03"},
    // big integers, around the ends of a limb
    {"big of no octets", kBig, "02 00", "02 01 00"},
    {"big -1", kBig, "02 01 FF", ""},
    {"big -128", kBig, "02 01 80", ""},
    {"big 128", kBig, "02 02 00 80", ""},
    {"big 2^31", kBig, "02 05 00 80 00 00 00", ""},
    {"big -2^31", kBig, "02 05 FF 80 00 00 00", "02 04 80 00 00 00"},
    {"big -2^31 - 1", kBig, "02 05 FF 7F FF FF FF", ""},
    {"big -2^32", kBig, "02 05 FF 00 00 00 00", ""},
    {"big 2^64 - 1", kBig, "02 09 00 FF FF FF FF FF FF FF FF", ""},
    {"big -2^64", kBig, "02 0A FF FF 00 00 00 00 00 00 00 00", "02 09 FF 00 00 00 00 00 00 00 00"},
    // strings
    {"stray bits", kBits, "03 02 04 FF", "03 02 04 F0"},
    {"no bits", kBits, "03 01 00", ""},
    {"segments of bits", kBits, "23 80 03 02 00 AA 03 02 04 5F 00 00", "03 03 04 AA 50"},
    {"segments in segments", kBits, "23 0E 23 04 03 02 00 AA 23 06 23 04 03 02 01 BB", "03 03 01 AA BA"},
    {"first segment empty", kBits, "23 07 03 01 00 03 02 04 12", "03 02 04 10"},
    {"segment that fails at its end", kBits, "23 07 03 01 07 03 02 00 AA", "03 02 00 AA"},
    {"octets", kOctets, "04 03 01 02 03", ""},
    {"no octets", kOctets, "04 00", ""},
    {"segments of octets", kOctets, "24 80 04 01 AA 24 05 04 03 01 02 03 04 00 00 00", "04 04 AA 01 02 03"},
    {"no segments", kOctets, "24 80 00 00", "04 00"},
    {"segments nested, indefinite", kOctets, "24 80 24 80 24 80 04 01 AA 00 00 00 00 04 01 BB 00 00",
     "04 02 AA BB"},
    // The inner tag is wrong, but reading stops where the element around it can be closed.
    {"wrong tag at a segment's end", kOctets, "24 06 24 02 02 00 04 00", "04 00"},
    {"utf8", kUtf8, "0C 03 E2 82 AC", ""},
    {"ia5 in octet string segments", kIa5, "36 80 04 01 61 04 02 62 63 00 00", "16 03 61 62 63"},
    {"bmp", kBmp, "1E 04 00 41 20 AC", ""},
    {"bmp across segments", kBmp, "3E 0A 04 01 00 04 03 41 20 AC 04 00", "1E 04 00 41 20 AC"},
    {"universal", kUniversal, "1C 08 00 00 00 41 00 01 F6 00", ""},
    {"object identifier", kOid, "06 06 2A 86 48 86 F7 0D", ""},
    {"object identifier of no octets", kOid, "06 00", ""},
    {"relative oid", kRelativeOid, "0D 02 87 67", ""},
    // tags and choices
    {"implicit", kTagged<1, kInt32>, "81 01 05", ""},
    {"explicit, indefinite", kExplicitChoice, "A2 80 05 00 00 00", "A2 02 05 00"},
    {"choice in choice", kOuterChoice, "9F 1F 02 01 00", ""},
    {"addition of a choice", kChoice, "04 01 AA", ""},
    {"choice under a tag", kTaggedChoice, "AC 80 05 00 00 00", "AC 02 05 00"},
    // SEQUENCE
    {"mandatory components only", kRecord, "30 06 02 01 01 01 01 00", ""},
    {"optional components out of order", kRecord, "30 10 02 01 01 81 02 AA BB 80 01 01 82 01 07 01 01 00",
     "30 10 02 01 01 80 01 FF 81 02 AA BB 82 01 07 01 01 00"},
    {"default sent", kRecord, "30 09 02 01 01 82 01 05 01 01 00", "30 06 02 01 01 01 01 00"},
    {"additions", kRecord, "30 15 02 01 01 01 01 00 83 01 09 84 01 FF 85 01 02 86 01 FF 87 01 AA", ""},
    {"unknown behind the last mandatory one", kRecord,
     "30 80 02 01 01 01 01 00 84 01 FF 86 01 FF 8A 01 00 87 01 AA 00 00",
     "30 0C 02 01 01 01 01 00 84 01 FF 86 01 FF"},
    {"unknown and indefinite", kRecord,
     "30 80 02 01 01 01 01 00 84 01 FF 86 01 FF BF 63 80 30 80 04 01 00 30 80 00 00 00 00 00 00 00 00",
     "30 0C 02 01 01 01 01 00 84 01 FF 86 01 FF"},
    // Two elements inside the unknown one are broken, each where the element around can be closed.
    {"unknown and broken", kRecord,
     "30 80 02 01 01 01 01 00 84 01 FF 86 01 FF BF 63 80 30 80 1F 00 00 00 30 80 04 FF 00 00 00 00 00 00",
     "30 0C 02 01 01 01 01 00 84 01 FF 86 01 FF"},
    // SET and lists
    {"set in another order, with unknown ones", kSet, "31 80 05 00 8B 02 AA BB 04 01 AA 01 01 01 00 00",
     "31 08 01 01 FF 04 01 AA 05 00"},
    {"set sorted by the tag chosen", kSet, "31 07 9F 1F 01 05 04 01 AA", "31 07 04 01 AA 9F 1F 01 05"},
    {"list", kBooleans, "30 80 01 01 FF 01 01 00 01 01 01 00 00", "30 09 01 01 FF 01 01 00 01 01 FF"},
    {"empty list", kBooleans, "30 00", ""},
    {"set of", kOctetsSet, "31 0D 04 02 01 02 04 00 04 01 02 04 02 01 00",
     "31 0D 04 00 04 01 02 04 02 01 00 04 02 01 02"},
    // open types
    {"any", kAny, "30 03 01 02 03", ""},
    {"any, indefinite", kAny, "30 80 24 80 04 00 00 00 00 00", ""},
    {"open type resolved", kOpenRecord<kOpen>, "30 06 02 01 01 01 01 FF", ""},
    {"open type unresolved", kOpenRecord<kOpen>, "30 07 02 01 03 04 02 AA BB", ""},
    {"tagged open type", kOpenRecord<kTaggedOpen>, "30 80 02 01 02 A1 80 24 80 00 00 00 00 00 00",
     "30 07 02 01 02 A1 02 04 00"},
};

TEST(BerDecode, AcceptsForms) {
    for (const form& f : kForms) {
        SCOPED_TRACE(f.name);
        octets input = from_digits(f.input);
        const size_t size = input.size();
        input.insert(input.end(), {0x30, 0xFF});  // what follows is left alone
        decoded result = decode(asn1_ber_decode, f.type, input);
        ASSERT_EQ(result.consumed, static_cast<int64_t>(size)) << result.error.message;
        std::string expected = normal_digits(*f.der != '\0' ? f.der : f.input);
        EXPECT_EQ(encode(asn1_der_encode, f.type, result.value.get()), expected);
        EXPECT_STREQ(result.error.message, "");
    }
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(BerDecode, StoresWideCharactersAsUnits) {
    decoded bmp = decode(asn1_ber_decode, kBmp, from_digits("1E 04 00 41 20 AC"));
    const asn1_string* string = static_cast<const asn1_string*>(bmp.value.get());
    const uint16_t* units = reinterpret_cast<const uint16_t*>(string->data);
    EXPECT_EQ(string->length, 2u);
    EXPECT_EQ(units[0], 0x41);
    EXPECT_EQ(units[1], 0x20AC);
    decoded universal = decode(asn1_ber_decode, kUniversal, from_digits("1C 04 00 01 F6 00"));
    string = static_cast<const asn1_string*>(universal.value.get());
    EXPECT_EQ(string->length, 1u);
    EXPECT_EQ(*reinterpret_cast<const uint32_t*>(string->data), 0x1F600u);
}

struct refusal {
    const asn1_type_desc* type;
    const char* input;
    const char* message;
    int32_t octets;  // that were read up to there
};

const asn1_word kTaggedClass[] = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME, 5), num(0), txt("CLASS")};

const refusal kRefusals[] = {
    // identifier and length; some failures have no message, and show what was in the record before
    {kInt32, "", "unexpected end of stream or tag", 0},
    {kInt32, "02", "unexpected end of stream or tag", 1},
    {kInt32, "02 82 01", "unexpected end of stream or tag", 3},
    {kInt32, "02 02 05", "", 0},
    {kInt32, "02 FF 05", "", 0},
    {kInt32, "00 00", "", 0},
    {kInt32, "1F 80 02 01 05", "", 0},
    {kInt32, "1F 00 01 05", "", 0},
    {kInt32, "1F", "unexpected end of stream or tag", 1},
    {kInt32, "02 84 80 00 00 00 05", "length field too large", 6},
    {kInt32, "02 85 01 00 00 00 01 05", "length field too large", 7},
    {kInt32, "02 80 01 05 00 00", "indefinite length forbidden in primtive encoding", 2},
    {kBooleans, "30 80 01 01 FF 00 01", "expecting second end of content byte", 7},
    {kBooleans, "30 80 01 01 FF 00", "expecting second end of content byte", 6},
    {kBooleans, "30 80 01 01 FF", "unexpected end of stream or tag", 5},
    {kExplicitChoice, "A2 80 05 00 00 01", "EOC expected", 6},
    {kExplicitChoice, "A2 80 05 00 00", "unexpected end of stream or tag", 5},
    {kExplicitChoice, "A2 03 05 00 00", "extraneous characters in tag", 4},
    {kExplicitChoice, "A2 00", "unexpected end of stream or tag", 2},
    {kExplicitChoice, "A2 04 24 80 04 00 00 00", "unexpected end of stream or tag", 6},
    {kExplicitChoice, "82 02 05 00", "expecting constructed encoding", 2},
    {kTaggedChoice, "8C 02 05 00", "expecting constructed encoding", 2},
    {kBooleans, "10 00", "expecting constructed encoding", 2},
    {kRecord, "10 00", "expecting constructed encoding", 2},
    {kInt32, "22 03 02 01 05", "expecting primitive encoding", 2},
    {kNull, "25 80 00 00", "expecting primitive encoding", 2},
    {kOid, "26 03 06 01 2A", "expecting primitive encoding", 2},
    // contents
    {kBoolean, "01 02 00 00", "boolean must contain a single byte", 2},
    {kNull, "05 01 00", "expecting zero length for null type", 2},
    {kInt32, "02 05 FF FF FF FF FF", "integer larger than 32 bits", 3},
    {kInt32, "02 06 00 00 00 00 00 00", "integer larger than 32 bits", 2},
    {kEnum, "0A 01 05", "enumerated value out of range", 3},
    {kEnum, "0A 00", "enumerated value out of range", 2},
    {kEnum, "0A 05 00 00 00 00 07", "enumerated value out of range", 2},
    {kReal, "09 01 44", "real: error in encoding", 2},
    {kBits, "03 00", "bit string: length must be >= 1", 2},
    {kBits, "03 01 01", "bit string: first byte must be zero", 3},
    {kBits, "03 02 08 AA", "bit string: first byte must be <= 7", 3},
    {kBits, "23 80 03 02 04 A0 03 02 00 BB 00 00", "extraneous characters in tag", 9},
    // The second segment is let through, but its message is still there when the tag behind it fails without one.
    {kBits, "23 80 03 02 04 A0 03 01 00 1F 00", "bit string: segment bit length is not a multiple of 8", 9},
    {kBits, "23 03 04 01 AA", "unexpected tag in constructed bit string encoding (tag=0x4 expected=0x3)", 4},
    {kOctets, "24 03 03 01 AA", "unexpected tag in constructed string encoding (tag=0x3 expected=0x4)", 4},
    {kBmp, "1E 03 00 41 20", "character string: octet count must be multiple of 2", 5},
    {kUniversal, "1C 06 00 00 00 41 00 01", "character string: octet count must be multiple of 4", 8},
    // types
    {kInt32, "04 01 05", "unexpected tag 0x4 (expecting tag 0x2)\n", 2},
    {kTaggedClass, "05 00", "unsupported type (17)", 2},
    {kChoice, "02 01 05", "tag 0x2 not present in choice", 2},
    {kChoice, "9F 87 FF FF FF 7F 00", "tag 0x17ffff not present in choice", 7},
    {kRecord, "30 05 02 01 01 05 00", "tag 0x5 not found in SET/SEQUENCE", 7},
    {kRecord, "30 09 02 01 01 01 01 00 86 01 FF", "tag 0x100006 not found in SET/SEQUENCE", 10},
    {kRecord, "30 03 02 01 01", "component 'e' must be present", 5},
    {kRecord, "30 0C 02 01 01 01 01 00 84 01 00 85 01 00", "extension group component 'i' must be present",
     14},
    {kRecord, "30 0C 02 01 01 80 01 00 80 01 00 01 01 00",
     "component b (tag=0x100000) present twice in SET/SEQUENCE", 10},
    {kSet, "31 02 05 00", "component 's' must be present", 4},
    {kOpenRecord<kOpen>, "30 06 02 01 01 04 01 FF", "unexpected tag 0x4 (expecting tag 0x1)\n", 7},
    // An ANY takes the element for itself, whatever its tag.
    {kOpenRecord<kTaggedOpen>, "30 06 02 01 01 01 01 FF", "unexpected tag 0x1 (expecting tag 0x100001)\n", 7},
};

TEST(BerDecode, RefusesForms) {
    for (const refusal& r : kRefusals) {
        SCOPED_TRACE(r.input);
        decoded result = decode(asn1_ber_decode, r.type, from_digits(r.input));
        EXPECT_EQ(result.consumed, -1);
        EXPECT_STREQ(result.error.message, r.message);
        EXPECT_EQ(result.error.bit_position, r.octets * 8);
    }
    EXPECT_EQ(live_blocks(), 0u);
}

// The order of the elements counts here, so nothing is sorted.
int64_t encode_unsorted(uint8_t** out, const asn1_type_desc* type, const void* value) {
    const asn1_ber_encode_params kPlain = {};
    return asn1_ber_encode(out, type, value, &kPlain);
}

TEST(BerDecode, SurvivesSpoiledInput) {
    for (const form& f : kForms) {
        SCOPED_TRACE(f.name);
        octets input = from_digits(f.input);
        for (size_t size = 0; size < input.size(); ++size) {
            decoded cut = decode(asn1_ber_decode, f.type, octets(input.begin(), input.begin() + size));
            EXPECT_EQ(cut.consumed, -1) << size;
        }
        spoil_bytes(input, [&](const octets& spoiled) {
            expect_whole_value(asn1_ber_decode, encode_unsorted, f.type, spoiled);
        });
        if (HasFailure()) return;
    }
    EXPECT_EQ(live_blocks(), 0u);
}

TEST(BerDecode, SurvivesFailingAllocations) {
    for (const form& f : kForms) {
        SCOPED_TRACE(f.name);
        octets input = from_digits(f.input);
        std::string expected = normal_digits(*f.der != '\0' ? f.der : f.input);
        for_each_failed_allocation([&] {
            decoded result = decode(asn1_ber_decode, f.type, input);
            if (result.consumed < 0) {
                EXPECT_TRUE(allocator_has_failed());
                EXPECT_STREQ(result.error.message, "not enough memory");
                return;
            }
            std::string digits = encode(asn1_der_encode, f.type, result.value.get());
            EXPECT_TRUE(digits == expected || (digits == "failed" && allocator_has_failed())) << digits;
        });
    }
}

}  // namespace
}  // namespace orlenta::test
