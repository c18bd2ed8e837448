// A long run of whole messages through both forms of PER, as a roadside unit would see them.
#include <gtest/gtest.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>

#include <cstring>
#include <string_view>

#include "tests/roundtrip/values.hpp"

namespace orlenta::test {
namespace {

constexpr uint32_t kMessages = 100000;

const asn1_type_desc* find_type(std::string_view region_name, std::string_view name) {
    for (const Region& region : all_regions()) {
        for (const orlenta_catalogue_entry& entry : region.entries) {
            if (region.name == region_name && entry.name == name) return entry.type;
        }
    }
    return nullptr;
}

template <typename Encode, typename Decode>
void send_messages(Encode encode, Decode decode) {
    const asn1_type_desc* type = find_type("CN", "MessageFrame");
    if (!type) GTEST_SKIP() << "the CN message set is not built";
    for (uint32_t i = 0; i < kMessages; ++i) {
        Sample sample = make_sample(type, i * 0x9E3779B9);
        uint8_t *sent = nullptr, *again = nullptr;
        int64_t size = encode(&sent, type, sample.value.get());
        ASSERT_GT(size, 0) << "message " << i;
        void* received = nullptr;
        asn1_error error = {};
        ASSERT_EQ(decode(&received, type, sent, static_cast<uint64_t>(size), &error), size)
            << "message " << i << ": " << error.path << ": " << error.message;
        Value value(received, {type});
        ASSERT_EQ(asn1_cmp_value(type, sample.value.get(), received), 0) << "message " << i;
        ASSERT_EQ(encode(&again, type, received), size) << "message " << i;
        ASSERT_EQ(std::memcmp(sent, again, static_cast<size_t>(size)), 0) << "message " << i;
        asn1_free(sent);
        asn1_free(again);
    }
}

TEST(CnMessages, ThroughUper) { send_messages(asn1_uper_encode, asn1_uper_decode); }
TEST(CnMessages, ThroughAper) { send_messages(asn1_aper_encode, asn1_aper_decode); }

}  // namespace
}  // namespace orlenta::test
