// SPDX-License-Identifier: Apache-2.0
// A typed record to bytes and back, in C++.
#include <orlenta/cn.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>

#include <iostream>
#include <memory>

struct Release {
    void operator()(uint8_t* bytes) const { asn1_free(bytes); }
    void operator()(asn1_CN_Position3D* value) const { asn1_free_value(asn1_type_CN_Position3D, value); }
};

int main() {
    asn1_CN_Position3D here{.lat = 399087000, .lon = 1163975000, .has_elevation = 1, .elevation = 435};
    asn1_error err;
    uint8_t* out;
    int64_t size = asn1_uper_encode2(&out, asn1_type_CN_Position3D, &here, &err);
    if (size < 0) return std::cerr << err.message << " at " << err.path << '\n', 1;
    std::unique_ptr<uint8_t, Release> bytes(out);

    void* decoded;
    if (asn1_uper_decode(&decoded, asn1_type_CN_Position3D, bytes.get(), size, &err) < 0)
        return std::cerr << err.message << " (bit " << err.bit_position << ", at " << err.path << ")\n", 1;
    std::unique_ptr<asn1_CN_Position3D, Release> there(static_cast<asn1_CN_Position3D*>(decoded));
    std::cout << size << " bytes: lat " << there->lat << ", lon " << there->lon << ", elevation "
              << there->elevation << '\n';
}
