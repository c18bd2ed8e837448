// SPDX-License-Identifier: Apache-2.0
/// @file
/// What functions that may fail give: std::expected where the standard library has it, else a class of the same form.
#pragma once

#include <orlenta/error.h>

#include <exception>
#include <orlenta/cpp/base.hpp>
#include <string>
#include <version>
#ifdef __cpp_lib_expected
#include <expected>
#endif

namespace orlenta {

/// What was wrong, and where.
class error {
    asn1_error record_;

  public:
    /// Nothing wrong yet.
    error() noexcept { asn1_error_init(&record_); }

    /// What was wrong.
    std::string_view message() const noexcept { return record_.message; }
    /// Component path, as a.b[3].c; empty if it is not known.
    std::string_view path() const noexcept { return record_.path; }
    /// Binary encodings: bits from the start of the message.
    int bit_position() const noexcept { return record_.bit_position; }
    /// Text: line, from 1.
    int line() const noexcept { return record_.line; }

    /// Message and place in one line.
    std::string to_string() const {
        std::string text(message());
        if (record_.path[0] != '\0') text.append(" at ").append(path());
        if (record_.bit_position > 0)
            text.append(" (bit ").append(std::to_string(bit_position())).append(")");
        if (record_.line > 1) text.append(" (line ").append(std::to_string(line())).append(")");
        return text;
    }
    /// The record, for functions of the C library.
    asn1_error* record() noexcept { return &record_; }
};

#ifdef __cpp_lib_expected

/// A T, or what was wrong.
template <class T>
using result = std::expected<T, error>;

/// What makes a result of an error: return orlenta::unexpected(other.error()).
using unexpected = std::unexpected<error>;

#else

/// Thrown by result::value() of a failure.
class bad_result_access : public std::exception {
    orlenta::error reason_;

  public:
    /// Of the error given.
    explicit bad_result_access(const orlenta::error& reason) noexcept : reason_(reason) {}
    /// The message.
    const char* what() const noexcept override {
        return const_cast<bad_result_access*>(this)->reason_.record()->message;
    }
    /// The error.
    const orlenta::error& error() const noexcept { return reason_; }
};

/// What makes a result of an error: return orlenta::unexpected(other.error()).
class unexpected {
    orlenta::error reason_;

  public:
    /// Of the error given.
    explicit unexpected(const orlenta::error& reason) noexcept : reason_(reason) {}
    /// The error.
    const orlenta::error& error() const noexcept { return reason_; }
};

/// A T, or what was wrong: std::expected<T, error>, as far as the library needs it.
template <class T>
class result {
    union {
        T value_;
        orlenta::error error_;
    };
    bool has_value_;

    void require() const {
#ifdef __cpp_exceptions
        if (!has_value_) throw bad_result_access(error_);
#else
        if (!has_value_) detail::misuse("orlenta: the value of a result is used that is an error\n");
#endif
    }

  public:
    /// As in std::expected.
    /// @{
    using value_type = T;
    using error_type = orlenta::error;

    result(T&& value) noexcept : value_(std::move(value)), has_value_(true) {}
    result(const unexpected& failed) noexcept : error_(failed.error()), has_value_(false) {}
    result(result&& other) noexcept : has_value_(other.has_value_) {
        if (has_value_)
            ::new (static_cast<void*>(&value_)) T(std::move(other.value_));
        else
            ::new (static_cast<void*>(&error_)) orlenta::error(other.error_);
    }
    result& operator=(result&& other) noexcept {
        if (this == &other) return *this;
        this->~result();
        return *::new (static_cast<void*>(this)) result(std::move(other));
    }
    ~result() {
        if (has_value_) value_.~T();
    }

    bool has_value() const noexcept { return has_value_; }
    explicit operator bool() const noexcept { return has_value_; }
    T& operator*() & noexcept { return value_; }
    const T& operator*() const& noexcept { return value_; }
    T&& operator*() && noexcept { return std::move(value_); }
    T* operator->() noexcept { return &value_; }
    const T* operator->() const noexcept { return &value_; }
    T& value() & { return require(), value_; }
    const T& value() const& { return require(), value_; }
    T&& value() && { return require(), std::move(value_); }
    template <class U>
    T value_or(U&& other) && {
        return has_value_ ? std::move(value_) : static_cast<T>(std::forward<U>(other));
    }
    orlenta::error& error() noexcept { return error_; }
    const orlenta::error& error() const noexcept { return error_; }
    /// @}
};

/// Nothing, or what was wrong.
template <>
class result<void> {
    orlenta::error error_;
    bool has_value_ = true;

  public:
    /// As in std::expected.
    /// @{
    using value_type = void;
    using error_type = orlenta::error;

    result() = default;
    result(const unexpected& failed) noexcept : error_(failed.error()), has_value_(false) {}
    bool has_value() const noexcept { return has_value_; }
    explicit operator bool() const noexcept { return has_value_; }
    void operator*() const noexcept {}
    void value() const {
#ifdef __cpp_exceptions
        if (!has_value_) throw bad_result_access(error_);
#else
        if (!has_value_) detail::misuse("orlenta: the value of a result is used that is an error\n");
#endif
    }
    orlenta::error& error() noexcept { return error_; }
    const orlenta::error& error() const noexcept { return error_; }
    /// @}
};

#endif

}  // namespace orlenta
