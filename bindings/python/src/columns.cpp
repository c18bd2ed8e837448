// SPDX-License-Identifier: Apache-2.0
// Single parts of many messages, each as a column.
#include <orlenta/integer.h>

#include "batch.hpp"
#include "core/descriptor.hpp"
#include "field_path.hpp"
#include "operations.hpp"
#include "state.hpp"
#include "to_python.hpp"

namespace orlenta::python {

namespace {

// A column begins with the sort of its first part, and becomes one of objects where another part is of another sort.
enum class Sort : uint8_t { nothing, boolean, integer, real, object };

struct Column {
    FieldPath path;
    Sort sort = Sort::nothing;
    std::vector<int64_t> integers;  // and bool
    std::vector<double> reals;
    Ref objects;
    std::vector<uint8_t> absent;  // a byte for each row
    bool has_absent = false;
};

}  // namespace

// ---- cells ----------------------------------------------------------------------------------------------------------

// A part as a number; false if it is none, or too large.
static bool number_of(const Part& part, Sort* sort, int64_t* integer, double* real) {
    switch (part.plan->form) {
        case Form::boolean: *sort = Sort::boolean; return *integer = load32(part.record) != 0, true;
        case Form::signed_word:
            *sort = Sort::integer;
            return *integer = static_cast<int32_t>(load32(part.record)), true;
        case Form::unsigned_word: *sort = Sort::integer; return *integer = load32(part.record), true;
        case Form::big_integer:
            *sort = Sort::integer;
            return asn1_integer_get_si64_ov(static_cast<const asn1_integer*>(part.record), integer) == 0;
        case Form::real: *sort = Sort::real; return *real = *static_cast<const double*>(part.record), true;
        default: return false;
    }
}

static PyObject* object_at(const Column& column, size_t row) {
    if (column.absent[row]) return none();
    switch (column.sort) {
        case Sort::boolean: return PyBool_FromLong(column.integers[row] != 0);
        case Sort::integer: return PyLong_FromLongLong(column.integers[row]);
        case Sort::real: return PyFloat_FromDouble(column.reals[row]);
        default: return none();
    }
}

static bool append(Column& column, PyObject* owned) {
    Ref object(owned);
    return object && PyList_Append(column.objects.object, object.object) == 0;
}

static bool turn_to_objects(Column& column, size_t rows) {
    if (column.sort == Sort::object) return true;
    column.objects = Ref(PyList_New(0));
    for (size_t row = 0; row < rows; ++row) {
        if (!column.objects || !append(column, object_at(column, row))) return false;
    }
    column.integers = {};
    column.reals = {};
    column.sort = Sort::object;
    return static_cast<bool>(column.objects);
}

static bool add_absent(Column& column) {
    column.has_absent = true;
    column.absent.push_back(1);
    switch (column.sort) {
        case Sort::object: return append(column, none());
        case Sort::real: column.reals.push_back(0); return true;
        case Sort::nothing: return true;
        default: column.integers.push_back(0); return true;
    }
}

// Rows that are absent so far have a place in the column too.
static void begin(Column& column, Sort sort) {
    column.sort = sort;
    size_t rows = column.absent.size();
    if (sort == Sort::real) {
        column.reals.resize(rows);
    } else {
        column.integers.resize(rows);
    }
}

static bool add_object(Schema& schema, Column& column, const Part& part, Problem& problem) {
    if (!turn_to_objects(column, column.absent.size())) return false;
    PyObject* object = to_python(schema, part.plan, part.record, problem);
    if (!object && !PyErr_Occurred()) return add_absent(column);
    column.absent.push_back(0);
    return append(column, object);
}

static bool add_part(Schema& schema, Column& column, const Part& part) {
    Sort sort = Sort::nothing;
    int64_t integer = 0;
    double real = 0;
    bool is_number = column.sort != Sort::object && number_of(part, &sort, &integer, &real);
    if (is_number && column.sort == Sort::nothing) begin(column, sort);
    if (!is_number || column.sort != sort) {
        Problem problem;
        return add_object(schema, column, part, problem);
    }
    column.absent.push_back(0);
    if (sort == Sort::real) {
        column.reals.push_back(real);
    } else {
        column.integers.push_back(integer);
    }
    return true;
}

static bool add_cell(Schema& schema, Column& column, const void* record) {
    Part part = {nullptr, nullptr};
    if (record) part = follow(schema, column.path, record);
    if (PyErr_Occurred()) return false;
    return part.record ? add_part(schema, column, part) : add_absent(column);
}

// ---- what is handed out ---------------------------------------------------------------------------------------------

template <typename Cell>
static PyObject* octets_of(const std::vector<Cell>& cells) {
    return PyByteArray_FromStringAndSize(reinterpret_cast<const char*>(cells.data()),
                                         static_cast<Py_ssize_t>(cells.size() * sizeof(Cell)));
}

static PyObject* cells_of(Column& column) {
    switch (column.sort) {
        case Sort::boolean:
        case Sort::integer: return octets_of(column.integers);
        case Sort::real: return octets_of(column.reals);
        default: return turn_to_objects(column, column.absent.size()) ? column.objects.release() : nullptr;
    }
}

// (sort, cells, which rows are absent): the package makes arrays of it.
static PyObject* finished(Column& column) {
    static constexpr const char* names[] = {"object", "bool", "int", "float", "object"};
    Ref cells(cells_of(column));
    Ref absent(column.has_absent ? octets_of(column.absent) : none());
    if (!cells || !absent) return nullptr;
    return Py_BuildValue("sOO", names[static_cast<int>(column.sort)], cells.object, absent.object);
}

static PyObject* finished(std::vector<Column>& columns) {
    Ref list(PyList_New(0));
    for (Column& column : columns) {
        Ref row(list ? finished(column) : nullptr);
        if (!row || PyList_Append(list.object, row.object) < 0) return nullptr;
    }
    return list.release();
}

// ---- the call -------------------------------------------------------------------------------------------------------

static bool add_column(const Handle& handle, PyObject* text, std::vector<Column>& columns) {
    const char* path = PyUnicode_Check(text) ? PyUnicode_AsUTF8AndSize(text, nullptr) : nullptr;
    if (!path) {
        if (!PyErr_Occurred()) PyErr_SetString(PyExc_TypeError, "a path is a str");
        return false;
    }
    Column& column = columns.emplace_back();
    if (parse_path(handle.plan, path, column.path)) return true;
    PyErr_Format(PyExc_ValueError, "%U has no part '%s': '%s' is not there", handle.name, path,
                 column.path.rest.c_str());
    return false;
}

static bool take_paths(const Handle& handle, PyObject* paths, std::vector<Column>& columns) {
    Ref iterator(PyObject_GetIter(paths));
    while (iterator) {
        Ref path(PyIter_Next(iterator.object));
        if (!path) break;
        if (!add_column(handle, path.object, columns)) return false;
    }
    return !PyErr_Occurred();
}

static bool add_row(Schema& schema, OnError on_error, std::vector<Column>& columns, const Slot& slot,
                    Py_ssize_t number) {
    if (slot.problem && on_error == OnError::raise) return raise_at(*slot.problem, number);
    for (Column& column : columns) {
        if (!add_cell(schema, column, slot.decoded.record)) return false;
    }
    return true;
}

static PyObject* make_columns(Handle& handle, const ManyOptions& options, PyObject* paths,
                              PyObject* missing) {
    std::vector<Column> columns;
    if (!take_paths(handle, paths, columns)) return nullptr;
    bool is_done = for_each_message(handle, options, [&](Slot& slot, Py_ssize_t number) {
        return add_row(*handle.schema, options.on_error, columns, slot, number);
    });
    Ref made(is_done ? finished(columns) : nullptr);
    return made ? PyObject_CallFunction(state.arrays, "OOO", paths, made.object, missing) : nullptr;
}

PyObject* columns_call(Handle& handle, const Call& call) {
    static const char* const names[] = {"messages", "paths",   "rules",          "errors",
                                        "threads",  "offsets", "allow_trailing", "missing"};
    PyObject* taken[8];
    ManyOptions options;
    if (!take_arguments(call, {"columns", names, 8, 2, 4}, taken) ||
        !take_many_options(taken[0], taken + 2, &options)) {
        return nullptr;
    }
    Ref paths(PySequence_List(taken[1]));
    try {
        return paths ? make_columns(handle, options, paths.object, taken[7] ? taken[7] : Py_None) : nullptr;
    } catch (const std::bad_alloc&) {
        return PyErr_NoMemory();
    }
}

}  // namespace orlenta::python
