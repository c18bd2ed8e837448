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

// Reads the sources of one region, which share one name space, into an empty `out`. All errors found go into `diags`,
// sorted by place; the result is true if there is none. If it is false, `out` is not fit for use.
bool load_schema(const std::vector<SourceText>& sources, Schema& out, Diagnostics& diags);

}  // namespace orlentac
