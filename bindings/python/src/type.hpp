// SPDX-License-Identifier: Apache-2.0
// The class Type: one type of a schema, with all that can be done with it and what it is made of.
#pragma once

#include "schema.hpp"

namespace orlenta::python {

struct TypeObject {
    PyObject_HEAD PyObject* schema;  // owned, and with it the handle
    Handle* handle;
};

inline Handle& handle_of(PyObject* type) { return *reinterpret_cast<TypeObject*>(type)->handle; }

PyTypeObject* make_type_class();

// A new reference. `schema` is the object whose schema has the handle.
PyObject* make_type(PyObject* schema, Handle& handle);

}  // namespace orlenta::python
