// SPDX-License-Identifier: Apache-2.0
// The encoding rules by name, and single messages through them.
#pragma once

#include <orlenta/memory.h>
#include <orlenta/value.h>

#include "problem.hpp"
#include "schema.hpp"
#include "scratch.hpp"

namespace orlenta::python {

struct Rules {
    const char* name;
    bool is_text;
    int explained;  // ORLENTA_RULES_..., or -1
    int64_t (*decode)(void**, const asn1_type_desc*, const uint8_t*, uint64_t, asn1_error*);
    int64_t (*encode)(uint8_t**, const asn1_type_desc*, const void*, asn1_error*);
    int64_t (*decode_arena)(const orlenta_codec*, orlenta_arena*, orlenta_arena_value*, const uint8_t*,
                            uint64_t, asn1_error*);
    int64_t (*encode_codec)(const orlenta_codec*, uint8_t**, const void*, asn1_error*);
};

// By a str; null with UnknownType. A null `name` is "uper".
const Rules* find_rules(PyObject* name);

// What is to be decoded.
struct Message {
    const uint8_t* data = nullptr;
    size_t size = 0;
};

// A record in the arena, or one of its own.
struct Decoded {
    const asn1_type_desc* type = nullptr;
    const void* record = nullptr;
    void* own = nullptr;
    size_t used = 0;  // octets of the message

    Decoded() = default;
    Decoded(const Decoded&) = delete;
    Decoded& operator=(const Decoded&) = delete;
    ~Decoded() { clear(); }
    void clear() {
        if (own) asn1_free_value(type, own);
        record = own = nullptr;
    }
};

struct DecodeOptions {
    const Rules* rules = nullptr;
    bool allow_trailing = false;
};

// False with `problem` filled. Needs no interpreter; the handle's codec is made before.
bool decode(const Handle& handle, const DecodeOptions& options, const Message& message, orlenta_arena* arena,
            Decoded& decoded, Problem& problem);

// Octets, or text. Null with an exception.
PyObject* encode(Handle& handle, const Rules& rules, const void* record);

}  // namespace orlenta::python
