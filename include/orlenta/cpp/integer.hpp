// SPDX-License-Identifier: Apache-2.0
/// @file
/// INTEGER beyond 32 bits.
#pragma once

#include <orlenta/integer.h>

#include <limits>
#include <optional>
#include <orlenta/cpp/base.hpp>
#include <string>

namespace orlenta {

namespace detail {

class ORLENTA_OVERLAY big_integer {
  protected:
    asn1_integer record_ = {};

    big_integer() = default;
    big_integer(big_integer&& other) noexcept : record_(std::exchange(other.record_, asn1_integer{})) {}
    big_integer& operator=(big_integer&& other) noexcept {
        big_integer given(std::move(other));
        std::swap(record_, given.record_);
        return *this;
    }
    ~big_integer() { asn1_integer_clear(&record_); }

    template <std::integral Int>
    void set(Int value) {
        int failed = 0;
        if constexpr (std::is_signed_v<Int>)
            failed = asn1_integer_set_si64(&record_, value);
        else
            failed = asn1_integer_set_ui64(&record_, value);
        if (failed != 0) out_of_memory();
    }

  public:
    /// The number, if it fits.
    std::optional<std::int64_t> to_int64() const noexcept {
        std::int64_t value = 0;
        if (asn1_integer_get_si64_ov(&record_, &value) != 0) return std::nullopt;
        return value;
    }
    /// The number, if it fits.
    std::optional<std::uint64_t> to_uint64() const noexcept {
        std::uint64_t value = 0;
        if (asn1_integer_get_ui64_ov(&record_, &value) != 0) return std::nullopt;
        return value;
    }
    /// In decimal digits.
    std::string to_string() const {
        char* block = nullptr;
        std::size_t length = 0;
        const char* digits = asn1_integer_to_str(&record_, &block, &length);
        if (digits == nullptr) out_of_memory();
        std::string text(digits, length);
        asn1_free(block);
        return text;
    }
};

}  // namespace detail

/// A number whose bounds fit `Int`, of 64 bits. One that does not fit, as an extensible type may have it, is held as it is,
/// and reads as the nearest that does.
template <class Int>
class ORLENTA_OVERLAY integer : public detail::big_integer {
  public:
    /// What it is read as.
    using number_type = Int;

    /// Zero, or a number.
    /// @{
    integer() = default;
    template <std::integral From>
    integer(From value) {
        set(value);
    }
    template <std::integral From>
    integer& operator=(From value) {
        set(value);
        return *this;
    }
    /// @}

    /// The number.
    operator Int() const noexcept {
        using limits = std::numeric_limits<Int>;
        if constexpr (std::is_signed_v<Int>)
            return to_int64().value_or(record_.negative != 0 ? limits::min() : limits::max());
        else
            return to_uint64().value_or(record_.negative != 0 ? limits::min() : limits::max());
    }
};

/// A number of any size.
template <>
class ORLENTA_OVERLAY integer<void> : public detail::big_integer {
  public:
    /// Zero, or a number.
    /// @{
    integer() = default;
    template <std::integral From>
    integer(From value) {
        set(value);
    }
    template <std::integral From>
    integer& operator=(From value) {
        set(value);
        return *this;
    }
    /// @}
    /// Of decimal digits, as assign() takes them; the program ends if `text` is something else.
    explicit integer(std::string_view text) {
        if (!assign(text)) detail::misuse("orlenta: a number is made of what is none\n");
    }

    /// From decimal digits, with a minus before them if need be; false, and nothing changed, if `text` is something else.
    bool assign(std::string_view text) {
        std::size_t sign = text.starts_with('-') ? 1 : 0;
        if (text.size() == sign || text.find_first_not_of("0123456789", sign) != text.npos) return false;
        std::string terminated(text);
        const char* cursor = terminated.c_str();
        if (asn1_integer_from_str(&record_, &cursor) != 0) detail::out_of_memory();
        return true;
    }
};

}  // namespace orlenta
