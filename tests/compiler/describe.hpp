// SPDX-License-Identifier: Apache-2.0
// A type of the model as a line of text, so that tests can be tables.
#pragma once

#include <fmt/format.h>

#include <string>

#include "compiler/model/model.hpp"
#include "compiler/model/tags.hpp"

namespace orlentac::test {

inline std::string describe(const Type& type);

inline std::string describe(const Bounds& bounds) {
    if (!bounds.lower && !bounds.upper && !bounds.extensible) return "";
    return fmt::format(" ({}..{}{})", bounds.lower ? bounds.lower->str() : "MIN",
                       bounds.upper ? bounds.upper->str() : "MAX", bounds.extensible ? ",..." : "");
}

inline std::string hex(const std::string& bytes) {
    std::string text;
    for (unsigned char byte : bytes) text += fmt::format("{:02X}", byte);
    return text;
}

inline std::string describe(const Value& value) {
    switch (value.sort) {
        case Value::Sort::boolean: return value.boolean ? "TRUE" : "FALSE";
        case Value::Sort::number: return value.number.str();
        case Value::Sort::item: return fmt::format("item {}", value.item);
        case Value::Sort::null: return "NULL";
        case Value::Sort::bits: return fmt::format("bits {} {}", value.bit_count, hex(value.bytes));
        case Value::Sort::octets: return "octets " + hex(value.bytes);
        case Value::Sort::oid: return "oid " + hex(value.bytes);
        case Value::Sort::text: return "\"" + value.bytes + "\"";
        case Value::Sort::real: return fmt::format("{}", value.real);
        case Value::Sort::constructed: return value.bytes;
    }
    return "?";
}

inline std::string describe_components(const Type& type) {
    std::string text = "{";
    bool marker = false;
    for (const Component& component : type.components) {
        if (component.addition && !marker) text += " ...";
        marker |= component.addition;
        if (component.opens_group) text += " [[";
        text += " " + component.name + ": " + describe(*component.type);
        if (component.presence == Presence::optional) text += " OPTIONAL";
        if (component.presence == Presence::defaulted)
            text += " DEFAULT " + describe(*component.default_value);
        if (component.closes_group) text += " ]]";
        text += ";";
    }
    return text + (type.extensible && !marker ? " ... }" : " }");
}

inline std::string describe_alternatives(const Type& type) {
    std::string text = "CHOICE {";
    for (const Alternative& alternative : type.alternatives) {
        text += fmt::format(" {}{}: {};", alternative.addition ? "+" : "", alternative.name,
                            describe(*alternative.type));
    }
    return text + (type.extensible ? " ... }" : " }");
}

inline std::string describe_items(const Type& type) {
    std::string text = "ENUMERATED {";
    for (const Item& item : type.items) {
        text += fmt::format(" {}{}({})", item.addition ? "+" : "", item.name, item.value.str());
    }
    return text + (type.extensible ? " ... }" : " }");
}

inline std::string describe(const ObjectSet& set) {
    std::string text = set.name + "{";
    for (const auto& row : set.rows) {
        text += " <";
        for (const RowEntry& entry : row) {
            text += entry.value  ? " " + describe(*entry.value)
                    : entry.type ? " " + describe(*entry.type)
                                 : " -";
        }
        text += " >";
    }
    return text + (set.extensible ? " ... }" : " }");
}

inline std::string describe_open_type(const Type& type) {
    if (!type.table) return "OPEN";
    std::string text =
        fmt::format("OPEN column {} of {}", type.table->column, describe(*type.table->object_set));
    for (const Selector& selector : type.table->selectors) {
        text += fmt::format(" by {} up", selector.levels_up);
        for (int index : selector.path) text += fmt::format(" .{}", index);
        text += fmt::format(" = column {}", selector.column);
    }
    return text;
}

inline std::string describe_string(const Type& type) {
    static const char* kNames[] = {"Numeric", "Printable", "Visible", "IA5",     "BMP",     "Universal",
                                   "UTF8",    "General",   "Graphic", "Teletex", "Videotex"};
    std::string text = kNames[static_cast<int>(type.string_kind)] + describe(type.bounds);
    for (const CodeRange& range : type.alphabet) text += fmt::format(" {:X}-{:X}", range.first, range.last);
    return text;
}

inline std::string describe_kind(const Type& type) {
    switch (type.kind) {
        case Kind::sequence: return "SEQUENCE " + describe_components(type);
        case Kind::set: return "SET " + describe_components(type);
        case Kind::sequence_of: return "SEQUENCE" + describe(type.bounds) + " OF " + describe(*type.element);
        case Kind::set_of: return "SET" + describe(type.bounds) + " OF " + describe(*type.element);
        case Kind::choice: return describe_alternatives(type);
        case Kind::integer: return "INTEGER" + describe(type.bounds);
        case Kind::boolean: return "BOOLEAN";
        case Kind::bit_string: return "BITS" + describe(type.bounds);
        case Kind::octet_string: return "OCTETS" + describe(type.bounds);
        case Kind::enumerated: return describe_items(type);
        case Kind::null: return "NULL";
        case Kind::object_identifier: return "OID";
        case Kind::relative_oid: return "RELATIVE-OID";
        case Kind::real: return "REAL";
        case Kind::char_string: return describe_string(type);
        case Kind::open_type: return describe_open_type(type);
        case Kind::reference: return type.target->name;
    }
    return "?";
}

inline std::string describe(const Type& type) {
    std::string text = describe_kind(type);
    if (type.universal_tag) text += fmt::format(" tag {}", *type.universal_tag);
    // Automatic ones are told where they are explicit for the sake of a parameter.
    for (const Tag& tag : type.tags)
        if (!tag.is_automatic || (tag.is_explicit && tag.on_parameter))
            text += " " + tag_text(tag.word) + (tag.is_explicit ? " EXPLICIT" : "");
    if (type.contained) text += " CONTAINING " + describe(*type.contained);
    for (const NamedNumber& named : type.named_numbers)
        text += fmt::format(" {}={}", named.name, named.value.str());
    if (type.from) text += " from " + type.from->name;
    if (type.fixed_from) text += fmt::format(" as {}.{}", type.fixed_from->name, type.fixed_column);
    return text;
}

}  // namespace orlentac::test
