// SPDX-License-Identifier: Apache-2.0
// A name space of types: the message sets that are built in, or what was compiled at run time.
#pragma once

#include <orlenta/codec.h>
#include <orlenta/schema.h>

#include "plan.hpp"

namespace orlenta::python {

struct Schema;

// A type that was asked for.
struct Handle {
    Schema* schema = nullptr;
    orlenta_type_entry entry = {};
    const asn1_type_desc* type = nullptr;
    const Plan* plan = nullptr;
    const orlenta_codec* codec = nullptr;  // null until it is needed, or without memory
    orlenta_codec* own_codec = nullptr;    // of a type that has none built in
    PyObject* name = nullptr;              // in full

    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle();
};

// A type that stands in an open type, which need not be one of the catalogue's.
struct OpenType {
    PyObject* name = nullptr;
    const asn1_type_desc* type = nullptr;
    const Plan* plan = nullptr;

    OpenType() = default;
    OpenType(const OpenType&) = delete;
    OpenType& operator=(const OpenType&) = delete;
    ~OpenType() { Py_XDECREF(name); }
};

struct Schema {
    const orlenta_catalogue* catalogue = nullptr;
    orlenta_schema* compiled = nullptr;  // null of what is built in
    PyObject* origin = nullptr;          // arguments of compile() that make it again
    Plans plans;
    std::unordered_map<const asn1_type_desc*, std::unique_ptr<Handle>> handles;
    std::unordered_map<const asn1_type_desc*, std::unique_ptr<OpenType>> open_types;
    PyObject* by_name = nullptr;  // dict from names as they were asked for to capsules of handles

    Schema() = default;
    Schema(const Schema&) = delete;
    Schema& operator=(const Schema&) = delete;
    ~Schema();
};

// The type of a name as the catalogue has it; null with UnknownType.
Handle* find_handle(Schema& schema, PyObject* name);

// The one of a descriptor; null with an exception, and without one if the catalogue does not have it.
Handle* handle_of(Schema& schema, const asn1_type_desc* type);

// Null with an exception if memory ran out.
const OpenType* open_type_of(Schema& schema, const asn1_type_desc* type);

// "EU.CAM", and "EU.DSRC.Heading" where several modules have the name. A new reference.
PyObject* full_name(const Schema& schema, const orlenta_type_entry& entry);

// The prepared codec, made when it is first asked for; null without memory.
const orlenta_codec* codec_of(Handle& handle);

// ---- the class Schema ---------------------------------------------------------------------------------------

struct SchemaObject {
    PyObject_HEAD Schema* schema;
};

inline Schema& schema_of(PyObject* object) { return *reinterpret_cast<SchemaObject*>(object)->schema; }

PyTypeObject* make_schema_class();

// The schema of the message sets; null with an exception.
PyObject* make_builtin_schema();

// compile(sources, region, module_names), with (name, text) tuples as sources: the function of the module.
PyObject* compile_schema(PyObject* module, PyObject* arguments);

}  // namespace orlenta::python
