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
    asn1_type_path path = {};
    EXPECT_EQ(text_of(path), "");
    push_name(&path, "a");
    push_name(&path, "b");
    push_index(&path, 3);
    push_name(&path, "c");
    EXPECT_EQ(text_of(path), "a.b[3].c");
    EXPECT_EQ(text_of(path, 5), "a.b[");
    EXPECT_EQ(text_of(path, 1), "");
    asn1_type_path_to_str(&path, nullptr, 0);
    pop(&path);
    pop(&path);
    EXPECT_EQ(text_of(path), "a.b");
    asn1_type_path list = {};
    push_index(&list, INT32_MIN);
    push_index(&list, 0);
    EXPECT_EQ(text_of(list), "[-2147483648][0]");
}

TEST(TypePath, KeepsTheInnermostThirtyTwo) {
    static const char* const letters[] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"};
    for (int depth : {32, 33, 40, 100}) {
        asn1_type_path path = {};
        std::string expected = depth > 32 ? "(...)" : "";
        for (int i = 0; i < depth; ++i) {
            push_name(&path, letters[i % 12]);
            if (i >= depth - 32) expected += std::string(i > 0 ? "." : "") + letters[i % 12];
        }
        EXPECT_EQ(text_of(path), expected);
    }
}

TEST(TypePath, LongTextIsCut) {
    asn1_type_path path = {};
    std::string name(50, 'n');
    for (int i = 0; i < 10; ++i) push_name(&path, name.c_str());
    std::string text = text_of(path);
    EXPECT_EQ(text.size(), 255u);
    EXPECT_EQ(text.substr(0, 52), name + ".n");
}

TEST(TextCursor, StopsAtTheEnd) {
    char text[4] = {'#', '#', '#', '#'};
    char* cursor = text;
    asn1_buf_add(&cursor, text + 3, "ab");
    EXPECT_EQ(cursor, text + 2);
    asn1_buf_add(&cursor, text + 3, "cd");
    EXPECT_EQ(cursor, text + 3);
    asn1_buf_add(&cursor, text + 3, "e");
    EXPECT_EQ(cursor, text + 3);
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
