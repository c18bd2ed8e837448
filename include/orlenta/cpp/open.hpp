// SPDX-License-Identifier: Apache-2.0
/// @file
/// Open types: a value of any type, with that type's descriptor, or the bytes of an encoding that is not known further.
#pragma once

#include <orlenta/build.h>

#include <orlenta/cpp/base.hpp>
#include <orlenta/cpp/optional.hpp>
#include <orlenta/cpp/value.hpp>

namespace orlenta {

/// Owns what it holds.
class ORLENTA_OVERLAY open {
    asn1_open_value record_ = {};

    void release() noexcept {
        if (record_.type != nullptr)
            asn1_free_value(record_.type, record_.data);
        else
            asn1_free(record_.data);
    }

  public:
    /// Movable, not copyable.
    /// @{
    open() = default;
    open(open&& other) noexcept : record_(std::exchange(other.record_, asn1_open_value{})) {}
    open& operator=(open&& other) noexcept {
        open given(std::move(other));
        std::swap(record_, given.record_);
        return *this;
    }
    ~open() { release(); }
    /// @}

    /// The type of the value; null for bytes.
    const asn1_type_desc* descriptor() const noexcept { return record_.type; }
    /// Whether there is neither value nor bytes.
    bool empty() const noexcept { return record_.data == nullptr; }

    /// The value, if it is of the type; else null.
    template <described T>
    T* get() noexcept {
        return static_cast<T*>(orlenta_open_get(&record_, descriptor_of<T>()));
    }
    /// The same for a constant object.
    template <described T>
    const T* get() const noexcept {
        return static_cast<const T*>(orlenta_open_get(&record_, descriptor_of<T>()));
    }
    /// The bytes, if there is no value.
    std::span<const std::byte> raw() const noexcept {
        if (record_.type != nullptr) return {};
        return {static_cast<const std::byte*>(record_.data), static_cast<std::size_t>(record_.length)};
    }

    /// A copy of an encoding. Whoever reads the message takes it for one by the rules of the message around.
    open& operator=(byte_view bytes) {
        auto* data = static_cast<std::uint8_t*>(detail::allocated(asn1_malloc(bytes.size())));
        if (bytes.size() != 0) std::memcpy(data, bytes.data(), bytes.size());
        hold(nullptr, data, bytes.size());
        return *this;
    }
    /// A new value of the type.
    template <described T>
    T& emplace() {
        return *(*this = value<T>()).template get<T>();
    }
    /// Takes over a value.
    template <described T>
    open& operator=(value<T>&& content) {
        hold(descriptor_of<T>(), content.release(), 0);
        return *this;
    }

    /// Takes over a value, or bytes if `type` is null; of no data the length does not count.
    void hold(const asn1_type_desc* type, void* data, std::size_t length) noexcept {
        release();
        record_ = {type, data, data != nullptr ? length : 0};
    }
    /// The value, if it is of the type; else null.
    void* content_if(const asn1_type_desc* type) const noexcept { return orlenta_open_get(&record_, type); }
};

/// A type that a key selects.
struct keyed_type {
    /// What the key is then.
    std::int64_t key;
    /// The type.
    const asn1_type_desc* descriptor;
};

/// An open type that a key beside it selects: read as any, set by the record's set_... alone.
class ORLENTA_OVERLAY keyed_open : open {
    friend struct detail::key_access;

  public:
    /// See open.
    using open::descriptor;
    /// See open.
    using open::empty;
    /// See open.
    using open::raw;
    /// The value, if it is of the type; else null.
    template <described T>
    const T* get() const noexcept {
        return open::get<T>();
    }
};

namespace detail {

/// What the setters and getters of the generated records do.
struct key_access {
    static open& opened(keyed_open& content) { return content; }
    static open& opened(optional<keyed_open>& content) { return content.emplace(); }
    static open& opened(close_optional<keyed_open>& content) { return content.emplace(); }
    static const open* look(const keyed_open& content) { return &content; }
    template <class Optional>
    static const open* look(const Optional& content) {
        return content ? static_cast<const open*>(&*content) : nullptr;
    }

    template <class T, class Content, class Key>
    static T& set(Content& content, key<Key>& selector, keyed_type row) {
        auto* data = static_cast<T*>(allocated(asn1_malloc(sizeof(T))));
        ::new (static_cast<void*>(data)) T{};
        opened(content).hold(row.descriptor, data, 0);
        selector.word_ = static_cast<Key>(row.key);
        return *data;
    }
    template <class T, class Content, class Key>
    static T& set(Content& content, key<Key>& selector, keyed_type row, value<T>&& given) {
        T* data = given.release();
        opened(content).hold(row.descriptor, data, 0);
        selector.word_ = static_cast<Key>(row.key);
        return *data;
    }
    template <class Content, class Key>
    static void set_raw(Content& content, key<Key>& selector, Key number, byte_view bytes) {
        opened(content) = bytes;
        selector.word_ = number;
    }
    template <class T, class Content, class Key>
    static T* get(const Content& content, const key<Key>& selector, keyed_type row) {
        const open* there = look(content);
        if (there == nullptr || selector.get() != static_cast<Key>(row.key)) return nullptr;
        return static_cast<T*>(there->content_if(row.descriptor));
    }
};

}  // namespace detail

}  // namespace orlenta
