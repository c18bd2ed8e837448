// SPDX-License-Identifier: Apache-2.0
// The interface of liborlenta-schema: C outside, so that no exception may leave it.
#include <orlenta/schema.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <unordered_map>

#include "catalogue/region.hpp"
#include "compiler/frontend.hpp"
#include "compiler/layout/catalogue.hpp"
#include "compiler/layout/layout.hpp"
#include "compiler/memory/tables.hpp"

using namespace orlentac;

// Never moved, since its parts point at each other.
struct orlenta_schema {
    MemoryTables tables;
    CatalogueForm names;
    std::vector<const asn1_type_desc*> types;  // of `names`
    std::vector<orlenta_special> specials;     // likewise
    std::vector<orlenta_unit> units;           // likewise
    orlenta::catalogue::region region = {};
    const orlenta::catalogue::region* regions[1] = {&region};
    orlenta_catalogue catalogue = {regions, 1};
    std::deque<std::string> texts;  // of the messages; a deque leaves them where they are
    std::vector<orlenta_schema_message> messages;
    bool is_valid = false;
};

namespace {

const char* keep(orlenta_schema& schema, std::string text) {
    return schema.texts.emplace_back(std::move(text)).c_str();
}

void add_messages(orlenta_schema& schema, const std::vector<Diagnostic>& messages, bool are_notes) {
    for (const Diagnostic& message : messages) {
        const Place& place = message.place;
        schema.messages.push_back({place.file ? keep(schema, *place.file) : "", place.file ? place.line : 0,
                                   place.file ? place.column : 0, keep(schema, message.text), are_notes});
    }
}

void add_types(orlenta_schema& schema, const Layout& layout) {
    schema.tables = make_tables(layout);
    std::unordered_map<const Table*, const asn1_type_desc*> types;
    for (size_t i = 0; i < layout.tables.size(); i++)
        types.emplace(layout.tables[i], schema.tables.tables[i].type);
    schema.names = catalogue_form(layout);
    for (const Table* table : schema.names.types) schema.types.push_back(types.at(table));
    const CatalogueForm& names = schema.names;
    const char* texts = names.texts.data();
    for (const SpecialForm& special : names.specials)
        schema.specials.push_back({special.first, special.last, texts + special.meaning, special.is_limit});
    for (const UnitForm& unit : names.units)
        schema.units.push_back({texts + unit.symbol, unit.scale, unit.offset, unit.digits,
                                static_cast<uint32_t>(unit.special_count),
                                schema.specials.data() + unit.first_special});
    schema.region = {orlenta::catalogue::kFormat, static_cast<uint32_t>(names.entries.size()),
                     names.entries.data(),        texts,
                     schema.types.data(),         schema.units.data(),
                     names.unit_places.data(),    static_cast<uint32_t>(names.unit_places.size())};
}

bool is_region_name(const std::string& name) {
    auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    for (char c : name)
        if (!is_letter(c) && !(c >= '0' && c <= '9') && c != '_') return false;
    return name.empty() || is_letter(name[0]);
}

void compile(orlenta_schema& schema, const std::vector<SourceText>& sources,
             const orlenta_schema_options* options, Diagnostics& diags) {
    LayoutOptions layout_options;
    if (options && options->region) layout_options.region = options->region;
    layout_options.module_names = options && options->module_names != 0;
    if (!is_region_name(layout_options.region))
        add_error(diags, {}, "a region's name is made of letters, digits and underscores, a letter first");
    Schema model;
    Layout layout;
    if (diags.errors.empty() && load_schema(sources, {}, model, diags) &&
        make_layout(model, layout_options, layout, diags)) {
        add_types(schema, layout);
        schema.is_valid = true;
    }
    add_messages(schema, diags.errors, false);
    add_messages(schema, diags.notes, true);
}

std::vector<SourceText> read_files(const char* const* paths, size_t count, Diagnostics& diags) {
    std::vector<SourceText> sources;
    for (size_t i = 0; i < count; i++) {
        std::ifstream file(paths[i], std::ios::binary);
        std::string text(std::istreambuf_iterator<char>(file), {});
        if (!file.is_open() || file.bad() || std::filesystem::is_directory(paths[i]))
            add_error(diags, {}, fmt::format("cannot read '{}'", paths[i]));
        else
            sources.push_back({paths[i], std::move(text)});
    }
    return sources;
}

// A new schema that `fill` has filled.
template <typename Fill>
orlenta_schema* make_schema(Fill fill) {
    try {
        auto schema = std::make_unique<orlenta_schema>();
        Diagnostics diags;
        fill(*schema, diags);
        return schema.release();
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace

orlenta_schema* orlenta_schema_compile(const orlenta_schema_source* sources, size_t count,
                                       const orlenta_schema_options* options) {
    return make_schema([&](orlenta_schema& schema, Diagnostics& diags) {
        std::vector<SourceText> texts;
        for (size_t i = 0; i < count; i++)
            texts.push_back({sources[i].name, std::string(sources[i].text, sources[i].size)});
        compile(schema, texts, options, diags);
    });
}

orlenta_schema* orlenta_schema_compile_files(const char* const* paths, size_t count,
                                             const orlenta_schema_options* options) {
    return make_schema([&](orlenta_schema& schema, Diagnostics& diags) {
        compile(schema, read_files(paths, count, diags), options, diags);
    });
}

void orlenta_schema_free(orlenta_schema* schema) { delete schema; }

const orlenta_catalogue* orlenta_schema_catalogue(const orlenta_schema* schema) {
    return schema->is_valid ? &schema->catalogue : nullptr;
}

size_t orlenta_schema_message_count(const orlenta_schema* schema) { return schema->messages.size(); }

const orlenta_schema_message* orlenta_schema_message_at(const orlenta_schema* schema, size_t index) {
    return index < schema->messages.size() ? &schema->messages[index] : nullptr;
}
