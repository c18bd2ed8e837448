// SPDX-License-Identifier: Apache-2.0
// What of a value decides whether an encoding of it must exist, and must bring it back.
#pragma once

#include <orlenta/type.h>

namespace fuzz {

struct Facts {
    unsigned depth = 0;              // lists, indirect components and open types inside each other
    bool breaks_constraint = false;  // as asn1_check_constraints() says, inside open types too
    bool has_unknown = false;        // an item or alternative of a later version of the schema
    bool has_raw = false;            // an open type whose type is not known
    bool has_odd_oid = false;        // contents of an OID that are no numbers as text knows them
    bool has_odd_text = false;       // what is no character of Unicode, or not in its one form of UTF-8
};

Facts facts_of(const asn1_type_desc* type, const void* value);

}  // namespace fuzz
