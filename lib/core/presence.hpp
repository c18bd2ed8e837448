// Which components of a SEQUENCE or SET go into an encoding.
#pragma once

#include "core/descriptor.hpp"

namespace orlenta {

// A DEFAULT component equal to its default stays out; so does one whose presence word is 0.
inline bool is_encoded(const asn1_field* field, const void* record) {
    if (field_option(field) == ASN1_OPTION_DEFAULT)
        return asn1_sequence_is_default_present(record, field) != 0;
    return !is_presence_flagged(field) || presence_word(field, record) != 0;
}

}  // namespace orlenta
