// SPDX-License-Identifier: Apache-2.0
// Encodings as text in tests: pairs of hex digits, with blanks wherever they help the reader.
#pragma once

#include <cctype>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orlenta::test {

using octets = std::vector<uint8_t>;

inline octets from_digits(std::string_view text) {
    octets bytes;
    std::string digits;
    for (char c : text) {
        if (!std::isspace(static_cast<unsigned char>(c))) digits += c;
    }
    if (digits.size() % 2 != 0) throw std::invalid_argument("odd number of hex digits: " + digits);
    for (size_t i = 0; i < digits.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// Pairs of digits with one blank between.
inline std::string to_digits(const uint8_t* data, size_t size) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        if (i != 0) text += ' ';
        text += kDigits[data[i] >> 4];
        text += kDigits[data[i] & 15];
    }
    return text;
}
inline std::string to_digits(const octets& bytes) { return to_digits(bytes.data(), bytes.size()); }

// The text as to_digits() would write it, so that two can be compared.
inline std::string normal_digits(std::string_view text) { return to_digits(from_digits(text)); }

}  // namespace orlenta::test
