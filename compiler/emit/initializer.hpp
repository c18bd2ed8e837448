// SPDX-License-Identifier: Apache-2.0
// Writes plain structs as C++ initializers, member by member, whatever members they have.
#pragma once

#include <fmt/format.h>

#include <iterator>
#include <string>
#include <type_traits>

namespace orlentac {

namespace members {

struct Anything {
    template <typename T>
    constexpr operator T() const;
};

// How many members an aggregate without arrays has: as many as it takes initializers.
template <typename T, typename... Initializers>
constexpr size_t count() {
    if constexpr (requires { T{Initializers{}..., Anything{}}; })
        return count<T, Initializers..., Anything>();
    else
        return sizeof...(Initializers);
}

#define ORLENTAC_MEMBERS(number, ...)                                             \
    if constexpr (count<T>() == number) {                                         \
        const auto& [__VA_ARGS__] = record;                                       \
        return [&](const auto&... member) { (visit(member), ...); }(__VA_ARGS__); \
    } else

// Calls `visit` with each member in turn.
template <typename T, typename Visit>
void visit_all(const T& record, Visit visit) {
    static_assert(count<T>() <= 24, "more members than are told apart here");
    ORLENTAC_MEMBERS(1, a)
    ORLENTAC_MEMBERS(2, a, b)
    ORLENTAC_MEMBERS(3, a, b, c)
    ORLENTAC_MEMBERS(4, a, b, c, d)
    ORLENTAC_MEMBERS(5, a, b, c, d, e)
    ORLENTAC_MEMBERS(6, a, b, c, d, e, f)
    ORLENTAC_MEMBERS(7, a, b, c, d, e, f, g)
    ORLENTAC_MEMBERS(8, a, b, c, d, e, f, g, h)
    ORLENTAC_MEMBERS(9, a, b, c, d, e, f, g, h, i)
    ORLENTAC_MEMBERS(10, a, b, c, d, e, f, g, h, i, j)
    ORLENTAC_MEMBERS(11, a, b, c, d, e, f, g, h, i, j, k)
    ORLENTAC_MEMBERS(12, a, b, c, d, e, f, g, h, i, j, k, l)
    ORLENTAC_MEMBERS(13, a, b, c, d, e, f, g, h, i, j, k, l, m)
    ORLENTAC_MEMBERS(14, a, b, c, d, e, f, g, h, i, j, k, l, m, n)
    ORLENTAC_MEMBERS(15, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o)
    ORLENTAC_MEMBERS(16, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p)
    ORLENTAC_MEMBERS(17, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q)
    ORLENTAC_MEMBERS(18, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r)
    ORLENTAC_MEMBERS(19, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s)
    ORLENTAC_MEMBERS(20, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t)
    ORLENTAC_MEMBERS(21, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u)
    ORLENTAC_MEMBERS(22, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v)
    ORLENTAC_MEMBERS(23, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w)
    ORLENTAC_MEMBERS(24, a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x) {}
}

#undef ORLENTAC_MEMBERS

}  // namespace members

// Appends `{1,0x20,...}`, or a number alone. An enumerator is its number behind what type_word(), declared beside the
// enumeration, gives as the name of that.
template <typename T>
void put_initializer(std::string& out, const T& value) {
    if constexpr (std::is_enum_v<T>) {
        fmt::format_to(std::back_inserter(out), "{}({})", type_word(value), static_cast<unsigned>(value));
    } else if constexpr (std::is_integral_v<T>) {
        auto number = +value;
        if (number < 10)
            fmt::format_to(std::back_inserter(out), "{}", number);
        else
            fmt::format_to(std::back_inserter(out), "0x{:X}", number);
    } else {
        const char* before = "{";
        members::visit_all(value, [&](const auto& member) {
            out += before;
            put_initializer(out, member);
            before = ",";
        });
        out += "}";
    }
}

}  // namespace orlentac
