// SPDX-License-Identifier: Apache-2.0
#include "bench/subjects.hpp"

#include <orlenta/catalogue.h>
#include <orlenta/jer.h>

#include <cstdio>
#include <cstdlib>

#include "core/descriptor.hpp"

namespace bench {

using namespace orlenta;

static size_t count_leaves(const asn1_type_desc* type, const void* value);

static size_t count_in_sequence(const asn1_type_desc* type, const void* record) {
    size_t leaves = 0;
    for (uint32_t i = 0; i < component_count(type); ++i) {
        const asn1_field* field = components(type) + i;
        if (is_presence_flagged(field) && !presence_word(field, record)) continue;
        leaves += count_leaves(field_type(field), field_value(field, record));
    }
    return leaves;
}

static size_t count_in_list(const asn1_type_desc* type, const asn1_array* array) {
    list_layout list = list_of(type);
    size_t leaves = 0;
    for (uint64_t i = 0; i < array->count; ++i)
        leaves += count_leaves(list.element, at_offset(array->data, i * list.stride));
    return leaves;
}

static size_t count_in_choice(const asn1_type_desc* type, const void* record) {
    choice_layout choice = choice_of(type);
    uint32_t selected = selector_of(choice, record);
    if (selected >= choice.total) return 0;
    return count_leaves(alternative_type(choice, selected), at_offset(record, choice.payload_offset));
}

static size_t count_leaves(const asn1_type_desc* type, const void* value) {
    switch (kind_of(type)) {
        case ASN1_KIND_TAGGED:
            return count_leaves(tagged_inner(type), is_indirect(type) ? load_pointer(value) : value);
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET: return count_in_sequence(type, value);
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: return count_in_list(type, static_cast<const asn1_array*>(value));
        case ASN1_KIND_CHOICE: return count_in_choice(type, value);
        case ASN1_KIND_ANY: {
            const asn1_open_value* open = static_cast<const asn1_open_value*>(value);
            return open->type ? count_leaves(open->type, open->data) : 1;
        }
        default: return 1;
    }
}

static bool is_built(const std::string& region) {
    for (size_t i = 0; const char* name = orlenta_catalogue_region(orlenta_catalogue_builtin(), i); ++i)
        if (region == name) return true;
    return false;
}

static const asn1_type_desc* find_type(const Message& message) {
    orlenta_type_entry entry;
    std::string name = message.region + "." + message.type;
    if (orlenta_catalogue_find(orlenta_catalogue_builtin(), name.c_str(), &entry, nullptr) == 0)
        return entry.type;
    std::fprintf(stderr, "%s: no type is named %s\n", message.name.c_str(), name.c_str());
    return nullptr;
}

std::vector<Subject> load_subjects() {
    std::vector<Subject> subjects;
    for (const Message& message : load_messages(ORLENTA_BENCH_MESSAGES)) {
        if (!is_built(message.region)) continue;
        const asn1_type_desc* type = find_type(message);
        void* value = nullptr;
        asn1_error error = {};
        if (!type || asn1_jer_decode(&value, type, reinterpret_cast<const uint8_t*>(message.json.data()),
                                     message.json.size(), &error) < 0) {
            std::fprintf(stderr, "%s: not read: %s: %s\n", message.name.c_str(), error.path, error.message);
            std::exit(1);
        }
        subjects.push_back({message, type, value, count_leaves(type, value)});
    }
    return subjects;
}

}  // namespace bench
