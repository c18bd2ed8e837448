// SPDX-License-Identifier: Apache-2.0
// Plans: what a conversion needs to know of a type, worked out once, with the Python objects that it hands out.
#pragma once

#include <orlenta/catalogue.h>

#include <memory>
#include <unordered_map>
#include <vector>

#include "name_index.hpp"
#include "python.hpp"

namespace orlenta::python {

// How values look in Python, and where they lie in memory.
enum class Form : uint8_t {
    record,         // dict
    list,           // list
    choice,         // (name, value)
    boolean,        // bool
    signed_word,    // int
    unsigned_word,  // int
    big_integer,    // int
    enumerated,     // str
    null,           // None
    bit_string,     // (bytes, number of bits)
    octet_string,   // bytes
    latin_text,     // str; a byte is a character
    utf8_text,
    utf16_text,         // BMPString
    utf32_text,         // UniversalString
    object_identifier,  // str of arcs
    relative_identifier,
    real,      // float
    indirect,  // as what it points at
    open_type  // (type name, value), or bytes
};

struct Plan;

enum class Presence : uint8_t { mandatory, flagged, defaulted };

// A component or an alternative.
struct Member {
    PyObject* name = nullptr;  // interned
    const Plan* plan = nullptr;
    uint32_t offset = 0;
    uint32_t presence_offset = 0;
    Presence presence = Presence::mandatory;
    uint32_t default_word = 0;
    const asn1_integer* big_default = nullptr;
};

struct Plan {
    const asn1_type_desc* type = nullptr;  // behind tags that leave the value in place
    Form form = Form::null;
    bool is_extensible = false;
    uint32_t kind = 0;                             // ASN1_KIND_...
    uint64_t size = 0;                             // bytes of a value in memory
    int64_t lower = INT64_MIN, upper = INT64_MAX;  // of an INTEGER, or of a size
    const asn1_integer* big_lower = nullptr;
    const asn1_integer* big_upper = nullptr;
    uint64_t selector_offset = 0;
    const Plan* inner = nullptr;  // of a list's elements, or behind a pointer
    uint64_t stride = 0;          // bytes of an element
    std::vector<Member> members;
    std::vector<PyObject*> items;  // interned
    NameIndex index;               // of alternatives or items

    Plan() = default;
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;
    ~Plan();
};

// The plans of a catalogue's types; made when they are first asked for, under the interpreter's lock.
struct Plans {
    std::unordered_map<const asn1_type_desc*, std::unique_ptr<Plan>> by_type;
    std::vector<const asn1_type_desc*> unfinished;
};

// Null with an exception if memory ran out.
const Plan* plan_of(Plans& plans, const asn1_type_desc* type);

}  // namespace orlenta::python
