/* SPDX-License-Identifier: Apache-2.0 */
/* Types by name and what they are made of, for programs that learn only when they run which type they are to work with.
 * Names are those of the message sets in the library, or of schemas that were compiled at run time (schema.h). A
 * catalogue never changes, and may be used by any number of threads at once.
 */
#ifndef ORLENTA_CATALOGUE_H
#define ORLENTA_CATALOGUE_H

#include <orlenta/integer.h>
#include <orlenta/type.h>
#include <orlenta/version.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct orlenta_catalogue orlenta_catalogue;

/* All message sets that the library was built with. A program that is linked statically and needs one of them names
 * orlenta_catalogue_CN() or the like, which the header of the message set declares, and gets no other. */
ORLENTA_API const orlenta_catalogue* orlenta_catalogue_builtin(void);

/* How many regions there are, and the name of the one at `index`: "CN", or "" if the schema was given none. Null from
 * the count on. */
ORLENTA_API size_t orlenta_catalogue_region_count(const orlenta_catalogue* catalogue);
ORLENTA_API const char* orlenta_catalogue_region(const orlenta_catalogue* catalogue, size_t index);

/* A type of a catalogue. What it points at lives as long as that. */
typedef struct orlenta_type_entry {
    const char* region;         /* "" if the schema was given none */
    const char* module;         /* "" of what the standards of the language define */
    const char* name;           /* as the schema has it; "" of a type in place */
    const char* table;          /* behind asn1_type_<region>_ in C: "Position_LL_24B", "Lpn_1" */
    const asn1_type_desc* type; /* good for all functions that take a descriptor */
    uint32_t is_root;           /* no other type of the region refers to it */
} orlenta_type_entry;

/* How many types there are, and the one at `index`, in the schema's order: region by region, module by module. Types in
 * place are among them, before the type around them, if they have components, alternatives, items or elements of their
 * own. The order may change with the schema. 0, or -1 from the count on. */
ORLENTA_API size_t orlenta_catalogue_count(const orlenta_catalogue* catalogue);
ORLENTA_API int orlenta_catalogue_get(const orlenta_catalogue* catalogue, size_t index,
                                      orlenta_type_entry* entry);

/* The type that `name`, [Region.][Module.]Type, stands for, where the type is "Position-LL-24B" or "Position_LL_24B", or
 * for one in place "Lpn_1". 0, or -1 if there is none, or if several are called so, of which `entry` then is the first.
 * `found`, if it is not null, receives how many. Looks at all types. */
ORLENTA_API int orlenta_catalogue_find(const orlenta_catalogue* catalogue, const char* name,
                                       orlenta_type_entry* entry, size_t* found);

/* The entry of a descriptor. 0, or -1 if it is none of the catalogue's. Looks at all types. */
ORLENTA_API int orlenta_catalogue_find_type(const orlenta_catalogue* catalogue, const asn1_type_desc* type,
                                            orlenta_type_entry* entry);

/* ---- what a type is made of ---------------------------------------------------------------------------------
 * Of any descriptor, wherever it comes from. All that is handed out lives as long as the descriptor.
 */

typedef struct orlenta_type_facts {
    const asn1_type_desc*
        type;             /* behind all tags: what the rest is about, and what the functions below take */
    uint32_t kind;        /* ASN1_KIND_... */
    uint32_t string_type; /* CHAR_STRING: ASN1_STRING_... */
    uint32_t is_extensible;
    uint32_t is_big; /* INTEGER held as an asn1_integer */
    uint32_t has_lower,
        has_upper; /* bounds of an INTEGER, or of the size of a list or string (BIT STRING: bits) */
    int64_t lower, upper;
    const asn1_integer* big_lower; /* the bounds of an INTEGER with is_big; null: none */
    const asn1_integer* big_upper;
    uint32_t
        root_count; /* components, alternatives or items, without those behind the extension marker; or */
    uint32_t count; /* with them; or ranges of an alphabet */
    uint64_t record_size;            /* bytes of a value in memory */
    const asn1_type_desc* element;   /* of a list */
    const asn1_type_desc* contained; /* of a string with a CONTAINING constraint */
} orlenta_type_facts;

/* Looks through tags. */
ORLENTA_API void orlenta_type_describe(const asn1_type_desc* type, orlenta_type_facts* facts);

enum { ORLENTA_MANDATORY = 0, ORLENTA_OPTIONAL = 1, ORLENTA_DEFAULT = 2 };

/* A component of a SEQUENCE or SET. */
typedef struct orlenta_component {
    const char* name;
    const asn1_type_desc* type; /* tags and all */
    uint32_t offset;            /* of its value in the record */
    uint32_t has_presence_word; /* which also a mandatory extension addition has */
    uint32_t presence_offset;
    uint32_t presence; /* ORLENTA_MANDATORY, ... */
    uint32_t is_addition;
    uint32_t opens_group;  /* [[ stands before it */
    uint32_t closes_group; /* ]] stands behind it */
    uint32_t default_word; /* ORLENTA_DEFAULT: what a BOOLEAN, ENUMERATED or INTEGER of 32 bits holds */
    const asn1_integer* big_default; /* the same of an INTEGER with is_big */
} orlenta_component;

/* An alternative of a CHOICE. */
typedef struct orlenta_alternative {
    const char* name;
    const asn1_type_desc* type;
    uint32_t is_addition;
    uint64_t selector_offset; /* in the record, of the 32-bit word that holds the index */
    uint64_t value_offset;
} orlenta_alternative;

/* An item of an ENUMERATED, whose value is the index. */
typedef struct orlenta_item {
    const char* name;
    int32_t number; /* in the schema */
    uint32_t is_addition;
} orlenta_item;

/* Characters that a string may have, by their codes. */
typedef struct orlenta_range {
    uint32_t first, last;
} orlenta_range;

/* The part at `index` of the `type` that orlenta_type_describe gave. 0, or -1 if it is of another kind or has no part
 * there. */
ORLENTA_API int orlenta_type_component(const asn1_type_desc* type, uint32_t index, orlenta_component* part);
ORLENTA_API int orlenta_type_alternative(const asn1_type_desc* type, uint32_t index,
                                         orlenta_alternative* part);
ORLENTA_API int orlenta_type_item(const asn1_type_desc* type, uint32_t index, orlenta_item* part);
ORLENTA_API int orlenta_type_range(const asn1_type_desc* type, uint32_t index, orlenta_range* part);

#ifdef __cplusplus
}
#endif

#endif
