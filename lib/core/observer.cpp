// SPDX-License-Identifier: Apache-2.0
#include "core/observer.hpp"

#include <stdarg.h>
#include <stdio.h>

namespace orlenta {

static void tell(bit_observer* observer, uint64_t end, orlenta_bits_kind kind, const char* text,
                 const void* value) {
    bit_run run = {observer->told, end - observer->told, kind, text, value};
    observer->told = end;
    observer->take(observer, run);
}

void tell_bits(bit_observer* observer, uint64_t end, orlenta_bits_kind kind, const char* format, ...) {
    if (end == observer->told) return;
    char text[64];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    tell(observer, end, kind, text, nullptr);
}

void tell_presence(bit_observer* observer, uint64_t end, const asn1_field* fields, uint32_t n,
                   const uint8_t* present) {
    uint32_t count = 0;
    for (uint32_t i = 0; i < n; ++i) count += field_option(&fields[i]) != ASN1_OPTION_MANDATORY && present[i];
    tell_bits(observer, end, ORLENTA_BITS_PRESENCE, "optional: %u of %u present", count,
              static_cast<uint32_t>(end - observer->told));
}

static bool has_components(const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF:
        case ASN1_KIND_CHOICE:
        case ASN1_KIND_TAGGED: return true;
        case ASN1_KIND_ANY: return static_cast<const asn1_open_value*>(value)->type != nullptr;
        default: return false;
    }
}

void tell_value(bit_observer* observer, uint64_t end, const void* value) {
    if (!has_components(observer->type, value)) tell(observer, end, ORLENTA_BITS_VALUE, "value", value);
}

void tell_tag(bit_observer* observer, uint64_t end, uint32_t tag) {
    static const char* const kClasses[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    tell_bits(observer, end, ORLENTA_BITS_TAG, "tag [%s%u]", kClasses[tag >> ASN1_TAG_CLASS_SHIFT & 3],
              tag & ASN1_TAG_NUMBER_MASK);
}

}  // namespace orlenta
