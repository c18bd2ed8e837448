// SPDX-License-Identifier: Apache-2.0
#include "compiler/model/diagnostics.hpp"

#include <algorithm>
#include <set>
#include <tuple>

namespace orlentac {

void add_error(Diagnostics& diags, Place place, std::string text) {
    diags.errors.push_back({place, std::move(text)});
}

static size_t file_rank(const Diagnostics& diags, const std::string* file) {
    return std::find(diags.files.begin(), diags.files.end(), file) - diags.files.begin();
}

void sort_errors(Diagnostics& diags) {
    auto key = [&](const Diagnostic& error) {
        return std::tuple(file_rank(diags, error.place.file), error.place.line, error.place.column);
    };
    std::stable_sort(diags.errors.begin(), diags.errors.end(),
                     [&](const Diagnostic& a, const Diagnostic& b) { return key(a) < key(b); });
    auto same = [&](const Diagnostic& a, const Diagnostic& b) {
        return key(a) == key(b) && a.text == b.text;
    };
    diags.errors.erase(std::unique(diags.errors.begin(), diags.errors.end(), same), diags.errors.end());
}

std::string place_text(Place place, bool with_file) {
    std::string text = fmt::format("{}:{}", place.line, place.column);
    return with_file && place.file ? *place.file + ":" + text : text;
}

static std::string line_text(const Diagnostic& told, const char* sort) {
    std::string place = told.place.line > 0 ? place_text(told.place) + ": "
                        : told.place.file   ? *told.place.file + ": "
                                            : "";
    return fmt::format("{}{}: {}\n", place, sort, told.text);
}

std::string errors_text(const Diagnostics& diags, size_t limit) {
    std::string text;
    size_t shown = std::min(limit, diags.errors.size());
    for (size_t i = 0; i < shown; i++) text += line_text(diags.errors[i], "error");
    if (shown < diags.errors.size())
        text += fmt::format("... and {} more errors\n", diags.errors.size() - shown);
    return text;
}

std::string notes_text(const Diagnostics& diags) {
    std::string text;
    std::set<std::string> told;
    for (const Diagnostic& note : diags.notes) {
        std::string line = line_text(note, "note");
        if (told.insert(line).second) text += line;
    }
    return text;
}

}  // namespace orlentac
