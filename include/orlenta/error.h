/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * What went wrong, and where: the error record that decoders, encoders with the suffix 2 and the checker fill. */
#ifndef ORLENTA_ERROR_H
#define ORLENTA_ERROR_H

#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Written on failure only; a call that succeeds leaves the caller's record as it was. */
typedef struct asn1_error {
    int32_t line;         /**< text decoders: line of the input, from 1 */
    int32_t bit_position; /**< binary codecs: bits from the start of the message or open type */
    char path[256];       /**< PER codecs and the checker: component path, as a.b[3].c */
    char message[256];    /**< what is wrong; empty for a failure without a text of its own */
} asn1_error;

/** `line` to 1, `bit_position` to 0, both texts to empty. */
ORLENTA_API void asn1_error_init(asn1_error* err);

/** Entries that an asn1_type_path keeps. */
#define ASN1_TYPE_PATH_SLOTS 32

/** A step of a path. */
typedef struct asn1_type_path_entry {
    int32_t is_index; /**< which member of `u` counts */
    /** The step itself. */
    union {
        const char* name; /**< is_index 0: component or alternative, not owned */
        int32_t index;    /**< is_index 1: position in a list */
    } u;                  /**< by `is_index` */
} asn1_type_path_entry;

/** Where a walk is. `depth` may pass 32; the ring then holds the innermost 32 entries. */
typedef struct asn1_type_path {
    int32_t depth;                                      /**< steps from the outermost value */
    asn1_type_path_entry entries[ASN1_TYPE_PATH_SLOTS]; /**< that of depth n at n modulo 32 */
} asn1_type_path;

/** Writes the path's text, cut to `size` - 1 characters and terminated. More than 32 components show as the last 32
 * after "(...)". */
ORLENTA_API void asn1_type_path_to_str(const asn1_type_path* path, char* dst, size_t size);

#ifdef __cplusplus
}
#endif

#endif
