// SPDX-License-Identifier: Apache-2.0
// What the compiler has to say about a schema: many errors in one run, told in source order.
#pragma once

#include <fmt/format.h>

#include <string>
#include <vector>

#include "compiler/model/model.hpp"

namespace orlentac {

struct Diagnostic {
    Place place;  // `file` is null for an error that no source line is to blame for
    std::string text;
};

struct Diagnostics {
    std::vector<Diagnostic> errors;
    std::vector<Diagnostic> notes;          // what users should know of a schema that compiles
    std::vector<const std::string*> files;  // order of the files given, by which errors are sorted
};

void add_error(Diagnostics& diags, Place place, std::string text);

template <typename... Args>
void error(Diagnostics& diags, Place place, fmt::format_string<Args...> format, Args&&... args) {
    add_error(diags, place, fmt::format(format, std::forward<Args>(args)...));
}

template <typename... Args>
void note(Diagnostics& diags, Place place, fmt::format_string<Args...> format, Args&&... args) {
    diags.notes.push_back({place, fmt::format(format, std::forward<Args>(args)...)});
}

// By file, line and column; of equal errors at one place one is kept.
void sort_errors(Diagnostics& diags);

// "line:column", or "file:line:column" if `with_file`.
std::string place_text(Place place, bool with_file = true);

// One line an error, "file:line:column: error: text", and a count of those beyond the limit.
std::string errors_text(const Diagnostics& diags, size_t limit = 200);
std::string notes_text(const Diagnostics& diags);

}  // namespace orlentac
