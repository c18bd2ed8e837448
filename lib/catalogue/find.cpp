// SPDX-License-Identifier: Apache-2.0
#include <string.h>

#include "catalogue/ways.hpp"

namespace orlenta::catalogue {

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

// ---- regions ----------------------------------------------------------------------------------------------

// All but the descriptor, the way to which takes longest.
static void read_names(const region& in, const entry& at, orlenta_type_entry* out) {
    const char* name = in.texts + at.name;
    bool has_table_name = (at.flags & kHasTableName) != 0;
    *out = {in.texts,
            in.texts + at.module,
            name,
            has_table_name ? name + strlen(name) + 1 : name,
            nullptr,
            (at.flags & kIsRoot) != 0,
            at.about != 0 ? in.texts + at.about : nullptr};
}

}  // namespace orlenta::catalogue

using namespace orlenta::catalogue;

size_t orlenta_catalogue_region_count(const orlenta_catalogue* catalogue) { return catalogue->count; }

const char* orlenta_catalogue_region(const orlenta_catalogue* catalogue, size_t index) {
    return index < catalogue->count ? catalogue->regions[index]->texts : nullptr;
}

size_t orlenta_catalogue_count(const orlenta_catalogue* catalogue) {
    size_t count = 0;
    for (size_t i = 0; i < catalogue->count; ++i) count += count_of(*catalogue->regions[i]);
    return count;
}

int orlenta_catalogue_get(const orlenta_catalogue* catalogue, size_t index, orlenta_type_entry* entry) {
    for (size_t i = 0; i < catalogue->count; ++i) {
        const region& in = *catalogue->regions[i];
        if (index < count_of(in)) {
            read_names(in, in.entries[index], entry);
            entry->type = type_of(in, in.entries + index);
            return 0;
        }
        index -= count_of(in);
    }
    return -1;
}

int orlenta_catalogue_find(const orlenta_catalogue* catalogue, const char* name, orlenta_type_entry* entry,
                           size_t* found) {
    wanted_name wanted = split(name);
    size_t count = 0;
    orlenta_type_entry each;
    for (size_t i = 0; wanted.count != 0 && i < catalogue->count; ++i) {
        const region& in = *catalogue->regions[i];
        for (uint32_t k = 0; k < count_of(in); ++k) {
            read_names(in, in.entries[k], &each);
            if (!is_called(each, wanted) || ++count > 1) continue;
            *entry = each;
            entry->type = type_of(in, in.entries + k);
        }
    }
    if (found) *found = count;
    return count == 1 ? 0 : -1;
}

int orlenta_catalogue_find_type(const orlenta_catalogue* catalogue, const asn1_type_desc* type,
                                orlenta_type_entry* entry) {
    for (size_t i = 0; i < catalogue->count; ++i) {
        const region& in = *catalogue->regions[i];
        for (uint32_t k = 0; k < count_of(in); ++k) {
            if (type_of(in, in.entries + k) != type) continue;
            read_names(in, in.entries[k], entry);
            entry->type = type;
            return 0;
        }
    }
    return -1;
}

const char* orlenta_version() { return ORLENTA_VERSION; }
