/* Types by name, for programs that learn only when they run which type they are to work with: of schemas that were
 * compiled at run time (schema.h). A catalogue never changes, and may be used by any number of threads at once.
 */
#ifndef ORLENTA_CATALOGUE_H
#define ORLENTA_CATALOGUE_H

#include <orlenta/type.h>
#include <orlenta/version.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct orlenta_catalogue orlenta_catalogue;

/* A type of a catalogue; it and its texts live as long as that. */
typedef struct orlenta_type_entry {
    const char* region;         /* "" if the schema was given none */
    const char* module;         /* "" for what the standards define themselves */
    const char* name;           /* as the schema has it; "" of a type in place */
    const char* table;          /* behind asn1_type_<region>_ in C: "Position_LL_24B", "Lpn_1", "_local_12" */
    const asn1_type_desc* type; /* good for all functions that take a descriptor */
    uint32_t is_root;           /* no other type of the region refers to it */
} orlenta_type_entry;

/* How many types there are, those in place among them, and the one at `index`, in the schema's order: what is in place
 * comes before the type around it. Null from the count on. */
ORLENTA_API size_t orlenta_catalogue_count(const orlenta_catalogue* catalogue);
ORLENTA_API const orlenta_type_entry* orlenta_catalogue_get(const orlenta_catalogue* catalogue, size_t index);

/* The type that `name`, [Region.][Module.]Type, stands for, where the type is "Position-LL-24B" or "Position_LL_24B", or
 * for one in place "Lpn_1". Null if there is none, or if several are called so: `found`, if it is not null, receives how
 * many. Looks at all types. */
ORLENTA_API const orlenta_type_entry* orlenta_catalogue_find(const orlenta_catalogue* catalogue,
                                                             const char* name, size_t* found);

/* The entry of a descriptor; null if it is none of the catalogue's. Looks at all types. */
ORLENTA_API const orlenta_type_entry* orlenta_catalogue_find_type(const orlenta_catalogue* catalogue,
                                                                  const asn1_type_desc* type);

#ifdef __cplusplus
}
#endif

#endif
