// SPDX-License-Identifier: Apache-2.0
/// @file
/// The typed layer for C++20, on which the generated <orlenta/cn.hpp> and the like are built. Header only, over the
/// records and functions of the C library.
///
/// A type of a message set is a class with the layout of its C record, so nothing is copied on the way:
/// orlenta::cn::Position3D is asn1_CN_Position3D. Components are members; those that may be absent behave like
/// std::optional. orlenta::value<T> owns a whole message.
///
/// The only exceptions are those of value() and, as with standard containers, std::bad_alloc if memory runs out while a
/// value is built. Using a component that is absent, or an alternative that is not chosen, ends the program, so ask
/// before.
#pragma once

#include <orlenta/cpp/choice.hpp>
#include <orlenta/cpp/codec.hpp>
#include <orlenta/cpp/integer.hpp>
#include <orlenta/cpp/list.hpp>
#include <orlenta/cpp/open.hpp>
#include <orlenta/cpp/optional.hpp>
#include <orlenta/cpp/print.hpp>
#include <orlenta/cpp/result.hpp>
#include <orlenta/cpp/string.hpp>
#include <orlenta/cpp/value.hpp>
