// SPDX-License-Identifier: Apache-2.0
// Values built by the functions of the generated headers for C.
#include <gtest/gtest.h>
#include <orlenta/cn_build.h>
#include <orlenta/per.h>
#include <orlenta/us_build.h>
#include <tricky_build.h>

#include <string>

#include "tests/support/failing_allocator.hpp"

using namespace orlenta::test;

namespace {

// A record of zero bytes that is released at the end.
template <typename Record>
struct Owned {
    const asn1_type_desc* type;
    Record record = {};
    ~Owned() { asn1_free_value_struct(type, &record); }
};

std::string encoding(const asn1_type_desc* type, const void* value, asn1_error* error = nullptr) {
    uint8_t* bytes = nullptr;
    int64_t size = asn1_uper_encode2(&bytes, type, value, error);
    std::string text = size < 0 ? "" : std::string(reinterpret_cast<char*>(bytes), static_cast<size_t>(size));
    asn1_free(bytes);
    return text;
}

}  // namespace

TEST(Build, ListsGrowByOneKeepWhatTheyHaveAndTakeUpDecodedBlocks) {
    Owned<asn1_CN_PointList> built = {asn1_type_CN_PointList};
    for (int32_t i = 0; i < 100; i++) {
        asn1_CN_RoadPoint* point = orlenta_CN_PointList_add(&built.record);
        ASSERT_NE(point, nullptr);
        orlenta_CN_VerticalOffset_set_offset4(orlenta_CN_PositionOffsetLLV_set_offsetV(&point->posOffset));
        point->posOffset.offsetV.u.offset4 = i;
    }
    ASSERT_EQ(built.record.count, 100u);
    for (int32_t i = 0; i < 100; i++) EXPECT_EQ(built.record.data[i].posOffset.offsetV.u.offset4, i);

    // A block of the very size, as copies and decoders make them.
    Owned<asn1_CN_PointList> copy = {asn1_type_CN_PointList};
    built.record.count = 3;
    ASSERT_EQ(asn1_copy_value(asn1_type_CN_PointList, &copy.record, &built.record), 0);
    size_t exact = size_of_block(copy.record.data);
    EXPECT_EQ(exact, 3 * sizeof(asn1_CN_RoadPoint));
    EXPECT_NE(orlenta_CN_PointList_add(&copy.record), nullptr);
    EXPECT_GE(size_of_block(copy.record.data), 4 * sizeof(asn1_CN_RoadPoint));
    EXPECT_EQ(copy.record.data[3].posOffset.has_offsetV, 0u);
}

TEST(Build, ReservedElementsAreZeroAndCountWhenTheRecordSaysSo) {
    Owned<asn1_CN_PointList> list = {asn1_type_CN_PointList};
    EXPECT_EQ(orlenta_CN_PointList_reserve(&list.record, 0), nullptr);
    asn1_CN_RoadPoint* points = orlenta_CN_PointList_reserve(&list.record, 10);
    ASSERT_NE(points, nullptr);
    EXPECT_EQ(list.record.count, 0u);
    EXPECT_EQ(points[9].posOffset.has_offsetV, 0u);
    list.record.count = 10;
    EXPECT_EQ(orlenta_CN_PointList_reserve(&list.record, 5), list.record.data);
    EXPECT_EQ(size_of_block(list.record.data), 10 * sizeof(asn1_CN_RoadPoint));
    EXPECT_EQ(orlenta_CN_PointList_reserve(&list.record, UINT64_MAX), nullptr);
    EXPECT_EQ(orlenta_CN_PointList_reserve(&list.record, UINT64_MAX / sizeof(asn1_CN_RoadPoint) + 2),
              nullptr);
    EXPECT_EQ(list.record.count, 10u);
}

TEST(Build, SettersSetPresence) {
    Owned<asn1_CN_BasicSafetyMessage> bsm = {asn1_type_CN_BasicSafetyMessage};
    asn1_CN_BasicSafetyMessage& record = bsm.record;
    orlenta_CN_BasicSafetyMessage_set_angle(&record, -3);
    orlenta_CN_Position3D_set_elevation(&record.pos, 435);
    orlenta_CN_BrakeSystemStatus_set_abs(&record.brakes, asn1_CN_AntiLockBrakeStatus_engaged);
    asn1_CN_VehicleSafetyExtensions* safety = orlenta_CN_BasicSafetyMessage_set_safetyExt(&record);
    ASSERT_EQ(orlenta_CN_VehicleSafetyExtensions_set_bit_events(safety, 2, 1), 0);
    ASSERT_EQ(orlenta_CN_BasicSafetyMessage_set_id(&record, "12345678", 8), 0);
    EXPECT_TRUE(record.has_angle && record.pos.has_elevation && record.brakes.has_abs &&
                record.has_safetyExt && safety->has_events);
    EXPECT_EQ(record.angle, -3);
    EXPECT_EQ(safety->events.length, 13u);
    EXPECT_EQ(safety->events.data[0], 0x20);
}

TEST(Build, BitsAreSetClearedAndKeptInside) {
    struct Row {
        const char* what;
        uint64_t length, index;
        int value;
        uint64_t least, length_after;
        int byte_0, byte_1;
    } rows[] = {
        {"none yet, and no least", 0, 0, 1, 0, 1, 0x80, -1},
        {"none yet, least beyond", 0, 3, 1, 12, 12, 0x10, 0x00},
        {"none yet, least below", 0, 9, 1, 4, 10, 0x00, 0x40},
        {"there: set", 12, 11, 1, 12, 12, 0xFF, 0xFF},
        {"there: cleared", 12, 1, 0, 12, 12, 0xBF, 0xFF},
        {"behind the end: what was behind it counts as zero", 12, 14, 1, 12, 15, 0xFF, 0xF2},
        {"behind the end, cleared: longer all the same", 12, 15, 0, 0, 16, 0xFF, 0xF0},
    };
    for (const Row& row : rows) {
        asn1_bit_string bits = {};
        ASSERT_EQ(orlenta_bit_string_set(&bits, "\xFF\xFF", row.length), 0);
        if (row.length % 8 != 0) bits.data[row.length / 8] |= 0x0F;  // as some decoder may leave it
        ASSERT_EQ(orlenta_bit_string_set_bit(&bits, row.index, row.value, row.least), 0) << row.what;
        EXPECT_EQ(bits.length, row.length_after) << row.what;
        EXPECT_EQ(orlenta_bit_string_get_bit(&bits, row.index), row.value) << row.what;
        EXPECT_EQ(bits.data[0], row.byte_0) << row.what;
        if (row.byte_1 >= 0) {
            EXPECT_EQ(bits.data[1], row.byte_1) << row.what;
        }
        EXPECT_EQ(orlenta_bit_string_get_bit(&bits, bits.length), 0) << row.what;
        asn1_free(bits.data);
    }
    asn1_bit_string none = {};
    EXPECT_EQ(orlenta_bit_string_set_bit(&none, UINT64_MAX, 1, 0), -1);
    EXPECT_EQ(orlenta_bit_string_set(&none, "", UINT64_MAX), -1);
}

TEST(Build, OpenTypesAreSetWithTheirKeysAndReadByThem) {
    Owned<asn1_US_MessageFrame> frame = {asn1_type_US_MessageFrame};
    ASSERT_NE(orlenta_US_MessageFrame_set_value_SPAT(&frame.record), nullptr);
    asn1_US_MapData* map = orlenta_US_MessageFrame_set_value_MapData(&frame.record);  // in its place
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(frame.record.messageId, 18u);
    EXPECT_EQ(frame.record.messageId, static_cast<uint32_t>(orlenta_US_MessageFrame_messageId_MapData));
    EXPECT_EQ(orlenta_US_MessageFrame_get_value_MapData(&frame.record), map);
    EXPECT_EQ(orlenta_US_MessageFrame_get_value_SPAT(&frame.record), nullptr);
    frame.record.messageId = orlenta_US_MessageFrame_messageId_BasicSafetyMessage;
    EXPECT_EQ(orlenta_US_MessageFrame_get_value_BasicSafetyMessage(&frame.record), nullptr)
        << "of another type";
    EXPECT_EQ(orlenta_US_MessageFrame_get_value_MapData(&frame.record), nullptr) << "of another key";
}

TEST(Build, AnotherAlternativeReleasesTheFormer) {
    Owned<asn1_CN_MessageFrame> frame = {asn1_type_CN_MessageFrame};
    asn1_CN_BasicSafetyMessage* bsm = orlenta_CN_MessageFrame_set_bsmFrame(&frame.record);
    ASSERT_EQ(orlenta_CN_BasicSafetyMessage_set_id(bsm, "12345678", 8), 0);
    asn1_CN_SPAT* spat = orlenta_CN_MessageFrame_set_spatFrame(&frame.record);
    EXPECT_EQ(live_blocks(), 0u);
    EXPECT_EQ(frame.record.choice, static_cast<uint32_t>(asn1_CN_MessageFrame_spatFrame));
    EXPECT_EQ(spat->intersections.count, 0u);
}

TEST(Build, RecordsBehindPointersAreMade) {
    Owned<asn1_Tricky_Expression> sum = {asn1_type_Tricky_Expression};
    asn1_Tricky_Pair* pair = orlenta_Tricky_Expression_set_sum(&sum.record);
    *orlenta_Tricky_Expression_set_constant(orlenta_Tricky_Pair_set_left(pair)) = 3;
    orlenta_Tricky_Expression_set_list(orlenta_Tricky_Pair_set_right(pair));
    EXPECT_EQ(orlenta_Tricky_Pair_set_left(pair)->u.constant, 3u) << "is there, and stays";
    EXPECT_NE(encoding(sum.type, &sum.record), "");

    Owned<asn1_Tricky_Chain> chain = {asn1_type_Tricky_Chain};
    EXPECT_EQ(orlenta_Tricky_Chain_set_next(orlenta_Tricky_Chain_set_next(&chain.record))->has_next, 0u);
    EXPECT_TRUE(chain.record.has_next && chain.record.next->has_next);
    Owned<asn1_Tricky_Doubly> doubly = {asn1_type_Tricky_Doubly};  // two tags around
    EXPECT_EQ(orlenta_Tricky_Doubly_set_again(&doubly.record)->has_again, 0u);
    EXPECT_NE(encoding(doubly.type, &doubly.record), "");
}

TEST(Build, AnIndexOutsideItsTypeFailsToEncode) {
    Owned<asn1_CN_PositionConfidenceSet> set = {asn1_type_CN_PositionConfidenceSet};
    orlenta_CN_PositionConfidenceSet_set_elevation(&set.record,
                                                   static_cast<enum orlenta_CN_ElevationConfidence>(15));
    EXPECT_NE(encoding(set.type, &set.record), "");
    set.record.elevation = 99;
    asn1_error error;
    asn1_error_init(&error);
    EXPECT_EQ(encoding(set.type, &set.record, &error), "");
}

TEST(Build, WithoutMemoryNothingChanges) {
    auto build = [] {
        Owned<asn1_CN_BasicSafetyMessage> bsm = {asn1_type_CN_BasicSafetyMessage};
        Owned<asn1_US_MessageFrame> frame = {asn1_type_US_MessageFrame};
        Owned<asn1_CN_PointList> list = {asn1_type_CN_PointList};
        asn1_CN_BrakeSystemStatus& brakes = bsm.record.brakes;
        bool set = orlenta_CN_BasicSafetyMessage_set_id(&bsm.record, "12345678", 8) == 0;
        EXPECT_EQ(bsm.record.id.length, set ? 8u : 0u);
        set = orlenta_CN_BrakeSystemStatus_set_bit_wheelBrakes(&brakes, 1, 1) == 0;
        EXPECT_EQ(brakes.has_wheelBrakes, set ? 1u : 0u);
        bool before = set;
        set = orlenta_CN_BrakeSystemStatus_set_wheelBrakes(&brakes, "\xF8", 5) == 0;
        EXPECT_EQ(brakes.has_wheelBrakes, set || before ? 1u : 0u);
        EXPECT_EQ(orlenta_bit_string_get_bit(&brakes.wheelBrakes, 0), set);
        set = orlenta_US_MessageFrame_set_value_MapData(&frame.record) != nullptr;
        EXPECT_EQ(frame.record.messageId, set ? 18u : 0u);
        before = orlenta_CN_PointList_add(&list.record) != nullptr;
        set = orlenta_CN_PointList_reserve(&list.record, 5) != nullptr;
        EXPECT_EQ(list.record.count, before ? 1u : 0u);
        Owned<asn1_Tricky_Chain> chain = {asn1_type_Tricky_Chain};
        set = orlenta_Tricky_Chain_set_next(&chain.record) != nullptr;
        EXPECT_EQ(chain.record.has_next, set ? 1u : 0u);
    };
    EXPECT_GE(for_each_failed_allocation(build), 7u);
}
