// SPDX-License-Identifier: Apache-2.0
#include "compiler/emit/c_types.hpp"

#include <fmt/format.h>
#include <orlenta/type.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "compiler/layout/names.hpp"
#include "compiler/layout/records.hpp"

namespace orlentac {

namespace {

// Names that a member cannot have: keywords of C and C++, and macros that are likely where the header is used.
const std::unordered_set<std::string_view> kReserved = {
    // C and C++
    "alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "case", "catch",
    "char", "char16_t", "char32_t", "char8_t", "class", "co_await", "co_return", "co_yield", "compl",
    "concept", "const", "const_cast", "consteval", "constexpr", "constinit", "continue", "decltype",
    "default", "delete", "do", "double", "dynamic_cast", "else", "enum", "explicit", "export", "extern",
    "false", "float", "for", "friend", "goto", "if", "inline", "int", "long", "mutable", "namespace", "new",
    "noexcept", "not", "not_eq", "nullptr", "operator", "or", "or_eq", "private", "protected", "public",
    "register", "reinterpret_cast", "requires", "restrict", "return", "short", "signed", "sizeof", "static",
    "static_assert", "static_cast", "struct", "switch", "template", "this", "thread_local", "throw", "true",
    "try", "typedef", "typeid", "typename", "typeof", "typeof_unqual", "union", "unsigned", "using",
    "virtual", "void", "volatile", "wchar_t", "while", "xor", "xor_eq",
    // types that the members behind are made of
    "int32_t", "int64_t", "size_t", "uint8_t", "uint32_t", "uint64_t",
    // predefined by compilers, or macros of <complex.h>, <errno.h>, <stdio.h>, <stdnoreturn.h>, <windows.h>, Qt
    "unix", "linux", "i386", "arm", "sun", "vax", "hpux", "complex", "imaginary", "errno", "stdin", "stdout",
    "stderr", "noreturn", "near", "far", "small", "hyper", "interface", "cdecl", "pascal", "signals", "slots",
    "emit", "foreach", "forever"};

bool is_null(const Part& part) { return resolved(part.type)->kind == Kind::null; }

// As every reader of an INTEGER decides.
bool is_unsigned(const Table& table) {
    return (word0(table) & ASN1_WORD0_EXTENSIBLE) == 0 && static_cast<int32_t>(table.words[1].number) >= 0;
}

std::string_view kind_text(const Type& type) {
    static constexpr std::string_view kStrings[] = {"NumericString", "PrintableString", "VisibleString",
                                                    "IA5String",     "BMPString",       "UniversalString",
                                                    "UTF8String",    "GeneralString",   "GraphicString",
                                                    "TeletexString", "VideotexString"};
    bool is_string = type.kind == Kind::char_string;
    return is_string ? kStrings[static_cast<size_t>(type.string_kind)] : kind_name(type.kind);
}

std::string bounds_text(const Bounds& bounds) {
    if (!bounds.lower && !bounds.upper) return "";
    std::string text = bounds.lower ? bounds.lower->str() : "MIN";
    if (bounds.lower != bounds.upper) text += ".." + (bounds.upper ? bounds.upper->str() : "MAX");
    return bounds.extensible ? text + ", ..." : text;
}

}  // namespace

std::string safe_name(const std::string& schema_name) {
    std::string name = c_name(schema_name);
    if (kReserved.contains(name)) name += '_';
    return name;
}

bool has_record(const Table& table) {
    return table.table_class != Table::Class::anonymous && table.kind != ASN1_KIND_OBJECT_CLASS;
}

std::string record_name(const Table& table) { return "asn1_" + table.symbol; }

std::string simple_type(const Table& table) {
    switch (table.kind) {
        case ASN1_KIND_INTEGER:
            return word0(table) & ASN1_WORD0_BIG ? "asn1_integer"
                   : is_unsigned(table)          ? "uint32_t"
                                                 : "int32_t";
        case ASN1_KIND_BOOLEAN: return "int32_t";
        case ASN1_KIND_ENUMERATED: return "uint32_t";
        case ASN1_KIND_NULL: return "uint8_t";
        case ASN1_KIND_REAL: return "double";
        case ASN1_KIND_BIT_STRING: return "asn1_bit_string";
        case ASN1_KIND_ANY: return "asn1_open_value";
        default: return "asn1_string";
    }
}

bool is_indirect(const Table& table) {
    return table.kind == ASN1_KIND_TAGGED && (word0(table) & ASN1_WORD0_INDIRECT) != 0;
}

const Table& unwrapped(const Table& table) {
    bool is_wrapper = table.kind == ASN1_KIND_TAGGED && table.table_class == Table::Class::anonymous;
    return is_wrapper ? unwrapped(*table.parts[0].table) : table;
}

std::string value_type(const Table& table) {
    if (is_indirect(table)) return value_type(*table.parts[0].table) + "*";
    const Table& described = unwrapped(table);
    return has_record(described) ? record_name(described) : simple_type(described);
}

bool is_struct(const Table& table) { return table.kind <= ASN1_KIND_CHOICE; }

std::vector<MemberNames> member_names(const Table& table) {
    std::vector<MemberNames> names;
    std::unordered_set<std::string> taken;
    for (const Part& part : table.parts) {
        names.push_back({"", is_null(part) ? "" : safe_name(part.name)});
        taken.insert(names.back().value);
    }
    for (size_t i = 0; i < names.size(); i++) {
        if (!table.parts[i].has_presence) continue;
        names[i].presence = "has_" + c_name(table.parts[i].name);
        while (!taken.insert(names[i].presence).second) names[i].presence += '_';
    }
    return names;
}

bool has_payload(const Table& table) {
    return std::any_of(table.parts.begin(), table.parts.end(),
                       [](const Part& part) { return !is_null(part) || part.has_presence; });
}

const Table& behind_tags(const Table& table) {
    return table.kind == ASN1_KIND_TAGGED ? behind_tags(*table.parts[0].table) : table;
}

bool owns_nothing(const Table& table) {
    if (value_type(table).ends_with('*')) return false;
    const Table& described = behind_tags(table);
    switch (described.kind) {
        case ASN1_KIND_INTEGER: return (word0(described) & ASN1_WORD0_BIG) == 0;
        case ASN1_KIND_BOOLEAN:
        case ASN1_KIND_ENUMERATED:
        case ASN1_KIND_NULL:
        case ASN1_KIND_REAL: return true;
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
        case ASN1_KIND_CHOICE:
            return std::all_of(described.parts.begin(), described.parts.end(),
                               [](const Part& part) { return owns_nothing(*part.table); });
        default: return false;
    }
}

int code_unit_size(const Table& table) {
    const Type& type = *resolved(table.type);
    if (type.kind != Kind::char_string) return 1;
    return type.string_kind == StringKind::bmp ? 2 : type.string_kind == StringKind::universal ? 4 : 1;
}

std::string index_enum_name(const Table& table) { return "orlenta_" + table.symbol; }

std::string key_owner(const Table& table, const Part& key) {
    return "orlenta_" + table.symbol + "_" + c_name(key.name);
}

std::string description(const Table& table) {
    if (!table.type) return "CLASS";
    const Type& type = *resolved(table.type);
    std::string text(kind_text(type));
    bool has_values = type.kind == Kind::integer;
    bool has_sizes = type.kind == Kind::bit_string || type.kind == Kind::octet_string || is_list(type) ||
                     type.kind == Kind::char_string;
    std::string bounds = has_values || has_sizes ? bounds_text(type.bounds) : "";
    if (!bounds.empty())
        text += has_values ? fmt::format(" ({})", bounds) : fmt::format(" (SIZE({}))", bounds);
    return type.unit ? fmt::format("{}; unit {}", text, type.unit->text) : text;
}

std::string fit_for_comment(std::string text) {
    for (std::string_view mark : {"*/", "/*", "??"})
        for (size_t at = 0; (at = text.find(mark, at)) != std::string::npos;) text.insert(at + 1, 1, ' ');
    return text;
}

std::string comment_lines(const std::string& about, std::string_view prefix) {
    constexpr size_t kWidth = 100;
    std::string out, line;
    auto end_line = [&] {
        while (line.ends_with('\\')) line.pop_back();  // the next line would be joined to this one
        fmt::format_to(std::back_inserter(out), "{}{}\n", prefix, line);
        line.clear();
    };
    std::istringstream words(about);
    for (std::string word; words >> word;) {
        word = fit_for_comment(std::move(word));
        if (!line.empty() && line.size() + 1 + word.size() > kWidth) end_line();
        line += (line.empty() ? "" : " ") + word;
    }
    if (!line.empty()) end_line();
    return out;
}

}  // namespace orlentac
