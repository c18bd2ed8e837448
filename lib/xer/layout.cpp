// SPDX-License-Identifier: Apache-2.0
// Where the encoder breaks lines and indents: elements on lines of their own, text directly between its tags.
#include "xer/encode.hpp"

namespace orlenta::xer {

static void put_line_break(asn1_xer_encoder* encoder) {
    if (encoder->indent) put_char(&encoder->buffer, '\n');
}
static void put_indentation(asn1_xer_encoder* encoder) {
    if (encoder->indent) put_spaces(&encoder->buffer, 2 * encoder->depth);
}

void start_tag(asn1_xer_encoder* encoder, const char* name) {
    if (encoder->tag_open) {
        put_char(&encoder->buffer, '>');
        put_line_break(encoder);
    }
    put_indentation(encoder);
    put_char(&encoder->buffer, '<');
    asn1_puts(&encoder->buffer, name);
    encoder->tag_open = true;
    ++encoder->depth;
}

void start_text(asn1_xer_encoder* encoder) {
    if (encoder->tag_open) put_char(&encoder->buffer, '>');
    encoder->tag_open = false;
    encoder->has_text = true;
}

// Closes the start tag of an empty element; true if that ends the element.
static bool close_empty(asn1_xer_encoder* encoder) {
    encoder->tag_open = false;
    asn1_puts(&encoder->buffer, encoder->empty_tags ? "/>" : ">");
    put_line_break(encoder);
    return encoder->empty_tags;
}

void end_tag(asn1_xer_encoder* encoder, const char* name) {
    --encoder->depth;
    if (encoder->tag_open && close_empty(encoder)) return;
    if (!encoder->has_text) put_indentation(encoder);
    encoder->has_text = false;
    asn1_puts(&encoder->buffer, "</");
    asn1_puts(&encoder->buffer, name);
    put_char(&encoder->buffer, '>');
    put_line_break(encoder);
}

}  // namespace orlenta::xer
