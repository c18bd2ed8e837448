// SPDX-License-Identifier: Apache-2.0
// BER decoding of SEQUENCE, SET and their lists (X.690 clauses 8.9 to 8.12).
#include "ber/decoder.hpp"
#include "core/growing_list.hpp"
#include "core/presence.hpp"
#include "core/tag.hpp"

namespace orlenta::ber {

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

struct sequence_walk {
    const asn1_type_desc* type;
    void* record;
    uint32_t count;
    uint32_t next;  // first component still to consider; a SET considers them all to the end
    uint8_t* seen;  // one byte a component
};

static bool is_set(const sequence_walk& walk) { return kind_of(walk.type) == ASN1_KIND_SET; }

// Whether the component must come before anything behind it: the search for an element's component ends there.
static bool ends_search(const sequence_walk& walk, const asn1_field* field) {
    if (is_set(walk) || field_option(field) != ASN1_OPTION_MANDATORY) return false;
    return !(is_addition(field) && has_flag(walk.type, ASN1_WORD0_HAS_LOWER));
}

constexpr int32_t kUnknown = -1;
constexpr int32_t kMissing = -2;  // a mandatory component should have come

// The index of the component that an element with the tag word `tag` belongs to, or one of the above.
static int32_t find_component(const sequence_walk& walk, uint32_t tag) {
    const asn1_field* fields = components(walk.type);
    for (uint32_t i = walk.next; i < walk.count; ++i) {
        if (find_tag1(field_type(&fields[i]), tag)) return static_cast<int32_t>(i);
        if (ends_search(walk, &fields[i])) return kMissing;
    }
    return kUnknown;
}

static int decode_component(asn1_ber_decoder* decoder, sequence_walk* walk, uint32_t index, uint32_t tag,
                            int constructed, int32_t length) {
    const asn1_field* field = &components(walk->type)[index];
    if (walk->seen[index] != 0) {
        if (is_observed(decoder)) tell_header(decoder, tag, length);
        return asn1_error(decoder, "component %s (tag=0x%x) present twice in SET/SEQUENCE", field_name(field),
                          tag);
    }
    // Before the value, so that a half decoded one is released with the record.
    if (is_presence_flagged(field)) set_presence_word(field, walk->record, 1);
    enter_component(decoder->observer, field_name(field));
    int result = asn1_ber_decode_type_tag(decoder, field_type(field), field_value(field, walk->record), tag,
                                          constructed, length);
    leave_component(decoder->observer);
    if (result != 0) return result;
    walk->seen[index] = 1;
    if (ends_search(*walk, field)) walk->next = index + 1;
    return 0;
}

// Contents of the next element: a component's, or unknown ones.
static int decode_element(asn1_ber_decoder* decoder, sequence_walk* walk, uint32_t tag, int constructed,
                          int32_t length) {
    int32_t index = find_component(*walk, tag);
    if (index == kMissing) {
        if (is_observed(decoder)) tell_header(decoder, tag, length);
        return asn1_error(decoder, "tag 0x%x not found in SET/SEQUENCE", tag);
    }
    if (index != kUnknown) {
        return decode_component(decoder, walk, static_cast<uint32_t>(index), tag, constructed, length);
    }
    // Whatever follows an unknown element of a SEQUENCE is unknown as well.
    if (!is_set(*walk)) walk->next = walk->count;
    if (is_observed(decoder)) tell_header(decoder, tag, length);
    int result = asn1_ber_skip_tag(decoder, length);
    if (is_observed(decoder) && result == 0) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_UNKNOWN, "unknown element");
    }
    return result;
}

static int end_sequence(asn1_ber_decoder* decoder, const sequence_walk& walk) {
    const asn1_field* fields = components(walk.type);
    int32_t count = static_cast<int32_t>(walk.count);
    if (fill_defaults(&decoder->memory, fields, walk.count, walk.record, walk.seen) != 0) {
        return report_no_memory(decoder);
    }
    struct ::asn1_error* error = &decoder->error;
    if (asn1_sequence_check_fields(fields, count, walk.seen, error->message, sizeof error->message) != 0) {
        return report_position(decoder);
    }
    return 0;
}

static int decode_components(asn1_ber_decoder* decoder, sequence_walk* walk) {
    for (;;) {
        asn1_ber_limit saved;
        int constructed;
        int32_t length;
        int32_t tag = decode_tag_start(decoder, &saved, &constructed, &length);
        if (tag == kEndOfContents) return end_sequence(decoder, *walk);
        if (tag < 0) return -1;
        int result = decode_element(decoder, walk, static_cast<uint32_t>(tag), constructed, length);
        if (result == 0) result = decode_tag_end(decoder, saved);
        if (result != 0) return result;
    }
}

int asn1_ber_decode_sequence(asn1_ber_decoder* decoder, const asn1_type_desc* type, void* value,
                             int constructed) {
    if (require_constructed(decoder, constructed) != 0) return -1;
    sequence_walk walk = {type, value, component_count(type), 0, nullptr};
    presence_bytes held;
    walk.seen = begin_presence(&held, &decoder->memory, walk.count);
    if (walk.seen == nullptr) return report_no_memory(decoder);
    memset(walk.seen, 0, walk.count);
    asn1_parent_frame frame = {decoder->frames, type, value};
    decoder->frames = &frame;
    int result = decode_components(decoder, &walk);
    decoder->frames = frame.parent;
    end_presence(&held, &decoder->memory);
    return result;
}

// ---- SEQUENCE OF, SET OF ----------------------------------------------------------------------------------

static int decode_elements(asn1_ber_decoder* decoder, const asn1_type_desc* element_type,
                           growing_list* growing) {
    for (;;) {
        asn1_ber_limit saved;
        int constructed;
        int32_t length;
        int32_t tag = decode_tag_start(decoder, &saved, &constructed, &length);
        if (tag == kEndOfContents) return 0;
        if (tag < 0) return -1;
        void* element = add_element(growing);
        if (element == nullptr) return report_no_memory(decoder);
        enter_element(decoder->observer, static_cast<int32_t>(growing->list->count - 1));
        int result = asn1_ber_decode_type_tag(decoder, element_type, element, static_cast<uint32_t>(tag),
                                              constructed, length);
        leave_component(decoder->observer);
        if (result == 0) result = decode_tag_end(decoder, saved);
        if (result != 0) return result;
    }
}

int asn1_ber_decode_sequence_of(asn1_ber_decoder* decoder, const asn1_type_desc* type, asn1_array* value,
                                int constructed) {
    if (require_constructed(decoder, constructed) != 0) return -1;
    list_layout list = list_of(type);
    growing_list growing = begin_list(&decoder->memory, value, list.stride);
    int result = decode_elements(decoder, list.element, &growing);
    if (result == 0) end_list(growing);
    return result;
}

}  // namespace orlenta::ber
