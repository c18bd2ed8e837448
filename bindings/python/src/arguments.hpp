// SPDX-License-Identifier: Apache-2.0
// Arguments of functions that are called by the vector protocol.
#pragma once

#include "python.hpp"

namespace orlenta::python {

// Those of one call, by position and by name.
struct Call {
    PyObject* const* values;
    Py_ssize_t count;  // by position
    PyObject* names;   // of those behind them; null: none
};

struct Signature {
    const char* function;
    const char* const* names;
    int count;
    int required;
    int positional;  // the first ones, that may come by position
};

// Borrowed references, null where there is no argument. False with TypeError.
bool take_arguments(const Call& call, const Signature& signature, PyObject** taken);

// Of an optional argument. False with an exception.
bool take_flag(PyObject* argument, bool* flag);
bool take_number(PyObject* argument, long long least, long long most, const char* name, long long* number);

}  // namespace orlenta::python
