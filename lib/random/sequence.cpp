// SPDX-License-Identifier: Apache-2.0
// SEQUENCE and SET: which components appear.
#include "random/random.hpp"

namespace orlenta::random {

// Extension units in the table. The flag takes a group of one, which opens and closes at once, as still open,
// and so loses additions behind it; the values that a seed gives depend on that.
static uint32_t count_units(const asn1_field* field, const asn1_field* end) {
    uint32_t count = 0;
    bool in_group = false;
    for (; field < end; ++field) {
        if (!is_addition(field)) continue;
        if (in_group) {
            in_group = !closes_group(field);
        } else {
            in_group = opens_group(field);
            ++count;
        }
    }
    return count;
}

// How many units, from the first on, may appear.
static uint32_t grant_units(asn1_random_params* params, uint32_t count) {
    return count != 0 && params->extensions ? draw(params) % (count + 1) : 0;
}

static int fill(asn1_random_params* params, const asn1_field* field, void* record) {
    return asn1_random_type(params, field_type(field), field_value(field, record));
}

// OPTIONAL, or a mandatory addition.
static int fill_if_present(asn1_random_params* params, const asn1_field* field, void* record, bool present) {
    set_presence_word(field, record, present);
    return present ? fill(params, field, record) : 0;
}

static int random_component(asn1_random_params* params, const asn1_field* field, void* record, bool granted) {
    switch (field_option(field)) {
        case ASN1_OPTION_OPTIONAL: return fill_if_present(params, field, record, granted && coin(params));
        case ASN1_OPTION_DEFAULT:
            if (granted && coin(params)) return fill(params, field, record);
            return asn1_sequence_set_default_value(record, field);
        default:
            if (is_addition(field)) return fill_if_present(params, field, record, granted);
            return fill(params, field, record);
    }
}

int asn1_random_sequence(asn1_random_params* params, const asn1_type_desc* type, void* record) {
    const asn1_field* field = components(type);
    const asn1_field* end = field + component_count(type);
    uint32_t granted = grant_units(params, count_units(field, end));
    uint32_t unit = 0;
    bool in_group = false;
    for (; field < end; ++field) {
        bool addition = is_addition(field);
        if (random_component(params, field, record, !addition || unit < granted) < 0) return -1;
        if (!addition) continue;
        in_group = (in_group || opens_group(field)) && !closes_group(field);
        if (!in_group) ++unit;
    }
    return 0;
}

}  // namespace orlenta::random
