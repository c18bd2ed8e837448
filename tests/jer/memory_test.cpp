// SPDX-License-Identifier: Apache-2.0
#include "tests/jer/jer_codec.hpp"
#include "tests/support/text_memory.hpp"

namespace orlenta::test {
namespace {

const std::vector<MemoryRow>& rows() {
    static const std::vector<MemoryRow> all = {
        {kNull, "null"},
        {kUint32, "00000000000000000000007"},
        {kBig, "-123456789012345678901234567890"},
        {kBig, "5"},
        {kReal, "1.25e0"},
        {kIa5, "\"" + std::string(100, 'x') + R"(\u00e9")"},
        {kUniversal, "\"\U0001F600\""},
        {kUtf8, "\"\u00e9\""},
        {kOctets, "\"00ff\""},
        {kBits12, "\"abc0\""},
        {kBits, R"({"value":"abc0","length":12})"},
        {kOctetsSet, R"(["00","01","02","03","04"])", true},
        {kNested, "{\"list\":[1,-2],\n\"choice\":{\"s\":\"0a\"},\"empty\":{},\"real\":1.5e0}", true},
        {kRecord, R"({"a":1,"b":true,"c":"00","d":5,"e":true,"f":-1,"g":false,"h":1,"i":true,"j":""})"},
        {kChain, R"({"next":{"next":{}}})"},
        {kOpenRecord<kOpen>, R"({"id":2,"value":"ff"})"},
    };
    return all;
}

TEST(JerMemory, Decode) {
    expect_failed_decodes_reported(kJer, rows());
    // Not to be damaged: an object identifier of the one arc 1 has no text that reads back.
    expect_failed_decodes_reported(kJer, {{kOid, "\"1.2.840.113549\""}});
}
TEST(JerMemory, UnreadDigits) {
    expect_unread_digits(kJer, {{kAb, "", "expecting '{'"},
                                {kInts, "-", "expecting '['"},
                                {kInt32, "", "integer too large"},
                                {kReal, "-", "expecting real number"},
                                {kNull, "null ", ""}});
}
TEST(JerMemory, DamagedTexts) { expect_damage_survived(kJer, rows()); }

}  // namespace
}  // namespace orlenta::test
