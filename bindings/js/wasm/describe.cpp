// SPDX-License-Identifier: Apache-2.0
// What a type is made of, one level of it, as JSON; types inside are the addresses of their descriptors.
#include <orlenta/type_info.h>
#include <string.h>

#include "bridge.hpp"

using namespace orlenta::js;

static unsigned long address_of(const asn1_type_desc* type) { return reinterpret_cast<unsigned long>(type); }

// A number that JavaScript takes for a BigInt where it is too large: {"":"123"}.
static void put_bound(asn1_byte_buffer* buffer, const char* name, const asn1_integer* big, int64_t number) {
    if (!big) return asn1_printf(buffer, ",\"%s\":%lld", name, static_cast<long long>(number));
    char* block;
    size_t length;
    const char* digits = asn1_integer_to_str(big, &block, &length);
    if (digits) asn1_printf(buffer, is_wide(big) ? ",\"%s\":{\"\":\"%s\"}" : ",\"%s\":%s", name, digits);
    asn1_free(block);
}

static void put_default(asn1_byte_buffer* buffer, const orlenta_component& component) {
    orlenta_type_facts facts;
    orlenta_type_describe(component.type, &facts);
    orlenta_item item;
    if (facts.kind == ASN1_KIND_BOOLEAN) {
        asn1_printf(buffer, ",\"default\":%s", component.default_word != 0 ? "true" : "false");
    } else if (facts.kind == ASN1_KIND_ENUMERATED) {
        if (orlenta_type_item(facts.type, component.default_word, &item) == 0)
            asn1_printf(buffer, ",\"default\":\"%s\"", item.name);
    } else if (facts.kind == ASN1_KIND_INTEGER) {
        bool is_signed = facts.has_lower == 0 || facts.lower < 0 || facts.is_extensible != 0;
        put_bound(buffer, "default", component.big_default,
                  is_signed ? static_cast<int32_t>(component.default_word) : int64_t{component.default_word});
    }
}

static void put_components(asn1_byte_buffer* buffer, const asn1_type_desc* type) {
    static const char* const kPresence[] = {"mandatory", "optional", "default"};
    orlenta_component part;
    asn1_puts(buffer, ",\"components\":[");
    for (uint32_t i = 0; orlenta_type_component(type, i, &part) == 0; ++i) {
        asn1_printf(buffer, "%s{\"name\":\"%s\",\"type\":%lu,\"presence\":\"%s\",\"isAddition\":%s",
                    i > 0 ? "," : "", part.name, address_of(part.type), kPresence[part.presence],
                    part.is_addition != 0 ? "true" : "false");
        if (part.presence == ORLENTA_DEFAULT) put_default(buffer, part);
        asn1_puts(buffer, "}");
    }
    asn1_puts(buffer, "]");
}

static void put_alternatives(asn1_byte_buffer* buffer, const asn1_type_desc* type) {
    orlenta_alternative part;
    asn1_puts(buffer, ",\"alternatives\":[");
    for (uint32_t i = 0; orlenta_type_alternative(type, i, &part) == 0; ++i)
        asn1_printf(buffer, "%s{\"name\":\"%s\",\"type\":%lu,\"isAddition\":%s}", i > 0 ? "," : "", part.name,
                    address_of(part.type), part.is_addition != 0 ? "true" : "false");
    asn1_puts(buffer, "]");
}

static void put_items(asn1_byte_buffer* buffer, const asn1_type_desc* type) {
    orlenta_item part;
    asn1_puts(buffer, ",\"items\":[");
    for (uint32_t i = 0; orlenta_type_item(type, i, &part) == 0; ++i)
        asn1_printf(buffer, "%s{\"name\":\"%s\",\"number\":%d,\"isAddition\":%s}", i > 0 ? "," : "",
                    part.name, part.number, part.is_addition != 0 ? "true" : "false");
    asn1_puts(buffer, "]");
}

static void put_unit(asn1_byte_buffer* buffer, const orlenta_unit* unit) {
    asn1_puts(buffer, ",\"unit\":{\"unit\":");
    put_json_string(buffer, strcmp(unit->symbol, "1") == 0 ? "" : unit->symbol);
    asn1_printf(buffer, ",\"scale\":%.17g,\"offset\":%.17g,\"special\":[", unit->scale, unit->offset);
    for (uint32_t i = 0; i < unit->special_count; ++i) {
        const orlenta_special* special = &unit->specials[i];
        asn1_printf(buffer, "%s{\"value\":%lld,\"last\":%lld,\"meaning\":", i > 0 ? "," : "",
                    static_cast<long long>(special->first), static_cast<long long>(special->last));
        put_json_string(buffer, special->meaning);
        if (special->is_limit != 0) asn1_printf(buffer, ",\"limit\":%d", special->is_limit);
        asn1_puts(buffer, "}");
    }
    asn1_puts(buffer, "]}");
}

ORLENTA_JS int js_describe(const asn1_type_desc* type) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_printf(&buffer, "{\"kind\":%u,\"stringType\":%u,\"isExtensible\":%s", facts.kind, facts.string_type,
                facts.is_extensible != 0 ? "true" : "false");
    const orlenta_catalogue* types = catalogue();
    orlenta_type_entry entry;
    if (orlenta_catalogue_find_type(types, type, &entry) == 0 ||
        orlenta_catalogue_find_type(types, facts.type, &entry) == 0) {
        if (entry.name[0] != '\0')
            asn1_printf(&buffer, ",\"region\":\"%s\",\"module\":\"%s\",\"name\":\"%s\"", entry.region,
                        entry.module, entry.name);
        if (entry.about) {
            asn1_puts(&buffer, ",\"about\":");
            put_json_string(&buffer, entry.about);
        }
    }
    if (facts.has_lower != 0 || facts.big_lower) put_bound(&buffer, "lower", facts.big_lower, facts.lower);
    if (facts.has_upper != 0 || facts.big_upper) put_bound(&buffer, "upper", facts.big_upper, facts.upper);
    if (const orlenta_unit* unit = orlenta_unit_of(types, type)) put_unit(&buffer, unit);
    switch (facts.kind) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: put_components(&buffer, facts.type); break;
        case ASN1_KIND_CHOICE: put_alternatives(&buffer, facts.type); break;
        case ASN1_KIND_ENUMERATED: put_items(&buffer, facts.type); break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: asn1_printf(&buffer, ",\"element\":%lu", address_of(facts.element)); break;
        default: break;
    }
    asn1_puts(&buffer, "}");
    return hand_over(buffer) ? 0 : -1;
}
