// SPDX-License-Identifier: Apache-2.0
// Ways to single parts of a value, as "coreData.lat", "nodes[0].refPos" or "value.coreData.lat" through an open type.
#pragma once

#include <string>

#include "schema.hpp"

namespace orlenta::python {

struct PathStep {
    enum Kind : uint8_t { component, alternative, element, indirect, open_type } kind;
    bool has_presence_word;
    uint64_t offset;           // of the part; element: of the element in the list's block
    uint64_t number;           // component: offset of its presence word; alternative or element: its index
    uint64_t selector_offset;  // alternative
};

// The steps as far as the type tells them. What stands behind an open type depends on the value.
struct FieldPath {
    std::vector<PathStep> steps;
    const Plan* leaf = nullptr;  // null if the last step leads into an open type
    std::string rest;            // behind that

    std::unordered_map<const asn1_type_desc*, std::unique_ptr<FieldPath>> behind;  // by the type that is met
};

// False if `text` names no part of the type: `rest` is what was not understood.
bool parse_path(const Plan* plan, std::string_view text, FieldPath& path);

// A part of a value; null if it is absent.
struct Part {
    const Plan* plan;
    const void* record;
};
Part follow(Schema& schema, FieldPath& path, const void* record);

}  // namespace orlenta::python
