// SPDX-License-Identifier: Apache-2.0
// REAL text under a locale whose decimal point is a comma: what the headers of the text codecs warn of.
#include <gtest/gtest.h>
#include <locale.h>
#include <orlenta/ber.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/scalar.h>
#include <orlenta/schema.h>
#include <orlenta/value.h>
#include <orlenta/xer.h>

#include "tests/support/descriptors.hpp"

namespace orlenta::test {
namespace {

const asn1_word kReal[] = {head(ASN1_KIND_REAL, ASN1_WORD0_HAS_NAME, 9), txt("Real")};

using Encode = int64_t (*)(uint8_t**, const asn1_type_desc*, const void*);
using Decode = int64_t (*)(void**, const asn1_type_desc*, const uint8_t*, uint64_t, asn1_error*);

struct TextRules {
    const char* name;
    Encode encode;
    Decode decode;
    const char* point;  // 1.5 as written with the full stop
    const char* comma;  // and with the comma
    double comma_read;  // what the text with the comma is read as under the locale
};
const TextRules kRules[] = {
    {"JER", asn1_jer_encode, asn1_jer_decode, "1.500000000000000000e00\n", "1,500000000000000000e00\n", 1.0},
    {"GSER", asn1_gser_encode, asn1_gser_decode, "1.500000000000000000E00\n", "1,500000000000000000E00\n",
     1.0},
    {"XER", asn1_xer_encode, asn1_xer_decode, "<Real>1.500000000000000000E00</Real>\n",
     "<Real>1,500000000000000000E00</Real>\n", 1.5},
};

class Locale : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(setlocale(LC_ALL, "de_DE.UTF-8"), nullptr)
            << "the locale de_DE.UTF-8 is missing in LOCPATH";
    }
    void TearDown() override { setlocale(LC_ALL, "C"); }
};

std::string encoded(const TextRules& rules, double number) {
    uint8_t* text = nullptr;
    int64_t size = rules.encode(&text, kReal, &number);
    std::string result(reinterpret_cast<char*>(text), size < 0 ? 0 : static_cast<size_t>(size));
    asn1_free(text);
    return result;
}

// The number, or -1 if the text is refused.
double decoded(const TextRules& rules, const std::string& text) {
    void* value = nullptr;
    double number = -1;
    if (rules.decode(&value, kReal, reinterpret_cast<const uint8_t*>(text.data()), text.size(), nullptr) < 0)
        return -1;
    memcpy(&number, value, sizeof number);
    asn1_free_value(kReal, value);
    return number;
}

TEST_F(Locale, TheCommaGoesOutAndFractionsGoWrong) {
    for (const TextRules& rules : kRules) {
        SCOPED_TRACE(rules.name);
        EXPECT_EQ(encoded(rules, 1.5), rules.comma);
        EXPECT_EQ(decoded(rules, rules.point), 1.0);
        EXPECT_EQ(decoded(rules, rules.comma), rules.comma_read);

        setlocale(LC_ALL, "C");
        EXPECT_EQ(encoded(rules, 1.5), rules.point);
        EXPECT_EQ(decoded(rules, rules.point), 1.5);
        setlocale(LC_ALL, "de_DE.UTF-8");
    }
}

// Numbers without a fraction, and the binary rules but for BER's decimal form, know no locale.
TEST_F(Locale, WhatDoesNotDependOnIt) {
    for (const TextRules& rules : kRules) {
        for (double number : {0.0, 3e0, -7e0})
            EXPECT_EQ(decoded(rules, encoded(rules, number)), number) << rules.name;
    }
    uint8_t octets[ASN1_REAL_DER_MAX];
    double number = 0;
    int size = asn1_encode_real_der(octets, 1.5);
    ASSERT_EQ(asn1_decode_real_ber(octets, static_cast<uint32_t>(size), &number), 0);
    EXPECT_EQ(number, 1.5);
    const uint8_t decimal[] = {0x03, '1', '.', '5'};
    ASSERT_EQ(asn1_decode_real_ber(decimal, sizeof decimal, &number), 0);
    EXPECT_EQ(number, 1.0);
}

// A schema has full stops.
TEST_F(Locale, SchemasAreReadAlike) {
    const char text[] =
        "M DEFINITIONS ::= BEGIN\n"
        "A ::= INTEGER (0..9) --@ unit 0.25 m/s - 1.5\n"
        "END\n";
    const orlenta_schema_source source = {"m.asn1", text, sizeof text - 1};
    orlenta_schema* schema = orlenta_schema_compile(&source, 1, nullptr);
    const orlenta_catalogue* catalogue = orlenta_schema_catalogue(schema);
    ASSERT_NE(catalogue, nullptr) << orlenta_schema_message_at(schema, 0)->text;
    orlenta_type_entry entry;
    ASSERT_EQ(orlenta_catalogue_find(catalogue, "A", &entry, nullptr), 0);
    const orlenta_unit* unit = orlenta_unit_of(catalogue, entry.type);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->scale, 0.25);
    EXPECT_EQ(unit->offset, -1.5);
    orlenta_schema_free(schema);
}

}  // namespace
}  // namespace orlenta::test
