// SPDX-License-Identifier: Apache-2.0
#include "arguments.hpp"

namespace orlenta::python {

static int place_of(const Signature& signature, PyObject* name) {
    for (int i = 0; i < signature.count; ++i) {
        if (PyUnicode_CompareWithASCIIString(name, signature.names[i]) == 0) return i;
    }
    return -1;
}

static bool take_named(const Call& call, const Signature& signature, PyObject** taken) {
    Py_ssize_t count = call.names ? PyTuple_Size(call.names) : 0;
    for (Py_ssize_t i = 0; i < count; ++i) {
        PyObject* name = PyTuple_GetItem(call.names, i);
        int place = place_of(signature, name);
        if (place < 0 || taken[place]) {
            PyErr_Format(PyExc_TypeError,
                         place < 0 ? "%s() got an unexpected keyword argument '%U'"
                                   : "%s() got multiple values for argument '%U'",
                         signature.function, name);
            return false;
        }
        taken[place] = call.values[call.count + i];
    }
    return true;
}

bool take_arguments(const Call& call, const Signature& signature, PyObject** taken) {
    if (call.count > signature.positional) {
        PyErr_Format(PyExc_TypeError, "%s() takes at most %d positional arguments (%zd given)",
                     signature.function, signature.positional, call.count);
        return false;
    }
    for (int i = 0; i < signature.count; ++i) taken[i] = i < call.count ? call.values[i] : nullptr;
    if (call.names && !take_named(call, signature, taken)) return false;
    for (int i = 0; i < signature.required; ++i) {
        if (taken[i]) continue;
        PyErr_Format(PyExc_TypeError, "%s() misses the argument '%s'", signature.function,
                     signature.names[i]);
        return false;
    }
    return true;
}

bool take_flag(PyObject* argument, bool* flag) {
    int truth = argument ? PyObject_IsTrue(argument) : 0;
    *flag = truth > 0;
    return truth >= 0;
}

bool take_number(PyObject* argument, long long least, long long most, const char* name, long long* number) {
    if (!argument) return true;
    long long value = PyLong_AsLongLong(argument);
    if (value == -1 && PyErr_Occurred()) return false;
    if (value < least || value > most) {
        PyErr_Format(PyExc_ValueError, "%s is not in %lld..%lld", name, least, most);
        return false;
    }
    *number = value;
    return true;
}

}  // namespace orlenta::python
