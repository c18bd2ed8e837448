// Every allocation of a decode and of an encode fails once; texts are damaged in thousands of ways. There is
// a clear outcome each time, and nothing is left behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "tests/support/text_mutation.hpp"
#include "tests/xer/xer_types.hpp"

namespace orlenta::test {
namespace {

struct MemoryCase {
    const asn1_type_desc* type;
    std::string content;
    bool may_succeed = false;  // the shrinking of a block is allowed to fail
};

const std::vector<MemoryCase>& cases() {
    static const std::vector<MemoryCase> all = {
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
        {kNode, "<next><next></next></next>"},
        {kOpenRecord<kOpen>, "<id>2</id>\n<value><OCTET_STRING>FF</OCTET_STRING></value>"},
        {kOpenRecord<kOpen>, "<id>1</id><value><BOOLEAN><true/></BOOLEAN></value>"},
        {kOpenRecord<kOpen>, "<id>9</id><value><OCTET_STRING>ABCD</OCTET_STRING></value>"},
    };
    return all;
}

TEST(XerMemory, Decode) {
    for (const MemoryCase& c : cases()) {
        SCOPED_TRACE(c.content);
        uint64_t calls = for_each_failed_allocation([&] {
            decoded result = decode_xml(c.type, in_element(c.type, c.content));
            if (result.value) {
                EXPECT_TRUE(!allocator_has_failed() || c.may_succeed);
                return;
            }
            EXPECT_TRUE(allocator_has_failed());
            EXPECT_STREQ(result.error.message, "not enough memory");
        });
        EXPECT_GT(calls, 1u);
    }
    // What was being allocated decides between two messages.
    for_each_failed_allocation([] {
        decoded result = decode_xml(kOid, in_element(kOid, "1.2.840"));
        EXPECT_EQ(result.value == nullptr, allocator_has_failed());
    });
}

TEST(XerMemory, Encode) {
    for (const MemoryCase& c : cases()) {
        SCOPED_TRACE(c.content);
        decoded value = decode_xml(c.type, in_element(c.type, c.content));
        ASSERT_TRUE(value.value);
        const std::string printed = encode_xml(c.type, value.value.get());
        uint64_t calls = for_each_failed_allocation([&] {
            std::string text = encode_xml(c.type, value.value.get());
            EXPECT_EQ(text, allocator_has_failed() ? "-1" : printed);
        });
        EXPECT_GT(calls, 0u);
    }
}

TEST(XerMemory, DamagedTexts) {
    Outcomes all;
    for (const MemoryCase& c : cases()) {
        Outcomes some = decode_damaged_texts({asn1_xer_decode, asn1_xer_encode}, c.type,
                                             in_element(c.type, c.content), 2000);
        all.values += some.values;
        all.errors += some.errors;
    }
    std::printf("%d values, %d errors\n", all.values, all.errors);
    EXPECT_GT(all.values, 1000);
    EXPECT_GT(all.errors, 1000);
}

}  // namespace
}  // namespace orlenta::test
