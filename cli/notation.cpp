// SPDX-License-Identifier: Apache-2.0
#include "cli/notation.hpp"

#include <fmt/format.h>
#include <orlenta/integer.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/type_info.h>

#include <vector>

#include "cli/units.hpp"

namespace cli {

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

static std::string integer_text(const orlenta_type_facts& facts) {
    std::string lower = "MIN", upper = "MAX";
    if (facts.is_big) {
        if (facts.big_lower) lower = decimal(facts.big_lower);
        if (facts.big_upper) upper = decimal(facts.big_upper);
    } else {
        if (facts.has_lower) lower = std::to_string(facts.lower);
        if (facts.has_upper) upper = std::to_string(facts.upper);
    }
    if (lower == "MIN" && upper == "MAX") return "INTEGER";
    return fmt::format("INTEGER ({})", range_text(lower, upper, facts.is_extensible));
}

// The size behind the word, unless every size is allowed.
static std::string with_size(const char* word, const orlenta_type_facts& facts) {
    if (facts.lower == 0 && !facts.has_upper) return word;
    std::string upper = facts.has_upper ? std::to_string(facts.upper) : "MAX";
    return fmt::format("{} (SIZE ({}))", word,
                       range_text(std::to_string(facts.lower), upper, facts.is_extensible));
}

static std::string character(uint32_t code) {
    if (code > 0x20 && code < 0x7F && code != '"') return fmt::format("\"{}\"", static_cast<char>(code));
    if (code == 0x20) return "\" \"";
    return fmt::format("{{{}, {}, {}, {}}}", code >> 24, code >> 16 & 255, code >> 8 & 255, code & 255);
}

// Whether the ranges are no more than what the string type allows anyway.
static bool is_whole_alphabet(const orlenta_type_facts& facts) {
    auto only = [&](uint32_t first, uint32_t last) {
        orlenta_range range;
        return facts.count == 1 && orlenta_type_range(facts.type, 0, &range) == 0 && range.first <= first &&
               range.last >= last;
    };
    switch (facts.string_type) {
        case ASN1_STRING_NUMERIC: return facts.count == 2;
        case ASN1_STRING_PRINTABLE: return facts.count > 6;
        case ASN1_STRING_VISIBLE: return only(0x20, 0x7E);
        case ASN1_STRING_IA5: return only(0, 0x7F);
        case ASN1_STRING_BMP: return only(0, 0xFFFF);
        default: return only(0, UINT32_MAX);
    }
}

static std::string char_string_text(const orlenta_type_facts& facts) {
    std::string text = with_size(asn1_get_generic_type_name(facts.type), facts);
    if (facts.count == 0 || is_whole_alphabet(facts)) return text;
    text += " (FROM (";
    orlenta_range range;
    for (uint32_t i = 0; orlenta_type_range(facts.type, i, &range) == 0; ++i)
        text += (i ? " | " : "") + range_text(character(range.first), character(range.last), false);
    return text + "))";
}

// ---- structures -------------------------------------------------------------------------------------------

static std::string margin(int level) { return std::string(static_cast<size_t>(level) * 4, ' '); }

static std::string body_text(const asn1_type_desc* type, int level);

// As orlentac reads it; what follows on the line wants an end of the comment.
static std::string unit_comment(const asn1_type_desc* type, const char* end) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    const orlenta_unit* unit = facts.inner ? nullptr : unit_of(type);
    return unit ? fmt::format(" --@ unit {}{}", unit_text(*unit), end) : "";
}

static std::string type_text(const asn1_type_desc* type, int level) {
    const orlenta_type_entry* entry = entry_of(type);
    return entry && is_named(*entry) ? entry->name : body_text(type, level) + unit_comment(type, " --");
}

static std::string block(const char* word, const std::vector<std::string>& items, int level) {
    if (items.empty()) return fmt::format("{} {{}}", word);
    std::string text = fmt::format("{} {{\n", word);
    for (size_t i = 0; i < items.size(); ++i)
        text += fmt::format("{}{}{}\n", margin(level + 1), items[i], i + 1 < items.size() ? "," : "");
    return text + margin(level) + "}";
}

static std::string default_text(const orlenta_component& component) {
    orlenta_type_facts facts;
    orlenta_type_describe(component.type, &facts);
    uint32_t pattern = component.default_word;
    orlenta_item item;
    switch (facts.kind) {
        case ASN1_KIND_BOOLEAN: return pattern ? "TRUE" : "FALSE";
        case ASN1_KIND_ENUMERATED:
            return orlenta_type_item(facts.type, pattern, &item) == 0 ? item.name : "?";
        case ASN1_KIND_INTEGER:
            if (facts.is_big) return decimal(component.big_default);
            return facts.is_unsigned ? std::to_string(pattern)
                                     : std::to_string(static_cast<int32_t>(pattern));
        default: return "?";
    }
}

static std::string open_type_text(const orlenta_type_facts& facts, const asn1_type_desc* record, int level);

static std::string component_text(const asn1_type_desc* record, const orlenta_component& component,
                                  int level) {
    orlenta_type_facts facts;
    orlenta_type_describe(component.type, &facts);
    std::string text = component.name + std::string(" ");
    text +=
        facts.kind == ASN1_KIND_ANY ? open_type_text(facts, record, level) : type_text(component.type, level);
    if (component.presence == ORLENTA_OPTIONAL) text += " OPTIONAL";
    if (component.presence == ORLENTA_DEFAULT) text += " DEFAULT " + default_text(component);
    return text;
}

// The members of an addition group, from `*index` on, which becomes that of the closing one.
static std::string group_text(const asn1_type_desc* type, uint32_t* index, int level) {
    std::string text = "[[\n";
    orlenta_component member, next;
    for (bool is_open = orlenta_type_component(type, *index, &member) == 0; is_open; member = next) {
        is_open = !member.closes_group && orlenta_type_component(type, *index + 1, &next) == 0;
        text += fmt::format("{}{}{}\n", margin(level + 1), component_text(type, member, level + 1),
                            is_open ? "," : "");
        *index += is_open;
    }
    return text + margin(level) + "]]";
}

// Parts, with a marker before the first addition, or at the end.
static std::string marked_block(const char* word, const orlenta_type_facts& facts,
                                const std::vector<std::string>& root,
                                const std::vector<std::string>& additions, int level) {
    std::vector<std::string> items = root;
    if (facts.is_extensible || !additions.empty()) items.push_back("...");
    items.insert(items.end(), additions.begin(), additions.end());
    return block(word, items, level);
}

static std::string record_text(const char* word, const orlenta_type_facts& facts, int level) {
    std::vector<std::string> root, additions;
    orlenta_component part;
    for (uint32_t i = 0; orlenta_type_component(facts.type, i, &part) == 0; ++i) {
        std::vector<std::string>& items = part.is_addition ? additions : root;
        items.push_back(part.opens_group ? group_text(facts.type, &i, level + 1)
                                         : component_text(facts.type, part, level + 1));
    }
    return marked_block(word, facts, root, additions, level);
}

static std::string list_text(const char* word, const orlenta_type_facts& facts, int level) {
    return fmt::format("{} OF {}", with_size(word, facts), type_text(facts.element, level));
}

static std::string choice_text(const orlenta_type_facts& facts, int level) {
    std::vector<std::string> root, additions;
    orlenta_alternative part;
    for (uint32_t i = 0; orlenta_type_alternative(facts.type, i, &part) == 0; ++i)
        (part.is_addition ? additions : root)
            .push_back(fmt::format("{} {}", part.name, type_text(part.type, level + 1)));
    return marked_block("CHOICE", facts, root, additions, level);
}

static std::string enumerated_text(const orlenta_type_facts& facts, int level) {
    std::vector<std::string> root, additions;
    orlenta_item part;
    for (uint32_t i = 0; orlenta_type_item(facts.type, i, &part) == 0; ++i)
        (part.is_addition ? additions : root).push_back(fmt::format("{} ({})", part.name, part.number));
    return marked_block("ENUMERATED", facts, root, additions, level);
}

static std::string class_text(const orlenta_type_facts& facts, int level) {
    std::vector<std::string> items;
    orlenta_class_field field;
    for (uint32_t i = 0; orlenta_type_field(facts.type, i, &field) == 0; ++i)
        items.push_back(field.is_type || !field.type
                            ? field.name
                            : fmt::format("{} {}", field.name, type_text(field.type, level + 1)));
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
static std::string key_name(const orlenta_type_facts& facts, const asn1_type_desc* record) {
    orlenta_key key;
    orlenta_component component;
    if (facts.key_count != 1 || orlenta_type_key(facts.type, 0, &key) != 0 || !record) return "";
    if (key.levels_up != 0 || key.path_length != 1) return "";
    return orlenta_type_component(record, key.path[0], &component) == 0 ? component.name : "";
}

// "20: BasicSafetyMessage"
static std::string row_text(const orlenta_type_facts& facts, uint32_t row, int level) {
    std::string text;
    orlenta_class_field field;
    orlenta_cell cell;
    for (uint32_t i = 0; orlenta_type_cell(facts.type, row, i, &cell) == 0; ++i)
        if (cell.value && orlenta_type_field(facts.object_class, i, &field) == 0)
            text += value_text(field.type, cell.value) + ": ";
    bool is_known = orlenta_type_cell(facts.type, row, facts.column, &cell) == 0 && cell.type;
    return text + (is_known ? type_text(cell.type, level) : "?");
}

static std::string open_type_text(const orlenta_type_facts& facts, const asn1_type_desc* record, int level) {
    orlenta_class_field field;
    if (!facts.object_class || orlenta_type_field(facts.object_class, facts.column, &field) != 0)
        return "ANY";
    std::string text = fmt::format("{}.{}", type_text(facts.object_class, level), field.name);
    std::string key = key_name(facts, record);
    if (!key.empty()) text += fmt::format(" ({{}} {{@{}}})", key);
    if (facts.count == 0) return text + " /* no type is known */";
    const char* start = " /*";
    for (uint32_t row = 0; row < facts.count; ++row) {
        text += fmt::format("{}\n{}{}", start, margin(level + 1), row_text(facts, row, level + 1));
        start = "";
    }
    return text + " */";
}

static std::string octet_string_text(const orlenta_type_facts& facts, int level) {
    std::string text = with_size("OCTET STRING", facts);
    if (facts.contained) text += fmt::format(" (CONTAINING {})", type_text(facts.contained, level));
    return text;
}

// The type in place, even if it has a name.
static std::string body_text(const asn1_type_desc* type, int level) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    if (facts.inner) return type_text(facts.inner, level);
    switch (facts.kind) {
        case ASN1_KIND_SEQUENCE: return record_text("SEQUENCE", facts, level);
        case ASN1_KIND_SET: return record_text("SET", facts, level);
        case ASN1_KIND_SEQUENCE_OF: return list_text("SEQUENCE", facts, level);
        case ASN1_KIND_SET_OF: return list_text("SET", facts, level);
        case ASN1_KIND_CHOICE: return choice_text(facts, level);
        case ASN1_KIND_INTEGER: return integer_text(facts);
        case ASN1_KIND_BOOLEAN: return "BOOLEAN";
        case ASN1_KIND_BIT_STRING: return with_size("BIT STRING", facts);
        case ASN1_KIND_OCTET_STRING: return octet_string_text(facts, level);
        case ASN1_KIND_ENUMERATED: return enumerated_text(facts, level);
        case ASN1_KIND_NULL: return "NULL";
        case ASN1_KIND_OBJECT_IDENTIFIER: return "OBJECT IDENTIFIER";
        case ASN1_KIND_RELATIVE_OID: return "RELATIVE-OID";
        case ASN1_KIND_REAL: return "REAL";
        case ASN1_KIND_CHAR_STRING: return char_string_text(facts);
        case ASN1_KIND_ANY: return open_type_text(facts, nullptr, level);
        case ASN1_KIND_OBJECT_CLASS: return class_text(facts, level);
        default: return "?";
    }
}

std::string definition_text(const orlenta_type_entry& entry) {
    return fmt::format("{}{} ::= {}{}\n", entry.about ? fmt::format("-- {}\n", entry.about) : "",
                       is_named(entry) ? entry.name : entry.table, body_text(entry.type, 0),
                       unit_comment(entry.type, ""));
}

// ---- one line ---------------------------------------------------------------------------------------------

static std::string counted(const char* word, const orlenta_type_facts& facts, const char* part) {
    return fmt::format("{}, {} {}{}{}", word, facts.count, part, facts.count == 1 ? "" : "s",
                       facts.is_extensible ? ", ..." : "");
}

static std::string list_summary(const char* word, const orlenta_type_facts& facts) {
    orlenta_type_facts element;
    orlenta_type_describe(facts.element, &element);
    const orlenta_type_entry* entry = entry_of(element.type);
    return fmt::format("{} OF {}", with_size(word, facts),
                       entry && is_named(*entry) ? entry->name : summary_text(facts.element));
}

std::string summary_text(const asn1_type_desc* type) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    if (facts.inner) return body_text(type, 0);
    switch (facts.kind) {
        case ASN1_KIND_SEQUENCE: return counted("SEQUENCE", facts, "component");
        case ASN1_KIND_SET: return counted("SET", facts, "component");
        case ASN1_KIND_SEQUENCE_OF: return list_summary("SEQUENCE", facts);
        case ASN1_KIND_SET_OF: return list_summary("SET", facts);
        case ASN1_KIND_CHOICE: return counted("CHOICE", facts, "alternative");
        case ASN1_KIND_ENUMERATED: return counted("ENUMERATED", facts, "item");
        case ASN1_KIND_OBJECT_CLASS: return counted("CLASS", facts, "field");
        case ASN1_KIND_ANY: return "open type";
        default: return body_text(type, 0);
    }
}

}  // namespace cli
