// SPDX-License-Identifier: Apache-2.0
// The module orlenta._orlenta, which the package orlenta shows to the world.
#include <orlenta/version.h>

#include "operations.hpp"
#include "schema.hpp"
#include "state.hpp"
#include "type.hpp"

namespace orlenta::python {

State state;

// ---- functions ----------------------------------------------------------------------------------------------------

template <Operation operation>
static PyObject* of_builtin(PyObject*, PyObject* const* values, Py_ssize_t count, PyObject* names) {
    return call_with_type(schema_of(state.builtin), operation, values, count, names);
}

template <Operation operation>
static PyMethodDef function(const char* name, const char* documentation) {
    return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(of_builtin<operation>)),
            METH_FASTCALL | METH_KEYWORDS, documentation};
}

static const char kDecode[] =
    "decode(type, /, data, rules='uper', *, allow_trailing=False)\n--\n\n"
    "The value that a message holds.\n\n"
    "type is a name, [Region.][Module.]Type, or a Type; data is bytes-like, or a str for the text rules; "
    "rules is\n"
    "'uper', 'aper', 'oer', 'ber', 'der', 'jer', 'xer' or 'gser'. Octets behind the message are an error "
    "unless\n"
    "allow_trailing says otherwise. Raises DecodeError.";
static const char kEncode[] =
    "encode(type, /, value, rules='uper', *, check=False)\n--\n\n"
    "The message that holds a value: bytes, or a str by the text rules.\n\n"
    "Names, kinds of objects, numbers and sizes are held against the type: EncodeError tells what does not "
    "fit, and\n"
    "where. With check, all constraints are: ConstraintError.";
static const char kConvert[] =
    "convert(type, /, data, from_, to, *, check=False, allow_trailing=False)\n--\n\n"
    "A message by other rules, without objects in between.";
static const char kCheck[] =
    "check(type, /, value)\n--\n\n"
    "Raises ConstraintError if the value breaks a constraint, EncodeError if it is none of the type.";
static const char kRandom[] = "random(type, /, seed=None)\n--\n\nA valid value, the same for the same seed.";
static const char kExplain[] =
    "explain(type, /, data, rules='uper')\n--\n\nWhat each bit of a message is, as a list of Bits.";
static const char kDecodeMany[] =
    "decode_many(type, /, messages, rules='uper', errors='raise', *, threads=1, offsets=None, "
    "allow_trailing=False)\n"
    "--\n\n"
    "The values of many messages, as a list.\n\n"
    "messages is an iterable of bytes-like objects, or with offsets one of them: message i lies between "
    "offsets[i] and\n"
    "offsets[i + 1]. With errors='none' None stands for a message that cannot be decoded, with 'return' the "
    "exception\n"
    "itself. Messages are decoded on as many threads, without the interpreter's lock.";

static const char kColumns[] =
    "columns(type, /, messages, paths, rules='uper', errors='raise', *, threads=1, offsets=None, "
    "allow_trailing=False, "
    "missing=None)\n--\n\n"
    "Single parts of many messages: a dict from paths to numpy arrays of one row for each message.\n\n"
    "A path is as 'coreData.lat', 'nodes[0].refPos.lat', or 'value.coreData.lat' through an open type. "
    "INTEGER gives\n"
    "int64, REAL float64, BOOLEAN bool, and all else objects. For a part that is absent stands missing, else "
    "NaN (with\n"
    "which an int64 column becomes float64) or None. With errors='none' a message that cannot be decoded has "
    "no part.\n"
    "Without numpy columns are of array.array or list. The other arguments are those of decode_many.\n\n"
    "pandas.DataFrame(orlenta.columns(...)) makes a table of it.";

static PyMethodDef functions[] = {function<decode_call>("decode", kDecode),
                                  function<encode_call>("encode", kEncode),
                                  function<convert_call>("convert", kConvert),
                                  function<check_call>("check", kCheck),
                                  function<random_call>("random", kRandom),
                                  function<explain_call>("explain", kExplain),
                                  function<decode_many_call>("decode_many", kDecodeMany),
                                  function<columns_call>("columns", kColumns),
                                  {"compile", compile_schema, METH_VARARGS, nullptr},
                                  {}};

// ---- the module ---------------------------------------------------------------------------------------------------

static bool import_from(const char* module, const char* name, PyObject** object) {
    Ref imported(PyImport_ImportModule(module));
    *object = imported ? PyObject_GetAttrString(imported.object, name) : nullptr;
    return *object != nullptr;
}

static bool import_all() {
    static const char errors[] = "orlenta._errors", parts[] = "orlenta._parts", names[] = "orlenta._names";
    return import_from(errors, "DecodeError", &state.decode_error) &&
           import_from(errors, "EncodeError", &state.encode_error) &&
           import_from(errors, "ConstraintError", &state.constraint_error) &&
           import_from(errors, "SchemaError", &state.schema_error) &&
           import_from(names, "unknown", &state.unknown_type) &&
           import_from(names, "matching", &state.matching) && import_from(names, "restore", &state.restore) &&
           import_from("orlenta._arrays", "arrays", &state.arrays) &&
           import_from("orlenta._notation", "describe", &state.describe) &&
           import_from(parts, "Component", &state.component) &&
           import_from(parts, "Alternative", &state.alternative) && import_from(parts, "Item", &state.item) &&
           import_from(parts, "Bits", &state.bits) && import_from(parts, "Unit", &state.unit) &&
           import_from(parts, "Special", &state.special);
}

static bool add(PyObject* module, const char* name, PyObject* object) {
    return object && PyObject_SetAttrString(module, name, object) == 0;
}

static bool fill(PyObject* module) {
    if (!import_all()) return false;
    state.type_class = make_type_class();
    state.schema_class = make_schema_class();
    if (!add(module, "Type", reinterpret_cast<PyObject*>(state.type_class)) ||
        !add(module, "Schema", reinterpret_cast<PyObject*>(state.schema_class))) {
        return false;
    }
    state.builtin = make_builtin_schema();
    return add(module, "builtin", state.builtin) &&
           PyModule_AddStringConstant(module, "version", orlenta_version()) == 0;
}

static PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "orlenta._orlenta", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr};

}  // namespace orlenta::python

PyMODINIT_FUNC PyInit__orlenta() {
    PyObject* module = PyModule_Create(&orlenta::python::definition);
    if (module && !orlenta::python::fill(module)) Py_CLEAR(module);
    return module;
}
