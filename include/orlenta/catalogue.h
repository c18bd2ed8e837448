/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Types by name and what they are made of, for programs that learn at run time which types they work with.
 *
 * Names are those of the message sets in the library, or of schemas that were compiled at run time (schema.h). A catalogue
 * never changes, and may be used by any number of threads at once. Nothing here allocates.
 */
#ifndef ORLENTA_CATALOGUE_H
#define ORLENTA_CATALOGUE_H

#include <orlenta/integer.h>
#include <orlenta/type.h>
#include <orlenta/version.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @name Types by name
 * @{ */

/** The types of one or more regions. */
typedef struct orlenta_catalogue orlenta_catalogue;

/** All message sets that the library was built with. A program that is linked statically and needs one of them names
 * orlenta_catalogue_CN() or the like, which the header of the message set declares, and gets no other. */
ORLENTA_API const orlenta_catalogue* orlenta_catalogue_builtin(void);

/** How many regions there are. */
ORLENTA_API size_t orlenta_catalogue_region_count(const orlenta_catalogue* catalogue);

/** The name of the region at `index`: "CN", or "" if the schema was given none. Null from the count on. */
ORLENTA_API const char* orlenta_catalogue_region(const orlenta_catalogue* catalogue, size_t index);

/** A type of a catalogue. What it points at lives as long as that. */
typedef struct orlenta_type_entry {
    const char* region;         /**< "" if the schema was given none */
    const char* module;         /**< "" of what the standards of the language define */
    const char* name;           /**< as the schema has it; "" of a type in place */
    const char* table;          /**< after asn1_type_<region>_ in C: "Position_LL_24B", "Lpn_1" */
    const asn1_type_desc* type; /**< good for all functions that take a descriptor */
    uint32_t is_root;           /**< no other type of the region refers to it */
    const char*
        about; /**< what it is, in a sentence or two, from the comment above it in the schema; or null */
} orlenta_type_entry;

/** How many types there are. Types in place are among them, if they have components, alternatives, items or elements of
 * their own. */
ORLENTA_API size_t orlenta_catalogue_count(const orlenta_catalogue* catalogue);

/** The type at `index`, in the schema's order: region by region, module by module, a type in place before the one around
 * it. A number is of no use for another version of the schema. 0, or -1 from the count on. */
ORLENTA_API int orlenta_catalogue_get(const orlenta_catalogue* catalogue, size_t index,
                                      orlenta_type_entry* entry);

/** The type that `name`, [Region.][Module.]Type, stands for, where the type is "Position-LL-24B" or "Position_LL_24B", or
 * for one in place "Lpn_1". 0, or -1 if there is none, or if several are called so, of which `entry` then is the first.
 * `found`, if it is not null, receives how many. Looks at all types. */
ORLENTA_API int orlenta_catalogue_find(const orlenta_catalogue* catalogue, const char* name,
                                       orlenta_type_entry* entry, size_t* found);

/** The entry of a descriptor. 0, or -1 if it is none of the catalogue's. Looks at all types. */
ORLENTA_API int orlenta_catalogue_find_type(const orlenta_catalogue* catalogue, const asn1_type_desc* type,
                                            orlenta_type_entry* entry);

/** @} */

/** @name What numbers mean
 * @{ */

/** Numbers that stand for something else than their size. */
typedef struct orlenta_special {
    int64_t first;       /**< the number, or the first of some */
    int64_t last;        /**< the last of them */
    const char* meaning; /**< "unavailable", "unknown", "orMore" */
    int32_t is_limit;    /**< 1 and -1: the physical value or more, or less; 0: there is no physical value */
} orlenta_special;

/** The unit of a type's numbers, as the standards have it: physical value = number * scale + offset. */
typedef struct orlenta_unit {
    const char* symbol;              /**< "m/s", "deg", "%"; "1" of a plain number */
    double scale;                    /**< what a step stands for */
    double offset;                   /**< what 0 stands for */
    uint32_t digits;                 /**< decimals that tell a physical value in full */
    uint32_t special_count;          /**< how many specials there are */
    const orlenta_special* specials; /**< no two of one number */
} orlenta_unit;

/** The unit of an INTEGER or REAL, behind tags too; it lives as long as the catalogue. Null if there is none. Looks at all
 * units. */
ORLENTA_API const orlenta_unit* orlenta_unit_of(const orlenta_catalogue* catalogue,
                                                const asn1_type_desc* type);

/** What `number` stands for besides its size; null for most. */
ORLENTA_API const orlenta_special* orlenta_unit_special(const orlenta_unit* unit, int64_t number);

/** @} */

/** @name What a type is made of
 *
 * Of any descriptor, wherever it comes from. All that is handed out lives as long as the descriptor.
 * @{ */

/** What there is to know of a type but its parts. */
typedef struct orlenta_type_facts {
    const asn1_type_desc* type;    /**< behind all tags: what the rest is about */
    const asn1_type_desc* inner;   /**< what the outermost tag stands before; null: there is no tag */
    uint32_t kind;                 /**< ASN1_KIND_... */
    uint32_t string_type;          /**< CHAR_STRING: ASN1_STRING_... */
    uint32_t is_extensible;        /**< the extension marker is there */
    uint32_t is_big;               /**< INTEGER held as an asn1_integer */
    uint32_t is_unsigned;          /**< INTEGER held in 32 bits without a sign */
    uint32_t has_lower;            /**< an INTEGER, or the size of a list or string (BIT STRING: bits) */
    uint32_t has_upper;            /**< likewise */
    int64_t lower;                 /**< the bound; 0 if there is none */
    int64_t upper;                 /**< likewise */
    const asn1_integer* big_lower; /**< of an INTEGER with is_big; null: none */
    const asn1_integer* big_upper; /**< likewise */
    uint32_t root_count;           /**< parts without those after the extension marker */
    uint32_t count;                /**< components, alternatives, items, ranges, class fields, rows */
    uint64_t record_size;   /**< bytes of a value in memory; 0 of an OBJECT_CLASS, which has no values */
    uint32_t pointer_count; /**< to follow from the place of a value to its record; tags may ask so */
    const asn1_type_desc* element;      /**< of a list */
    uint64_t stride;                    /**< of a list: bytes from an element to the next */
    const asn1_type_desc* contained;    /**< of a string with a CONTAINING constraint */
    const asn1_type_desc* object_class; /**< of an open type that an object set constrains; else null */
    uint32_t column;                    /**< of that class: the field that gives the open type */
    uint32_t key_count;                 /**< how many components choose the row */
} orlenta_type_facts;

/** Looks through tags: all facts but `inner` are of what is behind them. */
ORLENTA_API void orlenta_type_describe(const asn1_type_desc* type, orlenta_type_facts* facts);

/** Whether a component may be absent. */
enum {
    ORLENTA_MANDATORY = 0, /**< no */
    ORLENTA_OPTIONAL = 1,  /**< yes */
    ORLENTA_DEFAULT = 2    /**< if it has its default */
};

/** A component of a SEQUENCE or SET. */
typedef struct orlenta_component {
    const char* name;           /**< the identifier of the schema */
    const asn1_type_desc* type; /**< tags and all */
    uint32_t offset;            /**< of its value in the record */
    uint32_t has_presence_word; /**< which also a mandatory extension addition has */
    uint32_t presence_offset;   /**< of that word */
    uint32_t presence;          /**< ORLENTA_MANDATORY, ... */
    uint32_t is_addition;       /**< it stands after the extension marker */
    uint32_t opens_group;       /**< [[ stands before it */
    uint32_t closes_group;      /**< ]] stands after it */
    uint32_t default_word; /**< ORLENTA_DEFAULT: what a BOOLEAN, ENUMERATED or INTEGER of 32 bits holds */
    const asn1_integer* big_default; /**< the same of an INTEGER with is_big */
} orlenta_component;

/** An alternative of a CHOICE. */
typedef struct orlenta_alternative {
    const char* name;           /**< the identifier of the schema */
    const asn1_type_desc* type; /**< tags and all */
    uint32_t is_addition;       /**< it stands after the extension marker */
    uint64_t selector_offset;   /**< in the record, of the 32-bit word that holds the index */
    uint64_t value_offset;      /**< of its value in the record */
} orlenta_alternative;

/** An item of an ENUMERATED, whose value is the index. */
typedef struct orlenta_item {
    const char* name;     /**< the identifier of the schema */
    int32_t number;       /**< in the schema */
    uint32_t is_addition; /**< it stands after the extension marker */
} orlenta_item;

/** Characters that a string may have. */
typedef struct orlenta_range {
    uint32_t first; /**< code */
    uint32_t last;  /**< code */
} orlenta_range;

/** A field of an OBJECT_CLASS (X.681 clause 9). */
typedef struct orlenta_class_field {
    const char* name;           /**< "&id", "&Type" */
    const asn1_type_desc* type; /**< of the values; of a field of types the default, or null */
    uint32_t is_type;           /**< a field of types, as capital letters tell in the schema */
} orlenta_class_field;

/** What an object set has in one row for one field of its class. */
typedef struct orlenta_cell {
    const asn1_type_desc* type; /**< of a field of types; null: none */
    const void* value;          /**< of a field of values: a record of the field's type; null: none */
} orlenta_cell;

/** The most steps of a way to a key that are told. */
#define ORLENTA_KEY_PATH 8

/** A component that chooses the row of an open type: `@key` in the schema (X.682 clause 10). */
typedef struct orlenta_key {
    uint32_t levels_up;              /**< SEQUENCEs to go up from the one that has the open type */
    uint32_t path_length;            /**< steps from there; 1: a component of it */
    uint32_t path[ORLENTA_KEY_PATH]; /**< index of a component, and of one inside */
    uint32_t column;                 /**< the field of the class whose value it has to equal */
} orlenta_key;

/** The component at `index` of a SEQUENCE or SET, `type` being that which orlenta_type_describe gave, as in all that
 * follow. 0, or -1 if the type is of another kind or has no part there. */
ORLENTA_API int orlenta_type_component(const asn1_type_desc* type, uint32_t index, orlenta_component* part);

/** The alternative at `index` of a CHOICE. 0, or -1. */
ORLENTA_API int orlenta_type_alternative(const asn1_type_desc* type, uint32_t index,
                                         orlenta_alternative* part);

/** The item at `index` of an ENUMERATED. 0, or -1. */
ORLENTA_API int orlenta_type_item(const asn1_type_desc* type, uint32_t index, orlenta_item* part);

/** A range of the alphabet of a CHAR_STRING, in ascending order. 0, or -1. */
ORLENTA_API int orlenta_type_range(const asn1_type_desc* type, uint32_t index, orlenta_range* part);

/** The field at `index` of an OBJECT_CLASS. 0, or -1. */
ORLENTA_API int orlenta_type_field(const asn1_type_desc* object_class, uint32_t index,
                                   orlenta_class_field* part);

/** What the object set of an open type has in a row for the field at `column` of the class. 0, or -1. */
ORLENTA_API int orlenta_type_cell(const asn1_type_desc* type, uint32_t row, uint32_t column,
                                  orlenta_cell* part);

/** The key at `index` of an open type. 0, or -1. */
ORLENTA_API int orlenta_type_key(const asn1_type_desc* type, uint32_t index, orlenta_key* part);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
