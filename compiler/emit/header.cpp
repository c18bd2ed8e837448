// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/header.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "compiler/emit/build_header.hpp"
#include "compiler/emit/c_types.hpp"
#include "compiler/emit/open_types.hpp"
#include "compiler/emit/put.hpp"
#include "compiler/emit/typed_header.hpp"
#include "compiler/layout/names.hpp"
#include "compiler/layout/records.hpp"

namespace orlentac {

namespace {

struct Writer {
    const Layout& layout;
    std::string out;
    std::unordered_set<std::string> names;     // of records and constants
    std::unordered_set<const Table*> defined;  // structs
};

void put_section(Writer& writer, const std::string& title) {
    std::string line = "/* ---- " + title + " ";
    const char* gap = writer.out.ends_with("\n\n") ? "" : "\n";
    put(writer, "{}{:-<109}*/\n\n", gap, line);
}

// ---- constants --------------------------------------------------------------------------------------------

// A name that no record and no other constant has.
std::string constant_name(Writer& writer, const std::string& owner, const std::string& schema_name) {
    std::string name = owner + "_" + c_name(schema_name);
    while (!writer.names.insert(name).second) name += '_';
    return name;
}

// Items, alternatives: a name for each index. The type has one too, so that compilers watch a switch over it.
template <typename Named>
void put_indices(Writer& writer, const Table& table, const std::vector<Named>& list) {
    if (list.empty()) return;
    put(writer, "enum {} {{\n", index_enum_name(table));
    for (size_t i = 0; i < list.size(); i++)
        put(writer, "    {} = {},\n", constant_name(writer, record_name(table), list[i].name), i);
    put(writer, "}};\n");
}

// Named numbers and named bits. An enumeration constant of C has to fit an int; what does not is a macro, and what
// does not fit 64 bits has no use for C.
void put_named_numbers(Writer& writer, const std::string& owner, const std::vector<NamedNumber>& list) {
    auto fits_int = [](const NamedNumber& number) {
        return number.value >= INT32_MIN && number.value <= INT32_MAX;
    };
    if (std::any_of(list.begin(), list.end(), fits_int)) {
        put(writer, "enum {{\n");
        for (const NamedNumber& number : list) {
            if (!fits_int(number)) continue;
            std::string name = constant_name(writer, owner, number.name);
            if (number.value == INT32_MIN)
                put(writer, "    {} = -2147483647 - 1,\n", name);
            else
                put(writer, "    {} = {},\n", name, number.value.str());
        }
        put(writer, "}};\n");
    }
    for (const NamedNumber& number : list) {
        if (fits_int(number) || number.value <= INT64_MIN || number.value > UINT64_MAX) continue;
        const char* macro = number.value <= 0            ? "INT64_C"
                            : number.value <= UINT32_MAX ? "UINT32_C"
                                                         : "UINT64_C";
        put(writer, "#define {} {}({})\n", constant_name(writer, owner, number.name), macro,
            number.value.str());
    }
}

// What selects the actual type of an open type.
void put_keys(Writer& writer, const Table& table) {
    for (const KeyedComponent& open : keyed_components(writer.layout.region, table)) {
        std::string owner = key_owner(table, table.parts[open.key_component]);
        put(writer, "enum {{\n");
        for (const KeyedType& type : open.types)
            put(writer, "    {} = {},\n", constant_name(writer, owner, type.name), type.key);
        put(writer, "}};\n");
    }
}

// ---- records ----------------------------------------------------------------------------------------------

// What a schema says of a type comes before what the type is.
void put_comment(Writer& writer, const std::string& about, const std::string& description) {
    std::string lines = comment_lines(about, " * ") + (description.empty() ? "" : " * " + description + "\n");
    if (lines.empty()) return;
    lines[0] = '/';
    lines.pop_back();
    put(writer, "{} */\n", lines);
}

void put_simple(Writer& writer, const Table& table) {
    std::string name = record_name(table);
    put_comment(writer, table.about, description(table));
    put(writer, "typedef {} {};\n", simple_type(table), name);
    if (table.type->kind == Kind::enumerated) put_indices(writer, table, table.type->items);
    // A type that narrows another one shares that one's names.
    if (!table.type->from) put_named_numbers(writer, name, table.type->named_numbers);
}

// Names that an INTEGER or BIT STRING in place gives to numbers or bits.
void put_names_in_place(Writer& writer, const Table& table) {
    for (const Part& part : table.parts) {
        if (part.type->kind == Kind::reference || part.type->from || part.type->named_numbers.empty())
            continue;
        std::string owner = record_name(table);
        if (!part.name.empty()) owner += "_" + c_name(part.name);
        put_named_numbers(writer, owner, part.type->named_numbers);
    }
}

void put_member(Writer& writer, const Part& part, const std::string& name, const char* indent) {
    const Table& described = unwrapped(*part.table);
    std::string type = value_type(*part.table);
    if (type.ends_with('*'))
        put(writer, "{}ORLENTA_POINTER({}, {});", indent, type, name);
    else
        put(writer, "{}{}{} {};", indent, described.kind == ASN1_KIND_REAL ? "ORLENTA_ALIGNED_8 " : "", type,
            name);
    if (!has_record(described)) put(writer, " /* {} */", description(described));
    put(writer, "\n");
}

// A default that no table can hold is left to the program.
std::string default_comment(const Component& component) {
    if (component.presence != Presence::defaulted) return "";
    std::string text = fit_for_comment(component.default_text);
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return fmt::format(" /* absent stands for the default, {} */", text);
}

void put_sequence(Writer& writer, const Table& table) {
    std::vector<MemberNames> names = member_names(table);
    for (size_t i = 0; i < names.size(); i++) {
        if (!names[i].presence.empty()) {
            const Component& component = resolved(table.type)->components[i];
            put(writer, "    uint32_t {};{}\n", names[i].presence, default_comment(component));
        }
        if (!names[i].value.empty()) put_member(writer, table.parts[i], names[i].value, "    ");
    }
    if (!has_payload(table)) put(writer, "    uint8_t empty;\n");
}

void put_choice(Writer& writer, const Table& table) {
    std::vector<MemberNames> names = member_names(table);
    put(writer, "    uint32_t choice;\n");
    if (!has_payload(table)) return;
    put(writer, "    union {{\n");
    for (size_t i = 0; i < names.size(); i++)
        if (!names[i].value.empty()) put_member(writer, table.parts[i], names[i].value, "        ");
    put(writer, "    }} u;\n");
}

void put_struct(Writer& writer, const Table& table);

// A struct must be defined before one that has it as a member. Elements of lists are apart, as are pointers.
void put_structs_inside(Writer& writer, const Table& table) {
    if (table.kind == ASN1_KIND_SEQUENCE_OF || table.kind == ASN1_KIND_SET_OF) return;
    for (const Part& part : table.parts) {
        if (value_type(*part.table).ends_with('*')) continue;
        const Table* inside = part.table;
        while (inside->kind == ASN1_KIND_TAGGED) inside = inside->parts[0].table;
        if (is_struct(*inside)) put_struct(writer, *inside);
    }
}

void put_struct(Writer& writer, const Table& table) {
    if (!writer.defined.insert(&table).second) return;
    put_structs_inside(writer, table);
    std::string name = record_name(table);
    put_comment(writer, table.about, description(table));
    if (table.kind == ASN1_KIND_CHOICE) put_indices(writer, table, table.type->alternatives);
    put_names_in_place(writer, table);
    put_keys(writer, table);
    put(writer, "struct {} {{\n", name);
    switch (table.kind) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: put_sequence(writer, table); break;
        case ASN1_KIND_CHOICE: put_choice(writer, table); break;
        default:
            put(writer, "    ORLENTA_POINTER({}*, data);\n    uint64_t count;\n",
                value_type(*table.parts[0].table));
            break;
    }
    put(writer, "}};\n\n");
}

// Names that stand for others come behind those.
void put_tagged_name(Writer& writer, const Table& table) {
    if (!writer.defined.insert(&table).second) return;
    const Table& inner = unwrapped(*table.parts[0].table);
    if (inner.kind == ASN1_KIND_TAGGED) put_tagged_name(writer, inner);
    put_comment(writer, table.about, "");
    put(writer, "typedef {} {};\n", value_type(*table.parts[0].table), record_name(table));
}

void put_records(Writer& writer) {
    const std::vector<const Table*>& tables = writer.layout.tables;
    put_section(writer, "simple types");
    for (const Table* table : tables)
        if (has_record(*table) && !is_struct(*table) && table->kind != ASN1_KIND_TAGGED)
            put_simple(writer, *table);

    put_section(writer, "names of records");
    for (const Table* table : tables)
        if (has_record(*table) && is_struct(*table))
            put(writer, "typedef struct {0} {0};\n", record_name(*table));
    for (const Table* table : tables)
        if (has_record(*table) && table->kind == ASN1_KIND_TAGGED) put_tagged_name(writer, *table);

    for (const Alias& alias : writer.layout.aliases) {
        put_comment(writer, alias.about, "");
        put(writer, "typedef {} asn1_{}_{};\n", record_name(*alias.table), writer.layout.region, alias.name);
    }

    put_section(writer, "records");
    for (const Table* table : tables)
        if (has_record(*table) && is_struct(*table)) put_struct(writer, *table);
}

// ---- descriptors ------------------------------------------------------------------------------------------

void put_descriptors(Writer& writer, const char* title, Table::Class table_class) {
    const std::vector<const Table*>& tables = writer.layout.tables;
    auto belongs = [&](const Table* table) { return table->table_class == table_class; };
    if (std::none_of(tables.begin(), tables.end(), belongs)) return;
    put_section(writer, title);
    for (const Table* table : tables)
        if (table->table_class == table_class)
            put(writer, "ORLENTA_API extern const asn1_type_desc asn1_type_{}[];\n", table->symbol);
}

// Types that have a name in the schema, but the table of another one.
void put_alias_descriptors(Writer& writer) {
    if (writer.layout.aliases.empty()) return;
    put_section(writer, "descriptors that other names stand for");
    for (const Alias& alias : writer.layout.aliases)
        put(writer, "#define asn1_type_{}_{} asn1_type_{}\n", writer.layout.region, alias.name,
            alias.table->symbol);
}

void put_catalogue(Writer& writer) {
    put_section(writer, "types by name, for <orlenta/catalogue.h>");
    put(writer, "ORLENTA_API const struct orlenta_catalogue* orlenta_catalogue_{}(void);\n",
        writer.layout.region);
}

// ---- the manual at the top --------------------------------------------------------------------------------

void count_reached(std::unordered_set<const Table*>& reached, const Table& table) {
    if (!reached.insert(&table).second) return;
    for (const Part& part : table.parts) count_reached(reached, *part.table);
}

// The root with most types beneath it makes the best example; but a frame, that selects among messages by a key, is what
// all the others come in.
const Table* example_root(const Layout& layout) {
    const Table* best = nullptr;
    std::pair<size_t, size_t> most = {0, 0};
    for (const Table* root : layout.roots) {
        if (root->kind != ASN1_KIND_SEQUENCE && root->kind != ASN1_KIND_CHOICE) continue;
        std::unordered_set<const Table*> reached;
        count_reached(reached, *root);
        std::vector<KeyedComponent> open = keyed_components(layout.region, *root);
        std::pair<size_t, size_t> rank = {open.empty() ? 0 : open[0].types.size(), reached.size()};
        if (rank > most) best = root;
        most = std::max(most, rank);
    }
    return best;
}

std::string example_use(const Layout& layout, const Table& root) {
    std::vector<MemberNames> names = member_names(root);
    if (root.kind == ASN1_KIND_CHOICE)
        return fmt::format("if (message->choice == {}_{}) use message->u.{}", record_name(root),
                           c_name(root.parts[0].name), names[0].value);
    std::vector<KeyedComponent> open = keyed_components(layout.region, root);
    if (open.empty()) return fmt::format("use message->{}", names[0].value);
    return fmt::format("if (message->{} == {}_{}) use ({}*)message->{}.data",
                       names[open[0].key_component].value, key_owner(root, root.parts[open[0].key_component]),
                       open[0].types[0].name, value_type(*open[0].types[0].table),
                       names[open[0].component].value);
}

void put_example(Writer& writer, const Table& root) {
    std::string name = record_name(root), use = example_use(writer.layout, root);
    put(writer,
        " *\n"
        " * A message from its UPER encoding, with <orlenta/per.h> and <orlenta/value.h>:\n"
        " *\n"
        " *     void* value;\n"
        " *     asn1_error err;\n"
        " *     if (asn1_uper_decode(&value, asn1_type_{0}, data, size, &err) < 0) return report(&err);\n"
        " *     {1}* message = ({1}*)value;\n"
        " *     ... {2} ...\n"
        " *     asn1_free_value(asn1_type_{0}, value);\n",
        root.symbol, name, use);
}

constexpr const char* kManual =
    R"(/* The types of the region {0}: value records and descriptors. Made by orlentac; not to be edited.
 *
 * A type Some-Type of the schema has the record asn1_{0}_Some_Type and the descriptor
 * asn1_type_{0}_Some_Type; structured types without a name are numbered behind the name of the type around
 * them. Members have the names of their components, with underscores for hyphens, and one more underscore at
 * the end if the name would be a keyword or the like. Directly before a component that may be absent stands
 * its presence word, has_..., 0 or 1. A CHOICE has the index of its alternative in choice and the value in u;
 * an ENUMERATED is the index of its item; both have constants, asn1_{0}_Some_Type_itemName, whose type is
 * enum orlenta_{0}_Some_Type, so that compilers watch switch ((enum orlenta_{0}_Some_Type)member). A NULL has no
 * member. A record of zero bytes is a valid start, and asn1_mallocz_value() gives one. Descriptors of what has
 * no name at all are declared in <{1}>.
 *
 * <{2}> has functions that build values and set presence with them, <{3}> these types for C++.
)";

void put_manual(Writer& writer, const std::string& header) {
    fmt::format_to(std::back_inserter(writer.out), fmt::runtime(kManual), writer.layout.region,
                   local_header_name(header), build_header_name(header), typed_header_name(header));
    if (const Table* root = example_root(writer.layout)) put_example(writer, *root);
    put(writer, " */\n");
}

}  // namespace

std::string header_guard(const std::string& header) {
    std::string guard;
    for (char c : header)
        guard += std::isalnum(static_cast<unsigned char>(c)) ? static_cast<char>(std::toupper(c)) : '_';
    return guard;
}

std::string emit_header(const Layout& layout, const std::string& header) {
    Writer writer = {layout, {}, {}, {}};
    for (const Table* table : layout.tables)
        if (has_record(*table)) writer.names.insert(record_name(*table));
    for (const Alias& alias : layout.aliases) writer.names.insert("asn1_" + layout.region + "_" + alias.name);
    constexpr size_t kTextOfTable = 500;  // more than it is, as a rule: what is not used costs no memory
    writer.out.reserve(kTextOfTable * layout.tables.size());
    std::string guard = header_guard(header);
    put_manual(writer, header);
    put(writer,
        "#ifndef {0}\n#define {0}\n\n"
        "#include <orlenta/integer.h>\n#include <orlenta/type.h>\n\n"
        "#ifdef __cplusplus\nextern \"C\" {{\n#endif\n",
        guard);
    put_records(writer);
    put_descriptors(writer, "descriptors of named types", Table::Class::named);
    put_alias_descriptors(writer);
    put_descriptors(writer, "descriptors of nested types", Table::Class::nested);
    put_catalogue(writer);
    put(writer, "\n#ifdef __cplusplus\n}}\n#endif\n\n#endif\n");
    return std::move(writer.out);
}

std::string header_beside(const std::string& header, const char* suffix) {
    size_t stem = header.find_last_of("/.");
    if (stem == std::string::npos || header[stem] == '/') stem = header.size();
    return header.substr(0, stem) + suffix + header.substr(stem);
}

std::string local_header_name(const std::string& header) { return header_beside(header, "_local"); }

std::string emit_local_header(const Layout& layout, const std::string& header) {
    Writer writer = {layout, {}, {}, {}};
    put(writer,
        "/* Descriptors in place of the region {}: what those in <{}> are made of. Made by orlentac; not to "
        "be\n"
        " * edited. Their numbers change with the modules and with orlentac. */\n",
        layout.region, header);
    put(writer,
        "#ifndef {0}\n#define {0}\n\n"
        "#include <orlenta/type.h>\n\n"
        "#ifdef __cplusplus\nextern \"C\" {{\n#endif\n",
        header_guard(local_header_name(header)));
    put_descriptors(writer, "descriptors in place", Table::Class::anonymous);
    put(writer, "\n#ifdef __cplusplus\n}}\n#endif\n\n#endif\n");
    return std::move(writer.out);
}

}  // namespace orlentac
