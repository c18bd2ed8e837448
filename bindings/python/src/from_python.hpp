// SPDX-License-Identifier: Apache-2.0
// Python objects as records in memory.
#pragma once

#include "plan.hpp"
#include "problem.hpp"
#include "schema.hpp"
#include "scratch.hpp"

namespace orlenta::python {

// A record of the type, in `scratch`; null with an exception, or with `problem` filled. It is good for reading alone.
const void* from_python(Schema& schema, const Plan* plan, PyObject* value, Scratch& scratch,
                        Problem& problem);

}  // namespace orlenta::python
