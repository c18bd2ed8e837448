// Open types with table constraints, and the entry points that count in bits or fill the caller's record.
#include "tests/per/per_types.hpp"

namespace orlenta::test {
namespace {

const Words kSmall = integer(0, 7);

// Message ::= SEQUENCE { id CLASS.&id ({Set}), value CLASS.&Type ({Set}{@id}) }
struct Message {
    uint32_t id_present, id;
    asn1_open_value value;
};
struct OpenTypes {
    uint32_t ids[4] = {1, 2, 3, 3};
    Words id = integer(0, 255);
    Words object_class = {head(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME),
                          num(2),  //
                          num(ASN1_CLASS_FIELD_VALUE),
                          ref(id.data()),
                          num(0),
                          txt("&id"),  //
                          num(ASN1_CLASS_FIELD_TYPE),
                          num(0),
                          num(0),
                          txt("&Type"),
                          txt("CLASS")};
    Words rows = {at(&ids[0]), ref(kSmall.data()), at(&ids[1]), ref(kOctets.data()),
                  at(&ids[2]), ref(kSmall.data()), at(&ids[3]), ref(kOctets.data())};
    Words constraint = {num(ASN1_CONSTRAINT_TABLE),
                        ref(object_class.data()),
                        num(1),
                        ref(rows.data()),
                        num(4),
                        num(1),
                        num(0),
                        num(ASN1_SELECTOR_LAST),
                        num(0)};
    Words any = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(constraint.data())};
    Words message = sequence(sizeof(Message), {mandatory(offsetof(Message, id), id, "id"),
                                               mandatory(offsetof(Message, value), any, "value")});
    Words optional_id = sequence(sizeof(Message), {optional(offsetof(Message, id), id, "id"),
                                                   mandatory(offsetof(Message, value), any, "value")});
    static asn1_word at(const uint32_t* value) { return {.address = value}; }
};
const OpenTypes kOpen;

TEST(PerOpenTypes, Resolved) {
    uint32_t five = 5;
    Message small = {0, 1, {kSmall.data(), &five, 0}};
    expect_per(kOpen.message, &small, "x01 x01 101 00000", "x01 x01 101 00000");
    const Bytes data = {0xAB, 0xCD};
    asn1_string octets = str(data);
    Message string = {0, 2, {kOctets.data(), &octets, 0}};
    expect_per(kOpen.message, &string, "x02 x03 x02ABCD", "x02 x03 x02ABCD");
    expect_decode_error(false, kOpen.message, "x01 x00", "unexpected zero length", 16, "value");
    expect_decode_error(true, kOpen.message, "x02 x02 x02AB", "reading after end of stream", 16, "value");
    five = 8;
    expect_encode_error(false, kOpen.message, &small, "integer outside range (8 0-7)", 0, "value");
}

// An unknown key, one that two rows have, and none at all: the octets stay as they are.
TEST(PerOpenTypes, Unresolved) {
    const Bytes data = {0xAB, 0xCD};
    for (uint32_t id : {9u, 3u}) {
        Message message = {0, id, {nullptr, const_cast<uint8_t*>(data.data()), data.size()}};
        std::string expected = (id == 9 ? "x09 " : "x03 ") + std::string("x02 xABCD");
        expect_per(kOpen.message, &message, expected, expected);
    }
    Decoded absent(false, kOpen.optional_id, bits("0 x01 xA0"));
    EXPECT_EQ(absent.as<Message>().value.type, nullptr);
    EXPECT_EQ(absent.as<Message>().value.length, 1u);
    Decoded empty(false, kOpen.message, bits("x09 x00"));
    EXPECT_EQ(empty.used, 2);
    EXPECT_EQ(empty.as<Message>().value.length, 0u);
}

// A SEQUENCE that came between is no longer around.
TEST(PerOpenTypes, KeyBeforeAnotherSequence) {
    struct Between {
        uint32_t inner, id;
        asn1_open_value value;
    };
    Words inner = sequence(4, {mandatory(0, kSmall, "x")});
    Words type = sequence(sizeof(Between), {mandatory(offsetof(Between, id), kOpen.id, "id"),
                                            mandatory(offsetof(Between, inner), inner, "inner"),
                                            mandatory(offsetof(Between, value), kOpen.any, "value")});
    Decoded decoded(false, type, bits("x01 111 x01 xA0"));
    EXPECT_EQ(decoded.as<Between>().value.type, kSmall.data());
}

// A key one level up is found, but not through the wall of an open type.
TEST(PerOpenTypes, KeyOfAnOuterSequence) {
    Words constraint = kOpen.constraint;
    constraint[6] = num(1);
    Words any = {head(ASN1_KIND_ANY, ASN1_WORD0_CONSTRAINED), ref(constraint.data())};
    Words inner = sequence(24, {mandatory(0, any, "value")});
    Words outer = sequence(sizeof(Message), {mandatory(offsetof(Message, id), kOpen.id, "id"),
                                             mandatory(offsetof(Message, value), inner, "inner")});
    Words walled = sequence(sizeof(Message),
                            {mandatory(offsetof(Message, id), kOpen.id, "id"),
                             optional(offsetof(Message, value), inner, "inner", kAddition)},
                            kExt);
    walled[9] = num(0);  // the presence word is the first one
    Decoded direct(false, outer, bits("x01 x01 xA0"));
    EXPECT_EQ(direct.as<Message>().value.type, kSmall.data());
    Decoded nested(false, walled, bits("1 x01 0000000 1 x02 x01A0"));
    ASSERT_GT(nested.used, 0) << nested.error.message;
    EXPECT_EQ(nested.as<Message>().value.type, nullptr);
}

// Inside an open type ALIGNED PER aligns to the open type's own start; 16K octets and more go in fragments.
TEST(PerOpenTypes, AlignmentAndFragments) {
    Bytes data(16384 + 5, 0x5A);
    asn1_string octets = str(data);
    Message message = {0, 2, {kOctets.data(), &octets, 0}};
    Bytes contents = bits("xC1" + hex(Bytes(16384, 0x5A)).substr(1) + " x05 x5A5A5A5A5A");
    ASSERT_EQ(contents.size(), 16384u + 7);
    Bytes first(contents.begin(), contents.begin() + 16384), rest(contents.begin() + 16384, contents.end());
    std::string expected = "x02 xC1 " + hex(first) + " x07 " + hex(rest);
    expect_per(kOpen.message, &message, expected, expected);
    std::string shifted = "1 x02 xC1 " + hex(first) + " x07 " + hex(rest);
    message.id_present = 1;
    expect_per(kOpen.optional_id, &message, shifted, "1 | " + expected);
}

// ---- entry points -----------------------------------------------------------------------------------------

TEST(PerEntryPoints, WithoutErrorRecord) {
    uint32_t five = 5, eight = 8;
    uint8_t* out = nullptr;
    EXPECT_EQ(asn1_uper_encode(&out, kSmall.data(), &five), 1);
    EXPECT_EQ(out[0], 0xA0);
    asn1_free(out);
    EXPECT_EQ(asn1_aper_encode(&out, kSmall.data(), &eight), -1);
    EXPECT_EQ(out, nullptr);
    void* value = &five;
    EXPECT_EQ(asn1_uper_decode(&value, kSmall.data(), nullptr, 0, nullptr), -1);
    EXPECT_EQ(value, nullptr);
    // On success the caller's record is left alone.
    asn1_error error = {7, 7, "path", "message"};
    EXPECT_EQ(asn1_uper_encode2(&out, kSmall.data(), &five, &error), 1);
    asn1_free(out);
    EXPECT_STREQ(error.message, "message");
}

TEST(PerEntryPoints, EncodingCountsBits) {
    Words pair = sequence(8, {mandatory(0, kSmall, "a"), mandatory(4, integer(0, 511), "b")});
    const Words wide = integer(0, 511);
    pair[8] = ref(wide.data());
    uint32_t value[2] = {5, 300};
    uint8_t* out = nullptr;
    int32_t count = -1;
    asn1_error error = {};
    EXPECT_EQ(asn1_uper_encode2_ng(&out, pair.data(), value, &error, &count), 2);
    EXPECT_EQ(count, 12);
    asn1_free(out);
    EXPECT_EQ(asn1_uper_encode2_ng(&out, kNull.data(), value, &error, &count), 1);
    EXPECT_EQ(count, 8);
    asn1_free(out);
    const Bytes data(1000);
    asn1_string octets = str(data);
    EXPECT_EQ(asn1_uper_encode2_ng(&out, kOctets.data(), &octets, &error, &count), 1002);
    EXPECT_EQ(count, 8 * 1002);
    asn1_free(out);
    value[1] = 512;
    EXPECT_EQ(asn1_uper_encode2_ng(&out, pair.data(), value, &error, &count), -1);
    EXPECT_EQ(count, 3);  // what had been put
    EXPECT_EQ(error.bit_position, 3);
    count = -1;
    value[0] = 8;
    EXPECT_EQ(asn1_uper_encode2_ng(&out, pair.data(), value, nullptr, &count), -1);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(asn1_uper_encode2_ng(&out, pair.data(), value, nullptr, nullptr), -1);
}

TEST(PerEntryPoints, DecodingFromABit) {
    const Words word = integer(0, 65535);
    Bytes data(1025, 0);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(i * 37);
    auto at_bit = [&](size_t bit) {
        uint32_t number = 0;
        for (size_t i = bit; i < bit + 16; ++i) number = number << 1 | (data[i / 8] >> (7 - i % 8) & 1);
        return number;
    };
    // Offsets work modulo 8192.
    for (uint32_t start : {0u, 1u, 31u, 32u, 33u, 100u, 8160u, 8184u, 8191u, 8192u}) {
        SCOPED_TRACE(start);
        uint32_t skipped = start % 8192;
        void* value = nullptr;
        int32_t count = 0;
        asn1_error error = {};
        int64_t used =
            asn1_uper_decode_ng(&value, word.data(), start, data.data(), data.size(), &error, &count);
        if (skipped + 16 > data.size() * 8) {
            EXPECT_EQ(used, -1);
            EXPECT_STREQ(error.message, "reading after end of stream");
            EXPECT_EQ(error.bit_position, static_cast<int32_t>(start));
            EXPECT_EQ(error.line, 0);
            continue;
        }
        EXPECT_EQ(used, (skipped + 16 + 7) / 8);
        EXPECT_EQ(count, static_cast<int32_t>(skipped + 16) - static_cast<int32_t>(start));
        EXPECT_EQ(*static_cast<uint32_t*>(value), at_bit(skipped));
        asn1_free_value(word.data(), value);
    }
}

TEST(PerEntryPoints, DecodingFromABitAtTheEnd) {
    const uint8_t data[2] = {};
    void* value = nullptr;
    int32_t count = -1;
    EXPECT_EQ(asn1_uper_decode_ng(&value, kNull.data(), 16, data, 2, nullptr, &count), 2);
    EXPECT_EQ(count, 0);
    asn1_free_value(kNull.data(), value);
    asn1_error error = {7, 7, "path", "message"};
    EXPECT_EQ(asn1_uper_decode_ng(&value, kNull.data(), 17, data, 2, &error, &count), -1);
    EXPECT_EQ(value, nullptr);
    EXPECT_STREQ(error.message, "");
    EXPECT_EQ(error.line, 0);
}

TEST(PerEntryPoints, DecodingToAnAddress) {
    asn1_string string = {};
    void* address = &string;
    const uint8_t data[] = {0x02, 0xAB, 0xCD, 0xFF};
    EXPECT_EQ(asn1_uper_decode_to_addr(&address, kOctets.data(), data, 4), 3);
    EXPECT_EQ(string.length, 2u);
    asn1_free_value_struct(kOctets.data(), &string);
    // A failure is a positive number, and leaves a partial value.
    for (int32_t size : {2, 0, -1}) {
        string = {};
        EXPECT_EQ(asn1_uper_decode_to_addr(&address, kOctets.data(), data, size), 0xFFFFFFFF);
        EXPECT_EQ(string.data != nullptr, size == 2);
        asn1_free_value_struct(kOctets.data(), &string);
    }
}

}  // namespace
}  // namespace orlenta::test
