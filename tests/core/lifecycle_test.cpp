// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/value.h>

#include "tests/core/sample.hpp"
#include "tests/support/failing_allocator.hpp"

namespace {

using namespace orlenta::test;

const asn1_word kEmpty[] = {head(ASN1_KIND_SEQUENCE), num(0), num(1)};
const asn1_word kBadKind[] = {head(18)};

class Lifecycle : public testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(live_blocks(), 0u); }
};

TEST_F(Lifecycle, Sizes) {
    const asn1_word twice[] = {head(ASN1_KIND_TAGGED, 0, context(1)), ref(kExplicitChoice)};
    const asn1_word to_link[] = {head(ASN1_KIND_TAGGED, 0, context(1)), ref(kLink)};
    const struct {
        const asn1_word* type;
        int64_t size;
    } cases[] = {
        // clang-format off
        {kSample, sizeof(sample)}, {kEmpty, 1}, {kList, 16}, {kChoice, 24}, {kOuterChoice, 32}, {kUint32, 4},
        {kBig, 24}, {kBoolean, 4}, {kBits, 16}, {kOctets, 16}, {kEnum, 4}, {kNull, 1}, {twice, 24},
        {to_link, 8}, {kOid, 16}, {kReal, 8}, {kBmp, 16}, {kAny, 24}, {kIdClass, 16}, {kBadKind, -1},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(asn1_get_size(c.type), c.size) << c.type[0].number;
    EXPECT_EQ(asn1_mallocz_value(kBadKind), nullptr);
    // A new value can be released at once.
    for (const asn1_word* type : {kSample, kEmpty, kAny, kLink, kList, kChoice, kBig}) {
        asn1_free_value(type, asn1_mallocz_value(type));
        asn1_free_value(type, nullptr);
    }
}

TEST_F(Lifecycle, CopyIsEqualAndItsOwn) {
    sample *original = make_sample(), *same = make_sample();
    sample* copy = static_cast<sample*>(asn1_clone_value(kSample, original));
    ASSERT_NE(copy, nullptr);
    asn1_free_value(kSample, original);
    EXPECT_EQ(asn1_cmp_value(kSample, copy, same), 0);
    EXPECT_EQ(copy->list.count, 3u);
    EXPECT_EQ(copy->raw.length, 3u);
    EXPECT_EQ(memcmp(copy->bits.data, "\xAA\x80", 2), 0);
    EXPECT_EQ(memcmp(copy->wide.data, "a\0b\0", 4), 0);
    asn1_free_value(kSample, copy);
    asn1_free_value(kSample, same);
}

TEST_F(Lifecycle, WhatIsAbsentIsNotTouched) {
    uint8_t* const nowhere = reinterpret_cast<uint8_t*>(0x10);
    sample* s = make_sample();
    asn1_free(s->octets.data);
    asn1_free(s->addition.data);
    s->has_octets = s->has_addition = 0;
    s->octets.data = s->addition.data = nowhere;
    sample* copy = static_cast<sample*>(asn1_clone_value(kSample, s));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->octets.data, nullptr);
    EXPECT_EQ(copy->level, 9u);
    asn1_free_value(kSample, copy);
    asn1_free_value(kSample, s);

    choice_record unknown = {.selector = 3, .octets = {nowhere, 5}}, unknown_copy = {};
    EXPECT_EQ(asn1_copy_value(kChoice, &unknown_copy, &unknown), 0);
    EXPECT_EQ(unknown_copy.selector, 3u);
    EXPECT_EQ(unknown_copy.octets.data, nullptr);
    asn1_free_value_struct(kChoice, &unknown);
}

// An empty list or string gets a block; lengths are 31 bits.
TEST_F(Lifecycle, LengthsOfCopies) {
    uint8_t bytes[16] = {1, 2, 3, 4, 5, 6, 7, 8};
    const struct {
        const asn1_word* type;
        uint64_t length;
        int result;
        uint64_t copied, bytes;
    } cases[] = {{kList, 0, 0, 0, 0},
                 {kOctets, 0, 0, 0, 0},
                 {kOctets, (UINT64_C(1) << 32) + 3, 0, 3, 3},
                 {kBmp, UINT64_C(1) << 31, -1, 0, 0},
                 {kBits, (UINT64_C(1) << 32) + 9, 0, (UINT64_C(1) << 32) + 9, 2},
                 {kList, UINT64_C(1) << 60, -1, 0, 0}};
    for (const auto& c : cases) {
        asn1_string value = {bytes, c.length}, copy = {};
        EXPECT_EQ(asn1_copy_value(c.type, &copy, &value), c.result) << c.length;
        EXPECT_EQ(copy.data != nullptr, c.result == 0) << c.length;
        if (c.result == 0) {
            EXPECT_EQ(copy.length, c.copied);
            EXPECT_EQ(memcmp(copy.data, bytes, c.bytes), 0);
        }
        asn1_free_value_struct(c.type, &copy);
    }
}

TEST(LifecycleDeathTest, KindWithoutValuesAborts) {
    uint64_t value = 0, copy = 0;
    EXPECT_DEATH(asn1_free_value_struct(kClass, &value), "");
    EXPECT_DEATH(asn1_copy_value(kClass, &copy, &value), "");
    EXPECT_DEATH(asn1_cmp_value(kBadKind, &value, &copy), "");
}

// ---- one element more or less -----------------------------------------------------------------------------

std::string text_of(const asn1_array& list) {
    std::string text;
    for (uint64_t i = 0; i < list.count; ++i) {
        const asn1_string& element = static_cast<const asn1_string*>(list.data)[i];
        text += std::string(reinterpret_cast<const char*>(element.data), element.length) + ";";
    }
    return text;
}

TEST_F(Lifecycle, ListGrowsByADeepCopy) {
    asn1_array list = {};
    for (const char* text : {"a", "bb", ""}) {
        asn1_string element = view(text);
        ASSERT_EQ(asn1_seq_add(kOctets, &list.count, &list.data, &element), 0);
    }
    // an element of the list itself
    ASSERT_EQ(asn1_seq_add(kOctets, &list.count, &list.data, static_cast<asn1_string*>(list.data) + 1), 0);
    EXPECT_EQ(text_of(list), "a;bb;;bb;");
    EXPECT_EQ(asn1_seq_add(kOctets, &list.count, &list.data, nullptr), -1);
    EXPECT_EQ(asn1_seq_add(kOctets, &list.count, nullptr, list.data), -1);
    EXPECT_EQ(asn1_seq_add(nullptr, &list.count, &list.data, list.data), -1);
    EXPECT_EQ(list.count, 4u);
    asn1_free_value_struct(kList, &list);
}

TEST_F(Lifecycle, ListShrinks) {
    asn1_array list = make_list({"a", "b", "c", "d"});
    EXPECT_EQ(asn1_seq_del(kOctets, &list.count, nullptr, 0), -1);
    EXPECT_EQ(asn1_seq_del(nullptr, &list.count, &list.data, 0), -1);
    // an index equal to the count is let through, and must stay within the blocks
    const struct {
        int64_t index;
        int result;
        const char* left;
    } steps[] = {{-1, -1, "a;b;c;d;"}, {5, -1, "a;b;c;d;"}, {1, 0, "a;c;d;"}, {3, 0, "a;c;"},
                 {1, 0, "a;"},         {0, 0, ""},          {0, -1, ""}};
    for (const auto& step : steps) {
        EXPECT_EQ(asn1_seq_del(kOctets, &list.count, &list.data, step.index), step.result);
        EXPECT_EQ(text_of(list), step.left);
    }
    EXPECT_EQ(list.data, nullptr);
}

// ---- without memory ---------------------------------------------------------------------------------------

// Behind an indirect component or in an open type a lack of memory shows as a null pointer only.
TEST(ListWithoutMemory, FailedAdditionLeavesItsBlockAndTheRaisedCount) {
    asn1_string element = view("x");
    for (uint64_t call = 1; call <= 4; ++call) {
        asn1_array list = make_list({"a", "b"});
        void* block = list.data;
        allocator_fails_at(call);
        EXPECT_EQ(asn1_seq_add(kOctets, &list.count, &list.data, &element), -1);
        allocator_never_fails();
        EXPECT_EQ(list.count, 3u);
        EXPECT_EQ(list.data, block);
        EXPECT_EQ(live_blocks(), 3 + call - 1);
        free_live_blocks();
    }
    uint64_t endless = UINT64_C(1) << 62;
    void* none = nullptr;
    EXPECT_EQ(asn1_seq_add(kOctets, &endless, &none, &element), -1);
    EXPECT_EQ(asn1_seq_del(kOctets, &endless, &none, 0), -1);
}

TEST(TextWithoutMemory, IsNotMade) {
    allocator_fails_from(1);
    EXPECT_EQ(asn1_strdup("text"), nullptr);
    asn1_byte_buffer buf;
    asn1_byte_buffer_init(&buf);
    asn1_printf(&buf, "%d", 1);
    EXPECT_EQ(buf.failed, 1);
    allocator_never_fails();
}

TEST_F(Lifecycle, FailedRemovalChangesNothing) {
    // a list of lists, so that the copy of an element can stop halfway
    asn1_array outer = {};
    for (const char* text : {"a", "b", "c"}) {
        asn1_array inner = make_list({text, "x"});
        ASSERT_EQ(asn1_seq_add(kList, &outer.count, &outer.data, &inner), 0);
        asn1_free_value_struct(kList, &inner);
    }
    const asn1_array* inner = static_cast<asn1_array*>(outer.data);
    for (uint64_t call = 1; call <= 7; ++call) {
        size_t before = live_blocks();
        allocator_fails_at(call);
        EXPECT_EQ(asn1_seq_del(kList, &outer.count, &outer.data, 1), -1);
        allocator_never_fails();
        EXPECT_EQ(live_blocks(), before) << call;
        EXPECT_EQ(outer.data, inner);
        EXPECT_EQ(outer.count, 3u);
        EXPECT_EQ(text_of(inner[0]) + text_of(inner[1]) + text_of(inner[2]), "a;x;b;x;c;x;");
    }
    while (outer.count != 0) ASSERT_EQ(asn1_seq_del(kList, &outer.count, &outer.data, 0), 0);
}

}  // namespace
