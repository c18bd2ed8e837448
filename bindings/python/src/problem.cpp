// SPDX-License-Identifier: Apache-2.0
#include "problem.hpp"

#include "state.hpp"

namespace orlenta::python {

Problem problem_of(const asn1_error& error, bool is_text, const char* otherwise) {
    Problem problem;
    problem.message = error.message[0] ? error.message : otherwise;
    problem.path = error.path;
    if (is_text) {
        problem.line = error.line;
    } else {
        problem.bit = error.bit_position;
    }
    return problem;
}

void put_before(Problem& problem, PyObject* name) {
    const char* text = PyUnicode_AsUTF8AndSize(name, nullptr);
    if (!text) return PyErr_Clear();
    bool needs_point = !problem.path.empty() && problem.path[0] != '[';
    problem.path = text + std::string(needs_point ? "." : "") + problem.path;
}

void put_before(Problem& problem, Py_ssize_t index) {
    bool needs_point = !problem.path.empty() && problem.path[0] != '[';
    problem.path = "[" + std::to_string(index) + "]" + (needs_point ? "." : "") + problem.path;
}

static PyObject* class_of(Fault fault) {
    switch (fault) {
        case Fault::decode: return state.decode_error;
        case Fault::encode: return state.encode_error;
        default: return state.constraint_error;
    }
}

static PyObject* number_or_none(int64_t number) { return number < 0 ? none() : PyLong_FromLongLong(number); }

PyObject* exception_of(Fault fault, const Problem& problem) {
    return PyObject_CallFunction(class_of(fault), "ssNN", problem.message.c_str(), problem.path.c_str(),
                                 number_or_none(problem.bit), number_or_none(problem.line));
}

PyObject* raise(Fault fault, const Problem& problem) {
    if (PyErr_Occurred()) return nullptr;
    Ref exception(exception_of(fault, problem));
    if (exception) PyErr_SetObject(class_of(fault), exception.object);
    return nullptr;
}

}  // namespace orlenta::python
