// SPDX-License-Identifier: Apache-2.0
#include "batch.hpp"
#include "operations.hpp"
#include "to_python.hpp"

namespace orlenta::python {

// The value, or what stands for it. Null with an exception.
static PyObject* value_of(const Handle& handle, OnError on_error, const Slot& slot, Py_ssize_t number) {
    Problem problem;
    if (!slot.problem) {
        PyObject* value = to_python(*handle.schema, handle.plan, slot.decoded.record, problem);
        if (value || PyErr_Occurred()) return value;
    }
    const Problem& told = slot.problem ? *slot.problem : problem;
    if (on_error == OnError::none) return none();
    if (on_error == OnError::give_back) return exception_of(Fault::decode, told);
    raise_at(told, number);
    return nullptr;
}

PyObject* decode_many_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"messages", "rules",   "errors",
                                        "threads",  "offsets", "allow_trailing"};
    PyObject* taken[6];
    ManyOptions options;
    if (!take_arguments(call, {"decode_many", names, 6, 1, 3}, taken) ||
        !take_many_options(taken[0], taken + 1, &options)) {
        return nullptr;
    }
    Ref list(PyList_New(0));
    if (!list) return nullptr;
    bool is_done = for_each_message(handle, options, [&](Slot& slot, Py_ssize_t number) {
        Ref value(value_of(handle, options.on_error, slot, number));
        return value && PyList_Append(list.object, value.object) == 0;
    });
    return is_done ? list.release() : nullptr;
}

}  // namespace orlenta::python
