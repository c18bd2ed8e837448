#include <orlenta/memory.h>
#include <orlenta/value.h>
#include <stdlib.h>

#include "core/descriptor.hpp"

using namespace orlenta;

// ---- size and allocation ----------------------------------------------------------------------------------

int64_t asn1_get_size(const asn1_type_desc* desc) {
    for (;; desc = tagged_inner(desc)) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return static_cast<int64_t>(record_size(desc));
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF: return sizeof(asn1_array);
            case ASN1_KIND_CHOICE: return static_cast<int64_t>(choice_of(desc).size);
            case ASN1_KIND_INTEGER: return is_big_integer(desc) ? sizeof(asn1_integer) : sizeof(uint32_t);
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED: return sizeof(uint32_t);
            case ASN1_KIND_BIT_STRING: return sizeof(asn1_bit_string);
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
            case ASN1_KIND_CHAR_STRING: return sizeof(asn1_string);
            case ASN1_KIND_NULL: return 1;
            case ASN1_KIND_REAL: return sizeof(double);
            case ASN1_KIND_ANY: return sizeof(asn1_open_value);
            case ASN1_KIND_OBJECT_CLASS: return static_cast<int64_t>(class_field_count(desc)) * 8;
            case ASN1_KIND_TAGGED:
                if (is_indirect(desc)) return sizeof(void*);
                break;
            default: return -1;
        }
    }
}

void* asn1_mallocz_value(const asn1_type_desc* desc) {
    int64_t size = asn1_get_size(desc);
    return size >= 0 ? asn1_mallocz(static_cast<size_t>(size)) : nullptr;
}

// ---- release ----------------------------------------------------------------------------------------------

static void free_components(const asn1_type_desc* desc, void* record) {
    const asn1_field* field = components(desc);
    for (const asn1_field* end = field + component_count(desc); field < end; ++field) {
        if (is_flat(field_type(field))) continue;
        if (is_presence_flagged(field) && presence_word(field, record) == 0) continue;
        asn1_free_value_struct(field_type(field), field_value(field, record));
    }
}

// A copy that failed for lack of a block has a count and no block.
static void free_list(const asn1_type_desc* desc, const asn1_array* array) {
    list_layout list = list_of(desc);
    if (array->data != nullptr && !is_flat(list.element)) {
        for (uint64_t i = 0; i < array->count; ++i) {
            asn1_free_value_struct(list.element, at_offset(array->data, i * list.stride));
        }
    }
    asn1_free(array->data);
}

static void free_open_value(const asn1_open_value* open) {
    if (open->type != nullptr) {
        asn1_free_value(open->type, open->data);
    } else {
        asn1_free(open->data);
    }
}

// Steps from a CHOICE to the alternative that its value holds; false if that is none of the type's.
static bool enter_alternative(const asn1_type_desc*& desc, void*& value) {
    choice_layout choice = choice_of(desc);
    uint32_t selector = selector_of(choice, value);
    if (selector >= choice.total) return false;
    desc = alternative_type(choice, selector);
    value = at_offset(value, choice.payload_offset);
    return true;
}

void asn1_free_value_struct(const asn1_type_desc* desc, void* value) {
    if (value == nullptr) return;
    for (;;) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return free_components(desc, value);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF: return free_list(desc, static_cast<asn1_array*>(value));
            case ASN1_KIND_CHOICE:
                if (!enter_alternative(desc, value)) return;
                break;
            case ASN1_KIND_INTEGER:
                if (is_big_integer(desc)) asn1_integer_clear(static_cast<asn1_integer*>(value));
                return;
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED:
            case ASN1_KIND_NULL:
            case ASN1_KIND_REAL: return;
            case ASN1_KIND_BIT_STRING: return asn1_free(static_cast<asn1_bit_string*>(value)->data);
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
            case ASN1_KIND_CHAR_STRING: return asn1_free(static_cast<asn1_string*>(value)->data);
            case ASN1_KIND_TAGGED:
                if (is_indirect(desc)) return asn1_free_value(tagged_inner(desc), load_pointer(value));
                desc = tagged_inner(desc);
                break;
            case ASN1_KIND_ANY: return free_open_value(static_cast<asn1_open_value*>(value));
            default: abort();
        }
    }
}

void asn1_free_value(const asn1_type_desc* desc, void* value) {
    asn1_free_value_struct(desc, value);
    asn1_free(value);
}

// ---- copy -------------------------------------------------------------------------------------------------

static int copy_components(const asn1_type_desc* desc, void* dst, const void* src) {
    const asn1_field* field = components(desc);
    for (const asn1_field* end = field + component_count(desc); field < end; ++field) {
        if (is_presence_flagged(field)) {
            uint32_t present = presence_word(field, src);
            set_presence_word(field, dst, present);
            if (present == 0) continue;
        }
        if (asn1_copy_value(field_type(field), field_value(field, dst), field_value(field, src)) != 0)
            return -1;
    }
    return 0;
}

static int copy_list(const asn1_type_desc* desc, asn1_array* dst, const asn1_array* src) {
    list_layout list = list_of(desc);
    uint64_t size;
    dst->count = src->count;
    dst->data = nullptr;
    if (__builtin_mul_overflow(src->count, list.stride, &size)) return -1;
    dst->data = asn1_mallocz(size);
    if (dst->data == nullptr) return -1;
    for (uint64_t offset = 0; offset < size; offset += list.stride) {
        if (asn1_copy_value(list.element, at_offset(dst->data, offset), at_offset(src->data, offset)) != 0)
            return -1;
    }
    return 0;
}

// A new block with the first `size` bytes at `src`, or null.
static uint8_t* copy_bytes(const void* src, uint64_t size) {
    void* block = asn1_malloc(size);
    if (block != nullptr && size != 0) memcpy(block, src, size);
    return static_cast<uint8_t*>(block);
}

static int copy_bit_string(asn1_bit_string* dst, const asn1_bit_string* src) {
    dst->length = src->length;
    dst->data = copy_bytes(src->data, (static_cast<uint64_t>(static_cast<uint32_t>(src->length)) + 7) / 8);
    return dst->data != nullptr ? 0 : -1;
}

// String lengths are 31-bit quantities here; what is beyond fails like a block that is not to be had.
static int copy_string(asn1_string* dst, const asn1_string* src, uint32_t unit_shift) {
    int64_t length = static_cast<int32_t>(static_cast<uint32_t>(src->length));
    dst->length = static_cast<uint64_t>(length);
    dst->data = length >= 0 ? copy_bytes(src->data, static_cast<uint64_t>(length) << unit_shift) : nullptr;
    return dst->data != nullptr ? 0 : -1;
}

static int copy_integer(const asn1_type_desc* desc, void* dst, const void* src) {
    if (is_big_integer(desc)) {
        asn1_integer_init(static_cast<asn1_integer*>(dst));
        return asn1_integer_set(static_cast<asn1_integer*>(dst), static_cast<const asn1_integer*>(src));
    }
    store32(dst, load32(src));
    return 0;
}

static int copy_word(void* dst, const void* src) {
    store32(dst, load32(src));
    return 0;
}

static int copy_real(void* dst, const void* src) {
    memcpy(dst, src, sizeof(double));
    return 0;
}

// The inner copy is stored unseen: without memory it shows as a null pointer in a copy that succeeded.
static int copy_indirect(const asn1_type_desc* desc, void* dst, const void* src) {
    store_pointer(dst, asn1_clone_value(tagged_inner(desc), load_pointer(src)));
    return 0;
}

static int copy_open_value(asn1_open_value* dst, const asn1_open_value* src) {
    dst->type = src->type;
    if (src->type != nullptr) {
        dst->data = asn1_clone_value(src->type, src->data);  // stored unseen, as above
        return 0;
    }
    dst->length = src->length;
    dst->data = copy_bytes(src->data, src->length);
    return dst->data != nullptr ? 0 : -1;
}

// As enter_alternative, for both values; the selector is copied first.
static bool copy_selector(const asn1_type_desc*& desc, void*& dst, const void*& src) {
    choice_layout choice = choice_of(desc);
    uint32_t selector = selector_of(choice, src);
    store32(at_offset(dst, choice.selector_offset), selector);
    if (selector >= choice.total) return false;
    desc = alternative_type(choice, selector);
    dst = at_offset(dst, choice.payload_offset);
    src = at_offset(src, choice.payload_offset);
    return true;
}

int asn1_copy_value(const asn1_type_desc* desc, void* dst, const void* src) {
    for (;;) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return copy_components(desc, dst, src);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF:
                return copy_list(desc, static_cast<asn1_array*>(dst), static_cast<const asn1_array*>(src));
            case ASN1_KIND_CHOICE:
                if (!copy_selector(desc, dst, src)) return 0;
                break;
            case ASN1_KIND_INTEGER: return copy_integer(desc, dst, src);
            case ASN1_KIND_BOOLEAN:
            case ASN1_KIND_ENUMERATED: return copy_word(dst, src);
            case ASN1_KIND_BIT_STRING:
                return copy_bit_string(static_cast<asn1_bit_string*>(dst),
                                       static_cast<const asn1_bit_string*>(src));
            case ASN1_KIND_OCTET_STRING:
            case ASN1_KIND_OBJECT_IDENTIFIER:
            case ASN1_KIND_RELATIVE_OID:
                return copy_string(static_cast<asn1_string*>(dst), static_cast<const asn1_string*>(src), 0);
            case ASN1_KIND_CHAR_STRING:
                return copy_string(static_cast<asn1_string*>(dst), static_cast<const asn1_string*>(src),
                                   code_unit_shift(string_type(desc)));
            case ASN1_KIND_NULL: return 0;
            case ASN1_KIND_TAGGED:
                if (is_indirect(desc)) return copy_indirect(desc, dst, src);
                desc = tagged_inner(desc);
                break;
            case ASN1_KIND_REAL: return copy_real(dst, src);
            case ASN1_KIND_ANY:
                return copy_open_value(static_cast<asn1_open_value*>(dst),
                                       static_cast<const asn1_open_value*>(src));
            default: abort();
        }
    }
}

void* asn1_clone_value(const asn1_type_desc* desc, const void* src) {
    void* value = src != nullptr ? asn1_mallocz_value(desc) : nullptr;
    if (value != nullptr && asn1_copy_value(desc, value, src) != 0) {
        asn1_free_value(desc, value);
        return nullptr;
    }
    return value;
}
