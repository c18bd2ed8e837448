// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/catalogue.hpp"

#include <fmt/format.h>

#include <iterator>
#include <set>
#include <string_view>

#include "compiler/layout/catalogue.hpp"

namespace orlentac {

namespace {

// What a comment may hold and a literal may not.
std::string escaped(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == '"' || c == '\\' || c == '?') out += '\\';
        out += c;
    }
    return out;
}

// A literal each, so that no digit comes behind the escape of a zero.
void put_texts(std::string& out, std::string_view texts) {
    out += "static constinit const char texts[] =";
    while (!texts.empty()) {
        size_t size = texts.find('\0') + 1;
        fmt::format_to(std::back_inserter(out), "\n    \"{}\\0\"", escaped(texts.substr(0, size - 1)));
        texts.remove_prefix(size);
    }
    out += ";\n\n";
}

void put_pointers(std::string& out, const std::vector<const Table*>& types) {
    if (types.empty()) return;
    out += "static constinit const asn1_type_desc* const types[] = {\n";
    for (const Table* table : types)
        fmt::format_to(std::back_inserter(out), "    asn1_type_{},\n", table->symbol);
    out += "};\n\n";
}

void put_entries(std::string& out, const CatalogueForm& form) {
    if (form.entries.empty()) return;
    out += "static constinit const entry entries[] = {\n";
    for (const orlenta::catalogue::entry& entry : form.entries)
        fmt::format_to(std::back_inserter(out), "    {{{}, {}, {}, {}, {}, {}}},\n", entry.name, entry.module,
                       entry.about, entry.from, entry.word, entry.flags);
    out += "};\n\n";
}

std::string number_text(int64_t number) { return number == INT64_MIN ? "INT64_MIN" : std::to_string(number); }

void put_units(std::string& out, const CatalogueForm& form) {
    auto at = std::back_inserter(out);
    if (!form.specials.empty()) out += "static constinit const orlenta_special specials[] = {\n";
    for (const SpecialForm& special : form.specials)
        fmt::format_to(at, "    {{{}, {}, texts + {}, {}}},\n", number_text(special.first),
                       number_text(special.last), special.meaning, special.is_limit);
    if (!form.specials.empty()) out += "};\n\n";
    if (form.units.empty()) return;
    out += "static constinit const orlenta_unit units[] = {\n";
    for (const UnitForm& unit : form.units)
        fmt::format_to(at, "    {{texts + {}, {}, {}, {}, {}, {}}},\n", unit.symbol, unit.scale, unit.offset,
                       unit.digits, unit.special_count,
                       unit.special_count ? fmt::format("specials + {}", unit.first_special) : "nullptr");
    out += "};\n\nstatic constinit const unit_place unit_places[] = {\n";
    for (const orlenta::catalogue::unit_place& place : form.unit_places)
        fmt::format_to(at, "    {{{}, {}, {}}},\n", place.from, place.word, place.unit);
    out += "};\n\n";
}

}  // namespace

std::string emit_catalogue(const Layout& layout) {
    CatalogueForm form = catalogue_form(layout);
    std::string out = fmt::format(
        "// The types of the region {}. Made by orlentac; not to be edited.\n#include "
        "\"catalogue/region.hpp\"\n\n"
        "extern \"C\" {{\n",
        layout.region);
    auto at = std::back_inserter(out);
    std::set<std::string_view> declared;
    for (const Table* table : form.types)
        if (declared.insert(table->symbol).second)
            fmt::format_to(at, "ORLENTA_API extern const asn1_type_desc asn1_type_{}[];\n", table->symbol);
    fmt::format_to(
        at,
        "[[gnu::visibility(\"hidden\")]] extern const orlenta::catalogue::region orlenta_region_{0};\n"
        "ORLENTA_API const orlenta_catalogue* orlenta_catalogue_{0}();\n}}\n\n"
        "namespace {{\nusing namespace orlenta::catalogue;\n\n",
        layout.region);
    put_texts(out, form.texts);
    put_pointers(out, form.types);
    put_entries(out, form);
    put_units(out, form);
    fmt::format_to(at,
                   "}}  // namespace\n\n"
                   "constinit const orlenta::catalogue::region orlenta_region_{0} = {{{1}, {2}, {3}, texts, "
                   "{4}, {5}, {6}, "
                   "{7}}};\n\n"
                   "const orlenta_catalogue* orlenta_catalogue_{0}() {{\n"
                   "    static constexpr const region* regions[] = {{&orlenta_region_{0}}};\n"
                   "    static constexpr orlenta_catalogue catalogue = {{regions, 1}};\n"
                   "    return &catalogue;\n}}\n",
                   layout.region, orlenta::catalogue::kFormat, form.entries.size(),
                   form.entries.empty() ? "nullptr" : "entries", form.types.empty() ? "nullptr" : "types",
                   form.units.empty() ? "nullptr" : "units", form.units.empty() ? "nullptr" : "unit_places",
                   form.unit_places.size());
    return out;
}

}  // namespace orlentac
