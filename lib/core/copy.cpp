// SPDX-License-Identifier: Apache-2.0
// Deep copies.
#include <orlenta/memory.h>
#include <orlenta/value.h>
#include <stdlib.h>

#include "core/descriptor.hpp"
#include "core/stackless.hpp"

using namespace orlenta;

namespace {

struct copy_walk {
    stack_guard stack;
    bool is_too_deep;  // the copy fails as a whole, and is left as it is
};

}  // namespace

static int copy_value(copy_walk* walk, const asn1_type_desc* desc, void* dst, const void* src);

// To be asked where a recursive type passes through.
static int check_depth(copy_walk* walk) {
    if (has_stack(&walk->stack)) return 0;
    walk->is_too_deep = true;
    return -1;
}

ORLENTA_NOINLINE static int copy_components(copy_walk* walk, const asn1_type_desc* desc, void* dst,
                                            const void* src) {
    const asn1_field* field = components(desc);
    for (const asn1_field* end = field + component_count(desc); field < end; ++field) {
        if (is_presence_flagged(field)) {
            uint32_t present = presence_word(field, src);
            set_presence_word(field, dst, present);
            if (present == 0) continue;
        }
        if (copy_value(walk, field_type(field), field_value(field, dst), field_value(field, src)) != 0)
            return -1;
    }
    return 0;
}

ORLENTA_NOINLINE static int copy_list(copy_walk* walk, const asn1_type_desc* desc, asn1_array* dst,
                                      const asn1_array* src) {
    list_layout list = list_of(desc);
    size_t size;
    dst->count = src->count;
    dst->data = nullptr;
    if (check_depth(walk) != 0) return -1;
    if (__builtin_mul_overflow(src->count, list.stride, &size)) return -1;
    dst->data = asn1_mallocz(size);
    if (dst->data == nullptr) return -1;
    for (uint64_t offset = 0; offset < size; offset += list.stride) {
        if (copy_value(walk, list.element, at_offset(dst->data, offset), at_offset(src->data, offset)) != 0)
            return -1;
    }
    return 0;
}

// A new block with the first `size` bytes at `src`, or null.
static uint8_t* copy_bytes(const void* src, uint64_t size) {
    void* block = size <= SIZE_MAX ? asn1_malloc(static_cast<size_t>(size)) : nullptr;
    if (block != nullptr && size != 0) memcpy(block, src, static_cast<size_t>(size));
    return static_cast<uint8_t*>(block);
}

ORLENTA_NOINLINE static int copy_bit_string(asn1_bit_string* dst, const asn1_bit_string* src) {
    dst->length = src->length;
    dst->data = copy_bytes(src->data, (static_cast<uint64_t>(static_cast<uint32_t>(src->length)) + 7) / 8);
    return dst->data != nullptr ? 0 : -1;
}

// String lengths are 31-bit quantities here; what is beyond fails like a block that is not to be had.
ORLENTA_NOINLINE static int copy_string(asn1_string* dst, const asn1_string* src, uint32_t unit_shift) {
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

// A copy in a block of its own, or null. Where the value is too deep the block is kept, however little is in it.
static void* clone_value(copy_walk* walk, const asn1_type_desc* desc, const void* src) {
    void* value = src != nullptr ? asn1_mallocz_value(desc) : nullptr;
    if (value != nullptr && copy_value(walk, desc, value, src) != 0 && !walk->is_too_deep) {
        release_value(walk->stack, desc, value);
        return nullptr;
    }
    return value;
}

// Memory that is not to be had for the inner copy shows as a null pointer in a copy that succeeded.
ORLENTA_NOINLINE static int copy_indirect(copy_walk* walk, const asn1_type_desc* desc, void* dst,
                                          const void* src) {
    if (check_depth(walk) != 0) return -1;
    store_pointer(dst, clone_value(walk, tagged_inner(desc), load_pointer(src)));
    return walk->is_too_deep ? -1 : 0;
}

ORLENTA_NOINLINE static int copy_open_value(copy_walk* walk, asn1_open_value* dst,
                                            const asn1_open_value* src) {
    dst->type = src->type;
    if (src->type != nullptr) {
        if (check_depth(walk) != 0) return -1;
        dst->data = clone_value(walk, src->type, src->data);  // null without memory, as above
        return walk->is_too_deep ? -1 : 0;
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

static int copy_value(copy_walk* walk, const asn1_type_desc* desc, void* dst, const void* src) {
    for (;;) {
        switch (kind_of(desc)) {
            case ASN1_KIND_SEQUENCE:
            case ASN1_KIND_SET: return copy_components(walk, desc, dst, src);
            case ASN1_KIND_SEQUENCE_OF:
            case ASN1_KIND_SET_OF:
                return copy_list(walk, desc, static_cast<asn1_array*>(dst),
                                 static_cast<const asn1_array*>(src));
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
                if (is_indirect(desc)) return copy_indirect(walk, desc, dst, src);
                desc = tagged_inner(desc);
                break;
            case ASN1_KIND_REAL: return copy_real(dst, src);
            case ASN1_KIND_ANY:
                return copy_open_value(walk, static_cast<asn1_open_value*>(dst),
                                       static_cast<const asn1_open_value*>(src));
            default: abort();
        }
    }
}

int asn1_copy_value(const asn1_type_desc* desc, void* dst, const void* src) {
    copy_walk walk = {begin_stack(), false};
    return copy_value(&walk, desc, dst, src);
}

void* asn1_clone_value(const asn1_type_desc* desc, const void* src) {
    copy_walk walk = {begin_stack(), false};
    void* value = clone_value(&walk, desc, src);
    if (!walk.is_too_deep) return value;
    release_value(walk.stack, desc, value);
    return nullptr;
}
