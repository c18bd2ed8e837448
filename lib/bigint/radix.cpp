// SPDX-License-Identifier: Apache-2.0
// One algorithm for both directions. Chunks of a few digits are converted one by one; then, from level to level, two
// neighbours become one by high * power + low, the power being that of the old base that the low one's digits span. All
// multiplications of a level have operands of the same size, which suits Karatsuba's method.
#include "bigint/radix.hpp"

#include <orlenta/memory.h>
#include <string.h>

namespace orlenta {
namespace {

constexpr uint64_t kBinary = UINT64_C(1) << 32;
constexpr uint64_t kDecimal = 1000000000;

// ---- arithmetic on digits of a base -----------------------------------------------------------------------

// out += a, which has `n` digits; `out` has room for the carry.
template <uint64_t base>
void add_to(uint32_t* out, const uint32_t* a, size_t n) {
    uint64_t carry = 0;
    for (size_t i = 0; i < n; ++i) {
        uint64_t sum = carry + out[i] + a[i];
        carry = sum >= base;
        out[i] = static_cast<uint32_t>(carry != 0 ? sum - base : sum);
    }
    for (out += n; carry != 0; ++out) {
        carry = *out == base - 1;
        *out = carry != 0 ? 0 : *out + 1;
    }
}

// One digit of a difference, which may borrow from the next.
template <uint64_t base>
uint32_t subtract_digit(uint64_t a, uint64_t b, uint64_t* borrow) {
    uint64_t difference = a - b - *borrow;
    *borrow = difference >> 63;
    return static_cast<uint32_t>(*borrow != 0 ? difference + base : difference);
}

// out -= a, which has `n` digits and is not the larger.
template <uint64_t base>
void subtract_from(uint32_t* out, const uint32_t* a, size_t n) {
    uint64_t borrow = 0;
    for (size_t i = 0; i < n; ++i) out[i] = subtract_digit<base>(out[i], a[i], &borrow);
    for (out += n; borrow != 0; ++out) *out = subtract_digit<base>(*out, 0, &borrow);
}

// out = |a - b|, of `n` digits as both. Whether b is the larger.
template <uint64_t base>
bool difference(uint32_t* out, const uint32_t* a, const uint32_t* b, size_t n) {
    uint64_t borrow = 0;
    for (size_t i = 0; i < n; ++i) out[i] = subtract_digit<base>(a[i], b[i], &borrow);
    if (borrow == 0) return false;
    borrow = 0;
    for (size_t i = 0; i < n; ++i) out[i] = subtract_digit<base>(0, out[i], &borrow);
    return true;
}

// ---- multiplication ---------------------------------------------------------------------------------------

// Operands of fewer digits are multiplied digit by digit. All others have an even number of them: they are joined from
// parts, which are smaller than that, two by two.
constexpr size_t kKaratsubaDigits = 40;
static_assert(kFewResult < kKaratsubaDigits);

// Row by row, for base 2^32, whose carries are shifts.
void multiply_rows(uint32_t* out, const uint32_t* a, const uint32_t* b, size_t n) {
    memset(out, 0, n * sizeof *out);
    for (size_t row = 0; row < n; ++row) {
        uint64_t carry = 0, factor = b[row];
        for (size_t i = 0; i < n; ++i) {
            carry += a[i] * factor + out[row + i];
            out[row + i] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
        out[row + n] = static_cast<uint32_t>(carry);
    }
}

// The sum of a[i] * b[count - 1 - i].
uint64_t sum_products(const uint32_t* a, const uint32_t* b, size_t count) {
    uint64_t sum = 0, other = 0;
    size_t i = 0;
    for (; i + 2 <= count; i += 2) {
        sum += static_cast<uint64_t>(a[i]) * b[count - 1 - i];
        other += static_cast<uint64_t>(a[i + 1]) * b[count - 2 - i];
    }
    return i == count ? sum + other : sum + other + static_cast<uint64_t>(a[i]) * b[0];
}

// Column by column, for a base whose carries are divisions: one for as many products as 64 bits hold, with room for
// what comes from the column before.
template <uint64_t base>
void multiply_columns(uint32_t* out, const uint32_t* a, const uint32_t* b, size_t n) {
    constexpr size_t kProducts = 16;
    static_assert((base - 1) * (base - 1) <= (UINT64_MAX - (UINT64_C(1) << 60)) / kProducts);
    uint64_t carry = 0;
    for (size_t column = 0; column < 2 * n - 1; ++column) {
        size_t first = column < n ? 0 : column - n + 1;  // the lowest digit in it, of a and of b
        size_t i = first, count = column - 2 * first + 1;
        uint64_t next = 0;
        for (; count > kProducts; count -= kProducts, i += kProducts) {
            uint64_t sum = sum_products(a + i, b + first + count - kProducts, kProducts);
            next += sum / base;
            carry += sum % base;
        }
        carry += sum_products(a + i, b + first, count);
        out[column] = static_cast<uint32_t>(carry % base);
        carry = next + carry / base;
    }
    out[2 * n - 1] = static_cast<uint32_t>(carry);
}

template <uint64_t base>
void multiply_few(uint32_t* out, const uint32_t* a, const uint32_t* b, size_t n) {
    if constexpr (base == kBinary) {
        multiply_rows(out, a, b, n);
    } else {
        multiply_columns<base>(out, a, b, n);
    }
}

// Digits of scratch that multiply() needs.
size_t scratch_size(size_t n) { return n < kKaratsubaDigits ? 0 : 2 * n + 1; }

// out = a * b, which have `n` digits each and out twice as many.
template <uint64_t base>
void multiply(uint32_t* out, const uint32_t* a, const uint32_t* b, size_t n, uint32_t* scratch) {
    if (n < kKaratsubaDigits) return multiply_few<base>(out, a, b, n);
    size_t half = n / 2;
    uint32_t* cross = scratch;
    uint32_t* rest = scratch + n;
    bool a_negative = difference<base>(out, a, a + half, half);
    bool b_negative = difference<base>(out + half, b, b + half, half);
    multiply<base>(cross, out, out + half, half, rest);
    multiply<base>(out, a, b, half, rest);
    multiply<base>(out + n, a + half, b + half, half, rest);
    // the middle: both products less (a_low - a_high) * (b_low - b_high)
    uint32_t* middle = rest;
    memcpy(middle, out, n * sizeof *out);
    middle[n] = 0;
    add_to<base>(middle, out + n, n);
    if (a_negative != b_negative) {
        add_to<base>(middle, cross, n);
    } else {
        subtract_from<base>(middle, cross, n);
    }
    add_to<base>(out + half, middle, n + 1);
}

// ---- conversion -------------------------------------------------------------------------------------------

size_t without_high_zeros(const uint32_t* digits, size_t count) {
    while (count != 0 && digits[count - 1] == 0) --count;
    return count;
}

// Digit by digit from the top. Returns the digits of the result.
template <uint64_t from, uint64_t to>
size_t convert_few(const uint32_t* source, size_t count, uint32_t* result) {
    size_t size = 0;
    while (count-- > 0) {
        uint64_t carry = source[count];
        for (size_t i = 0; i < size; ++i) {
            carry += result[i] * from;
            result[i] = static_cast<uint32_t>(carry % to);
            carry /= to;
        }
        for (; carry != 0; carry /= to) result[size++] = static_cast<uint32_t>(carry % to);
    }
    return size;
}

// Converts each chunk of `chunk` digits to a part of `part` digits. The last chunks may be short, or empty.
template <uint64_t from, uint64_t to>
void convert_chunks(const uint32_t* source, size_t count, size_t chunk, uint32_t* parts, size_t part,
                    size_t part_count) {
    for (; part_count > 0; --part_count, parts += part) {
        size_t size = count < chunk ? count : chunk;
        size_t used = convert_few<from, to>(source, size, parts);
        memset(parts + used, 0, (part - used) * sizeof *parts);
        source += size;
        count -= size;
    }
}

// Makes one number of all parts, two or more, in their place. `product` is scratch.
template <uint64_t to>
void join_parts(uint32_t* parts, size_t part, size_t part_count, uint32_t* power, uint32_t* product) {
    for (;; part_count /= 2, part *= 2) {
        uint32_t* scratch = product + 2 * part;
        for (uint32_t* low = parts; low < parts + part_count * part; low += 2 * part) {
            multiply<to>(product, low + part, power, part, scratch);
            add_to<to>(product, low, part);
            memcpy(low, product, 2 * part * sizeof *low);
        }
        if (part_count == 2) return;
        multiply<to>(product, power, power, part, scratch);
        memcpy(power, product, 2 * part * sizeof *power);
    }
}

// In chunks of equal size, as many as a power of two.
template <uint64_t from, uint64_t to>
uint32_t* convert_many(const uint32_t* source, size_t count, size_t* result_count) {
    size_t chunk = count, part_count = 1;
    for (; chunk > kFewDigits; chunk = (chunk + 1) / 2) part_count *= 2;
    uint32_t one_above[kFewDigits + 1] = {};
    one_above[chunk] = 1;
    uint32_t first_power[kFewResult];
    size_t part = convert_few<from, to>(one_above, chunk + 1, first_power);

    size_t size = part_count * part, half = size / 2;
    size_t words = size + half + size + scratch_size(half);
    uint32_t* parts = static_cast<uint32_t*>(asn1_malloc(words * sizeof *parts));
    if (parts == nullptr) return nullptr;
    uint32_t* power = parts + size;
    memcpy(power, first_power, part * sizeof *power);
    convert_chunks<from, to>(source, count, chunk, parts, part, part_count);
    join_parts<to>(parts, part, part_count, power, power + half);
    *result_count = without_high_zeros(parts, size);
    return parts;
}

template <uint64_t from, uint64_t to>
uint32_t* convert(const uint32_t* source, size_t count, uint32_t* few, size_t* result_count) {
    if (count > kFewDigits) return convert_many<from, to>(source, count, result_count);
    *result_count = convert_few<from, to>(source, count, few);
    return few;
}

}  // namespace

uint32_t* limbs_to_groups(const uint32_t* limbs, size_t count, uint32_t* few, size_t* result_count) {
    return convert<kBinary, kDecimal>(limbs, count, few, result_count);
}

uint32_t* groups_to_limbs(const uint32_t* groups, size_t count, uint32_t* few, size_t* result_count) {
    return convert<kDecimal, kBinary>(groups, count, few, result_count);
}

}  // namespace orlenta
