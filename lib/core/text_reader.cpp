#include "core/text_reader.hpp"

#include <stdarg.h>
#include <stdlib.h>

#include "core/error.hpp"
#include "core/failed_value.hpp"

namespace orlenta {

void init_text_parser(text_parser* parser, const uint8_t* data, uint64_t length) {
    parser->cursor = data;
    parser->end = data + length;
    parser->line = 1;
    parser->frames = nullptr;
    parser->stack = begin_stack();
    parser->memory = begin_decode_memory(length);
    asn1_error_init(&parser->error);
}

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

// The bytes from `start` to `end` as a NUL-terminated text in `scratch`, or null.
static const char* gather(asn1_byte_buffer* scratch, const uint8_t* start, const uint8_t* end) {
    scratch->length = 0;
    asn1_put_bytes(scratch, start, static_cast<uint64_t>(end - start));
    asn1_put_bytes(scratch, "", 1);
    return scratch->failed ? nullptr : reinterpret_cast<const char*>(scratch->data);
}

static int read_real(text_parser* parser, asn1_byte_buffer* scratch, const uint8_t* start,
                     text_number* number) {
    const char* text = gather(scratch, start, parser->cursor);
    if (!text) return parse_error(parser, kNotEnoughMemory);
    number->is_real = true;
    number->real = strtod(text, nullptr);
    return 0;
}

// More digits than any 64-bit number needs are left to the big integer.
static constexpr ptrdiff_t kSmallDigits = 18;

static void read_small_integer(const uint8_t* at, const uint8_t* end, bool negative, text_integer* integer) {
    int64_t v = 0;
    for (; at < end; ++at) v = v * 10 + (*at - '0');
    integer->is_big = false;
    integer->small = negative ? -v : v;
}

static int read_integer(text_parser* parser, asn1_byte_buffer* scratch, const uint8_t* start,
                        text_number* number) {
    number->is_real = false;
    bool negative = *start == '-';
    const uint8_t* digits = start + negative;
    if (parser->cursor - digits <= kSmallDigits) {
        read_small_integer(digits, parser->cursor, negative, &number->integer);
        return 0;
    }
    number->integer.is_big = false;
    const char* text = gather(scratch, start, parser->cursor);
    asn1_integer* big = &number->integer.big;
    asn1_integer_init(big);
    if (!text || asn1_integer_from_str(big, &text) != 0) {
        asn1_integer_clear(big);
        return parse_error(parser, kNotEnoughMemory);
    }
    number->integer.is_big = true;
    return 0;
}

static const uint8_t* skip_digits(const uint8_t* at, const uint8_t* end) {
    while (at < end && is_digit(*at)) ++at;
    return at;
}

int lex_number(text_parser* parser, asn1_byte_buffer* scratch, bool lower_e, text_number* number) {
    const uint8_t* end = parser->end;
    const uint8_t* start = parser->cursor;
    const uint8_t* integer_end = skip_digits(start + (*start == '-'), end);
    const uint8_t* at = integer_end;
    if (at < end && *at == '.') at = skip_digits(at + 1, end);
    if (at == end || !(*at == 'E' || (lower_e && *at == 'e'))) {
        parser->cursor = integer_end;
        return read_integer(parser, scratch, start, number);
    }
    ++at;
    if (at < end && (*at == '+' || *at == '-')) ++at;
    parser->cursor = skip_digits(at, end);
    return read_real(parser, scratch, start, number);
}

int text_integer_to_si64(const text_integer* integer, int64_t* v) {
    if (integer->is_big) return asn1_integer_get_si64_ov(&integer->big, v);
    *v = integer->small;
    return 0;
}

int text_integer_copy(const text_integer* integer, asn1_integer* dst) {
    return integer->is_big ? asn1_integer_set(dst, &integer->big)
                           : asn1_integer_set_si64(dst, integer->small);
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

// ---- values -----------------------------------------------------------------------------------------------

bool store_integer32(const asn1_type_desc* type, void* value, int64_t number) {
    bool is_unsigned = is_unsigned_integer(type);
    int64_t lowest = is_unsigned ? 0 : INT32_MIN;
    int64_t highest = is_unsigned ? static_cast<int64_t>(UINT32_MAX) : INT32_MAX;
    if (number < lowest || number > highest) return false;
    store32(value, static_cast<uint32_t>(number));
    return true;
}

void* tagged_place(text_parser* parser, const asn1_type_desc* type, void* value) {
    if (!is_indirect(type)) return value;
    if (check_depth(parser) != 0) return nullptr;
    void* inner = asn1_mallocz_value(tagged_inner(type));
    if (!inner) parse_error(parser, kNotEnoughMemory);
    store_pointer(value, inner);
    return inner;
}

int make_open_value(text_parser* parser, asn1_open_value* open, const asn1_type_desc* type) {
    if (check_depth(parser) != 0) return -1;
    open->type = type;
    open->data = asn1_mallocz_value(type);
    return open->data ? 0 : parse_error(parser, kNotEnoughMemory);
}

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

int open_sequence(text_parser* parser, text_sequence* sequence, const asn1_type_desc* type, void* record) {
    sequence->count = component_count(type);
    sequence->seen = sequence->count <= kSeenInline ? sequence->seen_inline
                                                    : static_cast<uint8_t*>(asn1_malloc(sequence->count));
    if (!sequence->seen) return parse_error(parser, kNotEnoughMemory);
    memset(sequence->seen, 0, sequence->count);
    sequence->fields = components(type);
    sequence->expected = 0;
    sequence->record = record;
    sequence->frame = {parser->frames, type, record};
    parser->frames = &sequence->frame;
    return 0;
}

// Looks at the expected component first: texts mostly keep to the order of the type.
static const asn1_field* find_component(const text_sequence* sequence, const char* name, size_t length) {
    const asn1_field* fields = sequence->fields;
    uint32_t expected = sequence->expected;
    if (expected < sequence->count && cstr_equal(name, length, field_name(fields + expected))) {
        return fields + expected;
    }
    for (uint32_t i = 0; i < sequence->count; ++i) {
        if (cstr_equal(name, length, field_name(fields + i))) return fields + i;
    }
    return nullptr;
}

const asn1_field* claim_component(text_parser* parser, text_sequence* sequence, const char* name,
                                  size_t length) {
    const asn1_field* field = find_component(sequence, name, length);
    if (!field) {
        parse_error(parser, "sequence/set component '%s' not found", name);
        return nullptr;
    }
    uint32_t index = static_cast<uint32_t>(field - sequence->fields);
    if (sequence->seen[index]) {
        parse_error(parser, "sequence/set component %s defined twice", name);
        return nullptr;
    }
    sequence->expected = index + 1;
    return field;
}

// DEFAULT components that the text left out, then the rules of presence.
static int complete_sequence(text_parser* parser, const text_sequence* sequence) {
    int32_t count = static_cast<int32_t>(sequence->count);
    if (asn1_sequence_set_default_fields(sequence->fields, count, sequence->record, sequence->seen) != 0) {
        return parse_error(parser, kNotEnoughMemory);
    }
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
    if (sequence->seen != sequence->seen_inline) asn1_free(sequence->seen);
    parser->frames = sequence->frame.parent;
    return result;
}

// ---- the end of a decode ----------------------------------------------------------------------------------

int64_t finish_text_decode(const text_parser* parser, int result, const asn1_type_desc* type, void* value,
                           void** out, uint64_t length, asn1_error* error) {
    if (result == 0) {
        *out = value;
        return static_cast<int64_t>(length);
    }
    free_failed_value(type, value);
    *out = nullptr;
    return hand_out_error(error, &parser->error);
}

}  // namespace orlenta
