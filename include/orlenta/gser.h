/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * GSER: values as text, by the generic string encoding rules (RFC 3641), laid out with line breaks and indentation.
 *
 * How the kinds are written:
 *
 *     SEQUENCE, SET          { name value, name value }; in the type's order when printed, in any order when read
 *     SEQUENCE OF, SET OF    { value, value }
 *     CHOICE                 alternative: value
 *     INTEGER                decimal number
 *     BOOLEAN, NULL          TRUE, FALSE, NULL
 *     ENUMERATED             the item's name
 *     REAL                   decimal number with an exponent (1.500000000000000000E00); 0, -0, PLUS-INFINITY,
 *                            MINUS-INFINITY, NOT-A-NUMBER
 *     BIT STRING             'ABC'H if the length in bits is a multiple of 4, else '101'B
 *     OCTET STRING           'AB01'H
 *     OBJECT IDENTIFIER      arcs, 1.2.840
 *     character strings      "text" in UTF-8, with quotation marks doubled and nothing else escaped
 *     open types             the actual type's form, with no wrapper; 'AB01'H if the type is unknown
 *
 * Tags leave no trace. Contained types (CONTAINING) stay digits.
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
#ifndef ORLENTA_GSER_H
#define ORLENTA_GSER_H

#include <orlenta/error.h>
#include <orlenta/text.h>

#ifdef __cplusplus
extern "C" {
#endif

/** How a value is printed. */
typedef struct asn1_gser_encode_options {
    void* hook_data;            /**< handed to `hook` unchanged */
    asn1_text_hook* hook;       /**< prints values in the encoder's place; null: none */
    int32_t indent;             /**< level of indentation, two spaces each, at which printing starts */
    int32_t binary_bit_strings; /**< non-zero: BIT STRING is always printed in binary digits */
} asn1_gser_encode_options;

/** Prints `value` as GSER text, ended by a line feed. `*out` receives the text, not NUL-terminated, to be released by
 * asn1_free. Returns its length in bytes, the line feed included; or a negative number, with a null `*out`, for a
 * selector or item index outside the type, contents octets of an object identifier that break off, a code unit above
 * 31 bits, or if memory ran out. An object identifier without contents octets prints nothing, and the
 * decoder does not take it back. */
ORLENTA_API int64_t asn1_gser_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

/** The same by `options`, which must not be null. */
ORLENTA_API int64_t asn1_gser_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                                      const asn1_gser_encode_options* options);

/** Reads a value of `type` from the `length` bytes of GSER text at `data`, which needs no terminator. `*out` receives
 * the value, to be released by asn1_free_value. Returns `length`: what follows the value is not looked at, except that
 * the next token must be well formed. On failure -1, a null `*out`, and in `error`, if not null, a message with the
 * line; its path stays empty. Line breaks within a character string are not counted.
 *
 * White space and comments (from -- to the line's end, and C's) may stand between tokens, white space also within a
 * hex or binary string, but no line break there. A number with a fraction needs an exponent with an upper-case E.
 * BIT STRING and OCTET STRING take hexadecimal (upper-case) and binary digits alike. The second arc of an object
 * identifier is at most 39. An OCTET STRING in quotation marks is taken, but not as its characters: it gets as many
 * bytes as there are characters, from an array with four bytes for each in native order. The component that selects
 * the type of an open type must stand before it. */
ORLENTA_API int64_t asn1_gser_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                     uint64_t length, asn1_error* error);

#ifdef __cplusplus
}
#endif

#endif
