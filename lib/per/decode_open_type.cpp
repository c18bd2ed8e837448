// Open types (X.691 clause 11.2): an encoding of its own behind its length in octets. It is read as one, with bit
// positions of its own; octets behind the value belong to a later version of the inner type and are ignored.
#include <orlenta/value.h>

#include "per/decode_items.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

// Reads the octets, of which there is at least one, into a new block.
static int get_contents(asn1_per_decoder* decoder, uint8_t** contents, uint32_t* length) {
    *contents = nullptr;
    if (asn1_per_decode_ulength_items(decoder, asn1_per_decode_buf1, contents, length) != 0) {
        asn1_free(*contents);
        return -1;
    }
    return *length == 0 ? asn1_decode_error(decoder, "unexpected zero length") : 0;
}

// Keys of table constraints are not looked for outside the open type.
static void begin_nested(asn1_per_decoder* nested, const asn1_per_decoder* parent, const uint8_t* data,
                         uint32_t size) {
    nested->data = data;
    nested->size = size;
    nested->position = 0;
    nested->bit_count = 0;
    nested->accumulator = 0;
    nested->aligned = parent->aligned;
    nested->frames = nullptr;
    nested->path = parent->path;
    asn1_error_init(&nested->error);
    nested->error.line = parent->error.line;
    nested->stack = parent->stack;
}

static int end_nested(asn1_per_decoder* parent, asn1_per_decoder* nested, uint8_t* contents, int result) {
    if (result != 0) parent->error = nested->error;
    parent->stack = nested->stack;
    asn1_free(contents);
    return result;
}

int asn1_per_decode_open_type(asn1_per_decoder* decoder, const asn1_type_desc* type, void* value) {
    uint8_t* contents;
    uint32_t length;
    if (check_depth(decoder) != 0 || get_contents(decoder, &contents, &length) != 0) return -1;
    asn1_per_decoder nested;
    begin_nested(&nested, decoder, contents, length);
    return end_nested(decoder, &nested, contents, asn1_per_decode_type(&nested, type, value));
}

// Whether a member is there; a DEFAULT that is not is left as it is.
static int get_member_presence(asn1_per_decoder* decoder, const asn1_field* field, void* record,
                               uint8_t* presence) {
    uint32_t bit = 1;
    uint32_t option = field_option(field);
    if (option != ASN1_OPTION_MANDATORY && asn1_get_bits(decoder, 1, &bit) != 0) return -1;
    if (option != ASN1_OPTION_DEFAULT) set_presence_word(field, record, bit);
    *presence = static_cast<uint8_t>(bit);
    return 0;
}

static int decode_members(asn1_per_decoder* decoder, void* record, const asn1_field* fields, uint32_t count) {
    uint8_t* presence = static_cast<uint8_t*>(asn1_malloc(count));
    if (!presence) return asn1_decode_error(decoder, "not enough memory");
    int result = 0;
    for (uint32_t i = 0; i < count && result == 0; ++i) {
        result = get_member_presence(decoder, &fields[i], record, &presence[i]);
    }
    for (uint32_t i = 0; i < count && result == 0; ++i) {
        if (presence[i] == 0) continue;
        result = decode_named(decoder, field_name(&fields[i]), field_type(&fields[i]),
                              field_value(&fields[i], record));
    }
    asn1_free(presence);
    return result;
}

int asn1_per_decode_ext_group(asn1_per_decoder* decoder, void* record, const asn1_field* field,
                              uint32_t count) {
    uint8_t* contents;
    uint32_t length;
    if (get_contents(decoder, &contents, &length) != 0) return -1;
    asn1_per_decoder nested;
    begin_nested(&nested, decoder, contents, length);
    return end_nested(decoder, &nested, contents, decode_members(&nested, record, field, count));
}

int decode_any(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_open_value* value) {
    value->type = asn1_get_constrained_type(decoder->frames, type);
    if (!value->type) {
        asn1_string raw = {};
        int result = asn1_per_decode_ulength_items(decoder, asn1_per_decode_octet_string1, &raw, nullptr);
        value->data = raw.data;
        value->length = raw.length;
        return result;
    }
    value->data = asn1_mallocz_value(value->type);
    if (!value->data) return asn1_decode_error(decoder, "not enough memory");
    return asn1_per_decode_open_type(decoder, value->type, value->data);
}

}  // namespace orlenta::per
