// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/catalogue.hpp"

#include <fmt/format.h>

#include <iterator>
#include <string_view>

namespace orlentac {

std::string emit_catalogue(const Layout& layout) {
    std::string out = "// Made by orlentac; changes are lost.\n";
    auto at = std::back_inserter(out);
    out += "#include <orlenta/type.h>\n\nextern \"C\" {\n";
    for (const Table* table : layout.tables) {
        fmt::format_to(at, "ORLENTA_API extern const asn1_type_desc asn1_type_{}[];\n", table->symbol);
    }
    out +=
        "}\n\nstruct orlenta_catalogue_entry {\n    const char* table;\n    const char* name;\n"
        "    const asn1_type_desc* type;\n    const char* module;\n};\n\n";
    fmt::format_to(at, "extern const orlenta_catalogue_entry orlenta_catalogue_{}[];\n", layout.region);
    fmt::format_to(at, "extern const size_t orlenta_catalogue_{}_count;\n", layout.region);
    fmt::format_to(at, "const orlenta_catalogue_entry orlenta_catalogue_{}[] = {{\n", layout.region);
    size_t prefix = layout.region.size() + 1;
    auto put = [&](std::string_view table, std::string_view name, const Table& type,
                   std::string_view module) {
        fmt::format_to(at, "    {{\"{}\", \"{}\", asn1_type_{}, \"{}\"}},\n", table, name, type.symbol,
                       module);
    };
    for (const Table* table : layout.tables)
        put(std::string_view(table->symbol).substr(prefix), table->name, *table, table->module);
    size_t count = layout.tables.size();
    if (layout.lists_aliases) {
        count += layout.aliases.size();
        for (const Alias& alias : layout.aliases)
            put(alias.name, alias.schema_name, *alias.table, alias.module);
    }
    fmt::format_to(at, "}};\nconst size_t orlenta_catalogue_{}_count = {};\n", layout.region, count);
    return out;
}

}  // namespace orlentac
