// SPDX-License-Identifier: Apache-2.0
// Units of the message sets: which numbers have none.
#include <gtest/gtest.h>
#include <orlenta/catalogue.h>

#include <map>
#include <set>
#include <string>

namespace {

// Numbers without a unit by what has them: named types, and components of an INTEGER in place.
class Bare {
  public:
    Bare() {
        orlenta_type_entry entry;
        for (size_t i = 0; orlenta_catalogue_get(catalogue_, i, &entry) == 0; ++i) {
            std::string name = std::string(entry.region) + "." + entry.table;
            add(entry.region, name, entry.type);
            orlenta_component component;
            for (uint32_t k = 0; orlenta_type_component(entry.type, k, &component) == 0; ++k)
                if (orlenta_type_entry named;
                    orlenta_catalogue_find_type(catalogue_, behind_tags(component.type), &named))
                    add(entry.region, name + "." + component.name, component.type);
        }
    }
    const std::set<std::string>& of(const char* region) { return names_[region]; }
    size_t numbers(const char* region) { return numbers_[region]; }

  private:
    static const asn1_type_desc* behind_tags(const asn1_type_desc* type) {
        orlenta_type_facts facts;
        orlenta_type_describe(type, &facts);
        return facts.type;
    }
    void add(const char* region, const std::string& name, const asn1_type_desc* type) {
        orlenta_type_facts facts;
        orlenta_type_describe(type, &facts);
        if (facts.kind != ASN1_KIND_INTEGER && facts.kind != ASN1_KIND_REAL) return;
        ++numbers_[region];
        if (!orlenta_unit_of(catalogue_, type)) names_[region].insert(name);
    }

    const orlenta_catalogue* catalogue_ = orlenta_catalogue_builtin();
    std::map<std::string, std::set<std::string>> names_;
    std::map<std::string, size_t> numbers_;
};

TEST(Units, OfChinaAreMissingFromIdentifiersCodesAndCountsAlone) {
    static const std::map<std::string, const char*> why = {
        {"CN.BasicVehicleClass", "code"},
        {"CN.EventType", "code"},
        {"CN.FuelType", "code"},
        {"CN.LaneID", "identifier"},
        {"CN.MsgCount", "count"},
        {"CN.NodeID", "identifier"},
        {"CN.PhaseID", "identifier"},
        {"CN.RoadRegulatorID", "identifier"},
        {"CN.SignType", "code"},
        {"CN.ParticipantData.ptcId", "identifier"},
        {"CN.RTEData.rteId", "identifier"},
        {"CN.RTSData.rtsId", "identifier"},
    };
    Bare bare;
    for (const std::string& name : bare.of("CN")) EXPECT_TRUE(why.contains(name)) << name;
    EXPECT_EQ(bare.of("CN").size(), why.size());
    for (const char* region : {"CN", "EU", "US"}) {
        std::printf("%s: of %zu numbers %zu have no unit:", region, bare.numbers(region),
                    bare.of(region).size());
        for (const std::string& name : bare.of(region)) std::printf(" %s", name.c_str() + 3);
        std::printf("\n");
    }
}

}  // namespace
