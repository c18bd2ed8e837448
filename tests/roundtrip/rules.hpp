// SPDX-License-Identifier: Apache-2.0
// The encoding rules that values are sent through and back. A codec joins by a line in rules.cpp.
#pragma once

#include <orlenta/error.h>

#include <ostream>
#include <span>

namespace orlenta::test {

struct Rule {
    const char* name;
    int64_t (*encode)(uint8_t** out, const asn1_type_desc* type, const void* value);
    int64_t (*decode)(void** out, const asn1_type_desc* type, const uint8_t* data, uint64_t size,
                      asn1_error* error);
    bool takes_raw_back;  // the bytes of an unresolved open type can be decoded
};

inline void PrintTo(const Rule& rule, std::ostream* out) { *out << rule.name; }
std::span<const Rule> all_rules();

}  // namespace orlenta::test
