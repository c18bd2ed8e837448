// SPDX-License-Identifier: Apache-2.0
// What went wrong, and the exceptions that tell it.
#pragma once

#include <orlenta/error.h>

#include <string>

#include "python.hpp"

namespace orlenta::python {

enum class Fault { decode, encode, constraint };

// Filled where something fails, and completed by those who called.
struct Problem {
    std::string message;
    std::string path;
    int64_t bit = -1;   // -1: not known
    int32_t line = -1;  // of a text; -1: none

    bool is_set() const { return !message.empty(); }
};

// "is_text" tells whether lines count, or bits.
Problem problem_of(const asn1_error& error, bool is_text, const char* otherwise);

// The way to the part in which something failed grows from its end.
void put_before(Problem& problem, PyObject* name);
void put_before(Problem& problem, Py_ssize_t index);

// The exception for a problem; null with another exception without memory.
PyObject* exception_of(Fault fault, const Problem& problem);

// Raises it, unless an exception of the interpreter's own is on its way. Null always.
PyObject* raise(Fault fault, const Problem& problem);

}  // namespace orlenta::python
