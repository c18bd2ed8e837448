// SPDX-License-Identifier: Apache-2.0
#include "tests/roundtrip/rules.hpp"

#include <orlenta/ber.h>
#include <orlenta/gser.h>
#include <orlenta/jer.h>
#include <orlenta/oer.h>
#include <orlenta/per.h>
#include <orlenta/xer.h>

namespace orlenta::test {

// What DER never writes: indefinite lengths, and strings in segments.
static int64_t encode_loose_ber(uint8_t** out, const asn1_type_desc* type, const void* value) {
    asn1_ber_encode_params params = {};
    params.indefinite_length = 1;
    params.segment_size = 7;
    return asn1_ber_encode(out, type, value, &params);
}

static const Rule kRules[] = {
    {"UPER", asn1_uper_encode, asn1_uper_decode, true},
    {"APER", asn1_aper_encode, asn1_aper_decode, true},
    {"OER", asn1_oer_encode, asn1_oer_decode, true},
    {"DER", asn1_der_encode, asn1_ber_decode, true},
    {"BER", encode_loose_ber, asn1_ber_decode, true},
    {"JER", asn1_jer_encode, asn1_jer_decode, false},
    {"GSER", asn1_gser_encode, asn1_gser_decode, true},
    // Raw bytes come back inside a component; an outermost open type has the name "?", which no tag can have.
    {"XER", asn1_xer_encode, asn1_xer_decode, false},
};

std::span<const Rule> all_rules() { return kRules; }

}  // namespace orlenta::test
