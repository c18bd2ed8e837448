// SPDX-License-Identifier: Apache-2.0
#include "core/object_identifier.hpp"

#include <ctype.h>
#include <orlenta/scalar.h>
#include <stdlib.h>

#include "core/buffer.hpp"

namespace orlenta {

void put_subidentifier(asn1_byte_buffer* buf, uint32_t subidentifier) {
    int shift = 0;
    while (shift < 28 && subidentifier >> (shift + 7) != 0) shift += 7;
    for (; shift > 0; shift -= 7) put_byte(buf, static_cast<uint8_t>(0x80 | (subidentifier >> shift & 0x7F)));
    put_byte(buf, static_cast<uint8_t>(subidentifier & 0x7F));
}

int put_object_identifier_text(asn1_byte_buffer* buf, const asn1_string* contents, bool relative) {
    uint32_t subidentifier = 0;
    bool first = true, within = false;
    for (uint64_t i = 0; i < contents->length; ++i) {
        uint8_t octet = contents->data[i];
        subidentifier = subidentifier << 7 | (octet & 0x7Fu);
        within = (octet & 0x80) != 0;
        if (within) continue;
        int32_t number = static_cast<int32_t>(subidentifier);
        if (!first) {
            asn1_printf(buf, ".%d", number);
        } else if (relative) {
            asn1_printf(buf, "%d", number);
        } else {
            asn1_printf(buf, "%d.%d", number / 40, number % 40);
        }
        first = false;
        subidentifier = 0;
    }
    return within ? -1 : 0;
}

static const char* skip_white_space(const char* text) {
    while (isspace(static_cast<unsigned char>(*text)) != 0) ++text;
    return text;
}

// Reads a number at `*text`, which moves behind it and the white space around it. Numbers wrap at 32 bits; a result
// that is negative is refused.
static int parse_arc(const char** text, int32_t* arc) {
    const char* begin = skip_white_space(*text);
    char* end;
    *arc = static_cast<int32_t>(static_cast<uint32_t>(strtoull(begin, &end, 10)));
    if (end == begin || *arc < 0) return -1;
    *text = skip_white_space(end);
    return 0;
}

// Appends the arc at position `index`; the first two of an absolute identifier make one subidentifier.
static int put_arc(asn1_byte_buffer* buf, uint64_t index, int32_t arc, int32_t* first_arc, bool relative) {
    if (relative || index > 1) {
        put_subidentifier(buf, static_cast<uint32_t>(arc));
        return 0;
    }
    if (index == 0) {
        *first_arc = arc;
        return arc <= 2 ? 0 : -1;
    }
    if (arc > 39) return -1;
    put_subidentifier(buf, static_cast<uint32_t>(*first_arc * 40 + arc));
    return 0;
}

// Reads the arcs from `text` on and returns the NUL that ends them, or null.
static const char* parse_arcs(asn1_byte_buffer* buf, const char* text, bool relative) {
    int32_t arc, first_arc = 0;
    for (uint64_t index = 0;; ++index) {
        if (parse_arc(&text, &arc) != 0 || put_arc(buf, index, arc, &first_arc, relative) != 0)
            return nullptr;
        if (*text == '\0') return text;
        if (*text++ != '.') return nullptr;
    }
}

int parse_object_identifier(asn1_byte_buffer* buf, const char* text, uint64_t length, bool relative) {
    const char* end = parse_arcs(buf, text, relative);
    return end == nullptr || end != text + length || buf->failed != 0 ? -1 : 0;
}

}  // namespace orlenta

int asn1_parse_object_identifier(asn1_string* out, const char* text, uint64_t length, int relative) {
    asn1_byte_buffer buf;
    asn1_byte_buffer_init(&buf);
    if (orlenta::parse_object_identifier(&buf, text, length, relative != 0) != 0) {
        asn1_free(buf.data);
        return -1;
    }
    out->data = buf.data;
    out->length = buf.length;
    return 0;
}
