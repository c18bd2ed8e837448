// SPDX-License-Identifier: Apache-2.0
// The measured messages as values of their types.
#pragma once

#include <orlenta/type.h>

#include <vector>

#include "bench/messages.hpp"

namespace bench {

struct Subject {
    Message message;
    const asn1_type_desc* type;
    void* value;    // kept to the end of the program
    size_t leaves;  // components that have no components
};

// All messages whose message set is built. Ends the program if one of them cannot be read.
std::vector<Subject> load_subjects();

}  // namespace bench
