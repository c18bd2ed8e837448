// SPDX-License-Identifier: Apache-2.0
// The library's functions as JavaScript calls them: with numbers, and a result that is read from one place. A module has
// one thread.
#include "bridge.hpp"

#include <orlenta/ber.h>
#include <orlenta/check.h>
#include <orlenta/explain.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/random.h>
#include <orlenta/value.h>
#include <orlenta/xer.h>
#include <string.h>

using namespace orlenta::js;

// Of the last call: read by JavaScript at these offsets.
static struct {
    uint8_t* data;  // released with the next result
    uint32_t size;
} result;
static asn1_error error;

// The rules, numbered as in module.mjs.
enum rules { kUper, kAper, kOer, kBer, kDer, kJer, kXer, kGser };

ORLENTA_JS void* js_result() { return &result; }
ORLENTA_JS void* js_error() { return &error; }

static void replace_result(uint8_t* data, int64_t size) {
    asn1_free(result.data);
    result = {data, size < 0 ? 0 : static_cast<uint32_t>(size)};
}

bool orlenta::js::hand_over(const asn1_byte_buffer& buffer) {
    if (buffer.failed != 0) {
        asn1_free(buffer.data);
        replace_result(nullptr, 0);
        asn1_pstrcpy(error.message, sizeof error.message, "not enough memory");
        return false;
    }
    replace_result(buffer.data, static_cast<int64_t>(buffer.length));
    return true;
}

void orlenta::js::put_json_string(asn1_byte_buffer* buffer, const char* text) {
    asn1_puts(buffer, "\"");
    for (; *text != '\0'; ++text) {
        uint8_t c = static_cast<uint8_t>(*text);
        if (c == '"' || c == '\\' || c < 0x20)
            asn1_printf(buffer, "\\u%04x", c);
        else
            asn1_put_bytes(buffer, text, 1);
    }
    asn1_puts(buffer, "\"");
}

// ---- types --------------------------------------------------------------------------------------------------

// Lines of "region module name is_root descriptor", parted by tabs.
ORLENTA_JS int js_types() {
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    orlenta_type_entry entry;
    for (size_t i = 0; orlenta_catalogue_get(catalogue(), i, &entry) == 0; ++i) {
        if (entry.name[0] == '\0') continue;
        asn1_printf(&buffer, "%s\t%s\t%s\t%u\t%lu\n", entry.region, entry.module, entry.name, entry.is_root,
                    reinterpret_cast<unsigned long>(entry.type));
    }
    return hand_over(buffer) ? 0 : -1;
}

// The type that the name stands for, or null; the result's size tells how many it could mean.
ORLENTA_JS const asn1_type_desc* js_find(const char* name) {
    orlenta_type_entry entry;
    size_t found = 0;
    int status = orlenta_catalogue_find(catalogue(), name, &entry, &found);
    replace_result(nullptr, static_cast<int64_t>(found));
    return status == 0 ? entry.type : nullptr;
}

// ---- values -------------------------------------------------------------------------------------------------

// An INTEGER that JavaScript's numbers need not bear, by its type's bounds.
static bool is_wide(const asn1_type_desc* type) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    if (facts.kind != ASN1_KIND_INTEGER || facts.is_big == 0) return false;
    constexpr uint32_t kSafeBits = 53;
    return !facts.big_lower || !facts.big_upper || asn1_integer_get_bit_size(facts.big_lower) > kSafeBits ||
           asn1_integer_get_bit_size(facts.big_upper) > kSafeBits;
}

// Prints what is wide as {"":"123"}: no component has that name.
static int64_t print_wide(void*, char** text, const asn1_type_desc* type, const void* value, int32_t) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    // Behind an indirect tag the value is elsewhere; the hook is called again there.
    if (facts.type != type || facts.kind != ASN1_KIND_INTEGER || !is_wide(type)) return -1;
    char* block;
    size_t length;
    const char* digits = asn1_integer_to_str(static_cast<const asn1_integer*>(value), &block, &length);
    if (!digits) return -1;
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_puts(&buffer, "{\"\":\"");
    asn1_put_bytes(&buffer, digits, length);
    asn1_puts(&buffer, "\"}");
    asn1_free(block);
    if (buffer.failed != 0) {
        asn1_free(buffer.data);
        return -1;
    }
    *text = reinterpret_cast<char*>(buffer.data);
    return static_cast<int64_t>(buffer.length);
}

ORLENTA_JS void* js_decode(const asn1_type_desc* type, int rules, const uint8_t* data, uint32_t size) {
    asn1_error_init(&error);
    void* value = nullptr;
    switch (rules) {
        case kUper: asn1_uper_decode(&value, type, data, size, &error); break;
        case kAper: asn1_aper_decode(&value, type, data, size, &error); break;
        case kOer: asn1_oer_decode(&value, type, data, size, &error); break;
        case kBer:
        case kDer: asn1_ber_decode(&value, type, data, size, &error); break;
        case kJer: asn1_jer_decode(&value, type, data, size, &error); break;
        case kXer: asn1_xer_decode(&value, type, data, size, &error); break;
        case kGser: asn1_gser_decode(&value, type, data, size, &error); break;
    }
    return value;
}

// 0, with the encoding as the result, or -1. Text is indented by `indent` blanks, or in one line for 0, where the rules
// know lines. -1 for JER is JSON for JavaScript, by print_wide().
ORLENTA_JS int js_encode(const asn1_type_desc* type, int rules, const void* value, int indent) {
    asn1_error_init(&error);
    uint8_t* out = nullptr;
    int64_t size = -1;
    switch (rules) {
        case kUper: size = asn1_uper_encode2(&out, type, value, &error); break;
        case kAper: size = asn1_aper_encode2(&out, type, value, &error); break;
        case kOer: size = asn1_oer_encode2(&out, type, value, &error); break;
        case kBer: {
            asn1_ber_encode_params params = {};
            size = asn1_ber_encode(&out, type, value, &params);
            break;
        }
        case kDer: size = asn1_der_encode(&out, type, value); break;
        case kJer: {
            asn1_jer_encode_options options = {};
            if (indent < 0)
                options.hook = print_wide;
            else
                options.indent = indent;
            size = asn1_jer_encode2(&out, type, value, &options);
            break;
        }
        case kXer: {
            asn1_xer_encode_options options = {};
            options.indent = indent != 0;
            options.empty_tags = 1;
            size = asn1_xer_encode2(&out, type, value, &options);
            break;
        }
        case kGser: size = asn1_gser_encode(&out, type, value); break;
    }
    replace_result(out, size);
    return size < 0 ? -1 : 0;
}

ORLENTA_JS void js_free_value(const asn1_type_desc* type, void* value) { asn1_free_value(type, value); }

// Whether the value violates no constraint.
ORLENTA_JS int js_check(const asn1_type_desc* type, const void* value) {
    asn1_error_init(&error);
    return orlenta_check(type, value, &error);
}

ORLENTA_JS void* js_random(const asn1_type_desc* type, uint32_t seed) {
    return orlenta_random_valid(type, seed);
}

// ---- messages taken apart -----------------------------------------------------------------------------------

static void put_bits(void* user, const orlenta_bits* bits) {
    asn1_byte_buffer* buffer = static_cast<asn1_byte_buffer*>(user);
    asn1_printf(buffer, "%s{\"offset\":%llu,\"width\":%llu,\"kind\":%d,\"type\":%lu,\"text\":",
                buffer->length > 1 ? "," : "", static_cast<unsigned long long>(bits->offset),
                static_cast<unsigned long long>(bits->width), bits->kind,
                reinterpret_cast<unsigned long>(bits->type));
    put_json_string(buffer, bits->text);
    asn1_puts(buffer, ",\"path\":");
    put_json_string(buffer, bits->path);
    if (bits->value) {
        bool wide = is_wide(bits->type);
        asn1_puts(buffer, wide ? ",\"value\":{\"\":\"" : ",\"value\":");
        asn1_put_bytes(buffer, bits->value, bits->value_length);
        if (wide) asn1_puts(buffer, "\"}");
    }
    asn1_puts(buffer, "}");
}

// 0 and an array of runs, or -1 without memory; the message of an error is not empty if decoding stopped.
ORLENTA_JS int js_explain(const asn1_type_desc* type, int rules, const uint8_t* data, uint32_t size) {
    asn1_error_init(&error);
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_puts(&buffer, "[");
    orlenta_explain(type, rules == kDer ? kBer : rules, data, size, put_bits, &buffer, &error);
    asn1_puts(&buffer, "]");
    return hand_over(buffer) ? 0 : -1;
}
