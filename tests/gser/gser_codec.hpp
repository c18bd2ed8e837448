// SPDX-License-Identifier: Apache-2.0
// GSER as the tests call it.
#pragma once

#include <orlenta/gser.h>

#include "tests/support/text_codec.hpp"

namespace orlenta::test {

inline std::string print_gser(const asn1_type_desc* type, const void* value,
                              const asn1_gser_encode_options& options) {
    return print_with(asn1_gser_encode2, type, value, &options);
}

inline constexpr TextCodec kGser = {
    asn1_gser_decode, asn1_gser_encode,
    [](const asn1_type_desc* type, const void* value) { return print_gser(type, value, {}); }};

}  // namespace orlenta::test
