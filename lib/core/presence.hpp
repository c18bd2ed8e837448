// SPDX-License-Identifier: Apache-2.0
// Which components of a SEQUENCE or SET are there.
#pragma once

#include "core/decode_memory.hpp"
#include "core/descriptor.hpp"

namespace orlenta {

// A DEFAULT component equal to its default stays out; so does one whose presence word is 0.
inline bool is_encoded(const asn1_field* field, const void* record) {
    if (field_option(field) == ASN1_OPTION_DEFAULT)
        return asn1_sequence_is_default_present(record, field) != 0;
    return !is_presence_flagged(field) || presence_word(field, record) != 0;
}

// A byte for each component while a SEQUENCE or SET is walked: on the stack for all but the largest types, and for those
// in a block.
struct presence_bytes {
    uint8_t* bytes;  // null if memory was not to be had
    uint32_t count;
    uint8_t few[64];
};

inline bool is_few(const presence_bytes& presence) { return presence.count <= sizeof presence.few; }

inline uint8_t* begin_presence(presence_bytes* presence, uint32_t count) {
    presence->count = count;
    presence->bytes = is_few(*presence) ? presence->few : static_cast<uint8_t*>(asn1_malloc(count));
    return presence->bytes;
}
inline void end_presence(presence_bytes* presence) {
    if (!is_few(*presence)) asn1_free(presence->bytes);
}

// The same in a decoder, whose blocks count.
inline uint8_t* begin_presence(presence_bytes* presence, decode_memory* memory, uint32_t count) {
    presence->count = count;
    presence->bytes = is_few(*presence) ? presence->few : static_cast<uint8_t*>(allocate(memory, count));
    return presence->bytes;
}
inline void end_presence(presence_bytes* presence, decode_memory* memory) {
    if (!is_few(*presence)) release(memory, presence->bytes, presence->count);
}

}  // namespace orlenta
