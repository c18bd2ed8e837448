// SPDX-License-Identifier: Apache-2.0
// What the bits of messages are told to be, where the vectors' messages have no such bits: unknown additions, fragments,
// indefinite lengths, segments, and what decoders refuse.
#include <orlenta/ber.h>
#include <orlenta/explain.h>

#include "tests/per/per_types.hpp"
#include "tests/support/failing_allocator.hpp"

namespace orlenta::test {
namespace {

// "width text [path] [=value]" for each run, with "; " between.
void take(void* user, const orlenta_bits* bits) {
    std::string& told = *static_cast<std::string*>(user);
    told += (told.empty() ? "" : "; ") + std::to_string(bits->width) + " " + bits->text;
    if (*bits->path) told += std::string(" ") + bits->path;
    if (bits->value && bits->value_length < 20) told += std::string(" =") + bits->value;
    if (bits->value) {
        EXPECT_EQ(strlen(bits->value), bits->value_length);
    }
}

struct ToldRow {
    Type type;
    int rules;
    std::string octets;  // hexadecimal digits
    const char* told;
    int64_t used;
    const char* error = "";
};

constexpr orlenta_rules kUper = ORLENTA_RULES_UPER, kAper = ORLENTA_RULES_APER, kOer = ORLENTA_RULES_OER,
                        kBer = ORLENTA_RULES_BER;

const Type kPair = sequence({{kSmall, "a"}, {kSmall, "b", kOptional, kAddition}}, kExt);
const Type kEither = choice(1, {{kSmall, "a"}, {kSmall, "b"}});
const asn1_word kTagged[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_EXPLICIT, context(3)), ref(kBoolean)};

std::string times(size_t count, const char* digits) {
    std::string text;
    while (count-- > 0) text += digits;
    return text;
}

TEST(Explain, EachRunIsNamed) {
    const ToldRow rows[] = {
        // Parts of a later version: the third addition, and octets behind the first one's value.
        {kPair, kUper, "A0540AABFC04CC",
         "1 extension bit 1; 3 value a =2; 7 length 3; 3 additions: 2 of 3 present; 8 open type length 2 b; "
         "3 value b =5; 5 padding b; 8 unknown octets b; 8 length 1; 8 unknown addition; 2 padding",
         7},
        {kEither, kUper, "80 02 AAFF",
         "1 extension bit 1; 7 index 0 of 1 extensions; 8 open type length 2 b; 3 value b =5; 5 padding b; "
         "8 unknown octets b",
         4},
        {kEither, kUper, "81 02 AAFF",
         "1 extension bit 1; 7 index 1 of 1 extensions; 8 length 2; 16 unknown addition", 4},
        {kEither, kOer, "82 01", "8 tag [2]; 8 not decoded", -1, "tag 0x100002 not present in choice"},
        {kNull, kAper, "00", "0 value =null; 8 padding", 0},
        {enumerated(2, 0), kUper, "82", "1 extension bit 1; 7 value", 1},
        // Alignment, before lengths and before numbers.
        {sequence({{kSmall, "a"}, {octet_string(0, 300), "b"}}), kAper, "400001AA",
         "3 value a =2; 5 padding b; 16 length 1 b; 8 value b =\"aa\"", 4},
        {integer(0, 70000), kAper, "0005", "2 length 1; 6 padding; 8 value =5", 2},
        // Fragments: of a string, and of an open type.
        {kOctets, kUper, "C1" + times(16384, "AA") + "01BB",
         "8 fragment of 16384; 131072 part of the value; 8 length 1; 8 value", 16387},
        {kEither, kAper, "80C1A0" + times(16383, "AA") + "01BB",
         "1 extension bit 1; 7 index 0 of 1 extensions; 8 fragment of 16384 b; 131072 part of the value b; "
         "8 length 1 b; 8 open type in fragments b",
         16388},
        // Identifiers and lengths of every form.
        {kTagged, kBer, "A380 0101FF 0000",
         "8 tag [3]; 8 length indefinite; 8 tag [UNIVERSAL 1]; 8 length 1; 8 value =true; 16 end of contents",
         7},
        {kOctets, kBer, "2480 0401AA 2480 040155 0000 0000",
         "8 tag [UNIVERSAL 4]; 8 length indefinite; 8 tag [UNIVERSAL 4]; 8 length 1; 8 part of the value; "
         "8 tag [UNIVERSAL 4]; 8 length indefinite; 8 tag [UNIVERSAL 4]; 8 length 1; 8 part of the value; "
         "16 end of contents; 16 end of contents; 0 value =\"aa55\"",
         14},
        {kBits, kBer, "2304 030204F0 FF",
         "8 tag [UNIVERSAL 3]; 8 length 4; 8 tag [UNIVERSAL 3]; 8 length 2; 8 unused bits 4; "
         "4 part of the value; 4 padding; 0 value; 8 behind the message",
         6},
        {sequence({}, kExt | ASN1_WORD0_HAS_LOWER), kBer, "00", "8 not decoded", -1},
        {kAny, kBer, "3080 0101FF 3080 0000 0000", "8 tag [UNIVERSAL 16]; 8 length indefinite; 72 value", 11},
        {kBoolean, kBer, "0201FF", "8 tag [UNIVERSAL 2]; 8 length 1; 8 not decoded", -1,
         "unexpected tag 0x2 (expecting tag 0x1)\n"},
        {kBoolean, 9, "FF", "8 not decoded", -1, "these rules cannot be explained"},
    };
    for (const ToldRow& row : rows) {
        SCOPED_TRACE(row.octets.substr(0, 40));
        octets message = from_digits(row.octets);
        for_each_failed_allocation([&] {
            std::string told;
            asn1_error error = {};
            int64_t used =
                orlenta_explain(row.type, row.rules, message.data(), message.size(), take, &told, &error);
            // Without memory for its text a value is told all the same.
            if (used < 0 && allocator_has_failed()) return;
            EXPECT_EQ(used, row.used);
            EXPECT_STREQ(error.message, row.error);
            if (allocator_has_failed()) return;
            EXPECT_EQ(told, row.told);
        });
    }
}

}  // namespace
}  // namespace orlenta::test
