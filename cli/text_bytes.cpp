// SPDX-License-Identifier: Apache-2.0
#include "cli/text_bytes.hpp"

#include <fmt/format.h>

#include <array>
#include <cctype>
#include <cstdint>

namespace cli {

namespace {

enum : uint8_t { kSkip = 0xFE, kNone = 0xFF };

using CharacterTable = std::array<uint8_t, 256>;

}  // namespace

// Blanks as isspace() has them in the C locale.
static constexpr CharacterTable table_with_blanks() {
    CharacterTable table{};
    table.fill(kNone);
    for (char c : {' ', '\t', '\n', '\v', '\f', '\r'}) table[static_cast<uint8_t>(c)] = kSkip;
    return table;
}

static constexpr CharacterTable make_hex_table() {
    CharacterTable table = table_with_blanks();
    table[':'] = kSkip;
    for (uint8_t i = 0; i < 10; ++i) table[static_cast<uint8_t>('0' + i)] = i;
    for (uint8_t i = 0; i < 6; ++i) {
        table[static_cast<uint8_t>('a' + i)] = static_cast<uint8_t>(10 + i);
        table[static_cast<uint8_t>('A' + i)] = static_cast<uint8_t>(10 + i);
    }
    return table;
}

static constexpr std::string_view kBase64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

static constexpr CharacterTable make_base64_table() {
    CharacterTable table = table_with_blanks();
    for (size_t i = 0; i < kBase64Digits.size(); ++i)
        table[static_cast<uint8_t>(kBase64Digits[i])] = static_cast<uint8_t>(i);
    table['-'] = 62;
    table['_'] = 63;
    return table;
}

static constexpr CharacterTable kHexTable = make_hex_table(), kBase64Table = make_base64_table();

static std::string printable(char c) {
    return std::isprint(static_cast<unsigned char>(c))
               ? fmt::format("'{}'", c)
               : fmt::format("0x{:02x}", static_cast<unsigned char>(c));
}

// ---- hexadecimal ------------------------------------------------------------------------------------------

// Whether the x at `at` follows a 0 that begins a group.
static bool is_prefix(std::string_view text, size_t at) {
    if ((text[at] != 'x' && text[at] != 'X') || at == 0 || text[at - 1] != '0') return false;
    return at == 1 || kHexTable[static_cast<uint8_t>(text[at - 2])] == kSkip;
}

static bool parse_hex(std::string_view text, std::string* bytes, TextProblem* problem) {
    bytes->resize(text.size() / 2);
    char* out = bytes->data();
    int high = -1;
    for (size_t i = 0; i < text.size(); ++i) {
        uint8_t digit = kHexTable[static_cast<uint8_t>(text[i])];
        if (digit == kSkip) continue;
        if (digit == kNone) {
            if (high == 0 && is_prefix(text, i)) {
                high = -1;
                continue;
            }
            *problem = {fmt::format("{} is no hexadecimal digit, and the text no base64", printable(text[i])),
                        i + 1};
            return false;
        }
        if (high < 0) {
            high = digit;
        } else {
            *out++ = static_cast<char>(high << 4 | digit);
            high = -1;
        }
    }
    bytes->resize(static_cast<size_t>(out - bytes->data()));
    if (high >= 0) *problem = {"odd number of hexadecimal digits", text.size()};
    return high < 0;
}

// ---- base64 -----------------------------------------------------------------------------------------------

namespace {

struct Base64 {
    std::string bytes;
    size_t digits = 0, padding = 0;
    uint32_t rest = 0;  // bits behind the last whole octet
};

}  // namespace

static bool read_base64(std::string_view text, Base64* result, TextProblem* problem) {
    for (size_t i = 0; i < text.size(); ++i) {
        uint8_t digit = kBase64Table[static_cast<uint8_t>(text[i])];
        if (digit == kSkip) continue;
        bool is_padding = text[i] == '=';
        result->padding += is_padding;
        if (is_padding) continue;
        if (digit == kNone || result->padding > 0) {
            *problem = {fmt::format("{} is no base64 digit", printable(text[i])), i + 1};
            return false;
        }
        result->rest = result->rest << 6 | digit;
        if (++result->digits % 4 == 1) continue;
        size_t left = 6 - 2 * ((result->digits - 1) % 4);
        result->bytes.push_back(static_cast<char>(result->rest >> left));
        result->rest &= (1u << left) - 1;
    }
    if (result->digits % 4 != 1 && result->rest == 0) return true;
    *problem = {"base64 ends within an octet", text.size()};
    return false;
}

// Base64 beyond doubt: of full groups, and with the alphabet that has no dash.
static bool is_whole(const Base64& base64, std::string_view text) {
    size_t wanted = (4 - base64.digits % 4) % 4;
    return base64.digits > 0 && base64.padding == wanted && text.find_first_of("-_") == text.npos;
}

// ---- both -------------------------------------------------------------------------------------------------

bool parse_bytes(std::string_view text, TextForm form, std::string* bytes, TextProblem* problem) {
    if (form == TextForm::hex && parse_hex(text, bytes, problem)) return true;
    TextProblem base64_problem;
    Base64 base64;
    bool good = read_base64(text, &base64, &base64_problem);
    if (form == TextForm::base64) *problem = base64_problem;
    if (!good || (form == TextForm::hex && !is_whole(base64, text))) return false;
    *bytes = std::move(base64.bytes);
    return true;
}

static void append_hex(std::string_view bytes, std::string* text) {
    static constexpr char digits[] = "0123456789abcdef";
    size_t start = text->size();
    text->resize(start + 2 * bytes.size());
    char* out = text->data() + start;
    for (char c : bytes) {
        uint8_t byte = static_cast<uint8_t>(c);
        *out++ = digits[byte >> 4];
        *out++ = digits[byte & 15];
    }
}

static void append_base64(std::string_view bytes, std::string* text) {
    for (size_t i = 0; i < bytes.size(); i += 3) {
        size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t j = 0; j < 3; ++j)
            group = group << 8 | (j < count ? static_cast<uint8_t>(bytes[i + j]) : 0u);
        for (size_t j = 0; j < 4; ++j)
            text->push_back(j <= count ? kBase64Digits[group >> (18 - 6 * j) & 63] : '=');
    }
}

void append_bytes_as(TextForm form, std::string_view bytes, std::string* text) {
    switch (form) {
        case TextForm::none: text->append(bytes); break;
        case TextForm::hex: append_hex(bytes, text); break;
        case TextForm::base64: append_base64(bytes, text); break;
    }
}

}  // namespace cli
