// SPDX-License-Identifier: Apache-2.0
#include "schema.hpp"

#include <orlenta/type_info.h>

#include <new>
#include <string>

#include "operations.hpp"
#include "state.hpp"
#include "type.hpp"

namespace orlenta::python {

Handle::~Handle() {
    orlenta_codec_free(own_codec);
    Py_XDECREF(name);
}

Schema::~Schema() {
    Py_XDECREF(by_name);
    Py_XDECREF(origin);
    handles.clear();
    open_types.clear();
    plans.by_type.clear();
    orlenta_schema_free(compiled);
}

const orlenta_codec* codec_of(Handle& handle) {
    if (handle.codec) return handle.codec;
    handle.codec = orlenta_codec_find(handle.type);
    if (!handle.codec) handle.codec = handle.own_codec = orlenta_codec_new(handle.type);
    return handle.codec;
}

// ---- the catalogue ------------------------------------------------------------------------------------------------

static bool get_entry(const Schema& schema, size_t index, orlenta_type_entry* entry) {
    return orlenta_catalogue_get(schema.catalogue, index, entry) == 0;
}

static bool find_entry(const Schema& schema, const char* name, orlenta_type_entry* entry, size_t* count) {
    return orlenta_catalogue_find(schema.catalogue, name, entry, count) == 0;
}

static bool find_entry_of(const Schema& schema, const asn1_type_desc* type, orlenta_type_entry* entry) {
    return orlenta_catalogue_find_type(schema.catalogue, type, entry) == 0;
}

static std::string joined(const orlenta_type_entry& entry, bool with_module) {
    std::string name = entry.region;
    if (with_module && entry.module[0]) name += (name.empty() ? "" : ".") + std::string(entry.module);
    return name + (name.empty() ? "" : ".") + (entry.name[0] ? entry.name : entry.table);
}

PyObject* full_name(const Schema& schema, const orlenta_type_entry& entry) {
    std::string name = joined(entry, false);
    orlenta_type_entry found;
    size_t count = 0;
    if (!find_entry(schema, name.c_str(), &found, &count)) name = joined(entry, true);
    return text_object(name);
}

// ---- handles ------------------------------------------------------------------------------------------------------

static Handle* make_handle(Schema& schema, const asn1_type_desc* type, const orlenta_type_entry* entry) {
    auto known = schema.handles.find(type);
    if (known != schema.handles.end()) return known->second.get();
    const Plan* plan = plan_of(schema.plans, type);
    if (!plan) return nullptr;
    auto handle = std::make_unique<Handle>();
    handle->schema = &schema;
    handle->type = type;
    handle->plan = plan;
    if (entry) handle->entry = *entry;
    handle->name = entry ? full_name(schema, *entry) : text_object(asn1_get_generic_type_name(type));
    if (!handle->name) return nullptr;
    return (schema.handles[type] = std::move(handle)).get();
}

Handle* handle_of(Schema& schema, const asn1_type_desc* type) {
    orlenta_type_entry entry;
    bool is_listed = find_entry_of(schema, type, &entry);
    try {
        return make_handle(schema, type, is_listed ? &entry : nullptr);
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
        return nullptr;
    }
}

// As find() takes hyphens.
static std::string folded(std::string name) {
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

// How many types a name without a module stands for.
using NameCounts = std::unordered_map<std::string, int>;

static NameCounts count_names(const Schema& schema) {
    NameCounts counts;
    orlenta_type_entry entry;
    for (size_t i = 0; get_entry(schema, i, &entry); ++i) {
        std::string prefix = entry.region[0] ? std::string(entry.region) + "." : "";
        std::string by_name = folded(prefix + entry.name), by_table = folded(prefix + entry.table);
        ++counts[by_table];
        if (entry.name[0] && by_name != by_table) ++counts[by_name];
    }
    return counts;
}

// The names of all types that the schema names; with modules, if so wanted.
static PyObject* names_of(const Schema& schema, bool with_modules) {
    NameCounts counts = count_names(schema);
    Ref list(PyList_New(0));
    orlenta_type_entry entry;
    for (size_t i = 0; list && get_entry(schema, i, &entry); ++i) {
        if (!entry.name[0]) continue;
        bool with_module = with_modules || counts[folded(joined(entry, false))] > 1;
        Ref name(text_object(joined(entry, with_module)));
        if (!name || PyList_Append(list.object, name.object) < 0) return nullptr;
    }
    return list.release();
}

// The names that come near, or those that are meant, are the package's matter.
static void raise_unknown(const Schema& schema, PyObject* name, size_t count) {
    Ref names(names_of(schema, count > 1));
    Ref exception(names ? PyObject_CallFunction(state.unknown_type, "sOO", count > 1 ? "ambiguous" : "type",
                                                name, names.object)
                        : nullptr);
    if (exception) PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(exception.object)), exception.object);
}

static Handle* look_up(Schema& schema, PyObject* name) {
    const char* text = PyUnicode_AsUTF8AndSize(name, nullptr);
    orlenta_type_entry entry;
    size_t count = 0;
    if (!text || !find_entry(schema, text, &entry, &count)) {
        PyErr_Clear();
        raise_unknown(schema, name, count);
        return nullptr;
    }
    Handle* handle = handle_of(schema, entry.type);
    Ref capsule(handle ? PyCapsule_New(handle, nullptr, nullptr) : nullptr);
    if (!capsule || PyDict_SetItem(schema.by_name, name, capsule.object) < 0) return nullptr;
    return handle;
}

Handle* find_handle(Schema& schema, PyObject* name) {
    PyObject* capsule = PyDict_GetItemWithError(schema.by_name, name);
    if (capsule) return static_cast<Handle*>(PyCapsule_GetPointer(capsule, nullptr));
    return PyErr_Occurred() ? nullptr : look_up(schema, name);
}

static OpenType* make_open_type(Schema& schema, const asn1_type_desc* type) {
    auto open = std::make_unique<OpenType>();
    orlenta_type_entry entry;
    open->name = find_entry_of(schema, type, &entry) ? full_name(schema, entry)
                                                     : text_object(asn1_get_generic_type_name(type));
    open->type = type;
    open->plan = open->name ? plan_of(schema.plans, type) : nullptr;
    return open->plan ? (schema.open_types[type] = std::move(open)).get() : nullptr;
}

const OpenType* open_type_of(Schema& schema, const asn1_type_desc* type) {
    auto known = schema.open_types.find(type);
    if (known != schema.open_types.end()) return known->second.get();
    try {
        return make_open_type(schema, type);
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
        return nullptr;
    }
}

// ---- compiling ----------------------------------------------------------------------------------------------------

static PyObject* make_schema(const orlenta_catalogue* catalogue, orlenta_schema* compiled, PyObject* origin) {
    std::unique_ptr<Schema> schema(new (std::nothrow) Schema);
    if (!schema) {
        orlenta_schema_free(compiled);
        return PyErr_NoMemory();
    }
    schema->catalogue = catalogue;
    schema->compiled = compiled;
    schema->origin = shared(origin);
    schema->by_name = PyDict_New();
    SchemaObject* object = schema->by_name ? PyObject_New(SchemaObject, state.schema_class) : nullptr;
    if (object) object->schema = schema.release();
    return reinterpret_cast<PyObject*>(object);
}

// (file, line, column, text, is_note) of each message.
static PyObject* messages_of(const orlenta_schema* compiled) {
    size_t count = orlenta_schema_message_count(compiled);
    PyObject* list = PyList_New(static_cast<Py_ssize_t>(count));
    for (size_t i = 0; list && i < count; ++i) {
        const orlenta_schema_message* message = orlenta_schema_message_at(compiled, i);
        PyObject* row = Py_BuildValue("siisN", message->file, static_cast<int>(message->line),
                                      static_cast<int>(message->column), message->text,
                                      PyBool_FromLong(message->is_note != 0));
        if (!row) {
            Py_CLEAR(list);
            break;
        }
        put_in_list(list, static_cast<Py_ssize_t>(i), row);
    }
    return list;
}

static PyObject* finish(orlenta_schema* compiled, PyObject* origin) {
    if (!compiled) return PyErr_NoMemory();
    const orlenta_catalogue* catalogue = orlenta_schema_catalogue(compiled);
    if (catalogue) return make_schema(catalogue, compiled, origin);
    Ref messages(messages_of(compiled));
    orlenta_schema_free(compiled);
    Ref exception(messages ? PyObject_CallFunction(state.schema_error, "O", messages.object) : nullptr);
    if (exception) PyErr_SetObject(state.schema_error, exception.object);
    return nullptr;
}

static bool read_source(PyObject* source, orlenta_schema_source* read) {
    Py_ssize_t size;
    if (!PyArg_ParseTuple(source, "ss#;a source is (name, text)", &read->name, &read->text, &size))
        return false;
    read->size = static_cast<size_t>(size);
    return true;
}

PyObject* compile_schema(PyObject*, PyObject* arguments) {
    PyObject* sources;
    orlenta_schema_options options = {};
    int module_names = 0;
    if (!PyArg_ParseTuple(arguments, "O!zp", &PyTuple_Type, &sources, &options.region, &module_names))
        return nullptr;
    options.module_names = module_names != 0;
    std::vector<orlenta_schema_source> texts(static_cast<size_t>(PyTuple_Size(sources)));
    for (size_t i = 0; i < texts.size(); ++i) {
        PyObject* source = PyTuple_GetItem(sources, static_cast<Py_ssize_t>(i));
        if (!PyTuple_Check(source)) {
            PyErr_SetString(PyExc_TypeError, "a source is (name, text)");
            return nullptr;
        }
        if (!read_source(source, &texts[i])) return nullptr;
    }
    orlenta_schema* compiled;
    Py_BEGIN_ALLOW_THREADS;
    compiled = orlenta_schema_compile(texts.data(), texts.size(), &options);
    Py_END_ALLOW_THREADS;
    return finish(compiled, arguments);
}

PyObject* make_builtin_schema() { return make_schema(orlenta_catalogue_builtin(), nullptr, Py_None); }

// ---- the class ------------------------------------------------------------------------------------------------------

static void release(PyObject* self) {
    PyTypeObject* type = Py_TYPE(self);
    delete reinterpret_cast<SchemaObject*>(self)->schema;
    PyObject_Free(self);
    Py_DECREF(type);
}

static PyObject* get_type(PyObject* self, PyObject* name) {
    if (!PyUnicode_Check(name)) {
        PyErr_SetString(PyExc_TypeError, "the name of a type expected");
        return nullptr;
    }
    Handle* handle = find_handle(schema_of(self), name);
    return handle ? make_type(self, *handle) : nullptr;
}

static PyObject* get_types(PyObject* self, PyObject* arguments) {
    PyObject* pattern = Py_None;
    if (!PyArg_ParseTuple(arguments, "|O:types", &pattern)) return nullptr;
    Ref names(names_of(schema_of(self), false));
    return names ? PyObject_CallFunction(state.matching, "OO", names.object, pattern) : nullptr;
}

static PyObject* represent(PyObject* self) {
    const Schema& schema = schema_of(self);
    return PyUnicode_FromFormat("<orlenta.Schema: %zu types%s>", orlenta_catalogue_count(schema.catalogue),
                                schema.compiled ? "" : ", built in");
}

// As what it was compiled from.
static PyObject* reduce(PyObject* self, PyObject*) {
    return Py_BuildValue("O(O)", state.restore, schema_of(self).origin);
}

static PyObject* get_notes(PyObject* self, void*) {
    const orlenta_schema* compiled = schema_of(self).compiled;
    return compiled ? messages_of(compiled) : PyList_New(0);
}

template <Operation operation>
static PyObject* by_name(PyObject* self, PyObject* const* values, Py_ssize_t count, PyObject* names) {
    return call_with_type(schema_of(self), operation, values, count, names);
}

template <Operation operation>
static PyMethodDef method(const char* name, const char* documentation) {
    return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(by_name<operation>)),
            METH_FASTCALL | METH_KEYWORDS, documentation};
}

PyTypeObject* make_schema_class() {
    static PyMethodDef methods[] = {
        {"type", get_type, METH_O, "type($self, name, /)\n--\n\nThe Type of a name, [Region.][Module.]Type."},
        {"types", get_types, METH_VARARGS,
         "types($self, pattern=None, /)\n--\n\n"
         "The names of all types, or of those that match 'EU.*CAM*'."},
        {"__reduce__", reduce, METH_NOARGS, nullptr},
        method<decode_call>("decode",
                            "decode($self, type, /, data, rules='uper', *, allow_trailing=False)\n--\n\n"
                            "As orlenta.decode, of a type of this schema."),
        method<decode_with_length_call>("decode_with_length",
                                        "decode_with_length($self, type, /, data, rules='uper')\n--\n\n"
                                        "(value, octets of the message), whatever follows."),
        method<encode_call>("encode",
                            "encode($self, type, /, value, rules='uper', *, check=False)\n--\n\n"
                            "As orlenta.encode, of a type of this schema."),
        method<convert_call>("convert",
                             "convert($self, type, /, data, from_, to, *, check=False, "
                             "allow_trailing=False)\n--\n\nAs orlenta.convert, of a type of this schema."),
        method<check_call>("check",
                           "check($self, type, /, value)\n--\n\nAs orlenta.check, of a type of this schema."),
        method<random_call>("random",
                            "random($self, type, /, seed=None)\n--\n\n"
                            "As orlenta.random, of a type of this schema."),
        method<explain_call>("explain",
                             "explain($self, type, /, data, rules='uper')\n--\n\n"
                             "As orlenta.explain, of a type of this schema."),
        method<decode_many_call>(
            "decode_many",
            "decode_many($self, type, /, messages, rules='uper', errors='raise', *, threads=1, "
            "offsets=None, allow_trailing=False)\n--\n\n"
            "As orlenta.decode_many, of a type of this schema."),
        method<columns_call>(
            "columns",
            "columns($self, type, /, messages, paths, rules='uper', errors='raise', *, threads=1, "
            "offsets=None, allow_trailing=False, missing=None)\n--\n\n"
            "As orlenta.columns, of a type of this schema."),
        {}};
    static PyGetSetDef parts[] = {
        {"notes", get_notes, nullptr,
         "What the compiler has to tell of the schema: (file, line, column, text, is_note).", nullptr},
        {}};
    static PyType_Slot slots[] = {
        {Py_tp_doc,
         const_cast<char*>("A name space of types: those built in, or a schema compiled at run time.")},
        {Py_tp_methods, methods},
        {Py_tp_getset, parts},
        {Py_tp_repr, reinterpret_cast<void*>(represent)},
        {Py_tp_dealloc, reinterpret_cast<void*>(release)},
        {Py_tp_new, reinterpret_cast<void*>(refuse_to_make)},
        {}};
    static PyType_Spec spec = {"orlenta.Schema", sizeof(SchemaObject), 0, Py_TPFLAGS_DEFAULT, slots};
    return reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
}

}  // namespace orlenta::python
