// SPDX-License-Identifier: Apache-2.0
#include "tests/support/text_memory.hpp"
#include "tests/xer/xer_codec.hpp"

namespace orlenta::test {
namespace {

const std::vector<MemoryRow>& rows() {
    static const std::vector<MemoryRow> all = {
        {kBig, "-123456789012345678901234567890"},
        {kReal, "1.25"},
        {kIa5, "a&lt;<bel/>" + std::string(100, 'x') + "\u00e9", true},
        {kUniversal, "\U0001F600<esc/>&#65;", true},
        {kUtf8, "\u00e9<!-- c -->x&amp;", true},
        {kOctets, "00 ff 1", true},
        {kBits, "1011 0000 1111 0000 1", true},
        {kItems, "<item>00</item><item/><item>01</item><item>02</item><item>03</item>", true},
        {kEnums, "<a/>\r\n<d/>", true},
        {kT, "<a>5</a><!-- c -->\n<b>true</b><c>\n<INTEGER>1</INTEGER><INTEGER>2</INTEGER></c><d/>", true},
        {kRecord, "<a>1</a><b><true/></b><c>AB</c>\n<e>true</e><g><false/></g><i>true</i><j>00</j>", true},
        {kChoices, "<n/>\n<t>7</t><s>00</s>", true},
        {kChain, "<next><next></next></next>"},
        {kOpenRecord<kOpen>, "<id>2</id>\n<value><OCTET_STRING>FF</OCTET_STRING></value>"},
        {kOpenRecord<kOpen>, "<id>1</id><value><BOOLEAN><true/></BOOLEAN></value>"},
        {kOpenRecord<kOpen>, "<id>9</id><value><OCTET_STRING>ABCD</OCTET_STRING></value>"},
    };
    return all;
}

TEST(XerMemory, Decode) {
    expect_failed_decodes_reported(kXer, rows());
    // What was being allocated decides between two messages.
    expect_failed_decodes_reported(kXer, {{kOid, "1.2.840"}});
}
TEST(XerMemory, DamagedTexts) { expect_damage_survived(kXer, rows()); }

}  // namespace
}  // namespace orlenta::test
