#include "compiler/emit/catalogue.hpp"

#include <fmt/format.h>

#include <iterator>

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
        "    const asn1_type_desc* type;\n};\n\n";
    fmt::format_to(at, "extern const orlenta_catalogue_entry orlenta_catalogue_{}[];\n", layout.region);
    fmt::format_to(at, "extern const size_t orlenta_catalogue_{}_count;\n", layout.region);
    fmt::format_to(at, "const orlenta_catalogue_entry orlenta_catalogue_{}[] = {{\n", layout.region);
    size_t prefix = layout.region.size() + 1;
    for (const Table* table : layout.tables) {
        fmt::format_to(at, "    {{\"{}\", \"{}\", asn1_type_{}}},\n", table->symbol.substr(prefix),
                       table->name, table->symbol);
    }
    fmt::format_to(at, "}};\nconst size_t orlenta_catalogue_{}_count = {};\n", layout.region,
                   layout.tables.size());
    return out;
}

}  // namespace orlentac
