// SPDX-License-Identifier: Apache-2.0
// [Region.][Module.]Type: what users type, and what is told of a name that does not do.
#include <gtest/gtest.h>

#include "catalogue/region.hpp"
#include "cli/type_names.hpp"

extern "C" {
extern const orlenta::catalogue::region orlenta_region_Published;
extern const orlenta::catalogue::region orlenta_region_Tricky;
}

TEST(Names, PartsAreLeftOutWhileOneTypeIsMeant) {
    const struct {
        const char* name;
        const char* full;  // or what is told
    } rows[] = {
        {"Filter", "Published.Filter"},
        {"Dictionary.Filter", "Published.Filter"},
        {"Published.Dictionary.Filter", "Published.Filter"},
        {"Services.Reading", "Published.Services.Reading"},
        {"Services_Reading", "Published.Services.Reading"},
        {"asn1_type_Published_Dictionary_Reading", "Published.Dictionary.Reading"},
        {"Gathering", "Tricky.Gathering"},  // another name of a type
        {"Tricky.LONG_LIST", "no type is named Tricky.LONG_LIST; the nearest: Published.LONG-LIST"},
        {"Reading",
         "several types are named Reading: Published.Dictionary.Reading, Published.Services.Reading"},
        {"Published.Reading",
         "several types are named Published.Reading: Published.Dictionary.Reading, "
         "Published.Services.Reading"},
        {"Services.Filter",
         "no type is named Services.Filter; the nearest: Published.Filter, Published.Filter_1"},
        {"Tricky.Published.Dictionary.Filter",
         "no type is named Tricky.Published.Dictionary.Filter; the nearest: Published.Filter, "
         "Published.Filter_1"},
    };
    const orlenta::catalogue::region* regions[] = {&orlenta_region_Published, &orlenta_region_Tricky};
    const orlenta_catalogue catalogue = {regions, 2};
    cli::use_catalogue(&catalogue);
    for (const auto& [name, full] : rows) {
        std::string problem;
        const orlenta_type_entry* type = cli::find_type(name, &problem);
        EXPECT_EQ(type ? cli::full_name(*type) : problem, full);
    }
}
