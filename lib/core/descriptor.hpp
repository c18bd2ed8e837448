// SPDX-License-Identifier: Apache-2.0
// The readers of the descriptor format: nothing else in the library counts the words of a table.
#pragma once

#include <orlenta/integer.h>
#include <orlenta/type.h>
#include <string.h>

namespace orlenta {

// ---- word 0 -----------------------------------------------------------------------------------------------

inline uint32_t word0(const asn1_type_desc* type) { return static_cast<uint32_t>(type->number); }
inline uint32_t kind_of(const asn1_type_desc* type) { return word0(type) >> ASN1_WORD0_KIND_SHIFT; }
inline bool has_flag(const asn1_type_desc* type, uint32_t flag) { return (word0(type) & flag) != 0; }
inline bool is_extensible(const asn1_type_desc* type) { return has_flag(type, ASN1_WORD0_EXTENSIBLE); }
inline bool is_big_integer(const asn1_type_desc* type) { return has_flag(type, ASN1_WORD0_BIG); }
inline bool is_explicit(const asn1_type_desc* type) { return has_flag(type, ASN1_WORD0_EXPLICIT); }
inline bool is_indirect(const asn1_type_desc* type) { return has_flag(type, ASN1_WORD0_INDIRECT); }
// Class in bits 20..19, number in bits 18..0; 0 if the type has no tag of its own.
inline uint32_t tag_of(const asn1_type_desc* type) { return word0(type) & ASN1_WORD0_TAG_MASK; }

// INTEGER held as an asn1_integer.
inline bool holds_big_integer(const asn1_type_desc* type) {
    return kind_of(type) == ASN1_KIND_INTEGER && is_big_integer(type);
}

// Whether a value is its record and no more: nothing to release, nothing behind a pointer.
inline bool is_flat(const asn1_type_desc* type) {
    constexpr uint32_t flat_kinds = 1u << ASN1_KIND_INTEGER | 1u << ASN1_KIND_BOOLEAN |
                                    1u << ASN1_KIND_ENUMERATED | 1u << ASN1_KIND_NULL | 1u << ASN1_KIND_REAL;
    return (flat_kinds >> kind_of(type) & 1) != 0 && !holds_big_integer(type);
}

// The low half of a word, which is where bounds, counts and codes lie.
inline uint32_t low32(asn1_word word) { return static_cast<uint32_t>(word.number); }

// 1 if the flag is set: how far a word that the flag guards pushes those behind it.
inline size_t words_if(const asn1_type_desc* type, uint32_t flag) { return has_flag(type, flag) ? 1 : 0; }

// ---- values in memory -------------------------------------------------------------------------------------

inline void* at_offset(void* record, uint64_t offset) { return static_cast<uint8_t*>(record) + offset; }
inline const void* at_offset(const void* record, uint64_t offset) {
    return static_cast<const uint8_t*>(record) + offset;
}

inline uint32_t load32(const void* value) {
    uint32_t v;
    memcpy(&v, value, sizeof v);
    return v;
}
inline void store32(void* value, uint32_t v) { memcpy(value, &v, sizeof v); }
inline void* load_pointer(const void* value) {
    void* p;
    memcpy(&p, value, sizeof p);
    return p;
}
inline void store_pointer(void* value, void* p) { memcpy(value, &p, sizeof p); }

// ---- SEQUENCE, SET ----------------------------------------------------------------------------------------

inline uint32_t component_count(const asn1_type_desc* type) { return low32(type[1]); }
inline uint64_t record_size(const asn1_type_desc* type) { return type[2].number; }
inline const asn1_field* components(const asn1_type_desc* type) {
    return reinterpret_cast<const asn1_field*>(type + 3);
}

inline uint32_t field_flags(const asn1_field* field) { return low32(field->flags); }
inline uint32_t field_offset(const asn1_field* field) { return field_flags(field) & ASN1_FIELD_OFFSET_MASK; }
inline uint32_t field_option(const asn1_field* field) {
    return field_flags(field) >> ASN1_FIELD_OPTION_SHIFT & ASN1_FIELD_OPTION_MASK;
}
inline bool is_addition(const asn1_field* field) { return (field_flags(field) & ASN1_FIELD_ADDITION) != 0; }
inline bool opens_group(const asn1_field* field) {
    return (field_flags(field) & ASN1_FIELD_OPENS_GROUP) != 0;
}
inline bool closes_group(const asn1_field* field) {
    return (field_flags(field) & ASN1_FIELD_CLOSES_GROUP) != 0;
}
inline const asn1_type_desc* field_type(const asn1_field* field) { return field->type.type; }
inline const char* field_name(const asn1_field* field) { return field->name.text; }

// An OPTIONAL component, or a mandatory extension addition, which an old encoding may lack.
inline bool is_presence_flagged(const asn1_field* field) {
    uint32_t option = field_option(field);
    return option == ASN1_OPTION_OPTIONAL || (option == ASN1_OPTION_MANDATORY && is_addition(field));
}
inline uint32_t presence_offset(const asn1_field* field) { return low32(field->extra); }
inline uint32_t presence_word(const asn1_field* field, const void* record) {
    return load32(at_offset(record, presence_offset(field)));
}
inline void set_presence_word(const asn1_field* field, void* record, uint32_t present) {
    store32(at_offset(record, presence_offset(field)), present);
}
inline void* field_value(const asn1_field* field, void* record) {
    return at_offset(record, field_offset(field));
}
inline const void* field_value(const asn1_field* field, const void* record) {
    return at_offset(record, field_offset(field));
}

// ---- SEQUENCE OF, SET OF ----------------------------------------------------------------------------------

struct list_layout {
    bool has_lower, has_upper;
    uint32_t lower, upper;  // upper is 0xFFFFFFFF without an upper bound word
    uint64_t stride;        // bytes of an element record
    const asn1_type_desc* element;
    const char* element_tag;  // XER's tag name, null in general
};

inline list_layout list_of(const asn1_type_desc* type) {
    list_layout list;
    const asn1_word* word = type + 1;
    list.has_lower = has_flag(type, ASN1_WORD0_HAS_LOWER);
    list.has_upper = has_flag(type, ASN1_WORD0_HAS_UPPER);
    list.lower = list.has_lower ? low32(*word++) : 0;
    list.upper = list.has_upper ? low32(*word++) : UINT32_MAX;
    list.stride = word[0].number;
    list.element = word[1].type;
    list.element_tag = word[2].text;
    return list;
}

// ---- CHOICE -----------------------------------------------------------------------------------------------

struct choice_layout {
    uint32_t root, total;  // alternatives: root ones, and with the extension ones
    uint64_t size;         // bytes of the record
    uint64_t selector_offset, payload_offset;
    const asn1_choice_alt* alternatives;
};

inline choice_layout choice_of(const asn1_type_desc* type) {
    choice_layout choice;
    const asn1_word* word = type + 1;
    choice.root = low32(*word++);
    choice.total = choice.root + (is_extensible(type) ? low32(*word++) : 0);
    choice.size = word[0].number;
    choice.selector_offset = word[1].number;
    choice.payload_offset = word[2].number;
    choice.alternatives = reinterpret_cast<const asn1_choice_alt*>(word + 3);
    return choice;
}

inline const asn1_type_desc* alternative_type(const choice_layout& choice, uint32_t index) {
    return choice.alternatives[index].type.type;
}
inline uint32_t selector_of(const choice_layout& choice, const void* value) {
    return load32(at_offset(value, choice.selector_offset));
}
inline const char* alternative_name(const choice_layout& choice, uint32_t index) {
    return choice.alternatives[index].name.text;
}

// ---- INTEGER ----------------------------------------------------------------------------------------------

// The first word behind those of the bounds, of a type whose bounds come first.
inline const asn1_word* behind_bounds(const asn1_type_desc* type) {
    return type + 1 + words_if(type, ASN1_WORD0_HAS_LOWER) + words_if(type, ASN1_WORD0_HAS_UPPER);
}

// Bounds of a 32-bit INTEGER, as bit patterns; a bound that is not there is 0.
struct integer_bounds {
    bool has_lower, has_upper;
    uint32_t lower, upper;
};

inline integer_bounds integer_bounds_of(const asn1_type_desc* type) {
    integer_bounds bounds;
    const asn1_word* word = type + 1;
    bounds.has_lower = has_flag(type, ASN1_WORD0_HAS_LOWER);
    bounds.has_upper = has_flag(type, ASN1_WORD0_HAS_UPPER);
    bounds.lower = bounds.has_lower ? low32(*word++) : 0;
    bounds.upper = bounds.has_upper ? low32(*word) : 0;
    return bounds;
}

// Bounds of an INTEGER held as an asn1_integer; null where there is none.
struct big_bounds {
    const asn1_integer* lower;
    const asn1_integer* upper;
};

inline big_bounds big_bounds_of(const asn1_type_desc* type) {
    const asn1_word* word = type + 1;
    big_bounds bounds;
    bounds.lower = has_flag(type, ASN1_WORD0_HAS_LOWER) ? (word++)->integer : nullptr;
    bounds.upper = has_flag(type, ASN1_WORD0_HAS_UPPER) ? word->integer : nullptr;
    return bounds;
}

// Whether a 32-bit INTEGER is read as unsigned: a lower bound that is not negative, and no extension marker.
inline bool is_unsigned_integer(const asn1_type_desc* type) {
    return has_flag(type, ASN1_WORD0_HAS_LOWER) && !is_extensible(type) &&
           static_cast<int32_t>(low32(type[1])) >= 0;
}

// ---- strings ----------------------------------------------------------------------------------------------

// Size bounds of a string; upper is 0xFFFFFFFF without an upper bound word.
struct size_bounds {
    bool has_lower, has_upper;
    uint32_t lower, upper;
};

inline size_bounds read_size_bounds(const asn1_type_desc* type, const asn1_word* word) {
    size_bounds bounds;
    bounds.has_lower = has_flag(type, ASN1_WORD0_HAS_LOWER);
    bounds.has_upper = has_flag(type, ASN1_WORD0_HAS_UPPER);
    bounds.lower = bounds.has_lower ? low32(*word++) : 0;
    bounds.upper = bounds.has_upper ? low32(*word) : UINT32_MAX;
    return bounds;
}

// BIT STRING (bits) and OCTET STRING (bytes).
inline size_bounds size_bounds_of(const asn1_type_desc* type) { return read_size_bounds(type, type + 1); }

// ASN1_STRING_...
inline uint32_t string_type(const asn1_type_desc* type) { return low32(type[1]); }

// log2 of the bytes of a code unit.
inline uint32_t code_unit_shift(uint32_t string_type) {
    return string_type == ASN1_STRING_BMP ? 1 : string_type == ASN1_STRING_UNIVERSAL ? 2 : 0;
}

// Code unit `index` of a string whose units have 1 << `shift` bytes.
inline uint32_t load_code_unit(const void* data, uint64_t index, uint32_t shift) {
    const uint8_t* unit = static_cast<const uint8_t*>(data) + (index << shift);
    uint16_t two;
    switch (shift) {
        case 0: return *unit;
        case 1: memcpy(&two, unit, sizeof two); return two;
        default: return load32(unit);
    }
}
// Stores a code point, cut down to the unit's width.
inline void store_code_unit(void* data, uint64_t index, uint32_t shift, uint32_t code) {
    uint8_t* unit = static_cast<uint8_t*>(data) + (index << shift);
    uint16_t two = static_cast<uint16_t>(code);
    switch (shift) {
        case 0: *unit = static_cast<uint8_t>(code); break;
        case 1: memcpy(unit, &two, sizeof two); break;
        default: store32(unit, code); break;
    }
}

// Sizes and permitted alphabet of a CHAR_STRING of string type 0 to 5.
struct char_string_layout {
    size_bounds size;     // code units
    int32_t range_count;  // negative: no alphabet
    const asn1_word* ranges;
};

inline char_string_layout char_string_of(const asn1_type_desc* type) {
    char_string_layout string;
    const asn1_word* word = type + 2;
    string.size = read_size_bounds(type, word);
    word += words_if(type, ASN1_WORD0_HAS_LOWER) + words_if(type, ASN1_WORD0_HAS_UPPER);
    string.range_count = static_cast<int32_t>(low32(*word));
    string.ranges = word + 1;
    return string;
}

inline uint32_t range_first(const char_string_layout& string, int32_t index) {
    return low32(string.ranges[2 * index]);
}
inline uint32_t range_last(const char_string_layout& string, int32_t index) {
    return low32(string.ranges[2 * index + 1]);
}

// Whether one of the ranges has the character.
inline bool in_alphabet(const char_string_layout& string, uint32_t code) {
    for (int32_t i = 0; i < string.range_count; ++i) {
        if (code >= range_first(string, i) && code <= range_last(string, i)) return true;
    }
    return false;
}

// ---- ENUMERATED -------------------------------------------------------------------------------------------

struct enum_layout {
    uint32_t root, total;  // items: root ones, and with the extension ones
    const asn1_word* names;
};

inline enum_layout enum_of(const asn1_type_desc* type) {
    enum_layout items;
    const asn1_word* word = type + 1;
    items.root = low32(*word++);
    items.total = items.root + (is_extensible(type) ? low32(*word++) : 0);
    items.names = word;
    return items;
}

// The value table behind `n` items: n values by index, then n (value, index) pairs by ascending value.
inline const asn1_word* enum_value_table(const asn1_word* names, uint32_t n, uint32_t word0) {
    return names + n + ((word0 & ASN1_WORD0_HAS_NAME) != 0) + ((word0 & ASN1_WORD0_CONSTRAINED) != 0);
}

// The schema's number of the item at `index`, which must be below `items.total`.
inline int32_t enum_value(const asn1_type_desc* type, const enum_layout& items, uint32_t index) {
    if (!has_flag(type, ASN1_WORD0_VALUE_TABLE)) return static_cast<int32_t>(index);
    return static_cast<int32_t>(low32(enum_value_table(items.names, items.total, word0(type))[index]));
}

// ---- TAGGED -----------------------------------------------------------------------------------------------

inline const asn1_type_desc* tagged_inner(const asn1_type_desc* type) { return type[1].type; }

// The type behind tags that leave the value where it is.
inline const asn1_type_desc* behind_tags(const asn1_type_desc* type) {
    while (kind_of(type) == ASN1_KIND_TAGGED && !is_indirect(type)) type = tagged_inner(type);
    return type;
}

// The type behind all tags.
inline const asn1_type_desc* untagged(const asn1_type_desc* type) {
    while (kind_of(type) == ASN1_KIND_TAGGED) type = tagged_inner(type);
    return type;
}

// Steps behind a tag. False if an indirect one leads nowhere, as in a copy that was made while memory ran out.
inline bool enter_tag(const asn1_type_desc*& type, const void*& value) {
    if (is_indirect(type)) {
        value = load_pointer(value);
        if (__builtin_expect(value == nullptr, 0)) return false;
    }
    type = tagged_inner(type);
    return true;
}

// ---- open types -------------------------------------------------------------------------------------------

// The constraint object of an ANY, or null.
inline const asn1_word* any_constraint(const asn1_type_desc* type) {
    return has_flag(type, ASN1_WORD0_CONSTRAINED) ? type[1 + words_if(type, ASN1_WORD0_HAS_NAME)].type
                                                  : nullptr;
}

// The constraint object of a BIT STRING or OCTET STRING, or null.
inline const asn1_word* string_constraint(const asn1_type_desc* type) {
    if (!has_flag(type, ASN1_WORD0_CONSTRAINED)) return nullptr;
    return behind_bounds(type)[words_if(type, ASN1_WORD0_HAS_NAME)].type;
}

// The table constraint of an ANY, or null.
inline const asn1_table_constraint* table_constraint_of(const asn1_type_desc* type) {
    const asn1_word* constraint = kind_of(type) == ASN1_KIND_ANY ? any_constraint(type) : nullptr;
    if (constraint == nullptr || low32(constraint[0]) != ASN1_CONSTRAINT_TABLE) return nullptr;
    return reinterpret_cast<const asn1_table_constraint*>(constraint);
}

// The first word of the first selector.
inline const asn1_word* selectors_of(const asn1_table_constraint* constraint) {
    return reinterpret_cast<const asn1_word*>(constraint + 1);
}

inline uint32_t class_field_count(const asn1_type_desc* object_class) { return low32(object_class[1]); }
inline const asn1_class_field* class_fields(const asn1_type_desc* object_class) {
    return reinterpret_cast<const asn1_class_field*>(object_class + 2);
}
inline uint32_t class_field_sort(const asn1_class_field* field) { return low32(field->sort) & 7; }

}  // namespace orlenta
