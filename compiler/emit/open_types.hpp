// SPDX-License-Identifier: Apache-2.0
// Open types whose actual type follows from a key beside them (X.682 clause 10).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compiler/layout/layout.hpp"

namespace orlentac {

struct KeyedType {
    std::string name;  // of the type, told apart from others of the set
    int64_t key = 0;   // the number, or the index of an ENUMERATED
    const Table* table = nullptr;
};

// A component that is an open type, with the component that selects among its types.
struct KeyedComponent {
    size_t component = 0;
    size_t key_component = 0;
    std::vector<KeyedType> types;
};

// Those components of a SEQUENCE or SET whose key is one INTEGER of 32 bits or ENUMERATED of the same record, always
// there. The keys of others have no plain form in C.
std::vector<KeyedComponent> keyed_components(const std::string& region, const Table& table);

}  // namespace orlentac
