// SPDX-License-Identifier: Apache-2.0
// The records that hold values in memory: sizes, alignments and offsets.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "compiler/model/references.hpp"

namespace orlentac {

struct Extent {
    uint64_t size = 0;  // bytes
    uint64_t align = 1;
};

// Where a component of a SEQUENCE lies. A NULL takes no room and has offset 0.
struct Slot {
    uint64_t offset = 0;
    std::optional<uint64_t> presence;  // offset of the presence word, if there is one
};

struct SequenceRecord {
    Extent extent;
    std::vector<Slot> slots;
};

struct ChoiceRecord {
    Extent extent;
    uint64_t payload = 0;  // offset; the selector is at 0
};

struct Records {
    const References* references;
    std::unordered_map<const Type*, Extent> known;  // records of SEQUENCE, SET and CHOICE
};

// The record of a value of the type.
Extent extent_of(Records& records, const Type& type);
SequenceRecord sequence_record(Records& records, const Type& type);
ChoiceRecord choice_record(Records& records, const Type& type);

// Whether an INTEGER is held as an asn1_integer, for it has a bound missing or its range does not fit 32 bits.
bool is_big_integer(const Type& type);
// Whether a component's default can stand in a descriptor. One that cannot makes the component OPTIONAL, which is
// the same on the wire.
bool default_fits(const Component& component);
bool has_presence_word(const Component& component);

}  // namespace orlentac
