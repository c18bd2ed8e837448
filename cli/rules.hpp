// SPDX-License-Identifier: Apache-2.0
// The encoding rules that the command knows by name.
#pragma once

#include <orlenta/codec.h>
#include <orlenta/error.h>
#include <orlenta/type.h>

#include <span>
#include <string>
#include <string_view>

namespace cli {

// What a user may choose of how a value is written.
struct Style {
    int indent = 2;          // text: spaces for each level, 0 for one line
    bool empty_tags = true;  // this and the next two: XML
    bool boolean_text = false;
    bool enumerated_text = false;
    bool indefinite = false;  // BER: indefinite lengths
    int segment = 0;          // BER: octets of a string's segments, 0 for whole strings
};

// What can be chosen about the shape of an encoding.
enum class Shape {
    bytes,
    lines,          // text, always indented by 2
    line_or_lines,  // text, indented by 2 or on one line
    any_indent,     // text, indented by any number or on one line
};

struct Rules {
    const char* name;
    const char* about;
    Shape shape;
    // As the library's entry points; the result is the bytes used, or -1.
    int64_t (*decode)(void** out, const asn1_type_desc* type, const uint8_t* data, size_t size,
                      asn1_error* error);
    // The result is the bytes in `out`, or negative. Rules that report nothing leave `error` as it was.
    int64_t (*encode)(uint8_t** out, const asn1_type_desc* type, const void* value, const Style& style,
                      asn1_error* error);
    // Text only, may be null: where the message at the start of a well formed text ends, which no decoder tells.
    size_t (*message_end)(std::string_view text);
    // The same by a codec, where there is one; may be null.
    int64_t (*decode_arena)(const orlenta_codec* codec, orlenta_arena* arena, orlenta_arena_value* out,
                            const uint8_t* data, uint64_t size, asn1_error* error);
    int64_t (*encode_codec)(const orlenta_codec* codec, uint8_t** out, const void* value, asn1_error* error);

    bool is_text() const { return shape != Shape::bytes; }
    bool fits_one_line() const { return shape == Shape::line_or_lines || shape == Shape::any_indent; }
};

std::span<const Rules> all_rules();

// Null for an unknown name.
const Rules* find_rules(std::string_view name);

}  // namespace cli
