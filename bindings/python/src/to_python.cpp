// SPDX-License-Identifier: Apache-2.0
#include "to_python.hpp"

#include <orlenta/integer.h>
#include <orlenta/memory.h>

#include "core/descriptor.hpp"
#include "identifier.hpp"

namespace orlenta::python {

namespace {

struct Reader {
    Schema& schema;
    Problem& problem;
    int levels_left;
};

}  // namespace

static PyObject* read(Reader& reader, const Plan* plan, const void* record);

template <typename Record>
static inline const Record& as(const void* record) {
    return *static_cast<const Record*>(record);
}

static PyObject* fail(Reader& reader, const char* message) {
    reader.problem.message = message;
    return nullptr;
}

// ---- strings ------------------------------------------------------------------------------------------------

static PyObject* bytes_of(const void* data, uint64_t length) {
    return PyBytes_FromStringAndSize(static_cast<const char*>(data), static_cast<Py_ssize_t>(length));
}

static PyObject* read_bit_string(const asn1_bit_string& bits) {
    return pair(bytes_of(bits.data, (bits.length + 7) / 8), PyLong_FromUnsignedLongLong(bits.length));
}

// Octets that are no UTF-8 come as surrogates, so that they go back as they were.
static PyObject* read_utf8(const asn1_string& text) {
    return PyUnicode_DecodeUTF8(reinterpret_cast<const char*>(text.data),
                                static_cast<Py_ssize_t>(text.length), "surrogateescape");
}

static PyObject* read_utf16(const asn1_string& text) {
    int native = PY_BIG_ENDIAN ? 1 : -1;
    return PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data),
                                 static_cast<Py_ssize_t>(2 * text.length), "surrogatepass", &native);
}

static PyObject* read_utf32(Reader& reader, const asn1_string& text) {
    int native = PY_BIG_ENDIAN ? 1 : -1;
    PyObject* object =
        PyUnicode_DecodeUTF32(reinterpret_cast<const char*>(text.data),
                              static_cast<Py_ssize_t>(4 * text.length), "surrogatepass", &native);
    if (object || !PyErr_ExceptionMatches(PyExc_UnicodeDecodeError)) return object;
    PyErr_Clear();
    return fail(reader, "a code beyond Unicode");
}

static PyObject* read_identifier(Reader& reader, const asn1_string& contents, bool is_relative) {
    std::string text;
    if (!identifier_text(contents, is_relative, text)) return fail(reader, "no object identifier");
    return text_object(text);
}

// ---- numbers ------------------------------------------------------------------------------------------------

// Powers of two as the base, since Python limits the decimal digits that it converts.
static PyObject* read_huge_integer(const asn1_integer& integer) {
    std::string digits = integer.negative ? "-" : "";
    char limb[9];
    for (uint32_t i = integer.size; i-- > 0;) {
        snprintf(limb, sizeof limb, "%08x", integer.limbs[i]);
        digits += limb;
    }
    return PyLong_FromString(digits.c_str(), nullptr, 16);
}

static PyObject* read_big_integer(const asn1_integer& integer) {
    if (integer.size > 2) return read_huge_integer(integer);
    uint64_t magnitude = 0;
    if (integer.size > 0) magnitude = integer.limbs[0];
    if (integer.size > 1) magnitude |= uint64_t{integer.limbs[1]} << 32;
    if (!integer.negative) return PyLong_FromUnsignedLongLong(magnitude);
    return magnitude >> 63 ? read_huge_integer(integer)
                           : PyLong_FromLongLong(-static_cast<long long>(magnitude));
}

static PyObject* read_item(const Plan* plan, uint32_t index) {
    return index < plan->items.size() ? shared(plan->items[index]) : none();
}

// ---- values of values ---------------------------------------------------------------------------------------

static PyObject* read_record(Reader& reader, const Plan* plan, const void* record) {
    PyObject* dict = PyDict_New();
    if (!dict) return nullptr;
    for (const Member& member : plan->members) {
        if (member.presence == Presence::flagged && load32(at_offset(record, member.presence_offset)) == 0) {
            continue;
        }
        PyObject* value = read(reader, member.plan, at_offset(record, member.offset));
        bool is_in = value && PyDict_SetItem(dict, member.name, value) == 0;
        Py_XDECREF(value);
        if (is_in) continue;
        put_before(reader.problem, member.name);
        Py_DECREF(dict);
        return nullptr;
    }
    return dict;
}

static PyObject* read_list(Reader& reader, const Plan* plan, const asn1_array& array) {
    Py_ssize_t count = static_cast<Py_ssize_t>(array.count);
    PyObject* list = PyList_New(count);
    const Plan* element = plan->inner;
    uint64_t stride = plan->stride;
    for (Py_ssize_t i = 0; list && i < count; ++i) {
        PyObject* value = read(reader, element, at_offset(array.data, static_cast<uint64_t>(i) * stride));
        if (!value) {
            put_before(reader.problem, i);
            Py_CLEAR(list);
            break;
        }
        put_in_list(list, i, value);
    }
    return list;
}

static PyObject* read_choice(Reader& reader, const Plan* plan, const void* record) {
    uint32_t selector = load32(at_offset(record, plan->selector_offset));
    if (selector >= plan->members.size()) return pair(none(), none());
    const Member& member = plan->members[selector];
    PyObject* value = read(reader, member.plan, at_offset(record, member.offset));
    if (!value) put_before(reader.problem, member.name);
    return pair(shared(member.name), value);
}

static PyObject* read_open_type(Reader& reader, const asn1_open_value& open) {
    if (!open.type) return bytes_of(open.data, open.length);
    if (!open.data) return fail(reader, "not enough memory");
    const OpenType* actual = open_type_of(reader.schema, open.type);
    return actual ? pair(shared(actual->name), read(reader, actual->plan, open.data)) : nullptr;
}

static PyObject* read_indirect(Reader& reader, const Plan* plan, const void* record) {
    const void* value = load_pointer(record);
    return value ? read(reader, plan->inner, value) : fail(reader, "not enough memory");
}

static PyObject* read_composite(Reader& reader, const Plan* plan, const void* record) {
    switch (plan->form) {
        case Form::record: return read_record(reader, plan, record);
        case Form::list: return read_list(reader, plan, as<asn1_array>(record));
        case Form::choice: return read_choice(reader, plan, record);
        case Form::open_type: return read_open_type(reader, as<asn1_open_value>(record));
        default: return read_indirect(reader, plan, record);
    }
}

static PyObject* read_a_level(Reader& reader, const Plan* plan, const void* record) {
    if (reader.levels_left == 0) return fail(reader, "value nested too deeply");
    --reader.levels_left;
    PyObject* value = read_composite(reader, plan, record);
    ++reader.levels_left;
    return value;
}

static PyObject* read(Reader& reader, const Plan* plan, const void* record) {
    switch (plan->form) {
        case Form::boolean: return PyBool_FromLong(load32(record) != 0);
        case Form::signed_word: return PyLong_FromLong(static_cast<int32_t>(load32(record)));
        case Form::unsigned_word: return PyLong_FromUnsignedLong(load32(record));
        case Form::big_integer: return read_big_integer(as<asn1_integer>(record));
        case Form::enumerated: return read_item(plan, load32(record));
        case Form::null: return none();
        case Form::bit_string: return read_bit_string(as<asn1_bit_string>(record));
        case Form::octet_string:
            return bytes_of(as<asn1_string>(record).data, as<asn1_string>(record).length);
        case Form::latin_text:
            return PyUnicode_DecodeLatin1(static_cast<const char*>(load_pointer(record)),
                                          static_cast<Py_ssize_t>(as<asn1_string>(record).length), nullptr);
        case Form::utf8_text: return read_utf8(as<asn1_string>(record));
        case Form::utf16_text: return read_utf16(as<asn1_string>(record));
        case Form::utf32_text: return read_utf32(reader, as<asn1_string>(record));
        case Form::object_identifier: return read_identifier(reader, as<asn1_string>(record), false);
        case Form::relative_identifier: return read_identifier(reader, as<asn1_string>(record), true);
        case Form::real: return PyFloat_FromDouble(as<double>(record));
        default: return read_a_level(reader, plan, record);
    }
}

PyObject* to_python(Schema& schema, const Plan* plan, const void* record, Problem& problem) {
    Reader reader = {schema, problem, kMostLevels};
    return read(reader, plan, record);
}

}  // namespace orlenta::python
