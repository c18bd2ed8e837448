// SPDX-License-Identifier: Apache-2.0
/// @file
/// CHOICE.
#pragma once

#include <orlenta/build.h>

#include <orlenta/cpp/base.hpp>

namespace orlenta {

namespace detail {

/// @cond the type at an index: recursion that doxygen takes for a fault
template <std::size_t Index, class First, class... Others>
struct type_at : type_at<Index - 1, Others...> {};
template <class First, class... Others>
struct type_at<0, First, Others...> {
    using type = First;
};
/// @endcond

}  // namespace detail

/// An alternative of `Alternative`, an enumeration, whose types are `Types`, over the C record. A new one is the first
/// alternative.
template <class Record, class Alternative, class... Types>
class ORLENTA_OVERLAY basic_choice {
  protected:
    /// The C record.
    Record record_;

    /// All of the union, not its first member alone.
    void clear() noexcept { std::memset(&record_, 0, sizeof record_); }

    /// The union.
    void* payload() noexcept {
        if constexpr (requires { record_.u; })
            return &record_.u;
        else
            return &record_;
    }
    /// The same for a constant object.
    const void* payload() const noexcept { return const_cast<basic_choice*>(this)->payload(); }

    /// Ends the program unless the alternative is chosen.
    void require(Alternative wanted) const {
        if (which() != wanted) [[unlikely]]
            detail::misuse("orlenta: an alternative is used that is not chosen\n");
    }

    /// Looks for the alternative that is chosen, from `Index` on.
    template <std::size_t Index = 0, class Self, class Visitor>
    static decltype(auto) visit_from(Self& self, Visitor&& visitor) {
        if constexpr (Index + 1 < sizeof...(Types))
            if (self.record_.choice != Index)
                return visit_from<Index + 1>(self, std::forward<Visitor>(visitor));
        return std::forward<Visitor>(visitor)(self.template get<static_cast<Alternative>(Index)>());
    }

  public:
    /// The first alternative, of zeros.
    basic_choice() noexcept { clear(); }

    /// The enumeration of the alternatives.
    using alternative = Alternative;
    /// The type of an alternative.
    template <Alternative A>
    using type = typename detail::type_at<static_cast<std::size_t>(A), Types...>::type;

    /// The one that is chosen.
    Alternative which() const noexcept { return static_cast<Alternative>(record_.choice); }
    /// Whether it is `A`.
    template <Alternative A>
    bool holds() const noexcept {
        return which() == A;
    }

    /// The alternative `A`, null if another is chosen.
    template <Alternative A>
    type<A>* get_if() noexcept {
        return holds<A>() ? static_cast<type<A>*>(payload()) : nullptr;
    }
    /// The same for a constant object.
    template <Alternative A>
    const type<A>* get_if() const noexcept {
        return holds<A>() ? static_cast<const type<A>*>(payload()) : nullptr;
    }
    /// The same; ends the program if another is chosen.
    template <Alternative A>
    type<A>& get() {
        return require(A), *static_cast<type<A>*>(payload());
    }
    /// The same for a constant object.
    template <Alternative A>
    const type<A>& get() const {
        return require(A), *static_cast<const type<A>*>(payload());
    }

    /// `visitor` called with the alternative that is chosen; it must take all types.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) {
        return visit_from(*this, std::forward<Visitor>(visitor));
    }
    /// The same for a constant object.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return visit_from(*this, std::forward<Visitor>(visitor));
    }
};

/// One whose alternatives own nothing.
template <class Record, class Alternative, class... Types>
class ORLENTA_OVERLAY flat_choice : public basic_choice<Record, Alternative, Types...> {
    using base = basic_choice<Record, Alternative, Types...>;

  public:
    /// Chooses `A`, with the value given.
    template <Alternative A>
    auto& emplace(typename base::template type<A> value = {}) {
        this->clear();
        this->record_.choice = static_cast<std::uint32_t>(A);
        return *::new (this->payload()) typename base::template type<A>(value);
    }
};

/// One with alternatives that do, which the library releases by the descriptor.
template <const asn1_type_desc* Descriptor, class Record, class Alternative, class... Types>
class ORLENTA_OVERLAY choice : public basic_choice<Record, Alternative, Types...> {
    using base = basic_choice<Record, Alternative, Types...>;

  public:
    /// Movable, not copyable.
    /// @{
    choice() = default;
    choice(choice&& other) noexcept : base(other) { other.clear(); }
    choice& operator=(choice&& other) noexcept {
        choice given(std::move(other));  // which may lie in what is released
        std::swap(this->record_, given.record_);
        return *this;
    }
    ~choice() { asn1_free_value_struct(Descriptor, &this->record_); }
    /// @}

    /// Chooses `A`, with a fresh value.
    template <Alternative A>
    auto& emplace() {
        orlenta_choice_clear(&this->record_, Descriptor, sizeof(Record));
        this->record_.choice = static_cast<std::uint32_t>(A);
        return *::new (this->payload()) typename base::template type<A>{};
    }
    /// Chooses `A`, with the value given.
    template <Alternative A>
    auto& emplace(typename base::template type<A>&& value) {
        typename base::template type<A> given(std::move(value));
        return emplace<A>() = std::move(given);
    }
};

}  // namespace orlenta
