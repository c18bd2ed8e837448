// SPDX-License-Identifier: Apache-2.0
// The type path of a walk: push before descending, pop after.
#pragma once

#include <orlenta/error.h>

namespace orlenta {

inline asn1_type_path_entry* path_slot(asn1_type_path* path) {
    return &path->entries[path->depth++ & (ASN1_TYPE_PATH_SLOTS - 1)];
}

inline void push_name(asn1_type_path* path, const char* name) {
    asn1_type_path_entry* entry = path_slot(path);
    entry->is_index = 0;
    entry->u.name = name;
}

inline void push_index(asn1_type_path* path, int32_t index) {
    asn1_type_path_entry* entry = path_slot(path);
    entry->is_index = 1;
    entry->u.index = index;
}

inline void pop(asn1_type_path* path) { --path->depth; }

}  // namespace orlenta
