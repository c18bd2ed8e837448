// The release of a value from within a walk that has used a part of the stack.
#pragma once

#include <orlenta/type.h>

#include "core/stack.hpp"

namespace orlenta {

// asn1_free_value() on what the walk's guard leaves of the stack.
void release_value(const stack_guard& stack, const asn1_type_desc* desc, void* value);

}  // namespace orlenta
