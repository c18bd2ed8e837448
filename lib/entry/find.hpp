// SPDX-License-Identifier: Apache-2.0
// The codecs that are compiled in, by their descriptors.
#pragma once

#include "program/codec.hpp"

namespace orlenta::entry {

// Null if the type has none. A small library is without programs, and its linker leaves out what runs them.
#if defined(ORLENTA_NO_PROGRAMS) || defined(ORLENTA_MINIMAL)
inline const orlenta_codec* find_codec(const asn1_type_desc*) { return nullptr; }
#else
const orlenta_codec* find_codec(const asn1_type_desc* type);
#endif

// The same, if its codec has a program for the rule.
inline const orlenta_codec* find_codec_for(program::rule rule, const asn1_type_desc* type) {
    const orlenta_codec* codec = find_codec(type);
    return codec && codec->programs[rule] ? codec : nullptr;
}

}  // namespace orlenta::entry
