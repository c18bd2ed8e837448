// SPDX-License-Identifier: Apache-2.0
// Releasing a value: by the program of its type if that has one.
#include <orlenta/value.h>

#include "core/stackless.hpp"
#include "entry/find.hpp"

void asn1_free_value(const asn1_type_desc* desc, void* value) {
    if (const orlenta_codec* codec = value ? orlenta::entry::find_codec(desc) : nullptr)
        return orlenta_free_value(codec, value);
    orlenta::release_value(orlenta::begin_stack(), desc, value);
}
