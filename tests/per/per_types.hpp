// Descriptors by their ASN.1 shape, and the expectations that the PER tests share.
#pragma once

#include <gtest/gtest.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/descriptors.hpp"

namespace orlenta::test {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<asn1_word>;

// ---- descriptors ------------------------------------------------------------------------------------------

constexpr uint32_t kExt = ASN1_WORD0_EXTENSIBLE;
constexpr uint32_t kLower = ASN1_WORD0_HAS_LOWER;
constexpr uint32_t kUpper = ASN1_WORD0_HAS_UPPER;
constexpr uint32_t kAddition = ASN1_FIELD_ADDITION;
constexpr uint32_t kOpens = ASN1_FIELD_ADDITION | ASN1_FIELD_OPENS_GROUP;
constexpr uint32_t kCloses = ASN1_FIELD_ADDITION | ASN1_FIELD_CLOSES_GROUP;

inline Words integer(int64_t low, int64_t high, uint32_t flags = 0) {
    return {head(ASN1_KIND_INTEGER, kBounds | flags), num(low), num(high)};
}
// BIT STRING or OCTET STRING; `high` below 0: no upper bound.
inline Words string_of(uint32_t kind, int64_t low, int64_t high, uint32_t flags = 0) {
    Words words = {head(kind, flags | kLower | (high < 0 ? 0 : kUpper)), num(low)};
    if (high >= 0) words.push_back(num(high));
    return words;
}
struct Range {
    uint32_t first, last;
};
inline Words char_string(uint32_t string_type, int64_t low, int64_t high, std::vector<Range> ranges,
                         uint32_t flags = 0) {
    Words words = string_of(ASN1_KIND_CHAR_STRING, low, high, flags);
    words.insert(words.begin() + 1, num(string_type));
    words.push_back(num(static_cast<int64_t>(ranges.size())));
    for (Range range : ranges) words.insert(words.end(), {num(range.first), num(range.last)});
    return words;
}
inline Words list_type(int64_t low, int64_t high, uint64_t stride, const Words& element, uint32_t flags = 0) {
    Words words = string_of(ASN1_KIND_SEQUENCE_OF, low, high, flags);
    words.insert(words.end(), {asn1_word{.number = stride}, ref(element.data()), num(0)});
    return words;
}

struct Component {
    asn1_word flags;
    const Words& type;
    asn1_word extra;
    const char* name;
};
inline Words sequence(size_t size, std::initializer_list<Component> components, uint32_t flags = 0,
                      uint32_t kind = ASN1_KIND_SEQUENCE) {
    Words words = {head(kind, flags), num(static_cast<int64_t>(components.size())),
                   num(static_cast<int64_t>(size))};
    for (const Component& c : components) {
        words.insert(words.end(), {c.flags, ref(c.type.data()), c.extra, txt(c.name)});
    }
    return words;
}
// OPTIONAL at `offset`, its presence word 4 bytes before it unless said otherwise.
inline Component optional(uint32_t offset, const Words& type, const char* name, uint32_t flags = 0) {
    return {field(offset, ASN1_OPTION_OPTIONAL, flags), type, num(offset - 4), name};
}
inline Component mandatory(uint32_t offset, const Words& type, const char* name, uint32_t flags = 0) {
    return {field(offset, ASN1_OPTION_MANDATORY, flags), type, num(flags ? offset - 4 : 0), name};
}
inline Component defaulted(uint32_t offset, const Words& type, int64_t value, const char* name,
                           uint32_t flags = 0) {
    return {field(offset, ASN1_OPTION_DEFAULT, flags), type, num(value), name};
}

struct Alternative {
    const Words& type;
    const char* name;
};
// `extensions` below 0: no extension marker. Selector at 0, payload at `payload`.
inline Words choice(size_t size, uint32_t payload, int extensions,
                    std::initializer_list<Alternative> alternatives) {
    int64_t root = static_cast<int64_t>(alternatives.size()) - (extensions > 0 ? extensions : 0);
    Words words = {head(ASN1_KIND_CHOICE, extensions < 0 ? 0 : kExt), num(root)};
    if (extensions >= 0) words.push_back(num(extensions));
    words.insert(words.end(), {num(static_cast<int64_t>(size)), num(0), num(payload)});
    for (const Alternative& a : alternatives) words.insert(words.end(), {ref(a.type.data()), txt(a.name)});
    return words;
}
inline Words enumerated(uint32_t root, int extensions) {
    Words words = {head(ASN1_KIND_ENUMERATED, extensions < 0 ? 0 : kExt), num(root)};
    if (extensions >= 0) words.push_back(num(extensions));
    words.resize(words.size() + root + (extensions > 0 ? extensions : 0), txt("item"));
    return words;
}

inline const Words kBoolean = {head(ASN1_KIND_BOOLEAN)};
inline const Words kNull = {head(ASN1_KIND_NULL)};
inline const Words kReal = {head(ASN1_KIND_REAL)};
inline const Words kOid = {head(ASN1_KIND_OBJECT_IDENTIFIER)};
inline const Words kUtf8 = {head(ASN1_KIND_CHAR_STRING), num(ASN1_STRING_UTF8)};
inline const Words kOctets = string_of(ASN1_KIND_OCTET_STRING, 0, -1);
inline const Words kByte = integer(0, 255);

inline asn1_string str(const std::string& text) {
    return {reinterpret_cast<uint8_t*>(const_cast<char*>(text.data())), text.size()};
}
inline asn1_string str(const Bytes& bytes) { return {const_cast<uint8_t*>(bytes.data()), bytes.size()}; }

// ---- encodings as text ------------------------------------------------------------------------------------

// Bits in groups of 0 and 1, octets as x and hexadecimal digits, | for an octet boundary in ALIGNED PER. The last
// octet is filled up.
inline Bytes bits(const std::string& text) {
    std::string all;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == 'x') {
            for (++i; i < text.size() && isxdigit(static_cast<unsigned char>(text[i])); ++i) {
                int digit = std::stoi(text.substr(i, 1), nullptr, 16);
                for (int bit = 3; bit >= 0; --bit) all += digit >> bit & 1 ? '1' : '0';
            }
            --i;
        } else if (text[i] == '|') {
            all.resize((all.size() + 7) / 8 * 8, '0');
        } else if (text[i] != ' ') {
            all += text[i];
        }
    }
    all.resize((all.size() + 7) / 8 * 8, '0');
    Bytes bytes;
    for (size_t i = 0; i < all.size(); i += 8) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(all.substr(i, 8), nullptr, 2)));
    }
    return bytes;
}
inline std::string hex(const Bytes& bytes) {
    std::string text = "x";
    for (uint8_t byte : bytes)
        text += std::string(1, "0123456789ABCDEF"[byte >> 4]) + "0123456789ABCDEF"[byte & 15];
    return text;
}

// Of long ones only the beginning of the difference is shown.
inline void expect_same_bytes(const Bytes& actual, const Bytes& expected) {
    auto [a, b] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (a == actual.end() && b == expected.end()) return;
    auto show = [](const Bytes& all, Bytes::const_iterator at) {
        return hex(Bytes(at, at + std::min<std::ptrdiff_t>(64, all.end() - at)));
    };
    ADD_FAILURE() << "at byte " << a - actual.begin() << " " << show(actual, a) << "\ninstead of "
                  << show(expected, b);
}

// ---- encoding and decoding --------------------------------------------------------------------------------

inline int64_t per_encode(bool aligned, uint8_t** out, const Words& type, const void* value,
                          asn1_error* error = nullptr) {
    return aligned ? asn1_aper_encode2(out, type.data(), value, error)
                   : asn1_uper_encode2(out, type.data(), value, error);
}
inline int64_t per_decode(bool aligned, void** out, const Words& type, const Bytes& in,
                          asn1_error* error = nullptr) {
    return aligned ? asn1_aper_decode(out, type.data(), in.data(), in.size(), error)
                   : asn1_uper_decode(out, type.data(), in.data(), in.size(), error);
}

// A decoded value.
struct Decoded {
    const Words type;
    void* value = nullptr;
    asn1_error error = {};
    int64_t used;
    Decoded(bool aligned, const Words& t, const Bytes& in)
        : type(t), used(per_decode(aligned, &value, t, in, &error)) {}
    ~Decoded() { asn1_free_value(type.data(), value); }
    Decoded(const Decoded&) = delete;
    template <typename T>
    const T& as() const {
        return *static_cast<const T*>(value);
    }
};

inline Bytes encoded(bool aligned, const Words& type, const void* value) {
    uint8_t* out = nullptr;
    asn1_error error = {};
    int64_t size = per_encode(aligned, &out, type, value, &error);
    EXPECT_GE(size, 0) << error.message << " at " << error.path;
    Bytes bytes(out, out + (size < 0 ? 0 : size));
    asn1_free(out);
    return bytes;
}

// Each shorter piece of an encoding must be refused, in whatever place it breaks off. Of long ones only a few are
// tried.
inline void expect_no_truncation(bool aligned, const Words& type, const Bytes& whole) {
    size_t step = 1 + whole.size() / 500;
    for (size_t size = 0; size < whole.size(); size += step) {
        Bytes piece(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        Decoded decoded(aligned, type, piece);
        EXPECT_EQ(decoded.used, -1) << "cut to " << size << " of " << whole.size() << " bytes";
        EXPECT_EQ(decoded.value, nullptr);
        EXPECT_STREQ(decoded.error.message, "reading after end of stream");
        if (decoded.used != -1) return;
    }
}

// Both directions of one variant: the bytes, the value that comes back, and that no part of the bytes can be missed.
inline void expect_variant(bool aligned, const Words& type, const void* value, const Bytes& expected) {
    SCOPED_TRACE(aligned ? "aligned" : "unaligned");
    expect_same_bytes(encoded(aligned, type, value), expected);
    Decoded decoded(aligned, type, expected);
    ASSERT_EQ(decoded.used, static_cast<int64_t>(expected.size()))
        << decoded.error.message << decoded.error.path;
    EXPECT_EQ(asn1_cmp_value(type.data(), value, decoded.value), 0);
    expect_no_truncation(aligned, type, expected);
}
inline void expect_per(const Words& type, const void* value, const std::string& uper,
                       const std::string& aper) {
    expect_variant(false, type, value, bits(uper));
    expect_variant(true, type, value, bits(aper));
}

// Without a message (null) the encoder's record must stay empty.
inline void expect_encode_error(bool aligned, const Words& type, const void* value, const char* message,
                                int bit_position = 0, const char* path = "") {
    SCOPED_TRACE(message ? message : "(no message)");
    uint8_t* out = reinterpret_cast<uint8_t*>(&out);
    asn1_error error = {};
    EXPECT_EQ(per_encode(aligned, &out, type, value, &error), -1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(error.line, 1);
    EXPECT_STREQ(error.message, message ? message : "");
    EXPECT_EQ(error.bit_position, bit_position);
    EXPECT_STREQ(error.path, path);
}
inline void expect_decode_error(bool aligned, const Words& type, const std::string& in, const char* message,
                                int bit_position, const char* path = "") {
    SCOPED_TRACE(in.substr(0, 40) + (aligned ? " aligned" : " unaligned"));
    Decoded decoded(aligned, type, bits(in));
    EXPECT_EQ(decoded.used, -1);
    EXPECT_EQ(decoded.value, nullptr);
    EXPECT_EQ(decoded.error.line, 1);
    EXPECT_STREQ(decoded.error.message, message);
    EXPECT_EQ(decoded.error.bit_position, bit_position);
    EXPECT_STREQ(decoded.error.path, path);
}

}  // namespace orlenta::test
