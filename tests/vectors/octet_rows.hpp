// SPDX-License-Identifier: Apache-2.0
// OER and DER columns of the vector files: rows whose octets are others here, and the tags of named types.
#pragma once

#include <orlenta/ber.h>
#include <orlenta/memory.h>

#include <iterator>
#include <string_view>

#include "core/descriptor.hpp"
#include "tests/vectors/vector_file.hpp"

namespace orlenta::test {

struct OerDifference {
    const char* file;
    int line;
    const char* reason;
};

inline constexpr char kEmptyEncoding[] =
    "an empty encoding stays empty, also as an open type; the row has a zero octet";
inline constexpr char kTagForm[] = "tag numbers from 31 on have the form of BER and no bit for constructed";
inline constexpr char kBoundWidth[] =
    "a lower bound of -2^63 is taken for 65 bits, which puts a length before the value";

inline constexpr OerDifference kOerDifferences[] = {
    {"eu.tsv", 151, kEmptyEncoding}, {"eu.tsv", 530, kEmptyEncoding}, {"eu.tsv", 531, kEmptyEncoding},
    {"us.tsv", 35, kEmptyEncoding},  {"us.tsv", 143, kEmptyEncoding}, {"us.tsv", 220, kBoundWidth},
    {"us.tsv", 525, kTagForm},       {"us.tsv", 526, kTagForm},       {"us.tsv", 527, kTagForm},
    {"us.tsv", 528, kTagForm},       {"us.tsv", 530, kTagForm},       {"us.tsv", 531, kTagForm},
    {"us.tsv", 533, kTagForm},       {"us.tsv", 534, kTagForm},       {"us.tsv", 535, kTagForm},
    {"us.tsv", 536, kTagForm},       {"us.tsv", 539, kEmptyEncoding}, {"us.tsv", 540, kEmptyEncoding},
    {"us.tsv", 541, kTagForm},       {"us.tsv", 583, kEmptyEncoding}, {"us.tsv", 591, kEmptyEncoding},
    {"us.tsv", 592, kEmptyEncoding}, {"us.tsv", 594, kEmptyEncoding}, {"us.tsv", 595, kEmptyEncoding},
};

// The reason why the row's OER column is not this library's encoding, or null.
inline const char* oer_difference(std::string_view file, int line) {
    for (const OerDifference& difference : kOerDifferences) {
        if (file == difference.file && line == difference.line) return difference.reason;
    }
    return nullptr;
}

// A named type may stand in the tables under the automatic tag of the component that refers to it. The rows have the
// types' universal tags; this puts the table's own at the head of a row's DER, or around that of a CHOICE.
inline Bytes with_table_tag(const Bytes& der, const asn1_type_desc* type) {
    uint32_t tag = tag_of(type);
    if (tag == 0 || der.empty()) return der;
    asn1_byte_buffer buf;
    asn1_byte_buffer_init(&buf);
    if (kind_of(type) == ASN1_KIND_CHOICE) {
        asn1_ber_put_tag(&buf, tag, 1);
        asn1_ber_put_len(&buf, static_cast<uint32_t>(der.size()));
        asn1_put_bytes(&buf, der.data(), der.size());
    } else {
        size_t identifier = 1;
        if ((der[0] & 0x1F) == 0x1F) {
            while (identifier < der.size() && (der[identifier] & 0x80) != 0) ++identifier;
            ++identifier;
        }
        asn1_ber_put_tag(&buf, tag, der[0] >> 5 & 1);
        asn1_put_bytes(&buf, der.data() + identifier, der.size() - identifier);
    }
    Bytes retagged(buf.data, buf.data + buf.length);
    asn1_free(buf.data);
    return retagged;
}

}  // namespace orlenta::test
