// SPDX-License-Identifier: Apache-2.0
// CPython's interface, and what the extension adds to it. All is within the stable ABI of 3.11; earlier versions are
// built for one by one, for want of Py_buffer in theirs.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <string_view>
#include <utility>

namespace orlenta::python {

// A reference of one's own; null after a failure.
struct Ref {
    PyObject* object = nullptr;

    Ref() = default;
    explicit Ref(PyObject* owned) : object(owned) {}
    Ref(Ref&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~Ref() { Py_XDECREF(object); }

    explicit operator bool() const { return object != nullptr; }
    PyObject* release() { return std::exchange(object, nullptr); }
};

inline PyObject* shared(PyObject* object) {
    Py_INCREF(object);
    return object;
}
inline PyObject* none() { return shared(Py_None); }

// Parts of new tuples and lists, whose place is known to be empty.
inline void put(PyObject* tuple, Py_ssize_t index, PyObject* owned) {
#ifdef Py_LIMITED_API
    PyTuple_SetItem(tuple, index, owned);
#else
    PyTuple_SET_ITEM(tuple, index, owned);
#endif
}
inline void put_in_list(PyObject* list, Py_ssize_t index, PyObject* owned) {
#ifdef Py_LIMITED_API
    PyList_SetItem(list, index, owned);
#else
    PyList_SET_ITEM(list, index, owned);
#endif
}

// Takes both over; null if one of them is, or without memory.
inline PyObject* pair(PyObject* first, PyObject* second) {
    PyObject* both = first && second ? PyTuple_New(2) : nullptr;
    if (!both) {
        Py_XDECREF(first);
        Py_XDECREF(second);
        return nullptr;
    }
    put(both, 0, first);
    put(both, 1, second);
    return both;
}

inline PyObject* text_object(const char* text) { return PyUnicode_FromString(text); }
inline PyObject* text_object(std::string_view text) {
    return PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
}

inline const char* type_name_of(PyObject* object, Ref& holder) {
    holder = Ref(PyObject_GetAttrString(reinterpret_cast<PyObject*>(Py_TYPE(object)), "__name__"));
    const char* name = holder ? PyUnicode_AsUTF8AndSize(holder.object, nullptr) : nullptr;
    if (!name) PyErr_Clear();
    return name ? name : "object";
}

// The octets of a bytes-like object, or of a str in UTF-8.
struct Octets {
    const uint8_t* data = nullptr;
    size_t size = 0;
    Py_buffer view = {};
    bool has_view = false;

    Octets() = default;
    Octets(const Octets&) = delete;
    Octets& operator=(const Octets&) = delete;
    ~Octets() {
        if (has_view) PyBuffer_Release(&view);
    }
    // False with an exception.
    bool open(PyObject* source) {
        if (PyBytes_Check(source)) {
            char* text;
            Py_ssize_t length;
            if (PyBytes_AsStringAndSize(source, &text, &length) < 0) return false;
            return set(text, length);
        }
        if (PyUnicode_Check(source)) {
            Py_ssize_t length;
            const char* text = PyUnicode_AsUTF8AndSize(source, &length);
            return text ? set(text, length) : open_encoded(source);
        }
        if (PyObject_GetBuffer(source, &view, PyBUF_SIMPLE) < 0) return false;
        has_view = true;
        return set(static_cast<const char*>(view.buf), view.len);
    }

  private:
    Ref encoded;

    // What was no UTF-8 when it was read goes back as it was.
    bool open_encoded(PyObject* text) {
        PyErr_Clear();
        encoded = Ref(PyUnicode_AsEncodedString(text, "utf-8", "surrogateescape"));
        return encoded && open(encoded.object);
    }
    bool set(const char* text, Py_ssize_t length) {
        data = reinterpret_cast<const uint8_t*>(text);
        size = static_cast<size_t>(length);
        return true;
    }
};

}  // namespace orlenta::python
