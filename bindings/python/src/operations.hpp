// SPDX-License-Identifier: Apache-2.0
// What can be done with values of a type: the calls that a Type, a Schema and the module have in common.
#pragma once

#include "arguments.hpp"
#include "schema.hpp"

namespace orlenta::python {

// Each takes the arguments behind the type.
PyObject* decode_call(Handle& handle, const Call& call);
PyObject* decode_with_length_call(Handle& handle, const Call& call);
PyObject* encode_call(Handle& handle, const Call& call);
PyObject* convert_call(Handle& handle, const Call& call);
PyObject* check_call(Handle& handle, const Call& call);
PyObject* random_call(Handle& handle, const Call& call);
PyObject* explain_call(Handle& handle, const Call& call);
PyObject* decode_many_call(Handle& handle, const Call& call);
PyObject* columns_call(Handle& handle, const Call& call);

using Operation = PyObject*(Handle&, const Call&);

// A function's first argument: a name, or a Type of any schema. Null with an exception.
Handle* take_handle(Schema& schema, PyObject* type);

// The same for a call whose first argument is the type.
PyObject* call_with_type(Schema& schema, Operation* operation, PyObject* const* values, Py_ssize_t count,
                         PyObject* names);

}  // namespace orlenta::python
