// SPDX-License-Identifier: Apache-2.0
// Which tags a value of a type can begin with. A tag word has the class in bits 20..19, the number in bits 18..0.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta {

// Whether an encoding with the tag word `tag` can be one of `type`. An open type takes every tag, also if it has a
// tag of its own.
inline bool find_tag1(const asn1_type_desc* type, uint32_t tag) {
    for (;;) {
        uint32_t kind = kind_of(type);
        if (kind == ASN1_KIND_ANY) return true;
        if (tag_of(type) != 0) return tag_of(type) == tag;
        if (kind == ASN1_KIND_CHOICE) break;
        if (kind != ASN1_KIND_TAGGED) return tag == 0;
        type = tagged_inner(type);
    }
    choice_layout choice = choice_of(type);
    for (uint32_t i = 0; i < choice.total; ++i) {
        if (find_tag1(alternative_type(choice, i), tag)) return true;
    }
    return false;
}

// The first alternative of a CHOICE that `tag` fits, or `choice.total`.
inline uint32_t find_alternative(const choice_layout& choice, uint32_t tag) {
    uint32_t i = 0;
    while (i < choice.total && !find_tag1(alternative_type(choice, i), tag)) ++i;
    return i;
}

// The tag with which OER announces an alternative: of an untagged CHOICE that of its first alternative. 0 if the type
// has none.
inline uint32_t find_choice_tag(const asn1_type_desc* type) {
    while (tag_of(type) == 0) {
        if (kind_of(type) == ASN1_KIND_TAGGED) {
            type = tagged_inner(type);
        } else if (kind_of(type) == ASN1_KIND_CHOICE && choice_of(type).total != 0) {
            type = alternative_type(choice_of(type), 0);
        } else {
            return 0;
        }
    }
    return tag_of(type);
}

}  // namespace orlenta
