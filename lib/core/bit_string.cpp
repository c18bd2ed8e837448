// SPDX-License-Identifier: Apache-2.0
// Short bit strings as machine integers.
#include <orlenta/scalar.h>
#include <stdio.h>

// The string's bytes from the top of an integer of `width` bytes. Bits behind the string's end in its last byte stay
// as the buffer holds them.
static int to_integer(const char* function, const asn1_bit_string* bits, bool has_out, uint64_t width,
                      uint32_t* number) {
    if (bits == nullptr || !has_out) {
        fprintf(stderr, "%s NULL argument\n", function);
        return 1;
    }
    uint64_t size = (static_cast<uint64_t>(static_cast<uint32_t>(bits->length)) + 7) / 8;
    if (size > width) {
        fprintf(stderr, "bitString length error! %llu instead of max. %llu\n",
                static_cast<unsigned long long>(size), static_cast<unsigned long long>(width));
        return 1;
    }
    if (size != 0 && bits->data == nullptr) {
        fprintf(stderr, "bitString buffer is NULL!\n");
        return 1;
    }
    *number = 0;
    for (uint64_t i = 0; i < size; ++i)
        *number |= static_cast<uint32_t>(bits->data[i]) << 8 * (width - 1 - i);
    return 0;
}

int asn1_conv_bitstring_8(const asn1_bit_string* bits, uint8_t* out) {
    uint32_t number;
    if (to_integer(__func__, bits, out != nullptr, sizeof *out, &number) != 0) return 1;
    *out = static_cast<uint8_t>(number);
    return 0;
}

int asn1_conv_bitstring_16(const asn1_bit_string* bits, uint16_t* out) {
    uint32_t number;
    if (to_integer(__func__, bits, out != nullptr, sizeof *out, &number) != 0) return 1;
    *out = static_cast<uint16_t>(number);
    return 0;
}

int asn1_conv_bitstring_32(const asn1_bit_string* bits, uint32_t* out) {
    uint32_t number;
    if (to_integer(__func__, bits, out != nullptr, sizeof *out, &number) != 0) return 1;
    *out = number;
    return 0;
}
