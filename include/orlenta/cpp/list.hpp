// SPDX-License-Identifier: Apache-2.0
/// @file
/// SEQUENCE OF and SET OF.
#pragma once

#include <orlenta/build.h>

#include <initializer_list>
#include <orlenta/cpp/base.hpp>

namespace orlenta {

/// Like std::vector, over the record of a list; a contiguous range, and so convertible to std::span. The record tells
/// no capacity: push_back asks the allocator for room each time, which is cheap where the block has it.
template <class T>
class ORLENTA_OVERLAY list {
    T* data_ = nullptr;
    std::uint64_t count_ = 0;

    void take(void* block) { data_ = static_cast<T*>(detail::allocated(block)); }

    // Where one element more will stand.
    void* place() {
        take(orlenta_block_add(data_, count_, sizeof(T)));
        return data_ + count_;
    }

  public:
    /// As in std::vector.
    /// @{
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    list() = default;
    list(list&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), count_(std::exchange(other.count_, 0)) {}
    list& operator=(list&& other) noexcept {
        list given(std::move(other));
        std::swap(data_, given.data_);
        std::swap(count_, given.count_);
        return *this;
    }
    list(std::initializer_list<T> elements) : list() {
        reserve(elements.size());
        for (const T& element : elements) push_back(element);
    }
    ~list() { clear(); }

    std::size_t size() const noexcept { return static_cast<std::size_t>(count_); }
    bool empty() const noexcept { return count_ == 0; }
    T* data() noexcept { return data_; }
    const T* data() const noexcept { return data_; }
    T* begin() noexcept { return data_; }
    T* end() noexcept { return data_ + count_; }
    const T* begin() const noexcept { return data_; }
    const T* end() const noexcept { return data_ + count_; }
    T& operator[](std::size_t index) { return data_[index]; }
    const T& operator[](std::size_t index) const { return data_[index]; }
    T& front() { return data_[0]; }
    const T& front() const { return data_[0]; }
    T& back() { return data_[count_ - 1]; }
    const T& back() const { return data_[count_ - 1]; }
    /// @}

    /// A new element at the end, made of `arguments`. Pointers to elements become invalid.
    template <class... Arguments>
    T& emplace_back(Arguments&&... arguments) {
        if constexpr (sizeof...(Arguments) == 0) {
            T* element = ::new (place()) T{};
            return count_++, *element;
        } else {  // the arguments may be elements of the list
            T given = detail::made<T>(std::forward<Arguments>(arguments)...);
            T* element = ::new (place()) T(std::move(given));
            return count_++, *element;
        }
    }
    /// As in std::vector.
    /// @{
    void push_back(const T& element) { emplace_back(element); }
    void push_back(T&& element) { emplace_back(std::move(element)); }
    void pop_back() { data_[--count_].~T(); }
    /// @}

    /// Room for `count` elements in all, taken at once. As no capacity is kept, the next element that is added gives back
    /// what is more than it needs: resize() where the number is known.
    void reserve(std::size_t count) {
        if (count > count_) take(orlenta_block_grow(data_, count_, count, sizeof(T)));
    }
    /// As in std::vector.
    /// @{
    void resize(std::size_t count) {
        while (count_ > count) pop_back();
        reserve(count);
        for (; count_ < count; count_++) ::new (static_cast<void*>(data_ + count_)) T{};
    }
    void clear() noexcept {
        while (count_ > 0) pop_back();
        asn1_free(data_);
        data_ = nullptr;
    }
    /// @}
};

}  // namespace orlenta
