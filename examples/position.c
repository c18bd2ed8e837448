// SPDX-License-Identifier: Apache-2.0
/* A typed record to bytes and back, in C. */
#include <orlenta/cn.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <stdio.h>

int main(void) {
    asn1_CN_Position3D here = {.lat = 399087000, .lon = 1163975000, .has_elevation = 1, .elevation = 435};
    asn1_error err;
    uint8_t* bytes;
    int64_t size = asn1_uper_encode2(&bytes, asn1_type_CN_Position3D, &here, &err);
    if (size < 0) return fprintf(stderr, "%s at %s\n", err.message, err.path), 1;

    void* value;
    if (asn1_uper_decode(&value, asn1_type_CN_Position3D, bytes, (size_t)size, &err) < 0)
        return fprintf(stderr, "%s (bit %d, at %s)\n", err.message, err.bit_position, err.path), 1;
    const asn1_CN_Position3D* there = value;
    printf("%d bytes: lat %d, lon %d, elevation %d\n", (int)size, there->lat, there->lon, there->elevation);
    asn1_free_value(asn1_type_CN_Position3D, value);
    asn1_free(bytes);
    return 0;
}
