// Open types (X.691 clause 11.2): an encoding of its own, complete, behind its length in octets. It is built in a
// buffer of its own, since the length goes first.
#include "per/encode_items.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

static void begin_nested(asn1_per_encoder* nested, const asn1_per_encoder* parent) {
    asn1_byte_buffer_init(&nested->buffer);
    nested->bit_count = 0;
    nested->accumulator = 0;
    nested->aligned = parent->aligned;
    nested->total_bits = 0;
    nested->path = parent->path;
    asn1_error_init(&nested->error);
}

// Hands the octets, or the report, up to the parent. Where memory failed the nested report is empty.
static int end_nested(asn1_per_encoder* parent, asn1_per_encoder* nested, int result) {
    asn1_byte_buffer* buffer = &nested->buffer;
    if (result == 0) result = complete_encoding(nested);
    if (result == 0)
        result = asn1_per_encode_ulength_items(parent, asn1_per_encode_buf1, buffer->data, buffer->length);
    if (result != 0) parent->error = nested->error;
    asn1_free(buffer->data);
    return result;
}

int asn1_per_encode_open_type(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* value) {
    asn1_per_encoder nested;
    begin_nested(&nested, encoder);
    return end_nested(encoder, &nested, asn1_per_encode_type(&nested, type, value));
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
    asn1_per_encoder nested;
    begin_nested(&nested, encoder);
    return end_nested(encoder, &nested, encode_members(&nested, record, field, presence, count));
}

int encode_any(asn1_per_encoder* encoder, const asn1_open_value* value) {
    if (value->type) return asn1_per_encode_open_type(encoder, value->type, value->data);
    return asn1_per_encode_ulength_items(encoder, asn1_per_encode_buf1, value->data, value->length);
}

}  // namespace orlenta::per
