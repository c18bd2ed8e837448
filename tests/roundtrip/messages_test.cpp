// SPDX-License-Identifier: Apache-2.0
// Whole messages: a long run through both forms of PER, as a roadside unit would see them, and those of the benchmark.
#include "bench/messages.hpp"

#include <gtest/gtest.h>
#include <orlenta/check.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/roundtrip/rules.hpp"
#include "tests/roundtrip/values.hpp"

// Address sanitizer: half of the time would go into recording where each of some hundred million blocks came from.
extern "C" const char* __asan_default_options() { return "malloc_context_size=2"; }

namespace orlenta::test {
namespace {

constexpr uint32_t kMessages = 100000, kParts = 4;

void send(const Rule& rule, const asn1_type_desc* type, const void* message) {
    uint8_t* bytes = nullptr;
    int64_t size = rule.encode(&bytes, type, message);
    ASSERT_GT(size, 0);
    std::unique_ptr<uint8_t, decltype(&asn1_free)> sent(bytes, asn1_free);
    void* received = nullptr;
    asn1_error error = {};
    ASSERT_EQ(rule.decode(&received, type, bytes, static_cast<uint64_t>(size), &error), size)
        << error.path << ": " << error.message;
    Value value(received, {type});
    ASSERT_EQ(asn1_cmp_value(type, message, received), 0);
}

class CnMessages : public testing::TestWithParam<uint32_t> {};
INSTANTIATE_TEST_SUITE_P(Parts, CnMessages, testing::Range(0u, kParts));

TEST_P(CnMessages, ThroughBothFormsOfPer) {
    const asn1_type_desc* type = find_type("CN", "MessageFrame");
    if (!type) GTEST_SKIP() << "the CN message set is not built";
    for (uint32_t i = GetParam(); i < kMessages && !HasFatalFailure(); i += kParts) {
        Sample sample = make_sample(type, i * 0x9E3779B9);
        for (const Rule& rule : all_rules()) {
            if (!std::string_view(rule.name).ends_with("PER")) continue;
            SCOPED_TRACE(std::string(rule.name) + ", message " + std::to_string(i));
            send(rule, type, sample.value.get());
        }
    }
}

// The figures of years compare only if the messages stay what they are: valid, of their size, and none lost.
TEST(BenchMessages, AreValidAndGoThroughAllRules) {
    std::vector<bench::Message> messages = bench::load_messages(ORLENTA_BENCH_MESSAGES);
    EXPECT_EQ(messages.size(), 12u);
    for (const bench::Message& message : messages) {
        SCOPED_TRACE(message.name);
        const asn1_type_desc* type = find_type(message.region, message.type);
        if (!type) continue;  // its message set is not built
        asn1_error error = {};
        void* read = nullptr;
        int64_t used = asn1_jer_decode(&read, type, reinterpret_cast<const uint8_t*>(message.json.data()),
                                       message.json.size(), &error);
        Value value(read, {type});
        ASSERT_GT(used, 0) << error.path << ": " << error.message;
        EXPECT_EQ(asn1_check_constraints(type, read, &error), 1) << error.path << ": " << error.message;
        uint8_t* bytes = nullptr;
        EXPECT_EQ(asn1_uper_encode(&bytes, type, read), static_cast<int64_t>(message.octets));
        asn1_free(bytes);
        for (const Rule& rule : all_rules()) {
            SCOPED_TRACE(rule.name);
            send(rule, type, read);
        }
    }
}

}  // namespace
}  // namespace orlenta::test
