// SPDX-License-Identifier: Apache-2.0
#include "from_python.hpp"

#include <orlenta/integer.h>
#include <orlenta/type_info.h>

#include "core/descriptor.hpp"
#include "identifier.hpp"
#include "state.hpp"
#include "to_python.hpp"

namespace orlenta::python {

namespace {

struct Writer {
    Schema& schema;
    Scratch& scratch;
    Problem& problem;
    const asn1_parent_frame* frame;  // of the innermost SEQUENCE
    int levels_left;
};

}  // namespace

static bool write(Writer& writer, const Plan* plan, PyObject* value, void* record);

template <typename Record>
static inline Record& as(void* record) {
    return *static_cast<Record*>(record);
}

// ---- what is wrong ------------------------------------------------------------------------------------------

static bool fail(Writer& writer, std::string message) {
    if (!PyErr_Occurred()) writer.problem.message = std::move(message);
    return false;
}

static bool fail_kind(Writer& writer, const char* expected, PyObject* value) {
    Ref holder;
    const char* got = value == Py_None ? "None" : type_name_of(value, holder);
    return fail(writer, std::string(expected) + " expected, not " + got);
}

static std::string text_of(PyObject* object) {
    Ref text(PyObject_Str(object));
    const char* utf8 = text ? PyUnicode_AsUTF8AndSize(text.object, nullptr) : nullptr;
    if (!utf8) PyErr_Clear();
    return utf8 ? utf8 : "?";
}

static std::string bounds_text(const Plan* plan) {
    bool has_lower = plan->lower != INT64_MIN, has_upper = plan->upper != INT64_MAX;
    return (has_lower ? std::to_string(plan->lower) : "MIN") + ".." +
           (has_upper ? std::to_string(plan->upper) : "MAX");
}

static bool check_size(Writer& writer, const Plan* plan, uint64_t size) {
    int64_t number = static_cast<int64_t>(size);
    if (plan->is_extensible || (number >= plan->lower && number <= plan->upper)) return true;
    return fail(writer, "size " + std::to_string(size) + " is not in " + bounds_text(plan));
}

static void* take_or_fail(Writer& writer, uint64_t size) {
    void* block = take(writer.scratch, size);
    if (!block) PyErr_NoMemory();
    return block;
}

// ---- numbers ------------------------------------------------------------------------------------------------

static bool write_boolean(Writer& writer, PyObject* value, void* record) {
    if (value != Py_True && value != Py_False) return fail_kind(writer, "a bool", value);
    store32(record, value == Py_True);
    return true;
}

// An int, or what stands for one, as numpy's do.
static PyObject* whole_number(Writer& writer, PyObject* value) {
    if (PyLong_Check(value)) return shared(value);
    if (PyIndex_Check(value)) return PyNumber_Index(value);
    fail_kind(writer, "an int", value);
    return nullptr;
}

static bool fail_number(Writer& writer, const Plan* plan, PyObject* number) {
    bool is_any = plan->lower == INT64_MIN || (plan->is_extensible && plan->form == Form::signed_word);
    return fail(writer,
                "number out of range: " + (is_any ? std::string("not in 32 bits")
                                                  : text_of(number) + " is not in " + bounds_text(plan)));
}

static bool write_word(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    Ref number(whole_number(writer, value));
    if (!number) return false;
    int overflow;
    long long wide = PyLong_AsLongLongAndOverflow(number.object, &overflow);
    bool is_in = plan->is_extensible ? wide >= INT32_MIN && wide <= INT32_MAX
                                     : wide >= plan->lower && wide <= plan->upper;
    if (overflow != 0 || !is_in) return fail_number(writer, plan, number.object);
    store32(record, static_cast<uint32_t>(wide));
    return true;
}

static bool set_limbs(Writer& writer, asn1_integer& integer, const uint32_t* limbs, uint32_t size,
                      bool is_negative) {
    while (size > 0 && limbs[size - 1] == 0) --size;
    if (size > 0) {
        integer.limbs = static_cast<uint32_t*>(take_or_fail(writer, uint64_t{size} * sizeof *limbs));
        if (!integer.limbs) return false;
        memcpy(integer.limbs, limbs, size * sizeof *limbs);
    }
    integer.size = integer.capacity = size;
    integer.negative = is_negative && size > 0;
    return true;
}

// From "-0x12ab".
static bool set_from_hexadecimal(Writer& writer, asn1_integer& integer, std::string_view digits) {
    bool is_negative = digits[0] == '-';
    digits.remove_prefix(is_negative ? 3 : 2);
    std::vector<uint32_t> limbs;
    for (size_t end = digits.size(); end > 0; end = end > 8 ? end - 8 : 0) {
        size_t first = end > 8 ? end - 8 : 0;
        limbs.push_back(static_cast<uint32_t>(
            strtoul(std::string(digits.substr(first, end - first)).c_str(), nullptr, 16)));
    }
    if (limbs.size() > 0x3FFFFFF) return fail(writer, "number out of range");
    return set_limbs(writer, integer, limbs.data(), static_cast<uint32_t>(limbs.size()), is_negative);
}

static bool set_integer(Writer& writer, asn1_integer& integer, PyObject* number) {
    int overflow;
    long long wide = PyLong_AsLongLongAndOverflow(number, &overflow);
    if (overflow == 0) {
        uint64_t magnitude = wide < 0 ? 0 - static_cast<uint64_t>(wide) : static_cast<uint64_t>(wide);
        uint32_t limbs[2] = {static_cast<uint32_t>(magnitude), static_cast<uint32_t>(magnitude >> 32)};
        return set_limbs(writer, integer, limbs, 2, wide < 0);
    }
    Ref digits(PyNumber_ToBase(number, 16));
    const char* text = digits ? PyUnicode_AsUTF8AndSize(digits.object, nullptr) : nullptr;
    return text && set_from_hexadecimal(writer, integer, text);
}

static bool is_in_bounds(const Plan* plan, const asn1_integer& integer) {
    return plan->is_extensible || ((!plan->big_lower || asn1_integer_cmp(&integer, plan->big_lower) >= 0) &&
                                   (!plan->big_upper || asn1_integer_cmp(&integer, plan->big_upper) <= 0));
}

static bool write_big_integer(Writer& writer, const Plan* plan, PyObject* value, asn1_integer& integer) {
    Ref number(whole_number(writer, value));
    if (!number || !set_integer(writer, integer, number.object)) return false;
    return is_in_bounds(plan, integer) || fail(writer, "number out of range");
}

static bool write_real(Writer& writer, PyObject* value, void* record) {
    if (!PyFloat_Check(value) && !PyLong_Check(value)) return fail_kind(writer, "a float", value);
    as<double>(record) = PyFloat_AsDouble(value);
    return !PyErr_Occurred();
}

static bool write_item(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    if (!PyUnicode_Check(value)) return fail_kind(writer, "the name of an item", value);
    long index = find_name(plan->index, value);
    if (index < 0) return fail(writer, "no item is called '" + text_of(value) + "'");
    store32(record, static_cast<uint32_t>(index));
    return true;
}

static bool write_null(Writer& writer, PyObject* value) {
    return value == Py_None || fail_kind(writer, "None", value);
}

// ---- strings ------------------------------------------------------------------------------------------------

// Copied, since code of the objects' own may release them before the record is encoded.
static bool set_octets(Writer& writer, uint8_t*& data, const void* source, size_t size) {
    if (size == 0) return true;
    data = static_cast<uint8_t*>(take_or_fail(writer, size));
    if (!data) return false;
    memcpy(data, source, size);
    return true;
}

static bool open_octets(Writer& writer, Octets& octets, PyObject* value) {
    if (PyUnicode_Check(value)) return fail_kind(writer, "bytes", value);
    if (octets.open(value)) return true;
    if (!PyErr_ExceptionMatches(PyExc_TypeError)) return false;
    PyErr_Clear();
    return fail_kind(writer, "bytes", value);
}

static bool write_octet_string(Writer& writer, const Plan* plan, PyObject* value, asn1_string& string) {
    Octets octets;
    if (!open_octets(writer, octets, value) || !check_size(writer, plan, octets.size)) return false;
    string.length = octets.size;
    return set_octets(writer, string.data, octets.data, octets.size);
}

static bool write_bit_string(Writer& writer, const Plan* plan, PyObject* value, asn1_bit_string& string) {
    if (!PyTuple_Check(value) || PyTuple_Size(value) != 2 || !PyLong_Check(PyTuple_GetItem(value, 1)))
        return fail_kind(writer, "(bytes, number of bits)", value);
    Octets octets;
    if (!open_octets(writer, octets, PyTuple_GetItem(value, 0))) return false;
    int overflow;
    long long bits = PyLong_AsLongLongAndOverflow(PyTuple_GetItem(value, 1), &overflow);
    if (overflow != 0 || bits < 0 || static_cast<uint64_t>(bits) > 8 * uint64_t{octets.size})
        return fail(writer, "the bytes do not hold as many bits");
    if (!check_size(writer, plan, static_cast<uint64_t>(bits))) return false;
    string.length = static_cast<uint64_t>(bits);
    size_t size = static_cast<size_t>((bits + 7) / 8);
    if (!set_octets(writer, string.data, octets.data, size)) return false;
    if (bits % 8 != 0) string.data[size - 1] &= static_cast<uint8_t>(0xFF00 >> bits % 8);
    return true;
}

static bool write_encoded(Writer& writer, const Plan* plan, PyObject* value, const char* encoding,
                          const char* errors, uint32_t unit, asn1_string& string) {
    if (!PyUnicode_Check(value)) return fail_kind(writer, "a str", value);
    Ref bytes(PyUnicode_AsEncodedString(value, encoding, errors));
    if (!bytes) {
        if (PyErr_ExceptionMatches(PyExc_UnicodeError)) PyErr_Clear();
        return fail(writer, "a character that the type does not have");
    }
    char* data;
    Py_ssize_t size;
    if (PyBytes_AsStringAndSize(bytes.object, &data, &size) < 0) return false;
    string.length = static_cast<uint64_t>(size) / unit;
    return check_size(writer, plan, string.length) &&
           set_octets(writer, string.data, data, static_cast<size_t>(size));
}

// ASCII is UTF-8 and needs no copy by Python.
static bool write_text(Writer& writer, const Plan* plan, PyObject* value, asn1_string& string) {
    if (!PyUnicode_Check(value)) return fail_kind(writer, "a str", value);
    Py_ssize_t size;
    const char* text = PyUnicode_AsUTF8AndSize(value, &size);
    bool is_utf8 = plan->form == Form::utf8_text;
    if (text && (is_utf8 || size == PyUnicode_GetLength(value))) {
        string.length = static_cast<uint64_t>(size);
        return check_size(writer, plan, string.length) &&
               set_octets(writer, string.data, text, static_cast<size_t>(size));
    }
    PyErr_Clear();
    if (is_utf8) return write_encoded(writer, plan, value, "utf-8", "surrogateescape", 1, string);
    return write_encoded(writer, plan, value, "latin-1", "strict", 1, string);
}

static bool write_identifier(Writer& writer, PyObject* value, bool is_relative, asn1_string& string) {
    if (!PyUnicode_Check(value)) return fail_kind(writer, "a str of arcs", value);
    Py_ssize_t size;
    const char* text = PyUnicode_AsUTF8AndSize(value, &size);
    std::string octets;
    if (!text || !identifier_octets({text, static_cast<size_t>(size)}, is_relative, octets)) {
        PyErr_Clear();
        return fail(writer, "'" + text_of(value) + "' is no object identifier");
    }
    string.length = octets.size();
    return set_octets(writer, string.data, octets.data(), octets.size());
}

// ---- SEQUENCE and SET ---------------------------------------------------------------------------------------

static bool write_default(Writer& writer, const Member& member, void* place) {
    if (member.plan->form != Form::big_integer) {
        store32(place, member.default_word);
        return true;
    }
    const asn1_integer& number = *member.big_default;
    return set_limbs(writer, as<asn1_integer>(place), number.limbs, number.size, number.negative != 0);
}

static bool write_absent(Writer& writer, const Member& member, void* place) {
    if (member.presence == Presence::defaulted) return write_default(writer, member, place);
    if (member.presence == Presence::flagged) return true;
    fail(writer, "component is missing");
    put_before(writer.problem, member.name);
    return false;
}

static bool fail_unknown(Writer& writer, const Plan* plan, PyObject* dict) {
    PyObject *key, *value;
    for (Py_ssize_t position = 0; PyDict_Next(dict, &position, &key, &value);) {
        bool is_known = false;
        for (const Member& member : plan->members) {
            is_known = is_known || (PyUnicode_Check(key) && PyUnicode_Compare(key, member.name) == 0);
        }
        if (!is_known) return fail(writer, "no component is called '" + text_of(key) + "'");
    }
    return fail(writer, "the dict changed while it was read");
}

static bool write_members(Writer& writer, const Plan* plan, PyObject* dict, void* record) {
    Py_ssize_t taken = 0;
    for (const Member& member : plan->members) {
        PyObject* value = PyDict_GetItemWithError(dict, member.name);
        void* place = at_offset(record, member.offset);
        if (!value) {
            if (PyErr_Occurred() || !write_absent(writer, member, place)) return false;
            continue;
        }
        ++taken;
        Ref held(shared(value));
        if (!write(writer, member.plan, value, place)) {
            put_before(writer.problem, member.name);
            return false;
        }
        if (member.presence == Presence::flagged) store32(at_offset(record, member.presence_offset), 1);
    }
    return taken == PyDict_Size(dict) || fail_unknown(writer, plan, dict);
}

static bool write_record(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    if (!PyDict_Check(value)) return fail_kind(writer, "a dict", value);
    asn1_parent_frame frame = {writer.frame, plan->type, record};
    writer.frame = &frame;
    bool is_done = write_members(writer, plan, value, record);
    writer.frame = frame.parent;
    return is_done;
}

// ---- lists, alternatives, open types --------------------------------------------------------------------------

static bool write_list(Writer& writer, const Plan* plan, PyObject* value, asn1_array& array) {
    bool is_list = PyList_Check(value);
    if (!is_list && !PyTuple_Check(value)) return fail_kind(writer, "a list", value);
    Py_ssize_t count = is_list ? PyList_Size(value) : PyTuple_Size(value);
    if (!check_size(writer, plan, static_cast<uint64_t>(count))) return false;
    array.data = take_or_fail(writer, static_cast<uint64_t>(count) * plan->stride);
    if (!array.data) return false;
    array.count = static_cast<uint64_t>(count);
    for (Py_ssize_t i = 0; i < count; ++i) {
        // Code of an element's own may have made the list shorter.
        Ref element(is_list ? PyList_GetItem(value, i) : PyTuple_GetItem(value, i));
        Py_XINCREF(element.object);
        void* place = at_offset(array.data, static_cast<uint64_t>(i) * plan->stride);
        if (element && write(writer, plan->inner, element.object, place)) continue;
        put_before(writer.problem, i);
        return false;
    }
    return true;
}

static bool is_pair(PyObject* value) { return PyTuple_Check(value) && PyTuple_Size(value) == 2; }

static bool write_choice(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    if (!is_pair(value) || !PyUnicode_Check(PyTuple_GetItem(value, 0)))
        return fail_kind(writer, "(name of an alternative, value)", value);
    PyObject* name = PyTuple_GetItem(value, 0);
    long index = find_name(plan->index, name);
    if (index < 0) return fail(writer, "no alternative is called '" + text_of(name) + "'");
    const Member& member = plan->members[static_cast<size_t>(index)];
    store32(at_offset(record, plan->selector_offset), static_cast<uint32_t>(index));
    if (write(writer, member.plan, PyTuple_GetItem(value, 1), at_offset(record, member.offset))) return true;
    put_before(writer.problem, member.name);
    return false;
}

// The type that the key selects, if it is called so; else the one of that name.
static const OpenType* actual_type(Writer& writer, const Plan* plan, PyObject* name) {
    const asn1_type_desc* selected = asn1_get_constrained_type(writer.frame, plan->type);
    const OpenType* actual = selected ? open_type_of(writer.schema, selected) : nullptr;
    if (selected && (!actual || PyUnicode_Compare(actual->name, name) == 0)) return actual;
    const Handle* handle = find_handle(writer.schema, name);
    return handle ? open_type_of(writer.schema, handle->type) : nullptr;
}

static bool write_open_type(Writer& writer, const Plan* plan, PyObject* value, asn1_open_value& open) {
    if (!is_pair(value)) {
        Octets octets;
        if (PyTuple_Check(value) || PyUnicode_Check(value) || !octets.open(value)) {
            PyErr_Clear();
            return fail_kind(writer, "(type name, value) or bytes", value);
        }
        open.length = octets.size;
        return set_octets(writer, reinterpret_cast<uint8_t*&>(open.data), octets.data, octets.size);
    }
    PyObject* name = PyTuple_GetItem(value, 0);
    if (!PyUnicode_Check(name)) return fail_kind(writer, "the name of a type", name);
    const OpenType* actual = actual_type(writer, plan, name);
    if (!actual) {
        PyErr_Clear();
        return fail(writer, "no type is called '" + text_of(name) + "'");
    }
    open.data = take_or_fail(writer, actual->plan->size);
    if (!open.data) return false;
    open.type = actual->type;
    return write(writer, actual->plan, PyTuple_GetItem(value, 1), open.data);
}

static bool write_indirect(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    void* target = take_or_fail(writer, plan->inner->size);
    if (!target) return false;
    store_pointer(record, target);
    return write(writer, plan->inner, value, target);
}

static bool write_composite(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    switch (plan->form) {
        case Form::record: return write_record(writer, plan, value, record);
        case Form::list: return write_list(writer, plan, value, as<asn1_array>(record));
        case Form::choice: return write_choice(writer, plan, value, record);
        case Form::open_type: return write_open_type(writer, plan, value, as<asn1_open_value>(record));
        default: return write_indirect(writer, plan, value, record);
    }
}

static bool write_a_level(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    if (writer.levels_left == 0) return fail(writer, "value nested too deeply");
    --writer.levels_left;
    bool is_done = write_composite(writer, plan, value, record);
    ++writer.levels_left;
    return is_done;
}

static bool write(Writer& writer, const Plan* plan, PyObject* value, void* record) {
    switch (plan->form) {
        case Form::boolean: return write_boolean(writer, value, record);
        case Form::signed_word:
        case Form::unsigned_word: return write_word(writer, plan, value, record);
        case Form::big_integer: return write_big_integer(writer, plan, value, as<asn1_integer>(record));
        case Form::enumerated: return write_item(writer, plan, value, record);
        case Form::null: return write_null(writer, value);
        case Form::bit_string: return write_bit_string(writer, plan, value, as<asn1_bit_string>(record));
        case Form::octet_string: return write_octet_string(writer, plan, value, as<asn1_string>(record));
        case Form::latin_text:
        case Form::utf8_text: return write_text(writer, plan, value, as<asn1_string>(record));
        case Form::utf16_text:
            return write_encoded(writer, plan, value, PY_BIG_ENDIAN ? "utf-16-be" : "utf-16-le",
                                 "surrogatepass", 2, as<asn1_string>(record));
        case Form::utf32_text:
            return write_encoded(writer, plan, value, PY_BIG_ENDIAN ? "utf-32-be" : "utf-32-le",
                                 "surrogatepass", 4, as<asn1_string>(record));
        case Form::object_identifier: return write_identifier(writer, value, false, as<asn1_string>(record));
        case Form::relative_identifier: return write_identifier(writer, value, true, as<asn1_string>(record));
        case Form::real: return write_real(writer, value, record);
        default: return write_a_level(writer, plan, value, record);
    }
}

const void* from_python(Schema& schema, const Plan* plan, PyObject* value, Scratch& scratch,
                        Problem& problem) {
    Writer writer = {schema, scratch, problem, nullptr, kMostLevels};
    void* record = take(scratch, plan->size);
    if (!record) PyErr_NoMemory();
    return record && write(writer, plan, value, record) ? record : nullptr;
}

}  // namespace orlenta::python
