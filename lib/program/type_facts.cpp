// What the builder asks of a type. A type is looked at once; one that holds itself counts, while it is being looked at,
// as one of everything.
#include "per/widths.hpp"
#include "program/build.hpp"

namespace orlenta::program {

// ---- the map ------------------------------------------------------------------------------------------------

static map_entry* slot_of(const address_map& map, const asn1_word* key) {
    uint64_t hash = (reinterpret_cast<uintptr_t>(key) * UINT64_C(0x9E3779B97F4A7C15)) >> 32;
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

uint32_t type_index(builder* b, const asn1_type_desc* type) {
    uint32_t index = find(b->type_at, type);
    if (index != kNone) return index;
    index = static_cast<uint32_t>(b->types.count);
    add(b, &b->types, type);
    add(b, &b->known, {kNone, kNone, kNone});
    put(b, &b->type_at, type, index);
    return index;
}

// ---- facts --------------------------------------------------------------------------------------------------

constexpr uint32_t kOwns = 1, kNeedsFrame = 2;

static uint32_t find_facts(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing);

static uint32_t facts_of_open_type(const asn1_type_desc* type, const asn1_type_desc* enclosing) {
    uint32_t offset, column;
    bool asks = table_constraint_of(type) && !find_simple_key(type, enclosing, &offset, &column);
    return kOwns | (asks ? kNeedsFrame : 0);
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
        default: return is_flat(type) ? 0 : kOwns;
    }
}

static uint32_t find_facts(builder* b, const asn1_type_desc* type, const asn1_type_desc* enclosing) {
    type = behind_tags(type);
    if (kind_of(type) == ASN1_KIND_ANY) return facts_of_open_type(type, enclosing);
    if (leaf_of(b->aligned, type).is_leaf) return 0;
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
