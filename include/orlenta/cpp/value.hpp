// SPDX-License-Identifier: Apache-2.0
/// @file
/// Owned values.
#pragma once

#include <orlenta/value.h>

#include <compare>
#include <orlenta/cpp/base.hpp>

namespace orlenta {

/// Owns a value of a generated type, with all that it holds. Movable; clone() makes a copy. An object that was moved from
/// is empty, and can only be assigned to.
template <described T>
class value {
    T* record_;

    struct taken {
        T* record;
    };
    explicit value(taken given) noexcept : record_(given.record) {}

  public:
    /// With all components absent, zero, empty, or what they are by DEFAULT.
    value() : record_(::new (detail::allocated(asn1_malloc(sizeof(T)))) T{}) {}
    /// Moves.
    /// @{
    value(value&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
    value& operator=(value&& other) noexcept {
        value given(std::move(other));
        std::swap(record_, given.record_);
        return *this;
    }
    ~value() { asn1_free_value(descriptor_of<T>(), record_); }
    /// @}

    /// Takes over a record from the C library, made by a decoder or by asn1_mallocz_value.
    static value adopt(void* record) noexcept { return value(taken{static_cast<T*>(record)}); }
    /// Gives the record up, to be released by asn1_free_value.
    T* release() noexcept { return std::exchange(record_, nullptr); }

    /// A deep copy.
    value clone() const { return adopt(detail::allocated(asn1_clone_value(descriptor_of<T>(), record_))); }

    /// As in std::unique_ptr.
    /// @{
    T& operator*() noexcept { return *record_; }
    const T& operator*() const noexcept { return *record_; }
    T* operator->() noexcept { return record_; }
    const T* operator->() const noexcept { return record_; }
    /// @}
    /// For functions of the C library, too.
    T* get() noexcept { return record_; }
    /// The same for a constant object.
    const T* get() const noexcept { return record_; }

    /// Whether they are the same.
    friend bool operator==(const value& a, const value& b) noexcept { return (a <=> b) == 0; }
    /// The order of asn1_cmp_value.
    friend std::strong_ordering operator<=>(const value& a, const value& b) noexcept {
        return asn1_cmp_value(descriptor_of<T>(), a.record_, b.record_) <=> 0;
    }
};

}  // namespace orlenta
