// SPDX-License-Identifier: Apache-2.0
/* An allocator of the program in place of the library's: every block must come from it and go back to it. */
#include <orlenta/cn.h>
#include <orlenta/memory.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <stdlib.h>

static int calls, blocks;

void* asn1_malloc(size_t size) {
    calls++;
    blocks++;
    return malloc(size ? size : 1);
}

void* asn1_realloc(void* ptr, size_t size) {
    calls++;
    if (!ptr) blocks++;
    return realloc(ptr, size ? size : 1);
}

void asn1_free(void* ptr) {
    if (ptr) blocks--;
    free(ptr);
}

int main(void) {
    asn1_CN_Position3D here = {.lat = 1, .lon = 2};
    uint8_t* bytes;
    void* value;
    int64_t size = asn1_uper_encode(&bytes, asn1_type_CN_Position3D, &here);
    if (size < 0 || asn1_uper_decode(&value, asn1_type_CN_Position3D, bytes, (size_t)size, NULL) < 0)
        return 1;
    if (calls < 2 || blocks != 2) return 2;
    asn1_free_value(asn1_type_CN_Position3D, value);
    asn1_free(bytes);
    return blocks != 0;
}
