// SPDX-License-Identifier: Apache-2.0
// The types of a schema that this module compiled.
#include <orlenta/schema.h>

#include "bridge.hpp"

static orlenta_schema* schema;

const orlenta_catalogue* orlenta::js::catalogue() {
    return schema ? orlenta_schema_catalogue(schema) : nullptr;
}

// Compiles the sources, once in a module's life. The result is an array of what the compiler says. 0, or -1 if there
// are errors; an empty array then is a lack of memory.
ORLENTA_JS int js_compile(const orlenta_schema_source* sources, uint32_t count, const char* region) {
    orlenta_schema_options options = {};
    options.region = region;
    schema = orlenta_schema_compile(sources, count, &options);
    asn1_byte_buffer buffer;
    asn1_byte_buffer_init(&buffer);
    asn1_puts(&buffer, "[");
    size_t told = schema ? orlenta_schema_message_count(schema) : 0;
    for (size_t i = 0; i < told; ++i) {
        const orlenta_schema_message* message = orlenta_schema_message_at(schema, i);
        asn1_printf(&buffer, "%s{\"line\":%d,\"column\":%d,\"isNote\":%s,\"file\":", i > 0 ? "," : "",
                    message->line, message->column, message->is_note != 0 ? "true" : "false");
        orlenta::js::put_json_string(&buffer, message->file);
        asn1_puts(&buffer, ",\"text\":");
        orlenta::js::put_json_string(&buffer, message->text);
        asn1_puts(&buffer, "}");
    }
    asn1_puts(&buffer, "]");
    bool handed_over = orlenta::js::hand_over(buffer);
    return handed_over && orlenta::js::catalogue() ? 0 : -1;
}
