// SPDX-License-Identifier: Apache-2.0
#include "rules.hpp"

#include <orlenta/ber.h>
#include <orlenta/explain.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/xer.h>

#include "state.hpp"

namespace orlenta::python {

static int64_t encode_ber(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error*) {
    asn1_ber_encode_params params = {};
    return asn1_ber_encode(out, type, value, &params);
}

static int64_t encode_der(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error*) {
    return asn1_der_encode(out, type, value);
}

static int64_t encode_jer(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error*) {
    asn1_jer_encode_options compact = {};
    return asn1_jer_encode2(out, type, value, &compact);
}

static int64_t encode_xer(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error*) {
    asn1_xer_encode_options one_line = {};
    one_line.empty_tags = 1;
    return asn1_xer_encode2(out, type, value, &one_line);
}

static int64_t encode_gser(uint8_t** out, const asn1_type_desc* type, const void* value, asn1_error*) {
    return asn1_gser_encode(out, type, value);
}

static constexpr Rules kRules[] = {
    {"uper", false, ORLENTA_RULES_UPER, asn1_uper_decode, asn1_uper_encode2, orlenta_uper_decode_arena,
     orlenta_uper_encode2},
    {"aper", false, ORLENTA_RULES_APER, asn1_aper_decode, asn1_aper_encode2, orlenta_aper_decode_arena,
     orlenta_aper_encode2},
    {"oer", false, ORLENTA_RULES_OER, asn1_oer_decode, asn1_oer_encode2, orlenta_oer_decode_arena,
     orlenta_oer_encode2},
    {"ber", false, ORLENTA_RULES_BER, asn1_ber_decode, encode_ber, nullptr, nullptr},
    {"der", false, ORLENTA_RULES_BER, asn1_ber_decode, encode_der, nullptr, nullptr},
    {"jer", true, -1, asn1_jer_decode, encode_jer, nullptr, nullptr},
    {"xer", true, -1, asn1_xer_decode, encode_xer, nullptr, nullptr},
    {"gser", true, -1, asn1_gser_decode, encode_gser, nullptr, nullptr},
};

const Rules* find_rules(PyObject* name) {
    if (!name) return kRules;
    const char* text = PyUnicode_Check(name) ? PyUnicode_AsUTF8AndSize(name, nullptr) : nullptr;
    for (const Rules& rules : kRules) {
        if (text && strcmp(text, rules.name) == 0) return &rules;
    }
    PyErr_Clear();
    Ref names(PyList_New(0));
    for (const Rules& rules : kRules) {
        Ref known(names ? text_object(rules.name) : nullptr);
        if (!known || PyList_Append(names.object, known.object) < 0) return nullptr;
    }
    Ref exception(PyObject_CallFunction(state.unknown_type, "sOO", "rules", name, names.object));
    if (exception) PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(exception.object)), exception.object);
    return nullptr;
}

// ---- decoding -------------------------------------------------------------------------------------------------

// A value without bits is one zero octet in PER (X.691 clause 11.1.3), of which the decoder uses nothing.
static bool is_whole(const Message& message, int64_t used) {
    return static_cast<size_t>(used) == message.size ||
           (used == 0 && message.size == 1 && message.data[0] == 0);
}

static int64_t run(const Handle& handle, const Rules& rules, const Message& message, orlenta_arena* arena,
                   Decoded& decoded, asn1_error* error) {
    decoded.type = handle.type;
    if (rules.decode_arena && handle.codec && arena) {
        orlenta_arena_value value = {nullptr};
        int64_t used = rules.decode_arena(handle.codec, arena, &value, message.data, message.size, error);
        decoded.record = value.record;
        return used;
    }
    int64_t used = rules.decode(&decoded.own, handle.type, message.data, message.size, error);
    decoded.record = decoded.own;
    return used;
}

static void report_trailing(const Message& message, int64_t used, Problem& problem) {
    size_t left = message.size - static_cast<size_t>(used);
    problem.message = std::to_string(left) + (left == 1 ? " byte" : " bytes") + " behind the message";
    problem.bit = 8 * used;
}

bool decode(const Handle& handle, const DecodeOptions& options, const Message& message, orlenta_arena* arena,
            Decoded& decoded, Problem& problem) {
    asn1_error error;
    asn1_error_init(&error);
    static const uint8_t nothing = 0;
    Message readable = {message.data ? message.data : &nothing, message.size};
    int64_t used = run(handle, *options.rules, readable, arena, decoded, &error);
    if (used < 0) {
        problem = problem_of(error, options.rules->is_text, "the message cannot be decoded");
        return false;
    }
    decoded.used = static_cast<size_t>(used);
    if (options.rules->is_text || options.allow_trailing || is_whole(readable, used)) return true;
    decoded.clear();
    report_trailing(readable, used, problem);
    return false;
}

// ---- encoding -------------------------------------------------------------------------------------------------

static int64_t run(Handle& handle, const Rules& rules, const void* record, uint8_t** out, asn1_error* error) {
    const orlenta_codec* codec = rules.encode_codec ? codec_of(handle) : nullptr;
    return codec ? rules.encode_codec(codec, out, record, error)
                 : rules.encode(out, handle.type, record, error);
}

PyObject* encode(Handle& handle, const Rules& rules, const void* record) {
    asn1_error error;
    asn1_error_init(&error);
    uint8_t* out = nullptr;
    int64_t size = run(handle, rules, record, &out, &error);
    if (size < 0) {
        Problem problem = problem_of(error, false, "the value cannot be encoded");
        if (rules.is_text || !error.message[0]) problem.bit = -1;
        return raise(Fault::encode, problem);
    }
    const char* text = reinterpret_cast<const char*>(out);
    Py_ssize_t length = static_cast<Py_ssize_t>(size);
    if (rules.is_text && length > 0 && text[length - 1] == '\n') --length;
    PyObject* object = rules.is_text ? PyUnicode_DecodeUTF8(text, length, "surrogateescape")
                                     : PyBytes_FromStringAndSize(text, length);
    asn1_free(out);
    return object;
}

}  // namespace orlenta::python
