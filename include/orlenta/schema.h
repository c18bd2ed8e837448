/* SPDX-License-Identifier: Apache-2.0 */
/** @file
 * Schemas at run time: ASN.1 modules (X.680 to X.683) become descriptors in memory, without a C compiler.
 * They are those that orlentac makes of the same modules, word for word, and can be used wherever a descriptor can.
 * docs/schemas.md tells what of the language is supported. Link with liborlenta-schema.
 *
 * A schema never changes, and may be used by any number of threads at once. Its descriptors and texts live as long as the
 * schema does: values, and codecs made by orlenta_codec_new, must be gone before it.
 */
#ifndef ORLENTA_SCHEMA_H
#define ORLENTA_SCHEMA_H

#include <orlenta/catalogue.h>

/** What liborlenta-schema exports. */
#define ORLENTA_SCHEMA_API ORLENTA_API

#ifdef __cplusplus
extern "C" {
#endif

/** Modules that were compiled. */
typedef struct orlenta_schema orlenta_schema;

/** A text of one or more modules. */
typedef struct orlenta_schema_source {
    const char* name; /**< as messages call it, such as its path */
    const char* text; /**< UTF-8 or ISO 8859-1 */
    size_t size;      /**< bytes */
} orlenta_schema_source;

/** How modules are compiled. A record of zeros stands for no choice at all. */
typedef struct orlenta_schema_options {
    const char* region; /**< letters, digits, underscores, a letter first; null: none */
    /** Non-zero: `table` of every type begins with its module's name, as by orlentac --names module. */
    uint32_t module_names;
} orlenta_schema_options;

/** What was wrong, or, of a note, what the user should know of a schema that compiles. */
typedef struct orlenta_schema_message {
    const char* file; /**< the source's name; "" if no source is to blame */
    int32_t line;     /**< from 1; 0 without a file */
    int32_t column;   /**< in bytes, from 1; 0 without a file */
    const char* text; /**< one line, without the place */
    uint32_t is_note; /**< 0: an error */
} orlenta_schema_message;

/** Compiles all modules of the `count` sources together, as one name space. `options` may be null. The sources may go when
 * this returns. Null only if memory ran out; else the caller releases the schema by orlenta_schema_free, and has
 * to test whether it has a catalogue. */
ORLENTA_SCHEMA_API orlenta_schema* orlenta_schema_compile(const orlenta_schema_source* sources, size_t count,
                                                          const orlenta_schema_options* options);

/** The same with modules in `count` files. One that cannot be read is an error like others. */
ORLENTA_SCHEMA_API orlenta_schema* orlenta_schema_compile_files(const char* const* paths, size_t count,
                                                                const orlenta_schema_options* options);

/** Releases a schema with all that it has handed out; null is allowed. */
ORLENTA_SCHEMA_API void orlenta_schema_free(orlenta_schema* schema);

/** The types; null if there were errors. */
ORLENTA_SCHEMA_API const orlenta_catalogue* orlenta_schema_catalogue(const orlenta_schema* schema);

/** How many messages there are. */
ORLENTA_SCHEMA_API size_t orlenta_schema_message_count(const orlenta_schema* schema);

/** The message at `index`: errors in the order of their places, or notes. Null from the count on. */
ORLENTA_SCHEMA_API const orlenta_schema_message* orlenta_schema_message_at(const orlenta_schema* schema,
                                                                           size_t index);

#ifdef __cplusplus
}
#endif

#endif
