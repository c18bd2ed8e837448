// Which alternative of a CHOICE ends soonest.
#include "random/random.hpp"

namespace orlenta::random {

// Descriptors that one search may look at, so that a type of no end can't keep it busy.
constexpr uint32_t kSearchSteps = 1 << 16;

static bool ends_within(const asn1_type_desc* type, uint32_t levels, uint32_t* steps);

static bool components_end_within(const asn1_type_desc* type, uint32_t levels, uint32_t* steps) {
    const asn1_field* field = components(type);
    for (const asn1_field* end = field + component_count(type); field < end; ++field) {
        bool may_be_left_out = is_presence_flagged(field) || field_option(field) == ASN1_OPTION_DEFAULT;
        if (!may_be_left_out && !ends_within(field_type(field), levels, steps)) return false;
    }
    return true;
}

static bool any_alternative_ends_within(const choice_layout& choice, uint32_t levels, uint32_t* steps) {
    for (uint32_t i = 0; i < choice.total; ++i)
        if (ends_within(alternative_type(choice, i), levels, steps)) return true;
    return false;
}

// Whether the smallest value of the type has at most that many levels.
static bool ends_within(const asn1_type_desc* type, uint32_t levels, uint32_t* steps) {
    type = untagged(type);
    if (levels == 0 || *steps == 0) return false;
    --*steps;
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return components_end_within(type, levels - 1, steps);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
            return list_of(type).lower == 0 || ends_within(list_of(type).element, levels - 1, steps);
        case ASN1_KIND_CHOICE: return any_alternative_ends_within(choice_of(type), levels - 1, steps);
        default: return true;
    }
}

uint32_t soonest_alternative(const choice_layout& choice) {
    uint32_t steps = kSearchSteps;
    for (uint32_t levels = 1; levels <= kEndingLevels; ++levels) {
        for (uint32_t i = 0; i < choice.total; ++i)
            if (ends_within(alternative_type(choice, i), levels, &steps)) return i;
    }
    return choice.total;
}

}  // namespace orlenta::random
