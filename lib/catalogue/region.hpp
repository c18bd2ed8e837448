// SPDX-License-Identifier: Apache-2.0
// The types of a region by name, as orlentac writes them.
//
// Almost all of it is numbers. A pointer to an exported table would cost a relocation by name beside its own bytes, as
// the loader may have copied the table into the program; the tables' own pointers have been relocated so already. So
// the way to a descriptor leads through the words of others, and only where no other one points at it is there a
// pointer.
#pragma once

#include <orlenta/catalogue.h>

namespace orlenta::catalogue {

enum : uint32_t {
    kFormat = 2,
    kLongestWay = 16,  // from a pointer to a descriptor, in words
};

enum entry_flags : uint16_t { kIsRoot = 1, kHasTableName = 2 };

struct entry {
    uint32_t name;    // offset in the texts
    uint32_t module;  // likewise
    uint32_t about;   // likewise; 0: nothing
    uint32_t from;    // the entry whose descriptor points at this one's; or index of a pointer
    uint16_t word;    // which word of that descriptor does; 0: none, `from` is of a pointer
    uint16_t flags;   // kHasTableName: the name in C is another one than `name`, and stands behind it
};

// Which descriptor a unit is of: that of an entry, or what a word of it points at, or one with a pointer.
struct unit_place {
    uint32_t from;  // the entry; or index of a pointer
    uint16_t word;  // 0: the entry's own; kByPointer
    uint32_t unit;
};
enum : uint16_t { kByPointer = UINT16_MAX };

struct region {
    uint32_t format;  // kFormat of the orlentac that wrote it
    uint32_t count;
    const entry* entries;
    const char* texts;  // each with a zero behind it; the region's name begins them
    const asn1_type_desc* const* types;
    const orlenta_unit* units;
    const unit_place* unit_places;
    uint32_t unit_place_count;
};

}  // namespace orlenta::catalogue

struct orlenta_catalogue {
    const orlenta::catalogue::region* const* regions;
    size_t count;
};
