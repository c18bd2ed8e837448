// SPDX-License-Identifier: Apache-2.0
/// @file
/// Values to bytes and text and back, and the check.
#pragma once

#include <orlenta/ber.h>
#include <orlenta/check.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/xer.h>

#include <orlenta/cpp/result.hpp>
#include <orlenta/cpp/value.hpp>

namespace orlenta {

/// An encoding, in a block from the library's allocator.
class bytes {
    std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;

  public:
    /// Movable, not copyable.
    /// @{
    bytes() = default;
    bytes(std::uint8_t* block, std::size_t size) noexcept : data_(block), size_(size) {}
    bytes(bytes&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    bytes& operator=(bytes&& other) noexcept {
        bytes given(std::move(other));
        std::swap(data_, given.data_);
        std::swap(size_, given.size_);
        return *this;
    }
    ~bytes() { asn1_free(data_); }
    /// @}

    /// As in a constant container.
    /// @{
    const std::uint8_t* data() const noexcept { return data_; }
    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    const std::uint8_t* begin() const noexcept { return data_; }
    const std::uint8_t* end() const noexcept { return data_ + size_; }
    std::uint8_t operator[](std::size_t index) const { return data_[index]; }
    std::string_view view() const noexcept { return {reinterpret_cast<const char*>(data_), size_}; }
    /// @}
};

// ---- encoding rules -----------------------------------------------------------------------------------------

namespace detail {

using decoder = std::int64_t(void**, const asn1_type_desc*, const std::uint8_t*, std::uint64_t, asn1_error*);
using reporting_encoder = std::int64_t(std::uint8_t**, const asn1_type_desc*, const void*, asn1_error*);
using silent_encoder = std::int64_t(std::uint8_t**, const asn1_type_desc*, const void*);

/// `Bounded`: the encoder itself refuses what is outside its type.
template <decoder* Decode, reporting_encoder* Encode, bool Bounded>
struct reporting_rules {
    static constexpr bool bounded = Bounded;
    static std::int64_t encode(std::uint8_t** out, const asn1_type_desc* type, const void* record,
                               asn1_error* reason) {
        return Encode(out, type, record, reason);
    }
    static constexpr decoder* decode = Decode;
};

template <decoder* Decode, silent_encoder* Encode>
struct silent_rules {
    static constexpr bool bounded = false;
    static std::int64_t encode(std::uint8_t** out, const asn1_type_desc* type, const void* record,
                               asn1_error*) {
        return Encode(out, type, record);
    }
    static constexpr decoder* decode = Decode;
};

inline std::int64_t encode_ber(std::uint8_t** out, const asn1_type_desc* type, const void* record) {
    asn1_ber_encode_params params = {};
    return asn1_ber_encode(out, type, record, &params);
}

}  // namespace detail

/// Encoding rules, for encode() and decode().
/// @{
inline constexpr detail::reporting_rules<asn1_uper_decode, asn1_uper_encode2, true> uper;
inline constexpr detail::reporting_rules<asn1_aper_decode, asn1_aper_encode2, true> aper;
inline constexpr detail::reporting_rules<asn1_oer_decode, asn1_oer_encode2, false> oer;
inline constexpr detail::silent_rules<asn1_ber_decode, detail::encode_ber> ber;
inline constexpr detail::silent_rules<asn1_ber_decode, asn1_der_encode> der;
inline constexpr detail::silent_rules<asn1_jer_decode, asn1_jer_encode> jer;
inline constexpr detail::silent_rules<asn1_xer_decode, asn1_xer_encode> xer;
inline constexpr detail::silent_rules<asn1_gser_decode, asn1_gser_encode> gser;
/// @}

/// One of these.
template <class Rules>
concept encoding_rules = requires(void** out, const asn1_type_desc* type, asn1_error* reason) {
    { Rules::decode(out, type, nullptr, 0, reason) } -> std::same_as<std::int64_t>;
};

// ---- functions ----------------------------------------------------------------------------------------------

namespace detail {

/// What an encoder that failed has not told: the check knows which component is not as its type wants it.
[[gnu::cold, gnu::noinline]] inline void explain_failure(error& reason, const asn1_type_desc* type,
                                                         const void* record) {
    asn1_error* told = reason.record();
    if (told->message[0] != '\0' || orlenta_check_values(type, record, told) == 0) return;
    asn1_pstrcpy(told->message, sizeof told->message, "the value cannot be encoded");
}

}  // namespace detail

/// Encodes by the rules, as encode(uper, frame). A value outside its type fails: PER has no form for it; for other rules,
/// which would write it as it is, the value is checked first.
template <encoding_rules Rules, described T>
result<bytes> encode(Rules, const T& value) {
    std::uint8_t* block = nullptr;
    error reason;
    if constexpr (!Rules::bounded)
        if (orlenta_check_values(descriptor_of<T>(), &value, reason.record()) == 0) return unexpected(reason);
    std::int64_t size = Rules::encode(&block, descriptor_of<T>(), &value, reason.record());
    if (size < 0) [[unlikely]] {
        detail::explain_failure(reason, descriptor_of<T>(), &value);
        return unexpected(reason);
    }
    return bytes(block, static_cast<std::size_t>(size));
}
/// The same for an owned value.
template <encoding_rules Rules, described T>
result<bytes> encode(Rules rules, const value<T>& value) {
    return encode(rules, *value);
}

/// Decodes the value at the start of `input`, as decode<cn::MessageFrame>(uper, input). `used`, if not null, receives how
/// many bytes it took.
template <described T, encoding_rules Rules>
result<value<T>> decode(Rules, byte_view input, std::size_t* used = nullptr) {
    void* record = nullptr;
    error reason;
    std::int64_t size =
        Rules::decode(&record, descriptor_of<T>(), input.data(), input.size(), reason.record());
    if (size < 0) [[unlikely]]
        return unexpected(reason);
    if (used != nullptr) *used = static_cast<std::size_t>(size);
    return value<T>::adopt(record);
}

/// Holds the value, and all within it, against the constraints of its type: orlenta_check.
template <described T>
result<void> check(const T& value) {
    error reason;
    if (orlenta_check(descriptor_of<T>(), &value, reason.record()) == 0) return unexpected(reason);
    return {};
}
/// The same for an owned value.
template <described T>
result<void> check(const value<T>& value) {
    return check(*value);
}

/// As JSON, with `indent` spaces per level; on one line if that is 0.
template <described T>
result<std::string> to_json(const T& value, int indent = 0) {
    asn1_jer_encode_options options = {};
    options.indent = indent;
    std::uint8_t* block = nullptr;
    std::int64_t size = asn1_jer_encode2(&block, descriptor_of<T>(), &value, &options);
    if (size < 0) [[unlikely]] {
        error reason;
        detail::explain_failure(reason, descriptor_of<T>(), &value);
        return unexpected(reason);
    }
    std::string text(bytes(block, static_cast<std::size_t>(size)).view());
    while (text.ends_with('\n')) text.pop_back();
    return text;
}
/// The same for an owned value.
template <described T>
result<std::string> to_json(const value<T>& value, int indent = 0) {
    return to_json(*value, indent);
}

/// A value from JSON (jer.h).
template <described T>
result<value<T>> from_json(std::string_view text) {
    return decode<T>(jer, text);
}

/// A deep copy.
template <described T>
value<T> clone(const T& record) {
    return value<T>::adopt(detail::allocated(asn1_clone_value(descriptor_of<T>(), &record)));
}

}  // namespace orlenta
