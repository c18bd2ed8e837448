// SPDX-License-Identifier: Apache-2.0
// Operations that cannot be refused, on what a walk's guard leaves of the stack: they go on without recursion where
// that is not enough.
#pragma once

#include <orlenta/type.h>

#include "core/stack.hpp"

namespace orlenta {

// asn1_free_value() (release.cpp).
void release_value(const stack_guard& stack, const asn1_type_desc* desc, void* value);

// asn1_free_value_struct() (release.cpp).
void release_struct(const stack_guard& stack, const asn1_type_desc* desc, void* value);

// asn1_cmp_value() (compare.cpp).
int compare_values(const stack_guard& stack, const asn1_type_desc* desc, const void* a, const void* b);

}  // namespace orlenta
