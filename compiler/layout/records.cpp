// SPDX-License-Identifier: Apache-2.0
#include "compiler/layout/records.hpp"

#include <algorithm>

#include "compiler/model/tags.hpp"

namespace orlentac {

namespace {

constexpr Extent kWord = {4, 4};
constexpr Extent kPointer = {8, 8};
constexpr Extent kDouble = {8, 8};
constexpr Extent kBlock = {16, 8};  // pointer and length
constexpr Extent kBigInteger = {24, 8};
constexpr Extent kOpenValue = {24, 8};
constexpr Extent kNull = {1, 1};

uint64_t round_up(uint64_t n, uint64_t align) { return (n + align - 1) / align * align; }

// What a component, alternative or element takes up in the record around it.
Extent part_extent(Records& records, const Type& type) {
    if (records.references->indirect.contains(&type)) return kPointer;
    return extent_of(records, *resolved(&type));
}

}  // namespace

bool is_big_integer(const Type& type) {
    if (!type.bounds.lower || !type.bounds.upper) return true;
    const Number &lower = *type.bounds.lower, &upper = *type.bounds.upper;
    bool is_signed = lower >= INT32_MIN && upper <= INT32_MAX;
    bool is_unsigned = lower >= 0 && upper <= UINT32_MAX;
    return !is_signed && !is_unsigned;
}

bool default_fits(const Component& component) {
    if (component.presence != Presence::defaulted) return false;
    const Type& type = *resolved(component.type);
    // A big default must be that of the component's own descriptor, with no tag before it.
    if (type.kind == Kind::integer) return !is_big_integer(type) || wire_tags(*component.type).size() == 1;
    return type.kind == Kind::boolean || type.kind == Kind::enumerated;
}

bool has_presence_word(const Component& component) {
    if (component.presence == Presence::mandatory) return component.addition;
    return !default_fits(component);
}

SequenceRecord sequence_record(Records& records, const Type& type) {
    SequenceRecord record;
    uint64_t end = 0;
    auto place = [&](Extent extent) {
        uint64_t offset = round_up(end, extent.align);
        end = offset + extent.size;
        record.extent.align = std::max(record.extent.align, extent.align);
        return offset;
    };
    for (const Component& component : type.components) {
        Slot slot;
        if (has_presence_word(component)) slot.presence = place(kWord);
        if (resolved(component.type)->kind != Kind::null)
            slot.offset = place(part_extent(records, *component.type));
        record.slots.push_back(slot);
    }
    // Even an empty record needs an address.
    record.extent.size = std::max<uint64_t>(round_up(end, record.extent.align), 1);
    return record;
}

ChoiceRecord choice_record(Records& records, const Type& type) {
    Extent payload = {0, kWord.align};
    for (const Alternative& alternative : type.alternatives) {
        if (resolved(alternative.type)->kind == Kind::null) continue;
        Extent extent = part_extent(records, *alternative.type);
        payload.size = std::max(payload.size, extent.size);
        payload.align = std::max(payload.align, extent.align);
    }
    ChoiceRecord record;
    record.payload = round_up(kWord.size, payload.align);
    record.extent = {round_up(record.payload + payload.size, payload.align), payload.align};
    return record;
}

Extent extent_of(Records& records, const Type& type) {
    switch (type.kind) {
        case Kind::sequence:
        case Kind::set:
        case Kind::choice: {
            auto known = records.known.find(&type);
            if (known != records.known.end()) return known->second;
            Extent extent = type.kind == Kind::choice ? choice_record(records, type).extent
                                                      : sequence_record(records, type).extent;
            return records.known[&type] = extent;
        }
        case Kind::integer: return is_big_integer(type) ? kBigInteger : kWord;
        case Kind::boolean:
        case Kind::enumerated: return kWord;
        case Kind::null: return kNull;
        case Kind::real: return kDouble;
        case Kind::sequence_of:
        case Kind::set_of:
        case Kind::bit_string:
        case Kind::octet_string:
        case Kind::object_identifier:
        case Kind::relative_oid:
        case Kind::char_string: return kBlock;
        case Kind::open_type: return kOpenValue;
        case Kind::reference: return extent_of(records, *resolved(&type));
    }
    return {};
}

}  // namespace orlentac
