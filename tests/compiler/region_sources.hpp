// SPDX-License-Identifier: Apache-2.0
// The modules of a message set that comes with the library, in the order in which the build gives them.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "compiler/frontend.hpp"

namespace orlentac::test {

inline SourceText source_of(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {path, std::string(std::istreambuf_iterator<char>(file), {})};
}

inline std::vector<SourceText> region_sources(const std::string& region) {
    std::vector<SourceText> sources;
    for (const auto& entry : std::filesystem::directory_iterator(ORLENTA_SCHEMA_DIR "/" + region))
        if (entry.path().extension() == ".asn1") sources.push_back(source_of(entry.path()));
    auto by_name = [](const SourceText& a, const SourceText& b) { return a.name < b.name; };
    std::sort(sources.begin(), sources.end(), by_name);
    return sources;
}

}  // namespace orlentac::test
