// SPDX-License-Identifier: Apache-2.0
// BER encoding: its parameters, the writers, and values that can't be encoded. What DER makes of a value stands with
// the forms of the decoder.
#include <orlenta/ber.h>

#include "tests/support/octet_codec.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {
namespace {

std::string encode_with(const asn1_ber_encode_params& params, const asn1_type_desc* type, const void* value) {
    auto function = [&](uint8_t** out, const asn1_type_desc* t, const void* v) {
        return asn1_ber_encode(out, t, v, &params);
    };
    return encode(function, type, value);
}

struct form {
    const char* name;
    const asn1_type_desc* type;
    const char* value;  // its DER
    asn1_ber_encode_params params;
    const char* encoding;
};

constexpr asn1_ber_encode_params kIndefinite = {1, 0, 0, 0};
constexpr asn1_ber_encode_params segments_of(int32_t octets) { return {0, octets, 0, 0}; }

const form kForms[] = {
    {"indefinite sequence", kRecord, "30 06 02 01 01 01 01 00", kIndefinite, "30 80 02 01 01 01 01 00 00 00"},
    {"indefinite tag", kExplicitChoice, "A2 02 05 00", kIndefinite, "A2 80 05 00 00 00"},
    {"indefinite open type", kOpenRecord<kTaggedOpen>, "30 07 02 01 02 A1 02 04 00", kIndefinite,
     "30 80 02 01 02 A1 80 04 00 00 00 00 00"},
    {"indefinite set of", kOctetsSet, "31 03 04 01 AA", {1, 0, 1, 1}, "31 80 04 01 AA 00 00"},
    {"indefinite segments", kOctets, "04 03 01 02 03", {1, 2, 0, 0}, "24 80 04 02 01 02 04 01 03 00 00"},
    {"one segment's octets", kOctets, "04 02 01 02", segments_of(2), "04 02 01 02"},
    {"one octet more", kOctets, "04 03 01 02 03", segments_of(2), "24 07 04 02 01 02 04 01 03"},
    {"segments under a tag", kTagged<1, kOctets>, "81 03 01 02 03", segments_of(2),
     "A1 07 04 02 01 02 04 01 03"},
    {"segments across units", kBmp, "1E 04 00 41 20 AC", segments_of(3), "3E 08 04 03 00 41 20 04 01 AC"},
    {"a negative size", kOctets, "04 03 01 02 03", segments_of(-1), "04 03 01 02 03"},
    // A BIT STRING is segmented one octet earlier.
    {"one segment's bits", kBits, "03 03 00 AA BB", segments_of(2), "23 08 03 02 00 AA 03 02 00 BB"},
    {"bits below a segment", kBits, "03 03 00 AA BB", segments_of(3), "03 03 00 AA BB"},
    {"bits in the last segment", kBits, "03 04 04 AA BB C0", segments_of(3),
     "23 09 03 03 00 AA BB 03 02 04 C0"},
    {"no bits", kBits, "03 01 00", segments_of(1), "03 01 00"},
    {"no room for bits", kBits, "03 02 00 AA", segments_of(1), "failed"},
    {"set in stored order", kSet, "31 08 01 01 FF 04 01 AA 05 00", {}, "31 08 04 01 AA 05 00 01 01 FF"},
    {"set of in stored order", kOctetsSet, "31 05 04 01 02 04 00", {}, "31 05 04 01 02 04 00"},
    {"set of alone sorted", kOctetsSet, "31 05 04 01 02 04 00", {0, 0, 0, 1}, "31 05 04 00 04 01 02"},
    {"empty set of", kOctetsSet, "31 00", {0, 0, 1, 1}, "31 00"},
};

TEST(BerEncode, FollowsItsParameters) {
    for (const form& f : kForms) {
        SCOPED_TRACE(f.name);
        decoded value = decode(asn1_ber_decode, f.type, from_digits(f.value));
        ASSERT_GE(value.consumed, 0);
        EXPECT_EQ(encode_with(f.params, f.type, value.value.get()), f.encoding);
    }
}

TEST(BerEncode, PutsShorterOfTwoAlikeFirst) {
    uint8_t bytes[] = {1, 0};
    asn1_open_value elements[] = {{nullptr, bytes, 2},
                                  {nullptr, bytes, 1},
                                  {nullptr, bytes, 0},
                                  {nullptr, bytes, 2},
                                  {nullptr, bytes, 1}};
    asn1_array list = {elements, 5};
    const asn1_word kAnySet[] = {head(ASN1_KIND_SET_OF, kLower, 17), num(0), num(24), ref(kAny), num(0)};
    EXPECT_EQ(encode(asn1_der_encode, kAnySet, &list), "31 06 01 01 01 00 01 00");
}

TEST(BerEncode, RefusesImpossibleValues) {
    uint32_t no_item = 4;
    EXPECT_EQ(encode(asn1_der_encode, kEnum, &no_item), "failed");
    uint32_t no_alternative[6] = {3};
    EXPECT_EQ(encode(asn1_der_encode, kChoice, no_alternative), "failed");
    EXPECT_EQ(encode(asn1_der_encode, kClass, &no_item), "failed");
    asn1_string endless = {nullptr, UINT64_C(1) << 63};
    asn1_array endless_list = {nullptr, UINT64_C(1) << 62};
    EXPECT_EQ(encode(asn1_der_encode, kBmp, &endless), "failed");
    EXPECT_EQ(encode(asn1_der_encode, kOctetsSet, &endless_list), "failed");

    decoded set = decode(asn1_ber_decode, kSet, from_digits("31 05 04 01 AA 05 00"));
    uint32_t* selector = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(set.value.get()) + 16);
    *selector = 3;
    EXPECT_EQ(encode(asn1_der_encode, kSet, set.value.get()), "failed");
}

// ---- writers ----------------------------------------------------------------------------------------------

struct written {
    asn1_byte_buffer buf;
    written() { asn1_byte_buffer_init(&buf); }
    ~written() { asn1_free(buf.data); }
    std::string digits() const { return to_digits(buf.data, buf.length); }
};

TEST(BerWriters, WriteNothingAfterAFailure) {
    written w;
    asn1_ber_put_tag(&w.buf, context(1), 0);
    w.buf.failed = 1;  // there is room for more
    asn1_ber_put_tag(&w.buf, context(31), 1);
    asn1_ber_put_len_end(&w.buf, asn1_ber_put_len_start(&w.buf));
    asn1_ber_put_len(&w.buf, 200);
    asn1_ber_encode_int32(&w.buf, 5);
    EXPECT_EQ(w.digits(), "81");
}

TEST(BerWriters, PutTags) {
    const struct {
        uint32_t tag;
        int constructed;
        const char* octets;
    } kTags[] = {{2, 0, "02"},
                 {16, 1, "30"},
                 {context(30), 0, "9E"},
                 {context(31), 1, "BF 1F"},
                 {context(127), 0, "9F 7F"},
                 {context(128), 0, "9F 81 00"},
                 {1 << ASN1_TAG_CLASS_SHIFT | 16383, 0, "5F FF 7F"},
                 {3 << ASN1_TAG_CLASS_SHIFT | 0x7FFFF, 0, "DF 9F FF 7F"}};
    for (const auto& t : kTags) {
        written w;
        asn1_ber_put_tag(&w.buf, t.tag, t.constructed);
        EXPECT_EQ(w.digits(), t.octets);
    }
}

TEST(BerWriters, PutLengthsAndNumbers) {
    const struct {
        uint32_t length;
        const char* octets;
    } kLengths[] = {{0, "00"},
                    {127, "7F"},
                    {128, "81 80"},
                    {255, "81 FF"},
                    {256, "82 01 00"},
                    {65536, "83 01 00 00"},
                    {1 << 24, "84 01 00 00 00"},
                    {UINT32_MAX, "84 FF FF FF FF"}};
    for (const auto& l : kLengths) {
        written w;
        asn1_ber_put_len(&w.buf, l.length);
        EXPECT_EQ(w.digits(), l.octets);
    }
    const struct {
        int32_t number;
        const char* octets;
    } kNumbers[] = {{0, "01 00"},
                    {-1, "01 FF"},
                    {127, "01 7F"},
                    {128, "02 00 80"},
                    {-128, "01 80"},
                    {-129, "02 FF 7F"},
                    {32768, "03 00 80 00"},
                    {8388607, "03 7F FF FF"},
                    {8388608, "04 00 80 00 00"},
                    {INT32_MIN, "04 80 00 00 00"}};
    for (const auto& n : kNumbers) {
        written w;
        EXPECT_EQ(asn1_ber_encode_int32(&w.buf, n.number), 0);
        EXPECT_EQ(w.digits(), n.octets);
    }
}

TEST(BerWriters, CloseFieldsOfEverySize) {
    for (uint64_t size : {0u, 1u, 127u, 128u, 255u, 256u, 65535u, 65536u, (1u << 24) - 1, 1u << 24}) {
        octets contents(size);
        for (uint64_t i = 0; i < size; ++i) contents[i] = static_cast<uint8_t>(i * 7 + 1);
        written w;
        asn1_put_bytes(&w.buf, "\x77", 1);
        uint32_t outer = asn1_ber_put_len_start(&w.buf);
        uint32_t inner = asn1_ber_put_len_start(&w.buf);
        asn1_put_bytes(&w.buf, contents.data(), size);
        EXPECT_EQ(asn1_ber_put_len_end(&w.buf, inner), w.buf.length);
        EXPECT_EQ(asn1_ber_put_len_end(&w.buf, outer), w.buf.length);

        written length, expected;
        asn1_ber_put_len(&length.buf, static_cast<uint32_t>(size));
        uint64_t whole = length.buf.length + size;
        asn1_put_bytes(&expected.buf, "\x77", 1);
        asn1_ber_put_len(&expected.buf, static_cast<uint32_t>(whole));
        asn1_ber_put_len(&expected.buf, static_cast<uint32_t>(size));
        asn1_put_bytes(&expected.buf, contents.data(), size);
        ASSERT_EQ(w.buf.length, expected.buf.length) << size;
        EXPECT_EQ(memcmp(w.buf.data, expected.buf.data, w.buf.length), 0) << size;
    }
}

}  // namespace
}  // namespace orlenta::test
