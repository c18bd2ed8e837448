// SPDX-License-Identifier: Apache-2.0
#include "per/decode_items.hpp"

#include "per/decode_numbers.hpp"

namespace orlenta::per {

int grow_block(asn1_per_decoder* decoder, uint8_t** data, uint64_t old_size, uint64_t size) {
    void* block = reallocate(&decoder->memory, *data, old_size, size);
    if (!block) return report_no_memory(decoder);
    *data = static_cast<uint8_t*>(block);
    return 0;
}

int asn1_per_decode_octet_string1(asn1_per_decoder* decoder, uint32_t first, uint32_t count, void* argument) {
    asn1_string* string = static_cast<asn1_string*>(argument);
    if (grow_block(decoder, &string->data, first, uint64_t{first} + count) != 0) return -1;
    string->length = uint64_t{first} + count;
    return get_octets(decoder, string->data + first, count);
}

int asn1_per_decode_buf1(asn1_per_decoder* decoder, uint32_t first, uint32_t count, void* argument) {
    return get_octets(decoder, static_cast<uint8_t*>(argument) + first, count);
}

// Item reader of no octets.
static int asn1_per_skip_open_type1(asn1_per_decoder* decoder, uint32_t, uint32_t count, void*) {
    return skip_octets(decoder, count);
}

// One fragment, or the closing part.
static int read_piece(asn1_per_decoder* decoder, asn1_per_item_reader* reader, void* argument, uint32_t* have,
                      uint32_t count) {
    if (count > UINT32_MAX - *have) return report_no_memory(decoder);
    if (count != 0 && reader(decoder, *have, count, argument) != 0) return -1;
    *have += count;
    return 0;
}

// What a fragment held, unless its elements have told that themselves.
static __attribute__((cold)) void tell_part(asn1_per_decoder* decoder) {
    tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_VALUE, "part of the value");
}

static __attribute__((cold)) void tell_fragment(asn1_per_decoder* decoder, uint32_t count) {
    tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_FRAGMENT, "fragment of %u", count);
}

int asn1_per_decode_ulength_items(asn1_per_decoder* decoder, asn1_per_item_reader* reader, void* argument,
                                  uint32_t* total) {
    uint32_t have = 0;
    uint32_t first, second;
    for (;;) {
        if (decoder->aligned) asn1_align(decoder);
        if (asn1_get_bits(decoder, 8, &first) != 0) return -1;
        if (first < 0xC0) break;
        if (first == 0xC0 || first > 0xC4) return asn1_decode_error(decoder, "invalid number of fragments");
        uint32_t count = (first - 0xC0) << 14;
        if (is_observed(decoder)) tell_fragment(decoder, count);
        if (read_piece(decoder, reader, argument, &have, count) != 0) return -1;
        if (is_observed(decoder)) tell_part(decoder);
    }
    if (first >= 0x80) {
        if (asn1_get_bits(decoder, 8, &second) != 0) return -1;
        first = (first << 8 | second) & 0x3FFF;
    }
    if (is_observed(decoder)) tell_length(decoder, first);
    if (read_piece(decoder, reader, argument, &have, first) != 0) return -1;
    if (total) *total = have;
    return 0;
}

int skip_open_type(asn1_per_decoder* decoder) {
    if (asn1_per_decode_ulength_items(decoder, asn1_per_skip_open_type1, nullptr, nullptr) != 0) return -1;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_UNKNOWN, "unknown addition");
    }
    return 0;
}

static int decode_constrained_items(asn1_per_decoder* decoder, const item_layout& layout,
                                    asn1_per_item_reader* reader, void* argument) {
    uint32_t count;
    if (asn1_per_decode_constrained_whole_number(decoder, layout.lower, layout.upper, &count) != 0) return -1;
    if (is_observed(decoder)) tell_length(decoder, count);
    if (decoder->aligned && layout.align_contents) asn1_align(decoder);
    return reader(decoder, 0, count, argument);
}

int decode_sized_items(asn1_per_decoder* decoder, const item_layout& layout, asn1_per_item_reader* reader,
                       void* argument, const char* too_few) {
    if (layout.extensible) {
        uint32_t is_extended;
        if (get_extension_bit(decoder, &is_extended) != 0) return -1;
        if (is_extended) return asn1_per_decode_ulength_items(decoder, reader, argument, nullptr);
    }
    if (layout.has_constrained_length) return decode_constrained_items(decoder, layout, reader, argument);
    uint32_t count;
    if (asn1_per_decode_ulength_items(decoder, reader, argument, &count) != 0) return -1;
    return count < layout.lower ? asn1_decode_error(decoder, "%s", too_few) : 0;
}

}  // namespace orlenta::per
