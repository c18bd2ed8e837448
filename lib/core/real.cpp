// SPDX-License-Identifier: Apache-2.0
// REAL contents octets (X.690 clauses 8.5 and 11.3), which all binary encodings share.
#include <errno.h>
#include <limits.h>
#include <math.h>
#include <orlenta/scalar.h>
#include <stdlib.h>
#include <string.h>

namespace {

// The special values, first octet (X.690 clause 8.5.9).
constexpr uint8_t kPlusInfinity = 0x40, kMinusInfinity = 0x41, kNotANumber = 0x42, kMinusZero = 0x43;

constexpr uint8_t kBinary = 0x80, kNegative = 0x40;
constexpr uint64_t kSignBit = UINT64_C(1) << 63;
constexpr uint64_t kFractionMask = (UINT64_C(1) << 52) - 1;
constexpr uint32_t kExponentMask = 0x7FF;
constexpr uint64_t kQuietNan = UINT64_C(0x7FF8000000000000);

// Longest contents in decimal form that are read, with the first octet, plus one.
constexpr uint32_t kDecimalLimit = 64;

}  // namespace

static uint64_t bits_of(double value) {
    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    return bits;
}

static double real_of(uint64_t bits) {
    double value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

// ---- encoding ---------------------------------------------------------------------------------------------

static int encode_special(uint8_t* out, uint8_t octet) {
    *out = octet;
    return 1;
}

// Base 2, scale factor 0; the mantissa (not 0) is made odd.
static int encode_binary(uint8_t* out, bool negative, uint64_t mantissa, int exponent) {
    int zeros = __builtin_ctzll(mantissa);
    mantissa >>= zeros;
    exponent += zeros;

    uint8_t* next = out + 1;
    *out = static_cast<uint8_t>(kBinary | (negative ? kNegative : 0));
    if (exponent < -128 || exponent > 127) {
        *out |= 1;
        *next++ = static_cast<uint8_t>(exponent >> 8);
    }
    *next++ = static_cast<uint8_t>(exponent);

    int octets = (64 - __builtin_clzll(mantissa) + 7) / 8;
    while (octets-- > 0) *next++ = static_cast<uint8_t>(mantissa >> 8 * octets);
    return static_cast<int>(next - out);
}

int asn1_encode_real_der(uint8_t* out, double value) {
    uint64_t bits = bits_of(value);
    bool negative = (bits & kSignBit) != 0;
    uint32_t exponent = static_cast<uint32_t>(bits >> 52) & kExponentMask;
    uint64_t fraction = bits & kFractionMask;

    if (exponent == kExponentMask) {
        if (fraction != 0) return encode_special(out, kNotANumber);
        return encode_special(out, negative ? kMinusInfinity : kPlusInfinity);
    }
    if (exponent != 0) {
        return encode_binary(out, negative, fraction | UINT64_C(1) << 52, static_cast<int>(exponent) - 1075);
    }
    if (fraction != 0) return encode_binary(out, negative, fraction, -1074);
    return negative ? encode_special(out, kMinusZero) : 0;
}

// ---- decoding ---------------------------------------------------------------------------------------------

static int decode_special(uint8_t first, double* out) {
    switch (first) {
        case kPlusInfinity: *out = HUGE_VAL; return 0;
        case kMinusInfinity: *out = -HUGE_VAL; return 0;
        case kNotANumber: *out = real_of(kQuietNan); return 0;
        case kMinusZero: *out = -0.0; return 0;
        default: return -1;
    }
}

// What bits 5..4 of the first octet multiply the exponent by: base 2, 8, 16; 0 for the reserved one.
static int64_t exponent_factor(uint8_t first) {
    static constexpr int8_t factors[4] = {1, 3, 4, 0};
    return factors[first >> 4 & 3];
}

// Reads the exponent octets at `*in`, which moves behind them.
static int decode_exponent(uint8_t first, const uint8_t** in, const uint8_t* end, int32_t* exponent) {
    uint32_t length = (first & 3) + 1u;
    if (length == 4) {
        if (*in == end) return -1;
        length = *(*in)++;
        if (length > 4) return -1;
    }
    if (length > static_cast<uint64_t>(end - *in)) return -1;
    uint32_t bits = length != 0 && (**in & 0x80) != 0 ? UINT32_MAX : 0;
    for (; length != 0; --length) bits = bits << 8 | *(*in)++;
    *exponent = static_cast<int32_t>(bits);
    return 0;
}

static int decode_binary(const uint8_t* in, uint32_t length, double* out) {
    const uint8_t* end = in + length;
    uint8_t first = *in++;
    int64_t factor = exponent_factor(first);
    int32_t octets_exponent;
    if (factor == 0 || decode_exponent(first, &in, end, &octets_exponent) != 0) return -1;

    double value = 0.0;
    while (in < end) value = value * 256.0 + *in++;

    int64_t exponent = octets_exponent * factor + (first >> 2 & 3);
    if (exponent > INT_MAX) exponent = INT_MAX;
    if (exponent < INT_MIN) exponent = INT_MIN;
    value = ldexp(value, static_cast<int>(exponent));
    *out = (first & kNegative) != 0 ? -value : value;
    return 0;
}

// ISO 6093 NR1, NR2 or NR3; which one the first octet says makes no difference. A minimal library does without strtod().
static int decode_decimal(const uint8_t* in, uint32_t length, double* out) {
#if defined(ORLENTA_MINIMAL)
    static_cast<void>(in), static_cast<void>(length), static_cast<void>(out);
    return -1;
#else
    if (length >= kDecimalLimit) return -1;
    char text[kDecimalLimit];
    memcpy(text, in + 1, length - 1);
    text[length - 1] = '\0';
    errno = 0;
    double value = strtod(text, nullptr);
    if (errno == ERANGE) return -1;
    *out = value;
    return 0;
#endif
}

int asn1_decode_real_ber(const uint8_t* in, uint32_t length, double* out) {
    if (length == 0) {
        *out = 0.0;
        return 0;
    }
    if ((in[0] & kBinary) != 0) return decode_binary(in, length, out);
    if ((in[0] & 0x40) != 0) return decode_special(in[0], out);
    return decode_decimal(in, length, out);
}
