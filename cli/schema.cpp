// SPDX-License-Identifier: Apache-2.0
#include "cli/schema.hpp"

#include <fmt/format.h>
#include <orlenta/schema.h>

#include <memory>

#include "cli/commands.hpp"
#include "cli/type_names.hpp"

namespace cli {

namespace {

struct ReleaseSchema {
    void operator()(orlenta_schema* schema) const { orlenta_schema_free(schema); }
};

}  // namespace

static void report_errors(const orlenta_schema* schema) {
    for (size_t i = 0; i < orlenta_schema_message_count(schema); ++i) {
        const orlenta_schema_message* message = orlenta_schema_message_at(schema, i);
        if (message->is_note) continue;
        report(message->file[0]
                   ? fmt::format("{}:{}:{}: {}", message->file, message->line, message->column, message->text)
                   : message->text);
    }
}

bool use_schema(const std::vector<std::string>& files, const std::string& region) {
    static std::unique_ptr<orlenta_schema, ReleaseSchema> schema;  // what the types of the run live in
    std::vector<const char*> paths;
    for (const std::string& file : files) paths.push_back(file.c_str());
    orlenta_schema_options options = {region.c_str(), 0};
    schema.reset(orlenta_schema_compile_files(paths.data(), paths.size(), &options));
    if (!schema) {
        report("not enough memory");
        return false;
    }
    const orlenta_catalogue* catalogue = orlenta_schema_catalogue(schema.get());
    if (!catalogue) {
        report_errors(schema.get());
        return false;
    }
    use_catalogue(catalogue);
    return true;
}

}  // namespace cli
