// SPDX-License-Identifier: Apache-2.0
#include "operations.hpp"

#include <orlenta/check.h>
#include <orlenta/explain.h>
#include <orlenta/random.h>

#include "from_python.hpp"
#include "rules.hpp"
#include "state.hpp"
#include "to_python.hpp"
#include "type.hpp"

namespace orlenta::python {

Handle* take_handle(Schema& schema, PyObject* type) {
    if (PyUnicode_Check(type)) return find_handle(schema, type);
    if (PyObject_TypeCheck(type, state.type_class)) return &handle_of(type);
    PyErr_SetString(PyExc_TypeError, "the name of a type, or a Type, expected");
    return nullptr;
}

PyObject* call_with_type(Schema& schema, Operation* operation, PyObject* const* values, Py_ssize_t count,
                         PyObject* names) {
    if (count < 1) {
        PyErr_SetString(PyExc_TypeError, "a type expected, as the first argument");
        return nullptr;
    }
    Handle* handle = take_handle(schema, values[0]);
    return handle ? operation(*handle, {values + 1, count - 1, names}) : nullptr;
}

// ---- decode -----------------------------------------------------------------------------------------------------

// Decodes one message and gives it to `use`.
template <typename Use>
static PyObject* with_record(Handle& handle, const DecodeOptions& options, PyObject* data, const Use& use) {
    Octets octets;
    if (!octets.open(data)) return nullptr;
    ScratchLease lease;
    if (!lease.scratch) return PyErr_NoMemory();
    if (options.rules->decode_arena) codec_of(handle);
    Decoded decoded;
    Problem problem;
    if (!decode(handle, options, {octets.data, octets.size}, arena_of(*lease.scratch), decoded, problem)) {
        return raise(Fault::decode, problem);
    }
    PyObject* result = use(decoded, problem);
    return result || PyErr_Occurred() ? result : raise(Fault::decode, problem);
}

PyObject* decode_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"data", "rules", "allow_trailing"};
    PyObject* taken[3];
    DecodeOptions options;
    if (!take_arguments(call, {"decode", names, 3, 1, 2}, taken)) return nullptr;
    options.rules = find_rules(taken[1]);
    if (!options.rules || !take_flag(taken[2], &options.allow_trailing)) return nullptr;
    return with_record(handle, options, taken[0], [&](const Decoded& decoded, Problem& problem) {
        return to_python(*handle.schema, handle.plan, decoded.record, problem);
    });
}

PyObject* decode_with_length_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"data", "rules"};
    PyObject* taken[2];
    DecodeOptions options;
    options.allow_trailing = true;
    if (!take_arguments(call, {"decode_with_length", names, 2, 1, 2}, taken)) return nullptr;
    options.rules = find_rules(taken[1]);
    if (!options.rules) return nullptr;
    return with_record(handle, options, taken[0], [&](const Decoded& decoded, Problem& problem) -> PyObject* {
        PyObject* value = to_python(*handle.schema, handle.plan, decoded.record, problem);
        return value ? pair(value, PyLong_FromSize_t(decoded.used)) : nullptr;
    });
}

// ---- encode, check, convert ---------------------------------------------------------------------------------------

static bool passes(const Handle& handle, const void* record) {
    asn1_error error;
    asn1_error_init(&error);
    if (orlenta_check(handle.type, record, &error)) return true;
    Problem problem = problem_of(error, false, "a constraint is not met");
    problem.bit = -1;
    raise(Fault::constraint, problem);
    return false;
}

// Makes a record of `value` and gives it to `use`.
template <typename Use>
static PyObject* with_value(Handle& handle, PyObject* value, const Use& use) {
    ScratchLease lease;
    if (!lease.scratch) return PyErr_NoMemory();
    Problem problem;
    const void* record = from_python(*handle.schema, handle.plan, value, *lease.scratch, problem);
    return record ? use(record) : raise(Fault::encode, problem);
}

PyObject* encode_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"value", "rules", "check"};
    PyObject* taken[3];
    bool is_checked;
    if (!take_arguments(call, {"encode", names, 3, 1, 2}, taken)) return nullptr;
    const Rules* rules = find_rules(taken[1]);
    if (!rules || !take_flag(taken[2], &is_checked)) return nullptr;
    return with_value(handle, taken[0], [&](const void* record) -> PyObject* {
        if (is_checked && !passes(handle, record)) return nullptr;
        return encode(handle, *rules, record);
    });
}

PyObject* check_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"value"};
    PyObject* taken[1];
    if (!take_arguments(call, {"check", names, 1, 1, 1}, taken)) return nullptr;
    return with_value(handle, taken[0], [&](const void* record) -> PyObject* {
        return passes(handle, record) ? none() : nullptr;
    });
}

PyObject* convert_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"data", "from_", "to", "check", "allow_trailing"};
    PyObject* taken[5];
    DecodeOptions options;
    bool is_checked;
    if (!take_arguments(call, {"convert", names, 5, 3, 3}, taken)) return nullptr;
    options.rules = find_rules(taken[1]);
    const Rules* to = options.rules ? find_rules(taken[2]) : nullptr;
    if (!to || !take_flag(taken[3], &is_checked) || !take_flag(taken[4], &options.allow_trailing))
        return nullptr;
    return with_record(handle, options, taken[0], [&](const Decoded& decoded, Problem&) -> PyObject* {
        if (is_checked && !passes(handle, decoded.record)) return nullptr;
        return encode(handle, *to, decoded.record);
    });
}

// ---- random -------------------------------------------------------------------------------------------------------

PyObject* random_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"seed"};
    PyObject* taken[1];
    long long seed = 0;
    if (!take_arguments(call, {"random", names, 1, 0, 1}, taken)) return nullptr;
    if (taken[0] == nullptr || taken[0] == Py_None) {
        static uint32_t next_seed = 0;
        seed = ++next_seed * 2654435761u & UINT32_MAX;
    } else if (!take_number(taken[0], 0, UINT32_MAX, "seed", &seed)) {
        return nullptr;
    }
    Decoded value;
    value.type = handle.type;
    value.record = value.own = orlenta_random_valid(handle.type, static_cast<uint32_t>(seed));
    Problem problem;
    problem.message = "the type has no value that ends";
    if (!value.own) return raise(Fault::encode, problem);
    PyObject* object = to_python(*handle.schema, handle.plan, value.record, problem);
    return object ? object : raise(Fault::encode, problem);
}

// ---- explain ------------------------------------------------------------------------------------------------------

namespace {

struct Explanation {
    PyObject* list;
    bool has_failed;
};

}  // namespace

static const char* const kBitsKinds[] = {"value", "extension", "presence", "index",
                                         "tag",   "length",    "fragment", "padding",
                                         "end",   "unknown",   "trailing", "refused"};

static void add_bits(void* user, const orlenta_bits* bits) {
    Explanation& explanation = *static_cast<Explanation*>(user);
    if (explanation.has_failed) return;
    Ref value(bits->value ? PyUnicode_DecodeUTF8(bits->value, static_cast<Py_ssize_t>(bits->value_length),
                                                 "surrogateescape")
                          : none());
    Ref row(value ? PyObject_CallFunction(state.bits, "KKsssO", static_cast<unsigned long long>(bits->offset),
                                          static_cast<unsigned long long>(bits->width),
                                          kBitsKinds[bits->kind], bits->text, bits->path, value.object)
                  : nullptr);
    explanation.has_failed = !row || PyList_Append(explanation.list, row.object) < 0;
}

PyObject* explain_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"data", "rules"};
    PyObject* taken[2];
    if (!take_arguments(call, {"explain", names, 2, 1, 2}, taken)) return nullptr;
    const Rules* rules = find_rules(taken[1]);
    Octets octets;
    if (!rules || !octets.open(taken[0])) return nullptr;
    if (rules->explained < 0) {
        PyErr_Format(PyExc_ValueError, "%s is text, which explains itself", rules->name);
        return nullptr;
    }
    Explanation explanation = {PyList_New(0), false};
    if (!explanation.list) return nullptr;
    orlenta_explain(handle.type, rules->explained, octets.data, octets.size, add_bits, &explanation, nullptr);
    if (explanation.has_failed) Py_CLEAR(explanation.list);
    return explanation.list;
}

}  // namespace orlenta::python
