// SPDX-License-Identifier: Apache-2.0
// OBJECT IDENTIFIER and RELATIVE-OID as dotted text (X.690 clauses 8.19 and 8.20), with arcs up to 64 bits.
#pragma once

#include <orlenta/type.h>

#include <string>
#include <string_view>

namespace orlenta::python {

// False if the octets break off, or an arc is too large.
bool identifier_text(const asn1_string& contents, bool is_relative, std::string& text);

// False if the text is no identifier.
bool identifier_octets(std::string_view text, bool is_relative, std::string& octets);

}  // namespace orlenta::python
