// SPDX-License-Identifier: Apache-2.0
// What the smallest values of a type look like: which alternative ends soonest, and whether there is a value at all.
#include "core/open_type.hpp"
#include "random/random.hpp"

namespace orlenta::random {

// Descriptors that one search may look at, so that a type of no end can't keep it busy.
constexpr uint32_t kSearchSteps = 1 << 16;

namespace {

struct search {
    uint32_t steps;  // still to be made
    bool is_valid;   // open types must have a type
};

}  // namespace

static bool ends_within(const asn1_type_desc* type, uint32_t levels, search* search);

static bool components_end_within(const asn1_type_desc* type, uint32_t levels, search* search) {
    const asn1_field* field = components(type);
    for (const asn1_field* end = field + component_count(type); field < end; ++field) {
        bool may_be_left_out = is_presence_flagged(field) || field_option(field) == ASN1_OPTION_DEFAULT;
        if (!may_be_left_out && !ends_within(field_type(field), levels, search)) return false;
    }
    return true;
}

static bool any_alternative_ends_within(const choice_layout& choice, uint32_t levels, search* search) {
    for (uint32_t i = 0; i < choice.total; ++i)
        if (ends_within(alternative_type(choice, i), levels, search)) return true;
    return false;
}

static bool any_row_ends_within(const asn1_type_desc* type, uint32_t levels, search* search) {
    const asn1_table_constraint* table = table_constraint_of(type);
    for (uint32_t i = 0, n = table ? low32(table->row_count) : 0; i < n; ++i) {
        const asn1_type_desc* actual = type_of_row(table, row_of(table, i));
        if (actual && ends_within(actual, levels, search)) return true;
    }
    return false;
}

// Whether the smallest value of the type has at most that many levels.
static bool ends_within(const asn1_type_desc* type, uint32_t levels, search* search) {
    type = untagged(type);
    if (levels == 0 || search->steps == 0) return false;
    --search->steps;
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return components_end_within(type, levels - 1, search);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
            return list_of(type).lower == 0 || ends_within(list_of(type).element, levels - 1, search);
        case ASN1_KIND_CHOICE: return any_alternative_ends_within(choice_of(type), levels - 1, search);
        case ASN1_KIND_ANY: return !search->is_valid || any_row_ends_within(type, levels - 1, search);
        default: return true;
    }
}

bool has_valid_value(const asn1_type_desc* type) {
    search search = {kSearchSteps, true};
    return ends_within(type, kEndingLevels, &search);
}

uint32_t soonest_alternative(const choice_layout& choice) {
    search search = {kSearchSteps, false};
    for (uint32_t levels = 1; levels <= kEndingLevels; ++levels) {
        for (uint32_t i = 0; i < choice.total; ++i)
            if (ends_within(alternative_type(choice, i), levels, &search)) return i;
    }
    return choice.total;
}

}  // namespace orlenta::random
