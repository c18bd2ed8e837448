// SPDX-License-Identifier: Apache-2.0
// The library's functions as JavaScript calls them: with numbers, and a result that is read from one place. A module has
// one thread.
#include "bridge.hpp"

#include <emscripten/stack.h>
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
#include <stdlib.h>
#include <string.h>

using namespace orlenta::js;

// Of the last call: read by JavaScript at these offsets.
static struct {
    uint8_t* data;  // released with the next result
    uint32_t size;
} result;
static asn1_error error;

// Whether a block was not to be had in the call, which not every function tells.
static bool lacks_memory;

// The rules, numbered as in module.mjs.
enum rules { kUper, kAper, kOer, kBer, kDer, kJer, kXer, kGser };

ORLENTA_JS void* js_result() { return &result; }
ORLENTA_JS void* js_error() { return &error; }

void* asn1_malloc(size_t size) {
    void* block = malloc(size != 0 ? size : 1);
    lacks_memory = lacks_memory || !block;
    return block;
}

void* asn1_realloc(void* ptr, size_t size) {
    void* block = realloc(ptr, size != 0 ? size : 1);
    lacks_memory = lacks_memory || !block;
    return block;
}

// The stack lies below all data: what overruns it traps, and spoils nothing. Emscripten takes it to lie above. Of a
// larger stack, which is the compiler's, the codecs have as much as of any other.
__attribute__((constructor)) static void tell_stack() {
    constexpr uintptr_t kForCodecs = 256 * 1024, kLowest = 16;
    uintptr_t top = ORLENTA_JS_STACK;
    emscripten_stack_set_limits(reinterpret_cast<void*>(top),
                                reinterpret_cast<void*>(top > kForCodecs ? top - kForCodecs : kLowest));
}

static void replace_result(uint8_t* data, int64_t size) {
    asn1_free(result.data);
    result = {data, size < 0 ? 0 : static_cast<uint32_t>(size)};
}

// Lets go of what the call before has left. Every call of JavaScript's begins so.
ORLENTA_JS void js_begin() {
    lacks_memory = false;
    asn1_error_init(&error);
    replace_result(nullptr, 0);
}

static void set_message(const char* text) { asn1_pstrcpy(error.message, sizeof error.message, text); }

bool orlenta::js::hand_over(const asn1_byte_buffer& buffer) {
    if (buffer.failed != 0 || lacks_memory) {  // which may have cost a part
        asn1_free(buffer.data);
        replace_result(nullptr, 0);
        set_message("not enough memory");
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

// An information object class, which schemas name as types, has no values.
static bool has_values(const asn1_type_desc* type) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    return facts.kind != ASN1_KIND_OBJECT_CLASS;
}

// Lines of "region module name is_root", parted by tabs.
ORLENTA_JS int js_types() {
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    orlenta_type_entry entry;
    for (size_t i = 0; orlenta_catalogue_get(catalogue(), i, &entry) == 0; ++i) {
        if (entry.name[0] == '\0' || !has_values(entry.type)) continue;
        asn1_printf(&buffer, "%s\t%s\t%s\t%u\n", entry.region, entry.module, entry.name, entry.is_root);
    }
    return hand_over(buffer) ? 0 : -1;
}

// The type that the name stands for, or null; the result's size tells how many it could mean.
ORLENTA_JS const asn1_type_desc* js_find(const char* name) {
    orlenta_type_entry entry;
    size_t found = 0;
    bool is_type = orlenta_catalogue_find(catalogue(), name, &entry, &found) == 0 && has_values(entry.type);
    if (found == 1 && !is_type) found = 0;
    replace_result(nullptr, static_cast<int64_t>(found));
    return is_type ? entry.type : nullptr;
}

// ---- values -------------------------------------------------------------------------------------------------

// Whether an INTEGER is too wide for JavaScript's numbers by its type's bounds.
static bool is_wide(const orlenta_type_facts& facts) {
    if (facts.kind != ASN1_KIND_INTEGER || facts.is_big == 0) return false;
    return !facts.big_lower || !facts.big_upper || is_wide(facts.big_lower) || is_wide(facts.big_upper);
}

static int64_t hand_over_text(char** text, asn1_byte_buffer* buffer) {
    if (buffer->failed != 0) {
        asn1_free(buffer->data);
        return -1;
    }
    *text = reinterpret_cast<char*>(buffer->data);
    return static_cast<int64_t>(buffer->length);
}

// {"":"123"}: no component has that name.
static int64_t print_wide(char** text, const asn1_integer* number) {
    char* block;
    size_t length;
    const char* digits = asn1_integer_to_str(number, &block, &length);
    if (!digits) return -1;
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_puts(&buffer, "{\"\":\"");
    asn1_put_bytes(&buffer, digits, length);
    asn1_puts(&buffer, "\"}");
    asn1_free(block);
    return hand_over_text(text, &buffer);
}

static int64_t print_plain(char** text, const char* plain) {
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_puts(&buffer, plain);
    return hand_over_text(text, &buffer);
}

// What a later edition of the schema has and the type does not know, as JER has no form for it.
static bool is_unknown_alternative(const asn1_type_desc* type, uint32_t count, const void* value) {
    orlenta_alternative first;
    if (orlenta_type_alternative(type, 0, &first) != 0) return true;
    uint32_t selector;
    memcpy(&selector, static_cast<const uint8_t*>(value) + first.selector_offset, sizeof selector);
    return selector >= count;
}

static bool is_unknown_item(uint32_t count, const void* value) {
    uint32_t index;
    memcpy(&index, value, sizeof index);
    return index >= count;
}

// Prints what JSON.parse() would take wrongly or JER has no form for.
static int64_t print_for_js(void*, char** text, const asn1_type_desc* type, const void* value, int32_t) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    if (facts.type != type) return -1;  // the hook is called again behind the tag
    if (facts.kind == ASN1_KIND_INTEGER && facts.is_big != 0) {
        const asn1_integer* number = static_cast<const asn1_integer*>(value);
        return is_wide(facts) || is_wide(number) ? print_wide(text, number) : -1;
    }
    if (facts.kind == ASN1_KIND_ENUMERATED && is_unknown_item(facts.count, value))
        return print_plain(text, "null");
    if (facts.kind == ASN1_KIND_CHOICE && is_unknown_alternative(type, facts.count, value))
        return print_plain(text, "{}");
    return -1;
}

// BER does not say what is wrong with a length, nor where it stands.
static void complete_error() {
    if (error.message[0] != '\0') return;
    set_message(lacks_memory ? "not enough memory" : "the message cannot be decoded");
    error.bit_position = -1;
}

ORLENTA_JS void* js_decode(const asn1_type_desc* type, int rules, const uint8_t* data, uint32_t size) {
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
    if (!value) complete_error();
    return value;
}

// Why there is no encoding, where the encoder does not say.
static void explain_failure(const asn1_type_desc* type, const void* value) {
    if (lacks_memory) {
        error.path[0] = '\0';
        set_message("not enough memory");
    } else if (error.message[0] == '\0' && orlenta_check(type, value, &error) == 1) {
        set_message("the value cannot be encoded");
    }
}

// 0, with the encoding as the result, or -1 and the error. Text is indented by `indent` blanks, or in one line for 0, where
// the rules know lines. -1 for JER is JSON for JavaScript, by print_for_js().
ORLENTA_JS int js_encode(const asn1_type_desc* type, int rules, const void* value, int indent) {
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
                options.hook = print_for_js;
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
    if (size >= 0 && lacks_memory) {  // the hook left a value to the encoder that it had no memory for
        asn1_free(out);
        size = -1;
    }
    if (size < 0) {
        explain_failure(type, value);
        return -1;
    }
    replace_result(out, size);
    return 0;
}

ORLENTA_JS void js_free_value(const asn1_type_desc* type, void* value) { asn1_free_value(type, value); }

// Whether the value violates no constraint.
ORLENTA_JS int js_check(const asn1_type_desc* type, const void* value) {
    return orlenta_check(type, value, &error);
}

ORLENTA_JS void* js_random(const asn1_type_desc* type, uint32_t seed) {
    void* value = orlenta_random_valid(type, seed);
    if (!value) set_message(lacks_memory ? "not enough memory" : "no value could be made");
    return value;
}

// ---- messages taken apart -----------------------------------------------------------------------------------

// Whether the value is an INTEGER for a BigInt, by its type or by its digits.
static bool is_wide_text(const orlenta_bits* bits) {
    orlenta_type_facts facts;
    orlenta_type_describe(bits->type, &facts);
    if (facts.kind != ASN1_KIND_INTEGER || facts.is_big == 0) return false;
    constexpr long long kLastSafe = (1LL << 53) - 1;  // more than 18 digits come as the largest number
    long long number = strtoll(bits->value, nullptr, 10);
    return is_wide(facts) || number > kLastSafe || number < -kLastSafe;
}

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
        bool wide = is_wide_text(bits);
        asn1_puts(buffer, wide ? ",\"value\":{\"\":\"" : ",\"value\":");
        asn1_put_bytes(buffer, bits->value, bits->value_length);
        if (wide) asn1_puts(buffer, "\"}");
    }
    asn1_puts(buffer, "}");
}

// 0 and an array of runs, or -1 without memory; the message of an error is not empty if decoding stopped.
ORLENTA_JS int js_explain(const asn1_type_desc* type, int rules, const uint8_t* data, uint32_t size) {
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_puts(&buffer, "[");
    if (orlenta_explain(type, rules == kDer ? kBer : rules, data, size, put_bits, &buffer, &error) < 0)
        complete_error();
    asn1_puts(&buffer, "]");
    return hand_over(buffer) ? 0 : -1;
}
