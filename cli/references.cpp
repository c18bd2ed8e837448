// SPDX-License-Identifier: Apache-2.0
#include "cli/references.hpp"

#include <orlenta/type_info.h>

#include "core/descriptor.hpp"

namespace cli {

using namespace orlenta;

static void add_open_type_references(const asn1_type_desc* type, std::vector<const asn1_type_desc*>* found) {
    const asn1_table_constraint* constraint = table_constraint_of(type);
    if (!constraint) return;
    const asn1_type_desc* object_class = constraint->object_class.type;
    uint32_t columns = class_field_count(object_class);
    found->push_back(object_class);
    for (uint64_t row = 0; row < constraint->row_count.number; ++row)
        for (uint32_t i = 0; i < columns; ++i)
            if (class_field_sort(class_fields(object_class) + i) == ASN1_CLASS_FIELD_TYPE)
                found->push_back(constraint->rows.type[row * columns + i].type);
}

std::vector<const asn1_type_desc*> referred_types(const asn1_type_desc* type) {
    std::vector<const asn1_type_desc*> found;
    switch (kind_of(type)) {
        case ASN1_KIND_SEQUENCE:
        case ASN1_KIND_SET:
            for (uint32_t i = 0; i < component_count(type); ++i)
                found.push_back(field_type(components(type) + i));
            break;
        case ASN1_KIND_SEQUENCE_OF:
        case ASN1_KIND_SET_OF: found.push_back(list_of(type).element); break;
        case ASN1_KIND_CHOICE:
            for (uint32_t i = 0; i < choice_of(type).total; ++i)
                found.push_back(alternative_type(choice_of(type), i));
            break;
        case ASN1_KIND_TAGGED: found.push_back(tagged_inner(type)); break;
        case ASN1_KIND_BIT_STRING:
        case ASN1_KIND_OCTET_STRING: found.push_back(asn1_get_containing_type(type)); break;
        case ASN1_KIND_ANY: add_open_type_references(type, &found); break;
        case ASN1_KIND_OBJECT_CLASS:
            for (uint32_t i = 0; i < class_field_count(type); ++i)
                found.push_back(class_fields(type)[i].type.type);
            break;
        default: break;
    }
    std::erase(found, nullptr);
    return found;
}

}  // namespace cli
