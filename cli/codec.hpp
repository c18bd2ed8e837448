// SPDX-License-Identifier: Apache-2.0
// One message through the library: values that go by themselves, and failures as text.
#pragma once

#include <orlenta/codec.h>
#include <orlenta/error.h>
#include <orlenta/value.h>

#include <memory>
#include <string>
#include <string_view>

#include "cli/rules.hpp"

namespace cli {

// What is wrong with a message.
struct Problem {
    std::string text;  // empty: nothing
    std::string path;
    int64_t bit = -1;  // -1: not told
    int line = 0;      // of a text, from 1; 0: not told
    size_t column = 0;

    explicit operator bool() const { return !text.empty(); }
};

// "reading after end of stream (bit 32, at yaw)"
std::string sentence(const Problem& problem);

struct ReleaseCodec {
    void operator()(orlenta_codec* codec) const { orlenta_codec_free(codec); }
};
using Codec = std::unique_ptr<orlenta_codec, ReleaseCodec>;

struct ReleaseArena {
    void operator()(orlenta_arena* arena) const { orlenta_arena_destroy(arena); }
};
using Arena = std::unique_ptr<orlenta_arena, ReleaseArena>;

// A type with what is prepared for it; shared by all threads.
struct CodedType {
    const asn1_type_desc* type = nullptr;
    std::string name;  // as the user knows it
    Codec codec;       // null if memory was not to be had
};
CodedType coded(const asn1_type_desc* type, std::string name);

// A value that lies in an arena, or releases itself.
class Value {
  public:
    Value() = default;
    Value(const asn1_type_desc* type, void* owned) : type_(type), record_(owned), owned_(owned) {}
    Value(const asn1_type_desc* type, orlenta_arena_value value) : type_(type), record_(value.record) {}
    Value(Value&& other) noexcept { swap(other); }
    Value& operator=(Value&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Value() {
        if (owned_) asn1_free_value(type_, owned_);
    }

    explicit operator bool() const { return record_ != nullptr; }
    const asn1_type_desc* type() const { return type_; }
    const void* get() const { return record_; }

  private:
    void swap(Value& other) {
        std::swap(type_, other.type_);
        std::swap(record_, other.record_);
        std::swap(owned_, other.owned_);
    }

    const asn1_type_desc* type_ = nullptr;
    const void* record_ = nullptr;
    void* owned_ = nullptr;
};

// On failure these return an empty value, or false, with `problem` filled.
Value decode(const Rules& rules, const CodedType& type, orlenta_arena* arena, std::string_view input,
             bool allow_trailing, Problem* problem);
bool check(const Value& value, Problem* problem);
// Appends to `output`; text ends in a line feed.
bool encode(const Rules& rules, const CodedType& type, const void* value, const Style& style,
            std::string* output, Problem* problem);

}  // namespace cli
