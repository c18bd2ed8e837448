// SPDX-License-Identifier: Apache-2.0
// Constants that tables point at: values in the layout that the library gives them.
#include <algorithm>
#include <map>

#include "compiler/layout/builder.hpp"

namespace orlentac {

Word number_word(uint64_t number) { return {.number = number}; }
Word object_word(const Object* object) { return {.sort = Word::Sort::object, .object = object}; }

uint32_t pattern(const Number& number) {
    return number < 0 ? static_cast<uint32_t>(static_cast<int64_t>(number)) : static_cast<uint32_t>(number);
}

const Object* add_object(Builder& builder, Table& table, Object object) {
    object.local = builder.next_local++;
    table.objects.push_back(&builder.out.object_pool.emplace_back(std::move(object)));
    return table.objects.back();
}

// ---- structured values ------------------------------------------------------------------------------------

namespace {

// A record under construction.
struct Image {
    Builder& builder;
    Table& table;
    std::string bytes;
    std::map<uint64_t, const Object*> pointers;  // by offset
};

void put_number(Image& image, uint64_t offset, uint64_t number, size_t size) {
    for (size_t i = 0; i < size; i++) image.bytes[offset + i] = static_cast<char>(number >> 8 * i);
}

void put_octets(Image& image, uint64_t offset, const std::string& octets) {
    if (octets.empty()) return;
    Object object;
    object.sort = Object::Sort::octets;
    object.value.bytes = octets;
    image.pointers[offset] = add_object(image.builder, image.table, std::move(object));
}

// An asn1_integer: limbs, their count, the room for them, the sign.
void put_big_integer(Image& image, uint64_t offset, const Number& number) {
    std::string limbs;
    for (Number rest = abs(number); rest != 0; rest >>= 8)
        limbs += static_cast<char>(static_cast<int>(rest & 0xFF));
    limbs.resize((limbs.size() + 3) / 4 * 4);
    put_octets(image, offset, limbs);
    put_number(image, offset + 8, limbs.size() / 4, 4);
    put_number(image, offset + 12, limbs.size() / 4, 4);
    put_number(image, offset + 16, number < 0 ? 1 : 0, 4);
}

void put_value(Image& image, uint64_t offset, const Value& value, const Type& type);

template <typename Part>
const Part* find_part(const std::vector<Part>& parts, const std::string& name) {
    auto found =
        std::find_if(parts.begin(), parts.end(), [&](const Part& part) { return part.name == name; });
    return found == parts.end() ? nullptr : &*found;
}

void put_choice(Image& image, uint64_t offset, const Value& value, const Type& type) {
    const Alternative* chosen = find_part(type.alternatives, value.members[0].name);
    put_number(image, offset, chosen - type.alternatives.data(), 4);
    uint64_t payload = choice_record(image.builder.records, type).payload;
    put_value(image, offset + payload, value.members[0].value, *resolved(chosen->type));
}

void put_sequence(Image& image, uint64_t offset, const Value& value, const Type& type) {
    SequenceRecord record = sequence_record(image.builder.records, type);
    for (size_t i = 0; i < type.components.size(); i++) {
        const Component& component = type.components[i];
        auto given = std::find_if(value.members.begin(), value.members.end(),
                                  [&](const MemberValue& member) { return member.name == component.name; });
        bool present = given != value.members.end();
        if (present && record.slots[i].presence) put_number(image, offset + *record.slots[i].presence, 1, 4);
        const Value* part = present                   ? &given->value
                            : component.default_value ? &*component.default_value
                                                      : nullptr;
        if (part) put_value(image, offset + record.slots[i].offset, *part, *resolved(component.type));
    }
}

void put_value(Image& image, uint64_t offset, const Value& value, const Type& type) {
    switch (value.sort) {
        case Value::Sort::boolean: return put_number(image, offset, value.boolean, 4);
        case Value::Sort::item: return put_number(image, offset, value.item, 4);
        case Value::Sort::number:
            if (is_big_integer(type)) return put_big_integer(image, offset, value.number);
            return put_number(image, offset, pattern(value.number), 4);
        case Value::Sort::null: return;
        case Value::Sort::bits:
        case Value::Sort::octets:
        case Value::Sort::oid:
            put_octets(image, offset, value.bytes);
            return put_number(image, offset + 8,
                              value.sort == Value::Sort::bits ? value.bit_count : value.bytes.size(), 8);
        case Value::Sort::constructed:
            return type.kind == Kind::choice ? put_choice(image, offset, value, type)
                                             : put_sequence(image, offset, value, type);
        case Value::Sort::text:
        case Value::Sort::real: return;  // no constants, at least not in records
    }
}

const Object* add_record(Builder& builder, Table& table, const Value& value, const Type& type) {
    Image image = {
        builder, table, std::string((extent_of(builder.records, type).size + 7) / 8 * 8, '\0'), {}};
    put_value(image, 0, value, type);
    Object object;
    object.sort = Object::Sort::record;
    for (uint64_t offset = 0; offset < image.bytes.size(); offset += 8) {
        uint64_t number = 0;
        for (int i = 7; i >= 0; i--)
            number = number << 8 | static_cast<unsigned char>(image.bytes[offset + i]);
        auto pointer = image.pointers.find(offset);
        object.words.push_back(pointer == image.pointers.end() ? number_word(number)
                                                               : object_word(pointer->second));
    }
    return add_object(builder, table, std::move(object));
}

}  // namespace

static bool is_member_constant(const Builder& builder, const Value& value, const Type& type) {
    if (builder.references.indirect.contains(&type) || value.sort == Value::Sort::text) return false;
    return is_constant(builder, value, *resolved(&type));
}

static bool is_record_constant(const Builder& builder, const Value& value, const Type& type) {
    bool choice = type.kind == Kind::choice;
    if (value.members.empty() || (!choice && type.kind != Kind::sequence && type.kind != Kind::set))
        return false;
    for (const auto& [name, member] : value.members) {
        const Type* part = nullptr;
        if (choice) {
            part = find_part(type.alternatives, name)->type;
        } else if (const Component* component = find_part(type.components, name)) {
            part = component->type;
        }
        if (!part || !is_member_constant(builder, member, *part)) return false;
    }
    return true;
}

bool is_constant(const Builder& builder, const Value& value, const Type& type) {
    bool is_wide = type.string_kind == StringKind::bmp || type.string_kind == StringKind::universal;
    if (value.sort == Value::Sort::real || (type.kind == Kind::char_string && is_wide)) return false;
    return value.sort != Value::Sort::constructed || is_record_constant(builder, value, type);
}

const Object* add_value(Builder& builder, Table& table, const Value& value, const Type& type) {
    if (value.sort == Value::Sort::constructed) return add_record(builder, table, value, type);
    return add_object(builder, table,
                      {.sort = Object::Sort::value, .words = {}, .value = value, .type = &type});
}

const Object* add_number(Builder& builder, Table& table, const Number& number, const Type& type) {
    Value value;
    value.sort = Value::Sort::number;
    value.number = number;
    return add_value(builder, table, value, type);
}

}  // namespace orlentac
