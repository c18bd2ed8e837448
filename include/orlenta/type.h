/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Type descriptors and value records: the one format on which the library stands.
 *
 * An ASN.1 type is a constant array of machine words, a descriptor; a value of the type is a plain record in
 * memory whose shape follows from the descriptor. Every function of the library takes a pointer to a
 * descriptor's first word and a pointer to a value record.
 *
 * Descriptors are constant and may be shared by any number of threads. A value owns all that it points
 * at; asn1_free_value() (value.h) releases it.
 */
#ifndef ORLENTA_TYPE_H
#define ORLENTA_TYPE_H

#include <stddef.h>
#include <stdint.h>

/** What the library exports. */
#if defined(__GNUC__)
#define ORLENTA_API __attribute__((visibility("default")))
#else
#define ORLENTA_API
#endif

/** @name Layout
 *
 * Descriptors and value records have one layout on every machine: a pointer takes 8 octets, and begins, like a 64-bit
 * number and a double, at a multiple of 8. Where pointers are shorter, the padding after one has no name and no meaning;
 * where 64-bit numbers may begin at a multiple of 4, an attribute moves them.
 * @{ */

/** Begins at a multiple of 8. */
#if defined(__GNUC__)
#define ORLENTA_ALIGNED_8 __attribute__((aligned(8)))
#else
#define ORLENTA_ALIGNED_8
#endif
/** A member that is a pointer. */
/* clang-format off */
#if UINTPTR_MAX > UINT32_MAX
#define ORLENTA_POINTER(type, name) type name
#else
#define ORLENTA_POINTER(type, name) \
    ORLENTA_ALIGNED_8 type name;    \
    uint32_t : 32
#endif
/* clang-format on */

/** @} */

#ifdef __cplusplus
extern "C" {
#endif

struct asn1_integer;

/** One word of a descriptor. Which member is meant follows from the word's place; see the layouts below. */
typedef union asn1_word {
    ORLENTA_ALIGNED_8 uint64_t number;  /**< a count, size, offset, bound or flags */
    const union asn1_word* type;        /**< another descriptor, or an array of words */
    const char* text;                   /**< NUL-terminated */
    const struct asn1_integer* integer; /**< a bound or default that does not fit 32 bits */
    const void* address;                /**< any of these, to be compared */
} asn1_word;

/** A descriptor is passed as a pointer to its first word. */
typedef asn1_word asn1_type_desc;

/** @name Word 0
 *
 * Only the low 32 bits of word 0 carry meaning; it is stored sign-extended.
 * @{ */
/* clang-format off */
#define ASN1_WORD0_KIND_SHIFT 27                   /**< the kind, ASN1_KIND_..., has bits 31..27 */
#define ASN1_WORD0_HAS_NAME (UINT32_C(1) << 26)    /**< a type name word is there */
#define ASN1_WORD0_EXTENSIBLE (UINT32_C(1) << 25)  /**< extension marker; on TAGGED: EXPLICIT */
#define ASN1_WORD0_HAS_LOWER (UINT32_C(1) << 24)   /**< lower bound word; ENUMERATED: value table; TAGGED: indirect */
#define ASN1_WORD0_HAS_UPPER (UINT32_C(1) << 23)   /**< upper bound word */
#define ASN1_WORD0_BIG (UINT32_C(1) << 22)         /**< INTEGER: the value is an asn1_integer */
#define ASN1_WORD0_CONSTRAINED (UINT32_C(1) << 21) /**< a constraint object word is there */
#define ASN1_WORD0_EXPLICIT ASN1_WORD0_EXTENSIBLE   /**< TAGGED: the inner tag is encoded too */
#define ASN1_WORD0_VALUE_TABLE ASN1_WORD0_HAS_LOWER /**< ENUMERATED: item numbers are not 0, 1, 2 ... */
#define ASN1_WORD0_INDIRECT ASN1_WORD0_HAS_LOWER    /**< TAGGED: the record holds a pointer to the value */
#define ASN1_WORD0_TAG_MASK UINT32_C(0x1FFFFF)      /**< class and number; 0: no tag of its own */
#define ASN1_TAG_CLASS_SHIFT 19                     /**< 0 universal, 1 application, 2 context, 3 private */
#define ASN1_TAG_NUMBER_MASK UINT32_C(0x7FFFF)      /**< the number within the class */
/* clang-format on */

/** The kinds, bits 31..27 of word 0, and the words that follow word 0. A word in square brackets is there only if
 * its flag is set; "name" is the schema's type name, there if ASN1_WORD0_HAS_NAME is set.
 */
/* clang-format off */
enum {
    ASN1_KIND_SEQUENCE = 0,     /**< component count; record size; one asn1_field each; [name] */
    ASN1_KIND_SEQUENCE_OF = 1,  /**< [lower]; [upper]; stride; element; element tag name; [name] */
    ASN1_KIND_SET = 2,          /**< as SEQUENCE */
    ASN1_KIND_SET_OF = 3,       /**< as SEQUENCE_OF */
    ASN1_KIND_CHOICE = 4,       /**< root count; [extension count]; record size; selector offset; payload offset;
                                   one asn1_choice_alt each; [name] */
    ASN1_KIND_INTEGER = 5,      /**< [lower]; [upper]; [name] */
    ASN1_KIND_BOOLEAN = 6,      /**< [name] */
    ASN1_KIND_BIT_STRING = 7,   /**< [lower]; [upper]; [name]; [constraint object] */
    ASN1_KIND_OCTET_STRING = 8, /**< [lower]; [upper]; [name]; [constraint object] */
    ASN1_KIND_ENUMERATED = 9,   /**< root count; [extension count]; item names; [name]; [value table: the value of
                                   each item by index, then (value, index) pairs by ascending signed value] */
    ASN1_KIND_NULL = 10,        /**< [name] */
    ASN1_KIND_TAGGED = 11,      /**< inner descriptor; [name] */
    ASN1_KIND_OBJECT_IDENTIFIER = 12, /**< [name] */
    ASN1_KIND_RELATIVE_OID = 13,      /**< [name] */
    ASN1_KIND_REAL = 14,              /**< [name] */
    ASN1_KIND_CHAR_STRING = 15, /**< string type; [name]; and before the name, if the string type is below 6: [lower];
                                   [upper]; range count; (first, last) pairs */
    ASN1_KIND_ANY = 16,               /**< [name]; [constraint object] */
    ASN1_KIND_OBJECT_CLASS = 17       /**< field count; one asn1_class_field each; name; never has values */
};
/* clang-format on */

/** Word 1 of a CHAR_STRING. */
enum {
    ASN1_STRING_NUMERIC = 0,   /**< NumericString */
    ASN1_STRING_PRINTABLE = 1, /**< PrintableString */
    ASN1_STRING_VISIBLE = 2,   /**< VisibleString, ISO646String */
    ASN1_STRING_IA5 = 3,       /**< IA5String */
    ASN1_STRING_BMP = 4,       /**< BMPString: code units of 2 bytes, native order */
    ASN1_STRING_UNIVERSAL = 5, /**< UniversalString: code units of 4 bytes, native order */
    ASN1_STRING_UTF8 = 6,      /**< UTF8String: bytes of UTF-8 */
    ASN1_STRING_GENERAL = 7,   /**< GeneralString */
    ASN1_STRING_GRAPHIC = 8,   /**< GraphicString */
    ASN1_STRING_TELETEX = 9,   /**< TeletexString, T61String */
    ASN1_STRING_VIDEOTEX = 10  /**< VideotexString */
};

/** @} */

/** @name Parts of a descriptor
 * @{ */

/** A component of a SEQUENCE or SET. */
typedef struct asn1_field {
    asn1_word flags; /**< .number: the value's offset in the record, and the ASN1_FIELD_ bits */
    asn1_word type;  /**< .type: of the component */
    asn1_word extra; /**< .number: offset of the presence word, or the DEFAULT (.integer for a big INTEGER) */
    asn1_word name;  /**< .text: the identifier of the schema */
} asn1_field;

#define ASN1_FIELD_OFFSET_MASK UINT32_C(0x7FFFFFF)  /**< the offset, bits 26..0 of `flags` */
#define ASN1_FIELD_OPTION_SHIFT 27                  /**< ASN1_OPTION_..., bits 28..27 */
#define ASN1_FIELD_OPTION_MASK UINT32_C(3)          /**< after the shift */
#define ASN1_FIELD_ADDITION (UINT32_C(1) << 29)     /**< an extension addition */
#define ASN1_FIELD_OPENS_GROUP (UINT32_C(1) << 30)  /**< first member of an extension addition group */
#define ASN1_FIELD_CLOSES_GROUP (UINT32_C(1) << 31) /**< last member of one */

/** Whether a component may be absent. */
enum {
    ASN1_OPTION_MANDATORY = 0, /**< always there */
    ASN1_OPTION_OPTIONAL = 1,  /**< as its presence word tells */
    ASN1_OPTION_DEFAULT = 2    /**< absent where it has its default */
};

/** An alternative of a CHOICE. */
typedef struct asn1_choice_alt {
    asn1_word type; /**< .type: of the alternative */
    asn1_word name; /**< .text: the identifier of the schema */
} asn1_choice_alt;

/** A field of an information object class. */
typedef struct asn1_class_field {
    asn1_word sort;          /**< low 3 bits: ASN1_CLASS_FIELD_... */
    asn1_word type;          /**< a value field's type; a type field's default type */
    asn1_word default_value; /**< a value field's default */
    asn1_word name;          /**< "&id" and the like */
} asn1_class_field;

/** Sorts of class fields. */
enum {
    ASN1_CLASS_FIELD_TYPE = 0, /**< &Type */
    ASN1_CLASS_FIELD_VALUE = 1 /**< &value */
};

/** Word 0 of a constraint object. */
enum {
    ASN1_CONSTRAINT_TABLE = 0,     /**< an asn1_table_constraint */
    ASN1_CONSTRAINT_CONTAINING = 1 /**< an asn1_containing_constraint */
};

/** The contained type of an OCTET STRING or BIT STRING (CONTAINING). */
typedef struct asn1_containing_constraint {
    asn1_word sort; /**< .number: ASN1_CONSTRAINT_CONTAINING */
    asn1_word type; /**< .type: contained */
} asn1_containing_constraint;

/** The object set that gives an open type its actual type. The selectors follow, one after the other: a word with
 * the levels to go up from the innermost SEQUENCE, one or more path words (component index; bit 31 on the last),
 * and the column that the component must equal. */
typedef struct asn1_table_constraint {
    asn1_word sort;           /**< .number: ASN1_CONSTRAINT_TABLE */
    asn1_word object_class;   /**< .type: the class, an OBJECT_CLASS */
    asn1_word column;         /**< .number: the type field that gives the open type */
    asn1_word rows;           /**< .type: rows of one word per class field */
    asn1_word row_count;      /**< .number: of the rows */
    asn1_word selector_count; /**< .number: of the selectors that follow */
} asn1_table_constraint;

/** Marks the last path word of a selector. */
#define ASN1_SELECTOR_LAST (UINT32_C(1) << 31)

/** @} */

/** @name Value records
 *
 * BOOLEAN and ENUMERATED are 32-bit words (an ENUMERATED holds the item's index, not its number), REAL a double,
 * INTEGER a 32-bit word or an asn1_integer (integer.h). A 32-bit INTEGER is unsigned if it has a lower bound that
 * is not negative and no extension marker. SEQUENCE, SET and CHOICE are records of their own; an optional
 * component has a 32-bit presence word directly before it.
 * @{ */

/** OCTET STRING, character strings (length in code units, no terminator), OBJECT IDENTIFIER and RELATIVE-OID
 * (contents octets). */
typedef struct asn1_string {
    ORLENTA_POINTER(uint8_t*, data); /**< owned; may be null if `length` is 0 */
    uint64_t length;                 /**< in code units, or octets */
} asn1_string;

/** BIT STRING: bit 7 of the first byte is the first bit; length in bits. */
typedef struct asn1_bit_string {
    ORLENTA_POINTER(uint8_t*, data); /**< owned; may be null if `length` is 0 */
    uint64_t length;                 /**< in bits */
} asn1_bit_string;

/** SEQUENCE OF and SET OF. */
typedef struct asn1_array {
    ORLENTA_POINTER(void*, data); /**< owned: the elements' records, one after the other */
    uint64_t count;               /**< of elements */
} asn1_array;

/** An open type: `type` and a value of it, or a null `type` and the `length` raw bytes of an unresolved encoding. */
typedef struct asn1_open_value {
    ORLENTA_POINTER(const asn1_type_desc*, type); /**< of the value at `data`; null: `data` is bytes */
    ORLENTA_POINTER(void*, data);                 /**< owned */
    uint64_t length;                              /**< of the bytes, where `type` is null */
} asn1_open_value;

/** @} */

/** @name Names and defaults
 * @{ */

/** Names of the kinds, indexed by kind: "SEQUENCE", "SEQUENCE_OF" and so on. */
ORLENTA_API extern const char* const asn1_ctype_names[18];

/** Names of the character string types, indexed by word 1 of a CHAR_STRING. */
ORLENTA_API extern const char* const asn1_char_string_str[11];

/** Fills every DEFAULT component of `record` whose byte in `seen` is 0. `fields` is a descriptor's first component,
 * `n` its component count, `seen` has one byte per component.
 * Returns 0, or -1 if memory ran out for a big-integer default. */
ORLENTA_API int asn1_sequence_set_default_fields(const asn1_field* fields, int32_t n, void* record,
                                                 const uint8_t* seen);

/** Stores the default value of one DEFAULT component into `record`. Returns 0 or -1, as above. */
ORLENTA_API int asn1_sequence_set_default_value(void* record, const asn1_field* field);

/** Tells whether a DEFAULT component of `record` differs from its default, and so must be encoded: non-zero if it
 * does. */
ORLENTA_API int asn1_sequence_is_default_present(const void* record, const asn1_field* field);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
