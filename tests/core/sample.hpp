// SPDX-License-Identifier: Apache-2.0
// A SEQUENCE with a component of every kind, its record, and a value of it.
#pragma once

#include <orlenta/memory.h>
#include <string.h>

#include <string_view>

#include "tests/support/universal_types.hpp"

namespace orlenta::test {

inline const asn1_word kList[] = {head(ASN1_KIND_SEQUENCE_OF, kLower, 16), num(0), num(16), ref(kOctets),
                                  num(0)};
inline const asn1_word kLink[] = {head(ASN1_KIND_TAGGED, ASN1_WORD0_INDIRECT, context(7)),
                                  ref(kTagged<6, kList>)};

struct choice_record {  // of kChoice
    uint32_t selector;
    union {
        uint32_t number;
        asn1_string octets;
    };
};

struct sample {
    uint32_t flag;
    uint32_t level;  // DEFAULT 7
    uint32_t has_octets;
    asn1_string octets;
    asn1_integer big;
    asn1_array list;
    choice_record choice;
    asn1_array* link;
    asn1_open_value open;
    asn1_open_value raw;
    asn1_bit_string bits;
    asn1_string wide;
    double real;
    asn1_string oid;
    uint32_t state;
    uint32_t has_addition;
    asn1_string addition;
};

#define SAMPLE_AT(member) field(offsetof(sample, member))
#define SAMPLE_AT_WITH(member, option, flags) field(offsetof(sample, member), option, flags)
inline const asn1_word kSample[] = {
    // clang-format off
    head(ASN1_KIND_SEQUENCE, ASN1_WORD0_EXTENSIBLE, 16), num(16), num(sizeof(sample)),
    SAMPLE_AT(flag), ref(kBoolean), num(0), txt("flag"),
    SAMPLE_AT_WITH(level, ASN1_OPTION_DEFAULT, 0), ref(kUint32), num(7), txt("level"),
    SAMPLE_AT_WITH(octets, ASN1_OPTION_OPTIONAL, 0), ref(kOctets), num(offsetof(sample, has_octets)), txt("octets"),
    SAMPLE_AT(big), ref(kBig), num(0), txt("big"),
    SAMPLE_AT(list), ref(kList), num(0), txt("list"),
    SAMPLE_AT(choice), ref(kChoice), num(0), txt("choice"),
    SAMPLE_AT(link), ref(kLink), num(0), txt("link"),
    SAMPLE_AT(open), ref(kAny), num(0), txt("open"),
    SAMPLE_AT(raw), ref(kAny), num(0), txt("raw"),
    SAMPLE_AT(bits), ref(kBits), num(0), txt("bits"),
    SAMPLE_AT(wide), ref(kBmp), num(0), txt("wide"),
    SAMPLE_AT(real), ref(kReal), num(0), txt("real"),
    SAMPLE_AT(oid), ref(kOid), num(0), txt("oid"),
    SAMPLE_AT(state), ref(kEnum), num(0), txt("state"),
    field(0), ref(kNull), num(0), txt("null"),
    SAMPLE_AT_WITH(addition, ASN1_OPTION_MANDATORY, ASN1_FIELD_ADDITION), ref(kUtf8),
        num(offsetof(sample, has_addition)), txt("addition"),
    // clang-format on
};

// A string that owns its bytes; `units` code units in them.
inline asn1_string make_string(std::string_view bytes, uint64_t units) {
    uint8_t* data = static_cast<uint8_t*>(asn1_malloc(bytes.size()));
    if (!bytes.empty()) memcpy(data, bytes.data(), bytes.size());
    return {data, units};
}
inline asn1_string make_string(std::string_view bytes) { return make_string(bytes, bytes.size()); }

// The same bytes, owned by another.
inline asn1_string view(std::string_view bytes, uint64_t units) {
    return {reinterpret_cast<uint8_t*>(const_cast<char*>(bytes.data())), units};
}
inline asn1_string view(std::string_view bytes) { return view(bytes, bytes.size()); }

inline asn1_array make_list(std::initializer_list<std::string_view> elements) {
    asn1_string* block = static_cast<asn1_string*>(asn1_malloc(elements.size() * sizeof(asn1_string)));
    uint64_t count = 0;
    for (std::string_view element : elements) block[count++] = make_string(element);
    return {block, count};
}

template <typename T>
T* make_block(const T& contents) {
    T* block = static_cast<T*>(asn1_malloc(sizeof contents));
    *block = contents;
    return block;
}

// Everything present, every pointer owned.
inline sample* make_sample() {
    sample* s = static_cast<sample*>(asn1_mallocz(sizeof(sample)));
    s->flag = 1;
    s->level = 9;
    s->has_octets = 1;
    s->octets = make_string("octets");
    asn1_integer_set_si64(&s->big, INT64_MIN);
    s->list = make_list({"one", "", "three"});
    s->choice = {.selector = 2, .octets = make_string("text")};
    s->link = make_block(make_list({"linked"}));
    s->open = {kOctets, make_block(make_string("open")), 0};
    s->raw = {nullptr, make_string("raw").data, 3};
    s->bits = {make_string("\xAA\x80").data, 9};
    s->wide = make_string(std::string_view("a\0b\0", 4), 2);
    s->real = -2.5;
    s->oid = make_string("\x2A\x03");
    s->state = 1;
    s->has_addition = 1;
    s->addition = make_string("new");
    return s;
}

}  // namespace orlenta::test
