// SPDX-License-Identifier: Apache-2.0
// The observer of the binary decoders that hands on what they tell.
#include <orlenta/explain.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/value.h>

#include "ber/walk.hpp"
#include "core/error.hpp"
#include "core/observer.hpp"
#include "oer/walk.hpp"
#include "per/walk.hpp"

namespace orlenta {

namespace {

struct explanation {
    orlenta_explain_callback* callback;
    void* user;
};

}  // namespace

// The value as JSON with a zero byte behind it, or null.
static char* text_of(const asn1_type_desc* type, const void* value, uint64_t* length) {
    asn1_jer_encode_options compact = {};
    uint8_t* text;
    int64_t size = value ? asn1_jer_encode2(&text, type, value, &compact) : -1;
    if (size < 0) return nullptr;
    if (size > 0 && text[size - 1] == '\n') --size;
    char* ended = static_cast<char*>(asn1_realloc(text, static_cast<size_t>(size) + 1));
    if (!ended) {
        asn1_free(text);
        return nullptr;
    }
    ended[size] = '\0';
    *length = static_cast<uint64_t>(size);
    return ended;
}

static void hand_on(bit_observer* observer, const bit_run& run) {
    const explanation* to = static_cast<const explanation*>(observer->context);
    char path[1024];
    asn1_type_path_to_str(observer->path, path, sizeof path);
    uint64_t length = 0;
    char* text = text_of(observer->type, run.value, &length);
    orlenta_bits bits = {run.offset, run.width, run.kind, run.text, path, observer->type, text, length};
    to->callback(to->user, &bits);
    asn1_free(text);
}

static int64_t decode_observed(bit_observer* observer, int rules, void** value, const uint8_t* data,
                               uint64_t size, asn1_error* error) {
    const asn1_type_desc* type = observer->type;
    switch (rules) {
        case ORLENTA_RULES_UPER: return per::decode_observed(observer, value, type, data, size, 0, error);
        case ORLENTA_RULES_APER: return per::decode_observed(observer, value, type, data, size, 1, error);
        case ORLENTA_RULES_OER: return oer::decode_observed(observer, value, type, data, size, error);
        case ORLENTA_RULES_BER: return ber::decode_observed(observer, value, type, data, size, error);
        default: break;
    }
    static const char kMessage[] = "these rules cannot be explained";
    asn1_error_init(error);
    memcpy(error->message, kMessage, sizeof kMessage);
    return -1;
}

// What is left is told of the message as a whole.
static void tell_rest(bit_observer* observer, const asn1_type_desc* type, uint64_t size, int64_t used) {
    observer->type = type;
    observer->own_path.depth = 0;
    observer->path = &observer->own_path;
    if (used < 0) {
        tell_bits(observer, size * 8, ORLENTA_BITS_REFUSED, "not decoded");
        return;
    }
    // An encoding without bits is one zero octet in PER (X.691 clause 11.1.3), of which the decoder uses nothing.
    uint64_t octets = used == 0 && size == 1 ? 1 : static_cast<uint64_t>(used);
    tell_bits(observer, octets * 8, ORLENTA_BITS_PADDING, "padding");
    tell_bits(observer, size * 8, ORLENTA_BITS_TRAILING, "behind the message");
}

}  // namespace orlenta

using namespace orlenta;

int64_t orlenta_explain(const asn1_type_desc* type, int rules, const uint8_t* data, uint64_t size,
                        orlenta_explain_callback* callback, void* user, asn1_error* error) {
    explanation to = {callback, user};
    bit_observer observer;
    observer.take = hand_on;
    observer.context = &to;
    observer.told = 0;
    observer.type = type;
    observer.own_path.depth = 0;
    observer.path = &observer.own_path;
    asn1_error own;
    void* value = nullptr;
    int64_t used = decode_observed(&observer, rules, &value, data, size, error ? error : &own);
    asn1_free_value(type, value);
    tell_rest(&observer, type, size, used);
    return used;
}
