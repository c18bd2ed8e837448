// SPDX-License-Identifier: Apache-2.0
// The DER column of the vector files, and the tags of named types.
#pragma once

#include <orlenta/ber.h>
#include <orlenta/memory.h>

#include "core/descriptor.hpp"
#include "tests/vectors/vector_file.hpp"

namespace orlenta::test {

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
