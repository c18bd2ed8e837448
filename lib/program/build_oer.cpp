// SPDX-License-Identifier: Apache-2.0
// What the builder makes of a type for OER (X.696).
#include <orlenta/value.h>

#include "core/decode_memory.hpp"
#include "core/tag.hpp"
#include "oer/width.hpp"
#include "program/build.hpp"

namespace orlenta::program {

// ---- numbers ------------------------------------------------------------------------------------------------

static bool has_own_numbers(const asn1_type_desc* type, const enum_layout& items) {
    for (uint32_t i = 0; i < items.total; ++i) {
        if (enum_value(type, items, i) != static_cast<int32_t>(i)) return true;
    }
    return false;
}

// The range keeps an item's number in its short form, of one octet below 0x80.
static leaf_form enumerated_form(const asn1_type_desc* type) {
    enum_layout items = enum_of(type);
    if (items.total == 0 || has_own_numbers(type, items)) return {};
    uint32_t range = items.total <= 0x80 ? items.total - 1 : 0x7F;
    return {true, false, false, 0, range, 1};
}

static leaf_form integer_leaf_form(const asn1_type_desc* type) {
    oer::integer_form form = oer::integer_form_of(type);
    if (form.octets == 0) return {};
    uint32_t sign = form.is_unsigned || form.octets == 4 ? 0 : UINT32_C(0x80) << (form.octets * 8 - 8);
    return {true, false, false, sign, UINT32_MAX, form.octets};
}

leaf_form octet_leaf_of(const asn1_type_desc* type) {
    switch (kind_of(type)) {
        case ASN1_KIND_BOOLEAN: return {true, false, false, kAnyOctet, 1, 1};
        case ASN1_KIND_ENUMERATED: return enumerated_form(type);
        case ASN1_KIND_INTEGER: return is_big_integer(type) ? leaf_form{} : integer_leaf_form(type);
        default: return {};
    }
}

leaf pack_octet_leaf(const leaf_form& form, uint32_t offset, uint32_t at) {
    return {offset << 8 | at, form.low, form.range, form.width};
}

static octet_leaf unpack(const leaf& packed, bool is_gate) {
    uint8_t shift = static_cast<uint8_t>(32 - packed.mask * 8);
    octet_leaf made = {packed.place >> 8, static_cast<uint8_t>(packed.place), shift, shift, 0, 0, packed.low,
                       packed.range};
    if (is_gate) made.in_shift = 31;
    if (packed.low == kAnyOctet) {  // which carries a bit over the top
        made.carry = UINT32_C(0xFF) << 24;
        made.in_shift = 32;
        made.negate = -1;
        made.sign = 0;
    }
    return made;
}

uint32_t add_octet_leaves(builder* b, const growing<leaf>& gates, const growing<leaf>& leaves) {
    uint32_t first = static_cast<uint32_t>(b->octet_leaves.count);
    for (uint64_t i = 0; i < gates.count; ++i) add(b, &b->octet_leaves, unpack(gates.items[i], true));
    for (uint64_t i = 0; i < leaves.count; ++i) add(b, &b->octet_leaves, unpack(leaves.items[i], false));
    return first;
}

uint32_t add_octet_leaf(builder* b, const leaf_form& form) {
    octet_leaf one = unpack(pack_octet_leaf(form, 0, 0), false);
    return add_all(b, &b->octet_leaves, &one, 1);
}

// A number behind a length, or of its own octets, by what it is in memory.
static void set_integer(op* made, const asn1_type_desc* type) {
    if (!is_big_integer(type)) {
        made->kind = kCountedNumber;
        made->low = !oer::integer_form_of(type).is_unsigned;
        return;
    }
    oer::integer_form form;
    if (oer::big_integer_form_of(type, &form) != 0) return;
    big_bounds bounds = big_bounds_of(type);
    bool has_both = bounds.lower && bounds.upper;
    made->kind = kBigInteger;
    made->width = static_cast<uint8_t>(form.octets);
    made->low = has_both ? static_cast<uint32_t>(limbs_of_sum(bounds.lower->size, bounds.upper->size)) : 0;
    made->range = form.is_unsigned;
}

// ---- strings ------------------------------------------------------------------------------------------------

// A length, or as many items as both bounds say.
static void set_size(op* made, op_kind kind, const size_bounds& size, bool is_fixed) {
    made->kind = kind;
    made->low = is_fixed ? size.lower : 0;
    made->width = is_fixed ? 0 : kGeneralLength;
}

static void set_string(op* made, op_kind kind, const asn1_type_desc* type) {
    size_bounds size = size_bounds_of(type);
    set_size(made, kind, size, !is_extensible(type) && oer::is_fixed_size(size));
}

// Code units of more than an octet are the walker's.
static void set_char_string(op* made, const asn1_type_desc* type) {
    if (string_type(type) > ASN1_STRING_UNIVERSAL) return set_size(made, kChars, {}, false);
    if (code_unit_shift(string_type(type)) != 0) return;
    size_bounds size = char_string_of(type).size;
    set_size(made, kChars, size, oer::is_fixed_size(size));
}

// ---- CHOICE -------------------------------------------------------------------------------------------------

// The type whose tags an alternative begins with.
static const asn1_type_desc* find_tagged(const asn1_type_desc* type) {
    while (kind_of(type) == ASN1_KIND_TAGGED && tag_of(type) == 0) type = tagged_inner(type);
    return type;
}

static bool is_untagged_choice(const asn1_type_desc* type) {
    return kind_of(type) == ASN1_KIND_CHOICE && tag_of(type) == 0;
}

static bool takes_any_tag(const choice_layout& layout) {
    for (uint32_t i = 0; i < layout.total; ++i) {
        const asn1_type_desc* type = find_tagged(alternative_type(layout, i));
        if (kind_of(type) == ASN1_KIND_ANY) return true;
        if (is_untagged_choice(type) && takes_any_tag(choice_of(type))) return true;
    }
    return false;
}

static void add_tags_of(builder* b, const asn1_type_desc* type, uint32_t alternative) {
    type = find_tagged(type);
    if (!is_untagged_choice(type)) return add(b, &b->choice_tags, {tag_of(type), alternative});
    choice_layout inner = choice_of(type);
    for (uint32_t i = 0; i < inner.total; ++i) add_tags_of(b, alternative_type(inner, i), alternative);
}

static identifier identifier_of(uint32_t tag) {
    uint32_t octet = tag >> ASN1_TAG_CLASS_SHIFT << 6, number = tag & ASN1_TAG_NUMBER_MASK;
    if (tag == 0) return {0, 0};
    if (number < 31) return {(octet | number) << 24, 1};
    uint32_t count = 1, octets = (octet | 31) << 24;
    for (uint32_t digits = number < 0x80 ? 1 : number < 0x4000 ? 2 : 3; digits-- > 0; ++count) {
        uint32_t digit = (number >> digits * 7 & 0x7F) | (digits != 0 ? 0x80 : 0);
        octets |= digit << (24 - count * 8);
    }
    return {octets, count};
}

// How many alternatives, from the first one on, have one tag each, in one octet, in a row.
static uint32_t count_direct(const choice_tag* tags, uint32_t count) {
    uint32_t direct = 0;
    for (; direct < count; ++direct) {
        const choice_tag& one = tags[direct];
        bool is_next = one.alternative == direct && one.tag - direct == tags[0].tag;
        bool is_short = (one.tag & ASN1_TAG_NUMBER_MASK) < 31;
        if (!is_next || !is_short) break;
    }
    return direct;
}

void add_tags(builder* b, choice* made, const choice_layout& layout) {
    made->identifiers = static_cast<uint32_t>(b->identifiers.count);
    made->tags = static_cast<uint32_t>(b->choice_tags.count);
    for (uint32_t i = 0; i < layout.total && !b->failed; ++i) {
        const asn1_type_desc* type = alternative_type(layout, i);
        add(b, &b->identifiers, identifier_of(find_choice_tag(type)));
        add_tags_of(b, type, i);
    }
    if (b->failed) return;
    made->tag_count = static_cast<uint32_t>(b->choice_tags.count) - made->tags;
    const choice_tag* tags = b->choice_tags.items + made->tags;
    made->direct = count_direct(tags, made->tag_count);
    if (made->direct != 0) made->first_octet = identifier_of(tags[0].tag).octets >> 24;
}

// One that takes any tag is the walker's.
static void set_choice(builder* b, op* made, const asn1_type_desc* type) {
    choice_layout layout = choice_of(type);
    if (takes_any_tag(layout)) return;
    made->kind = kChoice;
    made->part = choice_part(b, made->type, layout);
}

// ---- any type -----------------------------------------------------------------------------------------------

void set_octet_op(builder* b, op* made, const asn1_type_desc* type) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            made->part = sequence_part(b, made->type);
            made->kind = b->failed || b->sequences.items[made->part].variants == kNone ? kSequence : kFork;
            break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: set_list(b, made, type); break;
        case ASN1_KIND_CHOICE: set_choice(b, made, type); break;
        case ASN1_KIND_INTEGER: set_integer(made, type); break;
        case ASN1_KIND_ENUMERATED: made->kind = kEnumeration; break;
        case ASN1_KIND_BIT_STRING: set_string(made, kBits, type); break;
        case ASN1_KIND_OCTET_STRING: set_string(made, kOctets, type); break;
        case ASN1_KIND_CHAR_STRING: set_char_string(made, type); break;
        case ASN1_KIND_OBJECT_IDENTIFIER:
        case ASN1_KIND_RELATIVE_OID: set_size(made, kChars, {}, false); break;
        case ASN1_KIND_NULL: made->kind = kNull; break;
        case ASN1_KIND_TAGGED: set_indirect(b, made, type); break;
        case ASN1_KIND_ANY:
            made->kind = kOpenType;
            made->part = open_type_part(b, type, nullptr, 0);
            break;
        default: break;
    }
}

}  // namespace orlenta::program
