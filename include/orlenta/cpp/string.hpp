// SPDX-License-Identifier: Apache-2.0
/// @file
/// OCTET STRING, character strings, BIT STRING and OBJECT IDENTIFIER. A string owns a copy of what is assigned.
#pragma once

#include <orlenta/build.h>

#include <initializer_list>
#include <orlenta/cpp/base.hpp>
#include <string>

namespace orlenta {

namespace detail {

/// Pointer and length of a block that the record owns.
template <class Record>
class ORLENTA_OVERLAY block {
  protected:
    Record record_ = {};

    block() = default;
    block(block&& other) noexcept : record_(std::exchange(other.record_, Record{})) {}
    block& operator=(block&& other) noexcept {
        block given(std::move(other));
        std::swap(record_, given.record_);
        return *this;
    }
    ~block() { asn1_free(record_.data); }

    template <class Unit>
    std::span<const Unit> units() const noexcept {
        return {static_cast<const Unit*>(static_cast<const void*>(record_.data)),
                static_cast<std::size_t>(record_.length)};
    }
    void set(const void* data, std::size_t length, std::size_t unit) {
        if (orlenta_string_set(&record_, data, length, unit) != 0) out_of_memory();
    }

  public:
    std::size_t size() const noexcept { return static_cast<std::size_t>(record_.length); }
    bool empty() const noexcept { return record_.length == 0; }
};

}  // namespace detail

/// OCTET STRING.
class ORLENTA_OVERLAY octets : public detail::block<asn1_string> {
  public:
    /// From bytes, which are copied.
    /// @{
    octets() = default;
    octets(std::initializer_list<std::uint8_t> bytes) { *this = byte_view(bytes.begin(), bytes.size()); }
    template <class Bytes>
    requires(std::convertible_to<const Bytes&, byte_view>) octets(const Bytes& bytes) { *this = bytes; }
    template <class Bytes>
    requires(std::convertible_to<const Bytes&, byte_view>) octets& operator=(const Bytes& bytes) {
        byte_view view(bytes);
        set(view.data(), view.size(), 1);
        return *this;
    }
    octets& operator=(std::initializer_list<std::uint8_t> bytes) {
        return *this = byte_view(bytes.begin(), bytes.size());
    }
    /// @}

    /// The bytes.
    /// @{
    const std::uint8_t* data() const noexcept { return record_.data; }
    std::span<const std::byte> bytes() const noexcept { return units<std::byte>(); }
    operator std::span<const std::byte>() const noexcept { return bytes(); }
    std::string_view view() const noexcept { return {reinterpret_cast<const char*>(data()), size()}; }
    template <class Bytes>
    requires(std::convertible_to<const Bytes&, byte_view>) friend bool operator==(const octets& a,
                                                                                  const Bytes& b) noexcept {
        byte_view view(b);
        return a.view() == std::string_view(reinterpret_cast<const char*>(view.data()), view.size());
    }
    /// @}
};

/// A character string of code units that are `Char`.
template <class Char>
class ORLENTA_OVERLAY basic_text : public detail::block<asn1_string> {
  public:
    /// What it is assigned from and read as.
    using view_type = std::basic_string_view<Char>;

    /// From a text, which is copied.
    /// @{
    basic_text() = default;
    template <class Text>
    requires(std::convertible_to<const Text&, view_type>) basic_text(const Text& text) { *this = text; }
    template <class Text>
    requires(std::convertible_to<const Text&, view_type>) basic_text& operator=(const Text& text) {
        view_type view(text);
        set(view.data(), view.size(), sizeof(Char));
        return *this;
    }
    /// @}

    /// The text.
    /// @{
    view_type view() const noexcept {
        std::span<const Char> chars = this->template units<Char>();
        return {chars.data(), chars.size()};
    }
    operator view_type() const noexcept { return view(); }
    template <class Text>
    requires(std::convertible_to<const Text&, view_type>) friend bool operator==(const basic_text& a,
                                                                                 const Text& b) noexcept {
        return a.view() == view_type(b);
    }
    /// @}
};

/// Strings of 8 bits a character; BMPString; UniversalString.
/// @{
using text = basic_text<char>;
using text16 = basic_text<char16_t>;  // BMPString
using text32 = basic_text<char32_t>;  // UniversalString
/// @}

/// OBJECT IDENTIFIER and RELATIVE-OID, as the octets of their contents (X.690 clauses 8.19 and 8.20).
class ORLENTA_OVERLAY object_identifier : public octets {
  public:
    /// See octets.
    /// @{
    using octets::octets;
    using octets::operator=;
    /// @}
};

/// A BIT STRING whose bits are told by `Bit`, an enumeration or a number. One that has no bits yet gets `Least` of them when
/// one is set.
template <class Bit, std::size_t Least>
class ORLENTA_OVERLAY bits : public detail::block<asn1_bit_string> {
  public:
    /// From the bits that are one.
    /// @{
    bits() = default;
    bits(std::initializer_list<Bit> ones) { *this = ones; }
    bits& operator=(std::initializer_list<Bit> ones) {
        clear();
        if (Least != 0) set(static_cast<Bit>(0), false);
        for (Bit bit : ones) set(bit);
        return *this;
    }
    /// @}

    /// `count` bits of `bytes`, the first of which is bit 7 of the first byte.
    void assign(byte_view bytes, std::size_t count) {
        if (count > bytes.size() * 8) detail::misuse("orlenta: more bits than bytes\n");
        if (orlenta_bit_string_set(&record_, bytes.data(), count) != 0) detail::out_of_memory();
    }
    /// Sets one bit; the string grows if need be.
    void set(Bit bit, bool value = true) {
        if (orlenta_bit_string_set_bit(&record_, static_cast<std::uint64_t>(bit), value, Least) != 0)
            detail::out_of_memory();
    }
    /// No bits.
    void clear() noexcept {
        asn1_free(record_.data);
        record_ = {};
    }

    /// Whether the bit is there and one.
    /// @{
    bool test(Bit bit) const noexcept {
        return orlenta_bit_string_get_bit(&record_, static_cast<std::uint64_t>(bit)) != 0;
    }
    bool operator[](Bit bit) const noexcept { return test(bit); }
    /// @}
    /// The bytes.
    std::span<const std::byte> bytes() const noexcept {
        return {reinterpret_cast<const std::byte*>(record_.data), (size() + 7) / 8};
    }
    /// Whether they are as long and have the same bits.
    friend bool operator==(const bits& a, const bits& b) noexcept {
        for (std::size_t i = 0; i < a.size(); i++)
            if (a.test(static_cast<Bit>(i)) != b.test(static_cast<Bit>(i))) return false;
        return a.size() == b.size();
    }
};

}  // namespace orlenta
