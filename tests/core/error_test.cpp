// SPDX-License-Identifier: Apache-2.0
#include "core/error.hpp"

#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "core/path.hpp"

namespace {

using namespace orlenta;

std::string text_of(const asn1_type_path& path, size_t size = 256) {
    std::string text(size, '#');
    asn1_type_path_to_str(&path, text.data(), size);
    return text.c_str();
}

TEST(TypePath, NamesAndIndexes) {
    asn1_type_path path = {}, list = {};
    EXPECT_EQ(text_of(path), "");
    for (const char* name : {"a", "b"}) push_name(&path, name);
    push_index(&path, 3);
    push_name(&path, "c");
    EXPECT_EQ(text_of(path), "a.b[3].c");
    EXPECT_EQ(text_of(path, 5), "a.b[");
    EXPECT_EQ(text_of(path, 1), "");
    asn1_type_path_to_str(&path, nullptr, 0);
    pop(&path);
    pop(&path);
    EXPECT_EQ(text_of(path), "a.b");
    for (int32_t index : {INT32_MIN, 0}) push_index(&list, index);
    EXPECT_EQ(text_of(list), "[-2147483648][0]");
}

TEST(TypePath, KeepsTheInnermostThirtyTwo) {
    static const char* const letters[] = {"a", "b", "c", "d", "e"};
    for (int depth : {32, 33, 100}) {
        asn1_type_path path = {};
        std::string expected = depth > 32 ? "(...)" : "";
        for (int i = 0; i < depth; ++i) {
            push_name(&path, letters[i % 5]);
            if (i >= depth - 32) expected += std::string(i > 0 ? "." : "") + letters[i % 5];
        }
        EXPECT_EQ(text_of(path), expected);
    }
}

TEST(TextCursor, StopsAtTheEnd) {
    char text[4] = {'#', '#', '#', '#'};
    char* cursor = text;
    int expected = 0;
    for (const char* piece : {"ab", "cd", "e"}) {
        asn1_buf_add(&cursor, text + 3, piece);
        expected = expected == 0 ? 2 : 3;
        EXPECT_EQ(cursor, text + expected);
    }
    EXPECT_EQ(memcmp(text, "abc#", 4), 0);
}

int fail(asn1_error* error, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int result = set_message(error, format, args);
    va_end(args);
    return result;
}

TEST(Error, MessageIsCutAndHandedOut) {
    asn1_error own, caller;
    memset(&own, 0xAA, sizeof own);
    asn1_error_init(&own);
    EXPECT_EQ(own.line, 1);
    EXPECT_EQ(own.bit_position, 0);
    EXPECT_STREQ(own.path, "");
    EXPECT_STREQ(own.message, "");
    EXPECT_EQ(fail(&own, "%d%s", 7, std::string(300, 'm').c_str()), -1);
    EXPECT_EQ(hand_out_error(&caller, &own), -1);
    EXPECT_EQ(std::string(caller.message), "7" + std::string(254, 'm'));
    EXPECT_EQ(hand_out_error(nullptr, &own), -1);
}

}  // namespace
