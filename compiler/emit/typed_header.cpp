// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/typed_header.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "compiler/emit/c_types.hpp"
#include "compiler/emit/header.hpp"
#include "compiler/emit/open_types.hpp"
#include "compiler/emit/put.hpp"
#include "compiler/layout/names.hpp"
#include "compiler/layout/records.hpp"
#include "compiler/model/references.hpp"

namespace orlentac {

namespace {

struct Writer {
    const Layout& layout;
    std::string out;
    std::unordered_set<std::string> names;              // of types
    std::unordered_set<const Table*> defined;           // structs and names of others
    std::unordered_set<const Table*> declared;          // tables in place
    std::unordered_map<const void*, std::string> bits;  // enumerations of named bits, by BIT STRING
};

// What the namespace around has already.
const std::unordered_set<std::string> kLibraryNames = {"aper",          "bad_result_access",
                                                       "basic_choice",  "basic_optional",
                                                       "basic_text",    "ber",
                                                       "bits",          "boolean",
                                                       "byte_view",     "bytes",
                                                       "check",         "choice",
                                                       "clone",         "close_optional",
                                                       "decode",        "der",
                                                       "described",     "descriptor_of",
                                                       "detail",        "encode",
                                                       "error",         "encoding_rules",
                                                       "flat_choice",   "from_json",
                                                       "gser",          "indirect",
                                                       "integer",       "jer",
                                                       "key",           "keyed_open",
                                                       "list",          "keyed_type",
                                                       "null",          "object_identifier",
                                                       "octets",        "oer",
                                                       "open",          "optional",
                                                       "optional_null", "result",
                                                       "text",          "text16",
                                                       "text32",        "to_json",
                                                       "unexpected",    "uper",
                                                       "value",         "xer"};

std::string namespace_name(const Layout& layout) {
    std::string name = layout.region;
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return kLibraryNames.contains(name) ? name + "_" : safe_name(name);
}

std::string typed_name(const Layout& layout, const Table& table) {
    return table.symbol.substr(layout.region.size() + 1);
}

// A name beside a type's that no type has.
std::string fresh_name(Writer& writer, const std::string& owner, const char* suffix) {
    std::string name = owner + suffix;
    while (!writer.names.insert(name).second) name += '_';
    return name;
}

bool is_pointer(const Table& table) { return value_type(table).ends_with('*'); }

// ---- types of members -------------------------------------------------------------------------------------

std::string integer_type(const Table& table) {
    if ((word0(table) & ASN1_WORD0_BIG) == 0) return simple_type(table);
    const Bounds& bounds = resolved(table.type)->bounds;
    bool has_both = bounds.lower && bounds.upper;
    const char* number = has_both && *bounds.lower >= INT64_MIN && *bounds.upper <= INT64_MAX ? "int64_t"
                         : has_both && *bounds.lower >= 0 && *bounds.upper <= UINT64_MAX      ? "uint64_t"
                                                                                              : "void";
    return fmt::format("::orlenta::integer<{}>", number);
}

std::string bit_string_type(Writer& writer, const Table& table) {
    const Type& type = *resolved(table.type);
    auto named = writer.bits.find(&type);
    bool has_least = type.bounds.lower && *type.bounds.lower <= UINT32_MAX;
    return fmt::format("::orlenta::bits<{}, {}>", named == writer.bits.end() ? "size_t" : named->second,
                       has_least ? type.bounds.lower->str() : "0");
}

// What stands for a type without a record of its own.
std::string typed_simple(Writer& writer, const Table& table) {
    switch (table.kind) {
        case ASN1_KIND_INTEGER: return integer_type(table);
        case ASN1_KIND_BOOLEAN: return "::orlenta::boolean";
        case ASN1_KIND_NULL: return "::orlenta::null";
        case ASN1_KIND_REAL: return "double";
        case ASN1_KIND_BIT_STRING: return bit_string_type(writer, table);
        case ASN1_KIND_OCTET_STRING: return "::orlenta::octets";
        case ASN1_KIND_ANY: return "::orlenta::open";
        case ASN1_KIND_CHAR_STRING: {
            int unit = code_unit_size(table);
            return unit == 1 ? "::orlenta::text" : unit == 2 ? "::orlenta::text16" : "::orlenta::text32";
        }
        default: return "::orlenta::object_identifier";
    }
}

std::string typed_value(Writer& writer, const Table& table) {
    if (is_pointer(table))
        return fmt::format("::orlenta::indirect<{}>", typed_value(writer, *table.parts[0].table));
    const Table& described = unwrapped(table);
    return has_record(described) ? typed_name(writer.layout, described) : typed_simple(writer, described);
}

// A number as C++ has it; what is beyond 64 bits as its digits.
std::string literal(const Number& number) {
    if (number == INT32_MIN) return "INT32_MIN";
    if (number == INT64_MIN) return "INT64_MIN";
    if (number < INT64_MIN || number > UINT64_MAX) return '"' + number.str() + '"';
    return number.str() + (number > INT64_MAX ? "U" : "");
}

// ---- simple types -----------------------------------------------------------------------------------------

template <typename Named>
void put_enumeration(Writer& writer, const std::string& name, const std::vector<Named>& list,
                     const std::unordered_set<std::string>& taken = {}) {
    put(writer, "enum class {} : uint32_t {{\n", name);
    for (size_t i = 0; i < list.size(); i++) {
        std::string item = safe_name(list[i].name);
        put(writer, "    {}{} = {},\n", item, taken.contains(item) ? "_" : "", i);
    }
    put(writer, "}};\n");
}

// Named bits, before the type that has them.
void put_bits(Writer& writer, const std::string& owner, const Type& type) {
    if (type.kind != Kind::bit_string || type.named_numbers.empty() || writer.bits.contains(&type)) return;
    std::string name = fresh_name(writer, owner, "_bit");
    put(writer, "enum class {} : uint32_t {{\n", name);
    for (const NamedNumber& bit : type.named_numbers)
        if (bit.value <= UINT32_MAX) put(writer, "    {} = {},\n", safe_name(bit.name), bit.value.str());
    put(writer, "}};\n");
    writer.bits[&type] = name;
}

// The narrowest of the types that hold a number, from that of its component on; none if it is beyond 64 bits.
std::string number_type(const Table& table, const Number& number) {
    std::string own = simple_type(table);
    if (own == "uint32_t" ? number >= 0 && number <= UINT32_MAX
                          : own == "int32_t" && number >= INT32_MIN && number <= INT32_MAX)
        return own;
    if (number >= INT64_MIN && number <= INT64_MAX) return "int64_t";
    return number >= 0 && number <= UINT64_MAX ? "uint64_t" : "";
}

// Named numbers: values to be told by name, and all others as well.
void put_named_values(Writer& writer, const std::string& owner, const Table& table, const Type& type) {
    if (type.kind != Kind::integer || type.from || type.named_numbers.empty()) return;
    put(writer, "namespace {} {{\n", fresh_name(writer, owner, "_values"));
    for (const NamedNumber& number : type.named_numbers) {
        std::string number_is = number_type(table, number.value);
        if (!number_is.empty())
            put(writer, "inline constexpr {} {} = {};\n", number_is, safe_name(number.name),
                literal(number.value));
    }
    put(writer, "}}\n");
}

void put_simple(Writer& writer, const Table& table) {
    std::string name = typed_name(writer.layout, table);
    put(writer, "{}", comment_lines(table.about, "// "));
    if (table.kind == ASN1_KIND_ENUMERATED) return put_enumeration(writer, name, table.type->items);
    put_bits(writer, name, *table.type);
    put(writer, "using {} = {};  // {}\n", name, typed_simple(writer, table), description(table));
    put_named_values(writer, name, table, *table.type);
}

// A record with a tag of its own before it: another type than the record without, for its descriptor is another.
bool is_tagged_struct(const Table& table) {
    return table.kind == ASN1_KIND_TAGGED && has_record(table) && is_struct(behind_tags(table)) &&
           !is_pointer(table) && !is_pointer(*table.parts[0].table);
}

void put_tagged_name(Writer& writer, const Table& table) {
    if (is_tagged_struct(table) || !writer.defined.insert(&table).second) return;
    const Table& inner = unwrapped(*table.parts[0].table);
    if (inner.kind == ASN1_KIND_TAGGED) put_tagged_name(writer, inner);
    put(writer, "{}using {} = {};\n", comment_lines(table.about, "// "), typed_name(writer.layout, table),
        typed_value(writer, *table.parts[0].table));
}

// ---- SEQUENCE and SET -------------------------------------------------------------------------------------

// What a component that may be absent begins with. The constructor says so as well; to say it here keeps compilers from
// warning where a program initialises the other members alone. That costs them time for each type of a component, so it
// is said where programs do that: in small records, and of what is a word.
std::string absent(const Table& table, const Part& part) {
    uint32_t kind = behind_tags(*part.table).kind;
    bool is_word = kind == ASN1_KIND_INTEGER || kind == ASN1_KIND_BOOLEAN || kind == ASN1_KIND_REAL;
    return is_word || owns_nothing(table) ? " = {}" : "";
}

bool is_zero(const Value& value) {
    switch (value.sort) {
        case Value::Sort::number: return value.number == 0;
        case Value::Sort::item: return value.item == 0;
        default: return !value.boolean;
    }
}

// What a member begins with: a word with its DEFAULT, if it has one, else zero.
std::string initial_value(Writer& writer, const Part& part, const Component& component) {
    const Table& described = behind_tags(*part.table);
    bool has_default = default_fits(component);
    switch (described.kind) {
        case ASN1_KIND_INTEGER: {
            bool big = (word0(described) & ASN1_WORD0_BIG) != 0;
            if (!has_default) return big ? " = {}" : " = 0";
            const Number& number = component.default_value->number;
            if (big) return fmt::format("{{{}}}", literal(number));
            bool wraps = simple_type(described) == "int32_t" && number > INT32_MAX;
            return wraps ? fmt::format(" = static_cast<int32_t>({})", literal(number))
                         : " = " + literal(number);
        }
        case ASN1_KIND_BOOLEAN: return has_default && component.default_value->boolean ? " = true" : " = {}";
        case ASN1_KIND_ENUMERATED:
            return fmt::format(" = static_cast<{}>({})", typed_value(writer, *part.table),
                               has_default ? component.default_value->item : 0);
        case ASN1_KIND_REAL: return " = 0";
        case ASN1_KIND_BIT_STRING:
        case ASN1_KIND_OCTET_STRING:
        case ASN1_KIND_CHAR_STRING: return " = {}";
        default: return "";
    }
}

// Whether a new value is more than zeros: it begins with some DEFAULT that is not zero.
bool begins_with_default(const Table& table) {
    if (is_pointer(table)) return false;
    const Table& described = behind_tags(table);
    if (described.kind == ASN1_KIND_CHOICE) return begins_with_default(*described.parts[0].table);
    if (described.kind != ASN1_KIND_SEQUENCE && described.kind != ASN1_KIND_SET) return false;
    const std::vector<Component>& components = resolved(described.type)->components;
    for (size_t i = 0; i < described.parts.size(); i++) {
        const Part& part = described.parts[i];
        if (part.has_presence) continue;
        if (!default_fits(components[i]) ? begins_with_default(*part.table)
                                         : !is_zero(*components[i].default_value))
            return true;
    }
    return false;
}

// A value of 32-bit words alone has no multiple of 8 to begin at.
bool has_wide_words(const Table& table) {
    if (is_pointer(table)) return true;
    const Table& described = behind_tags(table);
    switch (described.kind) {
        case ASN1_KIND_INTEGER: return (word0(described) & ASN1_WORD0_BIG) != 0;
        case ASN1_KIND_BOOLEAN:
        case ASN1_KIND_ENUMERATED:
        case ASN1_KIND_NULL: return false;
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
        case ASN1_KIND_CHOICE:
            return std::any_of(described.parts.begin(), described.parts.end(),
                               [](const Part& part) { return has_wide_words(*part.table); });
        default: return true;
    }
}

std::string optional_type(const Table& table, const Part& part, const std::string& type) {
    bool close = presence_offset(table, part) % 8 != 0 && has_wide_words(*part.table);
    return fmt::format("::orlenta::{}<{}>", close ? "close_optional" : "optional", type);
}

void put_member(Writer& writer, const Table& table, size_t index, const MemberNames& names, bool is_key,
                bool is_keyed) {
    const Part& part = table.parts[index];
    const Component& component = resolved(table.type)->components[index];
    if (names.value.empty()) {
        if (part.has_presence)
            put(writer, "    ::orlenta::optional_null {} = {{}};\n", safe_name(component.name));
        return;
    }
    std::string type = typed_value(writer, *part.table);
    if (is_keyed) type = "::orlenta::keyed_open";
    if (is_key) {
        put(writer, "    ::orlenta::key<{}> {} = {{}};\n", type, names.value);
        return;
    }
    std::string initial = part.has_presence ? absent(table, part) : initial_value(writer, part, component);
    if (part.has_presence) type = optional_type(table, part, type);
    put(writer, "    {} {}{};", type, names.value, initial);
    if (!has_record(unwrapped(*part.table))) put(writer, "  // {}", description(unwrapped(*part.table)));
    put(writer, "\n");
}

// A function's name, told apart from those of members.
std::string member_function(std::set<std::string>& taken, const std::string& name) {
    std::string free = name;
    while (!taken.insert(free).second) free += '_';
    return free;
}

// The type behind names that C++ does not tell apart.
std::string distinct_type(Writer& writer, const Table& table) {
    const Table& described = behind_tags(table);
    bool is_simple = !is_struct(described) && described.kind != ASN1_KIND_ENUMERATED;
    if (is_simple) return typed_simple(writer, described);
    return typed_name(writer.layout, is_tagged_struct(unwrapped(table)) ? unwrapped(table) : described);
}

// A type that several keys select has no function that finds its key. Parameters have names that no component has.
void put_keyed_functions(Writer& writer, const Table& table, const KeyedComponent& open,
                         const std::vector<MemberNames>& names, std::set<std::string>& taken) {
    const std::string& member = names[open.component].value;
    const std::string& key = names[open.key_component].value;
    std::string part = c_name(table.parts[open.component].name);
    std::string row = member_function(taken, part + "_row");
    std::map<std::string, int> uses;
    for (const KeyedType& type : open.types) uses[distinct_type(writer, *type.table)]++;
    for (const KeyedType& type : open.types) {
        std::string name = distinct_type(writer, *type.table);
        if (is_pointer(*type.table) || uses[name] != 1) continue;
        put(writer,
            "    static constexpr ::orlenta::keyed_type {}(const {}*) noexcept {{ return {{{}, "
            "asn1_type_{}}}; }}\n",
            row, name, type.key, type.table->symbol);
    }
    std::string set = member_function(taken, "set_" + part), get = member_function(taken, "get_" + part);
    put(writer,
        "    // Sets {1} to a new value of the type T, or to one that is given, or to bytes, and {2} with "
        "it.\n"
        "    template <class T>\n    T& {3}() {{\n"
        "        return ::orlenta::detail::key_access::set<T>({1}, {2}, {0}(static_cast<const "
        "T*>(nullptr)));\n    }}\n"
        "    template <class T>\n    T& {3}(::orlenta::value<T>&& given_) {{\n"
        "        return ::orlenta::detail::key_access::set<T>({1}, {2}, {0}(static_cast<const "
        "T*>(nullptr)),\n"
        "                                                     ::std::move(given_));\n    }}\n"
        "    void {4}({5} selector_, ::orlenta::byte_view bytes_) {{\n"
        "        ::orlenta::detail::key_access::set_raw({1}, {2}, selector_, bytes_);\n    }}\n",
        row, member, key, set, member_function(taken, "set_" + part + "_raw"),
        typed_value(writer, *table.parts[open.key_component].table));
    put(writer,
        "    // {1}, if it is of the type T and {2} says so; else null.\n"
        "    template <class T>\n    T* {3}() {{\n"
        "        return ::orlenta::detail::key_access::get<T>({1}, {2}, {0}(static_cast<const "
        "T*>(nullptr)));\n    }}\n"
        "    template <class T>\n    const T* {3}() const {{\n"
        "        return ::orlenta::detail::key_access::get<T>({1}, {2}, {0}(static_cast<const "
        "T*>(nullptr)));\n    }}\n",
        row, member, key, get);
}

void put_sequence(Writer& writer, const Table& table) {
    std::vector<MemberNames> names = member_names(table);
    std::vector<KeyedComponent> keyed = keyed_components(writer.layout.region, table);
    std::set<std::string> taken;
    for (size_t i = 0; i < names.size(); i++) {
        bool is_key = false, is_keyed = false;
        for (const KeyedComponent& open : keyed) {
            is_key = is_key || open.key_component == i;
            is_keyed = is_keyed || open.component == i;
        }
        put_member(writer, table, i, names[i], is_key, is_keyed);
        taken.insert(safe_name(table.parts[i].name));
    }
    if (!has_payload(table)) put(writer, "    uint8_t empty = 0;\n");
    for (const KeyedComponent& open : keyed) put_keyed_functions(writer, table, open, names, taken);
}

// ---- structs ----------------------------------------------------------------------------------------------

void put_struct(Writer& writer, const Table& table);

// As in C, a struct is defined before one that has it as a member. A CHOICE lies over the C record as it is.
void put_structs_inside(Writer& writer, const Table& table) {
    if (table.kind != ASN1_KIND_SEQUENCE && table.kind != ASN1_KIND_SET && table.kind != ASN1_KIND_TAGGED)
        return;
    for (const Part& part : table.parts) {
        if (is_pointer(*part.table)) continue;
        const Table& inside = unwrapped(*part.table);
        if (is_struct(inside) || is_tagged_struct(inside)) put_struct(writer, inside);
    }
}

void put_choice_base(Writer& writer, const Table& table, const std::string& alternatives) {
    if (owns_nothing(table))
        put(writer, "::orlenta::flat_choice<{}, {}", record_name(table), alternatives);
    else
        put(writer, "::orlenta::choice<asn1_type_{}, {}, {}", table.symbol, record_name(table), alternatives);
    for (const Part& part : table.parts) put(writer, ", {}", typed_value(writer, *part.table));
    put(writer, ">");
}

// What an alternative cannot be called, for the class has it.
const std::unordered_set<std::string> kChoiceMembers = {"alternative", "clear", "emplace", "get",
                                                        "get_if",      "holds", "payload", "require",
                                                        "type",        "visit", "which"};

void put_struct(Writer& writer, const Table& table) {
    if (!writer.defined.insert(&table).second) return;
    put_structs_inside(writer, table);
    std::string name = typed_name(writer.layout, table);
    for (const Part& part : table.parts)
        if (part.type->kind != Kind::reference) {
            std::string owner = part.name.empty() ? name : name + "_" + c_name(part.name);
            put_bits(writer, owner, *part.type);
            put_named_values(writer, owner, unwrapped(*part.table), *part.type);
        }
    std::string alternatives;
    if (table.kind == ASN1_KIND_CHOICE) {
        alternatives = fresh_name(writer, name, "_alternative");
        put_enumeration(writer, alternatives, table.type->alternatives, kChoiceMembers);
    }
    put(writer, "{}struct ORLENTA_OVERLAY alignas({}) {}", comment_lines(table.about, "// "),
        record_name(table), name);
    switch (table.kind) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            put(writer, " {{\n");
            put_sequence(writer, table);
            break;
        case ASN1_KIND_CHOICE:
            put(writer, " : ");
            put_choice_base(writer, table, alternatives);
            put(writer, " {{\n    using enum {};\n", alternatives);
            if (begins_with_default(table))
                put(writer, "    {0}() {{ this->emplace<static_cast<{1}>(0)>(); }}\n", name, alternatives);
            break;
        case ASN1_KIND_TAGGED: put(writer, " : {} {{\n", typed_value(writer, *table.parts[0].table)); break;
        default: {
            std::string base = fmt::format("::orlenta::list<{}>", typed_value(writer, *table.parts[0].table));
            put(writer, " : {0} {{  // {1}\n    using {0}::list;\n", base, description(table));
            break;
        }
    }
    put(writer,
        "    static constexpr const asn1_type_desc* orlenta_descriptor() noexcept {{ return asn1_type_{}; "
        "}}\n}};\n",
        table.symbol);
}

// ---- the whole --------------------------------------------------------------------------------------------

void declare_row_types(Writer& writer) {
    for (const Table* table : writer.layout.tables)
        for (const KeyedComponent& open : keyed_components(writer.layout.region, *table))
            for (const KeyedType& type : open.types)
                if (type.table->table_class == Table::Class::anonymous &&
                    writer.declared.insert(type.table).second)
                    put(writer, "extern \"C\" ORLENTA_API const asn1_type_desc asn1_type_{}[];\n",
                        type.table->symbol);
}

bool is_any_struct(const Table& table) {
    return is_tagged_struct(table) || (has_record(table) && is_struct(table));
}

void put_types(Writer& writer) {
    const std::vector<const Table*>& tables = writer.layout.tables;
    for (const Table* table : tables)
        if (is_any_struct(*table)) put(writer, "struct {};\n", typed_name(writer.layout, *table));
    put(writer, "\n");
    for (const Table* table : tables)
        if (has_record(*table) && !is_struct(*table) && table->kind != ASN1_KIND_TAGGED)
            put_simple(writer, *table);
    for (const Table* table : tables)
        if (has_record(*table) && table->kind == ASN1_KIND_TAGGED) put_tagged_name(writer, *table);
    for (const Alias& alias : writer.layout.aliases)
        put(writer, "{}using {} = {};\n", comment_lines(alias.about, "// "), alias.name,
            typed_name(writer.layout, *alias.table));
    put(writer, "\n");
    for (const Table* table : tables)
        if (is_any_struct(*table)) put_struct(writer, *table);
}

}  // namespace

std::string typed_header_name(const std::string& header) {
    size_t stem = header.find_last_of("/.");
    if (stem == std::string::npos || header[stem] == '/') stem = header.size();
    std::string name = header.substr(0, stem) + ".hpp";
    return name == header ? header_beside(header, "_typed") : name;
}

std::string emit_typed_header(const Layout& layout, const std::string& header) {
    Writer writer = {layout, {}, {}, {}, {}, {}};
    for (const Table* table : layout.tables)
        if (has_record(*table)) writer.names.insert(typed_name(layout, *table));
    for (const Alias& alias : layout.aliases) writer.names.insert(alias.name);
    put(writer,
        "// The types of the region {0} for C++20, over the records of <{1}>. Made by orlentac; not to be "
        "edited.\n"
        "//\n"
        "// A type Some-Type of the schema is orlenta::{2}::Some_Type, a component its member. "
        "<orlenta/typed.hpp> tells\n"
        "// what members can do.\n"
        "#pragma once\n\n"
        "#include <{1}>\n#include <orlenta/typed.hpp>\n\n",
        layout.region, header, namespace_name(layout));
    declare_row_types(writer);
    put(writer, "namespace orlenta::{} {{\n\nusing ::orlenta::operator<<;\nusing ::orlenta::operator==;\n\n",
        namespace_name(layout));
    put_types(writer);
    put(writer, "\n}}  // namespace orlenta::{}\n", namespace_name(layout));
    return std::move(writer.out);
}

std::string emit_typed_checks(const Layout& layout, const std::string& header) {
    std::string out = fmt::format(
        "\n#include <{}>\n\n"
        "#define TYPE_IS(type, record) \\\n"
        "    static_assert(sizeof(type) == sizeof(record) && alignof(type) == alignof(record))\n"
        "#define COMPONENT_AT(type, member, record, first) \\\n"
        "    static_assert(offsetof(type, member) == offsetof(record, first))\n\n",
        typed_header_name(header));
    for (const Table* table : layout.tables) {
        if (!is_any_struct(*table)) continue;
        std::string type = "orlenta::" + namespace_name(layout) + "::" + typed_name(layout, *table);
        std::string record = record_name(*table);
        fmt::format_to(std::back_inserter(out), "TYPE_IS({}, {});\n", type, record);
        if (table->kind != ASN1_KIND_SEQUENCE && table->kind != ASN1_KIND_SET) continue;
        std::vector<MemberNames> names = member_names(*table);
        for (size_t i = 0; i < names.size(); i++) {
            const std::string& first = names[i].presence.empty() ? names[i].value : names[i].presence;
            if (first.empty()) continue;
            fmt::format_to(std::back_inserter(out), "COMPONENT_AT({}, {}, {}, {});\n", type,
                           safe_name(table->parts[i].name), record, first);
        }
    }
    return out;
}

}  // namespace orlentac
