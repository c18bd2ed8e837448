// SPDX-License-Identifier: Apache-2.0
#include "tests/gser/gser_codec.hpp"
#include "tests/support/text_memory.hpp"

namespace orlenta::test {
namespace {

const std::vector<MemoryRow>& rows() {
    static const std::vector<MemoryRow> all = {
        {kUint32, "00000000000000000000007"},
        {kBig, "-123456789012345678901234567890"},
        {kReal, "-1.25E0"},
        {kIa5, "\"" + std::string(100, 'x') + "\u00e9\"\"\""},
        {kUniversal, "\"\U0001F600\u00e9 b\""},
        {kUtf8, "\"\u00e9\"\"\""},
        {kOctets, "'00 FF'H /* c */"},
        {kBits, "'1011 0000 1'B"},
        {kRelativeOid, "3.1.113549.99999"},
        {kOctetsSet, "{'00'H, \"ab\", '10000000'B, ''H,\n'04'H}", true},
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

TEST(GserMemory, Decode) { expect_failed_decodes_reported(kGser, rows()); }
TEST(GserMemory, UnreadDigits) {
    expect_unread_digits(kGser, {{kAb, "", "expecting '{'"},
                                 {kUint32, "-", "integer too large"},
                                 {kReal, "", "expecting real number"},
                                 {kOid, "", "object identifier: integer too large"},
                                 {kNull, "NULL ", ""}});
}
TEST(GserMemory, DamagedTexts) { expect_damage_survived(kGser, rows()); }

}  // namespace
}  // namespace orlenta::test
