// SPDX-License-Identifier: Apache-2.0
#include "core/error.hpp"

#include <stdio.h>
#include <string.h>

void asn1_error_init(asn1_error* err) {
    err->line = 1;
    err->bit_position = 0;
    err->path[0] = '\0';
    err->message[0] = '\0';
}

namespace orlenta {

int set_message(asn1_error* error, const char* format, va_list args) {
    vsnprintf(error->message, sizeof error->message, format, args);
    return -1;
}

void asn1_buf_add(char** cursor, char* end, const char* str) {
    size_t length = strnlen(str, static_cast<size_t>(end - *cursor));
    memcpy(*cursor, str, length);
    *cursor += length;
}

static void add_entry(char** cursor, char* end, const asn1_type_path_entry& entry, bool first) {
    if (entry.is_index != 0) {
        char text[16];
        snprintf(text, sizeof text, "[%d]", entry.u.index);
        asn1_buf_add(cursor, end, text);
        return;
    }
    if (!first) asn1_buf_add(cursor, end, ".");
    asn1_buf_add(cursor, end, entry.u.name);
}

}  // namespace orlenta

void asn1_type_path_to_str(const asn1_type_path* path, char* dst, size_t size) {
    if (size == 0) return;
    char* cursor = dst;
    char* end = dst + size - 1;
    int32_t number = 0;
    if (path->depth > ASN1_TYPE_PATH_SLOTS) {
        orlenta::asn1_buf_add(&cursor, end, "(...)");
        number = path->depth - ASN1_TYPE_PATH_SLOTS;
    }
    for (; number < path->depth; ++number) {
        orlenta::add_entry(&cursor, end, path->entries[number & (ASN1_TYPE_PATH_SLOTS - 1)], number == 0);
    }
    *cursor = '\0';
}
