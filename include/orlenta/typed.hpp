// SPDX-License-Identifier: Apache-2.0
/// @file
/// The typed layer for C++20: what the generated <orlenta/cn.hpp> and the like are made of. Header only, over the records
/// and functions of the C library.
///
/// A type of a message set is a class that lies over the C record of the same value, component for component, so that
/// nothing is copied on the way: orlenta::cn::Position3D is asn1_CN_Position3D. Components are members; those that may be
/// absent are as std::optional. Whole messages are owned by orlenta::value<T>.
///
/// There are no exceptions but of value() and, as with standard containers, std::bad_alloc where a value that is built needs
/// memory that is not to be had. Components that are absent, and alternatives that are not chosen, are no memory to be
/// misread: to use one ends the program, so ask before.
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
