// SPDX-License-Identifier: Apache-2.0
// INTEGER, BOOLEAN, ENUMERATED, REAL, OBJECT IDENTIFIER, RELATIVE-OID.
#include "core/object_identifier.hpp"
#include "xer/encode.hpp"

namespace orlenta::xer {

int encode_integer(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    start_text(encoder);
    return put_integer(&encoder->buffer, type, value);
}

// A name as character data, or as an empty element.
static void put_word(asn1_xer_encoder* encoder, const char* word, bool as_text) {
    if (as_text) {
        start_text(encoder);
        asn1_puts(&encoder->buffer, word);
    } else {
        start_tag(encoder, word);
        end_tag(encoder, word);
    }
}

int encode_boolean(asn1_xer_encoder* encoder, const void* value) {
    put_word(encoder, load32(value) != 0 ? "true" : "false", encoder->boolean_text);
    return 0;
}

int encode_enumerated(asn1_xer_encoder* encoder, const asn1_type_desc* type, const void* value) {
    const char* name = item_name(type, value);
    if (!name) return -1;
    put_word(encoder, name, encoder->enumerated_text);
    return 0;
}

int encode_real(asn1_xer_encoder* encoder, const void* value) {
    static constexpr real_forms forms = {"0", "-0", "NaN", "INF", "-INF", 'E'};
    start_text(encoder);
    put_real(&encoder->buffer, value, forms);
    return 0;
}

int encode_object_identifier(asn1_xer_encoder* encoder, const void* value, bool relative) {
    start_text(encoder);
    return put_object_identifier_text(&encoder->buffer, static_cast<const asn1_string*>(value), relative);
}

}  // namespace orlenta::xer
