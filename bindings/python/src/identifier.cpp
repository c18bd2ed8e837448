// SPDX-License-Identifier: Apache-2.0
#include "identifier.hpp"

#include <charconv>
#include <vector>

namespace orlenta::python {

static void add_arc(std::string& text, uint64_t arc) {
    if (!text.empty()) text += '.';
    text += std::to_string(arc);
}

// The first subidentifier is 40 times the first arc and the second; from 80 on the first arc is 2.
static void add_first_arcs(std::string& text, uint64_t subidentifier) {
    uint64_t first = subidentifier < 80 ? subidentifier / 40 : 2;
    add_arc(text, first);
    add_arc(text, subidentifier - 40 * first);
}

bool identifier_text(const asn1_string& contents, bool is_relative, std::string& text) {
    text.clear();
    uint64_t subidentifier = 0;
    bool is_within = false;
    for (uint64_t i = 0; i < contents.length; ++i) {
        if (subidentifier >> 57 != 0) return false;
        subidentifier = subidentifier << 7 | (contents.data[i] & 0x7F);
        is_within = (contents.data[i] & 0x80) != 0;
        if (is_within) continue;
        if (text.empty() && !is_relative) {
            add_first_arcs(text, subidentifier);
        } else {
            add_arc(text, subidentifier);
        }
        subidentifier = 0;
    }
    return !is_within;
}

static void put_subidentifier(std::string& octets, uint64_t subidentifier) {
    int shift = 63;
    while (shift > 0 && subidentifier >> shift == 0) shift -= 7;
    for (; shift > 0; shift -= 7) octets += static_cast<char>(0x80 | (subidentifier >> shift & 0x7F));
    octets += static_cast<char>(subidentifier & 0x7F);
}

static bool split_arcs(std::string_view text, std::vector<uint64_t>& arcs) {
    const char* next = text.data();
    const char* end = next + text.size();
    for (;;) {
        uint64_t arc = 0;
        auto [behind, error] = std::from_chars(next, end, arc);
        if (error != std::errc() || arc > UINT64_MAX - 80) return false;
        arcs.push_back(arc);
        if (behind == end) return true;
        if (*behind != '.') return false;
        next = behind + 1;
    }
}

bool identifier_octets(std::string_view text, bool is_relative, std::string& octets) {
    std::vector<uint64_t> arcs;
    octets.clear();
    if (text.empty()) return true;
    if (!split_arcs(text, arcs)) return false;
    size_t next = 0;
    if (!is_relative) {
        if (arcs.size() < 2 || arcs[0] > 2 || (arcs[0] < 2 && arcs[1] > 39)) return false;
        put_subidentifier(octets, 40 * arcs[0] + arcs[1]);
        next = 2;
    }
    for (; next < arcs.size(); ++next) put_subidentifier(octets, arcs[next]);
    return true;
}

}  // namespace orlenta::python
