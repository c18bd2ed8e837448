// SPDX-License-Identifier: Apache-2.0
#include "core/path.hpp"
#include "per/decode_items.hpp"
#include "per/decode_numbers.hpp"
#include "per/decode_type.hpp"

namespace orlenta::per {

// An alternative behind the extension marker (X.691 clause 23.8). An unknown one is dropped; its selector stays.
static int decode_extension_alternative(asn1_per_decoder* decoder, const choice_layout& choice,
                                        void* record) {
    uint32_t selector;
    if (asn1_per_decode_normally_small_non_neg_whole_number(decoder, &selector) != 0) return -1;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_INDEX,
                  "index %u of %u extensions", selector, choice.total - choice.root);
    }
    selector += choice.root;
    store32(at_offset(record, choice.selector_offset), selector);
    if (selector >= choice.total) {
        return skip_open_type(decoder);
    }
    push_name(&decoder->path, alternative_name(choice, selector));
    int result = asn1_per_decode_open_type(decoder, alternative_type(choice, selector),
                                           at_offset(record, choice.payload_offset));
    pop(&decoder->path);
    return result;
}

int decode_choice(asn1_per_decoder* decoder, const asn1_type_desc* type, void* record) {
    choice_layout choice = choice_of(type);
    if (is_extensible(type)) {
        uint32_t is_extended;
        if (get_extension_bit(decoder, &is_extended) != 0) return -1;
        if (is_extended) return decode_extension_alternative(decoder, choice, record);
    }
    uint32_t selector;
    if (asn1_per_decode_constrained_whole_number(decoder, 0, choice.root - 1, &selector) != 0) return -1;
    if (is_observed(decoder)) {
        tell_bits(decoder->observer, decoder->source.position, ORLENTA_BITS_INDEX, "index %u of %u", selector,
                  choice.root);
    }
    // Without alternatives in the root no index is one.
    if (selector >= choice.root) return asn1_decode_error(decoder, "overflow in constrained whole number");
    store32(at_offset(record, choice.selector_offset), selector);
    return decode_named(decoder, alternative_name(choice, selector), alternative_type(choice, selector),
                        at_offset(record, choice.payload_offset));
}

}  // namespace orlenta::per
