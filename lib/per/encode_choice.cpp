// SPDX-License-Identifier: Apache-2.0
#include "core/path.hpp"
#include "per/encode_numbers.hpp"
#include "per/encode_type.hpp"

namespace orlenta::per {

// An alternative behind the extension marker (X.691 clause 23.8).
static int encode_extension_alternative(asn1_per_encoder* encoder, const choice_layout& choice,
                                        uint32_t selector, const void* payload) {
    asn1_put_bits(encoder, 1, 1);
    int result = asn1_per_encode_normally_small_non_neg_whole_number(encoder, selector - choice.root);
    if (result != 0) return result;
    push_name(&encoder->path, alternative_name(choice, selector));
    result = asn1_per_encode_open_type(encoder, alternative_type(choice, selector), payload);
    pop(&encoder->path);
    return result;
}

int encode_choice(asn1_per_encoder* encoder, const asn1_type_desc* type, const void* record) {
    choice_layout choice = choice_of(type);
    uint32_t selector = load32(at_offset(record, choice.selector_offset));
    const void* payload = at_offset(record, choice.payload_offset);
    if (selector >= choice.total) return asn1_encode_error(encoder, "choice value %u out of range", selector);
    if (selector >= choice.root) return encode_extension_alternative(encoder, choice, selector, payload);
    if (is_extensible(type)) asn1_put_bits(encoder, 1, 0);
    asn1_per_encode_constrained_whole_number(encoder, 0, choice.root - 1, selector);
    return encode_named(encoder, alternative_name(choice, selector), alternative_type(choice, selector),
                        payload);
}

}  // namespace orlenta::per
