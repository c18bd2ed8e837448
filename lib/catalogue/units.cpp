// SPDX-License-Identifier: Apache-2.0
#include "catalogue/ways.hpp"
#include "core/descriptor.hpp"

namespace orlenta::catalogue {

static const asn1_type_desc* type_of(const region& in, const unit_place& place) {
    if (place.word == kByPointer) return in.types[place.from];
    const asn1_type_desc* type = type_of(in, in.entries + place.from);
    return place.word == 0 ? type : type[place.word].type;
}

static const orlenta_unit* find_unit(const orlenta_catalogue* catalogue, const asn1_type_desc* type) {
    for (size_t i = 0; i < catalogue->count; ++i) {
        const region& in = *catalogue->regions[i];
        uint32_t count = count_of(in) > 0 ? in.unit_place_count : 0;
        for (uint32_t k = 0; k < count; ++k)
            if (type_of(in, in.unit_places[k]) == type) return in.units + in.unit_places[k].unit;
    }
    return nullptr;
}

}  // namespace orlenta::catalogue

const orlenta_unit* orlenta_unit_of(const orlenta_catalogue* catalogue, const asn1_type_desc* type) {
    for (; orlenta::kind_of(type) == ASN1_KIND_TAGGED; type = orlenta::tagged_inner(type)) {
    }
    bool has_numbers =
        orlenta::kind_of(type) == ASN1_KIND_INTEGER || orlenta::kind_of(type) == ASN1_KIND_REAL;
    return has_numbers ? orlenta::catalogue::find_unit(catalogue, type) : nullptr;
}

const orlenta_special* orlenta_unit_special(const orlenta_unit* unit, int64_t number) {
    for (uint32_t i = 0; i < unit->special_count; ++i) {
        const orlenta_special& special = unit->specials[i];
        if (number >= special.first && number <= special.last) return &special;
    }
    return nullptr;
}
