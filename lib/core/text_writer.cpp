// SPDX-License-Identifier: Apache-2.0
#include "core/text_writer.hpp"

#include <orlenta/scalar.h>
#include <stdio.h>

namespace orlenta {

// ---- the encoder ------------------------------------------------------------------------------------------

// Texts of messages have some hundred bytes and more; growing there from 16 takes ten blocks.
static constexpr uint64_t kFirstBlock = 512;

void begin_text(text_encoder* encoder, int32_t depth, const text_hook& hook) {
    asn1_byte_buffer_init(&encoder->buffer);
    reserve(&encoder->buffer, kFirstBlock);
    encoder->depth = depth;
    encoder->hook = hook;
    encoder->stack = begin_stack();
}

int64_t finish_text(text_encoder* encoder, int result, uint8_t** out) {
    const asn1_byte_buffer* buf = &encoder->buffer;
    if (result == 0 && !buf->failed) {
        *out = buf->data;
        return static_cast<int64_t>(buf->length);
    }
    asn1_free(buf->data);
    *out = nullptr;
    return result != 0 ? result : -1;
}

void put_hook_text(asn1_byte_buffer* buf, const hook_text& text) {
    if (text.length > 0) asn1_put_bytes(buf, text.data, static_cast<uint64_t>(text.length));
    asn1_free(text.data);
}

void put_spaces(asn1_byte_buffer* buf, int64_t n) {
    if (n < 1 || !reserve(buf, static_cast<uint64_t>(n))) return;
    memset(buf->data + buf->length, ' ', static_cast<size_t>(n));
    buf->length += static_cast<uint64_t>(n);
}

// ---- numbers ----------------------------------------------------------------------------------------------

// The two digits of each number below 100.
static constexpr char kDigitPairs[] =
    "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
    "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

static uint32_t count_digits(uint32_t v) {
    uint32_t count = 1;
    for (; v >= 100; v /= 100) count += 2;
    return count + (v >= 10);
}

// Prints at `at`, and gives the place behind it.
static uint8_t* print_unsigned(uint8_t* at, uint32_t v) {
    uint8_t* end = at + count_digits(v);
    for (at = end; v >= 100; v /= 100) memcpy(at -= 2, kDigitPairs + v % 100 * 2, 2);
    if (v >= 10) {
        memcpy(at - 2, kDigitPairs + v * 2, 2);
    } else {
        at[-1] = static_cast<uint8_t>('0' + v);
    }
    return end;
}

static constexpr uint64_t kNumberRoom = 11;  // a sign and ten digits

void put_unsigned(asn1_byte_buffer* buf, uint32_t v) {
    if (!reserve(buf, kNumberRoom)) return;
    buf->length = static_cast<uint64_t>(print_unsigned(buf->data + buf->length, v) - buf->data);
}

void put_signed(asn1_byte_buffer* buf, int32_t v) {
    if (!reserve(buf, kNumberRoom)) return;
    uint8_t* at = buf->data + buf->length;
    uint32_t magnitude = static_cast<uint32_t>(v);
    if (v < 0) {
        *at++ = '-';
        magnitude = 0 - magnitude;
    }
    buf->length = static_cast<uint64_t>(print_unsigned(at, magnitude) - buf->data);
}

static int put_big_integer(asn1_byte_buffer* buf, const asn1_integer* value) {
    char* block;
    size_t length;
    const char* text = asn1_integer_to_str(value, &block, &length);
    if (!text) return -1;
    asn1_put_bytes(buf, text, length);
    asn1_free(block);
    return 0;
}

int put_integer(asn1_byte_buffer* buf, const asn1_type_desc* type, const void* value) {
    if (is_big_integer(type)) return put_big_integer(buf, static_cast<const asn1_integer*>(value));
    if (is_unsigned_integer(type)) {
        put_unsigned(buf, load32(value));
    } else {
        put_signed(buf, static_cast<int32_t>(load32(value)));
    }
    return 0;
}

static void put_finite_real(asn1_byte_buffer* buf, double value, char letter) {
    char text[64];
    int length = snprintf(text, sizeof text, letter == 'E' ? "%0.18E" : "%0.18e", value);
    if (length < 0) return;
    const char* exponent = strchr(text, letter);
    if (!exponent || exponent[1] != '+') {
        asn1_put_bytes(buf, text, static_cast<uint64_t>(length));
        return;
    }
    asn1_put_bytes(buf, text, static_cast<uint64_t>(exponent + 1 - text));
    asn1_puts(buf, exponent + 2);
}

void put_real(asn1_byte_buffer* buf, const void* value, const real_forms& forms) {
    double real;
    uint64_t bits;
    memcpy(&real, value, sizeof real);
    memcpy(&bits, value, sizeof bits);
    bool negative = bits >> 63 != 0;
    uint64_t magnitude = bits & ~(UINT64_C(1) << 63);
    constexpr uint64_t kInfinity = UINT64_C(0x7FF0000000000000);
    if (magnitude > kInfinity) {
        asn1_puts(buf, forms.not_a_number);
    } else if (magnitude == kInfinity) {
        asn1_puts(buf, negative ? forms.minus_infinity : forms.plus_infinity);
    } else if (magnitude == 0) {
        asn1_puts(buf, negative ? forms.minus_zero : forms.plus_zero);
    } else {
        put_finite_real(buf, real, forms.exponent);
    }
}

// ---- strings ----------------------------------------------------------------------------------------------

void put_hex_digits(asn1_byte_buffer* buf, const uint8_t* data, uint64_t nibbles, const char* digits) {
    if (!reserve(buf, nibbles)) return;
    uint8_t* out = buf->data + buf->length;
    for (uint64_t i = 0; i < nibbles; ++i) {
        uint8_t byte = data[i >> 1];
        out[i] = static_cast<uint8_t>(digits[i & 1 ? byte & 15 : byte >> 4]);
    }
    buf->length += nibbles;
}

void put_binary_digits(asn1_byte_buffer* buf, const uint8_t* data, uint64_t bits) {
    if (!reserve(buf, bits)) return;
    uint8_t* out = buf->data + buf->length;
    for (uint64_t i = 0; i < bits; ++i) out[i] = data[i >> 3] >> (7 - (i & 7)) & 1 ? '1' : '0';
    buf->length += bits;
}

void put_utf8(asn1_byte_buffer* buf, uint32_t code) {
    uint8_t utf8[4];
    asn1_put_bytes(buf, utf8, static_cast<uint64_t>(asn1_to_utf8(utf8, code)));
}

}  // namespace orlenta
