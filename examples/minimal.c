/* SPDX-License-Identifier: Apache-2.0 */
/* What a small device does with the minimal library: decodes a message from standard input, and sends it on. */
#include <orlenta/cn.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <unistd.h>

int main(void) {
    uint8_t message[1500];
    void* value;
    uint8_t* out;
    ssize_t size = read(0, message, sizeof message);
    if (size < 0 || asn1_uper_decode(&value, asn1_type_CN_MessageFrame, message, (uint64_t)size, NULL) < 0)
        return 1;
    int64_t written = asn1_uper_encode(&out, asn1_type_CN_MessageFrame, value);
    asn1_free_value(asn1_type_CN_MessageFrame, value);
    if (written < 0 || write(1, out, (size_t)written) != written) return 1;
    asn1_free(out);
    return 0;
}
