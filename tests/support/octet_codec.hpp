// SPDX-License-Identifier: Apache-2.0
// What the tests of the codecs do alike: decode and encode as one call each, and inputs spoiled in every way.
#pragma once

#include <gtest/gtest.h>
#include <orlenta/error.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <functional>
#include <memory>

#include "tests/support/octets.hpp"

namespace orlenta::test {

using decode_function = int64_t (*)(void**, const asn1_type_desc*, const uint8_t*, uint64_t, asn1_error*);
// Null or the encoding; the encoder's own parameters are bound in.
using encode_function = std::function<int64_t(uint8_t**, const asn1_type_desc*, const void*)>;

struct value_deleter {
    const asn1_type_desc* type;
    void operator()(void* value) const { asn1_free_value(type, value); }
};
using value_pointer = std::unique_ptr<void, value_deleter>;

struct decoded {
    value_pointer value{nullptr, {nullptr}};
    int64_t consumed;
    asn1_error error;
};

// The input is copied to a block of exactly its size, so that a sanitizer sees a read beyond.
inline decoded decode(decode_function function, const asn1_type_desc* type, const octets& input) {
    std::unique_ptr<uint8_t[]> exact(new uint8_t[input.size()]);
    std::copy(input.begin(), input.end(), exact.get());
    decoded result;
    asn1_error_init(&result.error);
    void* value = &result;
    result.consumed = function(&value, type, exact.get(), input.size(), &result.error);
    EXPECT_EQ(value == nullptr, result.consumed < 0);
    result.value = value_pointer(value, {type});
    return result;
}

// The digits of the encoding, or "failed".
inline std::string encode(const encode_function& function, const asn1_type_desc* type, const void* value) {
    uint8_t* data = nullptr;
    int64_t size = function(&data, type, value);
    if (size < 0) {
        EXPECT_EQ(data, nullptr);
        return "failed";
    }
    std::string digits = to_digits(data, static_cast<size_t>(size));
    asn1_free(data);
    return digits;
}

// Whatever is decoded from a spoiled input must be a value like any other: encoded and decoded again it is the same.
inline void expect_whole_value(decode_function decode_with, const encode_function& encode_with,
                               const asn1_type_desc* type, const octets& input) {
    decoded first = decode(decode_with, type, input);
    if (first.consumed < 0) return;
    EXPECT_LE(first.consumed, static_cast<int64_t>(input.size()));
    std::string digits = encode(encode_with, type, first.value.get());
    ASSERT_NE(digits, "failed") << to_digits(input);
    decoded second = decode(decode_with, type, from_digits(digits));
    ASSERT_GE(second.consumed, 0) << to_digits(input) << " gave " << digits << ": " << second.error.message;
    EXPECT_EQ(asn1_cmp_value(type, first.value.get(), second.value.get()), 0) << to_digits(input);
}

// Every byte with each of its bits changed, and with the values that mean most.
inline void spoil_bytes(const octets& input, const std::function<void(const octets&)>& check) {
    for (size_t i = 0; i < input.size(); ++i) {
        octets spoiled = input;
        for (int bit = 0; bit < 8; ++bit) {
            spoiled[i] = static_cast<uint8_t>(input[i] ^ 1 << bit);
            check(spoiled);
        }
        for (uint8_t byte : {0x00, 0x7F, 0x80, 0xFF}) {
            spoiled[i] = byte;
            check(spoiled);
        }
    }
}

}  // namespace orlenta::test
