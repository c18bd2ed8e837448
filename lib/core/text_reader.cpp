// SPDX-License-Identifier: Apache-2.0
#include "core/text_reader.hpp"

#include <orlenta/scalar.h>
#include <stdarg.h>

#include "core/error.hpp"
#include "core/failed_value.hpp"
#include "core/object_identifier.hpp"

namespace orlenta {

int parse_error(text_parser* parser, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&parser->error, format, args);
    va_end(args);
    parser->error.line = static_cast<int32_t>(parser->line);
    return -1;
}

// ---- tokens -----------------------------------------------------------------------------------------------

int lex_identifier(text_parser* parser, text_identifier* identifier, uint8_t extra) {
    const uint8_t* start = parser->cursor;
    const uint8_t* at = start;
    while (at < parser->end && (is_letter(*at) || is_digit(*at) || *at == extra)) {
        if (at - start == kIdentifierMax) return parse_error(parser, "identifier too long");
        ++at;
    }
    identifier->length = static_cast<uint32_t>(at - start);
    memcpy(identifier->text, start, identifier->length);
    identifier->text[identifier->length] = '\0';
    parser->cursor = at;
    return 0;
}

int32_t lex_code_point(text_parser* parser) {
    const uint8_t* at = parser->cursor;
    int32_t code = asn1_from_utf8(at, static_cast<uint64_t>(parser->end - at), &parser->cursor);
    return code >= 0 ? code : parse_error(parser, "invalid UTF-8 code");
}

// ---- lookup by name ---------------------------------------------------------------------------------------

int32_t find_alternative(const choice_layout& choice, const char* text, size_t length) {
    for (uint32_t i = 0; i < choice.total; ++i) {
        if (cstr_equal(text, length, alternative_name(choice, i))) return static_cast<int32_t>(i);
    }
    return -1;
}

int32_t find_item(const enum_layout& items, const char* text, size_t length) {
    for (uint32_t i = 0; i < items.total; ++i) {
        if (cstr_equal(text, length, items.names[i].text)) return static_cast<int32_t>(i);
    }
    return -1;
}

int32_t select_alternative(text_parser* parser, const choice_layout& choice, void* value, const char* name,
                           size_t length) {
    int32_t index = find_alternative(choice, name, length);
    if (index < 0) return parse_error(parser, "choice '%.*s' not found", shown_length(length), name);
    store32(at_offset(value, choice.selector_offset), static_cast<uint32_t>(index));
    return index;
}

int store_item(text_parser* parser, void* value, int32_t index, const char* name, size_t length) {
    if (index < 0) return parse_error(parser, "enumerated '%.*s' not found", shown_length(length), name);
    store32(value, static_cast<uint32_t>(index));
    return 0;
}

// ---- values -----------------------------------------------------------------------------------------------

uint8_t* new_block(text_parser* parser, uint64_t size) {
    void* block = allocate(&parser->memory, size);
    if (!block) parse_error(parser, kNotEnoughMemory);
    return static_cast<uint8_t*>(block);
}

void* tagged_place(text_parser* parser, const asn1_type_desc* type, void* value) {
    if (!is_indirect(type)) return value;
    if (check_depth(parser) != 0) return nullptr;
    void* inner = allocate_value(&parser->memory, tagged_inner(type));
    if (!inner) parse_error(parser, kNotEnoughMemory);
    store_pointer(value, inner);
    return inner;
}

int store_object_identifier(text_parser* parser, asn1_string* value, const char* text, uint64_t length,
                            bool relative, const char* invalid) {
    asn1_byte_buffer contents;
    asn1_byte_buffer_init(&contents);
    if (parse_object_identifier(&contents, text, length, relative) == 0)
        return take_contents(parser, value, &contents);
    asn1_free(contents.data);
    return parse_error(parser, "%s", contents.failed ? kNotEnoughMemory : invalid);
}

int take_contents(text_parser* parser, asn1_string* value, asn1_byte_buffer* contents) {
    *value = {contents->data, contents->length};
    return count_bytes(&parser->memory, contents->capacity) ? 0 : parse_error(parser, kNotEnoughMemory);
}

int make_open_value(text_parser* parser, asn1_open_value* open, const asn1_type_desc* type) {
    if (check_depth(parser) != 0) return -1;
    open->type = type;
    open->data = allocate_value(&parser->memory, type);
    return open->data ? 0 : parse_error(parser, kNotEnoughMemory);
}

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

int open_sequence(text_parser* parser, text_sequence* sequence, const asn1_type_desc* type, void* record) {
    sequence->count = component_count(type);
    sequence->seen = sequence->count <= kSeenInline
                         ? sequence->seen_inline
                         : static_cast<uint8_t*>(allocate(&parser->memory, sequence->count));
    if (!sequence->seen) return parse_error(parser, kNotEnoughMemory);
    memset(sequence->seen, 0, sequence->count);
    sequence->fields = components(type);
    sequence->expected = 0;
    sequence->read = 0;
    sequence->record = record;
    sequence->frame = {parser->frames, type, record};
    parser->frames = &sequence->frame;
    return 0;
}

// Looks from the expected component on first: texts mostly keep to the order of the type.
static const asn1_field* find_component(const text_sequence* sequence, const char* name, size_t length) {
    const asn1_field* fields = sequence->fields;
    for (uint32_t i = sequence->expected; i < sequence->count; ++i) {
        if (cstr_equal(name, length, field_name(fields + i))) return fields + i;
    }
    for (uint32_t i = 0; i < sequence->expected; ++i) {
        if (cstr_equal(name, length, field_name(fields + i))) return fields + i;
    }
    return nullptr;
}

const asn1_field* claim_component(text_parser* parser, text_sequence* sequence, const char* name,
                                  size_t length) {
    const asn1_field* field = find_component(sequence, name, length);
    if (!field) {
        parse_error(parser, "sequence/set component '%.*s' not found", shown_length(length), name);
        return nullptr;
    }
    uint32_t index = static_cast<uint32_t>(field - sequence->fields);
    if (sequence->seen[index]) {
        parse_error(parser, "sequence/set component %.*s defined twice", shown_length(length), name);
        return nullptr;
    }
    sequence->expected = index + 1;
    return field;
}

// DEFAULT components that the text left out, then the rules of presence.
static int complete_sequence(text_parser* parser, const text_sequence* sequence) {
    if (sequence->read == sequence->count) return 0;
    if (fill_defaults(&parser->memory, sequence->fields, sequence->count, sequence->record, sequence->seen) !=
        0) {
        return parse_error(parser, kNotEnoughMemory);
    }
    int32_t count = static_cast<int32_t>(sequence->count);
    asn1_error* error = &parser->error;
    if (asn1_sequence_check_fields(sequence->fields, count, sequence->seen, error->message,
                                   sizeof error->message) != 0) {
        error->line = static_cast<int32_t>(parser->line);
        return -1;
    }
    return 0;
}

int close_sequence(text_parser* parser, text_sequence* sequence, int result) {
    if (result == 0) result = complete_sequence(parser, sequence);
    if (sequence->seen != sequence->seen_inline) release(&parser->memory, sequence->seen, sequence->count);
    parser->frames = sequence->frame.parent;
    return result;
}

// ---- beginning and end of a decode ------------------------------------------------------------------------

// What is held besides the value and not counted: the text of a token or two, four bytes a character and half as much
// again for growth, and what big integers and object identifiers hold until they are finished.
constexpr uint64_t kWorkingBytes = 4096;
constexpr uint64_t kWorkingBytesPerOctet = 16;

void* begin_text_decode(text_parser* parser, uint32_t token, const asn1_type_desc* type, const uint8_t* data,
                        uint64_t length) {
    parser->cursor = data;
    parser->end = data + length;
    parser->line = 1;
    parser->token = token;
    asn1_byte_buffer_init(&parser->contents);
    parser->frames = nullptr;
    parser->stack = begin_stack();
    parser->memory = begin_decode_memory(length);
    set_aside(&parser->memory, kWorkingBytes + kWorkingBytesPerOctet * length);
    asn1_error_init(&parser->error);
    void* value = asn1_mallocz_value(type);
    if (!value) parse_error(parser, kNotEnoughMemory);
    return value;
}

int64_t finish_text_decode(text_parser* parser, int result, const asn1_type_desc* type, void* value,
                           void** out, uint64_t length, asn1_error* error) {
    asn1_free(parser->contents.data);
    if (result == 0) {
        *out = value;
        return static_cast<int64_t>(length);
    }
    free_failed_value(type, value);
    *out = nullptr;
    return hand_out_error(error, &parser->error);
}

}  // namespace orlenta
