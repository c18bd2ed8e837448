// SPDX-License-Identifier: Apache-2.0
#include "per/encode_items.hpp"

#include "per/encode_numbers.hpp"

namespace orlenta::per {

int asn1_per_encode_buf1(asn1_per_encoder* encoder, uint64_t first, uint64_t count, const void* argument) {
    put_octets(encoder, static_cast<const uint8_t*>(argument) + first, count);
    return 0;
}

int asn1_per_encode_ulength_items(asn1_per_encoder* encoder, asn1_per_item_writer* writer,
                                  const void* argument, uint64_t count) {
    uint64_t first = 0;
    while (count - first > 16383) {
        uint64_t units = (count - first) >> 14;
        if (units > 4) units = 4;
        if (encoder->aligned) asn1_align(encoder);
        asn1_put_bits(encoder, 8, 0xC0 + static_cast<uint32_t>(units));
        int result = writer(encoder, first, units << 14, argument);
        if (result != 0) return result;
        first += units << 14;
    }
    // The closing part is there even if nothing is left for it.
    uint32_t remaining = static_cast<uint32_t>(count - first);
    asn1_per_encode_unconstrained_length(encoder, remaining);
    return remaining == 0 ? 0 : writer(encoder, first, remaining, argument);
}

static int encode_constrained_items(asn1_per_encoder* encoder, const item_layout& layout,
                                    asn1_per_item_writer* writer, const void* argument, uint64_t count) {
    // A count beyond 32 bits lies outside the bounds, whatever its low half says.
    uint32_t length = count > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(count);
    int result = asn1_per_encode_constrained_whole_number(encoder, layout.lower, layout.upper, length);
    if (result != 0) return result;
    if (encoder->aligned && layout.align_contents) asn1_align(encoder);
    return writer(encoder, 0, count, argument);
}

int encode_sized_items(asn1_per_encoder* encoder, const item_layout& layout, asn1_per_item_writer* writer,
                       const void* argument, uint64_t count) {
    if (layout.extensible) {
        bool in_root = count >= layout.lower && count <= layout.upper;
        asn1_put_bits(encoder, 1, in_root ? 0 : 1);
        if (!in_root) return asn1_per_encode_ulength_items(encoder, writer, argument, count);
    }
    if (layout.has_constrained_length)
        return encode_constrained_items(encoder, layout, writer, argument, count);
    if (count < layout.lower) return -1;
    return asn1_per_encode_ulength_items(encoder, writer, argument, count);
}

}  // namespace orlenta::per
