// SPDX-License-Identifier: Apache-2.0
/// @file
/// What the typed layer stands on: the descriptor of a type, what happens without memory, and views of bytes.
#pragma once

#include <orlenta/memory.h>
#include <orlenta/type.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

/// Marks a class that lies over a C record.
// The types of this layer lie over the C records of the same values, which other code may write.
#define ORLENTA_OVERLAY [[gnu::may_alias]]

namespace orlenta {

/// A generated type with a descriptor of its own.
template <class T>
concept described = requires {
    { T::orlenta_descriptor() } -> std::same_as<const asn1_type_desc*>;
};

/// The descriptor of a generated type, for functions of the C library.
template <described T>
constexpr const asn1_type_desc* descriptor_of() noexcept {
    return T::orlenta_descriptor();
}

/// The value of a NULL.
struct null {};

namespace detail {

/// Standard containers do the same.
[[noreturn]] inline void out_of_memory() {
#ifdef __cpp_exceptions
    throw std::bad_alloc();
#else
    std::fputs("orlenta: not enough memory\n", stderr);
    std::abort();
#endif
}

/// A programming error: to continue would lose or invent a component.
[[noreturn, gnu::cold, gnu::noinline]] inline void misuse(const char* what) {
    std::fputs(what, stderr);
    std::abort();
}

template <class T>
T* allocated(T* block) {
    if (block == nullptr) out_of_memory();
    return block;
}

// A number is given as any literal is, without regard to its sign: 1 for an unsigned component. What is wider than the
// component might come out as another number that its type allows.
template <class T, class U>
decltype(auto) converted(U&& value) {
    if constexpr (std::is_integral_v<T> && std::is_arithmetic_v<std::remove_cvref_t<U>>) {
        static_assert(std::is_integral_v<std::remove_cvref_t<U>> && sizeof(U) <= sizeof(T),
                      "a number is given that is wider than the component, or has a fraction: cast it");
        return static_cast<T>(value);
    } else {
        return std::forward<U>(value);
    }
}

// Without braces as long as that will do: in them, a list's own type may be taken for an element.
template <class T, class... Arguments>
T made(Arguments&&... arguments) {
    if constexpr (sizeof...(Arguments) == 0)
        return T{};
    else if constexpr (!__is_class(T))
        return converted<T>(std::forward<Arguments>(arguments)...);
    else if constexpr (__is_constructible(T, Arguments...))
        return T(std::forward<Arguments>(arguments)...);
    else
        return T{std::forward<Arguments>(arguments)...};
}

}  // namespace detail

/// Bytes to read: from any contiguous range of std::byte, char or uint8_t, and from text.
class byte_view {
    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;

  public:
    /// Of nothing, of `size` bytes at `data`, of a text, of a range.
    /// @{
    constexpr byte_view() = default;
    constexpr byte_view(const std::uint8_t* data, std::size_t size) noexcept : data_(data), size_(size) {}
    template <class Text>
    requires std::convertible_to<const Text&, std::string_view> byte_view(const Text& text)
    noexcept {
        std::string_view view = text;
        data_ = reinterpret_cast<const std::uint8_t*>(view.data());
        size_ = view.size();
    }
    template <class Range>
    requires(!std::convertible_to<const Range&, std::string_view> &&
             (std::convertible_to<const Range&, std::span<const std::byte>> ||
              std::convertible_to<const Range&, std::span<const std::uint8_t>> ||
              std::convertible_to<const Range&, std::span<const char>>)) byte_view(const Range& range)
    noexcept : data_(reinterpret_cast<const std::uint8_t*>(std::data(range))), size_(std::size(range)) {}
    /// @}

    /// The bytes.
    /// @{
    constexpr const std::uint8_t* data() const noexcept { return data_; }
    constexpr std::size_t size() const noexcept { return size_; }
    /// @}
};

}  // namespace orlenta
