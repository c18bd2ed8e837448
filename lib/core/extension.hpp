// SPDX-License-Identifier: Apache-2.0
// Extension units: the positions of an extension bitmap. A lone addition is a unit, and so is a group.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta {

// A group is there as soon as one of its members is, and then all mandatory ones have to be. Takes the member's name.
inline constexpr char kMissingMember[] = "extension group component '%s' must be present";

struct extension_unit {
    const asn1_field* first;  // null behind the last unit
    uint32_t count;           // members
    bool is_group;
};

// The first unit that begins at `field` or behind it; `end` is one past the last component.
inline extension_unit next_extension_unit(const asn1_field* field, const asn1_field* end) {
    while (field < end && !is_addition(field)) ++field;
    if (field >= end) return {nullptr, 0, false};
    const asn1_field* last = field;
    if (opens_group(field)) {
        while (!closes_group(last) && last + 1 < end) ++last;
    }
    return {field, static_cast<uint32_t>(last - field) + 1, opens_group(field)};
}

// The unit behind `unit`.
inline extension_unit following_unit(const extension_unit& unit, const asn1_field* end) {
    return next_extension_unit(unit.first + unit.count, end);
}

}  // namespace orlenta
