// SPDX-License-Identifier: Apache-2.0
#include "core/path.hpp"
#include "per/encode_items.hpp"
#include "per/encode_type.hpp"
#include "per/list_params.hpp"

namespace orlenta::per {

// Item writer: elements.
static int asn1_per_encode_sequence_of1(asn1_per_encoder* encoder, uint64_t first, uint64_t count,
                                        const void* argument) {
    const asn1_per_list_params* params = static_cast<const asn1_per_list_params*>(argument);
    if (check_depth(encoder) != 0) return -1;
    for (uint64_t i = first; i < first + count; ++i) {
        push_index(&encoder->path, static_cast<int32_t>(i));
        int result =
            asn1_per_encode_type(encoder, params->element, at_offset(params->data, i * params->stride));
        pop(&encoder->path);
        if (result != 0) return result;
    }
    return 0;
}

int encode_list(asn1_per_encoder* encoder, const asn1_type_desc* type, const asn1_array* list) {
    list_layout elements = list_of(type);
    asn1_per_list_params params = {list->data, elements.stride, elements.element};
    return encode_sized_items(encoder, layout_of_list(type, elements), asn1_per_encode_sequence_of1, &params,
                              list->count);
}

}  // namespace orlenta::per
