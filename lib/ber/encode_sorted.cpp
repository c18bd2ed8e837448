// SPDX-License-Identifier: Apache-2.0
// DER's order of a SET's components and a SET OF's elements (X.690 clauses 10.3, 11.6).
#include <stdlib.h>

#include "ber/encoder.hpp"
#include "core/presence.hpp"

namespace orlenta::ber {

// ---- SET --------------------------------------------------------------------------------------------------

struct set_component {
    uint32_t tag;
    const asn1_field* field;
};

static int cmp_sequence_field(const void* a, const void* b) {
    uint32_t tag_a = static_cast<const set_component*>(a)->tag,
             tag_b = static_cast<const set_component*>(b)->tag;
    return tag_a < tag_b ? -1 : tag_a > tag_b;
}

// The tag by which a component sorts. An untagged CHOICE has that of the alternative chosen. Returns 0, or -1 if
// none is.
static int sort_tag(const asn1_type_desc* type, const void* value, uint32_t* tag) {
    while (kind_of(type) == ASN1_KIND_CHOICE && tag_of(type) == 0) {
        choice_layout choice = choice_of(type);
        uint32_t selector = load32(at_offset(value, choice.selector_offset));
        if (selector >= choice.total) return -1;
        type = alternative_type(choice, selector);
        value = at_offset(value, choice.payload_offset);
    }
    *tag = tag_of(type);
    return 0;
}

// Stores the components to be encoded and returns their number, or -1.
static int64_t collect_components(const asn1_type_desc* type, const void* value, set_component* entries) {
    const asn1_field* fields = components(type);
    int64_t n = 0;
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = &fields[i];
        if (!is_encoded(field, value)) continue;
        if (sort_tag(field_type(field), field_value(field, value), &entries[n].tag) != 0) return -1;
        entries[n++].field = field;
    }
    return n;
}

static int put_components(asn1_ber_encoder* encoder, const void* value, const set_component* entries,
                          int64_t n, uint32_t tag) {
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    for (int64_t i = 0; i < n; ++i) {
        const asn1_field* field = entries[i].field;
        if (asn1_ber_encode_type(encoder, field_type(field), field_value(field, value)) != 0) return -1;
    }
    put_len_end(encoder, start);
    return 0;
}

int asn1_ber_encode_sorted_set(asn1_ber_encoder* encoder, const asn1_type_desc* type, const void* value,
                               uint32_t tag) {
    uint64_t size = component_count(type) * sizeof(set_component);
    set_component* entries = static_cast<set_component*>(asn1_malloc(size));
    if (entries == nullptr) return -1;
    int64_t n = collect_components(type, value, entries);
    int result = -1;
    if (n >= 0) {
        qsort(entries, static_cast<size_t>(n), sizeof *entries, cmp_sequence_field);
        result = put_components(encoder, value, entries, n, tag);
    }
    asn1_free(entries);
    return result;
}

// ---- SET OF -----------------------------------------------------------------------------------------------

struct set_element {
    uint8_t* data;
    uint64_t length;
};

// Of two encodings that begin alike the shorter goes first, as if it were padded with zero octets.
static int cmp_set_of(const void* a, const void* b) {
    const set_element* x = static_cast<const set_element*>(a);
    const set_element* y = static_cast<const set_element*>(b);
    uint64_t shorter = x->length < y->length ? x->length : y->length;
    int order = shorter != 0 ? memcmp(x->data, y->data, shorter) : 0;
    if (order != 0) return order;
    return x->length < y->length ? -1 : x->length > y->length;
}

// Encodes each element into a block of its own. Returns 0 or -1.
static int encode_elements(asn1_ber_encoder* encoder, const list_layout& list, const asn1_array* value,
                           set_element* entries) {
    const asn1_byte_buffer whole = encoder->buffer;
    int result = 0;
    for (uint64_t i = 0; i < value->count && result == 0; ++i) {
        asn1_byte_buffer_init(&encoder->buffer);
        result = asn1_ber_encode_type(encoder, list.element, at_offset(value->data, i * list.stride));
        if (encoder->buffer.failed != 0) result = -1;
        entries[i] = {encoder->buffer.data, encoder->buffer.length};
    }
    encoder->buffer = whole;
    return result;
}

static void put_elements(asn1_ber_encoder* encoder, const set_element* entries, uint64_t count,
                         uint32_t tag) {
    put_tag(encoder, tag, 1);
    uint32_t start = put_len_start(encoder);
    for (uint64_t i = 0; i < count; ++i) asn1_put_bytes(&encoder->buffer, entries[i].data, entries[i].length);
    put_len_end(encoder, start);
}

int asn1_ber_encode_sorted_set_of(asn1_ber_encoder* encoder, const asn1_type_desc* type,
                                  const asn1_array* value, uint32_t tag) {
    if (!has_stack(&encoder->stack)) return -1;
    size_t size;
    if (__builtin_mul_overflow(value->count, sizeof(set_element), &size)) return -1;
    set_element* entries = static_cast<set_element*>(asn1_mallocz(size));
    if (entries == nullptr) return -1;
    int result = encode_elements(encoder, list_of(type), value, entries);
    if (result == 0) {
        qsort(entries, value->count, sizeof *entries, cmp_set_of);
        put_elements(encoder, entries, value->count, tag);
    }
    for (uint64_t i = 0; i < value->count; ++i) asn1_free(entries[i].data);
    asn1_free(entries);
    return result;
}

}  // namespace orlenta::ber
