// SPDX-License-Identifier: Apache-2.0
// The check of the whole message: with values whose encoding a string contains, and so with all that decodes them.
#include <orlenta/ber.h>
#include <orlenta/check.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include "check/check.hpp"

namespace orlenta::check {

enum class contents_rules { uper, aper, oer, ber, count };

static int64_t decode_contents(contents_rules rules, void** value, const asn1_type_desc* type,
                               const uint8_t* data, uint64_t size, asn1_error* error) {
    switch (rules) {
        case contents_rules::uper: return asn1_uper_decode(value, type, data, size, error);
        case contents_rules::aper: return asn1_aper_decode(value, type, data, size, error);
        case contents_rules::oer: return asn1_oer_decode(value, type, data, size, error);
        default: return asn1_ber_decode(value, type, data, size, error);
    }
}

// In PER a value that takes no bits is one zero octet, of which none is used (X.691 clause 11.1).
static bool is_used_up(int64_t used, const uint8_t* data, uint64_t size) {
    return static_cast<uint64_t>(used) == size || (used == 0 && size == 1 && data[0] == 0);
}

static int check_contained_by(check_state* state, contents_rules rules, const asn1_type_desc* type,
                              const uint8_t* data, uint64_t size) {
    void* value;
    asn1_error error;
    int64_t used = decode_contents(rules, &value, type, data, size, &error);
    if (used < 0) return asn1_check_error(state, "contained value: %s", error.message);
    const asn1_parent_frame* frames = state->frames;
    state->frames = nullptr;
    int result = is_used_up(used, data, size)
                     ? asn1_check_value(state, type, value)
                     : asn1_check_error(state, "contained value: it ends before the string does");
    state->frames = frames;
    asn1_free_value(type, value);
    return result;
}

// A value does not tell by which rules it came in or will go out, and contents follow these (X.682 clause 11): any
// will do. The report is that of unaligned PER, which the message sets use.
static int check_contained(check_state* state, const asn1_type_desc* contained, const uint8_t* data,
                           uint64_t size) {
    if (check_contained_by(state, contents_rules::uper, contained, data, size) == 0) return 0;
    asn1_error report = state->error;
    for (int i = 1; i < static_cast<int>(contents_rules::count); ++i) {
        if (check_contained_by(state, static_cast<contents_rules>(i), contained, data, size) == 0) return 0;
    }
    state->error = report;
    return -1;
}

}  // namespace orlenta::check

int orlenta_check(const asn1_type_desc* type, const void* value, asn1_error* error) {
    return orlenta::check::check_from_root(type, value, true, orlenta::check::check_contained, error);
}
