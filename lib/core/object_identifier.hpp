// SPDX-License-Identifier: Apache-2.0
// Contents octets of OBJECT IDENTIFIER and RELATIVE-OID (X.690 clauses 8.19 and 8.20).
#pragma once

#include <orlenta/memory.h>

namespace orlenta {

// Appends a subidentifier in the fewest groups of 7 bits, high group first, bit 7 set on all but the last.
void put_subidentifier(asn1_byte_buffer* buf, uint32_t subidentifier);

// Appends the contents octets that dotted text, ending in a NUL at `length`, stands for. Returns 0, or -1: for want of
// memory if `buf` has failed, else because the text is no identifier.
int parse_object_identifier(asn1_byte_buffer* buf, const char* text, uint64_t length, bool relative);

// Appends dotted text. The first subidentifier of an absolute identifier becomes two arcs by division by 40, also
// from 80 on. Returns 0, or -1 if the contents end within a subidentifier, what came before it being written.
int put_object_identifier_text(asn1_byte_buffer* buf, const asn1_string* contents, bool relative);

}  // namespace orlenta
