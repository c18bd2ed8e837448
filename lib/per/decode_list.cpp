#include <string.h>

#include "core/path.hpp"
#include "per/decode_items.hpp"
#include "per/decode_type.hpp"
#include "per/list_params.hpp"

namespace orlenta::per {

// Makes room for elements, zero-filled and counted before one of them is read, so that a partial list can be freed.
static int grow_list(asn1_per_decoder* decoder, const asn1_per_list_params* params, uint32_t first,
                     uint32_t count) {
    asn1_array* list = static_cast<asn1_array*>(params->data);
    uint64_t total = uint64_t{first} + count;
    void* block = nullptr;
    // Below that, the product fits 64 bits.
    if (params->stride <= UINT32_MAX || total <= 1) block = asn1_realloc(list->data, params->stride * total);
    if (!block) return asn1_decode_error(decoder, "not enough memory");
    memset(at_offset(block, params->stride * first), 0, params->stride * count);
    list->data = block;
    list->count = total;
    return 0;
}

// Item reader: elements, into the asn1_array that the parameters name.
static int asn1_per_decode_sequence_of1(asn1_per_decoder* decoder, uint32_t first, uint32_t count,
                                        void* argument) {
    const asn1_per_list_params* params = static_cast<const asn1_per_list_params*>(argument);
    if (check_depth(decoder) != 0 || grow_list(decoder, params, first, count) != 0) return -1;
    void* elements = static_cast<asn1_array*>(params->data)->data;
    for (uint64_t i = first; i < uint64_t{first} + count; ++i) {
        push_index(&decoder->path, static_cast<int32_t>(i));
        int result = asn1_per_decode_type(decoder, params->element, at_offset(elements, i * params->stride));
        pop(&decoder->path);
        if (result != 0) return result;
    }
    return 0;
}

int decode_list(asn1_per_decoder* decoder, const asn1_type_desc* type, asn1_array* list) {
    *list = {};
    list_layout elements = list_of(type);
    asn1_per_list_params params = {list, elements.stride, elements.element};
    item_layout layout = layout_of_list(type, elements);
    // The upper bound is read as signed here, and as unsigned in the encoder.
    layout.has_constrained_length = elements.has_upper && static_cast<int32_t>(elements.upper) <= 65535;
    return decode_sized_items(decoder, layout, asn1_per_decode_sequence_of1, &params, "too few elements");
}

}  // namespace orlenta::per
