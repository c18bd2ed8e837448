#include <orlenta/value.h>
#include <stdlib.h>

#include "core/descriptor.hpp"

using namespace orlenta;

template <typename T>
static int order(T a, T b) {
    return (a > b) - (a < b);
}

static int compare_bytes(const void* a, const void* b, uint64_t size) {
    return size != 0 ? memcmp(a, b, size) : 0;
}

// The low halves of two lengths or counts.
static int order_low32(uint64_t a, uint64_t b) {
    return order(static_cast<uint32_t>(a), static_cast<uint32_t>(b));
}

static int compare_components(const asn1_type_desc* desc, const void* a, const void* b) {
    const asn1_field* field = components(desc);
    for (const asn1_field* end = field + component_count(desc); field < end; ++field) {
        if (is_presence_flagged(field)) {
            int32_t in_a = static_cast<int32_t>(presence_word(field, a));
            int32_t in_b = static_cast<int32_t>(presence_word(field, b));
            if (in_a != in_b) return order(in_a, in_b);
            if (in_a == 0) continue;
        }
        int result = asn1_cmp_value(field_type(field), field_value(field, a), field_value(field, b));
        if (result != 0) return result;
    }
    return 0;
}

static int compare_lists(const asn1_type_desc* desc, const asn1_array* a, const asn1_array* b) {
    if (int result = order_low32(a->count, b->count); result != 0) return result;
    list_layout list = list_of(desc);
    for (uint64_t i = 0, n = static_cast<uint32_t>(a->count); i < n; ++i) {
        int result = asn1_cmp_value(list.element, at_offset(a->data, i * list.stride),
                                    at_offset(b->data, i * list.stride));
        if (result != 0) return result;
    }
    return 0;
}

static int compare_integers(const asn1_type_desc* desc, const void* a, const void* b) {
    if (is_big_integer(desc)) {
        return asn1_integer_cmp(static_cast<const asn1_integer*>(a), static_cast<const asn1_integer*>(b));
    }
    if (is_unsigned_integer(desc)) return order(load32(a), load32(b));
    return order(static_cast<int32_t>(load32(a)), static_cast<int32_t>(load32(b)));
}

static int compare_words(const void* a, const void* b) {
    return order(static_cast<int32_t>(load32(a)), static_cast<int32_t>(load32(b)));
}

static int compare_bit_strings(const asn1_bit_string* a, const asn1_bit_string* b) {
    if (int result = order_low32(a->length, b->length); result != 0) return result;
    return compare_bytes(a->data, b->data, (static_cast<uint64_t>(static_cast<uint32_t>(a->length)) + 7) / 8);
}

static int compare_octet_strings(const asn1_string* a, const asn1_string* b) {
    if (int result = order_low32(a->length, b->length); result != 0) return result;
    return compare_bytes(a->data, b->data, static_cast<uint32_t>(a->length));
}

static int compare_char_strings(const asn1_type_desc* desc, const asn1_string* a, const asn1_string* b) {
    uint32_t shift = code_unit_shift(string_type(desc));
    if (shift == 0) return compare_octet_strings(a, b);
    if (int result = order_low32(a->length, b->length); result != 0) return result;
    for (uint64_t i = 0, n = static_cast<uint32_t>(a->length); i < n; ++i) {
        int result = order(load_code_unit(a->data, i, shift), load_code_unit(b->data, i, shift));
        if (result != 0) return result;
    }
    return 0;
}

static int compare_reals(const void* a, const void* b) {
    double x, y;
    memcpy(&x, a, sizeof x);
    memcpy(&y, b, sizeof y);
    return asn1_cmp_real(x, y);
}

// Steps from two CHOICE values to the alternative of both; false if there is nothing to step to, and then `result`
// is the order.
static bool enter_alternatives(const asn1_type_desc*& desc, const void*& a, const void*& b, int& result) {
    choice_layout choice = choice_of(desc);
    uint32_t selector = selector_of(choice, a);
    result = order(selector, selector_of(choice, b));
    if (result != 0 || selector >= choice.total) return false;
    desc = alternative_type(choice, selector);
    a = at_offset(a, choice.payload_offset);
    b = at_offset(b, choice.payload_offset);
    return true;
}

// The same for two open types of one actual type.
static bool enter_open_values(const asn1_type_desc*& desc, const void*& a, const void*& b, int& result) {
    const asn1_open_value* open_a = static_cast<const asn1_open_value*>(a);
    const asn1_open_value* open_b = static_cast<const asn1_open_value*>(b);
    result = order(reinterpret_cast<uintptr_t>(open_a->type), reinterpret_cast<uintptr_t>(open_b->type));
    if (result != 0) return false;
    if (open_a->type == nullptr) {
        result = order(open_a->length, open_b->length);
        if (result == 0) result = compare_bytes(open_a->data, open_b->data, open_a->length);
        return false;
    }
    desc = open_a->type;
    a = open_a->data;
    b = open_b->data;
    return true;
}

static void enter_tagged(const asn1_type_desc*& desc, const void*& a, const void*& b) {
    if (is_indirect(desc)) {
        a = load_pointer(a);
        b = load_pointer(b);
    }
    desc = tagged_inner(desc);
}

int asn1_cmp_value(const asn1_type_desc* desc, const void* a, const void* b) {
    int result;
    for (;;) {
        if (a == nullptr || b == nullptr)
            return order(a != nullptr, b != nullptr);  // a copy that lacked memory
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return compare_components(desc, a, b);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF:
                return compare_lists(desc, static_cast<const asn1_array*>(a),
                                     static_cast<const asn1_array*>(b));
            case ASN1_KIND_CHOICE:
                if (!enter_alternatives(desc, a, b, result)) return result;
                break;
            case ASN1_KIND_INTEGER: return compare_integers(desc, a, b);
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED: return compare_words(a, b);
            case ASN1_KIND_BIT_STRING:
                return compare_bit_strings(static_cast<const asn1_bit_string*>(a),
                                           static_cast<const asn1_bit_string*>(b));
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
                return compare_octet_strings(static_cast<const asn1_string*>(a),
                                             static_cast<const asn1_string*>(b));
            case ASN1_KIND_NULL: return 0;
            case ASN1_KIND_TAGGED: enter_tagged(desc, a, b); break;
            case ASN1_KIND_REAL: return compare_reals(a, b);
            case ASN1_KIND_CHAR_STRING:
                return compare_char_strings(desc, static_cast<const asn1_string*>(a),
                                            static_cast<const asn1_string*>(b));
            case ASN1_KIND_ANY:
                if (!enter_open_values(desc, a, b, result)) return result;
                break;
            default: abort();
        }
    }
}

// Unsigned keys that sort as the numbers do (IEEE 754): below zero all bits turned over, above it the top bit set.
static uint64_t real_key(double value) {
    constexpr uint64_t sign = UINT64_C(1) << 63, infinity = UINT64_C(0x7FF0000000000000);
    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    if ((bits & ~sign) > infinity) return UINT64_MAX;
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

int asn1_cmp_real(double a, double b) { return order(real_key(a), real_key(b)); }
