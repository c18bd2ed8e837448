// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <orlenta/memory.h>
#include <string.h>
#include <wchar.h>

#include <string>

#include "core/buffer.hpp"

namespace {

std::string text_of(const asn1_byte_buffer& buf) {
    return std::string(reinterpret_cast<const char*>(buf.data), buf.length);
}

TEST(Allocator, ZeroSizeStillGivesABlock) {
    void* block = asn1_malloc(0);
    ASSERT_NE(block, nullptr);
    block = asn1_realloc(block, 0);
    ASSERT_NE(block, nullptr);
    asn1_free(block);
    asn1_free(nullptr);
    char* copy = asn1_strdup("ab");
    EXPECT_STREQ(copy, "ab");
    asn1_free(copy);
}

TEST(ByteBuffer, GrowsByHalf) {
    asn1_byte_buffer buf;
    asn1_byte_buffer_init(&buf);
    EXPECT_EQ(asn1_put_bytes(&buf, nullptr, 0), 0);
    EXPECT_EQ(buf.data, nullptr);
    for (uint64_t step : {16, 24, 36, 54, 81, 121}) {
        orlenta::put_byte(&buf, 'x');
        EXPECT_EQ(buf.capacity, step);
        while (buf.length < buf.capacity) orlenta::put_byte(&buf, 'x');
    }
    EXPECT_EQ(text_of(buf), std::string(121, 'x'));
    EXPECT_GE(asn1_puts(&buf, std::string(1000, 'y').c_str()), 0);
    EXPECT_EQ(buf.capacity, 1121u);
    asn1_free(buf.data);
}

TEST(ByteBuffer, RequestBeyondTheLimitFailsForGood) {
    for (uint64_t n : {UINT64_C(1) << 63, UINT64_MAX - 2, UINT64_MAX}) {
        asn1_byte_buffer buf;
        asn1_byte_buffer_init(&buf);
        asn1_puts(&buf, "kept");
        EXPECT_LT(asn1_put_bytes(&buf, "", n), 0) << n;
        EXPECT_EQ(buf.failed, 1);
        EXPECT_LT(asn1_puts(&buf, "!"), 0);
        EXPECT_LT(__asn1_byte_buffer_realloc(&buf, 64), 0);
        asn1_printf(&buf, "%d", 1);
        EXPECT_EQ(text_of(buf), "kept");
        EXPECT_EQ(buf.capacity, 16u);
        asn1_free(buf.data);
    }
}

TEST(ByteBuffer, TextThatCannotBePrintedFailsForGood) {
    asn1_byte_buffer buf;
    asn1_byte_buffer_init(&buf);
    asn1_printf(&buf, "kept%s", "");
    asn1_printf(&buf, "%lc", static_cast<wint_t>(0x7FFFFFFF));
    EXPECT_EQ(buf.failed, 1);
    EXPECT_EQ(text_of(buf), "kept");
    asn1_free(buf.data);
}

int print(asn1_byte_buffer* buf, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int result = asn1_vprintf(buf, format, args);
    va_end(args);
    return result;
}

TEST(ByteBuffer, FormatsTextOfAnyLength) {
    for (size_t size : {512, 0, 1, 511, 513, 5000}) {
        std::string text(size, 'z');
        asn1_byte_buffer buf;
        asn1_byte_buffer_init(&buf);
        asn1_printf(&buf, "%d", -5);
        EXPECT_EQ(buf.capacity, 512u);
        EXPECT_EQ(print(&buf, "%s.", text.c_str()), static_cast<int>(size + 1));
        EXPECT_EQ(text_of(buf), "-5" + text + ".");
        asn1_free(buf.data);
    }
}

TEST(ArrayGrowth, GrowsByHalfAndZeroFills) {
    void* elements = nullptr;
    uint64_t capacity = 0;
    for (uint64_t step : {4, 6, 9, 13}) {
        uint64_t old = capacity;
        ASSERT_EQ(__asn1_realloc_buf(&elements, 4, &capacity, old + 1, 1), 0);
        EXPECT_EQ(capacity, step);
        uint32_t* words = static_cast<uint32_t*>(elements);
        for (uint64_t i = 0; i < capacity; ++i) EXPECT_EQ(words[i], i < old ? 0xAAAAAAAA : 0);
        memset(words, 0xAA, capacity * 4);
    }
    ASSERT_EQ(__asn1_realloc_buf(&elements, 4, &capacity, 100, 0), 0);
    EXPECT_EQ(capacity, 100u);
    asn1_free(elements);
}

TEST(ArrayGrowth, OverflowChangesNothing) {
    const struct {
        uint64_t element_size, capacity, needed;
    } cases[] = {{1, 4, UINT64_C(1) << 63},
                 {16, 4, UINT64_C(1) << 60},
                 {24, 0, UINT64_MAX / 24 + 1},
                 {1, UINT64_C(0x7000000000000000), 1},
                 {1, UINT64_C(0xF000000000000000), 1}};
    for (const auto& c : cases) {
        int anything;
        void* elements = &anything;
        uint64_t capacity = c.capacity;
        EXPECT_EQ(__asn1_realloc_buf(&elements, c.element_size, &capacity, c.needed, 1), -1);
        EXPECT_EQ(elements, &anything);
        EXPECT_EQ(capacity, c.capacity);
    }
}

TEST(Text, BoundedCopy) {
    const char* const expected[] = {"#######", "", "ab", "abc", "abc"};
    const size_t sizes[] = {0, 1, 3, 4, 8};
    for (int i = 0; i < 5; ++i) {
        char dst[] = "#######";
        asn1_pstrcpy(dst, sizes[i], "abc");
        EXPECT_STREQ(dst, expected[i]);
    }
}

}  // namespace
