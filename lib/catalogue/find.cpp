// SPDX-License-Identifier: Apache-2.0
#include <string.h>

#include "catalogue/catalogue.hpp"

namespace orlenta {

namespace {

// Of a name that is being looked for: what stands before, between and behind its points.
struct part {
    const char* text;
    size_t length;
};
struct wanted_name {
    part parts[3];
    uint32_t count;  // 0: it has more of them than a name has
};

}  // namespace

static wanted_name split(const char* name) {
    wanted_name wanted = {};
    for (;;) {
        size_t length = strcspn(name, ".");
        if (wanted.count == 3) return {};
        wanted.parts[wanted.count++] = {name, length};
        if (name[length] == '\0') return wanted;
        name += length + 1;
    }
}

// A hyphen of the schema is an underscore in C.
static char folded(char c) { return c == '-' ? '_' : c; }

static bool is(const part& wanted, const char* text) {
    size_t i = 0;
    while (i < wanted.length && text[i] != '\0' && folded(wanted.text[i]) == folded(text[i])) ++i;
    return i == wanted.length && text[i] == '\0';
}

static bool is_called(const orlenta_type_entry& entry, const wanted_name& wanted) {
    const part& type = wanted.parts[wanted.count - 1];
    if (type.length == 0 || !(is(type, entry.name) || is(type, entry.table))) return false;
    switch (wanted.count) {
        case 1: return true;
        case 2: return is(wanted.parts[0], entry.region) || is(wanted.parts[0], entry.module);
        default: return is(wanted.parts[0], entry.region) && is(wanted.parts[1], entry.module);
    }
}

}  // namespace orlenta

size_t orlenta_catalogue_count(const orlenta_catalogue* catalogue) { return catalogue->count; }

const orlenta_type_entry* orlenta_catalogue_get(const orlenta_catalogue* catalogue, size_t index) {
    return index < catalogue->count ? &catalogue->entries[index] : nullptr;
}

const orlenta_type_entry* orlenta_catalogue_find(const orlenta_catalogue* catalogue, const char* name,
                                                 size_t* found) {
    orlenta::wanted_name wanted = orlenta::split(name);
    const orlenta_type_entry* last = nullptr;
    size_t count = 0;
    for (size_t i = 0; wanted.count != 0 && i < catalogue->count; ++i) {
        if (!orlenta::is_called(catalogue->entries[i], wanted)) continue;
        last = &catalogue->entries[i];
        ++count;
    }
    if (found) *found = count;
    return count == 1 ? last : nullptr;
}

const orlenta_type_entry* orlenta_catalogue_find_type(const orlenta_catalogue* catalogue,
                                                      const asn1_type_desc* type) {
    for (size_t i = 0; i < catalogue->count; ++i) {
        if (catalogue->entries[i].type == type) return &catalogue->entries[i];
    }
    return nullptr;
}

const char* orlenta_version() { return ORLENTA_VERSION; }
