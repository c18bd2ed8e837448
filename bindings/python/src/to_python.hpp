// SPDX-License-Identifier: Apache-2.0
// Records in memory as Python objects.
#pragma once

#include "plan.hpp"
#include "problem.hpp"
#include "schema.hpp"

namespace orlenta::python {

// Values nest no deeper than this, neither here nor on the way back: objects may refer to themselves, and each level
// takes of the thread's stack.
constexpr int kMostLevels = 512;

// A new reference; null with an exception, or with `problem` filled.
PyObject* to_python(Schema& schema, const Plan* plan, const void* record, Problem& problem);

// An ENUMERATED item and an alternative that the type does not know, from a later edition of it, are None and
// (None, None).

}  // namespace orlenta::python
