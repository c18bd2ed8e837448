/* SPDX-License-Identifier: Apache-2.0 */
/* What the comparison wants of another codec: a shared object that exports bench_peer_entry. The object is loaded
 * with its symbols to itself, so that several of them, made of schemas with the same names, do not meet. */
#ifndef ORLENTA_BENCH_PEER_H
#define ORLENTA_BENCH_PEER_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct bench_peer {
    const char* name; /* "asn1c 0.9.28" */

    /* What stands for the type "CN.MessageFrame" in the calls below; null if the peer does not have it. */
    const void* (*find_type)(const char* name);

    /* A new value from unaligned PER, all of `size` bytes; null if they do not decode. */
    void* (*decode)(const void* type, const uint8_t* data, size_t size);
    void (*release)(const void* type, void* value);

    /* The value in unaligned PER, in a new block of malloc; its size, or a negative number. */
    int64_t (*encode)(const void* type, const void* value, uint8_t** out);

    /* The same in DER, to compare values; null if the peer has no DER. */
    int64_t (*encode_der)(const void* type, const void* value, uint8_t** out);
} bench_peer;

const bench_peer* bench_peer_entry(void);

#ifdef __cplusplus
}
#endif

#endif
