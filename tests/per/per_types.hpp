// SPDX-License-Identifier: Apache-2.0
// Descriptors by their ASN.1 shape, and the expectations that the PER tests share. Values are given in the text of
// GSER, which knows nothing of bits.
#pragma once

#include <gtest/gtest.h>
#include <orlenta/gser.h>
#include <orlenta/per.h>
#include <string.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "tests/support/octet_codec.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {

// ---- descriptors ------------------------------------------------------------------------------------------

using Words = std::vector<asn1_word>;
using Type = const asn1_type_desc*;
constexpr uint32_t kOpens = ASN1_FIELD_ADDITION | ASN1_FIELD_OPENS_GROUP;
constexpr uint32_t kCloses = ASN1_FIELD_ADDITION | ASN1_FIELD_CLOSES_GROUP;
constexpr uint32_t kOptional = ASN1_OPTION_OPTIONAL, kDefault = ASN1_OPTION_DEFAULT;

// Descriptors stay until the program ends, so that one can refer to another.
inline Type keep(Words words) {
    static std::deque<Words> all;
    return all.emplace_back(std::move(words)).data();
}

inline Type integer(int64_t low, int64_t high, uint32_t flags = 0) {
    return keep({head(ASN1_KIND_INTEGER, kBounds | flags), num(low), num(high)});
}
inline Type at_least(int64_t low) { return keep({head(ASN1_KIND_INTEGER, kLower), num(low)}); }
inline Type at_most(int64_t high) { return keep({head(ASN1_KIND_INTEGER, kUpper), num(high)}); }
inline const asn1_word kInteger[] = {head(ASN1_KIND_INTEGER)};
inline const asn1_word kSmall[] = {head(ASN1_KIND_INTEGER, kBounds), num(0), num(7)};

// The words of a type with a size; `high` below 0: no upper bound.
inline Words sized(uint32_t kind, int64_t low, int64_t high, uint32_t flags) {
    Words words = {head(kind, flags | kLower | (high < 0 ? 0 : kUpper)), num(low)};
    if (high >= 0) words.push_back(num(high));
    return words;
}
inline Type octet_string(int64_t low, int64_t high, uint32_t flags = 0) {
    return keep(sized(ASN1_KIND_OCTET_STRING, low, high, flags));
}
inline Type bit_string(int64_t low, int64_t high, uint32_t flags = 0) {
    return keep(sized(ASN1_KIND_BIT_STRING, low, high, flags));
}
struct Letters {
    uint32_t first, last;
};
inline Type char_string(uint32_t type, int64_t low, int64_t high, std::vector<Letters> ranges,
                        uint32_t flags = 0) {
    Words words = sized(ASN1_KIND_CHAR_STRING, low, high, flags);
    words.insert(words.begin() + 1, num(type));
    words.push_back(num(static_cast<int64_t>(ranges.size())));
    for (Letters range : ranges) words.insert(words.end(), {num(range.first), num(range.last)});
    return keep(words);
}
inline Type list_of(Type element, int64_t low, int64_t high, uint32_t flags = 0, uint64_t stride = 0) {
    Words words = sized(ASN1_KIND_SEQUENCE_OF, low, high, flags);
    if (stride == 0) stride = static_cast<uint64_t>(asn1_get_size(element));
    words.insert(words.end(), {asn1_word{.number = stride}, ref(element), num(0)});
    return keep(words);
}

struct Component {
    Type type;
    const char* name;
    uint32_t option = ASN1_OPTION_MANDATORY, flags = 0;
    asn1_word by_default = num(0);
};
// Each component has eight bytes for its presence, used or not, and its value behind them.
inline Type sequence(const std::vector<Component>& components, uint32_t flags = 0,
                     uint32_t kind = ASN1_KIND_SEQUENCE) {
    Words words = {head(kind, flags), num(static_cast<int64_t>(components.size())), num(0)};
    uint32_t offset = 0;
    for (const Component& c : components) {
        asn1_word extra = c.option == kDefault ? c.by_default : num(offset);
        words.insert(words.end(), {field(offset + 8, c.option, c.flags), ref(c.type), extra, txt(c.name)});
        offset += 8 + (static_cast<uint32_t>(asn1_get_size(c.type)) + 7) / 8 * 8;
    }
    words[2] = num(std::max(offset, 1u));
    return keep(words);
}
// The last `extensions` alternatives stand behind a marker; below 0: there is none.
inline Type choice(int extensions, const std::vector<Component>& alternatives) {
    int64_t count = static_cast<int64_t>(alternatives.size()), size = 0;
    Words words = {head(ASN1_KIND_CHOICE, extensions < 0 ? 0 : kExt), num(count - std::max(extensions, 0))};
    if (extensions >= 0) words.push_back(num(extensions));
    for (const Component& a : alternatives) size = std::max(size, asn1_get_size(a.type));
    words.insert(words.end(), {num(8 + (size + 7) / 8 * 8), num(0), num(8)});
    for (const Component& a : alternatives) words.insert(words.end(), {ref(a.type), txt(a.name)});
    return keep(words);
}
// Items i0, i1 ...
inline Type enumerated(uint32_t root, int extensions) {
    static std::deque<std::string> names;
    Words words = {head(ASN1_KIND_ENUMERATED, extensions < 0 ? 0 : kExt), num(root)};
    if (extensions >= 0) words.push_back(num(extensions));
    for (uint32_t i = 0; i < root + static_cast<uint32_t>(std::max(extensions, 0)); ++i) {
        words.push_back(txt(names.emplace_back("i" + std::to_string(i)).c_str()));
    }
    return keep(words);
}

// ---- values and encodings as text -------------------------------------------------------------------------

inline value_pointer value_of(Type type, const std::string& text) {
    void* value = nullptr;
    asn1_error error = {};
    int64_t used =
        asn1_gser_decode(&value, type, reinterpret_cast<const uint8_t*>(text.data()), text.size(), &error);
    EXPECT_GE(used, 0) << text.substr(0, 80) << ": " << error.message;
    return value_pointer(value, {type});
}

// Bits in groups of 0 and 1, octets as x and hexadecimal digits, | for an octet boundary in ALIGNED PER alone. The
// last octet is filled up.
inline octets bits(const std::string& text, bool aligned = true) {
    std::string all;
    bool in_octets = false;
    for (char c : text) {
        if (isxdigit(static_cast<unsigned char>(c)) && in_octets) {
            for (int bit = 3; bit >= 0; --bit)
                all += std::stoi(std::string(1, c), nullptr, 16) >> bit & 1 ? '1' : '0';
            continue;
        }
        in_octets = c == 'x';
        if (c == '|' && aligned) all.resize((all.size() + 7) / 8 * 8, '0');
        if (c == '0' || c == '1') all += c;
    }
    octets bytes((all.size() + 7) / 8);
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i] == '1') bytes[i / 8] |= static_cast<uint8_t>(0x80 >> i % 8);
    }
    return bytes;
}
inline std::string hex(const octets& bytes) {
    std::string text = "x" + to_digits(bytes);
    std::erase(text, ' ');
    return text;
}

// ---- expectations -----------------------------------------------------------------------------------------

struct Variant {
    bool aligned;
    int64_t (*encode)(uint8_t**, const asn1_type_desc*, const void*, asn1_error*);
    decode_function decode;
};
constexpr Variant kUnaligned = {false, asn1_uper_encode2, asn1_uper_decode};
constexpr Variant kAligned = {true, asn1_aper_encode2, asn1_aper_decode};
constexpr Variant kVariants[] = {kUnaligned, kAligned};

inline octets encoded(const Variant& variant, Type type, const void* value) {
    uint8_t* out = nullptr;
    asn1_error error = {};
    int64_t size = variant.encode(&out, type, value, &error);
    EXPECT_GE(size, 0) << error.message << " at " << error.path;
    octets bytes(out, out + (size < 0 ? 0 : size));
    asn1_free(out);
    return bytes;
}

// Both directions of one variant: the bytes, the value that comes back, and that no part of the bytes can be missed.
// Of long ones only a few truncations are tried.
inline void expect_variant(const Variant& variant, Type type, const void* value, const octets& expected) {
    SCOPED_TRACE(variant.aligned ? "aligned" : "unaligned");
    octets bytes = encoded(variant, type, value);
    if (bytes != expected) {
        auto at =
            std::mismatch(bytes.begin(), bytes.end(), expected.begin(), expected.end()).first - bytes.begin();
        bytes.resize(std::min<size_t>(bytes.size(), 64));
        ADD_FAILURE() << "byte " << at << " of " << expected.size() << " differs: " << to_digits(bytes);
    }
    decoded back = decode(variant.decode, type, expected);
    // Where nothing is sent there is one octet all the same, and none is needed to decode (X.691 clause 11.1.3).
    if (back.consumed == 0 && expected == octets{0}) return;
    ASSERT_EQ(back.consumed, static_cast<int64_t>(expected.size())) << back.error.message << back.error.path;
    EXPECT_EQ(asn1_cmp_value(type, value, back.value.get()), 0);
    for (size_t size = 0; size < expected.size(); size += 1 + expected.size() / 500) {
        decoded cut = decode(variant.decode, type,
                             octets(expected.begin(), expected.begin() + static_cast<long>(size)));
        ASSERT_EQ(cut.consumed, -1) << "cut to " << size << " of " << expected.size() << " bytes";
        EXPECT_STREQ(cut.error.message, "reading after end of stream");
    }
}
// `aper` null: as UNALIGNED, but for the alignment that the text itself tells.
inline void expect_per(Type type, const void* value, const std::string& uper, const char* aper = nullptr) {
    SCOPED_TRACE(uper.substr(0, 60));
    expect_variant(kUnaligned, type, value, bits(uper, false));
    expect_variant(kAligned, type, value, bits(aper ? aper : uper));
}

// One row of a table of both directions.
struct Row {
    Type type;
    const char *value, *uper, *aper = nullptr;
};
inline void expect_rows(const std::vector<Row>& rows) {
    for (const Row& row : rows) expect_per(row.type, value_of(row.type, row.value).get(), row.uper, row.aper);
}

// What a decoder takes though an encoder does not write it.
inline void expect_decoded(const Variant& variant, Type type, const std::string& in, const char* value) {
    SCOPED_TRACE(in);
    octets bytes = bits(in, variant.aligned);
    decoded result = decode(variant.decode, type, bytes);
    ASSERT_GE(result.consumed, 0) << result.error.message;
    EXPECT_EQ(asn1_cmp_value(type, value_of(type, value).get(), result.value.get()), 0);
}

// Where no message is given the record must stay empty.
inline void expect_error(const asn1_error& error, const char* message, int bit_position, const char* path) {
    EXPECT_EQ(error.line, 1);
    EXPECT_STREQ(error.message, message);
    EXPECT_EQ(error.bit_position, bit_position);
    EXPECT_STREQ(error.path, path);
}
inline void expect_encode_error(const Variant& variant, Type type, const void* value, const char* message,
                                int bit_position = 0, const char* path = "") {
    SCOPED_TRACE(message);
    uint8_t* out = reinterpret_cast<uint8_t*>(&out);
    asn1_error error = {};
    EXPECT_EQ(variant.encode(&out, type, value, &error), -1);
    EXPECT_EQ(out, nullptr);
    expect_error(error, message, bit_position, path);
}
inline void expect_encode_error(const Variant& variant, Type type, const char* value, const char* message,
                                int bit_position = 0, const char* path = "") {
    expect_encode_error(variant, type, static_cast<const void*>(value_of(type, value).get()), message,
                        bit_position, path);
}

struct Refusal {
    Variant variant;
    Type type;
    const char *in, *message;
    int bit_position;
    const char* path = "";
};
inline void expect_refused(const std::vector<Refusal>& rows) {
    for (const Refusal& row : rows) {
        SCOPED_TRACE(std::string(row.in) + (row.variant.aligned ? " aligned" : " unaligned"));
        decoded result = decode(row.variant.decode, row.type, bits(row.in, row.variant.aligned));
        EXPECT_EQ(result.consumed, -1);
        expect_error(result.error, row.message, row.bit_position, row.path);
    }
}

}  // namespace orlenta::test
