// SPDX-License-Identifier: Apache-2.0
// Open types with table constraints, and the entry points that count in bits or fill the caller's record.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

const Type kMessage = kOpenRecord<kOpen>;  // the rows are (1, BOOLEAN) and (2, OCTET STRING)
const Type kOptionalId = sequence({{kIdType, "id", kOptional}, {kOpen, "value"}});

TEST(PerOpenTypes, ResolvedAndRaw) {
    expect_rows({
        {kMessage, "{id 1, value TRUE}", "x01 x01 1 0000000"},
        {kMessage, "{id 2, value 'ABCD'H}", "x02 x03 x02ABCD"},
        {kMessage, "{id 9, value 'ABCD'H}", "x09 x02 xABCD"},
        {kOptionalId, "{value 'A0'H}", "0 | x01 xA0"},
        // A SEQUENCE that came between is no longer around.
        {sequence({{kIdType, "id"}, {sequence({{kSmall, "x"}}), "inner"}, {kOpen, "value"}}),
         "{id 1, inner {x 7}, value TRUE}", "x01 111 | x01 1 0000000"},
    });
    expect_decoded(kUnaligned, kMessage, "x09 x00", "{id 9, value ''H}");
    expect_refused({{kUnaligned, kMessage, "x01 x00", "unexpected zero length", 16, "value"},
                    {kAligned, kMessage, "x02 x02 x02AB", "reading after end of stream", 16, "value"}});
    uint32_t eight = 8;
    const struct {
        uint32_t id, pad;
        asn1_open_value value;
    } bad = {1, 0, {kSmall, &eight, 0}};
    expect_encode_error(kUnaligned, kMessage, &bad, "integer outside range (8 0-7)", 0, "value");
}

// The size of no input: the bytes are there as far as the type goes.
TEST(PerEntryPoints, LargestSize) {
    const uint8_t bytes[] = {0x80, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    for (const Variant& variant : kVariants) {
        void* value = nullptr;
        EXPECT_EQ(variant.decode(&value, kBoolean, bytes, UINT64_MAX, nullptr), 1);
        asn1_free_value(kBoolean, value);
    }
}

// A key one level up is found, but not through the wall of an open type.
TEST(PerOpenTypes, KeyOfAnOuterSequence) {
    Words one_up(kTable, kTable + 9);
    one_up[6] = num(1);
    Type any = keep({head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(keep(one_up))});
    Type inner = sequence({{any, "value"}});
    Type direct = sequence({{kIdType, "id"}, {inner, "inner"}});
    Type walled = sequence({{kIdType, "id"}, {inner, "inner", kOptional, kAddition}}, kExt);
    expect_decoded(kUnaligned, direct, "x01 x01 x80", "{id 1, inner {value TRUE}}");
    decoded raw = decode(asn1_uper_decode, walled, bits("1 x01 0000000 1 x02 x0180"));
    ASSERT_NE(raw.value, nullptr) << raw.error.message;
    // Two presence words, the id, the inner record's presence word.
    const auto* open = reinterpret_cast<asn1_open_value*>(static_cast<uint8_t*>(raw.value.get()) + 32);
    EXPECT_EQ(open->type, nullptr);
    EXPECT_EQ(open->length, 1u);
}

// Inside an open type ALIGNED PER aligns to the open type's own start; 16K octets and more go in fragments.
TEST(PerOpenTypes, AlignmentAndFragments) {
    std::string digits = hex(octets(16384 + 5, 0x5A)).substr(1);
    std::string value = "{id 2, value '" + digits + "'H}";
    std::string contents = "C1" + digits.substr(0, 2 * 16384) + "05" + digits.substr(2 * 16384);
    std::string expected = "x02 xC1" + contents.substr(0, 2 * 16384) + "x07" + contents.substr(2 * 16384);
    expect_rows({{kMessage, value.c_str(), expected.c_str()},
                 {kOptionalId, value.c_str(), ("1 | " + expected).c_str()}});
}

// Each level is put together in the block of the one around it; what follows a level must be as it was.
TEST(PerOpenTypes, FragmentsWithinFragments) {
    Type type = sequence({{kSmall, "x"}, {kOctets, "in", kOptional, kAddition}}, kExt);
    std::string value = "{x 1, in '" + hex(octets(40000, 0x5A)).substr(1) + "'H}";
    for (int level = 2; level <= 4; ++level) {
        type = sequence(
            {{kSmall, "x"}, {type, "in", kOptional, kAddition}, {kOctets, "after", kOptional, kAddition}},
            kExt);
        value = "{x " + std::to_string(level) + ", in " + value + ", after 'C3A5'H}";
    }
    value_pointer whole = value_of(type, value);
    for (const Variant& variant : kVariants)
        expect_variant(variant, type, whole.get(), encoded(variant, type, whole.get()));
}

// ---- entry points -----------------------------------------------------------------------------------------

TEST(PerEntryPoints, WithoutErrorRecord) {
    uint32_t five = 5, eight = 8;
    uint8_t* out = nullptr;
    EXPECT_EQ(asn1_uper_encode(&out, kSmall, &five), 1);
    asn1_free(out);
    EXPECT_EQ(asn1_aper_encode(&out, kSmall, &eight), -1);
    EXPECT_EQ(out, nullptr);
    void* value = &five;
    EXPECT_EQ(asn1_uper_decode(&value, kSmall, nullptr, 0, nullptr), -1);
    EXPECT_EQ(value, nullptr);
    // On success the caller's record is left alone.
    asn1_error error = {7, 7, "path", "message"};
    EXPECT_EQ(asn1_uper_encode2(&out, kSmall, &five, &error), 1);
    asn1_free(out);
    EXPECT_STREQ(error.message, "message");
}

TEST(PerEntryPoints, EncodingCountsBits) {
    Type pair = sequence({{kSmall, "a"}, {integer(0, 511), "b"}});
    const struct {
        Type type;
        std::string value;
        int64_t size;
        int32_t bits;
    } rows[] = {{pair, "{a 5, b 300}", 2, 12},
                {kNull, "NULL", 1, 8},
                {kOctets, "'" + std::string(2000, '0') + "'H", 1002, 8 * 1002},
                {pair, "{a 5, b 512}", -1, 3},  // what had been put
                {pair, "{a 8, b 0}", -1, -1}};  // left alone where that is nothing
    for (const auto& row : rows) {
        value_pointer value = value_of(row.type, row.value);
        asn1_error error = {};
        for (asn1_error* record : {&error, static_cast<asn1_error*>(nullptr)}) {
            uint8_t* out = nullptr;
            int32_t count = -1;
            EXPECT_EQ(asn1_uper_encode2_ng(&out, row.type, value.get(), record, &count), row.size);
            EXPECT_EQ(count, row.bits);
            asn1_free(out);
        }
        EXPECT_EQ(error.bit_position, row.size < 0 ? std::max(row.bits, 0) : 0);
    }
    uint8_t* out = nullptr;
    EXPECT_EQ(asn1_uper_encode2_ng(&out, pair, value_of(pair, "{a 8, b 0}").get(), nullptr, nullptr), -1);
}

TEST(PerEntryPoints, DecodingFromABit) {
    const Type word = integer(0, 65535);
    octets data(1025);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(i * 37);
    // Offsets work modulo 8192.
    for (uint32_t start : {0u, 1u, 31u, 32u, 33u, 8184u, 8191u, 8192u}) {
        SCOPED_TRACE(start);
        uint32_t skipped = start % 8192, number = 0;
        void* value = nullptr;
        int32_t count = 0;
        asn1_error error = {};
        int64_t used = asn1_uper_decode_ng(&value, word, start, data.data(), data.size(), &error, &count);
        if (skipped + 16 > data.size() * 8) {
            EXPECT_EQ(used, -1);
            EXPECT_STREQ(error.message, "reading after end of stream");
            EXPECT_EQ(error.bit_position, static_cast<int32_t>(start));
            EXPECT_EQ(error.line, 0);
            continue;
        }
        for (size_t i = skipped; i < skipped + 16; ++i)
            number = number << 1 | (data[i / 8] >> (7 - i % 8) & 1);
        EXPECT_EQ(used, (skipped + 16 + 7) / 8);
        EXPECT_EQ(count, static_cast<int32_t>(skipped + 16) - static_cast<int32_t>(start));
        EXPECT_EQ(*static_cast<uint32_t*>(value), number);
        asn1_free_value(word, value);
    }
}

TEST(PerEntryPoints, DecodingFromABitAtTheEnd) {
    const uint8_t data[2] = {};
    void* value = nullptr;
    int32_t count = -1;
    EXPECT_EQ(asn1_uper_decode_ng(&value, kNull, 16, data, 2, nullptr, &count), 2);
    EXPECT_EQ(count, 0);
    asn1_free_value(kNull, value);
    asn1_error error = {7, 7, "path", "message"};
    EXPECT_EQ(asn1_uper_decode_ng(&value, kNull, 17, data, 2, &error, &count), -1);
    EXPECT_EQ(value, nullptr);
    EXPECT_STREQ(error.message, "");
    EXPECT_EQ(error.line, 0);
}

TEST(PerEntryPoints, DecodingToAnAddress) {
    asn1_string string = {};
    void* address = &string;
    const uint8_t data[] = {0x02, 0xAB, 0xCD, 0xFF};
    EXPECT_EQ(asn1_uper_decode_to_addr(&address, kOctets, data, 4), 3);
    EXPECT_EQ(string.length, 2u);
    asn1_free_value_struct(kOctets, &string);
    // A failure is a positive number, and leaves a partial value.
    for (int32_t size : {2, 0, -1}) {
        string = {};
        EXPECT_EQ(asn1_uper_decode_to_addr(&address, kOctets, data, size), 0xFFFFFFFF);
        EXPECT_EQ(string.data != nullptr, size == 2);
        asn1_free_value_struct(kOctets, &string);
    }
}

}  // namespace
}  // namespace orlenta::test
