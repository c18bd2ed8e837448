// SPDX-License-Identifier: Apache-2.0
// The tables of a message set by name: for programs that take a type's name from their user. `orlentac --list` writes
// such a list.
#pragma once

#include <orlenta/type.h>

struct orlenta_catalogue_entry {
    const char* table;  // behind the region in the table's name: "Latitude", "Lpn_1", "_local_12"
    const char* name;   // the schema's name, with hyphens; "" for a table without one
    const asn1_type_desc* type;
    const char* module;  // of the type, or of the one around it; "" for what standards of the language define
};

// Defined for each region that is built.
extern const orlenta_catalogue_entry orlenta_catalogue_CN[];
extern const size_t orlenta_catalogue_CN_count;
extern const orlenta_catalogue_entry orlenta_catalogue_EU[];
extern const size_t orlenta_catalogue_EU_count;
extern const orlenta_catalogue_entry orlenta_catalogue_US[];
extern const size_t orlenta_catalogue_US_count;
