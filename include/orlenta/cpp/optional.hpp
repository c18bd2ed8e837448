// SPDX-License-Identifier: Apache-2.0
/// @file
/// Components that may be absent, and words with a type of their own.
#pragma once

#include <initializer_list>
#include <optional>
#include <orlenta/cpp/base.hpp>

namespace orlenta {

/// BOOLEAN: a 32-bit word.
class ORLENTA_OVERLAY boolean {
    std::int32_t word_ = 0;

  public:
    /// As a bool.
    /// @{
    constexpr boolean() = default;
    template <std::same_as<bool> Bool>
    constexpr boolean(Bool value) noexcept : word_(value) {}
    constexpr operator bool() const noexcept { return word_ != 0; }
    /// @}
};

namespace detail {

struct key_access;

/// A value in a record where it begins at a multiple of 8 and its presence word, directly before it, does not.
template <class T>
class ORLENTA_OVERLAY close_content {
    alignas(4) unsigned char bytes_[sizeof(T)];

  public:
    close_content() { ::new (static_cast<void*>(bytes_)) T{}; }
    close_content(const close_content& other) requires(__is_constructible(T, const T&)) {
        ::new (static_cast<void*>(bytes_)) T(other.get());
    }
    close_content(close_content&& other) noexcept {
        ::new (static_cast<void*>(bytes_)) T(std::move(other.get()));
    }
    close_content& operator=(const close_content& other) requires(__is_assignable(T&, const T&)) {
        get() = other.get();
        return *this;
    }
    close_content& operator=(close_content&& other) noexcept {
        get() = std::move(other.get());
        return *this;
    }
    ~close_content() { get().~T(); }

    T& get() noexcept { return *static_cast<T*>(static_cast<void*>(bytes_)); }
    const T& get() const noexcept { return *static_cast<const T*>(static_cast<const void*>(bytes_)); }
};

template <class T>
T& content(T& value) noexcept {
    return value;
}
template <class T>
T& content(close_content<T>& value) noexcept {
    return value.get();
}
template <class T>
const T& content(const close_content<T>& value) noexcept {
    return value.get();
}

inline void require_present(std::uint32_t has) {
    if (has == 0) [[unlikely]]
        misuse("orlenta: a component is used that is absent\n");
}

/// Whether a U is an optional of what makes a T: of the standard library, or as it stands in another place of a record.
template <class U, class T>
concept optional_of = requires(U& other) {
    { other.has_value() } -> std::same_as<bool>;
    requires __is_assignable(T&, decltype(*std::forward<U>(other)));
};

/// Whether a U makes an optional T. That it is none itself comes first, for that is asked of every record that is moved; and
/// the compiler's own words for these traits are those that cost least time.
template <class U, class T, class Optional>
concept taken_for = !__is_same(std::remove_cvref_t<U>, Optional) &&
                    ((__is_constructible(T, U&&) && __is_assignable(T&, U&&)) || optional_of<U, T>);

// What empty braces are, and nothing else.
class nothing {
    nothing() = delete;
};

// A text that may be absent is read as a view.
template <class T>
struct shown_as {
    using type = T;
};
template <class T>
requires requires { typename T::view_type; }
struct shown_as<T> {
    using type = typename T::view_type;
};

// Numbers by their value: -1 is not 4294967295.
template <class T, class U>
bool same(const T& a, const U& b) {
    if constexpr (std::is_integral_v<T> && std::is_integral_v<U>)
        return std::cmp_equal(a, +b);  // a bool or a character as a number
    else if constexpr (std::is_integral_v<U> && requires { typename T::number_type; })
        return std::cmp_equal(static_cast<typename T::number_type>(a), +b);
    else
        return a == b;
}

}  // namespace detail

/// Like std::optional, in the record: setting the value sets its presence. Using an absent value ends the program.
template <class T, class Content>
class ORLENTA_OVERLAY basic_optional {
    std::uint32_t has_ = 0;
    Content content_{};

  public:
    /// As in std::optional.
    /// @{
    using value_type = T;

    basic_optional() noexcept {}
    basic_optional(std::nullopt_t) noexcept {}
    template <class U>
    requires detail::taken_for<U, T, basic_optional> basic_optional(U&& value) {
        *this = std::forward<U>(value);
    }
    template <class U>
    requires detail::taken_for<U, T, basic_optional> basic_optional& operator=(U&& value) {
        if constexpr (detail::optional_of<U, T>) {
            if (!value.has_value()) return reset(), *this;
            return *this = *std::forward<U>(value);
        } else {
            detail::content(content_) = detail::converted<T>(std::forward<U>(value));
            has_ = 1;
            return *this;
        }
    }
    // For components in braces: opt = {.lat = 1}. A word has none, so that opt = {} is as with std::optional.
    basic_optional(T&& value) requires(__is_class(T)) { *this = std::move(value); }
    basic_optional& operator=(T&& value) requires(__is_class(T)) {
        detail::content(content_) = std::move(value);
        has_ = 1;
        return *this;
    }
    basic_optional& operator=(std::nullopt_t) {
        reset();
        return *this;
    }
    // For empty braces, which would else be an empty value as well as an empty optional.
    basic_optional& operator=(std::initializer_list<detail::nothing>) {
        reset();
        return *this;
    }

    bool has_value() const noexcept { return has_ != 0; }
    explicit operator bool() const noexcept { return has_value(); }

    T& operator*() & { return detail::require_present(has_), detail::content(content_); }
    const T& operator*() const& { return detail::require_present(has_), detail::content(content_); }
    T* operator->() { return &**this; }
    const T* operator->() const { return &**this; }
#ifdef __cpp_exceptions
    T& value() & { return has_value() ? detail::content(content_) : throw std::bad_optional_access(); }
    const T& value() const& {
        return has_value() ? detail::content(content_) : throw std::bad_optional_access();
    }
#endif
    template <class U>
    auto value_or(U&& other) const {
        using result = typename detail::shown_as<T>::type;
        return has_value() ? static_cast<result>(detail::content(content_))
                           : static_cast<result>(detail::converted<result>(std::forward<U>(other)));
    }
    /// @}

    /// A new value, present, made of `arguments`.
    template <class... Arguments>
    T& emplace(Arguments&&... arguments) {
        detail::content(content_) = detail::made<T>(std::forward<Arguments>(arguments)...);
        has_ = 1;
        return detail::content(content_);
    }
    /// Makes it absent.
    void reset() {
        detail::content(content_) = T{};
        has_ = 0;
    }
};

/// As in std::optional.
/// @{
template <class T, class Content>
bool operator==(const basic_optional<T, Content>& a, std::nullopt_t) {
    return !a.has_value();
}
template <class T, class Content, class OtherContent>
bool operator==(const basic_optional<T, Content>& a, const basic_optional<T, OtherContent>& b) {
    return a.has_value() == b.has_value() && (!a.has_value() || *a == *b);
}
template <class T, class Content, class U>
requires requires(const T& t, const U& u) { t == u; }
bool operator==(const basic_optional<T, Content>& a, const U& b) {
    return a.has_value() && detail::same(*a, b);
}
/// @}

/// A component that may be absent.
template <class T>
using optional = basic_optional<T, T>;
/// The same where its value does not begin where it would in a record of its own.
template <class T>
using close_optional = basic_optional<T, detail::close_content<T>>;

/// A NULL that may be absent: a presence word alone.
class ORLENTA_OVERLAY optional_null {
    std::uint32_t has_ = 0;

  public:
    /// As in std::optional.
    /// @{
    optional_null() = default;
    optional_null(null) noexcept : has_(1) {}
    optional_null(std::nullopt_t) noexcept {}
    bool has_value() const noexcept { return has_ != 0; }
    explicit operator bool() const noexcept { return has_value(); }
    void emplace() noexcept { has_ = 1; }
    void reset() noexcept { has_ = 0; }
    /// @}
};

/// A component that selects the type of an open type beside it, and is set with that.
template <class T>
class ORLENTA_OVERLAY key {
    T word_ = {};
    friend struct detail::key_access;

  public:
    /// To be read alone.
    /// @{
    key() = default;
    constexpr T get() const noexcept { return word_; }
    constexpr operator T() const noexcept { return word_; }
    /// @}
};

/// A record apart: of types that contain themselves. One that is not there yet is made when it is written to.
template <class T>
class ORLENTA_OVERLAY indirect {
    T* record_ = nullptr;

    T& made() {
        if (record_ == nullptr) record_ = ::new (detail::allocated(asn1_malloc(sizeof(T)))) T{};
        return *record_;
    }
    const T& there() const {
        if (record_ == nullptr) [[unlikely]]
            detail::misuse("orlenta: a component is used that is not there\n");
        return *record_;
    }

  public:
    /// As in std::unique_ptr.
    /// @{
    indirect() = default;
    indirect(indirect&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
    indirect& operator=(indirect&& other) noexcept {
        indirect given(std::move(other));
        std::swap(record_, given.record_);
        return *this;
    }
    ~indirect() {
        if (record_ == nullptr) return;
        record_->~T();
        asn1_free(record_);
    }

    explicit operator bool() const noexcept { return record_ != nullptr; }
    T& operator*() { return made(); }
    const T& operator*() const { return there(); }
    T* operator->() { return &made(); }
    const T* operator->() const { return &there(); }
    /// @}
};

}  // namespace orlenta
