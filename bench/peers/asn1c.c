// SPDX-License-Identifier: Apache-2.0
/* The code that asn1c makes, as a peer. Defined by the build: PEER_NAME, and PEER_TYPES, a row(name, identifier) for
 * each type: row("CN.MessageFrame", MessageFrame). */
#include <asn_application.h>
#include <constr_TYPE.h>
#include <stdlib.h>
#include <string.h>

#include "peer.h"

#define row(name, identifier) extern asn_TYPE_descriptor_t asn_DEF_##identifier;
PEER_TYPES
#undef row

static const void* find_type(const char* wanted) {
#define row(name, identifier) \
    if (strcmp(wanted, name) == 0) return &asn_DEF_##identifier;
    PEER_TYPES
#undef row
    return NULL;
}

/* Its functions take descriptors that are not constant, and change nothing in them. */
static asn_TYPE_descriptor_t* descriptor(const void* type) { return (asn_TYPE_descriptor_t*)type; }

static void release(const void* type, void* value) {
    asn_TYPE_descriptor_t* of = descriptor(type);
    ASN_STRUCT_FREE(*of, value);
}

static void* decode(const void* type, const uint8_t* data, size_t size) {
    void* value = NULL;
    asn_dec_rval_t result = uper_decode_complete(NULL, descriptor(type), &value, data, size);
    if (result.code == RC_OK && result.consumed == size) return value;
    release(type, value);
    return NULL;
}

static int64_t encode(const void* type, const void* value, uint8_t** out) {
    void* block = NULL;
    int64_t size = uper_encode_to_new_buffer(descriptor(type), NULL, (void*)value, &block);
    *out = block;
    return size;
}

static int64_t encode_der(const void* type, const void* value, uint8_t** out) {
    static const size_t room = 1 << 20;
    *out = malloc(room);
    if (!*out) return -1;
    return der_encode_to_buffer(descriptor(type), (void*)value, *out, room).encoded;
}

__attribute__((visibility("default"))) const bench_peer* bench_peer_entry(void) {
    static const bench_peer peer = {PEER_NAME, find_type, decode, release, encode, encode_der};
    return &peer;
}
