// SPDX-License-Identifier: Apache-2.0
// BER nested without end: strings in strings and unknown elements take no stack.
#include "tests/support/nesting.hpp"

#include <orlenta/ber.h>

#include "tests/support/octet_codec.hpp"

namespace orlenta::test {
namespace {

// `levels` indefinite elements that begin with `opening`, around `inside`.
octets nest(size_t levels, uint8_t opening, const octets& inside = {}) {
    octets bytes;
    for (size_t i = 0; i < levels; ++i) bytes.insert(bytes.end(), {opening, 0x80});
    bytes.insert(bytes.end(), inside.begin(), inside.end());
    bytes.insert(bytes.end(), 2 * levels, 0);
    return bytes;
}

// `levels` elements of definite length.
octets nest_definite(size_t levels, uint8_t opening, const octets& inside) {
    octets reversed(inside.rbegin(), inside.rend());
    for (size_t i = 0; i < levels; ++i) {
        size_t length = reversed.size();
        for (int octet = 0; octet < 3; ++octet) reversed.push_back(static_cast<uint8_t>(length >> octet * 8));
        reversed.insert(reversed.end(), {0x83, opening});
    }
    return octets(reversed.rbegin(), reversed.rend());
}

TEST(BerNesting, StringsInStrings) {
    run_on_stack(kSmallStack, [] {
        for (const octets& input :
             {nest(kTooDeep, 0x24, {0x04, 0x01, 0xAA}), nest_definite(kTooDeep, 0x24, {0x04, 0x01, 0xAA})}) {
            decoded octets_value = decode(asn1_ber_decode, kOctets, input);
            EXPECT_EQ(octets_value.consumed, static_cast<int64_t>(input.size()))
                << octets_value.error.message;
            EXPECT_EQ(encode(asn1_der_encode, kOctets, octets_value.value.get()), "04 01 AA");
        }
        decoded bits = decode(asn1_ber_decode, kBits, nest(kTooDeep, 0x23, {0x03, 0x02, 0x04, 0xAA}));
        EXPECT_EQ(encode(asn1_der_encode, kBits, bits.value.get()), "03 02 04 A0");
    });
}

TEST(BerNesting, UnknownElements) {
    run_on_stack(kSmallStack, [] {
        octets raw = nest(kTooDeep, 0x30);
        decoded any = decode(asn1_ber_decode, kAny, raw);
        ASSERT_EQ(any.consumed, static_cast<int64_t>(raw.size())) << any.error.message;
        EXPECT_EQ(static_cast<asn1_open_value*>(any.value.get())->length, raw.size());

        octets set = nest(1, 0x31, nest(kTooDeep, 0xAB, {0x04, 0x00}));
        set.insert(set.begin() + 2, {0x04, 0x01, 0xAA, 0x05, 0x00});
        decoded skipped = decode(asn1_ber_decode, kSet, set);
        ASSERT_EQ(skipped.consumed, static_cast<int64_t>(set.size())) << skipped.error.message;
        // One end of contents too few is noticed at the end.
        raw.resize(raw.size() - 2);
        EXPECT_EQ(decode(asn1_ber_decode, kAny, raw).consumed, -1);
    });
}

}  // namespace
}  // namespace orlenta::test
