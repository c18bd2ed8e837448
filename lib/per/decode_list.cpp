// SPDX-License-Identifier: Apache-2.0
#include "core/growing_list.hpp"
#include "core/path.hpp"
#include "per/decode_items.hpp"
#include "per/decode_type.hpp"
#include "per/list_params.hpp"

namespace orlenta::per {

static int decode_element(asn1_per_decoder* decoder, const asn1_type_desc* type, growing_list* list) {
    int32_t index = static_cast<int32_t>(list->list->count);
    void* element = add_element(list);
    if (!element) return report_no_memory(decoder);
    push_index(&decoder->path, index);
    int result = asn1_per_decode_type(decoder, type, element);
    pop(&decoder->path);
    return result;
}

// Item reader: elements, into the growing list that the parameters name.
static int asn1_per_decode_sequence_of1(asn1_per_decoder* decoder, uint32_t, uint32_t count, void* argument) {
    const asn1_per_list_params* params = static_cast<const asn1_per_list_params*>(argument);
    growing_list* list = static_cast<growing_list*>(params->data);
    if (check_depth(decoder) != 0) return -1;
    if (!claim_elements(list, count)) return report_no_memory(decoder);
    for (; count > 0; --count) {
        int result = decode_element(decoder, params->element, list);
        if (result != 0) return result;
    }
    return 0;
}

int decode_list(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_array* list) {
    list_layout elements = list_of(type);
    growing_list growing = begin_list(&decoder->memory, list, elements.stride);
    asn1_per_list_params params = {&growing, elements.stride, elements.element};
    item_layout layout = layout_of_list(type, elements);
    // The upper bound is read as signed here, and as unsigned in the encoder.
    layout.has_constrained_length = elements.has_upper && static_cast<int32_t>(elements.upper) <= 65535;
    return decode_sized_items(decoder, layout, asn1_per_decode_sequence_of1, &params, "too few elements");
}

}  // namespace orlenta::per
