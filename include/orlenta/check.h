/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * The constraint checker: holds a value against the constraints that its descriptor carries.
 *
 * Codecs do not enforce constraints by themselves to this degree: an application runs the check on a value
 * before it encodes it, or after it decoded it. Tested are size bounds, integer ranges, CHOICE selectors,
 * permitted alphabets and UTF-8 form. An extension marker switches a range or size test off, but never an
 * alphabet. A set of values or sizes counts by its ends: INTEGER (1|5|9) takes 3. EXCEPT, PATTERN, WITH
 * COMPONENTS and the ranges of a REAL are not in the tables, and so not tested. Nor is whether a mandatory component
 * is there, which memory cannot tell but in extension additions.
 *
 * orlenta_check looks at the whole message. asn1_check_constraints does not look into open types, but for whether a
 * value is there, nor into CONTAINING strings; and of an ENUMERATED index it catches only what is far out of range:
 * one past the last item passes, though most encoders refuse it.
 */
#ifndef ORLENTA_CHECK_H
#define ORLENTA_CHECK_H

#include <orlenta/error.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Checks the value record `value` of type `type` against the subtype constraints (X.680 clauses 49 to 51).
 * Allocates nothing and changes nothing in the value; calls on different values may run in parallel.
 *
 * Returns 1 if the value passes. Returns 0 at the first violation, and then `error`, unless it is null,
 * receives the message and the component path; on success `error` stays as it was. A descriptor of an
 * OBJECT_CLASS, which has no values, ends the process by abort(). */
ORLENTA_API int asn1_check_constraints(const asn1_type_desc* type, const void* value, asn1_error* error);

/** The same for the value and all that it holds; besides, an ENUMERATED index must be that of an item, and where there is a
 * length, a count or a type there must be something behind the pointer ("no data for a length of 5", "value is missing";
 * of a null `value` too), and where one component of an extension addition group is present, all its mandatory ones must
 * be ("extension group component 'x' must be present"): the encoders take that for granted.
 *
 * A typed value of an open type must be of the type that its key selects ("open type does not fit its key"; X.682
 * clause 10) and is checked itself; raw bytes pass. The octets of a string with a CONTAINING constraint (X.682
 * clause 11) must be a whole encoding of the contained type in one of unaligned PER, aligned PER, OER or BER, whose
 * value is checked; the report is that of unaligned PER, "contained value: ..." if it cannot be decoded. For these
 * decodes memory is allocated, and released; nothing is allocated otherwise. */
ORLENTA_API int orlenta_check(const asn1_type_desc* type, const void* value, asn1_error* error);

/** The same but for the octets of strings with a CONTAINING constraint, which pass: nothing is allocated, and a program that
 * is linked with the static library gets no decoders by it. */
ORLENTA_API int orlenta_check_values(const asn1_type_desc* type, const void* value, asn1_error* error);

#ifdef __cplusplus
}
#endif

#endif
