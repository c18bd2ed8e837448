// SPDX-License-Identifier: Apache-2.0
// Who watches a decode. A decoder that has an observer tells it, when it has read something that has a name, what the
// bits are from those told last up to there: so none is told twice and none left out, whatever decoders name.
#pragma once

#include <orlenta/explain.h>

#include "core/descriptor.hpp"
#include "core/path.hpp"

namespace orlenta {

// A minimal library has no observers.
#if defined(ORLENTA_MINIMAL)
constexpr bool kObserves = false;
#else
constexpr bool kObserves = true;
#endif

struct bit_run {
    uint64_t offset, width;
    orlenta_bits_kind kind;
    const char* text;
    const void* value;  // a record of the observer's type, or null
};

struct bit_observer {
    void (*take)(bit_observer* observer, const bit_run& run);
    void* context;               // the taker's
    uint64_t told;               // the first bit that is not told
    const asn1_type_desc* type;  // whose value is being read
    const asn1_type_path* path;
    asn1_type_path own_path;  // for decoders that keep none
};

// A run that ends before bit `end`, if it has any bits.
void tell_bits(bit_observer* observer, uint64_t end, orlenta_bits_kind kind, const char* format, ...)
    __attribute__((format(printf, 4, 5), cold));

// The bits of a preamble, one for each of the `n` components that may be absent.
void tell_presence(bit_observer* observer, uint64_t end, const asn1_field* fields, uint32_t n,
                   const uint8_t* present) __attribute__((cold));

// Identifier octets, by their tag word.
void tell_tag(bit_observer* observer, uint64_t end, uint32_t tag) __attribute__((cold));

// The type whose value is read from here on; returns the one before.
inline const asn1_type_desc* set_type(bit_observer* observer, const asn1_type_desc* type) {
    const asn1_type_desc* outer = observer->type;
    observer->type = type;
    return outer;
}

// The end of a value of the observer's type: what was not told is its contents, unless it has components, which have told
// their own.
void tell_value(bit_observer* observer, uint64_t end, const void* value) __attribute__((cold));

// The path of a decoder that keeps none, for its observer if it has one.
inline void enter_component(bit_observer* observer, const char* name) {
    if (__builtin_expect(observer != nullptr, 0)) push_name(&observer->own_path, name);
}
inline void enter_element(bit_observer* observer, int32_t index) {
    if (__builtin_expect(observer != nullptr, 0)) push_index(&observer->own_path, index);
}
inline void leave_component(bit_observer* observer) {
    if (__builtin_expect(observer != nullptr, 0)) pop(&observer->own_path);
}

}  // namespace orlenta
