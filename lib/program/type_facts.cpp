// SPDX-License-Identifier: Apache-2.0
// What the builder asks of a type. A type is looked at once; one that holds itself counts, while it is being looked at,
// as one of everything.
#include "per/widths.hpp"
#include "program/build.hpp"

namespace orlenta::program {

// ---- the map ------------------------------------------------------------------------------------------------

static uint64_t hash_of(const asn1_word* key) {
    return (reinterpret_cast<uintptr_t>(key) * UINT64_C(0x9E3779B97F4A7C15)) >> 32;
}

static map_entry* slot_of(const address_map& map, const asn1_word* key) {
    uint64_t hash = hash_of(key);
    for (;; ++hash) {
        map_entry* entry = &map.entries[hash & (map.size - 1)];
        if (!entry->key || entry->key == key) return entry;
    }
}

uint32_t find(const address_map& map, const asn1_word* key) {
    if (map.size == 0) return kNone;
    const map_entry* entry = slot_of(map, key);
    return entry->key ? entry->value : kNone;
}

static bool grow(address_map* map) {
    address_map larger = {nullptr, map->size == 0 ? 64 : map->size * 4, map->count};
    larger.entries = static_cast<map_entry*>(asn1_mallocz(larger.size * sizeof(map_entry)));
    if (!larger.entries) return false;
    for (uint64_t i = 0; i < map->size; ++i) {
        if (map->entries[i].key) *slot_of(larger, map->entries[i].key) = map->entries[i];
    }
    asn1_free(map->entries);
    *map = larger;
    return true;
}

void put(builder* b, address_map* map, const asn1_word* key, uint32_t value) {
    if (map->count * 2 >= map->size && !grow(map)) {
        b->failed = true;
        return;
    }
    *slot_of(*map, key) = {key, value};
    ++map->count;
}

static uint32_t* slot_of_type(const builder* b, const asn1_type_desc* type) {
    const type_map& map = b->type_at;
    for (uint64_t hash = hash_of(type);; ++hash) {
        uint32_t* slot = &map.slots[hash & (map.size - 1)];
        if (*slot == 0 || b->types.items[*slot - 1] == type) return slot;
    }
}

static bool grow_type_map(builder* b) {
    uint64_t size = b->type_at.size == 0 ? 128 : b->type_at.size * 4;
    uint32_t* slots = static_cast<uint32_t*>(asn1_mallocz(size * sizeof(uint32_t)));
    if (!slots) return false;
    asn1_free(b->type_at.slots);
    b->type_at = {slots, size};
    for (uint32_t i = 0; i < b->types.count; ++i) *slot_of_type(b, b->types.items[i]) = i + 1;
    return true;
}

uint32_t type_index(builder* b, const asn1_type_desc* type) {
    if (b->types.count * 2 >= b->type_at.size && !grow_type_map(b)) b->failed = true;
    if (b->failed) return 0;
    uint32_t* slot = slot_of_type(b, type);
    if (*slot != 0) return *slot - 1;
    add(b, &b->types, type);
    add(b, &b->known, {kNone, kNone, kNone});
    if (b->failed) return 0;
    *slot = static_cast<uint32_t>(b->types.count);
    return *slot - 1;
}

// ---- facts --------------------------------------------------------------------------------------------------

constexpr uint32_t kOwns = 1, kNeedsFrame = 2;

static uint32_t find_facts(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing);

// In OER the records around an open type are seen from its contents.
static uint32_t facts_of_contents(builder* b, const asn1_table_constraint* table) {
    uint32_t facts = 0;
    for (uint32_t i = 0; i < low32(table->row_count); ++i) {
        const asn1_type_desc* type = type_in_row(table, i);
        if (type) facts |= find_facts(b, type, nullptr);
    }
    return facts & kNeedsFrame;
}

static uint32_t facts_of_open_type(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing) {
    const asn1_table_constraint* table = table_constraint_of(type);
    uint32_t offset, column;
    if (!table) return kOwns;
    if (!find_simple_key(type, enclosing, &offset, &column)) return kOwns | kNeedsFrame;
    return b->octets ? kOwns | facts_of_contents(b, table) : kOwns;
}

static uint32_t facts_of_components(builder* b, const asn1_type_desc* type) {
    uint32_t facts = 0;
    for (uint32_t i = 0; i < component_count(type); ++i) {
        facts |= find_facts(b, field_type(&components(type)[i]), type);
    }
    return facts;
}

static uint32_t facts_of_alternatives(builder* b, const asn1_type_desc* type) {
    choice_layout choice = choice_of(type);
    uint32_t facts = 0;
    for (uint32_t i = 0; i < choice.total; ++i) facts |= find_facts(b, alternative_type(choice, i), nullptr);
    return facts;
}

static uint32_t find_facts_anew(builder* b, const asn1_type_desc* type) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return facts_of_components(b, type);
        case ASN1_KIND_CHOICE: return facts_of_alternatives(b, type);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return kOwns | find_facts(b, list_of(type).element, nullptr);
        case ASN1_KIND_TAGGED: return kOwns | find_facts(b, tagged_inner(type), nullptr);
        default: return kOwns;
    }
}

static uint32_t find_facts(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing) {
    type = behind_tags(type);
    if (kind_of(type) == ASN1_KIND_ANY) return facts_of_open_type(b, type, enclosing);
    if (is_flat(type)) return 0;
    uint32_t index = type_index(b, type);
    if (b->failed) return 0;
    if (b->known.items[index].facts != kNone) return b->known.items[index].facts;
    b->known.items[index].facts = kOwns | kNeedsFrame;
    uint32_t facts = find_facts_anew(b, type);
    if (!b->failed) b->known.items[index].facts = facts;
    return facts;
}

type_facts facts_of(builder* b, const asn1_type_desc* type) {
    uint32_t facts = find_facts(b, type, nullptr);
    return {(facts & kOwns) != 0, (facts & kNeedsFrame) != 0};
}

// ---- leaves -------------------------------------------------------------------------------------------------

uint32_t range_width(uint32_t range) { return range == 0 ? 0 : per::field_width(range); }

// Whether both bounds are on one side of where the comparison that the lower one asks for wraps around.
static bool are_in_order(uint32_t lower, uint32_t upper) {
    bool is_signed = static_cast<int32_t>(lower) < 0;
    return is_signed ? static_cast<int32_t>(lower) <= static_cast<int32_t>(upper) : lower <= upper;
}

leaf_form leaf_of(bool aligned, const asn1_type_desc* type) {
    uint32_t low = 0, high = 1;
    bool extensible = is_extensible(type);
    switch (kind_of(type)) {
        case ASN1_KIND_BOOLEAN: extensible = false; break;
        case ASN1_KIND_ENUMERATED:
            if (enum_of(type).root == 0) return {};
            high = enum_of(type).root - 1;
            break;
        case ASN1_KIND_INTEGER: {
            integer_bounds bounds = integer_bounds_of(type);
            if (is_big_integer(type) || !bounds.has_lower || !bounds.has_upper) return {};
            low = bounds.lower;
            high = bounds.upper;
            break;
        }
        default: return {};
    }
    uint32_t range = high - low;
    if (!are_in_order(low, high)) return {};
    per::range_form form = per::range_form_of(aligned, range);
    if (form != per::kBitField) {
        bool is_leaf = !extensible && form != per::kCountedOctets;
        return {is_leaf, true, false, low, range, form == per::kOneOctet ? 8u : 16u};
    }
    uint32_t width = range_width(range) + (extensible ? 1 : 0);
    return {width <= 32, false, extensible, low, range, width};
}

}  // namespace orlenta::program
