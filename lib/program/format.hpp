// SPDX-License-Identifier: Apache-2.0
// The format of a program: what a walk over a descriptor would find out again with every message, worked out once. A
// program is a number of constant arrays whose entries name each other by index, so that it is the same on every
// machine and can stand in a constant table; nothing but `types` holds addresses.
//
// A value is described by an op. Ops of a SEQUENCE stand in a row, one for each component or run of components; those
// of a CHOICE one for each alternative. What an op needs besides its own words stands at index `part` of the array that
// its kind names.
#pragma once

#include "core/descriptor.hpp"
#include "per/bit_source.hpp"

namespace orlenta::program {

// Raised with any change of what follows here: programs in constant tables may come from another orlentac than the one
// of this library, and are then passed over.
constexpr uint32_t kFormat = 2;

// Each set of encoding rules has a program of its own.
enum rule : uint8_t { kUnaligned, kAligned, kOer, kRuleCount };

enum op_kind : uint8_t {
    kLeaf,         // a number from `low` to `low + range` in `width` bits, in memory a 32-bit word
    kGroup,        // leaves that lie together in `width` bits; part: leaves[], rest: groups[]
    kSequence,     // part: sequences[]
    kFork,         // the same, of one with variants
    kBlock,        // among releases: a block that owns none
    kList,         // count as a length; part: lists[]
    kChoice,       // index as a leaf from 0; part: choices[]
    kOctets,       // length
    kBits,         // length
    kChars,        // length; count: bits of a character, which is its own code point
    kMappedChars,  // as kChars, but a character goes as its place in the alphabet
    kBigInteger,   // a number from 0 to `range << 32 | low` in `width` bits, in memory `part` limbs
    kOpenType,     // part: open_types[]
    kIndirect,     // part: ops[], what is behind the pointer; low: bytes of its record
    kNull,
    kWalker,  // anything else: the walker reads and writes it by types[type]

    // In ALIGNED PER alone (X.691 clause 11.5.7), and last:
    kAlignedLeaf,        // as kLeaf, from an octet boundary on
    kAlignedGroup,       // as kGroup, the same
    kMarkedLeaf,         // as kAlignedLeaf, behind an extension bit
    kCountedLeaf,        // as kLeaf, in one to four octets behind two bits that count them
    kCountedBigInteger,  // as kBigInteger, in octets behind `width` bits that count them

    // In OER, where `width` is in octets: a leaf's part is octet_leaves[], `count` those in a row from this one on, in a
    // SEQUENCE's row; a fixed length is `low` with a width of 0; of a big integer a width of 0 is a length in front,
    // `low` are limbs that count while it is read, `range` is 1 if it has no sign. In OER alone:
    kCountedNumber,  // a number of 32 bits behind its length, signed if `low` is not 0
    kEnumeration,    // an ENUMERATED whose numbers are not its indices
};

constexpr uint32_t kNone = UINT32_MAX;
using per::kWindowBits;
constexpr uint8_t kGeneralLength = 0xFF;  // `width` of a length: a general length determinant

// Of lengths in ALIGNED PER: what begins on an octet boundary. A general length always does.
constexpr uint8_t kAlignLength = 1, kAlignContents = 2;

// The number of an extensible leaf, length or index has the extension bit on top: with the bit set it is beyond
// `range`, as a number is that no valid encoding holds.
struct op {
    op_kind kind;
    uint8_t width;
    // kGroup: its leaves; kLeaf: as many as a window holds; kChars: see there; kBigInteger: a lower bound is added
    uint8_t count;
    uint8_t gates;       // kGroup: those of its leaves that are extension bits, which come first
    uint32_t offset;     // of the value in the record
    uint32_t presence;   // offset of the presence word, or kNone
    uint32_t part;       // see the kinds
    uint32_t low;        // of a leaf or length
    uint32_t range;      // the same, above `low`
    uint32_t type;       // types[]: the descriptor, behind tags
    uint8_t extensible;  // leaf, length or index: the top bit of the field is an extension bit
    uint8_t alignment;   // of a length: kAlignLength, kAlignContents
    uint16_t spare;
};
static_assert(sizeof(op) == 32);

// A leaf of a group; between leaves there may be padding. A gate is the extension bit of a SEQUENCE whose components
// became leaves of the group: range 0, and its place is that of the leaf behind it.
struct leaf {
    uint32_t place;  // offset in the record << 8 | distance from the window's lowest bit
    uint32_t low, range, mask;
};

// A number in one, two or four octets (X.696 clauses 9 to 11), on its own or `at` octets behind the begin of a group.
// Read: the word of 32 bits from there on, `carry` added, moved down by `in_shift`, its sign extended from the bit
// `sign`; written: negated if `negate` is -1, and moved up by `out_shift`. Gates are as in a leaf: of their octet the top
// bit is read.
struct octet_leaf {
    uint32_t offset;  // in the record
    uint8_t at, in_shift, out_shift;
    int8_t negate;
    uint32_t carry, sign;
    uint32_t range;  // of the number in memory, from 0 on
};

// What a group is, component by component, and what must be absent for it to be written as one.
struct group {
    uint32_t ops, op_count;
    uint32_t options, option_count;  // additions of the SEQUENCEs behind its gates
};

// Something that may be absent: it is if the word at `offset` is `absent`, a presence word of 0 or a DEFAULT's value.
struct option {
    uint32_t offset, absent;
};

// Bits of a preamble that move as one to become bits of a set of ops.
struct preamble_run {
    uint64_t mask;
    uint64_t shift;
};

// A position of an extension bitmap: members from `first` on of the SEQUENCE's additions.
struct extension_unit {
    uint16_t first, count;
    uint32_t is_group;
};

// Sets of ops hold op k at bit 63 - k, the preamble option i at bit 63 - i, the extension bit apart.
struct sequence {
    uint64_t always;    // ops that run whatever the preamble says
    uint64_t defaults;  // options that are a DEFAULT: filled in if absent
    uint32_t ops;
    uint32_t runs;     // preamble_runs[]
    uint32_t options;  // options[], in the order of the preamble
    uint32_t type;     // types[]
    uint8_t width;     // of the preamble, extension bit included
    uint8_t extensible;
    uint8_t needs_frame;  // an open type inside asks for its enclosing records
    uint8_t run_count;
    uint16_t option_count;
    uint16_t unit_count;
    uint16_t addition_count;
    uint16_t release_count;
    uint32_t units;             // extension_units[]
    uint32_t additions;         // ops[], one for each addition
    uint32_t addition_options;  // options[], the same
    uint32_t has_preamble_bit;  // flags[], the same: in a group it is not mandatory
    uint32_t releases;          // ops[] of the components that own blocks
    uint32_t held;              // in OER: bytes that count while the root is read
    uint32_t variants;          // variants[], one for each preamble without extension bit, or kNone
};

// A SEQUENCE whose preamble is known: what is absent, is not there, so that leaves join over it. The head is a group that
// begins with the preamble; its gates set presence words and DEFAULTs as well.
struct variant {
    uint64_t preamble;  // on top
    uint32_t leaves;
    uint8_t width, count, gates, op_count;
    uint32_t ops;  // those behind the head
    uint32_t options;
    uint32_t settings;  // in OER, in place of such gates: options[], words and what they become
    uint16_t option_count, setting_count;
};
static_assert(sizeof(variant) == 32);

struct list {
    uint64_t stride;   // bytes of an element
    uint32_t element;  // ops[]
    uint16_t owns;     // elements own blocks
    uint16_t dense;    // elements are leaves and nothing else, so that no byte of them stays as it is
};

struct choice {
    uint32_t root, total;  // alternatives: root ones, and with the extension ones
    uint32_t selector, payload;
    uint32_t ops;

    // In OER. The tags of the first `direct` alternatives are single octets from `first_octet` on, in their order.
    uint32_t first_octet, direct;
    uint32_t identifiers;      // identifiers[], one for each alternative
    uint32_t tags, tag_count;  // choice_tags[]
};

// The octets of a tag, the first one on top. Without any the alternative cannot be encoded.
struct identifier {
    uint32_t octets, count;
};

// A tag that an alternative may begin with, in the order of the alternatives.
struct choice_tag {
    uint32_t tag;  // as in word 0 of a descriptor
    uint32_t alternative;
};

// An open type. The usual key is a 32-bit component of the record that the open type lies in.
struct open_type {
    uint32_t has_key;  // else asn1_get_constrained_type() finds the type
    int32_t key;       // distance from the open type to its key
    uint32_t rows;     // row_ranges[]
};

// Those of an object set that give a type; 0 is a set of none.
struct row_range {
    uint32_t first, count;
};

// By ascending key, those left out whose key is not theirs alone; without a usual key, in the order of the object set.
struct open_type_row {
    uint32_t key;
    uint32_t op;
    uint32_t type;  // types[]: the row's own
    uint32_t size;  // bytes of a record
};

// The arrays of a program by the type of their entries.
#define ORLENTA_PROGRAM_ARRAYS(ARRAY)      \
    ARRAY(op, ops)                         \
    ARRAY(leaf, leaves)                    \
    ARRAY(octet_leaf, octet_leaves)        \
    ARRAY(group, groups)                   \
    ARRAY(option, options)                 \
    ARRAY(preamble_run, preamble_runs)     \
    ARRAY(sequence, sequences)             \
    ARRAY(variant, variants)               \
    ARRAY(extension_unit, extension_units) \
    ARRAY(list, lists)                     \
    ARRAY(choice, choices)                 \
    ARRAY(identifier, identifiers)         \
    ARRAY(choice_tag, choice_tags)         \
    ARRAY(open_type, open_types)           \
    ARRAY(row_range, row_ranges)           \
    ARRAY(open_type_row, rows)             \
    ARRAY(uint8_t, flags)                  \
    ARRAY(const asn1_type_desc*, types)

struct program {
#define ORLENTA_ARRAY(type, name) type const* name;
    ORLENTA_PROGRAM_ARRAYS(ORLENTA_ARRAY)
#undef ORLENTA_ARRAY
};

// What comes next does not wait for `bit`: the processor foresees the branch, and no arithmetic takes its place.
inline const variant* step_if(const variant* v, bool bit, uint32_t step) {
    if (bit) {
        v += step;
        __asm__("" : "+r"(v));
    }
    return v;
}

}  // namespace orlenta::program
