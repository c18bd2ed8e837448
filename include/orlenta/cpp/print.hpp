// SPDX-License-Identifier: Apache-2.0
/// @file
/// Values and errors into streams and formatted text; values as JSON on one line.
#pragma once

#include <iosfwd>
#include <orlenta/cpp/codec.hpp>
#include <orlenta/cpp/string.hpp>
#include <version>
#ifdef __cpp_lib_format
#include <format>
#endif

namespace orlenta {

namespace detail {

template <described T>
std::string shown(const T& value) {
    auto text = to_json(value);
    if (text) return std::move(*text);
    return std::string("(").append(text.error().to_string()).append(")");
}

}  // namespace detail

/// A value as JSON on one line, or an error, into a stream.
/// @{
template <class Traits, described T>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& stream, const T& value) {
    return stream << detail::shown(value);
}
template <class Traits, described T>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& stream,
                                             const value<T>& value) {
    return stream << detail::shown(*value);
}
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& stream, const error& reason) {
    return stream << reason.to_string();
}
/// @}
/// A character string, as it is.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& stream, const text& string) {
    return stream << string.view();
}

/// Whether two values are the same, by asn1_cmp_value.
template <described T>
bool operator==(const T& a, const T& b) noexcept {
    return asn1_cmp_value(descriptor_of<T>(), &a, &b) == 0;
}

}  // namespace orlenta

#ifdef __cpp_lib_format
template <orlenta::described T>
struct std::formatter<T, char> : std::formatter<std::string_view, char> {
    auto format(const T& value, auto& context) const {
        return std::formatter<std::string_view, char>::format(orlenta::detail::shown(value), context);
    }
};
template <orlenta::described T>
struct std::formatter<orlenta::value<T>, char> : std::formatter<T, char> {
    auto format(const orlenta::value<T>& value, auto& context) const {
        return std::formatter<T, char>::format(*value, context);
    }
};
template <>
struct std::formatter<orlenta::error, char> : std::formatter<std::string_view, char> {
    auto format(const orlenta::error& reason, auto& context) const {
        return std::formatter<std::string_view, char>::format(reason.to_string(), context);
    }
};
template <>
struct std::formatter<orlenta::text, char> : std::formatter<std::string_view, char> {
    auto format(const orlenta::text& string, auto& context) const {
        return std::formatter<std::string_view, char>::format(string.view(), context);
    }
};
#endif
