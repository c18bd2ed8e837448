// SPDX-License-Identifier: Apache-2.0
#include "cli/notation.hpp"

#include <fmt/format.h>
#include <orlenta/integer.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/type_info.h>

#include <vector>

#include "core/descriptor.hpp"

namespace cli {

using namespace orlenta;

// ---- constraints ------------------------------------------------------------------------------------------

static std::string decimal(const asn1_integer* number) {
    char* block = nullptr;
    const char* digits = asn1_integer_to_str(number, &block, nullptr);
    std::string text = digits ? digits : "?";
    asn1_free(block);
    return text;
}

static std::string range_text(const std::string& lower, const std::string& upper, bool extensible) {
    return fmt::format("{}{}", lower == upper ? lower : lower + ".." + upper, extensible ? ", ..." : "");
}

static std::string integer_text(const asn1_type_desc* type) {
    std::string lower = "MIN", upper = "MAX";
    if (is_big_integer(type)) {
        big_bounds bounds = big_bounds_of(type);
        if (bounds.lower) lower = decimal(bounds.lower);
        if (bounds.upper) upper = decimal(bounds.upper);
    } else {
        integer_bounds bounds = integer_bounds_of(type);
        auto number = [&](uint32_t pattern) {
            return is_unsigned_integer(type) ? fmt::format("{}", pattern)
                                             : fmt::format("{}", static_cast<int32_t>(pattern));
        };
        if (bounds.has_lower) lower = number(bounds.lower);
        if (bounds.has_upper) upper = number(bounds.upper);
    }
    if (lower == "MIN" && upper == "MAX") return "INTEGER";
    return fmt::format("INTEGER ({})", range_text(lower, upper, is_extensible(type)));
}

// "(SIZE (1..8))", or nothing if every size is allowed.
static std::string size_text(bool has_upper, uint32_t lower, uint32_t upper, bool extensible) {
    if (lower == 0 && !has_upper) return "";
    std::string high = has_upper ? fmt::format("{}", upper) : "MAX";
    return fmt::format("(SIZE ({}))", range_text(fmt::format("{}", lower), high, extensible));
}

static std::string size_text(const asn1_type_desc* type, const size_bounds& size) {
    return size_text(size.has_upper, size.lower, size.upper, is_extensible(type));
}

static std::string with_size(const char* name, const std::string& size) {
    return size.empty() ? name : fmt::format("{} {}", name, size);
}

static std::string character(uint32_t code) {
    if (code > 0x20 && code < 0x7F && code != '"') return fmt::format("\"{}\"", static_cast<char>(code));
    if (code == 0x20) return "\" \"";
    return fmt::format("{{{}, {}, {}, {}}}", code >> 24, code >> 16 & 255, code >> 8 & 255, code & 255);
}

// Whether the ranges are no more than what the string type allows anyway.
static bool is_whole_alphabet(uint32_t kind, const char_string_layout& string) {
    auto only = [&](uint32_t first, uint32_t last) {
        return string.range_count == 1 && range_first(string, 0) <= first && range_last(string, 0) >= last;
    };
    switch (kind) {
        case ASN1_STRING_NUMERIC: return string.range_count == 2;
        case ASN1_STRING_PRINTABLE: return string.range_count > 6;
        case ASN1_STRING_VISIBLE: return only(0x20, 0x7E);
        case ASN1_STRING_IA5: return only(0, 0x7F);
        case ASN1_STRING_BMP: return only(0, 0xFFFF);
        default: return only(0, UINT32_MAX);
    }
}

static std::string char_string_text(const asn1_type_desc* type) {
    uint32_t kind = string_type(type);
    const char* name = asn1_get_generic_type_name(type);
    if (kind >= ASN1_STRING_UTF8) return name;
    char_string_layout string = char_string_of(type);
    std::string text = with_size(name, size_text(type, string.size));
    if (string.range_count < 1 || is_whole_alphabet(kind, string)) return text;
    text += " (FROM (";
    for (int32_t i = 0; i < string.range_count; ++i) {
        std::string first = character(range_first(string, i)), last = character(range_last(string, i));
        text += (i ? " | " : "") + range_text(first, last, false);
    }
    return text + "))";
}

// ---- structures -------------------------------------------------------------------------------------------

static std::string margin(int level) { return std::string(static_cast<size_t>(level) * 4, ' '); }

static std::string body_text(const asn1_type_desc* type, int level);

static std::string type_text(const asn1_type_desc* type, int level) {
    const orlenta_type_entry* entry = entry_of(type);
    return entry && is_named(*entry) ? entry->name : body_text(type, level);
}

static std::string block(const char* word, const std::vector<std::string>& items, int level) {
    if (items.empty()) return fmt::format("{} {{}}", word);
    std::string text = fmt::format("{} {{\n", word);
    for (size_t i = 0; i < items.size(); ++i)
        text += fmt::format("{}{}{}\n", margin(level + 1), items[i], i + 1 < items.size() ? "," : "");
    return text + margin(level) + "}";
}

static std::string default_text(const asn1_field* field) {
    const asn1_type_desc* type = untagged(field_type(field));
    uint32_t pattern = low32(field->extra);
    switch (kind_of(type)) {
        case ASN1_KIND_BOOLEAN: return pattern ? "TRUE" : "FALSE";
        case ASN1_KIND_ENUMERATED:
            return pattern < enum_of(type).total ? enum_of(type).names[pattern].text : "?";
        case ASN1_KIND_INTEGER:
            if (is_big_integer(type)) return decimal(field->extra.integer);
            return is_unsigned_integer(type) ? fmt::format("{}", pattern)
                                             : fmt::format("{}", static_cast<int32_t>(pattern));
        default: return "?";
    }
}

static std::string open_type_text(const asn1_type_desc* type, const asn1_type_desc* record, int level);

static std::string component_text(const asn1_type_desc* record, const asn1_field* field, int level) {
    const asn1_type_desc* type = field_type(field);
    std::string text = fmt::format("{} ", field_name(field));
    text += kind_of(untagged(type)) == ASN1_KIND_ANY ? open_type_text(untagged(type), record, level)
                                                     : type_text(type, level);
    if (field_option(field) == ASN1_OPTION_OPTIONAL) text += " OPTIONAL";
    if (field_option(field) == ASN1_OPTION_DEFAULT) text += " DEFAULT " + default_text(field);
    return text;
}

// The members of an addition group, from `first` on; `*last` becomes the index of the closing one.
static std::string group_text(const asn1_type_desc* type, uint32_t first, uint32_t* last, int level) {
    std::vector<std::string> members;
    uint32_t count = component_count(type);
    for (uint32_t i = first; i < count; ++i) {
        *last = i;
        members.push_back(component_text(type, components(type) + i, level + 1));
        if (closes_group(components(type) + i)) break;
    }
    std::string text = "[[\n";
    for (size_t i = 0; i < members.size(); ++i)
        text += fmt::format("{}{}{}\n", margin(level + 1), members[i], i + 1 < members.size() ? "," : "");
    return text + margin(level) + "]]";
}

static std::string record_text(const char* word, const asn1_type_desc* type, int level) {
    std::vector<std::string> items;
    bool marked = false;
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = components(type) + i;
        if (is_addition(field) && !marked) {
            items.push_back("...");
            marked = true;
        }
        items.push_back(opens_group(field) ? group_text(type, i, &i, level + 1)
                                           : component_text(type, field, level + 1));
    }
    if (is_extensible(type) && !marked) items.push_back("...");
    return block(word, items, level);
}

static std::string list_text(const char* word, const asn1_type_desc* type, int level) {
    list_layout list = list_of(type);
    std::string size = size_text(list.has_upper, list.lower, list.upper, is_extensible(type));
    return fmt::format("{} OF {}", with_size(word, size), type_text(list.element, level));
}

static std::string choice_text(const asn1_type_desc* type, int level) {
    choice_layout choice = choice_of(type);
    std::vector<std::string> items;
    for (uint32_t i = 0; i < choice.total; ++i) {
        if (i == choice.root) items.push_back("...");
        items.push_back(fmt::format("{} {}", alternative_name(choice, i),
                                    type_text(alternative_type(choice, i), level + 1)));
    }
    if (is_extensible(type) && choice.total == choice.root) items.push_back("...");
    return block("CHOICE", items, level);
}

static std::string enumerated_text(const asn1_type_desc* type, int level) {
    enum_layout items = enum_of(type);
    std::vector<std::string> texts;
    for (uint32_t i = 0; i < items.total; ++i) {
        if (i == items.root) texts.push_back("...");
        texts.push_back(fmt::format("{} ({})", items.names[i].text, enum_value(type, items, i)));
    }
    if (is_extensible(type) && items.total == items.root) texts.push_back("...");
    return block("ENUMERATED", texts, level);
}

static std::string class_text(const asn1_type_desc* type, int level) {
    std::vector<std::string> items;
    for (uint32_t i = 0; i < class_field_count(type); ++i) {
        const asn1_class_field* field = class_fields(type) + i;
        std::string text = field->name.text;
        if (class_field_sort(field) == ASN1_CLASS_FIELD_VALUE && field->type.type)
            text += " " + type_text(field->type.type, level + 1);
        items.push_back(text);
    }
    return block("CLASS", items, level);
}

// ---- open types -------------------------------------------------------------------------------------------

// A key value as JSON on one line.
static std::string value_text(const asn1_type_desc* type, const void* value) {
    asn1_jer_encode_options options = {};
    uint8_t* data = nullptr;
    int64_t size = asn1_jer_encode2(&data, type, value, &options);
    if (size < 1) return "?";
    std::string text(reinterpret_cast<const char*>(data), static_cast<size_t>(size) - 1);
    asn1_free(data);
    return text;
}

// The component that selects the row, by the only form that message sets use: one of the same SEQUENCE.
static std::string key_name(const asn1_table_constraint* constraint, const asn1_type_desc* record) {
    const asn1_word* selector = selectors_of(constraint);
    if (constraint->selector_count.number != 1 || selector[0].number != 0 || !record) return "";
    uint32_t path = low32(selector[1]);
    uint32_t index = path & ~ASN1_SELECTOR_LAST;
    if (!(path & ASN1_SELECTOR_LAST) || index >= component_count(record)) return "";
    return field_name(components(record) + index);
}

static std::string open_type_text(const asn1_type_desc* type, const asn1_type_desc* record, int level) {
    const asn1_table_constraint* constraint = table_constraint_of(type);
    if (!constraint) return "ANY";
    const asn1_type_desc* object_class = constraint->object_class.type;
    uint32_t columns = class_field_count(object_class);
    uint32_t column = low32(constraint->column);
    std::string key = key_name(constraint, record);
    std::string text =
        fmt::format("{}.{}", type_text(object_class, level), class_fields(object_class)[column].name.text);
    if (!key.empty()) text += fmt::format(" ({{}} {{@{}}})", key);
    if (constraint->row_count.number == 0) return text + " /* no type is known */";
    const char* start = " /*";
    for (uint64_t row = 0; row < constraint->row_count.number; ++row) {
        const asn1_word* cells = constraint->rows.type + row * columns;
        text += fmt::format("{}\n{}", start, margin(level + 1));
        start = "";
        for (uint32_t i = 0; i < columns; ++i) {
            const asn1_class_field* field = class_fields(object_class) + i;
            if (class_field_sort(field) == ASN1_CLASS_FIELD_VALUE && cells[i].address)
                text += fmt::format("{}: ", value_text(field->type.type, cells[i].address));
        }
        text += cells[column].type ? type_text(cells[column].type, level + 1) : "?";
    }
    return text + " */";
}

static std::string octet_string_text(const asn1_type_desc* type, int level) {
    std::string text = with_size("OCTET STRING", size_text(type, size_bounds_of(type)));
    if (const asn1_type_desc* contained = asn1_get_containing_type(type))
        text += fmt::format(" (CONTAINING {})", type_text(contained, level));
    return text;
}

// The type in place, even if it has a name.
static std::string body_text(const asn1_type_desc* type, int level) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE: return record_text("SEQUENCE", type, level);
        case ASN1_KIND_SET: return record_text("SET", type, level);
        case ASN1_KIND_SEQUENCE_OF: return list_text("SEQUENCE", type, level);
        case ASN1_KIND_SET_OF: return list_text("SET", type, level);
        case ASN1_KIND_CHOICE: return choice_text(type, level);
        case ASN1_KIND_INTEGER: return integer_text(type);
        case ASN1_KIND_BOOLEAN: return "BOOLEAN";
        case ASN1_KIND_BIT_STRING: return with_size("BIT STRING", size_text(type, size_bounds_of(type)));
        case ASN1_KIND_OCTET_STRING: return octet_string_text(type, level);
        case ASN1_KIND_ENUMERATED: return enumerated_text(type, level);
        case ASN1_KIND_NULL: return "NULL";
        case ASN1_KIND_TAGGED: return type_text(tagged_inner(type), level);
        case ASN1_KIND_OBJECT_IDENTIFIER: return "OBJECT IDENTIFIER";
        case ASN1_KIND_RELATIVE_OID: return "RELATIVE-OID";
        case ASN1_KIND_REAL: return "REAL";
        case ASN1_KIND_CHAR_STRING: return char_string_text(type);
        case ASN1_KIND_ANY: return open_type_text(type, nullptr, level);
        case ASN1_KIND_OBJECT_CLASS: return class_text(type, level);
        default: return "?";
    }
}

std::string definition_text(const orlenta_type_entry& entry) {
    return fmt::format("{} ::= {}\n", is_named(entry) ? entry.name : entry.table, body_text(entry.type, 0));
}

// ---- one line ---------------------------------------------------------------------------------------------

static std::string counted(const char* word, uint32_t count, const char* part, bool extensible) {
    return fmt::format("{}, {} {}{}{}", word, count, part, count == 1 ? "" : "s", extensible ? ", ..." : "");
}

static std::string list_summary(const char* word, const asn1_type_desc* type) {
    list_layout list = list_of(type);
    const orlenta_type_entry* element = entry_of(untagged(list.element));
    std::string size = size_text(list.has_upper, list.lower, list.upper, is_extensible(type));
    return fmt::format("{} OF {}", with_size(word, size),
                       element && is_named(*element) ? element->name : summary_text(list.element));
}

std::string summary_text(const asn1_type_desc* type) {
    bool extensible = is_extensible(type);
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE: return counted("SEQUENCE", component_count(type), "component", extensible);
        case ASN1_KIND_SET: return counted("SET", component_count(type), "component", extensible);
        case ASN1_KIND_SEQUENCE_OF: return list_summary("SEQUENCE", type);
        case ASN1_KIND_SET_OF: return list_summary("SET", type);
        case ASN1_KIND_CHOICE: return counted("CHOICE", choice_of(type).total, "alternative", extensible);
        case ASN1_KIND_ENUMERATED: return counted("ENUMERATED", enum_of(type).total, "item", extensible);
        case ASN1_KIND_OBJECT_CLASS: return counted("CLASS", class_field_count(type), "field", false);
        case ASN1_KIND_ANY: return "open type";
        default: return body_text(type, 0);
    }
}

}  // namespace cli
