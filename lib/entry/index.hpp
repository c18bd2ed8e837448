// SPDX-License-Identifier: Apache-2.0
// From a descriptor to the codec that was compiled for it. orlentac writes an index for each region, and find.cpp reads
// them.
//
// A descriptor has neither room for its codec nor a number, and its address is known only when a program runs: it may be
// that of a copy which the loader made. So an index is a table hashed by the first words of descriptors, which are numbers
// known to orlentac, and what is found there is compared by address; the loader sees to it that a codec and a program
// mean the same one.
#pragma once

#include "core/descriptor.hpp"
#include "program/codec.hpp"

namespace orlenta::entry {

struct program_index {
    uint32_t format;                    // program::kFormat of the orlentac that wrote it
    uint32_t mask;                      // slots less one; their number is a power of two
    const orlenta_codec* const* slots;  // a codec is in the first free slot from its own on
};

// Of words that every descriptor of the kind has, and that are no addresses.
inline uint32_t hash_of(const asn1_type_desc* type) {
    constexpr uint32_t long_kinds = 1u << ASN1_KIND_SEQUENCE | 1u << ASN1_KIND_SET | 1u << ASN1_KIND_CHOICE;
    uint32_t hash = word0(type) * UINT32_C(0x9E3779B1);
    if ((long_kinds >> kind_of(type) & 1) != 0) {
        hash = (hash ^ low32(type[1])) * UINT32_C(0x85EBCA77);
        hash = (hash ^ low32(type[2])) * UINT32_C(0xC2B2AE3D);
    }
    return hash ^ hash >> 15;
}

// The indexes that are linked into one program or shared object, other than those of the message sets that come with the
// library.
struct index_range {
    const program_index* const* begin;
    const program_index* const* end;
};

}  // namespace orlenta::entry

// Puts an index among those of the program that it is linked into. Each has the linker collect them in a section, and all
// bring along the same orlenta_linked_indexes, of which one stays. The library looks for that by name, in a program as in
// itself, and does without if there is none.
#define ORLENTA_LINK_INDEX(index)                                                                   \
    extern "C" {                                                                                    \
    [[gnu::visibility(                                                                              \
        "hidden")]] extern const orlenta::entry::program_index* const __start_orlenta_indexes[];    \
    [[gnu::visibility(                                                                              \
        "hidden")]] extern const orlenta::entry::program_index* const __stop_orlenta_indexes[];     \
    [[gnu::weak,                                                                                    \
      gnu::visibility("default")]] extern const orlenta::entry::index_range orlenta_linked_indexes; \
    constinit const orlenta::entry::index_range orlenta_linked_indexes = {__start_orlenta_indexes,  \
                                                                          __stop_orlenta_indexes};  \
    }                                                                                               \
    [[gnu::section("orlenta_indexes"), gnu::used,                                                   \
      gnu::retain]] static constinit const orlenta::entry::program_index* const linked_index = &index;
