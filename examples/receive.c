// SPDX-License-Identifier: Apache-2.0
/* A received message: decoded, checked, looked into, printed as JSON. */
#include <orlenta/check.h>
#include <orlenta/cn.h>
#include <orlenta/jer.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <stdio.h>

int main(int argc, char** argv) {
    uint8_t bytes[2048];
    FILE* file = argc == 2 ? fopen(argv[1], "rb") : NULL;
    if (file == NULL) return fputs("usage: receive FILE\n", stderr), 2;
    size_t size = fread(bytes, 1, sizeof bytes, file);
    fclose(file);

    asn1_error err;
    void* value;
    if (asn1_uper_decode(&value, asn1_type_CN_MessageFrame, bytes, size, &err) < 0)
        return fprintf(stderr, "%s (bit %d, at %s)\n", err.message, err.bit_position, err.path), 1;
    if (!orlenta_check(asn1_type_CN_MessageFrame, value, &err))
        fprintf(stderr, "taken all the same: %s at %s\n", err.message, err.path);

    const asn1_CN_MessageFrame* frame = value;
    if (frame->choice == asn1_CN_MessageFrame_bsmFrame) {
        const asn1_CN_BasicSafetyMessage* bsm = &frame->u.bsmFrame;
        printf("latitude %.7f, longitude %.7f, %.2f m/s\n", bsm->pos.lat * 1e-7, bsm->pos.lon * 1e-7,
               bsm->speed * 0.02);
        if (bsm->has_angle) printf("steering wheel at %.1f degrees\n", bsm->angle * 1.5);
    }

    uint8_t* text;
    int64_t length = asn1_jer_encode(&text, asn1_type_CN_MessageFrame, value);
    if (length >= 0) fwrite(text, 1, (size_t)length, stdout), asn1_free(text);
    asn1_free_value(asn1_type_CN_MessageFrame, value);
    return 0;
}
