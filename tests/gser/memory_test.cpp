// Every allocation of a decode and of an encode fails once; texts are damaged in thousands of ways. There is a clear
// outcome each time, and nothing is left behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "tests/gser/gser_types.hpp"
#include "tests/support/nesting.hpp"
#include "tests/support/text_mutation.hpp"

namespace orlenta::test {
namespace {

struct MemoryCase {
    const asn1_type_desc* type;
    std::string text;
    bool may_succeed = false;  // the shrinking of a list is allowed to fail
};

const std::vector<MemoryCase>& cases() {
    static const std::vector<MemoryCase> all = {
        {kUint32, "00000000000000000000007"},
        {kBig, "-123456789012345678901234567890"},
        {kReal, "-1.25E0"},
        {kIa5, "\"" + std::string(100, 'x') + "\u00e9\"\"\""},
        {kUniversal, "\"\U0001F600\u00e9 b\""},
        {kUtf8, "\"\u00e9\"\"\""},
        {kOctets, "'00 FF'H /* c */"},
        {kBits, "'1011 0000 1'B"},
        {kRelativeOid, "3.1.113549.99999"},
        {kOctetsList, "{'00'H, \"ab\", '10000000'B, ''H,\n'04'H}", true},
        {kNested, "{ -- c\n list {1, -2},\n choice s:'AB'H, empty {}, real 1.5E0}", true},
        {kRecord, "{a 1, b TRUE, c 'AB'H,\n d 5, e TRUE, f -1, g FALSE, h 1, i TRUE, j ''H}"},
        {kSet, "{s 'AB'H,\n\n c t:5, b FALSE}"},
        {kOuterChoice, "inner: s: '00'H"},
        {kChain, "{next {next {}}}"},
        {kOpenRecord<kOpen>, "{id 2, value 'FF'H}"},
        {kOpenRecord<kOpen>, "{id 9, value 'ABCD'H}"},
    };
    return all;
}

TEST(GserMemory, Decode) {
    for (const MemoryCase& c : cases()) {
        SCOPED_TRACE(c.text);
        uint64_t calls = for_each_failed_allocation([&] {
            decoded result = decode_text(c.type, c.text);
            if (result.value) {
                EXPECT_TRUE(!allocator_has_failed() || c.may_succeed);
                return;
            }
            EXPECT_TRUE(allocator_has_failed());
            EXPECT_STREQ(result.error.message, "not enough memory");
        });
        EXPECT_GT(calls, 1u);
    }
}

TEST(GserMemory, Encode) {
    for (const MemoryCase& c : cases()) {
        SCOPED_TRACE(c.text);
        decoded value = decode_text(c.type, c.text);
        ASSERT_TRUE(value.value) << value.error.message;
        const std::string printed = encode_text(c.type, value.value.get());
        uint64_t calls = for_each_failed_allocation([&] {
            std::string text = encode_text(c.type, value.value.get());
            EXPECT_EQ(text, allocator_has_failed() ? "-1" : printed);
        });
        EXPECT_GT(calls, 0u);
    }
}

TEST(GserMemory, DamagedTexts) {
    Outcomes all;
    for (const MemoryCase& c : cases()) {
        Outcomes some = decode_damaged_texts({asn1_gser_decode, asn1_gser_encode}, c.type, c.text, 2000);
        all.values += some.values;
        all.errors += some.errors;
    }
    std::printf("%d values, %d errors\n", all.values, all.errors);
    EXPECT_GT(all.values, 1000);
    EXPECT_GT(all.errors, 1000);
    EXPECT_EQ(live_blocks(), 0u);
}

}  // namespace
}  // namespace orlenta::test
