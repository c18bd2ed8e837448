// SPDX-License-Identifier: Apache-2.0
// Details of the EU and US tables that no other set has: numbers of items, object sets, big bounds, additions.
#include <gtest/gtest.h>
#include <orlenta/eu.h>
#include <orlenta/us.h>

#include <string>
#include <vector>

#include "core/descriptor.hpp"

using namespace orlenta;

namespace {

TEST(EuTables, EnumeratedNumbersApartFromPositions) {
    const asn1_type_desc* type = asn1_type_EU_VruProfile;
    enum_layout items = enum_of(type);
    EXPECT_EQ(asn1_EU_VruProfile_max, 5);
    EXPECT_STREQ(items.names[5].text, "max");
    EXPECT_EQ(enum_value(type, items, 5), 15);
}

TEST(EuTables, BigAndExtensibleIntegers) {
    big_bounds bounds = big_bounds_of(asn1_type_EU_TimestampIts);
    ASSERT_EQ(bounds.upper->size, 2u);
    EXPECT_EQ(bounds.upper->limbs[0] | uint64_t{bounds.upper->limbs[1]} << 32, 4398046511103u);
    EXPECT_EQ(bounds.lower->size, 0u);
    EXPECT_TRUE(is_extensible(asn1_type_EU_Ext3));
    EXPECT_EQ(integer_bounds_of(asn1_type_EU_Ext3).upper, 270549119u);
}

TEST(EuTables, RecursionIsHeldByAPointer) {
    const asn1_type_desc* ddd =
        alternative_type(choice_of(asn1_type_EU_GddAttribute), asn1_EU_GddAttribute_ddd);
    EXPECT_TRUE(is_indirect(ddd));
    EXPECT_EQ(tagged_inner(ddd), asn1_type_EU_InternationalSign_destinationInformation);
    EXPECT_EQ(sizeof(asn1_EU_GddAttribute{}.u.ddd), sizeof(void*));
}

TEST(EuTables, AliasesAreTagsWithAName) {
    EXPECT_EQ(kind_of(asn1_type_EU_SpatData), uint32_t{ASN1_KIND_TAGGED});
    EXPECT_EQ(tagged_inner(asn1_type_EU_SpatData), asn1_type_EU_DSRC_SPAT);
    EXPECT_STREQ(asn1_type_EU_SpatData[2].text, "SpatData");
}

TEST(UsTables, NestedTypesAndAdditions) {
    EXPECT_EQ(enum_of(asn1_type_US_Lpn_1).root, 33u);
    const asn1_field* fields = components(asn1_type_US_SL_Preconfiguration_r12);
    std::string groups;
    for (uint32_t i = 0; i < component_count(asn1_type_US_SL_Preconfiguration_r12); i++)
        groups += is_addition(&fields[i]) ? opens_group(&fields[i])    ? '['
                                            : closes_group(&fields[i]) ? ']'
                                                                       : '-'
                                          : '.';
    EXPECT_EQ(groups, "...[-]");
}

// The rows of an open type as "key name, ...".
std::string rows_of(const asn1_type_desc* any) {
    const auto* table = reinterpret_cast<const asn1_table_constraint*>(any_constraint(any));
    std::string rows;
    for (uint64_t i = 0; i < table->row_count.number; i++) {
        const asn1_word* row = table->rows.type + 2 * i;
        uint32_t key;
        memcpy(&key, row[0].address, sizeof key);
        const asn1_type_desc* type = row[1].type;
        const char* name =
            kind_of(type) == ASN1_KIND_SEQUENCE ? type[3 + 4 * component_count(type)].text : "?";
        rows += std::to_string(key) + " " + name + (i + 1 < table->row_count.number ? ", " : "");
    }
    return rows;
}

TEST(UsTables, ObjectSetsKeepTheirOrder) {
    std::string rows = rows_of(field_type(&components(asn1_type_US_MessageFrame)[1]));
    EXPECT_EQ(rows.substr(0, rows.find(", 240")),
              "20 BasicSafetyMessage, 18 MapData, 19 SPAT, 21 CommonSafetyRequest, 22 EmergencyVehicleAlert,"
              " 23 IntersectionCollision, 24 NMEAcorrections, 25 ProbeDataManagement, 26 ProbeVehicleData,"
              " 27 RoadSideAlert, 28 RTCMcorrections, 29 SignalRequestMessage, 30 SignalStatusMessage,"
              " 41 SensorDataSharingMessage, 31 TravelerInformation, 32 PersonalSafetyMessage");
    EXPECT_EQ(rows.substr(rows.find("255 ")),
              "255 TestMessage15, 38 TollUsageMessage, 39 TollUsageAckMessage");
}

}  // namespace
