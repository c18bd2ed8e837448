// Values nested without end, and threads whose stack is small or large.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "tests/support/octet_codec.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {

// Tree ::= SEQUENCE OF Tree
inline const asn1_word kTree[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(16), ref(kTree),
                                  num(0)};

// Chain ::= SEQUENCE { next [0] Chain OPTIONAL }
extern const asn1_word kChain[7];
inline const asn1_word kLink[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(kChain)};
inline const asn1_word kChain[7] = {head(ASN1_KIND_SEQUENCE, 0, 16),
                                    num(1),
                                    num(16),
                                    field(8, ASN1_OPTION_OPTIONAL),
                                    ref(kLink),
                                    num(0),
                                    txt("next")};

// A million levels are more than any stack here bears.
constexpr size_t kTooDeep = 1000000;

// The deepest level at which `succeeds` holds, if it holds up to there and no further.
inline size_t find_depth(const std::function<bool(size_t)>& succeeds) {
    size_t good = 1, bad = kTooDeep;
    while (bad - good > 1) {
        size_t middle = (good + bad) / 2;
        (succeeds(middle) ? good : bad) = middle;
    }
    return good;
}

// Runs `body` on a thread with a stack of `size` bytes.
inline void run_on_stack(size_t size, const std::function<void()>& body) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    pthread_t thread;
    auto start = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, start, const_cast<std::function<void()>*>(&body)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

constexpr size_t kSmallStack = 256 << 10, kLargeStack = 8 << 20;

// On the main thread, which grows, and on small and large stacks of fixed size.
inline void run_on_all_stacks(const std::function<void(size_t)>& body) {
    body(kLargeStack);
    for (size_t size : {kSmallStack, kLargeStack}) run_on_stack(size, [&] { body(size); });
}

// A recursive type goes as deep as the stack bears, and what is too deep for that is an error that says
// so. `input` makes an encoding of some depth.
inline void expect_graceful_depth(decode_function decode_with, const encode_function& encode_with,
                                  const asn1_type_desc* type, const std::function<octets(size_t)>& input,
                                  size_t stack_size) {
    size_t depth = find_depth([&](size_t n) { return decode(decode_with, type, input(n)).consumed > 0; });
    // A kilobyte a level would be much, even of the part that a sanitizer leaves.
    EXPECT_GT(depth, stack_size / 8 / 1024);
    decoded beyond = decode(decode_with, type, input(kTooDeep));
    EXPECT_EQ(beyond.consumed, -1);
    EXPECT_STREQ(beyond.error.message, "value nested too deeply");
    EXPECT_GT(beyond.error.bit_position, 0);
    // The value can be released and compared from here, and encoded, unless that takes more stack than decoding did.
    decoded deepest = decode(decode_with, type, input(depth));
    encode(encode_with, type, deepest.value.get());
    decoded half = decode(decode_with, type, input(depth / 2));
    EXPECT_NE(encode(encode_with, type, half.value.get()), "failed");
}

}  // namespace orlenta::test
