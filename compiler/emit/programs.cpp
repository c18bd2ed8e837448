// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/programs.hpp"

#include <orlenta/value.h>

#include "compiler/emit/header.hpp"
#include "compiler/emit/initializer.hpp"
#include "compiler/emit/put.hpp"
#include "compiler/emit/tables.hpp"
#include "compiler/programs/coded_types.hpp"
#include "entry/index.hpp"

namespace orlenta::program {

static const char* type_word(op_kind) { return "op_kind"; }

}  // namespace orlenta::program

namespace orlentac {

namespace {

using Text = std::string;
using orlenta::program::growing;

Text codec_name(const Table& table) { return "orlenta_codec_" + table.symbol; }

// Types in place are the index's alone: their names are no promise.
bool has_public_codec(const Table& table) { return table.table_class != Table::Class::anonymous; }

Text file_head(const Layout& layout, const char* what, const char* include) {
    return fmt::format("// {} of the region {}. Made by orlentac; not to be edited.\n#include \"{}\"\n", what,
                       layout.region, include);
}

void put_codec_declaration(Text& out, const Table& table) {
    put(out, "{}extern const orlenta_codec {};\n", has_public_codec(table) ? "ORLENTA_API " : "",
        codec_name(table));
}

// ---- arrays -----------------------------------------------------------------------------------------------

struct ProgramWriter {
    const CodedRegion& region;
    std::unordered_set<const Table*> own;  // are referred to by the names of own_name()
    Text out = {};
};

Text table_name(const ProgramWriter& writer, const asn1_type_desc* type) {
    const Table* table = writer.region.tables.at(type);
    return writer.own.contains(table) ? own_name(*table) : "asn1_type_" + table->symbol;
}

template <typename T>
void put_item(ProgramWriter& writer, const T& item) {
    put_initializer(writer.out, item);
}
void put_item(ProgramWriter& writer, const asn1_type_desc* type) { writer.out += table_name(writer, type); }

template <typename T>
void put_array(ProgramWriter& writer, const char* type, const char* name, const growing<T>& array) {
    if (array.count == 0) return put(writer.out, "constexpr {} const* {} = nullptr;\n", type, name);
    put(writer.out, "constinit {} const {}[{}] = {{", type, name, array.count);
    constexpr size_t kLine = 110;
    size_t line = writer.out.size() - kLine;
    for (uint64_t i = 0; i < array.count; i++) {
        if (writer.out.size() - line >= kLine) {
            writer.out += "\n    ";
            line = writer.out.size();
        }
        put_item(writer, array.items[i]);
        writer.out += ',';
    }
    writer.out += "\n};\n";
}

template <typename T>
void put_rule_array(ProgramWriter& writer, const char* type, const char* name, const growing<T>& array) {
    put_array(writer, type, name, array);
}
// types[] are there for all rules.
void put_rule_array(ProgramWriter&, const char*, const char*, const growing<const asn1_type_desc*>&) {}

bool is_empty(const BuiltProgram& built) {
    for (const std::optional<uint32_t>& root : built.roots)
        if (root) return false;
    return true;
}

// The arrays of each rule that there is a program for, and the program; types[] are the last rule's for all.
void put_programs(ProgramWriter& writer, const BuiltPrograms& built) {
    put_array(writer, "const asn1_type_desc*", "types", built.back().arrays.types);
    for (size_t rule = 0; rule < built.size(); rule++) {
        if (is_empty(built[rule])) continue;
        put(writer.out, "namespace rule_{} {{\n", rule);
        Text arrays;
#define ORLENTA_ARRAY(type, name)                  \
    arrays += arrays.empty() ? #name : ", " #name; \
    put_rule_array(writer, #type, #name, built[rule].arrays.name);
        ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
        put(writer.out, "constinit const program code = {{{}}};\n}}\n", arrays);
    }
}

// `scope` is where the programs are.
void put_codec(ProgramWriter& writer, const CodedType& type, const BuiltPrograms& built, size_t index,
               const Text& scope) {
    const Table& table = *type.table;
    Text programs;
    for (size_t rule = 0; rule < built.size(); rule++) {
        std::optional<uint32_t> root = built[rule].roots[index];
        Text name = fmt::format("{}_{}", table.symbol, rule);
        if (root)
            put(writer.out,
                "static constinit const orlenta::program::rule_program {} = {{{}, &{}rule_{}::code}};\n",
                name, *root, scope, rule);
        programs += (programs.empty() ? "" : ", ") + (root ? "&" + name : "nullptr");
    }
    put(writer.out, "constinit const orlenta_codec {} = {{{}, 1, asn1_type_{}, {}, {{{}}}}};\n",
        codec_name(table), orlenta::program::kFormat, table.symbol,
        asn1_get_size(writer.region.addresses.at(&table)), programs);
}

void put_declarations(ProgramWriter& writer, const std::unordered_set<const Table*>& tables,
                      const std::vector<CodedType>& types) {
    std::unordered_set<const Table*> coded;
    for (const CodedType& type : types) coded.insert(type.table);
    auto declare = [&](const char* how, const Text& name, const Table& table) {
        put(writer.out, "{} extern const asn1_type_desc {}[{}];\n", how, name, table.words.size());
    };
    writer.out += "\nextern \"C\" {\n";
    for (const Table* table : writer.region.layout.tables) {
        bool is_own = writer.own.contains(table);
        if (coded.contains(table) || (tables.contains(table) && !is_own))
            declare("ORLENTA_API", "asn1_type_" + table->symbol, *table);
        if (is_own) declare("[[gnu::visibility(\"hidden\")]]", own_name(*table), *table);
    }
    for (const CodedType& type : types) put_codec_declaration(writer.out, *type.table);
    writer.out += "}\n\n";
}

void add_tables(std::unordered_set<const Table*>& tables, const CodedRegion& region,
                const BuiltPrograms& built) {
    const growing<const asn1_type_desc*>& types = built.back().arrays.types;
    for (uint64_t i = 0; i < types.count; i++) tables.insert(region.tables.at(types.items[i]));
}

// A program for each of the types.
Text single_programs(const CodedRegion& region, const std::vector<CodedType>& types) {
    ProgramWriter writer = {region, {}};
    std::unordered_set<const Table*> tables;
    for (const CodedType& type : types) {
        BuiltPrograms built;
        build_programs(built, region, {type});
        add_tables(tables, region, built);
        const Text& symbol = type.table->symbol;
        put(writer.out, "namespace {{\nnamespace {} {{\nusing namespace orlenta::program;\n", symbol);
        put_programs(writer, built);
        writer.out += "}\n}\n";
        put_codec(writer, type, built, 0, symbol + "::");
    }
    ProgramWriter head = {region, {}, file_head(region.layout, "Programs", "program/codec.hpp")};
    put_declarations(head, tables, types);
    return head.out + writer.out;
}

}  // namespace

std::unordered_set<const Table*> own_tables(const CodedRegion& region) {
    BuiltPrograms built;
    build_programs(built, region, region.types);
    std::unordered_set<const Table*> tables;
    add_tables(tables, region, built);
    // What an open type is told to be is handed out.
    for (const Table* table : row_types(region.layout)) tables.erase(table);
    return tables;
}

std::string emit_common_program(const CodedRegion& region) {
    BuiltPrograms built;
    build_programs(built, region, region.types);
    ProgramWriter writer = {region, own_tables(region),
                            file_head(region.layout, "The programs", "program/codec.hpp")};
    std::unordered_set<const Table*> tables;
    add_tables(tables, region, built);
    put_declarations(writer, tables, region.types);
    writer.out += "namespace {\nusing namespace orlenta::program;\n";
    put_programs(writer, built);
    writer.out += "}\n";
    for (size_t i = 0; i < region.types.size(); i++) put_codec(writer, region.types[i], built, i, "");
    return writer.out;
}

std::vector<std::string> emit_single_programs(const CodedRegion& region, size_t parts) {
    std::vector<std::string> files;
    auto at = [&](size_t part) {
        return region.types.begin() + static_cast<ptrdiff_t>(region.types.size() * part / parts);
    };
    for (size_t part = 0; part < parts; part++)
        files.push_back(single_programs(region, {at(part), at(part + 1)}));
    return files;
}

// ---- the index --------------------------------------------------------------------------------------------

static std::vector<const Table*> hash_table(const CodedRegion& region) {
    size_t size = 2;
    while (size < 2 * region.types.size()) size *= 2;
    std::vector<const Table*> slots(size);
    for (const CodedType& type : region.types) {
        const Table* table = type.table;
        size_t slot = orlenta::entry::hash_of(region.addresses.at(table)) % size;
        while (slots[slot]) slot = (slot + 1) % size;
        slots[slot] = table;
    }
    return slots;
}

std::string emit_index(const CodedRegion& region, bool for_all_programs) {
    Text out = file_head(region.layout, "The index", "entry/index.hpp") + "\nextern \"C\" {\n";
    for (const CodedType& type : region.types) put_codec_declaration(out, *type.table);
    Text name = "orlenta_index_" + region.layout.region;
    put(out, "[[gnu::visibility(\"hidden\")]] extern const orlenta::entry::program_index {};\n}}\n\n", name);
    std::vector<const Table*> slots = hash_table(region);
    put(out, "static constinit const orlenta_codec* const slots[{}] = {{\n", slots.size());
    for (const Table* table : slots) put(out, "    {},\n", table ? "&" + codec_name(*table) : "nullptr");
    put(out, "}};\n\nconstinit const orlenta::entry::program_index {} = {{{}, {}, slots}};\n", name,
        orlenta::program::kFormat, slots.size() - 1);
    if (for_all_programs) put(out, "\nORLENTA_LINK_INDEX({})\n", name);
    return out;
}

// ---- the header -------------------------------------------------------------------------------------------

std::string codecs_header_name(const std::string& header) { return header_beside(header, "_codecs"); }

std::string emit_codecs_header(const CodedRegion& region, const std::string& header) {
    Text out = fmt::format(
        "/* Codecs of the region {0} that are compiled in. Made by orlentac; not to be edited.\n"
        " *\n"
        " * Each is for values of the descriptor of its name, asn1_type_{0}_... in <{1}>, and stays for "
        "ever:\n"
        " * orlenta_codec_free() is not for them. <orlenta/codec.h> has the functions that take one.\n"
        " */\n",
        region.layout.region, header);
    Text guard = header_guard(codecs_header_name(header));
    put(out,
        "#ifndef {0}\n#define {0}\n\n#include <orlenta/codec.h>\n\n#ifdef __cplusplus\nextern \"C\" "
        "{{\n#endif\n\n",
        guard);
    for (const CodedType& type : region.types)
        if (has_public_codec(*type.table)) put_codec_declaration(out, *type.table);
    out += "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
    return out;
}

}  // namespace orlentac
