// SPDX-License-Identifier: Apache-2.0
// What the tests of the text syntaxes do alike: tables of texts and values, and the encoder's hook.
#pragma once

#include <orlenta/text.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/octet_codec.hpp"
#include "tests/support/recursive_types.hpp"
#include "tests/support/text_types.hpp"

namespace orlenta::test {

struct TextCodec {
    decode_function decode;
    int64_t (*encode)(uint8_t**, const asn1_type_desc*, const void*);
    // The text by the shortest layout that the options give, or "-1".
    std::string (*print)(const asn1_type_desc*, const void*);
    // The type's element with this content; null where a value's text has no frame and a printed one ends a line.
    std::string (*element)(const asn1_type_desc*, const std::string&) = nullptr;
};

inline std::string input_of(const TextCodec& codec, const asn1_type_desc* type, const std::string& content) {
    return codec.element ? codec.element(type, content) : content;
}

inline std::string printed_of(const TextCodec& codec, const asn1_type_desc* type,
                              const std::string& content) {
    return codec.element ? codec.element(type, content) : content + "\n";
}

inline decoded decode_text(const TextCodec& codec, const asn1_type_desc* type, const std::string& text) {
    return decode(codec.decode, type, octets(text.begin(), text.end()));
}

inline value_pointer value_of(const TextCodec& codec, const asn1_type_desc* type,
                              const std::string& content) {
    decoded result = decode_text(codec, type, input_of(codec, type, content));
    EXPECT_TRUE(result.value) << content << ": " << result.error.message;
    return std::move(result.value);
}

// The text that `encode` gives with these further arguments, or "-1".
template <typename Encode, typename... Options>
std::string print_with(Encode encode, const asn1_type_desc* type, const void* value,
                       const Options*... options) {
    uint8_t* text = nullptr;
    int64_t length = encode(&text, type, value, options...);
    EXPECT_EQ(length < 0, text == nullptr);
    if (length < 0) return std::to_string(length);
    std::string copy(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
    asn1_free(text);
    return copy;
}

// ---- tables -----------------------------------------------------------------------------------------------

// A text that is taken, and how the value is printed.
struct Accepted {
    const asn1_type_desc* type;
    std::string content;
    std::string printed = {};  // empty: as it was read
};

template <const TextCodec& codec>
void expect_printed(const std::vector<Accepted>& rows) {
    for (const Accepted& row : rows) {
        SCOPED_TRACE(row.content);
        std::string text = input_of(codec, row.type, row.content);
        decoded result = decode_text(codec, row.type, text);
        ASSERT_TRUE(result.value) << result.error.message;
        EXPECT_EQ(result.consumed, static_cast<int64_t>(text.size()));
        EXPECT_STREQ(result.error.message, "");
        EXPECT_EQ(codec.print(row.type, result.value.get()),
                  printed_of(codec, row.type, row.printed.empty() ? row.content : row.printed));
    }
}

struct Refused {
    const asn1_type_desc* type;
    std::string text;  // whole, in every syntax
    std::string message;
    int32_t line = 1;
};

template <const TextCodec& codec>
void expect_message(const std::vector<Refused>& rows) {
    for (const Refused& row : rows) {
        SCOPED_TRACE(row.text);
        decoded result = decode_text(codec, row.type, row.text);
        EXPECT_EQ(result.consumed, -1);
        EXPECT_EQ(result.error.message, row.message);
        EXPECT_EQ(result.error.line, row.line);
        EXPECT_STREQ(result.error.path, "");
        void* value;
        const uint8_t* data = reinterpret_cast<const uint8_t*>(row.text.data());
        EXPECT_EQ(codec.decode(&value, row.type, data, row.text.size(), nullptr), -1);
    }
}

// A value of the C type as it lies in memory, and its text or "-1".
template <typename Value>
struct Printed {
    const asn1_type_desc* type;
    Value value;
    std::string content;
};

template <const TextCodec& codec, typename Value>
void expect_content(const std::vector<Printed<Value>>& rows) {
    for (const Printed<Value>& row : rows) {
        EXPECT_EQ(codec.print(row.type, &row.value),
                  row.content == "-1" ? row.content : printed_of(codec, row.type, row.content));
    }
}

inline asn1_string string(const void* data, uint64_t length) {
    return {static_cast<uint8_t*>(const_cast<void*>(data)), length};
}

// ---- cases of every syntax --------------------------------------------------------------------------------

// Values that no decoder makes. The holes are those that a copy has which ran out of memory.
template <const TextCodec& codec>
void expect_refused_values() {
    expect_content<codec, uint32_t>({{kEnum, 4, "-1"}, {kClass, 0, "-1"}});
    const uint32_t selector[6] = {3};
    EXPECT_EQ(codec.print(kChoice, selector), "-1");
    expect_content<codec, asn1_string>({{kOid, string("\x2A\x86", 2), "-1"}});
    expect_content<codec, asn1_open_value>({{kAny, {kBoolean, nullptr, 0}, "-1"}});
    expect_content<codec, void*>({{kTagged<0, kBoolean, ASN1_WORD0_INDIRECT>, nullptr, "-1"}});
}

inline void expect_quiet_nan(const TextCodec& codec, const char* content) {
    uint64_t bits;
    std::memcpy(&bits, value_of(codec, kReal, content).get(), sizeof bits);
    EXPECT_EQ(bits, 0x7FF8000000000000u);
}

// ---- hook -------------------------------------------------------------------------------------------------

struct HookCall {
    const asn1_type_desc* type;
    int32_t depth;
    bool operator==(const HookCall&) const = default;
};

// A hook that prints `answer` for values of one type.
struct HookData {
    const asn1_type_desc* wanted;
    std::string answer;
    std::vector<HookCall> calls = {};
};

inline int64_t hook(void* data, char** text, const asn1_type_desc* type, const void* value, int32_t depth) {
    HookData* hook_data = static_cast<HookData*>(data);
    EXPECT_NE(value, nullptr);
    hook_data->calls.push_back({type, depth});
    if (type != hook_data->wanted) return -1;
    *text = asn1_strdup(hook_data->answer.c_str());
    return static_cast<int64_t>(hook_data->answer.size());
}

}  // namespace orlenta::test
