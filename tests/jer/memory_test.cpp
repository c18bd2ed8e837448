// Every allocation of a decode and of an encode fails once: a clear outcome, and nothing left behind.
#include <gtest/gtest.h>

#include <vector>

#include "tests/jer/jer_types.hpp"
#include "tests/support/failing_allocator.hpp"
#include "tests/support/text_mutation.hpp"

namespace orlenta::test {
namespace {

struct MemoryCase {
    const asn1_type_desc* type;
    std::string text;
    const char* message = "not enough memory";
    bool may_succeed = false;  // the shrinking of a list is allowed to fail
};

const std::vector<MemoryCase>& cases() {
    static const std::vector<MemoryCase> all = {
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
        {kOid, "\"1.2.840.113549\"", nullptr},  // either message, by what was being allocated
        {kOctetsList, R"(["00","01","02","03","04"])", "not enough memory", true},
        {kOptional, R"({"m":true,"o":"00","e":"01"})"},
        {kNode, R"({"next":{"next":{}}})"},
        {kOpen, R"({"id":2,"value":"ff"})"},
    };
    return all;
}

TEST(JerMemory, Decode) {
    for (const MemoryCase& c : cases()) {
        SCOPED_TRACE(c.text);
        uint64_t calls = for_each_failed_allocation([&] {
            asn1_error error;
            Value value = decode_json(c.type, c.text, &error);
            if (value) {
                EXPECT_TRUE(!allocator_has_failed() || c.may_succeed);
                return;
            }
            EXPECT_TRUE(allocator_has_failed());
            std::string message = error.message;
            EXPECT_TRUE(message == (c.message ? c.message : "not enough memory") ||
                        (!c.message && message == "invalid object identifier"))
                << message;
        });
        EXPECT_GT(calls, 0u);
    }
}

TEST(JerMemory, Encode) {
    for (const MemoryCase& c : cases()) {
        SCOPED_TRACE(c.text);
        Value value = decode_json(c.type, c.text);
        ASSERT_TRUE(value);
        const std::string printed = encode_json(c.type, value.get());
        uint64_t calls = for_each_failed_allocation([&] {
            std::string text = encode_json(c.type, value.get());
            EXPECT_EQ(text, allocator_has_failed() ? "-1" : printed);
        });
        EXPECT_GT(calls, 0u);
    }
}

TEST(JerMemory, DamagedTexts) {
    Outcomes all;
    for (const MemoryCase& c : cases()) {
        if (c.type == kOid) continue;  // an OID of the one arc 1 has no text that reads back
        Outcomes some = decode_damaged_texts({asn1_jer_decode, asn1_jer_encode}, c.type, c.text, 2000);
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
