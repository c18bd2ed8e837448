// Decimal text, nine digits at a time.
#include <orlenta/integer.h>
#include <orlenta/memory.h>

namespace {

constexpr int kGroupDigits = 9;
constexpr uint32_t kPowersOfTen[kGroupDigits + 1] = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000,
};

}  // namespace

// ---- to text ----------------------------------------------------------------------------------------------

// Writes `number` before `end`, with `min_digits` digits at the least, and returns where it begins.
static char* put_digits_before(char* end, uint32_t number, int min_digits) {
    for (int digits = 0; number != 0 || digits < min_digits; ++digits) {
        *--end = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    return end;
}

// Writes the magnitude before `end`, using up `a`.
static char* put_magnitude_before(char* end, asn1_integer* a) {
    while (a->size > 1) {
        end = put_digits_before(end, asn1_integer_div_ui(a, kPowersOfTen[kGroupDigits]), kGroupDigits);
    }
    return put_digits_before(end, a->size != 0 ? a->limbs[0] : 0, 1);
}

char* asn1_integer_to_str(const asn1_integer* a, char** block, size_t* len) {
    // A limb has at most ten digits; sign and terminator come on top.
    size_t size = a->size != 0 ? static_cast<size_t>(a->size) * 10 + 2 : 2;
    asn1_integer rest;
    asn1_integer_init(&rest);
    *block = static_cast<char*>(asn1_malloc(size));
    if (*block == nullptr) return nullptr;
    if (asn1_integer_set(&rest, a) != 0) {
        asn1_free(*block);
        *block = nullptr;
        return nullptr;
    }
    asn1_integer_renorm(&rest);
    char* end = *block + size - 1;
    *end = '\0';
    char* text = put_magnitude_before(end, &rest);
    asn1_integer_clear(&rest);
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

static bool is_digit(char c) { return c >= '0' && c <= '9'; }

// a = a * factor + addend, by magnitude.
static int multiply_add(asn1_integer* a, uint32_t factor, uint32_t addend) {
    uint64_t carry = addend;
    uint32_t size = a->size;
    for (uint32_t i = 0; i < size; ++i) {
        carry += static_cast<uint64_t>(a->limbs[i]) * factor;
        a->limbs[i] = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
    if (carry == 0 && size != 0) return 0;
    if (asn1_integer_resize(a, size + 1) != 0) return -1;
    a->limbs[size] = static_cast<uint32_t>(carry);
    return 0;
}

int asn1_integer_from_str(asn1_integer* a, const char** cursor) {
    const char* text = *cursor;
    a->negative = *text == '-';
    if (a->negative != 0) ++text;
    a->size = 0;
    while (is_digit(*text)) {
        uint32_t group = 0;
        int digits = 0;
        for (; digits < kGroupDigits && is_digit(*text); ++digits) {
            group = group * 10 + static_cast<uint32_t>(*text++ - '0');
        }
        if (multiply_add(a, kPowersOfTen[digits], group) != 0) return -1;
    }
    if (a->size == 1 && a->limbs[0] == 0) {
        a->size = 0;
        a->negative = 0;
    }
    *cursor = text;
    return 0;
}
