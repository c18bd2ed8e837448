// SPDX-License-Identifier: Apache-2.0
#include "cli/references.hpp"

#include <orlenta/catalogue.h>

namespace cli {

static void add_rows(const orlenta_type_facts& facts, std::vector<const asn1_type_desc*>* found) {
    if (!facts.object_class) return;
    found->push_back(facts.object_class);
    orlenta_cell cell;
    for (uint32_t row = 0; row < facts.count; ++row)
        for (uint32_t column = 0; orlenta_type_cell(facts.type, row, column, &cell) == 0; ++column)
            found->push_back(cell.type);
}

static void add_parts(const asn1_type_desc* type, std::vector<const asn1_type_desc*>* found) {
    orlenta_component component;
    for (uint32_t i = 0; orlenta_type_component(type, i, &component) == 0; ++i)
        found->push_back(component.type);
    orlenta_alternative alternative;
    for (uint32_t i = 0; orlenta_type_alternative(type, i, &alternative) == 0; ++i)
        found->push_back(alternative.type);
    orlenta_class_field field;
    for (uint32_t i = 0; orlenta_type_field(type, i, &field) == 0; ++i) found->push_back(field.type);
}

std::vector<const asn1_type_desc*> referred_types(const asn1_type_desc* type) {
    orlenta_type_facts facts;
    orlenta_type_describe(type, &facts);
    if (facts.inner) return {facts.inner};
    std::vector<const asn1_type_desc*> found = {facts.element, facts.contained};
    add_parts(type, &found);
    add_rows(facts, &found);
    std::erase(found, nullptr);
    return found;
}

}  // namespace cli
