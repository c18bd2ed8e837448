// SPDX-License-Identifier: Apache-2.0
// BER decoding of strings, primitive and in segments (X.690 clauses 8.6, 8.7, 8.19, 8.20, 8.23).
#include "ber/decoder.hpp"
#include "core/code_units.hpp"

namespace orlenta::ber {

// A string that is being put together.
struct segmented_string {
    asn1_string* octets;  // one of the two is null
    asn1_bit_string* bits;
    uint64_t capacity;  // octets allocated; 0 before the first segment
};

// ---- one segment: 0, -1 or kNoMemory ----------------------------------------------------------------------

// The failure of a segment that ends the string; any other shows where the segment should end.
constexpr int kNoMemory = -2;

static int no_memory(asn1_ber_decoder* decoder) {
    report_no_memory(decoder);
    return kNoMemory;
}

static int append_octets(asn1_ber_decoder* decoder, segmented_string* string, int32_t length) {
    asn1_string* value = string->octets;
    uint64_t needed = value->length + static_cast<uint64_t>(length);
    if (needed > string->capacity) {
        void* block = value->data;
        if (!grow_buffer(&decoder->memory, &block, 1, &string->capacity, needed)) return no_memory(decoder);
        value->data = static_cast<uint8_t*>(block);
    }
    uint64_t end = value->length;
    value->length = needed;
    return length == 0 ? 0 : get_bytes(decoder, value->data + end, static_cast<uint64_t>(length));
}

// The count of unused bits at the head of a primitive BIT STRING, or -1.
static int get_unused_bits(asn1_ber_decoder* decoder, int32_t length) {
    if (length < 1) return asn1_error(decoder, "bit string: length must be >= 1");
    int unused = get_byte(decoder);
    if (length == 1 && unused > 0) return asn1_error(decoder, "bit string: first byte must be zero");
    if (unused > 7) return asn1_error(decoder, "bit string: first byte must be <= 7");
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "unused bits %d", unused);
    }
    return unused;
}

// Room for the `count` octets of a first segment, or of one behind segments that had none.
static int allocate_bits(asn1_ber_decoder* decoder, segmented_string* string, uint64_t count) {
    asn1_bit_string* value = string->bits;
    release(&decoder->memory, value->data, 0);
    *value = {};
    value->data = static_cast<uint8_t*>(allocate(&decoder->memory, count));
    if (value->data == nullptr) return no_memory(decoder);
    string->capacity = count;
    return 0;
}

// Room for `count` octets more behind the value's octets.
static int grow_bits(asn1_ber_decoder* decoder, segmented_string* string, uint64_t count) {
    asn1_bit_string* value = string->bits;
    if (value->length % 8 != 0)
        return asn1_error(decoder, "bit string: segment bit length is not a multiple of 8");
    uint64_t needed = value->length / 8 + count;
    if (needed <= string->capacity) return 0;
    void* block = value->data;
    if (!grow_buffer(&decoder->memory, &block, 1, &string->capacity, needed)) return no_memory(decoder);
    value->data = static_cast<uint8_t*>(block);
    return 0;
}

static int append_bits(asn1_ber_decoder* decoder, segmented_string* string, int32_t length) {
    int unused = get_unused_bits(decoder, length);
    if (unused < 0) return -1;
    uint64_t count = static_cast<uint64_t>(length) - 1;
    int result =
        string->capacity == 0 ? allocate_bits(decoder, string, count) : grow_bits(decoder, string, count);
    if (result != 0 || count == 0) return result;
    asn1_bit_string* value = string->bits;
    uint8_t* segment = value->data + value->length / 8;
    if (get_bytes(decoder, segment, count) != 0) return -1;
    segment[count - 1] &= static_cast<uint8_t>(0xFF << unused);
    value->length += count * 8 - static_cast<uint64_t>(unused);
    return 0;
}

static int append_segment(asn1_ber_decoder* decoder, segmented_string* string, int32_t length) {
    return string->bits != nullptr ? append_bits(decoder, string, length)
                                   : append_octets(decoder, string, length);
}

// ---- segments in segments ---------------------------------------------------------------------------------

// The elements open around a segment. They lie in a block and not on the stack, since a sender may nest them as
// deeply as it likes; a string with one level of segments needs no block.
struct segment_nesting {
    asn1_ber_limit* open;
    uint64_t capacity;
    uint64_t depth;
};

static int enter_segment(asn1_ber_decoder* decoder, segment_nesting* nesting, const asn1_ber_limit& saved) {
    if (nesting->depth == nesting->capacity) {
        void* block = nesting->open;
        if (!grow_buffer(&decoder->memory, &block, sizeof saved, &nesting->capacity, nesting->depth + 1)) {
            return report_no_memory(decoder);
        }
        nesting->open = static_cast<asn1_ber_limit*>(block);
    }
    nesting->open[nesting->depth++] = saved;
    return 0;
}

// The innermost constructed segment is at an end, good or bad. Whether one around it, or the string itself, can go
// on: a failure inside counts only if the segment can't be closed where reading stopped.
static bool leave_segments(asn1_ber_decoder* decoder, segment_nesting* nesting, int* result) {
    while (nesting->depth > 0) {
        if (decode_tag_end(decoder, nesting->open[--nesting->depth]) == 0) return true;
        *result = -1;
    }
    return false;
}

static bool is_segment(asn1_ber_decoder* decoder, const segmented_string& string, int32_t tag) {
    const int32_t kBitString = 3, kOctetString = 4;
    bool bits = string.bits != nullptr;
    if (tag == (bits ? kBitString : kOctetString)) return true;
    asn1_error(decoder, "unexpected tag in constructed %s encoding (tag=0x%x expected=0x%x)",
               bits ? "bit string" : "string", static_cast<uint32_t>(tag),
               static_cast<uint32_t>(bits ? kBitString : kOctetString));
    return false;
}

static __attribute__((cold)) void tell_segment(asn1_ber_decoder* decoder, const segmented_string& string) {
    uint64_t unused = string.bits != nullptr ? unused_bits(string.bits) : 0;
    if (bits_read(decoder) - decoder->observer->told > unused) {
        tell_bits(decoder->observer, bits_read(decoder) - unused, ORLENTA_BITS_VALUE, "part of the value");
    }
    tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_PADDING, "padding");
}

static int decode_segments(asn1_ber_decoder* decoder, segmented_string* string, segment_nesting* nesting) {
    for (;;) {
        asn1_ber_limit saved;
        int constructed;
        int32_t length;
        int32_t tag = decode_tag_start(decoder, &saved, &constructed, &length);
        int result = tag == kEndOfContents ? 0 : -1;
        if (is_observed(decoder) && tag >= 0) tell_header(decoder, static_cast<uint32_t>(tag), length);
        if (tag >= 0 && is_segment(decoder, *string, tag)) {
            if (constructed != 0) {
                if (enter_segment(decoder, nesting, saved) != 0) return -1;
                continue;
            }
            if (append_segment(decoder, string, length) == kNoMemory) return -1;
            if (is_observed(decoder)) tell_segment(decoder, *string);
            if (decode_tag_end(decoder, saved) == 0) continue;
        }
        if (!leave_segments(decoder, nesting, &result)) return result;
    }
}

static int decode_constructed(asn1_ber_decoder* decoder, segmented_string* string) {
    segment_nesting nesting = {};
    int result = decode_segments(decoder, string, &nesting);
    release(&decoder->memory, nesting.open, nesting.capacity * sizeof *nesting.open);
    return result;
}

// ---- whole strings ----------------------------------------------------------------------------------------

int asn1_ber_decode_bit_string(asn1_ber_decoder* decoder, asn1_bit_string* value, int constructed,
                               int32_t length) {
    *value = {};
    segmented_string string = {nullptr, value, 0};
    if (constructed != 0) return decode_constructed(decoder, &string);
    return append_bits(decoder, &string, length) == 0 ? 0 : -1;
}

static int decode_primitive(asn1_ber_decoder* decoder, asn1_string* value, int32_t length) {
    value->data = static_cast<uint8_t*>(allocate(&decoder->memory, static_cast<uint64_t>(length)));
    if (value->data == nullptr) return report_no_memory(decoder);
    value->length = static_cast<uint64_t>(length);
    return get_bytes(decoder, value->data, value->length);
}

int asn1_ber_decode_octet_string(asn1_ber_decoder* decoder, asn1_string* value, int constructed,
                                 int32_t length) {
    *value = {};
    if (constructed == 0) return decode_primitive(decoder, value, length);
    segmented_string string = {value, nullptr, 0};
    return decode_constructed(decoder, &string);
}

int asn1_ber_decode_char_string(asn1_ber_decoder* decoder, const asn1_type_desc* type, asn1_string* value,
                                int constructed, int32_t length) {
    int result = asn1_ber_decode_octet_string(decoder, value, constructed, length);
    uint32_t shift = code_unit_shift(string_type(type));
    if (result != 0 || shift == 0) return result;
    uint64_t width = UINT64_C(1) << shift;
    if (value->length % width != 0) {
        return asn1_error(decoder, "character string: octet count must be multiple of %d",
                          static_cast<int>(width));
    }
    value->length >>= shift;
    units_from_big_endian(value->data, value->length, shift);
    return 0;
}

int asn1_ber_decode_object_identifier(asn1_ber_decoder* decoder, asn1_string* value, int constructed,
                                      int32_t length) {
    *value = {};
    if (require_primitive(decoder, constructed) != 0) return -1;
    return decode_primitive(decoder, value, length);
}

}  // namespace orlenta::ber
