#include <orlenta/value.h>

#include "per/char_params.hpp"
#include "program/build.hpp"

namespace orlenta::program {

// ---- lengths ------------------------------------------------------------------------------------------------

// A length by the bounds of a string or list. The walker's: one that is extensible and general in its root, since that is
// two forms, and a bound from 2^31 on, which is not the same in both directions.
static void set_length(op* made, bool extensible, bool has_upper, uint32_t lower, uint32_t upper) {
    bool is_constrained = has_upper && upper <= 65535;
    made->low = lower;
    made->range = upper - lower;
    made->width = kGeneralLength;
    if (is_constrained && lower <= upper) {
        made->width = static_cast<uint8_t>(range_width(made->range) + (extensible ? 1 : 0));
        made->extension = extensible ? UINT32_C(1) << (made->width - 1) : 0;
    } else if (is_constrained || extensible || (has_upper && upper > INT32_MAX)) {
        made->kind = kWalker;
    }
}

static void set_string_length(op* made, const asn1_type_desc* type, const size_bounds& size) {
    set_length(made, is_extensible(type), size.has_upper, size.lower, size.upper);
}

static void set_general_length(op* made) {
    made->low = 0;
    made->width = kGeneralLength;
}

static void set_char_string(op* made, const asn1_type_desc* type) {
    if (string_type(type) > ASN1_STRING_UNIVERSAL) {
        made->kind = kOctets;
        return set_general_length(made);
    }
    char_string_layout string = char_string_of(type);
    per::asn1_per_char_params params;
    if (per::find_char_params(&params, type, string, false) != 0) return;
    bool is_plain = params.range_count == 0 && params.unit_shift == 0 && params.bits > 0 && params.bits <= 8;
    if (!is_plain) return;
    made->kind = kChars;
    made->count = static_cast<uint8_t>(params.bits);
    set_string_length(made, type, string.size);
}

// ---- numbers ------------------------------------------------------------------------------------------------

static void set_big_integer(op* made, const asn1_type_desc* type) {
    big_bounds bounds = big_bounds_of(type);
    if (is_extensible(type) || !bounds.lower || !bounds.upper || bounds.lower->size != 0) return;
    uint32_t width = asn1_integer_get_bit_size(bounds.upper);
    bool is_normal = bounds.upper->size == (width + 31) / 32;
    if (bounds.upper->negative || !is_normal || width == 0 || width > kWindowBits) return;
    made->kind = kBigInteger;
    made->width = static_cast<uint8_t>(width);
    made->part = bounds.upper->size;
    made->low = bounds.upper->limbs[0];
    made->range = bounds.upper->size > 1 ? bounds.upper->limbs[1] : 0;
}

// ---- what holds other values ----------------------------------------------------------------------------------

static uint32_t list_part(builder* b, uint32_t type, const list_layout& layout) {
    if (b->known.items[type].part != kNone) return b->known.items[type].part;
    uint32_t part = reserve_item(b, &b->lists);
    b->known.items[type].part = part;
    if (b->failed) return 0;
    op element = make_fused_op(b, layout.element, 0, kNone);
    uint32_t index = add_all(b, &b->ops, &element, 1);
    b->lists.items[part] = {layout.stride, index, facts_of(b, layout.element).owns};
    return part;
}

static void set_list(builder* b, op* made, const asn1_type_desc* type) {
    list_layout layout = list_of(type);
    if (layout.stride > UINT32_MAX) return;
    made->kind = kList;
    set_length(made, is_extensible(type), layout.has_upper, layout.lower, layout.upper);
    made->part = list_part(b, made->type, layout);
}

static uint32_t choice_part(builder* b, uint32_t type, const choice_layout& layout) {
    if (b->known.items[type].part != kNone) return b->known.items[type].part;
    uint32_t part = reserve_item(b, &b->choices);
    b->known.items[type].part = part;
    growing<op> ops = {};
    for (uint32_t i = 0; i < layout.total && !b->failed; ++i) {
        add(b, &ops, make_fused_op(b, alternative_type(layout, i), 0, kNone));
    }
    if (!b->failed) {
        b->choices.items[part] = {layout.root, layout.total, static_cast<uint32_t>(layout.selector_offset),
                                  static_cast<uint32_t>(layout.payload_offset),
                                  add_all(b, &b->ops, ops.items, ops.count)};
    }
    asn1_free(ops.items);
    return part;
}

static void set_choice(builder* b, op* made, const asn1_type_desc* type) {
    choice_layout layout = choice_of(type);
    if (layout.root == 0 || layout.root > UINT16_MAX) return;
    made->kind = kChoice;
    made->range = layout.root - 1;
    made->width = static_cast<uint8_t>(range_width(made->range) + (is_extensible(type) ? 1 : 0));
    made->extension = is_extensible(type) ? UINT32_C(1) << (made->width - 1) : 0;
    made->part = choice_part(b, made->type, layout);
}

uint32_t whole_op(builder* b, const asn1_type_desc* type) {
    uint32_t type_at = type_index(b, type);
    if (b->failed) return 0;
    if (b->known.items[type_at].whole != kNone) return b->known.items[type_at].whole;
    uint32_t index = reserve_item(b, &b->ops);
    b->known.items[type_at].whole = index;
    if (b->failed) return 0;
    op made = make_fused_op(b, type, 0, kNone);
    b->ops.items[index] = made;
    return index;
}

static void set_indirect(builder* b, op* made, const asn1_type_desc* type) {
    const asn1_type_desc* inner = tagged_inner(type);
    made->kind = kIndirect;
    made->part = whole_op(b, inner);
    made->low = static_cast<uint32_t>(asn1_get_size(inner));
}

// ---- any type -------------------------------------------------------------------------------------------------

op make_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence) {
    type = behind_tags(type);
    op made = {kWalker, 0, 0, 0, offset, presence, 0, 0, 0, type_index(b, type), 0};
    if (b->failed) return made;
    leaf_form form = leaf_of(type);
    if (form.is_leaf) {
        made.kind = kLeaf;
        made.width = static_cast<uint8_t>(form.width);
        made.low = form.low;
        made.range = form.range;
        made.extension = form.extension;
        return made;
    }
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            made.kind = kSequence;
            made.part = sequence_part(b, made.type);
            break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: set_list(b, &made, type); break;
        case ASN1_KIND_CHOICE: set_choice(b, &made, type); break;
        case ASN1_KIND_INTEGER:
            if (is_big_integer(type)) set_big_integer(&made, type);
            break;
        case ASN1_KIND_BIT_STRING:
            made.kind = kBits;
            set_string_length(&made, type, size_bounds_of(type));
            break;
        case ASN1_KIND_OCTET_STRING:
            made.kind = kOctets;
            set_string_length(&made, type, size_bounds_of(type));
            break;
        case ASN1_KIND_CHAR_STRING: set_char_string(&made, type); break;
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID:
            made.kind = kOctets;
            set_general_length(&made);
            break;
        case ASN1_KIND_NULL: made.kind = kNull; break;
        case ASN1_KIND_TAGGED: set_indirect(b, &made, type); break;
        case ASN1_KIND_ANY:
            made.kind = kOpenType;
            made.part = open_type_part(b, type, nullptr, 0);
            break;
        default: break;
    }
    return made;
}

}  // namespace orlenta::program
