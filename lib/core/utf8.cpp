// SPDX-License-Identifier: Apache-2.0
// UTF-8 (RFC 3629), one code point at a time.
#include <orlenta/scalar.h>

// Both by the number of continuation bytes less one: the lead byte's payload, and the lowest code point that a
// sequence of that length may carry.
static constexpr uint8_t utf8_first_code_mask[3] = {0x1F, 0x0F, 0x07};
static constexpr uint32_t utf8_min_code[3] = {0x80, 0x800, 0x10000};

int asn1_to_utf8(uint8_t* out, uint32_t code) {
    if (code < 0x80) {
        out[0] = static_cast<uint8_t>(code);
        return 1;
    }
    int continuations = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    static constexpr uint8_t lead[3] = {0xC0, 0xE0, 0xF0};
    out[0] = static_cast<uint8_t>(lead[continuations - 1] |
                                  (code >> 6 * continuations & utf8_first_code_mask[continuations - 1]));
    for (int i = 1; i <= continuations; ++i) {
        out[i] = static_cast<uint8_t>(0x80 | (code >> 6 * (continuations - i) & 0x3F));
    }
    return continuations + 1;
}

int32_t asn1_from_utf8(const uint8_t* in, uint64_t available, const uint8_t** next) {
    uint32_t code = *in;
    if (code < 0x80) {
        *next = in + 1;
        return static_cast<int32_t>(code);
    }
    if (code < 0xC0 || code > 0xF7) return -1;
    uint32_t continuations = code < 0xE0 ? 1 : code < 0xF0 ? 2 : 3;
    if (available <= continuations) return -1;
    code &= utf8_first_code_mask[continuations - 1];
    for (uint32_t i = 1; i <= continuations; ++i) {
        if (in[i] < 0x80 || in[i] > 0xC0) return -1;  // 0xC0 passes, as a continuation of six zero bits
        code = code << 6 | (in[i] & 0x3Fu);
    }
    if (code < utf8_min_code[continuations - 1] || code > 0x10FFFF) return -1;
    *next = in + 1 + continuations;
    return static_cast<int32_t>(code);
}
