// SPDX-License-Identifier: Apache-2.0
// Valid values: which components, alternatives and types of open types they have.
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include "core/open_type.hpp"
#include "random/random.hpp"

namespace orlenta::random {

// ---- CHOICE -----------------------------------------------------------------------------------------------

uint32_t valid_alternative(asn1_random_params* params, const choice_layout& choice) {
    uint32_t first = is_worn_out(params) ? soonest_alternative(choice) : draw(params) % choice.total;
    for (uint32_t i = 0; i < choice.total; ++i) {
        uint32_t index = (first + i) % choice.total;
        if (has_valid_value(alternative_type(choice, index))) return index;
    }
    return choice.total;
}

// ---- open types -------------------------------------------------------------------------------------------

// Makes the keys those of a row that has a type, and gives that type; null if there is none.
static const asn1_type_desc* choose_row(asn1_random_params* params, const asn1_type_desc* type) {
    const asn1_table_constraint* table = table_constraint_of(type);
    uint32_t count = table ? low32(table->row_count) : 0;
    uint32_t first = count > 0 ? draw(params) % count : 0;
    for (uint32_t i = 0; i < count; ++i) {
        const asn1_word* row = row_of(table, (first + i) % count);
        const asn1_type_desc* actual = type_of_row(table, row);
        if (!actual || !has_valid_value(actual)) continue;
        if (!set_keys(table, row, params->frames)) return nullptr;
        if (asn1_get_constrained_type(params->frames, type) == actual) return actual;
    }
    return nullptr;
}

// The type of the keys as they are, so that open types with the same keys agree, or else of keys chosen now.
static const asn1_type_desc* choose_type(asn1_random_params* params, const asn1_type_desc* type) {
    const asn1_type_desc* actual = asn1_get_constrained_type(params->frames, type);
    return actual && has_valid_value(actual) ? actual : choose_row(params, type);
}

// Where no key can be had, raw bytes.
int random_valid_open_value(asn1_random_params* params, const asn1_type_desc* type, asn1_open_value* value) {
    const asn1_type_desc* actual = choose_type(params, type);
    if (!actual) return asn1_random_any(params, value);
    *value = {actual, asn1_mallocz_value(actual), 0};
    return value->data ? asn1_random_type(params, actual, value->data) : -1;
}

// ---- CONTAINING -------------------------------------------------------------------------------------------

static int encode_contents(const asn1_type_desc* type, const void* value, asn1_string* octets) {
    int64_t size = asn1_uper_encode(&octets->data, type, value);
    if (size < 0) return -1;
    octets->length = static_cast<uint64_t>(size);
    return 0;
}

// In unaligned PER, as the message sets have it.
int random_contained(asn1_random_params* params, const asn1_type_desc* contained, asn1_string* octets) {
    void* value = asn1_mallocz_value(contained);
    if (!value) return -1;
    const asn1_parent_frame* frames = params->frames;
    params->frames = nullptr;
    int result = asn1_random_type(params, contained, value);
    params->frames = frames;
    if (result == 0) result = encode_contents(contained, value, octets);
    asn1_free_value(contained, value);
    return result;
}

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

static bool is_open(const asn1_field* field) { return kind_of(untagged(field_type(field))) == ASN1_KIND_ANY; }

static bool is_wanted(asn1_random_params* params, const asn1_field* field, bool granted) {
    bool optional = field_option(field) != ASN1_OPTION_MANDATORY;
    if (!granted || (optional && !coin(params))) return false;
    return !(optional || is_addition(field)) || has_valid_value(field_type(field));
}

// Every mandatory component of the root is wanted, whatever is asked.
static int fill_component(asn1_random_params* params, const asn1_field* field, void* record, bool wanted) {
    if (is_presence_flagged(field)) set_presence_word(field, record, wanted);
    if (wanted) return asn1_random_type(params, field_type(field), field_value(field, record));
    return field_option(field) == ASN1_OPTION_DEFAULT ? asn1_sequence_set_default_value(record, field) : 0;
}

// Components of one sort; the open ones come last, since their keys may stand behind them.
static int fill_components(asn1_random_params* params, const asn1_type_desc* type, void* record, bool open,
                           uint32_t granted) {
    const asn1_field* field = components(type);
    const asn1_field* end = field + component_count(type);
    uint32_t unit = 0;
    for (bool in_group = false; field < end; ++field) {
        bool addition = is_addition(field);
        if (is_open(field) == open) {
            bool wanted = is_wanted(params, field, !addition || unit < granted);
            if (fill_component(params, field, record, wanted) != 0) return -1;
        }
        if (!addition) continue;
        in_group = (in_group || opens_group(field)) && !closes_group(field);
        if (!in_group) ++unit;
    }
    return 0;
}

// How many units of additions, from the first on, may appear: more than there are is all.
static uint32_t grant_units(asn1_random_params* params, const asn1_type_desc* type) {
    return is_extensible(type) ? draw(params) % (component_count(type) + 1) : 0;
}

int random_valid_sequence(asn1_random_params* params, const asn1_type_desc* type, void* record) {
    uint32_t granted = grant_units(params, type);
    asn1_parent_frame frame = {params->frames, type, record};
    params->frames = &frame;
    int result = fill_components(params, type, record, false, granted);
    if (result == 0) result = fill_components(params, type, record, true, granted);
    params->frames = frame.parent;
    return result;
}

}  // namespace orlenta::random
