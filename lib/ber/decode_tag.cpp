// SPDX-License-Identifier: Apache-2.0
// BER decoding: identifier, length, and the limits of an element (X.690 clause 8.1).
#include "ber/decoder.hpp"
#include "core/error.hpp"

namespace orlenta::ber {

int report_position(asn1_ber_decoder* decoder) {
    decoder->error.bit_position = static_cast<int32_t>(static_cast<uint32_t>(decoder->position * 8));
    return -1;
}

int asn1_error(asn1_ber_decoder* decoder, const char* format, ...) {
    va_list args;
    va_start(args, format);
    set_message(&decoder->error, format, args);
    va_end(args);
    return report_position(decoder);
}

int report_end_of_stream(asn1_ber_decoder* decoder) {
    static const char kMessage[] = "unexpected end of stream or tag";
    memcpy(decoder->error.message, kMessage, sizeof kMessage);
    return report_position(decoder);
}

// ---- identifier -------------------------------------------------------------------------------------------

// Five septets may pass the tag word's number field: all such tags count as this one, whatever their number.
static constexpr uint32_t kHugeTagNumber = 0x7FFFF;

// The number in the octets behind an identifier whose low five bits are all ones, or -1.
static int32_t decode_long_tag_number(asn1_ber_decoder* decoder) {
    int octet = get_byte(decoder);
    if (octet < 0) return -1;
    if ((octet & 0x7F) == 0) return -1;
    uint32_t number = octet & 0x7F;
    uint32_t septets = 1;
    while ((octet & 0x80) != 0) {
        octet = get_byte(decoder);
        if (octet < 0) return -1;
        if (septets < 5) ++septets;
        number = number << 7 | (octet & 0x7F);
    }
    return static_cast<int32_t>(septets < 5 ? number : kHugeTagNumber);
}

// Two zero octets, unless they lie in an element that is passed over.
static __attribute__((cold)) void tell_end_of_contents(asn1_ber_decoder* decoder) {
    if (decoder->observer->told + 16 != bits_read(decoder)) return;
    tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_END, "end of contents");
}

// A zero octet where an identifier is due.
static int32_t decode_end_of_contents(asn1_ber_decoder* decoder) {
    if (!decoder->indefinite) return -1;
    if (get_byte(decoder) != 0) return asn1_error(decoder, "expecting second end of content byte");
    decoder->end_of_contents_seen = true;
    if (is_observed(decoder)) tell_end_of_contents(decoder);
    return kEndOfContents;
}

// The tag word, -1 or kEndOfContents.
static int32_t decode_identifier(asn1_ber_decoder* decoder, int* constructed) {
    int octet = get_byte(decoder);
    if (octet < 0) return decoder->indefinite ? -1 : kEndOfContents;
    if (octet == 0) return decode_end_of_contents(decoder);
    int32_t number = octet & 0x1F;
    if (number == 0x1F) {
        number = decode_long_tag_number(decoder);
        if (number < 0) return -1;
    }
    *constructed = octet >> 5 & 1;
    return number | (octet >> 6) << ASN1_TAG_CLASS_SHIFT;
}

// ---- length -----------------------------------------------------------------------------------------------

// A length in `octets` octets, or -1.
static int32_t decode_long_length(asn1_ber_decoder* decoder, int octets) {
    uint32_t length = 0;
    for (; octets > 0; --octets) {
        int octet = get_byte(decoder);
        if (octet < 0) return -1;
        if (length > 0x7FFFFF) return asn1_error(decoder, "length field too large");
        length = length << 8 | static_cast<uint32_t>(octet);
    }
    return static_cast<int32_t>(length);
}

// Stores the length, kIndefinite included. 0 or -1.
static int decode_length(asn1_ber_decoder* decoder, int32_t* length) {
    int octet = get_byte(decoder);
    if (octet < 0 || octet == 0xFF) return -1;
    if (octet < 0x80) {
        *length = octet;
        return 0;
    }
    *length = octet == 0x80 ? kIndefinite : decode_long_length(decoder, octet & 0x7F);
    return *length == -1 ? -1 : 0;
}

void tell_header(asn1_ber_decoder* decoder, uint32_t tag, int32_t length) {
    if (decoder->tag_start * 8 != decoder->observer->told) return;
    const uint8_t* identifier = decoder->input + decoder->tag_start;
    uint64_t octets = 1;
    if ((identifier[0] & 0x1F) == 0x1F)
        while ((identifier[octets++] & 0x80) != 0) {
        }
    tell_tag(decoder->observer, (decoder->tag_start + octets) * 8, tag);
    if (length == kIndefinite) {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "length indefinite");
    } else {
        tell_bits(decoder->observer, bits_read(decoder), ORLENTA_BITS_LENGTH, "length %d", length);
    }
}

// ---- the element ------------------------------------------------------------------------------------------

static int open_indefinite(asn1_ber_decoder* decoder, int constructed) {
    if (constructed == 0) return asn1_error(decoder, "indefinite length forbidden in primtive encoding");
    decoder->indefinite = true;
    decoder->end_of_contents_seen = false;
    return 0;
}

static int open_definite(asn1_ber_decoder* decoder, int32_t length) {
    if (static_cast<uint64_t>(length) > decoder->limit - decoder->position) return -1;
    decoder->indefinite = false;
    decoder->limit = decoder->position + static_cast<uint64_t>(length);
    return 0;
}

int32_t decode_tag_start(asn1_ber_decoder* decoder, asn1_ber_limit* saved, int* constructed,
                         int32_t* length) {
    decoder->tag_start = decoder->position;
    int32_t tag = decode_identifier(decoder, constructed);
    if (tag < 0) return tag;
    if (decode_length(decoder, length) != 0) return -1;
    *saved = {decoder->limit, decoder->indefinite};
    int result =
        *length == kIndefinite ? open_indefinite(decoder, *constructed) : open_definite(decoder, *length);
    return result == 0 ? tag : -1;
}

static int decode_closing_octets(asn1_ber_decoder* decoder) {
    for (int i = 0; i < 2; ++i) {
        int octet = get_byte(decoder);
        if (octet < 0) return -1;
        if (octet != 0) return asn1_error(decoder, "EOC expected");
    }
    if (is_observed(decoder)) tell_end_of_contents(decoder);
    return 0;
}

int decode_tag_end(asn1_ber_decoder* decoder, const asn1_ber_limit& saved) {
    if (!decoder->indefinite) {
        if (decoder->position != decoder->limit) return asn1_error(decoder, "extraneous characters in tag");
    } else if (!decoder->end_of_contents_seen) {
        if (decode_closing_octets(decoder) != 0) return -1;
    }
    decoder->limit = saved.limit;
    decoder->indefinite = saved.indefinite;
    decoder->end_of_contents_seen = false;
    return 0;
}

// ---- unknown elements -------------------------------------------------------------------------------------

// Passes over the contents of an indefinite element, whatever lies nested in it. All indefinite elements on the way
// down have one limit, that of the definite element around them, so a count of them stands for the whole nesting.
static int skip_indefinite(asn1_ber_decoder* decoder) {
    const asn1_ber_limit around = {decoder->limit, true};
    uint64_t open = 1;
    for (;;) {
        asn1_ber_limit saved;
        int constructed;
        int32_t length;
        int32_t tag = decode_tag_start(decoder, &saved, &constructed, &length);
        if (tag >= 0 && length == kIndefinite) {
            ++open;
            continue;
        }
        if (tag >= 0) {
            decoder->position += static_cast<uint64_t>(length);
            decode_tag_end(decoder, saved);
            continue;
        }
        // This element is at an end, good or bad. The one around goes on if it can be closed here.
        int result = tag == kEndOfContents ? 0 : -1;
        while (--open > 0 && decode_tag_end(decoder, around) != 0) result = -1;
        if (open == 0) return result;
    }
}

int asn1_ber_skip_tag(asn1_ber_decoder* decoder, int32_t length) {
    if (length == kIndefinite) return skip_indefinite(decoder);
    if (static_cast<uint64_t>(length) > decoder->limit - decoder->position) {
        return asn1_error(decoder, "unexpected end of stream");
    }
    decoder->position += static_cast<uint64_t>(length);
    return 0;
}

}  // namespace orlenta::ber
