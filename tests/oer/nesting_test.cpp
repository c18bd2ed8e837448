// OER nested without end: recursive types take the stack that there is, and long lists no more memory than they show.
#include "tests/support/nesting.hpp"

#include <orlenta/oer.h>

namespace orlenta::test {
namespace {

TEST(OerNesting, RecursiveTypes) {
    run_on_all_stacks([](size_t size) {
        auto tree = [](size_t levels) {
            octets bytes(2 * levels, 1);
            bytes.back() = 0;
            return bytes;
        };
        expect_graceful_depth(asn1_oer_decode, asn1_oer_encode, kTree, tree, size);
        auto chain = [](size_t levels) {
            octets bytes(levels, 0x80);
            bytes.back() = 0;
            return bytes;
        };
        expect_graceful_depth(asn1_oer_decode, asn1_oer_encode, kChain, chain, size);
    });
}

// Each of a thousand nested lists claims four billion elements, 64 GiB.
TEST(OerNesting, ListsThatClaimTooMuch) {
    octets bytes;
    for (int i = 0; i < 1000; ++i) bytes.insert(bytes.end(), {0x04, 0xFF, 0xFF, 0xFF, 0xFF});
    decoded result = decode(asn1_oer_decode, kTree, bytes);
    EXPECT_EQ(result.consumed, -1);
    EXPECT_EQ(result.error.bit_position, static_cast<int32_t>(bytes.size() * 8));
}

}  // namespace
}  // namespace orlenta::test
