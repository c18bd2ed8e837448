// SPDX-License-Identifier: Apache-2.0
// Memory tests of the text syntaxes: every allocation fails once, and texts are damaged in thousands of ways. There is
// a clear outcome each time, and nothing is left behind. To be linked with failing_allocator.cpp.
#pragma once

#include <algorithm>
#include <cstdio>
#include <random>

#include "tests/support/failing_allocator.hpp"
#include "tests/support/text_codec.hpp"

namespace orlenta::test {

struct MemoryRow {
    const asn1_type_desc* type;
    std::string content;
    bool may_succeed = false;  // the shrinking of a block is allowed to fail
};

inline void expect_failed_decodes_reported(const TextCodec& codec, const std::vector<MemoryRow>& rows) {
    for (const MemoryRow& row : rows) {
        SCOPED_TRACE(row.content);
        uint64_t calls = for_each_failed_allocation([&] {
            decoded result = decode_text(codec, row.type, input_of(codec, row.type, row.content));
            if (result.value) {
                EXPECT_TRUE(!allocator_has_failed() || row.may_succeed);
                return;
            }
            EXPECT_TRUE(allocator_has_failed());
            EXPECT_STREQ(result.error.message, "not enough memory");
        });
        EXPECT_GT(calls, 0u);
    }
}

// A long run of digits where no such number belongs: what is wrong is told, and no memory beyond the record is taken
// to find it out.
inline void expect_unread_digits(const TextCodec& codec, const std::vector<Refused>& rows) {
    for (const Refused& row : rows) {
        allocator_fails_from(2);
        decoded result = decode_text(codec, row.type, row.text + std::string(100000, '7'));
        allocator_never_fails();
        EXPECT_EQ(result.error.message, row.message);
    }
}

// ---- damaged texts ----------------------------------------------------------------------------------------

// Changes a byte, takes some out, puts some in, repeats a piece elsewhere, or cuts the end off. What is put
// in means something to one syntax or another, or is any byte.
inline void damage_once(std::string& text, std::mt19937& random) {
    using namespace std::string_literals;
    static const std::string special = " \n\r\t\0\x01\x7F\x80\xC3\xFF<>/&;#!-?={}[]\"'\\:,.+_019afFxXeENB"s;
    auto below = [&](size_t n) { return n ? random() % n : 0; };
    auto any_byte = [&] { return below(4) ? special[below(special.size())] : static_cast<char>(random()); };
    size_t at = below(text.size() + 1);
    switch (below(6)) {
        case 0: text.erase(at, 1 + below(below(4) ? 2 : 20)); break;
        case 1: text.insert(at, 1, any_byte()); break;
        case 2: text.insert(at, text.substr(below(text.size() + 1), below(30))); break;
        case 3:
            if (below(4) == 0) text.resize(at);
            break;
        default:
            if (at < text.size()) text[at] = any_byte();
            break;
    }
}

// A whole value, or a message with its line. Returns whether it was a value.
inline bool decode_damaged(const TextCodec& codec, const asn1_type_desc* type, const std::string& text) {
    decoded result = decode_text(codec, type, text);
    if (result.value) {
        EXPECT_EQ(result.consumed, static_cast<int64_t>(text.size()));
        expect_whole_value(codec.decode, codec.encode, type, octets(text.begin(), text.end()));
        return true;
    }
    auto is_line_end = [](char c) { return c == '\n' || c == '\r'; };
    EXPECT_NE(result.error.message[0], '\0');
    EXPECT_LT(std::strlen(result.error.message), sizeof result.error.message);
    EXPECT_GE(result.error.line, 1);
    EXPECT_LE(result.error.line, 1 + std::count_if(text.begin(), text.end(), is_line_end));
    return false;
}

// Decodes 2000 damaged forms of each good text, each with one to four faults; the same ones in each run.
inline void expect_damage_survived(const TextCodec& codec, const std::vector<MemoryRow>& rows) {
    int values = 0, errors = 0;
    for (const MemoryRow& row : rows) {
        const std::string good = input_of(codec, row.type, row.content);
        std::mt19937 random(static_cast<uint32_t>(good.size()));
        for (int i = 0; i < 2000 && !testing::Test::HasFailure(); ++i) {
            std::string text = good;
            for (size_t faults = 1 + random() % 4; faults > 0; --faults) damage_once(text, random);
            SCOPED_TRACE(text);
            ++(decode_damaged(codec, row.type, text) ? values : errors);
            EXPECT_EQ(live_blocks(), 0u);
        }
    }
    std::printf("%d values, %d errors\n", values, errors);
    EXPECT_GT(values, 1000);
    EXPECT_GT(errors, 1000);
}

}  // namespace orlenta::test
