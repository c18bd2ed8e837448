// SPDX-License-Identifier: Apache-2.0
#include "cli/spelling.hpp"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <vector>

namespace cli {

std::string folded(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = c == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t change = diagonal + (a[i - 1] != b[j - 1]);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, change});
        }
    }
    return row.back();
}

}  // namespace cli
