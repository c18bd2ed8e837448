// SPDX-License-Identifier: Apache-2.0
// Names of alternatives or items, and which one a str is. A dict would do, but making one may run the collector, and that
// any code, which would meet plans that are not finished.
#pragma once

#include <vector>

#include "python.hpp"

namespace orlenta::python {

struct NameIndex {
    struct Slot {
        Py_hash_t hash;
        PyObject* name;  // borrowed; null: free
        long index;
    };
    std::vector<Slot> slots;  // a power of two of them, at least half of them free
};

// Of `count` names, the one at i being name_at(i). False with an exception.
template <typename NameAt>
bool make_index(NameIndex& index, size_t count, const NameAt& name_at) {
    size_t size = 2;
    while (size < 2 * count) size *= 2;
    index.slots.assign(size, {0, nullptr, 0});
    for (size_t i = 0; i < count; ++i) {
        Py_hash_t hash = PyObject_Hash(name_at(i));
        if (hash == -1) return false;
        size_t at = static_cast<size_t>(hash) & (size - 1);
        while (index.slots[at].name) at = (at + 1) & (size - 1);
        index.slots[at] = {hash, name_at(i), static_cast<long>(i)};
    }
    return true;
}

// -1 if no name is the same.
inline long find_name(const NameIndex& index, PyObject* name) {
    if (index.slots.empty()) return -1;
    Py_hash_t hash = PyObject_Hash(name);
    if (hash == -1) return -1;
    size_t mask = index.slots.size() - 1;
    for (size_t at = static_cast<size_t>(hash) & mask; index.slots[at].name; at = (at + 1) & mask) {
        const NameIndex::Slot& slot = index.slots[at];
        if (slot.name == name || (slot.hash == hash && PyUnicode_Compare(slot.name, name) == 0))
            return slot.index;
    }
    return -1;
}

}  // namespace orlenta::python
