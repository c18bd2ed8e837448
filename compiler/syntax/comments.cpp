// SPDX-License-Identifier: Apache-2.0
#include "compiler/syntax/comments.hpp"

#include <algorithm>

namespace orlentac {

namespace {

// What stands around the text of a comment, and what headings of sections are drawn with.
constexpr std::string_view kMarks = "-*/ \t\r", kDrawn = "=#_~";

std::string_view without(std::string_view text, std::string_view left, std::string_view right) {
    text.remove_prefix(std::min(text.find_first_not_of(left), text.size()));
    return text.substr(0, text.find_last_not_of(right) + 1);
}

std::string_view trimmed(std::string_view line) { return without(line, " \t\r", " \t\r"); }

// Nothing but a comment up to the line's end. What orlentac reads for itself is none.
bool is_line_comment(std::string_view line) {
    if (!line.starts_with("--") || line.starts_with("--@")) return false;
    line = without(line, "-", "");
    size_t end = line.find("--");
    return end == line.npos || without(line.substr(end), "-", "").empty();
}

// The comment's lines, from the one above `line` upwards to where it begins; nothing if more than it stands on them.
std::vector<std::string_view> block_above(const std::vector<std::string_view>& lines, size_t line) {
    std::vector<std::string_view> block;
    while (line-- > 0) {
        std::string_view text = trimmed(lines[line]);
        size_t begin = text.find("/*"), end = text.find("*/");
        if (block.empty() ? end + 2 != text.size() : end != text.npos) return {};
        block.push_back(text);
        if (begin != text.npos) return begin == 0 ? block : std::vector<std::string_view>();
    }
    return {};
}

std::vector<std::string_view> lines_above(const std::vector<std::string_view>& lines, size_t line) {
    std::vector<std::string_view> found;
    if (line > 0 && trimmed(lines[line - 1]).ends_with("*/")) {
        found = block_above(lines, line);
    } else {
        for (; line > 0 && is_line_comment(trimmed(lines[line - 1])); line--)
            found.push_back(trimmed(lines[line - 1]));
    }
    std::reverse(found.begin(), found.end());
    return found;
}

// RFC 3629: no surrogates, nothing longer than it needs to be.
bool is_utf8(std::string_view text) {
    for (size_t i = 0; i < text.size();) {
        auto octet = [&](size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0u; };
        unsigned first = octet(i++);
        if (first < 0x80) continue;
        if (first < 0xC2 || first > 0xF4) return false;
        unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
        unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
        if (octet(i) < least || octet(i) > most) return false;
        for (int more = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3; more > 0; more--)
            if (octet(i++) >> 6 != 2) return false;
    }
    return true;
}

// Words with a space between two; control characters separate words. Of a text that is no UTF-8 the ASCII is left, of
// hyphens in a row one, as a comment of ASN.1 can hold no more.
void append_words(std::string& out, std::string_view text) {
    bool is_apart = !out.empty(), is_readable = is_utf8(text);
    for (char c : text) {
        if (!is_readable && static_cast<unsigned char>(c) >= 0x80) continue;
        if (c == '-' && !is_apart && out.ends_with('-')) continue;
        bool is_blank = static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
        if (!is_blank && is_apart) out += ' ';
        if (!is_blank) out += c;
        is_apart = is_blank ? !out.empty() : false;
    }
}

}  // namespace

std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t at = 0; at <= text.size();) {
        size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

std::string comment_above(const std::vector<std::string_view>& lines, const Place& place) {
    size_t line = static_cast<size_t>(place.line) - 1;
    if (!trimmed(lines[line].substr(0, static_cast<size_t>(place.column) - 1)).empty()) return "";
    std::string about;
    for (std::string_view text : lines_above(lines, line)) {
        text = without(text, kMarks, kMarks);
        if (text.starts_with("@brief ")) text.remove_prefix(7);
        bool is_heading = !text.empty() && kDrawn.find(text[0]) != kDrawn.npos;
        bool is_over =
            text.empty() || is_heading || text.starts_with('@');  // other tags tell of other things
        if (is_over && !about.empty()) break;
        if (!is_over) append_words(about, text);
    }
    return about.find("::=") == about.npos ? about : "";
}

}  // namespace orlentac
