/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * XER: values as XML text, by the XML encoding rules (X.693, basic XER).
 *
 * A text is one element, named after the value's type as in the schema (or after its kind, "INTEGER", "SEQUENCE_OF",
 * "IA5String", if the type has no name), without XML declaration and namespaces. What the kinds have in their element:
 *
 *     SEQUENCE, SET          an element for each component, named by it; in the type's order when printed, in any order
 *                            when read
 *     SEQUENCE OF, SET OF    an element for each list element, named after the element's type; for CHOICE, BOOLEAN and
 *                            ENUMERATED the alternative's, the value's or the item's own element, with no wrapper
 *     CHOICE                 an element named by the alternative
 *     INTEGER                decimal number
 *     BOOLEAN                <true/> or <false/>; or the words as text
 *     ENUMERATED             an empty element named by the item; or the name as text
 *     NULL                   nothing
 *     REAL                   decimal number with an exponent (1.500000000000000000E00); 0, -0, INF, -INF, NaN
 *     BIT STRING             digits 0 and 1
 *     OCTET STRING           hexadecimal digits
 *     OBJECT IDENTIFIER      arcs, 1.2.840
 *     character strings      text in UTF-8, with control characters and & < > as &#38;
 *     open types             the actual type's element; <OCTET_STRING> with hexadecimal digits if the type is unknown
 *
 * Tags leave no trace. Contained types (CONTAINING) stay digits.
 *
 * Neither direction checks constraints; asn1_check_constraints (check.h) does.
 * UTF8String octets are printed as they are: the text is UTF-8 only if they are, which the checker tells. The decoder
 * takes a UTF8String as it is.
 *
 * A control character other than tab, line feed and carriage return is printed as a reference, &#1;, which XML 1.0 does
 * not know: an XML parser refuses such a text, and this decoder reads it.
 *
 * Locale: real numbers are read by strtod and printed by snprintf, which take the decimal point from the thread's
 * locale. A host must keep a locale in which it is the full stop, such as "C", or numbers with a fraction go wrong.
 *
 * Concurrent calls on distinct values are safe. Recursion follows the depth of the value, which the input decides for
 * a type that contains itself; both directions fail before the thread's stack is used up.
 */
#ifndef ORLENTA_XER_H
#define ORLENTA_XER_H

#include <orlenta/error.h>
#include <orlenta/text.h>

#ifdef __cplusplus
extern "C" {
#endif

/** How a value is printed. */
typedef struct asn1_xer_encode_options {
    int32_t indent;          /**< non-zero: line breaks, and two spaces for each level */
    int32_t empty_tags;      /**< non-zero: an element without content is `<x/>`, else `<x></x>` */
    int32_t boolean_text;    /**< non-zero: BOOLEAN is text, else an empty element */
    int32_t enumerated_text; /**< non-zero: ENUMERATED is text, else an empty element */
    void* hook_data;         /**< handed to `hook` unchanged */
    asn1_text_hook* hook;    /**< prints the content of elements in the encoder's place; null: none */
    int32_t depth;           /**< nesting level at which printing starts */
} asn1_xer_encode_options;

/** Prints `value` as XML, with `indent` and `empty_tags` set, the text ended by a line feed. `*out` receives the text,
 * not NUL-terminated, to be released by asn1_free. Returns its length in bytes; or a negative number, with a null
 * `*out`, for a selector or item index outside the type, contents octets of an object identifier that break off, a
 * code unit above 31 bits, or if memory ran out. */
ORLENTA_API int64_t asn1_xer_encode(uint8_t** out, const asn1_type_desc* type, const void* value);

/** The same by `options`, which must not be null. With `indent` 0 the text is one line without a line feed at its end.
 * A hook's text begins on a new line in any case, and stands inside the element's tags, as it is. A list of BOOLEAN or
 * ENUMERATED that was printed with neither empty_tags nor its text option is not read back. */
ORLENTA_API int64_t asn1_xer_encode2(uint8_t** out, const asn1_type_desc* type, const void* value,
                                     const asn1_xer_encode_options* options);

/** Reads a value of `type` from the `length` bytes of XML text at `data`, which needs no terminator. `*out` receives
 * the value, to be released by asn1_free_value. Returns `length`: what follows the value is not looked at, except that
 * the next token must be well formed. On failure -1, a null `*out`, and in `error`, if not null, a message with the
 * line; its path stays empty.
 *
 * Comments, processing instructions and attributes are skipped. The element forms and the text forms of BOOLEAN and
 * ENUMERATED are both taken, ENUMERATED also by number, and the empty elements of control characters (`<bel/>`) within a
 * character string. Stricter than XML: of the named entities only &lt; &gt; &amp; are known, an attribute's value must
 * hold neither / nor >, CDATA sections are skipped up to their first >, a byte order mark is refused, and unknown
 * elements are never skipped. Laxer: text that is no number gives the REAL 0. The component that selects the type of
 * an open type must stand before it. */
ORLENTA_API int64_t asn1_xer_decode(void** out, const asn1_type_desc* type, const uint8_t* data,
                                    uint64_t length, asn1_error* error);

#ifdef __cplusplus
}
#endif

#endif
