// SPDX-License-Identifier: Apache-2.0
#include "core/text_number.hpp"

#include <stdlib.h>

namespace orlenta {

// ---- reading ----------------------------------------------------------------------------------------------

// As many digits as any 64-bit number needs, less one.
static constexpr ptrdiff_t kSmallDigits = 18;

// The bytes from `start` to `end` as a NUL-terminated text in the parser's contents, or null after an error.
static const char* gather(text_parser* parser, const uint8_t* start, const uint8_t* end) {
    asn1_byte_buffer* text = &parser->contents;
    text->length = 0;
    asn1_put_bytes(text, start, static_cast<uint64_t>(end - start));
    put_byte(text, 0);
    if (!text->failed) return reinterpret_cast<const char*>(text->data);
    parse_error(parser, kNotEnoughMemory);
    return nullptr;
}

static int read_real(text_parser* parser, const uint8_t* start, text_number* number) {
    const char* text = gather(parser, start, parser->cursor);
    if (!text) return -1;
    number->is_real = true;
    number->real = strtod(text, nullptr);
    return 0;
}

static void read_integer(const uint8_t* start, const uint8_t* end, text_integer* integer) {
    bool negative = *start == '-';
    const uint8_t* at = start + negative;
    integer->is_long = end - at > kSmallDigits;
    if (integer->is_long) {
        integer->digits = start;
        integer->length = static_cast<uint64_t>(end - start);
        return;
    }
    int64_t number = 0;
    for (; at < end; ++at) number = number * 10 + (*at - '0');
    integer->number = negative ? -number : number;
}

static const uint8_t* skip_digits(const uint8_t* at, const uint8_t* end) {
    while (at < end && is_digit(*at)) ++at;
    return at;
}

static bool goes_on_number(uint8_t c) { return is_digit(c) || c == '.' || c == 'e' || c == 'E'; }

// What most numbers are: a few digits and no more. Else false, and nothing is taken.
static bool lex_small_integer(text_parser* parser, text_integer* integer) {
    const uint8_t* at = parser->cursor;
    bool negative = *at == '-';
    at += negative;
    int64_t number = 0;
    const uint8_t* end = parser->end - at > kSmallDigits ? at + kSmallDigits : parser->end;
    for (; at < end && is_digit(*at); ++at) number = number * 10 + (*at - '0');
    if (at < parser->end && goes_on_number(*at)) return false;
    parser->cursor = at;
    integer->is_long = false;
    integer->number = negative ? -number : number;
    return true;
}

int lex_number(text_parser* parser, bool lower_e, text_number* number) {
    number->is_real = false;
    if (lex_small_integer(parser, &number->integer)) return 0;
    const uint8_t* end = parser->end;
    const uint8_t* start = parser->cursor;
    const uint8_t* integer_end = skip_digits(start + (*start == '-'), end);
    const uint8_t* at = integer_end;
    if (at < end && *at == '.') at = skip_digits(at + 1, end);
    if (at == end || !(*at == 'E' || (lower_e && *at == 'e'))) {
        parser->cursor = integer_end;
        read_integer(start, integer_end, &number->integer);
        return 0;
    }
    ++at;
    if (at < end && (*at == '+' || *at == '-')) ++at;
    parser->cursor = skip_digits(at, end);
    return read_real(parser, start, number);
}

// ---- INTEGER ----------------------------------------------------------------------------------------------

int text_integer_to_si64(const text_integer* integer, int64_t* v) {
    if (!integer->is_long) {
        *v = integer->number;
        return 0;
    }
    const uint8_t* at = integer->digits;
    const uint8_t* end = at + integer->length;
    bool negative = *at == '-';
    at += negative;
    while (at < end && *at == '0') ++at;
    if (end - at > kSmallDigits + 1) return -1;
    uint64_t magnitude = 0;
    for (; at < end; ++at) magnitude = magnitude * 10 + static_cast<uint64_t>(*at - '0');
    if (magnitude > static_cast<uint64_t>(INT64_MAX) + negative) return -1;
    *v = static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
    return 0;
}

int count_big_integer(text_parser* parser, const asn1_integer* value, int result) {
    if (result == 0 && count_limbs(&parser->memory, value->capacity)) return 0;
    return parse_error(parser, kNotEnoughMemory);
}

int store_big_integer(text_parser* parser, const text_integer* integer, void* value) {
    asn1_integer* big = static_cast<asn1_integer*>(value);
    if (!integer->is_long) {
        int result = asn1_integer_set_si64(big, integer->number);
        return count_big_integer(parser, big, result);
    }
    const char* text = gather(parser, integer->digits, integer->digits + integer->length);
    if (!text) return -1;
    return count_big_integer(parser, big, asn1_integer_from_str(big, &text));
}

int store_integer32(text_parser* parser, const asn1_type_desc* type, void* value, int64_t number) {
    bool is_unsigned = is_unsigned_integer(type);
    int64_t lowest = is_unsigned ? 0 : INT32_MIN;
    int64_t highest = is_unsigned ? static_cast<int64_t>(UINT32_MAX) : INT32_MAX;
    if (number < lowest || number > highest) return parse_error(parser, "integer too large");
    store32(value, static_cast<uint32_t>(number));
    return 0;
}

// ---- REAL -------------------------------------------------------------------------------------------------

bool text_number_to_real(const text_number* number, double* real) {
    if (number->is_real) {
        *real = number->real;
        return true;
    }
    int64_t integer;
    if (text_integer_to_si64(&number->integer, &integer) != 0) return false;
    *real = static_cast<double>(integer);
    return true;
}

bool find_named_real(const real_names& names, const char* text, size_t length, double* real) {
    const struct {
        const char* name;
        uint64_t bits;
    } rows[] = {
        {names.plus_infinity, UINT64_C(0x7FF0000000000000)},
        {names.minus_infinity, UINT64_C(0xFFF0000000000000)},
        {names.not_a_number, UINT64_C(0x7FF8000000000000)},
        {names.minus_zero, UINT64_C(0x8000000000000000)},
    };
    for (const auto& row : rows) {
        if (!row.name || !cstr_equal(text, length, row.name)) continue;
        memcpy(real, &row.bits, sizeof row.bits);
        return true;
    }
    return false;
}

}  // namespace orlenta
