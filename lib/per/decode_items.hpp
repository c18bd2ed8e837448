// SPDX-License-Identifier: Apache-2.0
// Strings and lists: length determinants, fragments (X.691 clause 11.9), and the items behind them. A value grows
// fragment by fragment. Results are 0, or -1 after a report.
#pragma once

#include "per/bit_reader.hpp"
#include "per/item_layout.hpp"

namespace orlenta::per {

// Reads `count` items into a list that holds `first`; the sum of both fits 32 bits.
typedef int asn1_per_item_reader(asn1_per_decoder* decoder, uint32_t first, uint32_t count, void* argument);

// The items behind a general length determinant. `total`, if not null, receives their number.
int asn1_per_decode_ulength_items(asn1_per_decoder* decoder, asn1_per_item_reader* reader, void* argument,
                                  uint32_t* total);

// The items behind the extension bit and the form of length that the type's bounds ask for. `too_few` is the report
// for a general length below the lower bound; an upper bound is not tested there.
int decode_sized_items(asn1_per_decoder* decoder, const item_layout& layout, asn1_per_item_reader* reader,
                       void* argument, const char* too_few);

// Grows the block at `*data`, which has `old_size` bytes if it is not null.
int grow_block(asn1_per_decoder* decoder, uint8_t** data, uint64_t old_size, uint64_t size);

// Item readers of octets. The arguments are an asn1_string, and the room for all of them.
asn1_per_item_reader asn1_per_decode_octet_string1;
asn1_per_item_reader asn1_per_decode_buf1;

// Passes over an open type of a later version of the schema.
int skip_open_type(asn1_per_decoder* decoder);

}  // namespace orlenta::per
