// SPDX-License-Identifier: Apache-2.0
// Encodings of what modules of written tags, clashing names and objects describe. That the header compiles holds every
// record against its table.
#include <gtest/gtest.h>
#include <messages.h>
#include <orlenta/ber.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <published.h>
#include <security.h>
#include <tricky.h>

#include "tests/support/octets.hpp"

namespace {

enum Rules { kDer, kUper, kOer };

int64_t decode(void** value, const asn1_type_desc* type, Rules rules, const uint8_t* data, size_t size,
               asn1_error* error) {
    switch (rules) {
        case kDer: return asn1_ber_decode(value, type, data, size, error);
        case kUper: return asn1_uper_decode(value, type, data, size, error);
        case kOer: return asn1_oer_decode(value, type, data, size, error);
    }
    return -1;
}

int64_t encode(uint8_t** data, const asn1_type_desc* type, Rules rules, const void* value) {
    switch (rules) {
        case kDer: return asn1_der_encode(data, type, value);
        case kUper: return asn1_uper_encode(data, type, value);
        case kOer: return asn1_oer_encode(data, type, value);
    }
    return -1;
}

struct Row {
    const char* name;
    const asn1_type_desc* type;
    Rules rules;
    const char* hex;
};

class Published : public testing::TestWithParam<Row> {};

// Decodes and encodes again; a copy is equal.
TEST_P(Published, ComesBack) {
    const auto& [name, type, rules, hex] = GetParam();
    orlenta::test::octets octets = orlenta::test::from_digits(hex);
    void* value = nullptr;
    asn1_error error;
    asn1_error_init(&error);
    int64_t used = decode(&value, type, rules, octets.data(), octets.size(), &error);
    ASSERT_EQ(used, static_cast<int64_t>(octets.size())) << error.message << " at " << error.path;
    uint8_t* out = nullptr;
    int64_t size = encode(&out, type, rules, value);
    EXPECT_EQ(orlenta::test::to_digits(out, size), orlenta::test::normal_digits(hex));
    asn1_free(out);
    asn1_free_value(type, value);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Published,
    testing::Values(
        // [APPLICATION 1]: level, a CHOICE that keeps its own tag, elements under [PRIVATE 2].
        Row{"implicit", asn1_type_Published_Dictionary_Reading, kDer, "610E 800103 A10416024142 3103C20105"},
        Row{"explicit", asn1_type_Published_Services_Reading, kDer, "A20C300AA0030A01013003020105"},
        // Items count by their numbers: middle is 1 of 3. A size up to 2^32 - 1 is one without a bound.
        Row{"order", asn1_type_Published_Services_Reading, kUper, "4068"},
        Row{"recursive", asn1_type_Published_Filter, kDer, "A206A2048702ABCD"},
        // The open type follows a key that is a CHOICE: an INTEGER up to 9, a BOOLEAN.
        Row{"local", asn1_type_Published_Request, kDer,
            "30060201010201"
            "07"},
        // Another region in the same program.
        Row{"elsewhere", asn1_type_Tricky_Signals, kUper, "80"},
        // PDUs over one dictionary in one region; secured data in another.
        Row{"awareness", asn1_type_Messages_Awareness_Message, kUper,
            "020200000007 20 03 384080 08320190030180 00"},
        Row{"warning", asn1_type_Messages_Warning_Message, kUper, "408040000002 20 00414E1020"},
        Row{"secured", asn1_type_Security_Signed_Opaque, kOer, "03 81 40 03 80 02 ABCD 00 01 24 81"},
        Row{"global", asn1_type_Published_Request, kDer, "300706022B060101FF"}),
    [](const auto& info) { return info.param.name; });

TEST(PublishedNames, EnumeratedConstantsAreIndices) {
    EXPECT_EQ(asn1_Published_Level_low, 0);
    EXPECT_EQ(asn1_Published_Level_middle, 1);
    EXPECT_EQ(asn1_Published_Level_high, 2);
    static_assert(sizeof(asn1_Published_Services_Reading) != sizeof(asn1_Published_Dictionary_Reading));
}

// A message of one region is what data of the other carries.
TEST(PublishedRegions, OneProgramHasSeveral) {
    asn1_Messages_Warning_Message warning = {};
    warning.header.stationId = 8;
    warning.heading.confidence = 127;
    asn1_Security_Data data = {3, {asn1_Security_Content_unsecuredData, {}}};
    uint8_t* out = nullptr;
    data.content.u.unsecuredData.length =
        asn1_uper_encode(&data.content.u.unsecuredData.data, asn1_type_Messages_Warning_Message, &warning);
    int64_t size = asn1_oer_encode(&out, asn1_type_Security_Any_Data, &data);
    EXPECT_EQ(orlenta::test::to_digits(out, size),
              orlenta::test::normal_digits("03 80 09 000000000002 0003F0"));
    asn1_free(out);
    asn1_free(data.content.u.unsecuredData.data);
}

}  // namespace
