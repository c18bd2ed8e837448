// SPDX-License-Identifier: Apache-2.0
// Text into what is being written.
#pragma once

#include <fmt/format.h>

#include <concepts>
#include <iterator>
#include <string>
#include <utility>

namespace orlentac {

template <typename... Args>
void put(std::string& out, fmt::format_string<Args...> format, Args&&... args) {
    fmt::format_to(std::back_inserter(out), format, std::forward<Args>(args)...);
}

// What writes a file keeps its text in `out`.
template <typename Writer, typename... Args>
requires requires(Writer& writer) {
    { writer.out } -> std::same_as<std::string&>;
}
void put(Writer& writer, fmt::format_string<Args...> format, Args&&... args) {
    put(writer.out, format, std::forward<Args>(args)...);
}

}  // namespace orlentac
