/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * JER: values as JSON text, by the JSON encoding rules (X.697).
 *
 * How the kinds are written:
 *
 *     SEQUENCE, SET          object; members in the type's order when printed, in any order when read
 *     SEQUENCE OF, SET OF    array
 *     CHOICE                 object of one member, named by the alternative
 *     INTEGER                number without fraction or exponent
 *     BOOLEAN, NULL          true, false, null
 *     ENUMERATED             string with the item's name
 *     REAL                   number with an exponent (1.500000000000000000e00); 0; "-0", "INF", "-INF", "NaN"
 *     BIT STRING             string of hexadecimal digits if the size is fixed, else {"length": bits, "value": "..."}
 *     OCTET STRING           string of hexadecimal digits
 *     OBJECT IDENTIFIER      string of arcs, "1.2.840"
 *     character strings      string; hexadecimal digits for GeneralString, GraphicString, TeletexString, VideotexString
 *     open types             the actual type's form, with no wrapper; hexadecimal digits if the type is unknown, which
 *                            the decoder does not take back
 *
 * Tags leave no trace. Contained types (CONTAINING) stay hexadecimal.
 *
 * Neither direction checks constraints; asn1_check_constraints (check.h) does.
 * UTF8String octets are printed as they are: the text is UTF-8 only if they are, which the checker tells. The decoder
 * refuses a string that is not UTF-8.
 *
 * Locale: real numbers are read by strtod and printed by snprintf, which take the decimal point from the thread's
 * locale. A host must keep a locale in which it is the full stop, such as "C", or numbers with a fraction go wrong.
 *
 * Concurrent calls on distinct values are safe. Recursion follows the depth of the value, which the input decides for
 * a type that contains itself; both directions fail before the thread's stack is used up.
 */
#ifndef ORLENTA_JER_H
#define ORLENTA_JER_H

#include <orlenta/error.h>
#include <orlenta/text.h>

#ifdef __cplusplus
extern "C" {
#endif

/** How a value is printed. */
typedef struct asn1_jer_encode_options {
    void* hook_data;      /**< handed to `hook` unchanged */
    asn1_text_hook* hook; /**< prints values in the encoder's place; null: none */
    int32_t depth;        /**< nesting level at which printing starts */
    int32_t indent;       /**< spaces per level; 0: compact text without line breaks inside */
} asn1_jer_encode_options;

/** Prints `value` as JSON, indented by 2 spaces per level and ended by a line feed. `*out` receives the text, not
 * NUL-terminated, to be released by asn1_free. Returns its length in bytes, the line feed included; or a negative
 * number, with a null `*out`, for a selector or item index outside the type, contents octets of an object identifier
 * that break off, or if memory ran out. */
ORLENTA_API int64_t asn1_jer_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

/** The same by `options`, which must not be null. */
ORLENTA_API int64_t asn1_jer_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                                     const asn1_jer_encode_options* options);

/** Reads a value of `type` from the `length` bytes of JSON text at `data`, which needs no terminator. `*out` receives
 * the value, to be released by asn1_free_value. Returns `length`: what follows the value is not looked at, except that
 * the next token must be well formed. On failure -1, a null `*out`, and in `error`, if not null, a message with the
 * line; its path stays empty.
 *
 * Stricter than JSON: the escape \/ is refused, unknown members are never skipped, and a number with a fraction needs
 * an exponent. Laxer: leading zeros, control characters in strings, and vertical tab and form feed as white space are
 * accepted. The member that selects the type of an open type must stand before it. */
ORLENTA_API int64_t asn1_jer_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                    uint64_t length, asn1_error* error);

#ifdef __cplusplus
}
#endif

#endif
