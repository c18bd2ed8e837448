// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "compiler/layout/builder.hpp"

namespace orlentac {

namespace {

// ---- words ------------------------------------------------------------------------------------------------

Word table_word(const Table* table) { return {.sort = Word::Sort::table, .table = table}; }
Word text_word(std::string text) { return {.sort = Word::Sort::text, .text = std::move(text)}; }
// A row or a default may have nothing to point at.
Word table_or_zero(const Table* table) { return table ? table_word(table) : number_word(0); }

Word word0_of(uint32_t kind, uint32_t flags, uint32_t tag) {
    uint32_t low = kind << ASN1_WORD0_KIND_SHIFT | flags | tag;
    return number_word(static_cast<uint64_t>(static_cast<int64_t>(static_cast<int32_t>(low))));
}

uint32_t flag_if(bool condition, uint32_t flag) { return condition ? flag : 0; }

uint32_t kind_number(Kind kind) {
    switch (kind) {
        case Kind::sequence: return ASN1_KIND_SEQUENCE;
        case Kind::sequence_of: return ASN1_KIND_SEQUENCE_OF;
        case Kind::set: return ASN1_KIND_SET;
        case Kind::set_of: return ASN1_KIND_SET_OF;
        case Kind::choice: return ASN1_KIND_CHOICE;
        case Kind::integer: return ASN1_KIND_INTEGER;
        case Kind::boolean: return ASN1_KIND_BOOLEAN;
        case Kind::bit_string: return ASN1_KIND_BIT_STRING;
        case Kind::octet_string: return ASN1_KIND_OCTET_STRING;
        case Kind::enumerated: return ASN1_KIND_ENUMERATED;
        case Kind::null: return ASN1_KIND_NULL;
        case Kind::object_identifier: return ASN1_KIND_OBJECT_IDENTIFIER;
        case Kind::relative_oid: return ASN1_KIND_RELATIVE_OID;
        case Kind::real: return ASN1_KIND_REAL;
        case Kind::char_string: return ASN1_KIND_CHAR_STRING;
        case Kind::open_type: return ASN1_KIND_ANY;
        case Kind::reference: break;
    }
    return ASN1_KIND_TAGGED;
}

// ---- tables by kind: what stands between word 0 and the name ----------------------------------------------

void add_name(Table& table) {
    if (!table.name.empty()) table.words.push_back(text_word(table.name));
}

Word default_word(Builder& builder, Table& table, const Component& component) {
    const Type& type = *resolved(component.type);
    const Value& value = *component.default_value;
    if (type.kind == Kind::boolean) return number_word(value.boolean);
    if (type.kind == Kind::enumerated) return number_word(value.item);
    if (!is_big_integer(type)) return number_word(pattern(value.number));
    return object_word(add_number(builder, table, value.number, type));
}

void add_component(Builder& builder, Table& table, const Component& component, const Slot& slot) {
    bool has_default = default_fits(component);
    // A runtime that sets a big default looks at the component's own descriptor, so a tag must not stand before it.
    bool big_default = has_default && extent_of(builder.records, *component.type).size > 4;
    Part part = {component.name, component.type, type_table(builder, component.type, big_default)};
    part.offset_word = table.words.size();
    part.extra_word = table.words.size() + 2;
    part.has_presence = slot.presence.has_value();

    uint32_t option = has_default                                 ? ASN1_OPTION_DEFAULT
                      : component.presence == Presence::mandatory ? ASN1_OPTION_MANDATORY
                                                                  : ASN1_OPTION_OPTIONAL;
    if (slot.offset > ASN1_FIELD_OFFSET_MASK)
        error(builder.diags, component.place, "component {} lies too far in its record", component.name);
    uint32_t flags = static_cast<uint32_t>(slot.offset) | option << ASN1_FIELD_OPTION_SHIFT |
                     flag_if(component.addition, ASN1_FIELD_ADDITION) |
                     flag_if(component.opens_group, ASN1_FIELD_OPENS_GROUP) |
                     flag_if(component.closes_group, ASN1_FIELD_CLOSES_GROUP);
    table.words.push_back(number_word(flags));
    table.words.push_back(table_word(part.table));
    table.words.push_back(has_default ? default_word(builder, table, component)
                                      : number_word(slot.presence.value_or(0)));
    table.words.push_back(text_word(component.name));
    table.parts.push_back(std::move(part));
}

void add_sequence(Builder& builder, Table& table, const Type& type) {
    SequenceRecord record = sequence_record(builder.records, type);
    table.words.push_back(number_word(type.components.size()));
    table.words.push_back(number_word(record.extent.size));
    for (size_t i = 0; i < type.components.size(); i++)
        add_component(builder, table, type.components[i], record.slots[i]);
    add_name(table);
}

template <typename Element>
size_t addition_count(const std::vector<Element>& list) {
    return std::count_if(list.begin(), list.end(), [](const Element& element) { return element.addition; });
}

void add_choice(Builder& builder, Table& table, const Type& type) {
    auto additions = addition_count(type.alternatives);
    ChoiceRecord record = choice_record(builder.records, type);
    table.words.push_back(number_word(type.alternatives.size() - additions));
    if (type.extensible) table.words.push_back(number_word(additions));
    table.words.push_back(number_word(record.extent.size));
    table.words.push_back(number_word(0));
    table.words.push_back(number_word(record.payload));
    for (const Alternative& alternative : type.alternatives) {
        Part part = {alternative.name, alternative.type, type_table(builder, alternative.type)};
        table.words.push_back(table_word(part.table));
        table.words.push_back(text_word(alternative.name));
        table.parts.push_back(std::move(part));
    }
    add_name(table);
}

// A bound from 64K up makes no difference on the wire (X.691 clause 11.9.3.5), and readers count in 32 bits, signed.
bool has_upper_size(const Type& type) {
    const auto& [lower, upper, extensible] = type.bounds;
    return upper && (*upper <= INT32_MAX || lower == upper);
}

// Lower bound always, upper bound if there is one.
void add_size(Builder& builder, Table& table, const Type& type) {
    auto add = [&](const Number& bound) {
        if (bound < 0 || bound > UINT32_MAX)
            error(builder.diags, type.place, "a size of {} is beyond 4294967295", bound.str());
        else
            table.words.push_back(number_word(static_cast<uint32_t>(bound)));
    };
    add(type.bounds.lower.value_or(0));
    if (has_upper_size(type)) add(*type.bounds.upper);
}

void add_list(Builder& builder, Table& table, const Type& type) {
    Part part = {type.element_name, type.element, type_table(builder, type.element)};
    add_size(builder, table, type);
    table.words.push_back(number_word(extent_of(builder.records, *type.element).size));
    table.words.push_back(table_word(part.table));
    table.words.push_back(number_word(0));
    table.parts.push_back(std::move(part));
    add_name(table);
}

void add_integer(Builder& builder, Table& table, const Type& type) {
    for (const auto& bound : {type.bounds.lower, type.bounds.upper}) {
        if (!bound) continue;
        if (is_big_integer(type))
            table.words.push_back(object_word(add_number(builder, table, *bound, type)));
        else
            table.words.push_back(number_word(pattern(*bound)));
    }
    add_name(table);
}

void add_octets_or_bits(Builder& builder, Table& table, const Type& type) {
    const Table* contained = type.contained ? type_table(builder, type.contained) : nullptr;
    add_size(builder, table, type);
    add_name(table);
    if (!contained) return;
    Object object;
    object.words = {number_word(ASN1_CONSTRAINT_CONTAINING), table_word(contained)};
    table.words.push_back(object_word(add_object(builder, table, std::move(object))));
}

std::vector<CodeRange> default_alphabet(StringKind kind) {
    switch (kind) {
        case StringKind::numeric: return {{' ', ' '}, {'0', '9'}};
        case StringKind::printable:
            return {{' ', ' '}, {'\'', ')'}, {'+', ':'}, {'=', '='}, {'?', '?'}, {'A', 'Z'}, {'a', 'z'}};
        case StringKind::visible: return {{0x20, 0x7E}};
        case StringKind::bmp: return {{0, 0xFFFF}};
        case StringKind::universal: return {{0, UINT32_MAX}};
        default: return {{0, 0x7F}};
    }
}

// Strings whose characters all have the same width carry bounds and alphabet; the others have neither.
bool has_fixed_width(StringKind kind) { return kind < StringKind::utf8; }

void add_char_string(Builder& builder, Table& table, const Type& type) {
    table.words.push_back(number_word(static_cast<uint32_t>(type.string_kind)));
    if (has_fixed_width(type.string_kind)) {
        add_size(builder, table, type);
        std::vector<CodeRange> ranges =
            type.alphabet.empty() ? default_alphabet(type.string_kind) : type.alphabet;
        table.words.push_back(number_word(ranges.size()));
        for (CodeRange range : ranges) {
            table.words.push_back(number_word(range.first));
            table.words.push_back(number_word(range.last));
        }
    }
    add_name(table);
}

// Whether some item's number is not its place in the list.
bool has_value_table(const Type& type) {
    for (size_t i = 0; i < type.items.size(); i++)
        if (type.items[i].value != i) return true;
    return false;
}

void add_enumerated(Builder& builder, Table& table, const Type& type) {
    auto additions = addition_count(type.items);
    table.words.push_back(number_word(type.items.size() - additions));
    if (type.extensible) table.words.push_back(number_word(additions));
    for (const Item& item : type.items) table.words.push_back(text_word(item.name));
    add_name(table);
    if (!has_value_table(type)) return;

    std::vector<std::pair<int64_t, uint64_t>> sorted;
    for (const Item& item : type.items) {
        if (item.value < INT32_MIN || item.value > INT32_MAX)
            error(builder.diags, item.place, "item {} has a number that does not fit 32 bits", item.name);
        table.words.push_back(number_word(pattern(item.value)));
        sorted.emplace_back(static_cast<int64_t>(item.value), sorted.size());
    }
    std::sort(sorted.begin(), sorted.end());
    for (auto [value, index] : sorted) {
        table.words.push_back(number_word(static_cast<uint32_t>(value)));
        table.words.push_back(number_word(index));
    }
}

// ---- open types -------------------------------------------------------------------------------------------

// A value that no constant can hold is left out, unless it is a key.
Word row_word(Builder& builder, Table& table, const RowEntry& entry, const ClassField& field, bool is_key) {
    if (field.is_type_field) return table_or_zero(type_table(builder, entry.type));
    if (!entry.value) return number_word(0);
    const Type& type = *resolved(field.type);
    if (is_constant(builder, *entry.value, type))
        return object_word(add_value(builder, table, *entry.value, type));
    if (is_key)
        error(builder.diags, entry.value->place, "a value of {} is not supported as a key (X.682 clause 10)",
              kind_name(type.kind));
    return number_word(0);
}

Word rows_word(Builder& builder, Table& table, const TableConstraint& constraint) {
    const ObjectSet& set = *constraint.object_set;
    if (set.rows.empty()) return number_word(0);
    auto is_key = [&](size_t column) {
        return std::any_of(
            constraint.selectors.begin(), constraint.selectors.end(),
            [&](const Selector& selector) { return static_cast<size_t>(selector.column) == column; });
    };
    Object rows;
    rows.sort = Object::Sort::rows;
    for (const auto& row : set.rows)
        for (size_t i = 0; i < row.size(); i++)
            rows.words.push_back(row_word(builder, table, row[i], set.object_class->fields[i], is_key(i)));
    return object_word(add_object(builder, table, std::move(rows)));
}

void add_open_type(Builder& builder, Table& table, const Type& type) {
    add_name(table);
    if (!type.table) return;
    const TableConstraint& constraint = *type.table;
    Object object;
    object.words = {number_word(ASN1_CONSTRAINT_TABLE),
                    table_word(builder.classes[constraint.object_set->object_class]),
                    number_word(constraint.column),
                    rows_word(builder, table, constraint),
                    number_word(constraint.object_set->rows.size()),
                    number_word(constraint.selectors.size())};
    for (const Selector& selector : constraint.selectors) {
        object.words.push_back(number_word(selector.levels_up));
        for (int index : selector.path) object.words.push_back(number_word(index));
        object.words.back().number |= ASN1_SELECTOR_LAST;
        object.words.push_back(number_word(selector.column));
    }
    table.words.push_back(object_word(add_object(builder, table, std::move(object))));
}

// ---- any table --------------------------------------------------------------------------------------------

uint32_t flags_of(const Type& type) {
    switch (type.kind) {
        case Kind::sequence:
        case Kind::set:
        case Kind::choice: return flag_if(type.extensible, ASN1_WORD0_EXTENSIBLE);
        case Kind::enumerated:
            return flag_if(type.extensible, ASN1_WORD0_EXTENSIBLE) |
                   flag_if(has_value_table(type), ASN1_WORD0_VALUE_TABLE);
        case Kind::open_type: return flag_if(type.table.has_value(), ASN1_WORD0_CONSTRAINED);
        default: break;
    }
    bool has_upper = type.kind == Kind::integer ? type.bounds.upper.has_value() : has_upper_size(type);
    uint32_t upper =
        flag_if(has_upper, ASN1_WORD0_HAS_UPPER) | flag_if(type.bounds.extensible, ASN1_WORD0_EXTENSIBLE);
    switch (type.kind) {
        case Kind::integer:
            return upper | flag_if(type.bounds.lower.has_value(), ASN1_WORD0_HAS_LOWER) |
                   flag_if(is_big_integer(type), ASN1_WORD0_BIG);
        case Kind::char_string: return has_fixed_width(type.string_kind) ? upper | ASN1_WORD0_HAS_LOWER : 0;
        case Kind::sequence_of:
        case Kind::set_of: return upper | ASN1_WORD0_HAS_LOWER;
        case Kind::bit_string:
        case Kind::octet_string:
            return upper | ASN1_WORD0_HAS_LOWER | flag_if(type.contained, ASN1_WORD0_CONSTRAINED);
        default: return 0;
    }
}

}  // namespace

void fill_table(Builder& builder, Table& table, const Type& type, uint32_t tag) {
    table.type = &type;
    table.kind = kind_number(type.kind);
    table.words.push_back(
        word0_of(table.kind, flags_of(type) | flag_if(!table.name.empty(), ASN1_WORD0_HAS_NAME), tag));
    switch (type.kind) {
        case Kind::sequence:
        case Kind::set: return add_sequence(builder, table, type);
        case Kind::sequence_of:
        case Kind::set_of: return add_list(builder, table, type);
        case Kind::choice: return add_choice(builder, table, type);
        case Kind::integer: return add_integer(builder, table, type);
        case Kind::bit_string:
        case Kind::octet_string: return add_octets_or_bits(builder, table, type);
        case Kind::enumerated: return add_enumerated(builder, table, type);
        case Kind::char_string: return add_char_string(builder, table, type);
        case Kind::open_type: return add_open_type(builder, table, type);
        default: return add_name(table);
    }
}

void fill_tagged(Table& table, const Table* inner, const Type& type, uint32_t flags, uint32_t tag) {
    table.type = &type;
    table.kind = ASN1_KIND_TAGGED;
    flags |= flag_if(!table.name.empty(), ASN1_WORD0_HAS_NAME);
    table.words = {word0_of(ASN1_KIND_TAGGED, flags, tag), table_word(inner)};
    table.parts = {{"", resolved(&type), inner}};
    add_name(table);
}

void fill_class(Builder& builder, Table& table, const ObjectClass& object_class) {
    table.kind = ASN1_KIND_OBJECT_CLASS;
    table.words.push_back(word0_of(ASN1_KIND_OBJECT_CLASS, ASN1_WORD0_HAS_NAME, 0));
    table.words.push_back(number_word(object_class.fields.size()));
    for (const ClassField& field : object_class.fields) {
        const Table* type = type_table(builder, field.type);
        bool has_default =
            field.default_value && is_constant(builder, *field.default_value, *resolved(field.type));
        const Object* value =
            has_default ? add_value(builder, table, *field.default_value, *resolved(field.type)) : nullptr;
        table.words.push_back(
            number_word(field.is_type_field ? ASN1_CLASS_FIELD_TYPE : ASN1_CLASS_FIELD_VALUE));
        table.words.push_back(table_or_zero(type));
        table.words.push_back(value ? object_word(value) : number_word(0));
        table.words.push_back(text_word(field.name));
    }
    add_name(table);
}

}  // namespace orlentac
