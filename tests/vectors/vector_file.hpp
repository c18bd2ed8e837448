// SPDX-License-Identifier: Apache-2.0
// Rows of encodings made with an independent ASN.1 tool: one value in every transfer syntax.
#pragma once

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orlenta::test {

using Bytes = std::vector<uint8_t>;

struct VectorRow {
    int line = 0;
    std::string region, type;
    Bytes uper, aper, oer, der;
    std::string json;  // JER, compact, members in the order of the type
};

inline Bytes from_hex(const std::string& text) {
    Bytes bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

// Columns: region, type, UPER, APER, OER, DER, JSON.
inline std::vector<VectorRow> read_vectors(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::vector<VectorRow> rows;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        std::istringstream columns(line);
        VectorRow row;
        std::string uper, aper, oer, der;
        std::getline(columns, row.region, '\t');
        std::getline(columns, row.type, '\t');
        std::getline(columns, uper, '\t');
        std::getline(columns, aper, '\t');
        std::getline(columns, oer, '\t');
        std::getline(columns, der, '\t');
        std::getline(columns, row.json);
        row.line = number;
        row.uper = from_hex(uper);
        row.aper = from_hex(aper);
        row.oer = from_hex(oer);
        row.der = from_hex(der);
        rows.push_back(row);
    }
    return rows;
}

}  // namespace orlenta::test
