// SPDX-License-Identifier: Apache-2.0
// Numbers as people read them: with the units that schemas give them.
#pragma once

#include <orlenta/catalogue.h>

#include <string>
#include <string_view>

namespace cli {

// The unit of a type's numbers, or null; for any number of threads.
const orlenta_unit* unit_of(const asn1_type_desc* type);

// As a schema has it: "0.02 m/s; 8191 unavailable".
std::string unit_text(const orlenta_unit& unit);

// What a number in decimal digits means.
struct Reading {
    std::string physical;  // "18.34"; empty if it has no physical value
    std::string symbol;    // "m/s"
    std::string meaning;   // of a special number: "unavailable", "orMore"
};
Reading read_number(const orlenta_unit& unit, std::string_view number);

// "18.34 m/s", "unavailable", "127 m orMore"
std::string sentence(const Reading& reading);

// The members of a JSON object that tell it.
std::string json_members(const Reading& reading);

// JSON of a value, as the library writes it, with {"raw":917,"physical":18.34,"unit":"m/s"} for each number that has
// a unit.
std::string with_physical_values(const asn1_type_desc* type, const void* value, std::string_view json);

}  // namespace cli
