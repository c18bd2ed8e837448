// SPDX-License-Identifier: Apache-2.0
#include "tests/roundtrip/values.hpp"

#include <gtest/gtest.h>
#include <orlenta/catalogue.h>
#include <orlenta/memory.h>
#include <orlenta/random.h>
#include <orlenta/type_info.h>

#include <deque>
#include <map>
#include <string>
#include <unordered_set>

#include "cli/references.hpp"
#include "core/descriptor.hpp"
#include "tests/support/universal_types.hpp"

namespace orlenta::test {

// Kinds that no message set uses, so that they go through as well.
static constexpr asn1_word chars(uint32_t tag) { return head(ASN1_KIND_CHAR_STRING, kLower, tag); }
static const asn1_word kSomeBmp[] = {chars(30), num(ASN1_STRING_BMP), num(0), num(1), num(0), num(0xFFFF)};
static const asn1_word kSomeUniversal[] = {
    chars(28), num(ASN1_STRING_UNIVERSAL), num(0), num(2), num(0x20), num(0x7E), num(0x1F300), num(0x1F5FF)};
static const asn1_word kGeneral[] = {head(ASN1_KIND_CHAR_STRING, 0, 27), num(ASN1_STRING_GENERAL)};
static uint32_t limbs_of_2_32_and_5[] = {5, 1};
static uint32_t limbs_of_200[] = {200};
static const asn1_integer kZero = {}, k2To32And5 = {limbs_of_2_32_and_5, 2, 2, 0},
                          k200 = {limbs_of_200, 1, 1, 0};
static const asn1_word kBigRange[] = {head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_BIG, 2), big(&kZero),
                                      big(&k2To32And5)};
static const asn1_word kBigLower[] = {head(ASN1_KIND_INTEGER, kLower | ASN1_WORD0_BIG, 2), big(&k2To32And5)};
template <const asn1_integer* low, const asn1_integer* high, uint32_t flags = 0>
static const asn1_word kBigFrom[] = {head(ASN1_KIND_INTEGER, kBounds | ASN1_WORD0_BIG | flags, 2), big(low),
                                     big(high)};
template <uint32_t type, uint32_t first, uint32_t last>
static const asn1_word kLetters[] = {chars(22), num(type), num(0), num(1), num(first), num(last)};
template <uint32_t low, uint32_t high, uint32_t flags = 0>
static const asn1_word kOctetsFrom[] = {head(ASN1_KIND_OCTET_STRING, kBounds | flags, 4), num(low),
                                        num(high)};
static const asn1_word kListOfAny[] = {head(ASN1_KIND_SEQUENCE_OF, 0, 16), num(24), ref(kAny), num(0)};
// clang-format off
static const asn1_word kDigits[] = {
    head(ASN1_KIND_CHAR_STRING, kBounds, 18), num(ASN1_STRING_NUMERIC), num(0), num(9), num(1), num('0'), num('9')};
static const asn1_word kDefaults[] = {
    head(ASN1_KIND_SEQUENCE, kExt, 16), num(2), num(40),
    field(0, ASN1_OPTION_DEFAULT), ref(kBig), big(&k2To32And5), txt("a"),
    field(32, ASN1_OPTION_OPTIONAL), ref(kTagged<0, kBooleans, ASN1_WORD0_INDIRECT>), num(24), txt("b"),
};
static const asn1_word kPlainSet[] = {
    head(ASN1_KIND_SET, 0, 17), num(3), num(64),
    field(8, ASN1_OPTION_OPTIONAL), ref(kReal), num(0), txt("a"),
    field(16), ref(kTagged<0, kSomeBmp>), num(0), txt("b"),
    field(32), ref(kExplicitChoice), num(0), txt("c"),
};
// SET OF at most one, since DER sorts them; an indirect component without a tag of its own.
static const asn1_word kSetOfOne[] = {head(ASN1_KIND_SET_OF, kBounds, 17), num(0), num(1), num(16), ref(kOctets), num(0)};
static const asn1_word kPointer[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT), ref(kSetOfOne)};
static const asn1_word kTagsInside[] = {
    head(ASN1_KIND_SET, kExt, 17), num(3), num(56),
    field(0), ref(kPointer), num(0), txt("a"),
    field(8), ref(kTaggedChoice), num(0), txt("b"),
    field(40, ASN1_OPTION_OPTIONAL, kAddition), ref(kTagged<2, kOctets>), num(32), txt("c"),
};
#define kind(type) {#type, "", type}
static const TableEntry kKinds[] = {
    kind(kBig), kind(kBigRange), kind(kBigLower), kind(kDigits), kind(kDefaults), kind(kReal), kind(kRelativeOid), kind(kAny), kind(kSomeBmp), kind(kSomeUniversal), kind(kGeneral),
    kind(kPlainSet), kind(kRecord), kind(kChoice), kind(kOuterChoice), kind(kTaggedChoice),
    kind(kOpenRecord<kOpen>), kind(kOpenRecord<kTaggedOpen>),
    kind((kBigFrom<&kZero, &k200>)), kind((kBigFrom<&kZero, &kZero>)), kind((kBigFrom<&k200, &k2To32And5, kExt>)),
    kind((kLetters<ASN1_STRING_IA5, 'A', 'A'>)), kind((kLetters<ASN1_STRING_IA5, '0', '1'>)),
    kind((kLetters<ASN1_STRING_BMP, 0, 255>)), kind((kOctetsFrom<2, 70000>)), kind((kOctetsFrom<0, 70000, kExt>)),
    kind((kOctetsFrom<1, 3000000000>)), kind(kListOfAny), kind(kTagsInside),
};
#undef kind
// clang-format on

// What the catalogue has of a region, and behind that all to which it leads.
static std::vector<TableEntry> tables_of(std::string_view region) {
    static std::deque<std::string> names;
    std::vector<TableEntry> tables;
    std::unordered_set<const asn1_type_desc*> seen;
    const orlenta_catalogue* catalogue = orlenta_catalogue_builtin();
    orlenta_type_entry entry;
    for (size_t i = 0; orlenta_catalogue_get(catalogue, i, &entry) == 0; ++i)
        if (entry.region == region && seen.insert(entry.type).second)
            tables.push_back({entry.table, entry.name, entry.type});
    for (size_t i = 0; i < tables.size(); ++i)
        for (const asn1_type_desc* type : cli::referred_types(tables[i].type)) {
            if (!seen.insert(type).second) continue;
            names.push_back(std::to_string(tables.size()) + "th in place");
            tables.push_back({names.back().c_str(), "", type});
        }
    return tables;
}

// Statics of the function: tests are instantiated before main().
std::span<const Region> all_regions() {
    static std::deque<std::vector<TableEntry>> tables;
    static const std::vector<Region> regions = [] {
        std::vector<Region> all = {{"Kinds", kKinds}};
        const orlenta_catalogue* catalogue = orlenta_catalogue_builtin();
        for (size_t i = 0; i < orlenta_catalogue_region_count(catalogue); ++i) {
            const char* name = orlenta_catalogue_region(catalogue, i);
            all.push_back({name, tables.emplace_back(tables_of(name))});
        }
        return all;
    }();
    return regions;
}

const asn1_type_desc* find_type(std::string_view region_name, std::string_view name) {
    for (const Region& region : all_regions()) {
        for (const TableEntry& entry : region.entries) {
            if (region.name == region_name && entry.name == name) return entry.type;
        }
    }
    return nullptr;
}

std::vector<TableEntry> roots_of(const Region& region) {
    std::unordered_set<const asn1_type_desc*> referred;
    for (const TableEntry& entry : region.entries)
        for (const asn1_type_desc* type : cli::referred_types(entry.type))
            if (type != entry.type) referred.insert(type);
    std::vector<TableEntry> roots;
    for (const TableEntry& entry : region.entries)
        if (kind_of(entry.type) != ASN1_KIND_OBJECT_CLASS && !referred.contains(entry.type))
            roots.push_back(entry);
    return roots;
}

uint32_t seed_of(const TableEntry& entry, uint32_t round) {
    uint32_t hash = 0x811C9DC5 + round * 0x9E3779B9;
    for (const char* c = entry.table; *c; ++c) hash = (hash ^ static_cast<uint8_t>(*c)) * 0x01000193;
    return hash;
}

// ---- open types -------------------------------------------------------------------------------------------

static bool resolve_open_types(const asn1_type_desc* type, void* value, const asn1_parent_frame* frame,
                               uint32_t seed);

// Puts the key of one of the table's rows into the enclosing record, so that the open type has a type.
static void choose_key(const asn1_table_constraint* table, const asn1_parent_frame* frame, uint32_t seed) {
    const asn1_word* selector = selectors_of(table);
    ASSERT_EQ(low32(table->selector_count), 1u);
    ASSERT_EQ(selector[0].number, 0u) << "levels to go up";
    ASSERT_EQ(selector[1].number, ASN1_SELECTOR_LAST) << "path: the first component";
    uint32_t columns = class_field_count(table->object_class.type);
    const asn1_word* chosen = table->rows.type + seed % low32(table->row_count) * columns;
    const asn1_field* key = components(frame->desc);
    void* place = field_value(key, const_cast<void*>(frame->value));
    asn1_free_value_struct(field_type(key), place);
    ASSERT_EQ(asn1_copy_value(field_type(key), place, chosen[low32(selector[2])].address), 0);
}

static bool resolve_open_type(const asn1_type_desc* type, asn1_open_value* open,
                              const asn1_parent_frame* frame, uint32_t seed) {
    const asn1_table_constraint* table = table_constraint_of(type);
    if (!frame || !table || low32(table->row_count) == 0) return false;
    const asn1_type_desc* actual = asn1_get_constrained_type(frame, type);
    if (!actual) {
        choose_key(table, frame, seed);
        actual = asn1_get_constrained_type(frame, type);
    }
    if (!actual) return false;
    asn1_free(open->data);
    *open = {actual, asn1_random(actual, seed), 0};
    return resolve_open_types(actual, open->data, frame, seed);
}

static bool resolve_in_sequence(const asn1_type_desc* type, void* record, const asn1_parent_frame* parent,
                                uint32_t seed) {
    asn1_parent_frame frame = {parent, type, record};
    bool complete = true;
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = components(type) + i;
        if (is_presence_flagged(field) && presence_word(field, record) == 0) continue;
        complete &= resolve_open_types(field_type(field), field_value(field, record), &frame, seed + i);
    }
    return complete;
}

// True if no raw bytes are left.
static bool resolve_open_types(const asn1_type_desc* type, void* value, const asn1_parent_frame* frame,
                               uint32_t seed) {
    for (; kind_of(type) == ASN1_KIND_TAGGED; type = tagged_inner(type)) {
        if (is_indirect(type)) value = load_pointer(value);
    }
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return resolve_in_sequence(type, value, frame, seed);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: {
            list_layout list = list_of(type);
            auto* array = static_cast<asn1_array*>(value);
            bool complete = true;
            for (uint64_t i = 0; i < array->count; ++i) {
                complete &= resolve_open_types(list.element, at_offset(array->data, i * list.stride), frame,
                                               seed + static_cast<uint32_t>(i));
            }
            return complete;
        }
        case ASN1_KIND_CHOICE: {
            choice_layout choice = choice_of(type);
            return resolve_open_types(alternative_type(choice, selector_of(choice, value)),
                                      at_offset(value, choice.payload_offset), frame, seed);
        }
        case ASN1_KIND_ANY: return resolve_open_type(type, static_cast<asn1_open_value*>(value), frame, seed);
        default: return true;
    }
}

Sample make_sample(const asn1_type_desc* type, uint32_t seed) {
    Value value(asn1_random(type, seed), {type});
    bool complete = resolve_open_types(type, value.get(), nullptr, seed);
    return {std::move(value), !complete};
}

// ---- recursion --------------------------------------------------------------------------------------------

static bool meets_itself(const asn1_type_desc* type, std::map<const asn1_type_desc*, int>& state) {
    enum { kUnseen, kOpen, kPlain, kRecursive };
    int& mine = state[type];
    if (mine != kUnseen) return mine != kPlain;
    mine = kOpen;
    bool found = false;
    for (const asn1_type_desc* part : cli::referred_types(type)) found |= meets_itself(part, state);
    mine = found ? kRecursive : kPlain;
    return found;
}

bool is_recursive(const asn1_type_desc* type) {
    static std::map<const asn1_type_desc*, int> state;
    return meets_itself(type, state);
}

}  // namespace orlenta::test
