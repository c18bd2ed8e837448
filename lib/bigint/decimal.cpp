// SPDX-License-Identifier: Apache-2.0
// Decimal text, by digits of base 10^9.
#include <orlenta/integer.h>
#include <orlenta/memory.h>
#include <string.h>

#include "bigint/radix.hpp"

using orlenta::kFewDigits;
using orlenta::kFewResult;
using orlenta::kGroupDigits;

// ---- to text ----------------------------------------------------------------------------------------------

// Writes `number` before `end`, with `min_digits` digits at the least, and returns where it begins.
static char* put_digits_before(char* end, uint32_t number, int min_digits) {
    for (int digits = 0; number != 0 || digits < min_digits; ++digits) {
        *--end = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return end;
}

static char* put_groups_before(char* end, const uint32_t* groups, size_t count) {
    if (count == 0) return put_digits_before(end, 0, 1);
    for (size_t i = 0; i + 1 < count; ++i) end = put_digits_before(end, groups[i], kGroupDigits);
    return put_digits_before(end, groups[count - 1], 1);
}

// Writes the magnitude before `end`; null if memory was not to be had.
static char* put_magnitude_before(char* end, const asn1_integer* a) {
    uint32_t size = a->size;
    while (size != 0 && a->limbs[size - 1] == 0) --size;
    uint32_t few[kFewResult];
    size_t count;
    uint32_t* groups = orlenta::limbs_to_groups(a->limbs, size, few, &count);
    if (groups == nullptr) return nullptr;
    char* text = put_groups_before(end, groups, count);
    if (groups != few) asn1_free(groups);
    return text;
}

char* asn1_integer_to_str(const asn1_integer* a, char** block, size_t* len) {
    // A limb has at most ten digits; sign and terminator come on top.
    size_t size = a->size != 0 ? static_cast<size_t>(a->size) * 10 + 2 : 2;
    *block = static_cast<char*>(asn1_malloc(size));
    if (*block == nullptr) return nullptr;
    char* end = *block + size - 1;
    *end = '\0';
    char* text = put_magnitude_before(end, a);
    if (text == nullptr) {
        asn1_free(*block);
        *block = nullptr;
        return nullptr;
    }
    if (a->negative != 0 && a->size != 0) *--text = '-';
    if (len != nullptr) *len = static_cast<size_t>(end - text);
    return text;
}

int asn1_integer_out_str(FILE* stream, const asn1_integer* a) {
    char* block;
    size_t length;
    const char* text = asn1_integer_to_str(a, &block, &length);
    if (text == nullptr) return -1;
    fwrite(text, 1, length, stream);
    asn1_free(block);
    return 0;
}

// ---- from text --------------------------------------------------------------------------------------------

// More groups than this are more limbs than a record holds.
static constexpr size_t kMaxGroups = 72000000;

static bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The number that up to 18 digits are.
static uint64_t read_digits(const char* text, const char* end) {
    uint64_t number = 0;
    for (; text < end; ++text) number = number * 10 + static_cast<uint64_t>(*text - '0');
    return number;
}

// The groups of the digits from `text` to `end`.
static void read_groups(const char* text, const char* end, uint32_t* groups) {
    while (end > text) {
        const char* start = end - text > kGroupDigits ? end - kGroupDigits : text;
        *groups++ = static_cast<uint32_t>(read_digits(start, end));
        end = start;
    }
}

static int set_limbs(asn1_integer* a, const uint32_t* limbs, size_t count) {
    if (asn1_integer_resize(a, static_cast<uint32_t>(count)) != 0) return -1;
    if (count != 0) memcpy(a->limbs, limbs, count * sizeof *limbs);
    return 0;
}

// Sets the magnitude to that of `groups`.
static int set_groups(asn1_integer* a, const uint32_t* groups, size_t count) {
    uint32_t few[kFewResult];
    size_t limb_count;
    uint32_t* limbs = orlenta::groups_to_limbs(groups, count, few, &limb_count);
    if (limbs == nullptr) return -1;
    int result = set_limbs(a, limbs, limb_count);
    if (limbs != few) asn1_free(limbs);
    return result;
}

// Sets the magnitude to that of the digits from `text` to `end`.
static int set_digits(asn1_integer* a, const char* text, const char* end) {
    if (end - text <= 2 * kGroupDigits) return asn1_integer_set_ui64(a, read_digits(text, end));
    uint32_t few[kFewDigits];
    size_t count = (static_cast<size_t>(end - text) + kGroupDigits - 1) / kGroupDigits;
    if (count > kMaxGroups) return -1;
    uint32_t* groups =
        count <= kFewDigits ? few : static_cast<uint32_t*>(asn1_malloc(count * sizeof *groups));
    if (groups == nullptr) return -1;
    read_groups(text, end, groups);
    int result = set_groups(a, groups, count);
    if (groups != few) asn1_free(groups);
    return result;
}

int asn1_integer_from_str(asn1_integer* a, const char** cursor) {
    const char* text = *cursor;
    bool negative = *text == '-';
    text += negative;
    const char* first = text;
    while (*first == '0') ++first;
    const char* end = first;
    while (is_digit(*end)) ++end;
    if (set_digits(a, first, end) != 0) return -1;
    // A zero has no sign; but a sign without a digit stays.
    a->negative = negative && (a->size != 0 || end == text) ? 1 : 0;
    *cursor = end;
    return 0;
}
