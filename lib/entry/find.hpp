// SPDX-License-Identifier: Apache-2.0
// The codecs that are compiled in, by their descriptors.
#pragma once

#include "program/codec.hpp"

namespace orlenta::entry {

// Null if the type has none.
const orlenta_codec* find_codec(const asn1_type_desc* type);

// The same, if its codec has a program for the rule.
inline const orlenta_codec* find_codec_for(program::rule rule, const asn1_type_desc* type) {
    const orlenta_codec* codec = find_codec(type);
    return codec && codec->programs[rule] ? codec : nullptr;
}

}  // namespace orlenta::entry
