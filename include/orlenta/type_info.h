/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * From a descriptor to its names, and from an open type to its actual type. None of these allocates. */
#ifndef ORLENTA_TYPE_INFO_H
#define ORLENTA_TYPE_INFO_H

#include <orlenta/type.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A SEQUENCE or SET that encloses a component, and the one around it. */
typedef struct asn1_parent_frame {
    const struct asn1_parent_frame* parent; /**< the one around; null at the outermost */
    const asn1_type_desc* desc;             /**< of the SEQUENCE or SET */
    const void* value;                      /**< its record, as far as filled */
} asn1_parent_frame;

/** The actual type of the open type `desc` inside `frame`, by its table constraint (X.682 clause 10); null if no row,
 * or more than one, matches the key. */
ORLENTA_API const asn1_type_desc* asn1_get_constrained_type(const asn1_parent_frame* frame,
                                                            const asn1_type_desc* desc);

/** The contained type of a BIT STRING or OCTET STRING with a CONTAINING constraint, else null. The codecs treat such
 * a string as plain bytes. */
ORLENTA_API const asn1_type_desc* asn1_get_containing_type(const asn1_type_desc* desc);

/** The schema's name of the type, or null if it has none. For a TAGGED descriptor with a name the result is no text:
 * its name is word 2. */
ORLENTA_API const char* asn1_get_user_type_name(const asn1_type_desc* desc);

/** The name of the kind or character string type, behind any TAGGED; "?" for an open type. */
ORLENTA_API const char* asn1_get_generic_type_name(const asn1_type_desc* desc);

/** The user type name, or else the generic one. */
ORLENTA_API const char* asn1_get_type_name(const asn1_type_desc* desc);

#ifdef __cplusplus
}
#endif

#endif
