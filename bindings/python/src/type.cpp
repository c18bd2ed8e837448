// SPDX-License-Identifier: Apache-2.0
#include "type.hpp"

#include <orlenta/type_info.h>

#include "core/descriptor.hpp"
#include "operations.hpp"
#include "problem.hpp"
#include "state.hpp"
#include "to_python.hpp"

namespace orlenta::python {

PyObject* make_type(PyObject* schema, Handle& handle) {
    TypeObject* type = PyObject_New(TypeObject, state.type_class);
    if (!type) return nullptr;
    type->schema = shared(schema);
    type->handle = &handle;
    return reinterpret_cast<PyObject*>(type);
}

static TypeObject& self_of(PyObject* self) { return *reinterpret_cast<TypeObject*>(self); }

static void release(PyObject* self) {
    PyTypeObject* type = Py_TYPE(self);
    Py_DECREF(self_of(self).schema);
    PyObject_Free(self);
    Py_DECREF(type);
}

// Under a tag of its own a type is another one, but is known by its name.
static const asn1_type_desc* named_type(const Schema& schema, const asn1_type_desc* type) {
    orlenta_type_entry entry;
    while (kind_of(type) == ASN1_KIND_TAGGED &&
           orlenta_catalogue_find_type(schema.catalogue, type, &entry) < 0) {
        type = tagged_inner(type);
    }
    return type;
}

static PyObject* type_of(PyObject* self, const asn1_type_desc* type) {
    if (!type) return none();
    type = named_type(*handle_of(self).schema, type);
    Handle* handle = handle_of(*handle_of(self).schema, type);
    return handle ? make_type(self_of(self).schema, *handle) : nullptr;
}

// ---- what it is -------------------------------------------------------------------------------------------------

static orlenta_type_facts facts_of(PyObject* self) {
    orlenta_type_facts facts;
    orlenta_type_describe(handle_of(self).type, &facts);
    return facts;
}

static PyObject* get_name(PyObject* self, void*) { return shared(handle_of(self).name); }

static PyObject* get_text(PyObject* self, void* which) {
    const orlenta_type_entry& entry = handle_of(self).entry;
    const char* text = which ? entry.module : entry.region;
    return text_object(text ? text : "");
}

static PyObject* get_about(PyObject* self, void*) {
    const char* about = handle_of(self).entry.about;
    return text_object(about ? about : "");
}

static PyObject* get_documentation(PyObject* self, void*) {
    return PyObject_CallFunction(state.describe, "O", self);
}

static PyObject* get_schema(PyObject* self, void*) { return shared(self_of(self).schema); }
static PyObject* get_is_root(PyObject* self, void*) {
    return PyBool_FromLong(handle_of(self).entry.is_root != 0);
}
static PyObject* get_is_extensible(PyObject* self, void*) {
    return PyBool_FromLong(facts_of(self).is_extensible != 0);
}
static PyObject* get_element(PyObject* self, void*) { return type_of(self, facts_of(self).element); }
static PyObject* get_contained(PyObject* self, void*) { return type_of(self, facts_of(self).contained); }

// "SEQUENCE OF", "IA5String".
static PyObject* get_kind(PyObject* self, void*) {
    orlenta_type_facts facts = facts_of(self);
    if (facts.kind == ASN1_KIND_ANY) return text_object("open type");
    if (facts.kind == ASN1_KIND_CHAR_STRING) return text_object(asn1_char_string_str[facts.string_type]);
    std::string name = asn1_ctype_names[facts.kind];
    for (char& c : name) c = c == '_' ? ' ' : c;
    return text_object(facts.kind == ASN1_KIND_RELATIVE_OID ? std::string_view("RELATIVE-OID") : name);
}

static PyObject* big_or_none(Schema& schema, const Plan* plan, const asn1_integer* bound) {
    Problem problem;
    return bound ? to_python(schema, plan, bound, problem) : none();
}

// (least, most) of an INTEGER, or of a size; None where there is none.
static PyObject* get_bounds(PyObject* self, void*) {
    orlenta_type_facts facts = facts_of(self);
    Handle& handle = handle_of(self);
    if (facts.is_big) {
        const Plan* plan = plan_of(handle.schema->plans, facts.type);
        if (!plan) return nullptr;
        return pair(big_or_none(*handle.schema, plan, facts.big_lower),
                    big_or_none(*handle.schema, plan, facts.big_upper));
    }
    if (!facts.has_lower && !facts.has_upper) return none();
    return pair(facts.has_lower ? PyLong_FromLongLong(facts.lower) : none(),
                facts.has_upper ? PyLong_FromLongLong(facts.upper) : none());
}

// A list of what `make` gives for 0, 1 and so on, until that is null without an exception.
template <typename Make>
static PyObject* parts_of(const Make& make) {
    Ref list(PyList_New(0));
    for (uint32_t i = 0; list; ++i) {
        Ref part(make(i));
        if (!part) break;
        if (PyList_Append(list.object, part.object) < 0) return nullptr;
    }
    return PyErr_Occurred() ? nullptr : list.release();
}

static PyObject* specials_of(const orlenta_unit& unit) {
    return parts_of([&](uint32_t i) -> PyObject* {
        if (i == unit.special_count) return nullptr;
        const orlenta_special& special = unit.specials[i];
        return PyObject_CallFunction(state.special, "LLsi", static_cast<long long>(special.first),
                                     static_cast<long long>(special.last), special.meaning,
                                     static_cast<int>(special.is_limit));
    });
}

static PyObject* get_unit(PyObject* self, void*) {
    const Handle& handle = handle_of(self);
    const orlenta_unit* unit = orlenta_unit_of(handle.schema->catalogue, handle.type);
    if (!unit) return none();
    Ref specials(specials_of(*unit));
    return specials ? PyObject_CallFunction(state.unit, "sddO", unit->symbol, unit->scale, unit->offset,
                                            specials.object)
                    : nullptr;
}

// ---- what it is made of -------------------------------------------------------------------------------------------

static PyObject* default_of(PyObject* self, const orlenta_component& part) {
    if (part.presence != ORLENTA_DEFAULT) return none();
    Schema& schema = *handle_of(self).schema;
    const Plan* plan = plan_of(schema.plans, part.type);
    if (!plan) return nullptr;
    if (part.big_default) return big_or_none(schema, plan, part.big_default);
    Problem problem;
    return to_python(schema, plan, &part.default_word, problem);
}

static PyObject* get_components(PyObject* self, void*) {
    const asn1_type_desc* type = facts_of(self).type;
    return parts_of([&](uint32_t i) -> PyObject* {
        orlenta_component part;
        if (orlenta_type_component(type, i, &part) < 0) return nullptr;
        Ref inner(type_of(self, part.type)), value(inner ? default_of(self, part) : nullptr);
        if (!value) return nullptr;
        return PyObject_CallFunction(state.component, "sOOOO", part.name, inner.object,
                                     part.has_presence_word ? Py_True : Py_False, value.object,
                                     part.is_addition ? Py_True : Py_False);
    });
}

static PyObject* get_alternatives(PyObject* self, void*) {
    const asn1_type_desc* type = facts_of(self).type;
    return parts_of([&](uint32_t i) -> PyObject* {
        orlenta_alternative part;
        if (orlenta_type_alternative(type, i, &part) < 0) return nullptr;
        Ref inner(type_of(self, part.type));
        if (!inner) return nullptr;
        return PyObject_CallFunction(state.alternative, "sOO", part.name, inner.object,
                                     part.is_addition ? Py_True : Py_False);
    });
}

static PyObject* get_items(PyObject* self, void*) {
    const asn1_type_desc* type = facts_of(self).type;
    return parts_of([&](uint32_t i) -> PyObject* {
        orlenta_item part;
        if (orlenta_type_item(type, i, &part) < 0) return nullptr;
        return PyObject_CallFunction(state.item, "siO", part.name, static_cast<int>(part.number),
                                     part.is_addition ? Py_True : Py_False);
    });
}

// ---- as an object -------------------------------------------------------------------------------------------------

static PyObject* represent(PyObject* self) {
    Ref kind(get_kind(self, nullptr));
    return kind ? PyUnicode_FromFormat("<orlenta.Type %U: %U>", handle_of(self).name, kind.object) : nullptr;
}

// A type that was pickled is of another schema object, made of the same sources.
static int is_same(PyObject* self, PyObject* other) {
    const Handle &one = handle_of(self), &two = handle_of(other);
    if (&one == &two) return 1;
    if (!one.schema->compiled || !two.schema->compiled || PyUnicode_Compare(one.name, two.name) != 0)
        return 0;
    return PyObject_RichCompareBool(one.schema->origin, two.schema->origin, Py_EQ);
}

static PyObject* compare(PyObject* self, PyObject* other, int operation) {
    if ((operation != Py_EQ && operation != Py_NE) || !PyObject_TypeCheck(other, state.type_class)) {
        return shared(Py_NotImplemented);
    }
    int same = is_same(self, other);
    return same < 0 ? nullptr : PyBool_FromLong((same != 0) == (operation == Py_EQ));
}

static Py_hash_t hash(PyObject* self) { return PyObject_Hash(handle_of(self).name); }

// As its schema and its name.
static PyObject* reduce(PyObject* self, PyObject*) {
    if (!handle_of(self).entry.type) {
        PyErr_SetString(PyExc_TypeError, "a type in place has no name by which another process knows it");
        return nullptr;
    }
    Ref maker(PyObject_GetAttrString(self_of(self).schema, "type"));
    return maker ? Py_BuildValue("O(O)", maker.object, handle_of(self).name) : nullptr;
}

template <Operation operation>
static PyObject* bound(PyObject* self, PyObject* const* values, Py_ssize_t count, PyObject* names) {
    return operation(handle_of(self), {values, count, names});
}

template <Operation operation>
static PyMethodDef method(const char* name, const char* documentation) {
    return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(bound<operation>)),
            METH_FASTCALL | METH_KEYWORDS, documentation};
}

PyTypeObject* make_type_class() {
    static PyMethodDef methods[] = {
        method<decode_call>("decode",
                            "decode($self, data, rules='uper', *, allow_trailing=False)\n--\n\n"
                            "The value that the message holds; see orlenta.decode."),
        method<decode_with_length_call>("decode_with_length",
                                        "decode_with_length($self, data, rules='uper')\n--\n\n"
                                        "(value, octets of the message), whatever follows."),
        method<encode_call>("encode",
                            "encode($self, value, rules='uper', *, check=False)\n--\n\n"
                            "The message that holds the value; see orlenta.encode."),
        method<convert_call>("convert",
                             "convert($self, data, from_, to, *, check=False, allow_trailing=False)\n--\n\n"
                             "The message by other rules; see orlenta.convert."),
        method<check_call>("check",
                           "check($self, value)\n--\n\n"
                           "Raises ConstraintError if the value breaks a constraint."),
        method<random_call>("random",
                            "random($self, seed=None)\n--\n\nA valid value, the same for the same seed."),
        method<explain_call>("explain",
                             "explain($self, data, rules='uper')\n--\n\n"
                             "What each bit of the message is, as a list of Bits."),
        method<decode_many_call>("decode_many",
                                 "decode_many($self, messages, rules='uper', errors='raise', *, threads=1, "
                                 "offsets=None, allow_trailing=False)\n--\n\n"
                                 "A list of values; see orlenta.decode_many."),
        method<columns_call>(
            "columns",
            "columns($self, messages, paths, rules='uper', errors='raise', *, threads=1, offsets=None, "
            "allow_trailing=False, missing=None)\n--\n\n"
            "Arrays of single parts; see orlenta.columns."),
        {"__reduce__", reduce, METH_NOARGS, nullptr},
        {}};
    static PyGetSetDef parts[] = {
        {"name", get_name, nullptr, "The name in full, as 'EU.CAM'.", nullptr},
        {"region", get_text, nullptr, "The region; '' if the schema was given none.", nullptr},
        {"module", get_text, nullptr, "The module that has the type.", methods},
        {"about", get_about, nullptr, "What it is, in a sentence or two, if the schema tells; or ''.",
         nullptr},
        {"documentation", get_documentation, nullptr, "Its definition, in the notation of X.680.", nullptr},
        {"schema", get_schema, nullptr, "The Schema that has the type.", nullptr},
        {"kind", get_kind, nullptr, "What it is: 'SEQUENCE', 'INTEGER', 'IA5String', 'open type' ...",
         nullptr},
        {"is_root", get_is_root, nullptr, "Whether no other type of the region refers to it.", nullptr},
        {"is_extensible", get_is_extensible, nullptr, "Whether it has an extension marker.", nullptr},
        {"bounds", get_bounds, nullptr,
         "(least, most) of an INTEGER or of a size, each perhaps None; or None.", nullptr},
        {"unit", get_unit, nullptr, "Of an INTEGER or REAL: its Unit, or None.", nullptr},
        {"components", get_components, nullptr, "Of a SEQUENCE or SET: a list of Component.", nullptr},
        {"alternatives", get_alternatives, nullptr, "Of a CHOICE: a list of Alternative.", nullptr},
        {"items", get_items, nullptr, "Of an ENUMERATED: a list of Item.", nullptr},
        {"element", get_element, nullptr, "Of a SEQUENCE OF or SET OF: the Type of its elements.", nullptr},
        {"contained", get_contained, nullptr, "Of a string with CONTAINING: the Type of what it holds.",
         nullptr},
        {}};
    static PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>("One type of a schema, made by orlenta.type() or Schema.type().")},
        {Py_tp_methods, methods},
        {Py_tp_getset, parts},
        {Py_tp_repr, reinterpret_cast<void*>(represent)},
        {Py_tp_richcompare, reinterpret_cast<void*>(compare)},
        {Py_tp_hash, reinterpret_cast<void*>(hash)},
        {Py_tp_dealloc, reinterpret_cast<void*>(release)},
        {Py_tp_new, reinterpret_cast<void*>(refuse_to_make)},
        {}};
    static PyType_Spec spec = {"orlenta.Type", sizeof(TypeObject), 0, Py_TPFLAGS_DEFAULT, slots};
    return reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
}

}  // namespace orlenta::python
