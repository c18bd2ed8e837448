// SPDX-License-Identifier: Apache-2.0
// Values as they lie in memory, for tests that link the failing allocator.
#pragma once

#include <orlenta/type.h>

#include <vector>

namespace orlenta::test {

// A block that a record points at: `count` values of `inner`, `stride` bytes apart; or so many bytes, where `inner` is
// null.
struct Block {
    void** place;
    const asn1_type_desc* inner;
    uint64_t count, stride;
};

// What a record holds by itself.
struct Holdings {
    std::vector<Block> blocks;
    std::vector<void*> words;      // numbers, and presence words that are not 0
    std::vector<void*> selectors;  // of a CHOICE
};
void look_into(const asn1_type_desc* type, void* value, Holdings& holdings);

// The same of a whole value, blocks in blocks included.
Holdings all_holdings(const asn1_type_desc* type, void* value);

// All bytes of a value in a block of its own and of the blocks behind it, with the sizes that were asked for. Two values
// have one image if no program can tell them apart.
std::vector<uint8_t> image_of(const asn1_type_desc* type, void* value);

}  // namespace orlenta::test
