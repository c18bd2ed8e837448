// SPDX-License-Identifier: Apache-2.0
#include "entry/find.hpp"

#include "entry/index.hpp"

#if !defined(ORLENTA_NO_PROGRAMS)

// Weak, so that the library brings along no index that nobody asks for: a static program without one walks the tables.
extern "C" {
#define MESSAGE_SET(region) \
    [[gnu::weak,            \
      gnu::visibility("hidden")]] extern const orlenta::entry::program_index orlenta_index_##region;
MESSAGE_SET(CN)
MESSAGE_SET(EU)
MESSAGE_SET(US)
#undef MESSAGE_SET
[[gnu::weak, gnu::visibility("default")]] extern const orlenta::entry::index_range orlenta_linked_indexes;
}

namespace orlenta::entry {

static const orlenta_codec* find_in(const program_index* index, uint32_t hash, const asn1_type_desc* type) {
    if (!index || index->format != program::kFormat) return nullptr;
    for (uint32_t slot = hash;; ++slot) {
        const orlenta_codec* codec = index->slots[slot & index->mask];
        if (!codec || codec->type == type) return codec;
    }
}

static const orlenta_codec* find_linked(uint32_t hash, const asn1_type_desc* type) {
    if (!&orlenta_linked_indexes) return nullptr;
    for (const program_index* const* index = orlenta_linked_indexes.begin;
         index != orlenta_linked_indexes.end; ++index) {
        if (const orlenta_codec* codec = find_in(*index, hash, type)) return codec;
    }
    return nullptr;
}

const orlenta_codec* find_codec(const asn1_type_desc* type) {
    static constexpr const program_index* message_sets[] = {&orlenta_index_CN, &orlenta_index_EU,
                                                            &orlenta_index_US};
    uint32_t hash = hash_of(type);
    for (const program_index* index : message_sets) {
        if (const orlenta_codec* codec = find_in(index, hash, type)) return codec;
    }
    return find_linked(hash, type);
}

}  // namespace orlenta::entry

#endif

const orlenta_codec* orlenta_codec_find(const asn1_type_desc* type) {
    return orlenta::entry::find_codec(type);
}
