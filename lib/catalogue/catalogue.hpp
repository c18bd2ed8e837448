// SPDX-License-Identifier: Apache-2.0
// What a catalogue is.
#pragma once

#include <orlenta/catalogue.h>

struct orlenta_catalogue {
    const orlenta_type_entry* entries;
    size_t count;
};
