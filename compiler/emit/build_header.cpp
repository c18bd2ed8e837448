// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/build_header.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <iterator>
#include <unordered_set>
#include <utility>

#include "compiler/emit/c_types.hpp"
#include "compiler/emit/header.hpp"
#include "compiler/emit/open_types.hpp"
#include "compiler/emit/put.hpp"
#include "compiler/layout/names.hpp"
#include "compiler/model/references.hpp"

namespace orlentac {

namespace {

struct Writer {
    const Layout& layout;
    std::string out;
    std::unordered_set<std::string> names;      // of functions
    std::unordered_set<const Table*> declared;  // tables in place
};

// orlenta_CN_Some_Type_verb_component, which no other function has.
std::string function_name(Writer& writer, const Table& table, const char* verb,
                          const std::string& part = {}) {
    std::string name = "orlenta_" + table.symbol + "_" + verb;
    if (!part.empty()) name += "_" + c_name(part);
    while (!writer.names.insert(name).second) name += '_';
    return name;
}

// The header for the records tells nothing of tables in place.
void declare_in_place(Writer& writer, const Table& table) {
    if (table.table_class == Table::Class::anonymous && writer.declared.insert(&table).second)
        put(writer, "ORLENTA_API extern const asn1_type_desc asn1_type_{}[];\n", table.symbol);
}

// ---- components -------------------------------------------------------------------------------------------

// What a setter does before it ends: the presence word, if there is one.
std::string presence_statement(const MemberNames& names) {
    return names.presence.empty() ? "" : "record->" + names.presence + " = 1;\n    ";
}

void put_string_setter(Writer& writer, const Table& table, const Part& part, const MemberNames& names) {
    const Table& described = unwrapped(*part.table);
    std::string name = function_name(writer, table, "set", part.name);
    std::string record = record_name(table);
    if (described.kind == ASN1_KIND_BIT_STRING) {
        put(writer,
            "static inline int {}({}* record, const void* bytes, uint64_t bits) {{\n"
            "    if (orlenta_bit_string_set(&record->{}, bytes, bits) != 0) return -1;\n"
            "    {}return 0;\n}}\n",
            name, record, names.value, presence_statement(names));
        const Type& type = *resolved(described.type);
        put(writer,
            "static inline int {}({}* record, uint64_t bit, int value) {{\n"
            "    if (orlenta_bit_string_set_bit(&record->{}, bit, value, {}) != 0) return -1;\n"
            "    {}return 0;\n}}\n",
            function_name(writer, table, "set_bit", part.name), record, names.value,
            type.bounds.lower ? type.bounds.lower->str() : "0", presence_statement(names));
        return;
    }
    put(writer,
        "static inline int {}({}* record, const void* data, uint64_t length) {{\n"
        "    if (orlenta_string_set(&record->{}, data, length, {}) != 0) return -1;\n"
        "    {}return 0;\n}}\n",
        name, record, names.value, code_unit_size(described), presence_statement(names));
}

void put_word_setter(Writer& writer, const Table& table, const Part& part, const MemberNames& names,
                     const std::string& type, const char* conversion) {
    put(writer, "static inline void {}({}* record, {} value) {{\n    record->{} = {}value;\n",
        function_name(writer, table, "set", part.name), record_name(table), type, names.value, conversion);
    if (!names.presence.empty()) put(writer, "    record->{} = 1;\n", names.presence);
    put(writer, "}}\n");
}

// A record within a record: made present, and handed out to be filled.
void put_part_opener(Writer& writer, const Table& table, const Part& part, const MemberNames& names) {
    put(writer, "static inline {}* {}({}* record) {{\n    record->{} = 1;\n    return &record->{};\n}}\n",
        value_type(*part.table), function_name(writer, table, "set", part.name), record_name(table),
        names.presence, names.value);
}

// A record behind a pointer: made if it is not there yet, and handed out to be filled.
void put_pointer_opener(Writer& writer, const Table& table, const Part& part, const MemberNames& names) {
    const Table& inner = *part.table->parts[0].table;
    declare_in_place(writer, inner);
    put(writer,
        "static inline {0}* {1}({2}* record) {{\n"
        "    if (record->{3} == NULL) record->{3} = ({0}*)asn1_mallocz_value(asn1_type_{4});\n",
        value_type(inner), function_name(writer, table, "set", part.name), record_name(table), names.value,
        inner.symbol);
    if (!names.presence.empty())
        put(writer, "    if (record->{} != NULL) record->{} = 1;\n", names.value, names.presence);
    put(writer, "    return record->{};\n}}\n", names.value);
}

// Nothing for what has no use for it: a word or a record that is always there is set as any member.
void put_component(Writer& writer, const Table& table, const Part& part, const MemberNames& names) {
    bool optional = !names.presence.empty();
    if (names.value.empty()) {
        if (optional)
            put(writer, "static inline void {}({}* record) {{ record->{} = 1; }}\n",
                function_name(writer, table, "set", part.name), record_name(table), names.presence);
        return;
    }
    if (is_indirect(*part.table)) return put_pointer_opener(writer, table, part, names);
    const Table& described = behind_tags(*part.table);
    switch (described.kind) {
        case ASN1_KIND_ENUMERATED:
            return put_word_setter(writer, table, part, names, "enum " + index_enum_name(described),
                                   "(uint32_t)");
        case ASN1_KIND_BOOLEAN:
        case ASN1_KIND_REAL:
            if (optional) put_word_setter(writer, table, part, names, simple_type(described), "");
            return;
        case ASN1_KIND_INTEGER:
            if (!optional) return;
            if ((word0(described) & ASN1_WORD0_BIG) != 0) return put_part_opener(writer, table, part, names);
            return put_word_setter(writer, table, part, names, value_type(*part.table), "");
        case ASN1_KIND_OCTET_STRING:
        case ASN1_KIND_BIT_STRING:
        case ASN1_KIND_CHAR_STRING: return put_string_setter(writer, table, part, names);
        default:
            if (optional) put_part_opener(writer, table, part, names);
            return;
    }
}

// ---- open types -------------------------------------------------------------------------------------------

void put_keyed_type(Writer& writer, const Table& table, const KeyedComponent& open, const KeyedType& type) {
    std::vector<MemberNames> names = member_names(table);
    const std::string& value = names[open.component].value;
    const std::string& key = names[open.key_component].value;
    const Part& part = table.parts[open.component];
    std::string record = record_name(table), type_name = value_type(*type.table);
    std::string key_type = value_type(*table.parts[open.key_component].table);
    if (is_indirect(*type.table)) return;
    declare_in_place(writer, *type.table);
    put(writer,
        "static inline {0}* {1}({2}* record) {{\n"
        "    {0}* value = ({0}*)orlenta_open_set(&record->{3}, asn1_type_{4});\n"
        "    if (value != NULL) {5}record->{6} = ({7}){8};{9}\n"
        "    return value;\n}}\n",
        type_name, function_name(writer, table, "set", part.name + "_" + type.name), record, value,
        type.table->symbol, names[open.component].presence.empty() ? "" : "{ ", key, key_type, type.key,
        names[open.component].presence.empty() ? ""
                                               : " record->" + names[open.component].presence + " = 1; }");
    put(writer,
        "static inline {0}* {1}(const {2}* record) {{\n"
        "    if (record->{3} != ({4}){5}) return NULL;\n"
        "    return ({0}*)orlenta_open_get(&record->{6}, asn1_type_{7});\n}}\n",
        type_name, function_name(writer, table, "get", part.name + "_" + type.name), record, key, key_type,
        type.key, value, type.table->symbol);
}

// ---- records ----------------------------------------------------------------------------------------------

void put_sequence(Writer& writer, const Table& table) {
    std::vector<MemberNames> names = member_names(table);
    std::vector<KeyedComponent> keyed = keyed_components(writer.layout.region, table);
    for (size_t i = 0; i < names.size(); i++) put_component(writer, table, table.parts[i], names[i]);
    for (const KeyedComponent& open : keyed)
        for (const KeyedType& type : open.types) put_keyed_type(writer, table, open, type);
}

void put_choice(Writer& writer, const Table& table) {
    std::vector<MemberNames> names = member_names(table);
    std::string record = record_name(table);
    // Stores, not memset: of a record that may be null, as `add` may return it, compilers warn with that.
    std::string clear =
        owns_nothing(table)
            ? fmt::format("{} cleared;\n    memset(&cleared, 0, sizeof cleared);\n    *record = cleared",
                          record)
            : fmt::format("orlenta_choice_clear(record, asn1_type_{}, sizeof *record)", table.symbol);
    for (size_t i = 0; i < names.size(); i++) {
        std::string name = function_name(writer, table, "set", table.parts[i].name);
        bool has_value = !names[i].value.empty();
        if (is_indirect(*table.parts[i].table)) {
            const Table& inner = *table.parts[i].table->parts[0].table;
            declare_in_place(writer, inner);
            put(writer,
                "static inline {0}* {1}({2}* record) {{\n"
                "    {0}* value = ({0}*)asn1_mallocz_value(asn1_type_{3});\n"
                "    if (value == NULL) return NULL;\n"
                "    {4};\n    record->choice = {5};\n    return record->u.{6} = value;\n}}\n",
                value_type(inner), name, record, inner.symbol, clear, i, names[i].value);
            continue;
        }
        put(writer, "static inline {}{} {}({}* record) {{\n    {};\n    record->choice = {};\n",
            has_value ? value_type(*table.parts[i].table) : "void", has_value ? "*" : "", name, record, clear,
            i);
        if (has_value) put(writer, "    return &record->u.{};\n", names[i].value);
        put(writer, "}}\n");
    }
}

void put_list(Writer& writer, const Table& table) {
    std::string record = record_name(table), element = value_type(*table.parts[0].table);
    put(writer,
        "static inline {0}* {1}({2}* list) {{\n"
        "    void* block = orlenta_block_add(list->data, list->count, sizeof *list->data);\n"
        "    if (block == NULL) return NULL;\n"
        "    list->data = ({0}*)block;\n"
        "    return list->data + list->count++;\n}}\n",
        element, function_name(writer, table, "add"), record);
    put(writer,
        "static inline {0}* {1}({2}* list, uint64_t count) {{\n"
        "    void* block;\n"
        "    if (count <= list->count) return list->data;\n"
        "    block = orlenta_block_grow(list->data, list->count, count, sizeof *list->data);\n"
        "    if (block != NULL) list->data = ({0}*)block;\n"
        "    return ({0}*)block;\n}}\n",
        element, function_name(writer, table, "reserve"), record);
}

void put_manual(Writer& writer, const std::string& header) {
    put(writer,
        "/* Functions that build values of the region {0}, inline, over the records of <{1}>. Made by "
        "orlentac; not to "
        "be\n"
        " * edited.\n"
        " *\n"
        " *   orlenta_{0}_Some_Type_set_component(record, value)  an enumerator, or what may be absent: sets "
        "presence "
        "too\n"
        " *   orlenta_{0}_Some_Type_set_component(record, data, length)  a copy of a string; bits for a BIT "
        "STRING\n"
        " *   orlenta_{0}_Some_Type_set_bit_component(record, bit, value)  one bit\n"
        " *   orlenta_{0}_Some_Type_set_component(record)  a record within: made present, and returned to be "
        "filled\n"
        " *                                             (of a type that contains itself: allocated, if need "
        "be)\n"
        " *   orlenta_{0}_Some_Choice_set_alternative(record)  clears what is there, chooses, returns the "
        "alternative\n"
        " *   orlenta_{0}_Some_Type_set_component_Message(record)  an open type and its key: returns a new "
        "value\n"
        " *   orlenta_{0}_Some_Type_get_component_Message(record)  the value if key and type are these, else "
        "null\n"
        " *   orlenta_{0}_Some_List_add(list)  one element more, zero-filled, at amortised cost\n"
        " *   orlenta_{0}_Some_List_reserve(list, count)  the block with room for `count` in all; those "
        "behind the "
        "last\n"
        " *                                             are zero-filled, and count once list->count says so\n"
        " *\n"
        " * Records begin with zero bytes. An int result is 0, or -1 without memory; a pointer is null then, "
        "and the "
        "record\n"
        " * as it was. */\n",
        writer.layout.region, header);
}

}  // namespace

std::string build_header_name(const std::string& header) { return header_beside(header, "_build"); }

std::string emit_build_header(const Layout& layout, const std::string& header) {
    Writer writer = {layout, {}, {}, {}};
    put_manual(writer, header);
    put(writer,
        "#ifndef {0}\n#define {0}\n\n#include <orlenta/build.h>\n#include <{1}>\n\n"
        "#ifdef __cplusplus\nextern \"C\" {{\n#endif\n\n",
        header_guard(build_header_name(header)), header);
    for (const Table* table : layout.tables) {
        if (!has_record(*table)) continue;
        switch (table->kind) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: put_sequence(writer, *table); break;
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF: put_list(writer, *table); break;
            case ASN1_KIND_CHOICE: put_choice(writer, *table); break;
            default: break;
        }
    }
    put(writer, "\n#ifdef __cplusplus\n}}\n#endif\n\n#endif\n");
    return std::move(writer.out);
}

}  // namespace orlentac
