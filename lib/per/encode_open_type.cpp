// SPDX-License-Identifier: Apache-2.0
// Open types (X.691 clause 11.2): an encoding of its own, complete, behind its length in octets. It is built in a
// buffer of its own, since the length goes first; positions in reports count from there.
#include "per/encode_items.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

// What the encoder had written around an open type.
static bit_sink begin_open_type(asn1_per_encoder* encoder) {
    bit_sink outer = encoder->sink;
    encoder->sink = {};
    return outer;
}

// Goes on with the outer encoding, where the octets belong. A failure for lack of memory leaves no report here.
static int end_open_type(asn1_per_encoder* encoder, const bit_sink& outer, int result) {
    if (result == 0) result = complete_encoding(encoder);
    asn1_byte_buffer contents = encoder->sink.buffer;
    encoder->sink = outer;
    if (result == 0) {
        result = asn1_per_encode_ulength_items(encoder, asn1_per_encode_buf1, contents.data, contents.length);
    }
    asn1_free(contents.data);
    return result;
}

int asn1_per_encode_open_type(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    if (check_depth(encoder) != 0) return -1;
    bit_sink outer = begin_open_type(encoder);
    return end_open_type(encoder, outer, asn1_per_encode_type(encoder, type, value));
}

// The members as a SEQUENCE without extension marker (X.691 clause 19.9). A mandatory member that is absent while
// another is present makes an encoding that no one can read: the value must be valid.
static int encode_members(asn1_per_encoder* encoder, const void* record, const asn1_field* field,
                          const uint8_t* presence, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        if (field_option(&field[i]) != ASN1_OPTION_MANDATORY)
            asn1_put_bits(encoder, 1, presence[i] & kPresent);
    }
    for (uint32_t i = 0; i < count; ++i) {
        if ((presence[i] & kPresent) == 0) continue;
        int result = encode_named(encoder, field_name(&field[i]), field_type(&field[i]),
                                  field_value(&field[i], record));
        if (result != 0) return result;
    }
    return 0;
}

int asn1_per_encode_ext_group(asn1_per_encoder* encoder, const void* record, const asn1_field* field,
                              const uint8_t* presence, uint32_t count) {
    bit_sink outer = begin_open_type(encoder);
    return end_open_type(encoder, outer, encode_members(encoder, record, field, presence, count));
}

int encode_any(asn1_per_encoder* encoder, const asn1_open_value* value) {
    if (value->type) {
        return value->data ? asn1_per_encode_open_type(encoder, value->type, value->data)
                           : report_missing(encoder);
    }
    return asn1_per_encode_ulength_items(encoder, asn1_per_encode_buf1, value->data, value->length);
}

}  // namespace orlenta::per
