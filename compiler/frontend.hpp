// SPDX-License-Identifier: Apache-2.0
// The front end: reads the modules of one region and resolves them into the model.
#pragma once

#include <string>
#include <vector>

#include "compiler/model/diagnostics.hpp"
#include "compiler/model/model.hpp"

namespace orlentac {

struct SourceText {
    std::string name;  // as told in errors
    std::string text;
};

struct SchemaOptions {
    // As the message sets that come with the library have it: the items of an ENUMERATED stand in the order of the
    // text, and a type whose references all have the same tag carries that tag itself.
    bool shipped_forms = false;
};

// Reads the sources of one region into an empty `out`. All errors found go into `diags`,
// sorted by place; the result is true if there is none. If it is false, `out` is not fit for use.
bool load_schema(const std::vector<SourceText>& sources, const SchemaOptions& options, Schema& out,
                 Diagnostics& diags);

}  // namespace orlentac
