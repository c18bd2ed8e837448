// Each allocation of an encoding and of a decoding fails in turn: a report, and nothing left behind.
#include <orlenta/random.h>

#include "tests/per/per_types.hpp"
#include "tests/support/failing_allocator.hpp"

namespace orlenta::test {
namespace {

// Every kind that takes memory somewhere, also within groups, additions and open types.
std::vector<Type> types() {
    static const asn1_integer kZero = {};
    static uint32_t limbs[] = {5, 1};
    static const asn1_integer kTop = {limbs, 2, 2, 0};
    Type within = keep({head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_BIG), big(&kZero), big(&kTop)});
    Type from = keep({head(ASN1_KIND_INTEGER, kLower | ASN1_WORD0_BIG), big(&kTop)});
    Type indirect = keep({head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(0)), ref(kOctetsSet)});
    Type defaults = sequence({{kBig, "a", kDefault, 0, big(&kTop)}, {indirect, "b", kOptional}}, kExt);
    Type bmp = char_string(ASN1_STRING_BMP, 0, -1, {{0, 0xFFFF}}),
         digits = char_string(ASN1_STRING_NUMERIC, 0, 9, {{'0', '9'}});
    return {within,
            from,
            kBig,
            kBits,
            kOctets,
            bmp,
            digits,
            kReal,
            kOid,
            kBooleans,
            kRecord,
            kOctetsSet,
            kOpenRecord<kOpen>,
            defaults,
            kChoice};
}

TEST(PerAllocation, BothDirections) {
    uint64_t in_encoding = 0, in_decoding = 0;
    for (Type type : types()) {
        for (uint32_t seed = 1; seed <= 6; ++seed) {
            value_pointer value(asn1_random(type, seed), {type});
            for (Variant variant : kVariants) {
                octets whole = encoded(variant, type, value.get());
                in_encoding += for_each_failed_allocation([&] {
                    uint8_t* out = nullptr;
                    asn1_error error = {};
                    int64_t size = variant.encode(&out, type, value.get(), &error);
                    std::string message = error.message;
                    EXPECT_EQ(size, allocator_has_failed() ? -1 : static_cast<int64_t>(whole.size()));
                    EXPECT_EQ(out == nullptr, allocator_has_failed());
                    // Presence arrays and what lies inside open types fail without a text.
                    EXPECT_TRUE(message.empty() ||
                                (allocator_has_failed() && message == "not enough memory"));
                    asn1_free(out);
                });
                in_decoding += for_each_failed_allocation([&] {
                    decoded result = decode(variant.decode, type, whole);
                    EXPECT_EQ(result.consumed,
                              allocator_has_failed() ? -1 : static_cast<int64_t>(whole.size()));
                    EXPECT_STREQ(result.error.message, allocator_has_failed() ? "not enough memory" : "");
                });
            }
        }
    }
    EXPECT_GT(in_encoding, 400u);
    EXPECT_GT(in_decoding, 400u);
}

TEST(PerAllocation, BufferGrowthIsToldAtTheEnd) {
    octets data(1000, 0x5A);
    asn1_string value = {data.data(), data.size()};
    for_each_failed_allocation([&] {
        uint8_t* out = nullptr;
        asn1_error error = {};
        int64_t size = asn1_aper_encode2(&out, kOctets, &value, &error);
        EXPECT_EQ(size, allocator_has_failed() ? -1 : 1002);
        EXPECT_STREQ(error.message, allocator_has_failed() ? "not enough memory" : "");
        asn1_free(out);
    });
}

}  // namespace
}  // namespace orlenta::test
