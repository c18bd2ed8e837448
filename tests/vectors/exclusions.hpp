// SPDX-License-Identifier: Apache-2.0
// Rows whose octets are not this library's, each with the reason.
#pragma once

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orlenta::test {

struct Exclusion {
    std::string file;
    std::vector<std::string> rules, lines;
};

inline std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
    return parts;
}

// Those in exclusions.tsv.
inline const std::vector<Exclusion>& exclusions() {
    static const std::vector<Exclusion> all = [] {
        std::vector<Exclusion> read;
        std::ifstream in(ORLENTA_EXCLUSIONS);
        for (std::string line; std::getline(in, line);) {
            std::vector<std::string> columns = split(line, '\t');
            if (columns.size() == 4)
                read.push_back({columns[0], split(columns[1], ','), split(columns[2], ',')});
        }
        return read;
    }();
    return all;
}

inline bool is_excluded(const std::string& file, int line, const std::string& rule) {
    auto has = [](const std::vector<std::string>& list, const std::string& text) {
        return std::find(list.begin(), list.end(), text) != list.end();
    };
    return std::any_of(exclusions().begin(), exclusions().end(), [&](const Exclusion& e) {
        return file == e.file && has(e.rules, rule) && has(e.lines, std::to_string(line));
    });
}

}  // namespace orlenta::test
