// SPDX-License-Identifier: Apache-2.0
// What a constant is in memory, for those who write tables: as C text or as words.
#pragma once

#include <string>
#include <vector>

#include "compiler/layout/layout.hpp"

namespace orlentac {

struct ConstantForm {
    enum class Record {
        word,        // a 32-bit word: `word`
        null,        // a byte of zero
        integer,     // an asn1_integer: `limbs`, `negative`
        string,      // an asn1_string: `bytes`, `length`
        bit_string,  // an asn1_bit_string, the same
        octets,      // `bytes` alone, aligned as limbs are
        words        // the object's words
    } record = Record::words;
    uint32_t word = 0;
    std::vector<uint32_t> limbs = {};  // least significant first; none for 0
    bool negative = false;
    std::string bytes = {};
    uint64_t length = 0;
};

ConstantForm form_of(const Object& object);

}  // namespace orlentac
