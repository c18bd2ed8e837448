// SPDX-License-Identifier: Apache-2.0
// Strings and lists: length determinants, fragments (X.691 clause 11.9), and the items behind them.
#pragma once

#include "per/bit_writer.hpp"
#include "per/item_layout.hpp"

namespace orlenta::per {

// Writes `count` items from number `first` on. 0, or the failure of an item.
typedef int asn1_per_item_writer(asn1_per_encoder* encoder, uint64_t first, uint64_t count,
                                 const void* argument);

// The items behind a general length determinant, cut into fragments from 16K items on.
int asn1_per_encode_ulength_items(asn1_per_encoder* encoder, asn1_per_item_writer* writer,
                                  const void* argument, uint64_t count);

// The items behind the extension bit and the form of length that the type's bounds ask for.
int encode_sized_items(asn1_per_encoder* encoder, const item_layout& layout, asn1_per_item_writer* writer,
                       const void* argument, uint64_t count);

// Item writer: octets; the argument points at the first one.
asn1_per_item_writer asn1_per_encode_buf1;

}  // namespace orlenta::per
