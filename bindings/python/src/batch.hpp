// SPDX-License-Identifier: Apache-2.0
// Many messages: taken some at a time, decoded without the interpreter's lock, on several threads if so wanted.
#pragma once

#include <functional>

#include "rules.hpp"

namespace orlenta::python {

// What becomes of a message that cannot be decoded.
enum class OnError { raise, none, give_back };

struct ManyOptions {
    DecodeOptions decode;
    OnError on_error = OnError::raise;
    long long threads = 1;
    PyObject* messages = nullptr;  // iterable of bytes-like objects, or, with offsets, one of these
    PyObject* offsets = nullptr;   // of the messages in the buffer, and its end; null: none
};

// A message, and what it became: a record, or a problem.
struct Slot {
    Message message;
    PyObject* holder = nullptr;  // owned; what the message lies in
    Decoded decoded;
    std::unique_ptr<Problem> problem;
};

// `rest` are the arguments rules, errors, threads, offsets and allow_trailing, null where there is none. False with an
// exception.
bool take_many_options(PyObject* messages, PyObject* const* rest, ManyOptions* options);

// Calls `use` for each message in order, with its number, under the interpreter's lock; records end with the batch.
// False with an exception, or if `use` says so.
bool for_each_message(Handle& handle, const ManyOptions& options,
                      const std::function<bool(Slot& slot, Py_ssize_t number)>& use);

// Raises the problem of a message, whose number the exception has as "index". False.
bool raise_at(const Problem& problem, Py_ssize_t number);

}  // namespace orlenta::python
