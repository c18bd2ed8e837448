/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * What the text encoders (GSER, JER, XER) have in common. */
#ifndef ORLENTA_TEXT_H
#define ORLENTA_TEXT_H

#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Prints a value in the encoder's place. It is called for every value of a walk before the encoder prints it: the
 * outermost value, each component, each list element, each alternative, and once more after each tag.
 *
 * `hook_data` is the pointer given in the options, `type` and `value` are those of the value in hand, `depth` is the
 * nesting level at which it stands.
 *
 * A result of 0 or more is the number of bytes of a text that the hook left in a new block at `*text`, taken from
 * asn1_malloc; they go to the output as they stand, and the encoder frees the block. A negative result leaves the
 * value to the encoder. Some 16 KiB of stack are left for it (docs/limits.md). */
typedef int64_t asn1_text_hook(void* hook_data, char** text, const asn1_type_desc* type, const void* value,
                               int32_t depth);

#ifdef __cplusplus
}
#endif

#endif
