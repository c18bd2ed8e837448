// SPDX-License-Identifier: Apache-2.0
#include <orlenta/value.h>

#include "per/char_params.hpp"
#include "per/item_layout.hpp"
#include "per/widths.hpp"
#include "program/build.hpp"

namespace orlenta::program {

// ---- lengths ------------------------------------------------------------------------------------------------

// A length by the bounds of a string or list. The walker's: one that is extensible and in its root general or aligned,
// since that is two forms, and a bound from 2^31 on, which is not the same in both directions.
static void set_length(const builder* b, op* made, const per::item_layout& items, bool has_upper) {
    made->low = items.lower;
    made->range = items.upper - items.lower;
    made->width = kGeneralLength;
    made->extensible = items.extensible;
    if (!items.has_constrained_length) {
        if (items.extensible || (has_upper && items.upper > INT32_MAX)) made->kind = kWalker;
        return;
    }
    per::range_form form = per::range_form_of(b->aligned, made->range);
    made->width = static_cast<uint8_t>(range_width(made->range) + (items.extensible ? 1 : 0));
    if (form != per::kBitField) {
        made->width = form == per::kOneOctet ? 8 : 16;
        made->alignment |= kAlignLength;
    }
    if (b->aligned && items.align_contents) made->alignment |= kAlignContents;
    if (items.lower > items.upper || (items.extensible && form != per::kBitField)) made->kind = kWalker;
}

static void set_general_length(op* made) {
    made->low = 0;
    made->width = kGeneralLength;
}

static void set_char_string(const builder* b, op* made, const asn1_type_desc* type) {
    if (string_type(type) > ASN1_STRING_UNIVERSAL) {
        made->kind = kOctets;
        return set_general_length(made);
    }
    char_string_layout string = char_string_of(type);
    per::asn1_per_char_params params;
    if (per::find_char_params(&params, type, string, b->aligned) != 0) return;
    if (params.unit_shift != 0 || params.bits == 0 || params.bits > 8) return;
    made->kind = params.range_count == 0 ? kChars : kMappedChars;
    made->count = static_cast<uint8_t>(params.bits);
    set_length(b, made, per::layout_of_char_string(type, string.size, params.bits), string.size.has_upper);
}

// ---- numbers ------------------------------------------------------------------------------------------------

// What no leaf of a group is, in ALIGNED PER: octets that are counted, or stand behind an extension bit.
static void set_octet_leaf(const builder* b, op* made, const asn1_type_desc* type) {
    leaf_form form = leaf_of(b->aligned, type);
    made->low = form.low;
    made->range = form.range;
    made->width = static_cast<uint8_t>(form.width);
    made->extensible = is_extensible(type);
    if (!form.aligned) return;
    if (form.range <= 65535) {
        made->kind = kMarkedLeaf;
    } else if (!made->extensible) {
        made->kind = kCountedLeaf;
    }
}

// A magnitude of 64 bits at the most; false if it has more, or leading zeros.
static bool magnitude_of(const asn1_integer* number, uint64_t* magnitude) {
    *magnitude = number->size > 0 ? number->limbs[0] : 0;
    if (number->size > 1) *magnitude |= uint64_t{number->limbs[1]} << 32;
    return number->size <= 2 && (number->size == 0 || number->limbs[number->size - 1] != 0);
}

// How far the bounds are apart; false if that is 0 or does not fit.
static bool distance_of(const big_bounds& bounds, uint64_t* distance) {
    uint64_t low, high;
    if (!magnitude_of(bounds.lower, &low) || !magnitude_of(bounds.upper, &high)) return false;
    if (asn1_integer_cmp(bounds.lower, bounds.upper) >= 0) return false;
    bool same_side = (bounds.lower->negative != 0) == (bounds.upper->negative != 0);
    if (!same_side) return !__builtin_add_overflow(low, high, distance);
    *distance = bounds.upper->negative ? low - high : high - low;
    return true;
}

static void set_big_integer(const builder* b, op* made, const asn1_type_desc* type) {
    big_bounds bounds = big_bounds_of(type);
    uint64_t distance;
    if (is_extensible(type) || !bounds.lower || !bounds.upper || !distance_of(bounds, &distance)) return;
    uint32_t width = 64 - static_cast<uint32_t>(__builtin_clzll(distance));
    made->count = bounds.lower->size != 0;
    made->part = (width + 31) / 32;
    made->low = static_cast<uint32_t>(distance);
    made->range = static_cast<uint32_t>(distance >> 32);
    switch (per::range_form_of(b->aligned, made->range != 0 ? UINT32_MAX : made->low)) {
        case per::kBitField:
            made->kind = kBigInteger;
            made->width = static_cast<uint8_t>(width);
            break;
        case per::kCountedOctets:
            made->kind = kCountedBigInteger;
            made->width = static_cast<uint8_t>(per::octet_count_width((width + 7) / 8));
            break;
        default: break;
    }
}

// ---- what holds other values ----------------------------------------------------------------------------------

static uint32_t list_part(builder* b, uint32_t type, const list_layout& layout) {
    if (b->known.items[type].part != kNone) return b->known.items[type].part;
    uint32_t part = reserve_item(b, &b->lists);
    b->known.items[type].part = part;
    if (b->failed) return 0;
    b->lists.items[part].owns = 1;  // for who asks before it is complete
    op element = make_fused_op(b, layout.element, 0, kNone);
    uint32_t index = add_all(b, &b->ops, &element, 1);
    uint64_t leaves = element.kind == kGroup || element.kind == kAlignedGroup ? element.count
                      : element.kind == kLeaf || element.kind == kAlignedLeaf ? 1
                                                                              : 0;
    bool dense = element.gates == 0 && leaves * sizeof(uint32_t) == layout.stride;
    b->lists.items[part] = {layout.stride, index, facts_of(b, layout.element).owns, dense};
    return part;
}

void set_list(builder* b, op* made, const asn1_type_desc* type) {
    list_layout layout = list_of(type);
    if (layout.stride == 0 || layout.stride > UINT32_MAX) return;
    made->kind = kList;
    if (!b->octets) set_length(b, made, per::layout_of_list(type, layout), layout.has_upper);
    made->part = list_part(b, made->type, layout);
}

uint32_t choice_part(builder* b, uint32_t type, const choice_layout& layout) {
    if (b->known.items[type].part != kNone) return b->known.items[type].part;
    uint32_t part = reserve_item(b, &b->choices);
    b->known.items[type].part = part;
    growing<op> ops = {};
    for (uint32_t i = 0; i < layout.total && !b->failed; ++i) {
        add(b, &ops, make_fused_op(b, alternative_type(layout, i), 0, kNone));
    }
    if (!b->failed) {
        choice made = {};
        made.root = layout.root;
        made.total = layout.total;
        made.selector = static_cast<uint32_t>(layout.selector_offset);
        made.payload = static_cast<uint32_t>(layout.payload_offset);
        made.ops = add_all(b, &b->ops, ops.items, ops.count);
        if (b->octets) add_tags(b, &made, layout);
        b->choices.items[part] = made;
    }
    asn1_free(ops.items);
    return part;
}

static void set_choice(builder* b, op* made, const asn1_type_desc* type) {
    choice_layout layout = choice_of(type);
    if (layout.root == 0 || layout.root > UINT16_MAX) return;
    if (per::range_form_of(b->aligned, layout.root - 1) != per::kBitField) return;
    made->kind = kChoice;
    made->range = layout.root - 1;
    made->width = static_cast<uint8_t>(range_width(made->range) + (is_extensible(type) ? 1 : 0));
    made->extensible = is_extensible(type);
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

void set_indirect(builder* b, op* made, const asn1_type_desc* type) {
    const asn1_type_desc* inner = tagged_inner(type);
    made->kind = kIndirect;
    made->part = whole_op(b, inner);
    made->low = static_cast<uint32_t>(asn1_get_size(inner));
}

// ---- any type -------------------------------------------------------------------------------------------------

op leaf_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence,
           const leaf_form& form) {
    op made = plain_op(form.aligned ? kAlignedLeaf : kLeaf, offset, presence, type_index(b, type));
    made.width = static_cast<uint8_t>(form.width);
    if (b->octets) {
        made.part = add_octet_leaf(b, form);
        return made;
    }
    made.low = form.low;
    made.range = form.range;
    made.extensible = form.extensible;
    made.count = static_cast<uint8_t>(form.width == 0 ? 255 : kWindowBits / form.width);
    return made;
}

op make_op(builder* b, const asn1_type_desc* type, uint32_t offset, uint32_t presence) {
    type = behind_tags(type);
    leaf_form form = form_of(b, type);
    if (form.is_leaf) return leaf_op(b, type, offset, presence, form);
    op made = plain_op(kWalker, offset, presence, type_index(b, type));
    if (b->failed) return made;
    if (b->octets) {
        set_octet_op(b, &made, type);
        return made;
    }
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            made.part = sequence_part(b, made.type);
            made.kind = b->failed || b->sequences.items[made.part].variants == kNone ? kSequence : kFork;
            break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: set_list(b, &made, type); break;
        case ASN1_KIND_CHOICE: set_choice(b, &made, type); break;
        case ASN1_KIND_INTEGER:
            if (is_big_integer(type)) {
                set_big_integer(b, &made, type);
            } else {
                set_octet_leaf(b, &made, type);
            }
            break;
        case ASN1_KIND_BIT_STRING:
            made.kind = kBits;
            set_length(b, &made, per::layout_of_bit_string(type), size_bounds_of(type).has_upper);
            break;
        case ASN1_KIND_OCTET_STRING:
            made.kind = kOctets;
            set_length(b, &made, per::layout_of_octet_string(type), size_bounds_of(type).has_upper);
            break;
        case ASN1_KIND_CHAR_STRING: set_char_string(b, &made, type); break;
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
