// Damaged texts: the decoder of a text syntax gives a whole value, or a message with its line, and leaves
// nothing behind. To be linked with failing_allocator.cpp, which counts the live blocks.
#pragma once

#include <gtest/gtest.h>
#include <orlenta/error.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "tests/support/failing_allocator.hpp"

namespace orlenta::test {

struct TextRules {
    int64_t (*decode)(void**, const asn1_type_desc*, const uint8_t*, uint64_t, asn1_error*);
    int64_t (*encode)(uint8_t**, const asn1_type_desc*, const void*);
};

struct Outcomes {
    int values = 0, errors = 0;
};

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

// What is decoded must be a value like any other: it has a text, which gives the same value again.
inline void expect_whole_value(const TextRules& rules, const asn1_type_desc* type, void* value) {
    uint8_t* text = nullptr;
    int64_t length = rules.encode(&text, type, value);
    ASSERT_GE(length, 0);
    void* again = nullptr;
    asn1_error error;
    int64_t result = rules.decode(&again, type, text, static_cast<uint64_t>(length), &error);
    EXPECT_EQ(result, length) << error.line << ": " << error.message << "\n"
                              << std::string(text, text + length);
    if (again) {
        EXPECT_EQ(asn1_cmp_value(type, value, again), 0) << std::string(text, text + length);
        asn1_free_value(type, again);
    }
    asn1_free(text);
}

// The input is a block of its own, so that a sanitizer sees a read beyond it.
inline void decode_damaged(const TextRules& rules, const asn1_type_desc* type, const std::string& text,
                           Outcomes* outcomes) {
    std::unique_ptr<uint8_t[]> input(new uint8_t[text.size()]);
    std::copy(text.begin(), text.end(), input.get());
    void* value = input.get();
    asn1_error error = {};
    int64_t result = rules.decode(&value, type, input.get(), text.size(), &error);
    if (result >= 0) {
        EXPECT_EQ(result, static_cast<int64_t>(text.size()));
        ++outcomes->values;
        expect_whole_value(rules, type, value);
        asn1_free_value(type, value);
        return;
    }
    ++outcomes->errors;
    auto is_line_end = [](char c) { return c == '\n' || c == '\r'; };
    EXPECT_EQ(value, nullptr);
    EXPECT_NE(error.message[0], '\0');
    EXPECT_LT(std::strlen(error.message), sizeof error.message);
    EXPECT_GE(error.line, 1);
    EXPECT_LE(error.line, 1 + std::count_if(text.begin(), text.end(), is_line_end));
}

// Decodes `count` damaged forms of a good text, each with one to four faults; the same ones in each run.
inline Outcomes decode_damaged_texts(const TextRules& rules, const asn1_type_desc* type,
                                     const std::string& good, int count) {
    std::mt19937 random(static_cast<uint32_t>(good.size()));
    Outcomes outcomes;
    for (int i = 0; i < count && !testing::Test::HasFailure(); ++i) {
        std::string text = good;
        for (size_t faults = 1 + random() % 4; faults > 0; --faults) damage_once(text, random);
        SCOPED_TRACE(text);
        size_t before = live_blocks();
        decode_damaged(rules, type, text, &outcomes);
        EXPECT_EQ(live_blocks(), before);
    }
    return outcomes;
}

}  // namespace orlenta::test
