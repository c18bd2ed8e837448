// SPDX-License-Identifier: Apache-2.0
// What the module has from the package around it.
#pragma once

#include "python.hpp"

namespace orlenta::python {

// One for the process: the module takes part in the main interpreter alone.
struct State {
    PyObject* decode_error;
    PyObject* encode_error;
    PyObject* constraint_error;
    PyObject* schema_error;
    PyObject* unknown_type;  // functions of the package
    PyObject* matching;
    PyObject* describe;
    PyObject* arrays;
    PyObject* restore;
    PyObject* component;  // named tuples
    PyObject* alternative;
    PyObject* item;
    PyObject* bits;
    PyObject* unit;
    PyObject* special;
    PyTypeObject* type_class;
    PyTypeObject* schema_class;
    PyObject* builtin;  // the schema of the message sets
};

extern State state;

// Neither a Type nor a Schema is made by calling its class.
inline PyObject* refuse_to_make(PyTypeObject*, PyObject*, PyObject*) {
    PyErr_SetString(PyExc_TypeError, "made by orlenta.type() and orlenta.compile()");
    return nullptr;
}

}  // namespace orlenta::python
