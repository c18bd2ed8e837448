// SPDX-License-Identifier: Apache-2.0
// Bytes as text: hexadecimal digits and base64.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

enum class TextForm { none, hex, base64 };

struct TextProblem {
    std::string text;   // empty: none
    size_t column = 0;  // from 1
};

// Bytes from text. As `hex`: digits with or without 0x, blanks and colons between them, or whole base64 (RFC 4648 clause
// 4, padded). As `base64`: either alphabet of RFC 4648, padded or not, blanks between. False with `problem` filled.
bool parse_bytes(std::string_view text, TextForm form, std::string* bytes, TextProblem* problem);

void append_bytes_as(TextForm form, std::string_view bytes, std::string* text);

}  // namespace cli
